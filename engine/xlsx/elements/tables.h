// The tables of a worksheet.
#pragma once

#include "engine/xlsx/worksheet_elements.h"

namespace engine::xlsx {

// Copies get names and ids of their own. Their formulas are still those of the originals.
void copy_tables(pugi::xml_node element, const SheetCopying& to);

}  // namespace engine::xlsx
