#include "runtime/fields.h"

#include <array>
#include <charconv>

namespace {

// Appends what a form of std::to_chars makes of the value.
template <class Value, class... Form>
void append(std::wstring& text, Value value, Form... form) {
  std::array<char, 32> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value, form...).ptr;
  text.append(digits.data(), end);
}

}  // namespace

void Fields::add(const wchar_t* text) {
  separate();
  if (text) text_ += text;
}

void Fields::add(double value) {
  constexpr int kSignificantDigits = 6;
  separate();
  append(text_, value, std::chars_format::general, kSignificantDigits);
}

void Fields::add(const void* address) {
  constexpr int kHexadecimal = 16;
  separate();
  if (address) text_ += L"0x";
  append(text_, reinterpret_cast<std::uintptr_t>(address), kHexadecimal);
}

void Fields::add(std::int64_t value) {
  separate();
  append(text_, value);
}

void Fields::add_empty() { separate(); }

void Fields::separate() {
  if (!first_) text_ += L'\r';
  first_ = false;
}
