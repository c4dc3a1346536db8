// Rows and cells in the form that nearly all have in files, recognised as one piece:
//
//   <row r="7" spans="1:3"><c r="A7"><v>12.5</v></c><c r="B7" s="3" t="s"><v>4</v></c></row>
//   <c r="C7"><f>A7*2</f><v>25</v></c><c r="D7" t="str"><f t="shared" si="0"/><v>yes</v></c>
//
// Constants are compared and digits are read eight bytes at a time. Every function needs room to
// read behind what it recognises: kMaxPlainCell bytes, and that many behind texts. What is of
// another form is left alone, for a reader that goes token by token.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "engine/package/xml_text.h"
#include "engine/text/number_text.h"

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace engine::xlsx {

inline constexpr std::size_t kMaxPlainCell = 192;  // bytes of the longest one, but for its texts

// Up to eight bytes that are compared as one word.
class Mark {
 public:
  constexpr Mark() = default;
  explicit constexpr Mark(std::string_view text) : size_(text.size()) {
    std::array<char, 8> bytes{};
    std::array<unsigned char, 8> mask{};
    for (std::size_t i = 0; i < text.size(); ++i) {
      bytes[i] = text[i];
      mask[i] = 0xFF;
    }
    bytes_ = std::bit_cast<std::uint64_t>(bytes);
    mask_ = std::bit_cast<std::uint64_t>(mask);
  }

  // Goes behind the text if it stands there.
  bool take(const char*& at) const {
    std::uint64_t word = 0;
    std::memcpy(&word, at, sizeof word);
    if (((word ^ bytes_) & mask_) != 0) return false;
    at += size_;
    return true;
  }

 private:
  std::uint64_t bytes_ = 0;
  std::uint64_t mask_ = 0;
  std::size_t size_ = 0;
};

inline bool is_plain_digit(char c) { return c >= '0' && c <= '9'; }

// What stands behind the letters of all addresses in a row: its number and the quote.
class RowMark {
 public:
  RowMark() = default;
  explicit RowMark(int row) {
    std::array<char, 8> text{};
    std::size_t begin = text.size() - 1;
    text[begin] = '"';
    for (int rest = row + 1; rest != 0 && begin != 0; rest /= 10)
      text[--begin] = static_cast<char>('0' + rest % 10);
    mark_ = Mark({&text[begin], text.size() - begin});
  }

  bool take(const char*& at) const { return mark_.take(at); }

 private:
  Mark mark_;
};

// Takes <c r=" and an address in the row, with the quote behind; gives the column from 0.
inline bool take_plain_address(const char*& at, const RowMark& row, int& column) {
  constexpr Mark kCell("<c r=\"");
  const char* end = at;
  if (!kCell.take(end)) return false;
  int letters = 0;
  const char* const begin = end;
  for (; *end >= 'A' && *end <= 'Z' && end - begin < 3; ++end) letters = letters * 26 + *end - '@';
  if (letters == 0 || !row.take(end)) return false;
  column = letters - 1;
  at = end;
  return true;
}

// The number that up to eight digits are, at least one; false when others are among them.
inline bool read_digits(const char* at, std::ptrdiff_t count, std::uint64_t& number) {
  if constexpr (std::endian::native == std::endian::little) {
    constexpr std::uint64_t kZeros = 0x3030303030303030;
    std::uint64_t word = 0;
    std::memcpy(&word, at, sizeof word);
    word = (word ^ kZeros) << (64 - 8 * count);
    if (((word | (word + 0x7676767676767676)) & 0x8080808080808080) != 0) return false;
    // Pairs, then fours, then eight: each step joins two neighbours.
    word = word * 10 + (word >> 8);
    constexpr std::uint64_t kPair = 0x000000FF000000FF;
    word = ((word & kPair) * (100 + (std::uint64_t{1000000} << 32)) +
            ((word >> 16) & kPair) * (1 + (std::uint64_t{10000} << 32))) >>
           32;
    number = word;
    return true;
  } else {
    number = 0;
    for (std::ptrdiff_t i = 0; i < count; ++i) {
      if (!is_plain_digit(at[i])) return false;
      number = number * 10 + static_cast<std::uint64_t>(at[i] - '0');
    }
    return true;
  }
}

// The same for up to sixteen.
inline bool read_long_digits(const char* at, std::ptrdiff_t count, std::uint64_t& number) {
  if (count <= 8) return read_digits(at, count, number);
  std::uint64_t high = 0;
  std::uint64_t low = 0;
  if (!read_digits(at, count - 8, high) || !read_digits(at + count - 8, 8, low)) return false;
  number = high * 100000000 + low;
  return true;
}

// Where in the next 32 bytes the first "<" stands, and the first "." before it, else the same; 32
// when there is none.
struct NumberEnds {
  std::ptrdiff_t point;
  std::ptrdiff_t end;
};

inline NumberEnds number_ends(const char* at) {
#ifdef __SSE2__
  const auto found = [at](char c) {
    const __m128i wanted = _mm_set1_epi8(c);
    const auto* const bytes = reinterpret_cast<const __m128i*>(at);
    const auto low = _mm_movemask_epi8(_mm_cmpeq_epi8(_mm_loadu_si128(bytes), wanted));
    const auto high = _mm_movemask_epi8(_mm_cmpeq_epi8(_mm_loadu_si128(bytes + 1), wanted));
    return static_cast<std::uint32_t>(low) | static_cast<std::uint32_t>(high) << 16;
  };
  const std::uint32_t ends = found('<');
  return {std::countr_zero(found('.') | ends), std::countr_zero(ends)};
#else
  NumberEnds ends{32, 0};
  for (; ends.end < 32 && at[ends.end] != '<'; ++ends.end)
    if (at[ends.end] == '.' && ends.point == 32) ends.point = ends.end;
  if (ends.point > ends.end) ends.point = ends.end;
  return ends;
#endif
}

// Takes a number up to the next "<". Whole numbers up to 2^53 and powers of ten up to 22 are exact
// as doubles, so their quotient is rounded once; what has more digits goes the long way.
inline bool take_plain_number(const char*& at, double& number) {
  constexpr std::array<double, 17> kPowers = {1e0, 1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7, 1e8,
                                              1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16};
  constexpr std::array<std::uint64_t, 17> kWholePowers = [] {
    std::array<std::uint64_t, 17> powers{1};
    for (std::size_t i = 1; i < powers.size(); ++i) powers[i] = powers[i - 1] * 10;
    return powers;
  }();
  constexpr std::uint64_t kMaxExact = std::uint64_t{1} << 53;
  const bool negative = *at == '-';
  const char* const digits = at + (negative ? 1 : 0);
  const auto [point, end] = number_ends(digits);
  if (end == 32) return false;
  const std::ptrdiff_t decimals = end - point - (point == end ? 0 : 1);
  if (point >= 1 && point <= 16 && point + decimals <= 17 && (decimals != 0 || point == end)) {
    std::uint64_t whole = 0;
    std::uint64_t part = 0;
    if (read_long_digits(digits, point, whole) &&
        (decimals == 0 || read_long_digits(digits + point + 1, decimals, part))) {
      whole = whole * kWholePowers[static_cast<std::size_t>(decimals)] + part;
      if (whole <= kMaxExact) {
        number = static_cast<double>(whole);
        if (decimals != 0) number /= kPowers[static_cast<std::size_t>(decimals)];
        if (negative && whole != 0) number = -number;
        at = digits + end;
        return true;
      }
    }
  }
  const std::string_view text(at, static_cast<std::size_t>(digits + end - at));
  if (text.empty() || text.front() <= ' ' || text.back() <= ' ') return false;
  const auto parsed = parse_number(text);
  if (!parsed) return false;
  number = *parsed;
  at = digits + end;
  return true;
}

// A text of the part as it stands there.
struct PlainText {
  std::string_view raw;
  package::RawText found;
};

// Takes what stands up to the next "<" when there is room behind it.
inline bool take_plain_text(const char*& at, const char* limit, PlainText& text) {
  text.found = package::find_text_end({at, static_cast<std::size_t>(limit - at)});
  const std::size_t size = text.found.size;
  if (size == std::string_view::npos) return false;
  text.raw = {at, size};
  at += size;
  return static_cast<std::size_t>(limit - at) >= kMaxPlainCell;
}

// A formula of a cell's own, or the number of a shared one whose text stands at another cell.
struct PlainFormula {
  PlainText text;
  bool is_shared = false;
  std::uint32_t shared = 0;
};

// Takes the f element.
inline bool take_plain_formula(const char*& at, const char* limit, PlainFormula& formula) {
  constexpr Mark kOwn("<f>");
  constexpr Mark kEnd("</f>");
  constexpr std::array kShared = {Mark("<f t=\"sh"), Mark("ared\" si"), Mark("=\"")};
  constexpr Mark kSharedEnd("\"/>");
  formula.is_shared = !kOwn.take(at);
  if (!formula.is_shared) return take_plain_text(at, limit, formula.text) && kEnd.take(at);
  for (const Mark& mark : kShared)
    if (!mark.take(at)) return false;
  const char* const begin = at;
  formula.shared = 0;
  for (; is_plain_digit(*at) && at - begin < 7; ++at)
    formula.shared = formula.shared * 10 + static_cast<std::uint32_t>(*at - '0');
  return at != begin && kSharedEnd.take(at);
}

struct PlainCell {
  enum class Value : std::uint8_t { kNone, kNumber, kSharedText, kOwnText };

  int column = 0;
  std::uint32_t style = 0;
  bool has_formula = false;
  Value value = Value::kNone;
  double number = 0;  // or that of the shared text
  PlainFormula formula;
  PlainText text;  // its own, which only a cell with a formula has here
};

// Takes a cell of the row: a number, a shared text, a formula with a number, a text or nothing, or
// nothing but a format.
inline bool take_plain_cell(const char*& at, const char* limit, const RowMark& row,
                            PlainCell& cell) {
  using Value = PlainCell::Value;
  constexpr Mark kStyle(" s=\"");
  constexpr Mark kSharedText(" t=\"s\"");
  constexpr Mark kOwnText(" t=\"str\"");
  constexpr Mark kNumber(" t=\"n\"");
  constexpr Mark kFormula("><f");
  constexpr Mark kValue("><v>");
  constexpr Mark kEnd("</v></c>");
  constexpr Mark kEmpty("/>");
  constexpr Mark kNoValue("</c>");
  const char* end = at;
  if (!take_plain_address(end, row, cell.column)) return false;
  cell.style = 0;
  cell.value = Value::kNumber;
  if (*end == ' ') {
    if (kStyle.take(end)) {
      const char* const begin = end;
      for (; is_plain_digit(*end) && end - begin < 7; ++end)
        cell.style = cell.style * 10 + static_cast<std::uint32_t>(*end - '0');
      if (end == begin || *end++ != '"') return false;
    }
    if (*end == ' ') {
      if (kSharedText.take(end)) cell.value = Value::kSharedText;
      else if (kOwnText.take(end)) cell.value = Value::kOwnText;
      else if (!kNumber.take(end)) return false;
    }
  }
  const char* formula = end;
  cell.has_formula = kFormula.take(formula);
  if (cell.has_formula) {
    if (cell.value == Value::kSharedText || !take_plain_formula(++end, limit, cell.formula))
      return false;
    if (kNoValue.take(end)) {
      cell.value = Value::kNone;
      at = end;
      return true;
    }
    --end;  // on the ">" of </f> or />
  } else if (cell.value == Value::kOwnText) {
    return false;
  }
  if (kValue.take(end)) {
    const bool taken = cell.value == Value::kOwnText ? take_plain_text(end, limit, cell.text)
                                                     : take_plain_number(end, cell.number);
    if (!taken || !kEnd.take(end)) return false;
  } else {
    if (cell.has_formula || cell.value != Value::kNumber || !kEmpty.take(end)) return false;
    cell.value = Value::kNone;
  }
  at = end;
  return true;
}

// Takes the end of a row and the beginning of another, whose number from 0 it gives.
inline bool take_plain_row(const char*& at, int rows, int& row) {
  constexpr Mark kEnd("</row>");
  constexpr Mark kRow("<row r=\"");
  constexpr Mark kSpans(" spans=\"");
  const char* end = at;
  if (!kEnd.take(end) || !kRow.take(end)) return false;
  int number = 0;
  const char* begin = end;
  for (; is_plain_digit(*end) && end - begin < 7; ++end) number = number * 10 + *end - '0';
  if (number == 0 || number > rows || *end++ != '"') return false;
  if (kSpans.take(end)) {
    begin = end;
    while ((is_plain_digit(*end) || *end == ':' || *end == ' ') && end - begin < 64) ++end;
    if (*end++ != '"') return false;
  }
  if (*end != '>') return false;
  row = number - 1;
  at = end + 1;
  return true;
}

// Finds the next tag from `at` on that matters to a pass over cells which nobody wants: any but the
// start tags of plain values and the end tags of what stands in a cell; `limit` when there is none.
inline const char* find_notable_tag(const char* at, const char* limit) {
#ifdef __SSE2__
  const auto equal = [](const char* from, char c) {
    return _mm_cmpeq_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(from)),
                          _mm_set1_epi8(c));
  };
  for (; at < limit; at += 16) {
    const __m128i value = _mm_and_si128(equal(at + 1, 'v'), equal(at + 2, '>'));
    const __m128i end = _mm_andnot_si128(equal(at + 2, 'r'), equal(at + 1, '/'));
    const auto found = static_cast<unsigned>(
        _mm_movemask_epi8(_mm_andnot_si128(_mm_or_si128(value, end), equal(at, '<'))));
    if (found != 0) return std::min(at + std::countr_zero(found), limit);
  }
  return limit;
#else
  const auto notable = [](const char* tag) {
    return tag[1] == '/' ? tag[2] == 'r' : tag[1] != 'v' || tag[2] != '>';
  };
  while (at < limit && (*at != '<' || !notable(at))) ++at;
  return at;
#endif
}

// Goes behind the start tag of a formula of its own, of an inline text or of what that consists of,
// and behind the end tag of a run.
inline bool take_plain_content(const char*& at) {
  constexpr Mark kFormula("<f");
  constexpr Mark kRunEnd("</r");
  constexpr std::array kOthers = {Mark("<is>"), Mark("<t>"), Mark("<t "), Mark("<r>")};
  const char* end = at;
  if (kFormula.take(end)) {
    const std::string_view tag(end, 96);
    const std::string_view attributes = tag.substr(0, tag.find('>'));
    const bool own = attributes.size() < tag.size() && attributes.find(" t=") == attributes.npos;
    if (!own || (*end != '>' && *end != ' ')) return false;
    at = end;
    return true;
  }
  if (kRunEnd.take(end) && (*end == '>' || *end == 'P')) {
    at = end;
    return true;
  }
  return std::ranges::any_of(kOthers, [&](const Mark& mark) { return mark.take(at); });
}

}  // namespace engine::xlsx
