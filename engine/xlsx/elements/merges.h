// The merged ranges of a worksheet: mergeCells.
#pragma once

#include "engine/xlsx/worksheet_elements.h"

namespace engine::xlsx {

void read_merges(pugi::xml_node element, const SheetReading& to);
void patch_merges(pugi::xml_node root, const SheetPatching& from);

}  // namespace engine::xlsx
