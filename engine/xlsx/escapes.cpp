#include "engine/xlsx/escapes.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <optional>

#include "engine/package/xml_text.h"
#include "engine/text/utf8.h"

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace engine::xlsx {

namespace {

constexpr std::size_t kEscapeSize = 7;  // _xHHHH_

int hex_digit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// The unit that an escape at the beginning of the text stands for.
std::optional<std::uint32_t> escaped_unit(std::string_view text) {
  if (text.size() < kEscapeSize || text[0] != '_' || text[1] != 'x' || text[6] != '_')
    return std::nullopt;
  std::uint32_t unit = 0;
  for (const char c : text.substr(2, 4)) {
    const int digit = hex_digit(c);
    if (digit < 0) return std::nullopt;
    unit = unit * 16 + static_cast<std::uint32_t>(digit);
  }
  return unit;
}

void append_escaped(std::string& out, std::uint32_t unit) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  out.append("_x");
  for (int shift = 12; shift >= 0; shift -= 4) out.push_back(kDigits[(unit >> shift) & 15]);
  out.push_back('_');
}

// The unit that has to be escaped at the beginning of the text: a control character, an underscore
// that begins what would read as an escape, or one of the two last units, which are no characters.
std::optional<std::uint32_t> unit_to_escape(std::string_view text) {
  const char c = text[0];
  if (c >= 0 && c < ' ') {
    const bool allowed = c == '\t' || c == '\n';
    return allowed ? std::nullopt : std::optional<std::uint32_t>(static_cast<std::uint32_t>(c));
  }
  // The escape of U+0000 is read as the characters that it consists of, so they need none.
  if (c == '_' && escaped_unit(text).value_or(0) != 0) return '_';
  if (c == '\xEF' && text.starts_with("\xEF\xBF\xBE")) return 0xFFFE;
  if (c == '\xEF' && text.starts_with("\xEF\xBF\xBF")) return 0xFFFF;
  return std::nullopt;
}

// Whether either layer may have to write a character in another way.
constexpr bool is_special(char c) {
  return (c >= 0 && c < ' ') || c == '&' || c == '<' || c == '>' || c == '_' || c == '\xEF';
}

#ifdef __SSE2__

// Marks the bytes that are such characters.
__m128i special_bytes(__m128i bytes) {
  const auto equal = [bytes](char c) { return _mm_cmpeq_epi8(bytes, _mm_set1_epi8(c)); };
  const __m128i controls = _mm_cmpeq_epi8(_mm_min_epu8(bytes, _mm_set1_epi8(' ' - 1)), bytes);
  const __m128i signs = _mm_or_si128(_mm_or_si128(equal('&'), equal('<')), equal('>'));
  const __m128i others = _mm_or_si128(equal('_'), equal('\xEF'));
  return _mm_or_si128(controls, _mm_or_si128(signs, others));
}

// A bit for each of them.
unsigned special_bits(__m128i bytes) {
  return static_cast<unsigned>(_mm_movemask_epi8(special_bytes(bytes)));
}

#endif

// The length of a text up to its first special character.
std::size_t plain_length(std::string_view text) {
  std::size_t at = 0;
#ifdef __SSE2__
  constexpr std::size_t kBlock = sizeof(__m128i);
  const auto load = [text](std::size_t begin) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(text.data() + begin));
  };
  // Long texts mostly hold none: there four blocks are asked at once.
  for (; text.size() - at >= 4 * kBlock; at += 4 * kBlock) {
    const auto two = [load](std::size_t begin) {
      return _mm_or_si128(special_bytes(load(begin)), special_bytes(load(begin + kBlock)));
    };
    if (_mm_movemask_epi8(_mm_or_si128(two(at), two(at + 2 * kBlock))) != 0) break;
  }
  if (text.size() >= kBlock) {
    // The last block ends with the text and may overlap the one before.
    const std::size_t last = text.size() - kBlock;
    for (at = std::min(at, last);; at = std::min(at + kBlock, last)) {
      const unsigned special = special_bits(load(at));
      if (special != 0) return at + static_cast<std::size_t>(std::countr_zero(special));
      if (at == last) return text.size();
    }
  }
  if (text.size() >= kBlock / 2) {
    const auto half = [](const char* begin) {
      return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(begin));
    };
    const char* const last = text.data() + text.size() - kBlock / 2;
    if (special_bits(_mm_unpacklo_epi64(half(text.data()), half(last))) == 0) return text.size();
  }
#endif
  while (at < text.size() && !is_special(text[at])) ++at;
  return at;
}

}  // namespace

std::string escape(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  while (!text.empty()) {
    const auto unit = unit_to_escape(text);
    if (unit) append_escaped(out, *unit);
    else out.push_back(text[0]);
    text.remove_prefix(unit && *unit >= 0xFFFE ? 3 : 1);
  }
  return out;
}

void append_text(std::string& out, std::string_view text) {
  for (;;) {
    const std::size_t plain = plain_length(text);
    out.append(text, 0, plain);
    text.remove_prefix(plain);
    if (text.empty()) return;
    const auto unit = unit_to_escape(text);
    if (unit) append_escaped(out, *unit);
    else package::append_xml_text(out, text.substr(0, 1));
    text.remove_prefix(unit && *unit >= 0xFFFE ? 3 : 1);
  }
}

bool is_plain_text(std::string_view text) { return plain_length(text) == text.size(); }

std::string unescape(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  while (!text.empty()) {
    const std::size_t next = text.find("_x");
    out.append(text.substr(0, next));
    if (next == std::string_view::npos) break;
    text.remove_prefix(next);
    const auto unit = escaped_unit(text);
    if (!unit || *unit == 0) {
      out.push_back('_');
      text.remove_prefix(1);
      continue;
    }
    text.remove_prefix(kEscapeSize);
    std::uint32_t code = *unit;
    if (is_surrogate(code)) {
      const auto low = is_high_surrogate(code) ? escaped_unit(text) : std::nullopt;
      const bool paired = low && is_low_surrogate(*low);
      code = paired ? join_surrogates(code, *low) : kReplacementCharacter;
      if (paired) text.remove_prefix(kEscapeSize);
    }
    append_utf8(out, code);
  }
  return out;
}

}  // namespace engine::xlsx
