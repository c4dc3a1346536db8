#include "engine/xlsx/moved_cells.h"

#include <algorithm>

namespace engine::xlsx {

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

std::optional<std::string> moved_ranges(std::string_view text, const formula::Move& move,
                                        const Grid& grid) {
  std::string moved;
  bool changed = false;
  while (!text.empty()) {
    const std::string_view one = text.substr(0, text.find(' '));
    text.remove_prefix(std::min(text.size(), one.size() + 1));
    const auto range = formula::parse_range(one, grid);
    const auto to = range ? moved_range(*range, move, grid) : std::nullopt;
    changed |= range != to;
    if (range && !to) continue;
    if (!moved.empty()) moved.push_back(' ');
    if (to) formula::append_range(moved, *to);
    else moved.append(one);
  }
  return changed ? std::optional(std::move(moved)) : std::nullopt;
}

}  // namespace engine::xlsx
