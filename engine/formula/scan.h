// Lexical pieces that the parser and the address functions share.
//
// A scan_ function reads one piece at `p` and gives the place behind it, or null when the piece is
// not there.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "engine/formula/reference.h"

namespace engine::formula {

// Where addresses end for the grammar, whatever the grid: XFD1 is an address, past the end of a
// smaller sheet perhaps, while XFE1 and YTD2024 are names.
inline constexpr int kAddressColumns = 16384;

// Brackets and signs may nest this deep, well beyond the 64 levels of spreadsheet programs; the
// bound keeps the parser's recursion off the end of the stack.
inline constexpr int kMaxDepth = 256;

inline constexpr std::uint8_t kLetter = 1;
inline constexpr std::uint8_t kDigit = 2;
inline constexpr std::uint8_t kOtherWord = 4;  // _ . \ ? and every byte of a non-ASCII character
inline constexpr std::uint8_t kBlank = 8;

inline constexpr std::array<std::uint8_t, 256> kCharClasses = [] {
  std::array<std::uint8_t, 256> classes{};
  for (std::size_t c = 'A'; c <= 'Z'; ++c) classes[c] = classes[c + 32] = kLetter;
  for (std::size_t c = '0'; c <= '9'; ++c) classes[c] = kDigit;
  for (std::size_t c = 0x80; c <= 0xFF; ++c) classes[c] = kOtherWord;
  for (const unsigned char c : {'_', '.', '\\', '?'}) classes[c] = kOtherWord;
  for (const unsigned char c : {' ', '\t', '\n', '\r'}) classes[c] = kBlank;
  return classes;
}();

inline std::uint8_t char_class(char c) { return kCharClasses[static_cast<unsigned char>(c)]; }
inline bool is_letter(char c) { return (char_class(c) & kLetter) != 0; }
inline bool is_digit(char c) { return (char_class(c) & kDigit) != 0; }
inline bool is_blank(char c) { return (char_class(c) & kBlank) != 0; }
inline bool is_word(char c) { return (char_class(c) & (kLetter | kDigit | kOtherWord)) != 0; }

// Equal but for the case of ASCII letters; `upper_case` is written in capitals.
bool equals_upper(std::string_view text, std::string_view upper_case);

// $A, $1 and $A$1. Columns of up to four letters and rows of up to nine digits are read, so that
// what lies past the grid can be told from what is no address.
inline const char* scan_column(const char* p, const char* end, int& column, bool& absolute) {
  absolute = p != end && *p == '$';
  if (absolute) ++p;
  const char* const start = p;
  int number = 0;
  for (; p != end && is_letter(*p); ++p) {
    if (p - start == 4) return nullptr;
    number = number * 26 + (*p & 0x1F);  // 1 for A in either case
  }
  column = number - 1;
  return p == start ? nullptr : p;
}
inline const char* scan_row(const char* p, const char* end, int& row, bool& absolute) {
  absolute = p != end && *p == '$';
  if (absolute) ++p;
  const char* const start = p;
  int number = 0;
  for (; p != end && is_digit(*p); ++p) {
    if (p - start == 9) return nullptr;
    number = number * 10 + (*p - '0');
  }
  row = number - 1;
  return p == start || *start == '0' ? nullptr : p;
}
const char* scan_cell(const char* p, const char* end, CellReference& cell);

// R, R5 or R[-2] (`letter` is 'R' or 'C') as position and flag; offsets count from `base` and wrap
// at `size`.
const char* scan_r1c1_part(const char* p, const char* end, char letter, int base, int size,
                           int& position, bool& absolute);

}  // namespace engine::formula
