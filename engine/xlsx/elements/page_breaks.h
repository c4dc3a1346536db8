// Page breaks: rowBreaks and colBreaks.
#pragma once

#include "engine/xlsx/worksheet_elements.h"

namespace engine::xlsx {

void read_row_breaks(pugi::xml_node element, const SheetReading& to);
void patch_row_breaks(pugi::xml_node root, const SheetPatching& from);

void read_column_breaks(pugi::xml_node element, const SheetReading& to);
void patch_column_breaks(pugi::xml_node root, const SheetPatching& from);

}  // namespace engine::xlsx
