#include "engine/workbook/cell_ranges.h"

namespace engine {

std::optional<CellRange> moved_range(CellRange range, const formula::Move& move, const Grid& grid) {
  const bool rows = move.axis == formula::Axis::kRows;
  int& first = rows ? range.row_first : range.column_first;
  int& last = rows ? range.row_last : range.column_last;
  const auto to = formula::moved({first, last}, move, rows ? grid.rows : grid.columns);
  if (!to) return std::nullopt;
  first = to->first;
  last = to->last;
  return range;
}

}  // namespace engine
