#include "engine/text/fold.h"

#include <utf8proc.h>

#include <cstdint>

#include "engine/text/utf8.h"

namespace engine {

namespace {

// Above all characters: a byte that is no UTF-8.
constexpr std::uint32_t kFirstByte = 0x110000;

constexpr std::uint32_t kDottedCapitalI = 0x130;
constexpr std::uint32_t kDotlessSmallI = 0x131;

// Takes the next character off a text, folded.
std::uint32_t take_folded(std::string_view& rest) {
  const char first = rest.front();
  if (static_cast<unsigned char>(first) < 0x80) {
    rest.remove_prefix(1);
    return static_cast<unsigned char>(lower_ascii(first));
  }
  std::uint32_t code = 0;
  const std::size_t size = decode_utf8(rest.data(), rest.data() + rest.size(), code);
  if (size == 0) code = kFirstByte + static_cast<unsigned char>(rest.front());
  rest.remove_prefix(size == 0 ? 1 : size);
  if (size == 0 || code == kDottedCapitalI || code == kDotlessSmallI) return code;
  // Characters fold to the lower case of their capital: so do the two small sigmas.
  return static_cast<std::uint32_t>(
      utf8proc_tolower(utf8proc_toupper(static_cast<utf8proc_int32_t>(code))));
}

}  // namespace

std::string fold_case(std::string_view utf8) {
  std::string folded;
  folded.reserve(utf8.size());
  while (!utf8.empty()) {
    const std::uint32_t code = take_folded(utf8);
    if (code < 0x80) folded.push_back(static_cast<char>(code));
    else if (code >= kFirstByte) folded.push_back(static_cast<char>(code - kFirstByte));
    else append_utf8(folded, code);
  }
  return folded;
}

std::string upper_case(std::string_view utf8) {
  std::string upper;
  while (!utf8.empty()) {
    const std::uint32_t code = take_character(utf8);
    append_utf8(upper,
                static_cast<std::uint32_t>(utf8proc_toupper(static_cast<utf8proc_int32_t>(code))));
  }
  return upper;
}

bool equal_ignoring_case(std::string_view a, std::string_view b) {
  while (!a.empty() && !b.empty()) {
    const bool is_ascii = static_cast<unsigned char>(a.front() | b.front()) < 0x80;
    if (is_ascii && lower_ascii(a.front()) == lower_ascii(b.front())) {
      a.remove_prefix(1);
      b.remove_prefix(1);
    } else if (is_ascii || take_folded(a) != take_folded(b)) {
      return false;
    }
  }
  return a.empty() && b.empty();
}

std::string lower_ascii(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) c = lower_ascii(c);
  return lower;
}

}  // namespace engine
