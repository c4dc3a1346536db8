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

// Calls back with each range of a text.
template <class Use>
void for_each_range(std::string_view text, const Grid& grid, Use use) {
  while (!text.empty()) {
    const std::string_view one = text.substr(0, text.find(' '));
    text.remove_prefix(one.size() == text.size() ? one.size() : one.size() + 1);
    if (const auto range = formula::parse_range(one, grid)) use(*range);
  }
}

}  // namespace engine::xlsx
