#include "engine/xlsx/moved_cells.h"

#include <algorithm>

namespace engine::xlsx {

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
