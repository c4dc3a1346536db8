// Functions of texts. Places and lengths count UTF-16 units from 1.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "devhost/calc/builtins.h"
#include "devhost/fm/unicode.h"

namespace devhost {
namespace {

using Arguments = std::span<const Value>;

// A count or place: the integer part, within what a text can have.
std::ptrdiff_t whole(const Value& value) {
  return static_cast<std::ptrdiff_t>(std::clamp(std::trunc(value.number().value), -1e9, 1e9));
}

std::size_t count_of(const Value& value) {
  return static_cast<std::size_t>(std::max<std::ptrdiff_t>(whole(value), 0));
}

Value text_value(std::u16string_view text) { return Value(std::u16string(text)); }

Value length(Arguments arguments) {
  return Value(static_cast<double>(arguments[0].units().size()));
}

Value left(Arguments arguments) {
  return text_value(std::u16string_view(arguments[0].units()).substr(0, count_of(arguments[1])));
}

Value right(Arguments arguments) {
  const std::u16string_view text = arguments[0].units();
  return text_value(text.substr(text.size() - std::min(text.size(), count_of(arguments[1]))));
}

// A start before the first character is the first.
Value middle(Arguments arguments) {
  const std::u16string_view text = arguments[0].units();
  const std::size_t start = std::max<std::size_t>(count_of(arguments[1]), 1) - 1;
  if (start >= text.size()) return {};
  return text_value(text.substr(start, count_of(arguments[2])));
}

// Without regard to case. The occurrence counts forward from the start, a negative one backward; 0
// when there is none.
Value position(Arguments arguments) {
  const std::u16string text = to_lower(arguments[0].units());
  const std::u16string wanted = to_lower(arguments[1].units());
  std::ptrdiff_t occurrence = whole(arguments[3]);
  if (wanted.empty() || text.empty() || occurrence == 0) return Value(0.0);
  const bool forward = occurrence > 0;
  std::size_t place = std::max<std::size_t>(count_of(arguments[2]), 1) - 1;
  for (;;) {
    place = forward ? text.find(wanted, place) : text.rfind(wanted, place);
    if (place == std::u16string::npos) return Value(0.0);
    occurrence += forward ? -1 : 1;
    if (occurrence == 0) return Value(static_cast<double>(place + 1));
    if (!forward && place == 0) return Value(0.0);
    place = forward ? place + 1 : place - 1;
  }
}

std::u16string replaced(std::u16string_view text, std::u16string_view wanted,
                        std::u16string_view replacement) {
  std::u16string result;
  for (;;) {
    const std::size_t place = wanted.empty() ? std::u16string_view::npos : text.find(wanted);
    if (place == std::u16string_view::npos) return result += text;
    result += text.substr(0, place);
    result += replacement;
    text.remove_prefix(place + wanted.size());
  }
}

// Pairs of a text and its replacement, each applied to what the one before has left.
Value substitute(Arguments arguments) {
  std::u16string text = arguments[0].units();
  for (std::size_t i = 1; i + 1 < arguments.size(); i += 2) {
    text = replaced(text, arguments[i].units(), arguments[i + 1].units());
  }
  return Value(std::move(text));
}

Value character(Arguments arguments) {
  const double code = std::trunc(arguments[0].number().value);
  if (!(code > 0 && code <= 0x10FFFF)) return {};
  std::u16string text;
  append_character(text, static_cast<char32_t>(code));
  return Value(std::move(text));
}

// Of the first character.
Value code(Arguments arguments) {
  const std::u16string_view text = arguments[0].units();
  return text.empty() ? Value() : Value(static_cast<double>(first_character(text)));
}

Value exact(Arguments arguments) {
  return Value::truth(arguments[0].units() == arguments[1].units());
}

Value is_empty(Arguments arguments) { return Value::truth(arguments[0].is_empty()); }

Value upper(Arguments arguments) { return Value(to_upper(arguments[0].units())); }

Value lower(Arguments arguments) { return Value(to_lower(arguments[0].units())); }

Value trim(Arguments arguments) {
  const std::u16string_view text = arguments[0].units();
  const std::size_t first = text.find_first_not_of(u' ');
  if (first == std::u16string_view::npos) return {};
  return text_value(text.substr(first, text.find_last_not_of(u' ') - first + 1));
}

Value get_as_text(Arguments arguments) { return Value(arguments[0].units()); }

constexpr Builtin kFunctions[] = {
    {u"Char", 1, 1, character},   {u"Code", 1, 1, code},
    {u"Exact", 2, 2, exact},      {u"GetAsText", 1, 1, get_as_text},
    {u"IsEmpty", 1, 1, is_empty}, {u"Left", 2, 2, left},
    {u"Length", 1, 1, length},    {u"Lower", 1, 1, lower},
    {u"Middle", 3, 3, middle},    {u"Position", 4, 4, position},
    {u"Right", 2, 2, right},      {u"Substitute", 3, -1, substitute, true},
    {u"Trim", 1, 1, trim},        {u"Upper", 1, 1, upper},
};

}  // namespace

std::span<const Builtin> text_functions() { return kFunctions; }

}  // namespace devhost
