// Cells that texts of parts name, after rows or columns were inserted or removed.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "engine/formula/interval.h"
#include "engine/formula/reference.h"
#include "engine/workbook/cell_ranges.h"

namespace engine::xlsx {

// The ranges of a text, parted by blanks. Nothing when all stay, an empty text when none is left.
// What names no cells stays as it stands.
std::optional<std::string> moved_ranges(std::string_view text, const formula::Move& move,
                                        const Grid& grid);

// Calls back with each part of such a text and the range that it names, if it names one. Between
// two blanks stands an empty part.
template <class Use>
void for_each_part(std::string_view text, const Grid& grid, Use use) {
  while (!text.empty()) {
    const std::string_view one = text.substr(0, text.find(' '));
    text.remove_prefix(one.size() == text.size() ? one.size() : one.size() + 1);
    use(one, formula::parse_range(one, grid));
  }
}

// Calls back with each range of a text.
template <class Use>
void for_each_range(std::string_view text, const Grid& grid, Use use) {
  for_each_part(text, grid, [&](std::string_view, const std::optional<CellRange>& range) {
    if (range) use(*range);
  });
}

}  // namespace engine::xlsx
