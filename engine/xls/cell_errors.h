// The numbers by which files store errors.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace engine::xls {

// An error of cells and formulas; for a number that none has, the one for what is not known.
std::string_view cell_error_text(std::uint8_t number);

// The number of an error's text; nothing when the format has none for it.
std::optional<std::uint8_t> cell_error_number(std::string_view text);

}  // namespace engine::xls
