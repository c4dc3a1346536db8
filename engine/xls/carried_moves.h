// What a file carries when rows or columns of a sheet are inserted or removed: the ranges of
// conditional formats and pivot tables, selections, formulas of conditional formats and charts, the
// input cells of data tables and the cells that pivot tables have their data from.
#pragma once

#include <memory>
#include <vector>

#include "engine/formula/interval.h"
#include "engine/workbook/document.h"
#include "engine/xls/loaded_file.h"

namespace engine::xls {

// The ranges that pivot tables of a sheet fill.
std::vector<CellRange> pivot_ranges(const LoadedFile& file, const Sheet& sheet);

std::unique_ptr<CarriedMove> move_carried(LoadedFile& file, const Workbook& book, Sheet& sheet,
                                          const formula::Move& move);

}  // namespace engine::xls
