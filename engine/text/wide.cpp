#include "engine/text/wide.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cwchar>
#include <type_traits>

#include "engine/text/utf8.h"

#ifdef __SSE2__
#include <immintrin.h>
#endif
#if __has_include(<sys/platform/x86.h>)
#include <sys/platform/x86.h>
#endif

namespace engine {

namespace {

constexpr std::size_t kMostAtOnce = 16;  // elements that are narrowed in one step

// Wide text has 16 or 32 bits an element, as the system has it, whatever sign they have.
constexpr bool kShortElements = sizeof(wchar_t) == 2;

std::uint32_t unit_of(wchar_t element) {
  return static_cast<std::make_unsigned_t<wchar_t>>(element);
}

constexpr std::size_t kBlock = 8;  // elements of ASCII that are narrowed in one step

#ifdef __SSE2__

// Narrows a block if it is ASCII.
bool narrow_block(const wchar_t* text, char* out) {
  const __m128i zero = _mm_setzero_si128();
  const auto* const from = reinterpret_cast<const __m128i*>(text);
  __m128i units = _mm_loadu_si128(from);
  __m128i beyond = _mm_and_si128(units, _mm_set1_epi16(~0x7F));
  if constexpr (!kShortElements) {
    const __m128i high = _mm_loadu_si128(from + 1);
    beyond = _mm_and_si128(_mm_or_si128(units, high), _mm_set1_epi32(~0x7F));
    units = _mm_packs_epi32(units, high);
  }
  if (_mm_movemask_epi8(_mm_cmpeq_epi8(beyond, zero)) != 0xFFFF) return false;
  _mm_storel_epi64(reinterpret_cast<__m128i*>(out), _mm_packus_epi16(units, units));
  return true;
}

#else

bool narrow_block(const wchar_t* text, char* out) {
  if (!std::all_of(text, text + kBlock, [](wchar_t one) { return unit_of(one) < 0x80; }))
    return false;
  std::transform(text, text + kBlock, out, [](wchar_t one) { return static_cast<char>(one); });
  return true;
}

#endif

// Copies a text as far as it is ASCII and tells how far. The last block of a text begins amid what
// is copied already.
std::size_t narrow_ascii(const wchar_t* text, std::size_t size, char* out) {
  std::size_t done = 0;
  while (done + kBlock <= size && narrow_block(text + done, out + done)) done += kBlock;
  const bool is_near_end = size >= kBlock && size - done < kBlock;
  if (is_near_end && narrow_block(text + size - kBlock, out + size - kBlock)) return size;
  for (; done < size && unit_of(text[done]) < 0x80; ++done)
    out[done] = static_cast<char>(text[done]);
  return done;
}

// Writes the character at `at`, which may be two elements, and goes behind it.
void narrow_one(const wchar_t*& at, char*& out) {
  std::uint32_t code = unit_of(*at++);
  if (code >= 0x800 && (is_surrogate(code) || code > 0x10FFFF)) {
    const bool pair = is_high_surrogate(code) && is_low_surrogate(unit_of(*at));
    code = pair ? join_surrogates(code, unit_of(*at++)) : kReplacementCharacter;
  }
  out = put_utf8(out, code);
}

void append_wide(std::uint32_t code, wchar_t*& out) {
  if (code < 0x10000) {
    *out++ = static_cast<wchar_t>(code);
  } else {
    *out++ = static_cast<wchar_t>(0xD800 + ((code - 0x10000) >> 10));
    *out++ = static_cast<wchar_t>(0xDC00 + ((code - 0x10000) & 0x3FF));
  }
}

#ifdef __SSE2__

// How four characters, each with its bytes in a lane of four, last byte first, come to stand one
// behind the other. The number of an arrangement has a bit for each character of more than one
// byte and, four bits higher, of more than two.
struct Arrangement {
  std::array<std::uint8_t, 16> from{};  // places in the lanes
  std::uint8_t size = 0;
};

constexpr std::array<Arrangement, 256> kArrangements = [] {
  std::array<Arrangement, 256> all;
  for (unsigned number = 0; number < all.size(); ++number) {
    Arrangement& one = all[number];
    for (unsigned lane = 0; lane < 4; ++lane)
      for (unsigned left = 1 + (number >> lane & 1) + (number >> (lane + 4) & 1); left-- != 0;)
        one.from[one.size++] = static_cast<std::uint8_t>(lane * 4 + left);
  }
  return all;
}();

[[gnu::target("avx2")]] __m256i all_lanes(std::uint32_t value) {
  return _mm256_set1_epi32(static_cast<int>(value));
}

// Eight elements, each in a lane of 32 bits.
[[gnu::target("avx2")]] __m256i load_lanes(const wchar_t* at) {
  if constexpr (kShortElements)
    return _mm256_cvtepu16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(at)));
  else return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(at));
}

