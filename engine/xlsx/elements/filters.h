// Filter buttons and sorting, of a worksheet or a table.
#pragma once

#include "engine/xlsx/worksheet_elements.h"

namespace engine::xlsx {

// After rows or columns were inserted or removed: criteria stay with the columns that they belong
// to. A filter whose header goes is removed; then the result is false.
bool move_filter(pugi::xml_node filter, const formula::Move& move, const Grid& grid);

// The filter of a worksheet, of which the sheet's properties tell, too.
void move_sheet_filter(pugi::xml_node filter, const SheetMoving& moving);
void move_sheet_sort(pugi::xml_node sort, const SheetMoving& moving);

// A sort of which no condition is left goes.
void move_sort(pugi::xml_node sort, const formula::Move& move, const Grid& grid);

}  // namespace engine::xlsx
