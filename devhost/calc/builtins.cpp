#include "devhost/calc/builtins.h"

#include <cmath>

#include "devhost/fm/unicode.h"

namespace devhost {

Value failed_value() { return Value(std::u16string(u"?")); }

Value number_value(double number) { return std::isfinite(number) ? Value(number) : failed_value(); }

const Builtin* find_builtin(std::u16string_view name) {
  for (const auto functions :
       {number_functions(), text_functions(), list_functions(), container_functions()}) {
    for (const Builtin& builtin : functions) {
      if (compare_ignoring_case(builtin.name, name) == 0) return &builtin;
    }
  }
  return nullptr;
}

}  // namespace devhost
