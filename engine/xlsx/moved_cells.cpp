#include "engine/xlsx/moved_cells.h"

namespace engine::xlsx {

std::optional<std::string> moved_ranges(std::string_view text, const formula::Move& move,
                                        const Grid& grid) {
  std::string moved;
  bool changed = false;
  for_each_part(text, grid, [&](std::string_view one, const std::optional<CellRange>& range) {
    const auto to = range ? moved_range(*range, move, grid) : std::nullopt;
    changed |= range != to;
    if (range && !to) return;
    if (!moved.empty()) moved.push_back(' ');
    if (to) formula::append_range(moved, *to);
    else moved.append(one);
  });
  return changed ? std::optional(std::move(moved)) : std::nullopt;
}

}  // namespace engine::xlsx