// A bit for each lane that a comparison found true.
[[gnu::target("avx2")]] unsigned lane_bits(__m256i lanes) {
  return static_cast<unsigned>(_mm256_movemask_ps(_mm256_castsi256_ps(lanes)));
}

[[gnu::target("avx2")]] void put_arranged(__m128i lanes, unsigned number, char*& out) {
  const Arrangement& arrangement = kArrangements[number];
  const auto* const from = reinterpret_cast<const __m128i*>(arrangement.from.data());
  const __m128i arranged = _mm_shuffle_epi8(lanes, _mm_loadu_si128(from));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out), arranged);
  out += arrangement.size;
}

// Narrows text up to nearly its end or a character beyond the basic plane, eight elements at a time
// and without a branch for each: texts beyond ASCII mix characters of different lengths. There must
// be room for kMaxUtf8 bytes an element.
[[gnu::target("avx2")]] void narrow_mixed(const wchar_t*& text, const wchar_t* end, char*& utf8) {
  constexpr std::ptrdiff_t kLanes = 8;
  // Bytes that are written could be the callers' pointers for all that the compiler knows.
  const wchar_t* at = text;
  char* out = utf8;
  for (; end - at >= kLanes; at += kLanes) {
    const __m256i code = load_lanes(at);
    const __m256i surrogate =
        _mm256_cmpeq_epi32(_mm256_and_si256(code, all_lanes(0xFFFFF800)), all_lanes(0xD800));
    const __m256i basic = _mm256_cmpeq_epi32(_mm256_srli_epi32(code, 16), _mm256_setzero_si256());
    if (lane_bits(_mm256_andnot_si256(surrogate, basic)) != 0xFF) break;
    const __m256i two = _mm256_cmpgt_epi32(code, all_lanes(0x7F));
    const __m256i three = _mm256_cmpgt_epi32(code, all_lanes(0x7FF));
    // Six bits of the character in each byte, and what marks the byte above them.
    const __m256i last = _mm256_and_si256(code, all_lanes(0x3F));
    const __m256i middle = _mm256_and_si256(_mm256_slli_epi32(code, 2), all_lanes(0x3F00));
    const __m256i first = _mm256_and_si256(_mm256_slli_epi32(code, 4), all_lanes(0xF0000));
    const __m256i marks =
        _mm256_or_si256(all_lanes(0xE08080), _mm256_andnot_si256(three, all_lanes(0x4000)));
    const __m256i longer =
        _mm256_or_si256(_mm256_or_si256(last, middle), _mm256_or_si256(first, marks));
    const __m256i bytes = _mm256_blendv_epi8(code, longer, two);
    const unsigned twos = lane_bits(two);
    const unsigned threes = lane_bits(three);
    put_arranged(_mm256_castsi256_si128(bytes), (twos & 0xF) | (threes & 0xF) << 4, out);
    put_arranged(_mm256_extracti128_si256(bytes, 1), twos >> 4 | (threes & 0xF0), out);
  }
  text = at;
  utf8 = out;
}

// At most sixteen elements, each in a lane of 32 bits; what is behind them is not looked at.
[[gnu::target("avx512bw,avx512vl")]] __m512i load_lanes(const wchar_t* at, std::ptrdiff_t count) {
  const auto used = static_cast<__mmask16>((1 << count) - 1);
  if constexpr (kShortElements) return _mm512_cvtepu16_epi32(_mm256_maskz_loadu_epi16(used, at));
  else return _mm512_maskz_loadu_epi32(used, at);
}

[[gnu::target("avx512f")]] __mmask16 lanes_above(__m512i code, int limit) {
  return _mm512_cmpgt_epu32_mask(code, _mm512_set1_epi32(limit));
}

