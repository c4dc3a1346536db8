// UTF-8: the form in which the engine holds every text.
//
// Whatever comes from a file may hold bytes that are no UTF-8. Each such byte counts as a character
// of its own, so that walking over a text always ends.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace engine {

// What stands for a character that cannot be told.
inline constexpr std::uint32_t kReplacementCharacter = 0xFFFD;

constexpr bool is_surrogate(std::uint32_t code) { return code >= 0xD800 && code < 0xE000; }
constexpr bool is_high_surrogate(std::uint32_t code) { return code >= 0xD800 && code < 0xDC00; }
constexpr bool is_low_surrogate(std::uint32_t code) { return code >= 0xDC00 && code < 0xE000; }

// The character that two surrogates stand for.
constexpr std::uint32_t join_surrogates(std::uint32_t high, std::uint32_t low) {
  return 0x10000 + ((high - 0xD800) << 10) + (low - 0xDC00);
}

// The most bytes that a character takes.
inline constexpr std::size_t kMaxUtf8 = 4;

// Writes a character, which must be none of the surrogates and at most U+10FFFF, and returns the
// end.
inline char* put_utf8(char* out, std::uint32_t code) {
  const auto put = [&](std::uint32_t byte) { *out++ = static_cast<char>(byte); };
  if (code < 0x80) {
    put(code);
    return out;
  }
  if (code < 0x800) {
    put(0xC0 | (code >> 6));
  } else {
    if (code < 0x10000) {
      put(0xE0 | (code >> 12));
    } else {
      put(0xF0 | (code >> 18));
      put(0x80 | ((code >> 12) & 0x3F));
    }
    put(0x80 | ((code >> 6) & 0x3F));
  }
  put(0x80 | (code & 0x3F));
  return out;
}
void append_utf8(std::string& out, std::uint32_t code);

// The number of bytes of the character at `at`, which becomes `code`; 0 when they are not UTF-8.
std::size_t decode_utf8(const char* at, const char* end, std::uint32_t& code);

// Takes a character off the front of a text that is not empty. A byte that is no UTF-8 gives
// U+FFFD.
std::uint32_t take_character(std::string_view& utf8);

bool is_utf8(std::string_view text);

// The number of UTF-16 units, by which the interface and the formats count lengths.
std::size_t utf16_length(std::string_view utf8);

// The beginning of a text, at most so many characters long.
std::string_view first_characters(std::string_view utf8, std::size_t count);

// CR LF and CR become LF: the host ends lines with CR, a spreadsheet with LF.
void normalize_line_ends(std::string& text);

}  // namespace engine
