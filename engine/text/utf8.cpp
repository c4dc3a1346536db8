#include "engine/text/utf8.h"

#include <array>
#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace engine {

namespace {

constexpr std::uint64_t kHighBits = 0x8080808080808080;

// Length of the sequence that `lead` begins, the bits that the lead gives, and the least character
// that needs so many bytes.
struct Sequence {
  std::size_t size;
  std::uint32_t bits;
  std::uint32_t least;
};

Sequence sequence_of(unsigned char lead) {
  if (lead >= 0xE0 && lead < 0xF0) return {3, lead & 0x0FU, 0x800};
  if (lead >= 0xC0 && lead < 0xE0) return {2, lead & 0x1FU, 0x80};
  if (lead >= 0xF0 && lead < 0xF8) return {4, lead & 0x07U, 0x10000};
  return {0, 0, 0};
}

#ifdef __SSE2__

__m128i byte(unsigned value) { return _mm_set1_epi8(static_cast<char>(value)); }
__m128i at_least(__m128i bytes, unsigned least) {
  return _mm_cmpeq_epi8(_mm_max_epu8(bytes, byte(least)), bytes);
}
__m128i equal(__m128i bytes, unsigned value) { return _mm_cmpeq_epi8(bytes, byte(value)); }

// The bytes that stand so many places before the sixteen.
template <int kCount>
__m128i back(__m128i bytes, __m128i before) {
  return _mm_or_si128(_mm_slli_si128(bytes, kCount), _mm_srli_si128(before, 16 - kCount));
}

// Not zero when the sixteen bytes hold one that cannot follow those before it. A sequence that
// their end cuts is the concern of the next sixteen.
int wrong_bytes(__m128i bytes, __m128i before) {
  const __m128i first = back<1>(bytes, before);
  const __m128i second = back<2>(bytes, before);
  const __m128i third = back<3>(bytes, before);
  const __m128i continues = _mm_cmplt_epi8(bytes, byte(0xC0));
  const __m128i must_continue = _mm_or_si128(
      at_least(first, 0xC0), _mm_or_si128(at_least(second, 0xE0), at_least(third, 0xF0)));
  // Leads of no sequence, and second bytes that would make one too long, a surrogate or too big.
  __m128i wrong = _mm_xor_si128(continues, must_continue);
  wrong = _mm_or_si128(wrong, _mm_or_si128(equal(bytes, 0xC0), equal(bytes, 0xC1)));
  wrong = _mm_or_si128(wrong, at_least(bytes, 0xF5));
  const auto after = [&](unsigned lead, __m128i second_byte) {
    wrong = _mm_or_si128(wrong, _mm_and_si128(equal(first, lead), second_byte));
  };
  after(0xE0, _mm_cmplt_epi8(bytes, byte(0xA0)));
  after(0xED, at_least(bytes, 0xA0));
  after(0xF0, _mm_cmplt_epi8(bytes, byte(0x90)));
  after(0xF4, at_least(bytes, 0x90));
  return _mm_movemask_epi8(wrong);
}

// Of sixteen bytes or more.
bool are_utf8_blocks(std::string_view text) {
  __m128i before = _mm_setzero_si128();
  int wrong = 0;
  const auto take = [&](const char* block) {
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(block));
    // Sixteen ASCII characters behind others of the kind have nothing that could be wrong.
    if (_mm_movemask_epi8(_mm_or_si128(bytes, before)) != 0) wrong |= wrong_bytes(bytes, before);
    before = bytes;
  };
  std::size_t at = 0;
  for (; text.size() - at >= sizeof before; at += sizeof before) take(text.data() + at);
  // The rest, and at least one zero behind it that shows a sequence cut off.
  std::array<char, sizeof before> rest{};
  std::memcpy(rest.data(), text.data() + at, text.size() - at);
  take(rest.data());
  return wrong == 0;
}

#endif

}  // namespace

void append_utf8(std::string& out, std::uint32_t code) {
  std::array<char, kMaxUtf8> bytes{};
  out.append(bytes.data(), put_utf8(bytes.data(), code));
}

std::size_t decode_utf8(const char* at, const char* end, std::uint32_t& code) {
  const auto lead = static_cast<unsigned char>(*at);
  if (lead < 0x80) {
    code = lead;
    return 1;
  }
  const auto [size, bits, least] = sequence_of(lead);
  if (size == 0 || size > static_cast<std::size_t>(end - at)) return 0;
  code = bits;
  for (std::size_t i = 1; i < size; ++i) {
    const auto next = static_cast<unsigned char>(at[i]);
    if ((next & 0xC0U) != 0x80U) return 0;
    code = code << 6 | (next & 0x3FU);
  }
  return code < least || code > 0x10FFFF || is_surrogate(code) ? 0 : size;
}

std::uint32_t take_character(std::string_view& utf8) {
  std::uint32_t code = 0;
  const std::size_t size = decode_utf8(utf8.data(), utf8.data() + utf8.size(), code);
  utf8.remove_prefix(size == 0 ? 1 : size);
  return size == 0 ? kReplacementCharacter : code;
}

bool is_utf8(std::string_view text) {
#ifdef __SSE2__
  if (text.size() >= sizeof(__m128i)) return are_utf8_blocks(text);
#endif
  const char* at = text.data();
  const char* const end = at + text.size();
  while (at != end) {
    std::uint64_t word = kHighBits;
    if (end - at >= 8) std::memcpy(&word, at, sizeof word);
    if ((word & kHighBits) == 0) {
      at += sizeof word;
      continue;
    }
    std::uint32_t code = 0;
    const std::size_t size = decode_utf8(at, end, code);
    if (size == 0) return false;
    at += size;
  }
  return true;
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

std::string_view first_characters(std::string_view utf8, std::size_t count) {
  std::string_view rest = utf8;
  for (; count != 0 && !rest.empty(); --count) take_character(rest);
  return utf8.substr(0, utf8.size() - rest.size());
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

}  // namespace engine