// The same to the very end, sixteen elements at a time, where bytes of a register can be pushed
// together: that takes half the time on texts of which a fifth is beyond ASCII.
[[gnu::target("avx512bw,avx512vl,avx512vbmi2")]] void narrow_mixed_wide(const wchar_t*& text,
                                                                        const wchar_t* end,
                                                                        char*& utf8) {
  using Lanes [[gnu::vector_size(64)]] = std::uint32_t;
  constexpr std::ptrdiff_t kLanes = kMostAtOnce;
  const wchar_t* at = text;
  char* out = utf8;
  while (at != end) {
    const std::ptrdiff_t count = std::min(end - at, kLanes);
    const __m512i code = load_lanes(at, count);
    const auto lanes = reinterpret_cast<Lanes>(code);
    const auto high = reinterpret_cast<__m512i>(lanes & 0xFFFFF800);
    if (lanes_above(code, 0xFFFF) | _mm512_cmpeq_epi32_mask(high, _mm512_set1_epi32(0xD800))) break;
    // Each lane gets the bytes of its character in order, the last one third. Those that it does
    // not have stay zero, as do lanes behind the text, and are left out.
    const __m512i marks = _mm512_mask_mov_epi32(
        _mm512_set1_epi32(0x80C000), lanes_above(code, 0x7FF), _mm512_set1_epi32(0x8080E0));
    const Lanes longer =
        (lanes & 0x3F) << 16 | (lanes << 2 & 0x3F00) | lanes >> 12 | reinterpret_cast<Lanes>(marks);
    const __m512i bytes =
        _mm512_mask_mov_epi32(reinterpret_cast<__m512i>(lanes << 16), lanes_above(code, 0x7F),
                              reinterpret_cast<__m512i>(longer));
    const __mmask64 used = _mm512_test_epi8_mask(bytes, bytes);
    _mm512_storeu_si512(out, _mm512_maskz_compress_epi8(used, bytes));
    out += std::popcount(used);
    at += count;
  }
  text = at;
  utf8 = out;
}

// Widens eight characters if they are ASCII.
bool widen_eight(const char* at, wchar_t* out) {
  const __m128i zero = _mm_setzero_si128();
  const __m128i bytes = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(at));
  if (_mm_movemask_epi8(bytes) != 0) return false;
  const __m128i halves = _mm_unpacklo_epi8(bytes, zero);
  auto* const to = reinterpret_cast<__m128i*>(out);
  if constexpr (kShortElements) {
    _mm_storeu_si128(to, halves);
  } else {
    _mm_storeu_si128(to, _mm_unpacklo_epi16(halves, zero));
    _mm_storeu_si128(to + 1, _mm_unpackhi_epi16(halves, zero));
  }
  return true;
}

// Widens ASCII characters, up to nearly the first other one or to the end of a text of at least
// eight: the last step begins amid what is widened already.
void widen_ascii(const char*& at, const char* end, wchar_t*& out) {
  const char* const begin = at;
  for (; end - at >= 8; at += 8, out += 8)
    if (!widen_eight(at, out)) return;
  const std::ptrdiff_t rest = end - at;
  if (rest == 0 || end - begin < 8 || !widen_eight(end - 8, out + rest - 8)) return;
  at += rest;
  out += rest;
}

constexpr std::ptrdiff_t kMixedRoom = 8 + 2;  // bytes that a step of widen_mixed() looks at

// For each of the eight bytes: the character of at most three bytes that it begins.
__m128i characters_at(const char* at) {
  const __m128i zero = _mm_setzero_si128();
  const auto load = [zero](const char* from) {
    return _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(from)), zero);
  };
  const auto low_bits = [](__m128i halves, short bits) {
    return _mm_and_si128(halves, _mm_set1_epi16(bits));
  };
  const auto choose = [](__m128i which, __m128i yes, __m128i no) {
    return _mm_or_si128(_mm_and_si128(which, yes), _mm_andnot_si128(which, no));
  };
  const __m128i lead = load(at);
  const __m128i next = low_bits(load(at + 1), 0x3F);
  const __m128i two = _mm_or_si128(_mm_slli_epi16(low_bits(lead, 0x1F), 6), next);
  const __m128i three =
      _mm_or_si128(_mm_slli_epi16(lead, 12),
                   _mm_or_si128(_mm_slli_epi16(next, 6), low_bits(load(at + 2), 0x3F)));
  const __m128i longer = _mm_cmpgt_epi16(lead, _mm_set1_epi16(0xDF));
  const __m128i single = _mm_cmplt_epi16(lead, _mm_set1_epi16(0x80));
  return choose(single, lead, choose(longer, three, two));
}

