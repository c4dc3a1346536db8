// Filters and sorting, of a worksheet or a table: their criteria, and by what rows were sorted.
//
// What a criterion says of the look of cells, of today or in a later form stays in its element,
// which goes with its column.
#pragma once

#include "engine/workbook/auto_filter.h"
#include "engine/xlsx/worksheet_elements.h"

namespace engine::xlsx {

void read_sheet_filter(pugi::xml_node element, const SheetReading& to);
void patch_sheet_filter(pugi::xml_node root, const SheetPatching& from);

// A sort of a worksheet that has no filter.
void move_sheet_sort(pugi::xml_node sort, const SheetMoving& moving);

// The filter and the sort of a table after rows or columns were inserted or removed.
void move_table_filter(pugi::xml_node table, const formula::Move& move, const Grid& grid);

}  // namespace engine::xlsx
