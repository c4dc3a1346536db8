#include "engine/workbook/text.h"

#include <utf8proc.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cwchar>

namespace engine {

namespace {

constexpr std::uint32_t kReplacement = 0xFFFD;

// Wide text has 32 bits an element, whatever sign they have.
std::uint32_t unit_of(wchar_t element) { return std::bit_cast<std::uint32_t>(element); }

bool is_high_surrogate(std::uint32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool is_low_surrogate(std::uint32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

void append_utf8(std::uint32_t code, std::string& utf8) {
  if (code < 0x80) {
    utf8.push_back(static_cast<char>(code));
    return;
  }
  utf8proc_uint8_t bytes[4];
  const auto count = utf8proc_encode_char(static_cast<utf8proc_int32_t>(code), bytes);
  utf8.append(bytes, bytes + count);
}

// Takes one character off the front of the text.
std::uint32_t next_code(std::string_view& utf8) {
  const auto lead = static_cast<unsigned char>(utf8.front());
  if (lead < 0x80) {
    utf8.remove_prefix(1);
    return lead;
  }
  utf8proc_int32_t code = -1;
  const auto* bytes = reinterpret_cast<const utf8proc_uint8_t*>(utf8.data());
  const auto length = static_cast<utf8proc_ssize_t>(utf8.size());
  const utf8proc_ssize_t read = utf8proc_iterate(bytes, length, &code);
  utf8.remove_prefix(read > 0 ? static_cast<std::size_t>(read) : 1);
  return read > 0 ? static_cast<std::uint32_t>(code) : kReplacement;
}

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
      code = 0x10000 + ((code - 0xD800) << 10) + (unit_of(text[1]) - 0xDC00);
      ++text;
    } else if (is_high_surrogate(code) || is_low_surrogate(code) || code > 0x10FFFF) {
      code = kReplacement;
    }
    append_utf8(code, utf8);
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
    const std::uint32_t code = next_code(utf8);
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

std::size_t utf16_length(std::string_view utf8) {
  std::size_t units = 0;
  for (const char byte : utf8) {
    const auto lead = static_cast<unsigned char>(byte);
    if ((lead & 0xC0) != 0x80) ++units;  // not a continuation byte
    if (lead >= 0xF0) ++units;           // a character of four bytes takes two units
  }
  return units;
}

void normalize_line_ends(std::string& text) {
  if (text.find('\r') == std::string::npos) return;
  std::size_t kept = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool before_line_feed = i + 1 < text.size() && text[i + 1] == '\n';
    if (text[i] == '\r' && before_line_feed) continue;
    text[kept++] = text[i] == '\r' ? '\n' : text[i];
  }
  text.resize(kept);
}

std::string quoted(std::string_view utf8) {
  constexpr int kShown = 64;
  std::string_view rest = utf8;
  for (int shown = 0; shown < kShown && !rest.empty(); ++shown) next_code(rest);
  std::string text = "\"";
  text.append(utf8.substr(0, utf8.size() - rest.size()));
  if (!rest.empty()) text.append("...");
  return text.append("\"");
}

std::string fold_case(std::string_view utf8) {
  std::string folded;
  folded.reserve(utf8.size());
  while (!utf8.empty()) {
    const auto code = static_cast<utf8proc_int32_t>(next_code(utf8));
    // Through upper to lower case: so variants that share an upper case meet, as in folding.
    append_utf8(static_cast<std::uint32_t>(utf8proc_tolower(utf8proc_toupper(code))), folded);
  }
  return folded;
}

bool equal_ignoring_case(std::string_view a, std::string_view b) {
  return a == b || fold_case(a) == fold_case(b);
}

}  // namespace engine