// Widens text that is UTF-8 up to nearly its end, without a branch for each character: what begins
// at each of eight bytes is worked out, and what begins at no character's first byte is written
// over by what follows.
void widen_mixed(const char*& at, const char* end, wchar_t*& out) {
  while (end - at >= kMixedRoom) {
    const __m128i bytes = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(at));
    const __m128i four = _mm_set1_epi8(static_cast<char>(0xF0));
    if (_mm_movemask_epi8(_mm_cmpeq_epi8(_mm_max_epu8(bytes, four), bytes)) != 0) {
      // A character of four bytes, which takes two units, is among the next.
      std::uint32_t code = 0;
      at += decode_utf8(at, end, code);
      append_wide(code, out);
      continue;
    }
    std::array<std::uint16_t, 8> units{};
    _mm_storeu_si128(reinterpret_cast<__m128i*>(units.data()), characters_at(at));
    for (std::size_t i = 0; i < units.size(); ++i) {
      *out = static_cast<wchar_t>(units[i]);
      out += static_cast<signed char>(at[i]) >= -64 ? 1 : 0;
    }
    at += 8;
    // The next step begins with a character.
    while (at != end && static_cast<signed char>(*at) < -64) ++at;
  }
}

// What the processor can do. The C library has asked it and tells; the compiler's own way asks
// anew in every process, which takes a tenth of a millisecond in a virtual machine.
#ifdef CPU_FEATURE_ACTIVE
bool has_avx512() { return CPU_FEATURE_ACTIVE(AVX512_VBMI2) && CPU_FEATURE_ACTIVE(AVX512VL); }
bool has_avx2() { return CPU_FEATURE_ACTIVE(AVX2); }
#else
bool has_avx512() {
  return __builtin_cpu_supports("avx512vbmi2") != 0 && __builtin_cpu_supports("avx512vl") != 0;
}
bool has_avx2() { return __builtin_cpu_supports("avx2") != 0; }
#endif

#endif

// Appends as many elements as a buffer is sure to have room for. A pair may end behind the end.
void append_narrowed(const wchar_t*& at, const wchar_t* end, std::string& utf8) {
  constexpr std::ptrdiff_t kElements = 1024;
  // A step may write as far as its longest characters would go, whether they are there or not.
  std::array<char, (kElements + kMostAtOnce) * kMaxUtf8> buffer;  // not cleared
  char* out = buffer.data();
  if (end - at > kElements) end = at + kElements;
  while (at < end) {
#ifdef __SSE2__
    if (has_avx512()) narrow_mixed_wide(at, end, out);
    else if (has_avx2()) narrow_mixed(at, end, out);
    if (at == end) break;
#endif
    narrow_one(at, out);
  }
  utf8.append(buffer.data(), out);
}

}  // namespace

void to_utf8(const wchar_t* text, std::string& utf8) {
  const std::size_t size = text ? std::wcslen(text) : 0;
  utf8.resize(size);
  const std::size_t ascii = narrow_ascii(text, size, utf8.data());
  if (ascii == size) return;
  utf8.resize(ascii);
  const wchar_t* at = text + ascii;
  const wchar_t* const end = text + size;
  while (at != end) append_narrowed(at, end, utf8);
}

std::string to_utf8(const wchar_t* text) {
  std::string utf8;
  to_utf8(text, utf8);
  return utf8;
}

void to_wide(std::string_view utf8, std::wstring& wide) {
  // No character has more units than bytes.
  wide.resize(utf8.size());
  const char* at = utf8.data();
  const char* const end = at + utf8.size();
  wchar_t* out = wide.data();
#ifdef __SSE2__
  widen_ascii(at, end, out);
  if (end - at >= kMixedRoom && is_utf8({at, static_cast<std::size_t>(end - at)}))
    widen_mixed(at, end, out);
#endif
  utf8.remove_prefix(static_cast<std::size_t>(at - utf8.data()));
  while (!utf8.empty()) append_wide(take_character(utf8), out);
  wide.resize(static_cast<std::size_t>(out - wide.data()));
}

std::wstring to_wide(std::string_view utf8) {
  std::wstring wide;
  to_wide(utf8, wide);
  return wide;
}

}  // namespace engine
