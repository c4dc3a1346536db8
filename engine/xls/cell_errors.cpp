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

}  // namespace engine::xls
