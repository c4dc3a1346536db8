// The numbers by which files store errors.
#pragma once

#include <cstdint>
#include <string_view>

namespace engine::xls {

// An error of cells and formulas; for a number that none has, the one for what is not known.
std::string_view cell_error_text(std::uint8_t number);

}  // namespace engine::xls
