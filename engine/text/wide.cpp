#include "engine/text/wide.h"

#include <bit>
#include <cstdint>
#include <cwchar>

#include "engine/text/utf8.h"

namespace engine {

namespace {

// Wide text has 32 bits an element, whatever sign they have.
std::uint32_t unit_of(wchar_t element) { return std::bit_cast<std::uint32_t>(element); }

}  // namespace

void to_utf8(const wchar_t* text, std::string& utf8) {
  utf8.clear();
  if (!text) return;
  // Most texts are ASCII from end to end.
  utf8.resize(std::wcslen(text));
  char* out = utf8.data();
  for (; *text > 0 && *text < 0x80; ++text) *out++ = static_cast<char>(*text);
  if (*text == 0) return;
  utf8.resize(static_cast<std::size_t>(out - utf8.data()));
  for (; *text != 0; ++text) {
    std::uint32_t code = unit_of(*text);
    if (is_high_surrogate(code) && is_low_surrogate(unit_of(text[1]))) {
      code = join_surrogates(code, unit_of(text[1]));
      ++text;
    } else if (is_surrogate(code) || code > 0x10FFFF) {
      code = kReplacementCharacter;
    }
    append_utf8(utf8, code);
  }
}

std::string to_utf8(const wchar_t* text) {
  std::string utf8;
  to_utf8(text, utf8);
  return utf8;
}

void to_wide(std::string_view utf8, std::wstring& wide) {
  wide.resize(utf8.size());
  std::size_t ascii = 0;
  for (; ascii < utf8.size() && static_cast<signed char>(utf8[ascii]) >= 0; ++ascii)
    wide[ascii] = static_cast<unsigned char>(utf8[ascii]);
  wide.resize(ascii);
  utf8.remove_prefix(ascii);
  while (!utf8.empty()) {
    const std::uint32_t code = take_character(utf8);
    if (code < 0x10000) {
      wide.push_back(static_cast<wchar_t>(code));
    } else {
      wide.push_back(static_cast<wchar_t>(0xD800 + ((code - 0x10000) >> 10)));
      wide.push_back(static_cast<wchar_t>(0xDC00 + ((code - 0x10000) & 0x3FF)));
    }
  }
}

std::wstring to_wide(std::string_view utf8) {
  std::wstring wide;
  to_wide(utf8, wide);
  return wide;
}

}  // namespace engine
