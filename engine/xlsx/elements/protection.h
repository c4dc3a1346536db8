// The protection of a sheet: sheetProtection.
#pragma once

#include "engine/xlsx/worksheet_elements.h"

namespace engine::xlsx {

void read_sheet_protection(pugi::xml_node element, const SheetReading& to);
void patch_sheet_protection(pugi::xml_node root, const SheetPatching& from);

}  // namespace engine::xlsx
