// The data of the workloads: the same for every program that is compared.
//
// Every cell has a number k, from which everything else follows by exact 64-bit arithmetic, so
// that programs in other languages write the very same cells.
#pragma once

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

namespace bench {

inline std::uint64_t hash(std::uint64_t k) { return k * 2654435761U % 4294967296U; }

// Numbers of four kinds: integers, two decimals, six decimals, all digits that a double has.
inline double number(std::uint64_t k, int column) {
  const std::uint64_t h = hash(k);
  switch (column % 4) {
    case 0:
      return static_cast<double>(h % 100000);
    case 1:
      return static_cast<double>(h % 10000000) / 100;
    case 2:
      return static_cast<double>(h % 1000000007) / 1000000;
    default:
      return static_cast<double>(h) / 7;
  }
}

inline double date(std::uint64_t k) { return static_cast<double>(36526 + hash(k) % 9000); }

inline int repeated_entry(std::uint64_t k) { return static_cast<int>(hash(k) % 1000); }

// A thousand texts that occur again and again; every tenth needs escaping and several bytes a
// character.
inline std::vector<std::string> repeated_texts() {
  std::vector<std::string> texts;
  for (int entry = 0; entry < 1000; ++entry) {
    char text[40];
    if (entry % 10 == 0) std::snprintf(text, sizeof text, "Größe & Maß %04d", entry);
    else std::snprintf(text, sizeof text, "Category %04d", entry);
    texts.emplace_back(text);
  }
  return texts;
}

inline void append_padded(std::string& text, std::uint64_t value, unsigned base,
                          std::size_t digits) {
  text.append(digits, '0');
  for (auto digit = text.rbegin(); value != 0; value /= base)
    *digit++ = "0123456789ABCDEF"[value % base];
}

// A text that no other cell has, as printf makes it of "U%06d-%d-%08X" but quicker: what is
// measured shall be the writing of it.
inline std::string unique_text(int row, int column, std::uint64_t k) {
  std::string text = "U";
  append_padded(text, static_cast<std::uint64_t>(row), 10, 6);
  text += '-';
  text += std::to_string(column);
  text += '-';
  append_padded(text, hash(k), 16, 8);
  return text;
}

// A number without any pattern in k, unlike hash(): the finaliser of SplitMix64.
inline std::uint64_t mixed(std::uint64_t k) {
  k = (k + 1) * 0x9E3779B97F4A7C15U;
  k = (k ^ k >> 30) * 0xBF58476D1CE4E5B9U;
  k = (k ^ k >> 27) * 0x94D049BB133111EBU;
  return k ^ k >> 31;
}

// The first `count` of a shuffle of the cell numbers below `all`.
inline std::vector<std::uint32_t> shuffled_cells(std::size_t count, std::size_t all) {
  std::vector<std::uint32_t> cells(all);
  std::iota(cells.begin(), cells.end(), 0U);
  for (std::size_t i = 0; i < count; ++i) std::swap(cells[i], cells[i + mixed(i) % (all - i)]);
  cells.resize(count);
  return cells;
}

constexpr std::size_t kFormulaSize = 64;

// One of five formulas, relative references moved along with the row, as a terminated text of at
// most kFormulaSize. Written into a buffer of any character type, so that making the formulas costs
// little beside storing them.
template <typename Char>
void write_formula(int row, int column, Char* text) {
  // @ and a digit stand for the row whose number is that much above the cell's, from 0.
  constexpr const char* kPatterns[] = {
      "A@1+B@1*2",
      "SUM($A$1:C@9)",
      "IF(A@1>0,\"yes\",\"no\")",
      "Sheet2!B@7&\" \"&TEXT(C@1,\"0.00\")",
      "VLOOKUP(A@1,Data!$A$1:$F$500,3,FALSE)",
  };
  for (const char* next = kPatterns[column % 5]; *next != 0; ++next) {
    if (*next != '@') {
      *text++ = static_cast<Char>(*next);
      continue;
    }
    char digits[8];
    const auto end = std::to_chars(digits, digits + sizeof digits, row + (*++next - '0')).ptr;
    text = std::copy(digits, end, text);
  }
  *text = 0;
}

// Five thousand phrases of which long texts are made: 50 characters each, five words from a
// vocabulary of three thousand. Two of the ten characters of a word are beyond ASCII.
inline std::vector<std::string> phrases() {
  constexpr const char* kBeyondAscii[] = {"ä", "ö", "ü", "ß", "é", "è", "ñ",  "ç",
                                          "ø", "ž", "д", "я", "€", "…", "日", "本"};
  std::vector<std::string> words;
  for (std::uint64_t word = 0; word < 3000; ++word) {
    std::uint64_t choices = mixed(word);
    const auto choose = [&choices](std::uint64_t of) {
      return std::exchange(choices, choices / of) % of;
    };
    std::string text;
    for (int i = 0; i < 10; ++i) {
      if (i % 5 == 2) text += kBeyondAscii[choose(16)];
      // In the middle, so that no text begins or ends with a blank.
      else if (i == 5) text += ' ';
      else text += static_cast<char>('a' + choose(26));
    }
    words.push_back(text);
  }
  std::vector<std::string> made;
  for (std::uint64_t phrase = 0; phrase < 5000; ++phrase) {
    std::string text;
    for (std::uint64_t i = 0; i < 5; ++i) text += words[mixed(phrase * 5 + i) % words.size()];
    made.push_back(text);
  }
  return made;
}

// A text of 500 characters that no other row has, from the phrases above in any character type. The
// first two phrases tell the row.
template <typename String>
void make_long_text(int row, const std::vector<String>& phrases, String& text) {
  const auto number = static_cast<std::size_t>(row);
  text = phrases[number % phrases.size()];
  text += phrases[number / phrases.size()];
  for (std::size_t i = 2; i < 10; ++i) text += phrases[mixed(number * 10 + i) % phrases.size()];
}

}  // namespace bench
