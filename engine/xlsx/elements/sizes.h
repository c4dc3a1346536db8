// The used range, the sizes of rows and columns and where their groups are summed up: dimension,
// sheetFormatPr, cols.
#pragma once

#include "engine/xlsx/worksheet_elements.h"

namespace engine::xlsx {

void patch_dimension(pugi::xml_node root, const SheetPatching& from);

void read_default_sizes(pugi::xml_node element, const SheetReading& to);
void patch_default_sizes(pugi::xml_node root, const SheetPatching& from);

void read_columns(pugi::xml_node element, const SheetReading& to);
void patch_columns(pugi::xml_node root, const SheetPatching& from);

}  // namespace engine::xlsx
