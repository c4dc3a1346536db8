#include "engine/xls/cell_errors.h"

namespace engine::xls {

std::string_view cell_error_text(std::uint8_t number) {
  switch (number) {
    case 0x00:
      return "#NULL!";
    case 0x07:
      return "#DIV/0!";
    case 0x0F:
      return "#VALUE!";
    case 0x17:
      return "#REF!";
    case 0x1D:
      return "#NAME?";
    case 0x24:
      return "#NUM!";
    case 0x2A:
      return "#N/A";
    case 0x2B:
      return "#GETTING_DATA";
    default:
      return "#UNKNOWN!";
  }
}

std::optional<std::uint8_t> cell_error_number(std::string_view text) {
  constexpr std::uint8_t kNumbers[] = {0x00, 0x07, 0x0F, 0x17, 0x1D, 0x24, 0x2A, 0x2B};
  for (const std::uint8_t number : kNumbers)
    if (cell_error_text(number) == text) return number;
  return std::nullopt;
}

}  // namespace engine::xls
