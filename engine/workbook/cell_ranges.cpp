#include "engine/workbook/cell_ranges.h"

#include <algorithm>
#include <tuple>

namespace engine {

bool RangeLess::operator()(const CellRange& a, const CellRange& b) const {
  return std::tie(a.row_first, a.column_first, a.row_last, a.column_last) <
         std::tie(b.row_first, b.column_first, b.row_last, b.column_last);
}

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

CellRanges moved(const CellRanges& ranges, const formula::Move& move, const Grid& grid) {
  CellRanges made;
  for (const CellRange& range : ranges)
    if (const auto to = moved_range(range, move, grid)) made.insert(made.end(), *to);
  return made;
}

CellAddress corner_of(const CellRanges& ranges) {
  CellAddress first{ranges.begin()->row_first, ranges.begin()->column_first};
  for (const CellRange& range : ranges) first.column = std::min(first.column, range.column_first);
  return first;
}

CellRanges outside(const CellRange& range, const CellRange& other) {
  const int top = std::max(range.row_first, other.row_first);
  const int bottom = std::min(range.row_last, other.row_last);
  CellRanges parts;
  const auto add = [&parts](const CellRange& part) {
    if (part.row_first <= part.row_last && part.column_first <= part.column_last)
      parts.insert(part);
  };
  add({range.row_first, top - 1, range.column_first, range.column_last});
  add({top, bottom, range.column_first, std::min(range.column_last, other.column_first - 1)});
  add({top, bottom, std::max(range.column_first, other.column_last + 1), range.column_last});
  add({bottom + 1, range.row_last, range.column_first, range.column_last});
  return parts;
}

}  // namespace engine
