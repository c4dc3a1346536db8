// Functions of value lists: texts whose values are separated by carriage returns. A return at the
// end closes the last value and begins no other.
#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "devhost/calc/builtins.h"

namespace devhost {
namespace {

using Arguments = std::span<const Value>;

constexpr char16_t kSeparator = u'\r';

// Empty arguments are left out.
Value list(Arguments arguments) {
  std::u16string text;
  for (const Value& value : arguments) {
    if (value.is_empty()) continue;
    if (!text.empty()) text += kSeparator;
    text += value.units();
  }
  return Value(std::move(text));
}

Value value_count(Arguments arguments) {
  const std::u16string& text = arguments[0].units();
  const auto separators = std::count(text.begin(), text.end(), kSeparator);
  const bool open = !text.empty() && text.back() != kSeparator;
  return Value(static_cast<double>(separators + (open ? 1 : 0)));
}

Value get_value(Arguments arguments) {
  std::u16string_view rest = arguments[0].units();
  const double wanted = arguments[1].number().value;
  for (double number = 1; !rest.empty(); ++number) {
    const std::size_t end = std::min(rest.find(kSeparator), rest.size());
    if (number + 1 > wanted) {
      return wanted >= 1 ? Value(std::u16string(rest.substr(0, end))) : Value();
    }
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return {};
}

constexpr Builtin kFunctions[] = {
    {u"GetValue", 2, 2, get_value},
    {u"List", 1, -1, list},
    {u"ValueCount", 1, 1, value_count},
};

}  // namespace

std::span<const Builtin> list_functions() { return kFunctions; }

}  // namespace devhost
