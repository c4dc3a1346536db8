#include "engine/package/xml_text.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cstdint>
#include <cstring>

#include "engine/text/utf8.h"

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace engine::package {
namespace {

struct Reference {
  std::string_view name;
  char character;
};

constexpr Reference kReferences[] = {
    {"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}};

constexpr std::uint64_t kOnes = 0x0101010101010101;
constexpr std::uint64_t kHighBits = 0x8080808080808080;

// Sets the high bit of at least the first byte that equals `c`, and of none before it.
constexpr std::uint64_t bytes_equal(std::uint64_t word, char c) {
  const std::uint64_t difference = word ^ (kOnes * static_cast<unsigned char>(c));
  return (difference - kOnes) & ~difference & kHighBits;
}

std::uint64_t load_word(const char* at) {
  std::uint64_t word = 0;
  std::memcpy(&word, at, sizeof word);
  return word;
}

// `digits` is what stands between "&#" and ";".
bool append_numbered(std::string& out, std::string_view digits) {
  const int base = digits.starts_with('x') ? 16 : 10;
  if (base == 16) digits.remove_prefix(1);
  std::uint32_t c = 0;
  const char* const end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, c, base);
  if (error != std::errc() || stop != end || c == 0 || c > 0x10FFFF || is_surrogate(c)) {
    return false;
  }
  append_utf8(out, c);
  return true;
}

bool append_reference(std::string& out, std::string_view name) {
  if (name.starts_with('#')) return append_numbered(out, name.substr(1));
  const auto* const known =
      std::find_if(std::begin(kReferences), std::end(kReferences),
                   [name](const Reference& reference) { return reference.name == name; });
  if (known == std::end(kReferences)) return false;
  out += known->character;
  return true;
}

bool decode(std::string_view raw, std::string_view special, char line_end, std::string& out) {
  if (!is_utf8(raw)) return false;
  while (!raw.empty()) {
    const auto plain = std::min(raw.find_first_of(special), raw.size());
    out.append(raw.substr(0, plain));
    raw.remove_prefix(plain);
    if (raw.empty()) break;
    std::size_t used = 1;
    if (raw.front() == '&') {
      const auto end = raw.find(';');
      if (end == std::string_view::npos || !append_reference(out, raw.substr(1, end - 1))) {
        return false;
      }
      used = end + 1;
    } else {
      if (raw.starts_with("\r\n")) used = 2;
      out += line_end;
    }
    raw.remove_prefix(used);
  }
  return true;
}

using Escapes = std::array<const char*, 256>;

constexpr Escapes make_escapes(bool attribute) {
  Escapes escapes{};
  escapes['&'] = "&amp;";
  escapes['<'] = "&lt;";
  escapes['>'] = "&gt;";
  escapes['\r'] = "&#13;";
  if (attribute) {
    escapes['"'] = "&quot;";
    escapes['\n'] = "&#10;";
    escapes['\t'] = "&#9;";
  }
  return escapes;
}

constexpr Escapes kTextEscapes = make_escapes(false);
constexpr Escapes kAttributeEscapes = make_escapes(true);

void append_escaped(std::string& out, std::string_view text, const Escapes& escapes) {
  const char* run = text.data();
  const char* const end = run + text.size();
  for (const char* at = run; at != end; ++at) {
    const char* const escape = escapes[static_cast<unsigned char>(*at)];
    if (escape == nullptr) continue;
    out.append(run, at);
    out += escape;
    run = at + 1;
  }
  out.append(run, end);
}

bool utf16_to_utf8(std::string_view bytes, bool big_endian, std::string& out) {
  if (bytes.size() % 2 != 0) return false;
  const auto unit = [bytes, big_endian](std::size_t at) {
    const auto first = static_cast<unsigned char>(bytes[at]);
    const auto second = static_cast<unsigned char>(bytes[at + 1]);
    return static_cast<std::uint32_t>(big_endian ? first << 8 | second : second << 8 | first);
  };
  for (std::size_t at = 0; at < bytes.size(); at += 2) {
    std::uint32_t c = unit(at);
    if (is_surrogate(c)) {
      at += 2;
      if (is_low_surrogate(c) || at >= bytes.size()) return false;
      const auto low = unit(at);
      if (!is_low_surrogate(low)) return false;
      c = join_surrogates(c, low);
    }
    append_utf8(out, c);
  }
  return true;
}

}  // namespace

bool decode_xml_text(std::string_view raw, std::string& out) {
  return decode(raw, "&\r", '\n', out);
}

bool decode_xml_attribute(std::string_view raw, std::string& out) {
  return decode(raw, "&\r\n\t", ' ', out);
}

bool is_plain_xml(std::string_view raw) {
  std::size_t at = 0;
  for (; at + sizeof(std::uint64_t) <= raw.size(); at += sizeof(std::uint64_t)) {
    const auto word = load_word(raw.data() + at);
    if (((word & kHighBits) | bytes_equal(word, '&') | bytes_equal(word, '\r')) != 0) break;
  }
  const auto rest = raw.substr(at);
  return rest.find_first_of("&\r") == std::string_view::npos && is_utf8(rest);
}

RawText find_text_end(std::string_view raw) {
  RawText text;
  std::size_t at = 0;
#ifdef __SSE2__
  const auto equal = [](__m128i bytes, char c) { return _mm_cmpeq_epi8(bytes, _mm_set1_epi8(c)); };
  const auto bits = [](__m128i bytes) { return static_cast<unsigned>(_mm_movemask_epi8(bytes)); };
  for (; raw.size() - at >= sizeof(__m128i); at += sizeof(__m128i)) {
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(raw.data() + at));
    const unsigned ends = bits(equal(bytes, '<'));
    const unsigned before = ends == 0 ? 0xFFFFU : (ends & (0U - ends)) - 1;
    text.beyond_ascii |= (bits(bytes) & before) != 0;
    text.special |= (bits(_mm_or_si128(equal(bytes, '&'), equal(bytes, '\r'))) & before) != 0;
    text.underscore |= (bits(equal(bytes, '_')) & before) != 0;
    if (ends != 0) {
      text.size = at + static_cast<std::size_t>(std::countr_zero(ends));
      return text;
    }
  }
#endif
  for (; at < raw.size(); ++at) {
    const char c = raw[at];
    if (c == '<') {
      text.size = at;
      break;
    }
    text.beyond_ascii |= static_cast<signed char>(c) < 0;
    text.special |= c == '&' || c == '\r';
    text.underscore |= c == '_';
  }
  return text;
}

void append_xml_text(std::string& out, std::string_view text) {
  append_escaped(out, text, kTextEscapes);
}

char* write_xml_text(char* out, std::string_view text) {
  for (const char c : text) {
    const char* escape = kTextEscapes[static_cast<unsigned char>(c)];
    if (escape == nullptr) *out++ = c;
    else
      while (*escape != '\0') *out++ = *escape++;
  }
  return out;
}

void append_xml_attribute(std::string& out, std::string_view value) {
  append_escaped(out, value, kAttributeEscapes);
}

void declare_utf8(std::string& text) {
  if (!text.starts_with("<?xml")) return;
  const std::size_t end = text.find("?>");
  const std::size_t name = text.find("encoding");
  if (name >= end) return;
  const std::size_t open = text.find_first_of("\"'", name);
  if (open >= end) return;
  const std::size_t close = text.find(text[open], open + 1);
  if (close < end) text.replace(open + 1, close - open - 1, "UTF-8");
}

bool looks_like_utf16(std::string_view text) {
  if (text.size() < 2) return false;
  const auto first = text.substr(0, 2);
  return first == "\xFF\xFE" || first == "\xFE\xFF" || first == std::string_view("<\0", 2) ||
         first == std::string_view("\0<", 2);
}

bool xml_to_utf8(std::string& text) {
  if (looks_like_utf16(text)) {
    const bool big_endian = text[0] == '\xFE' || text[0] == '\0';
    const bool marked = text[0] != '<' && text[0] != '\0';
    std::string out;
    out.reserve(text.size() / 2);
    if (!utf16_to_utf8(std::string_view(text).substr(marked ? 2 : 0), big_endian, out)) {
      return false;
    }
    text = std::move(out);
    declare_utf8(text);
  } else if (text.starts_with("\xEF\xBB\xBF")) {
    text.erase(0, 3);
  }
  return true;
}

}  // namespace engine::package
