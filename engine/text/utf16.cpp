#include "engine/text/utf16.h"

#include <algorithm>
#include <cstdint>

#include "engine/text/utf8.h"

namespace engine {

namespace {

std::uint32_t unit_at(std::string_view bytes, std::size_t at) {
  const auto low = static_cast<unsigned char>(bytes[at]);
  const auto high = static_cast<unsigned char>(bytes[at + 1]);
  return static_cast<std::uint32_t>(low | high << 8);
}

}  // namespace

void append_utf16(std::string& utf8, std::string_view bytes) {
  for (std::size_t at = 0; at + 2 <= bytes.size(); at += 2) {
    std::uint32_t code = unit_at(bytes, at);
    if (is_surrogate(code)) {
      const bool has_low = is_high_surrogate(code) && at + 4 <= bytes.size() &&
                           is_low_surrogate(unit_at(bytes, at + 2));
      code = has_low ? join_surrogates(code, unit_at(bytes, at + 2)) : kReplacementCharacter;
      if (has_low) at += 2;
    }
    append_utf8(utf8, code);
  }
}

void append_latin1(std::string& utf8, std::string_view bytes) {
  const auto is_ascii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
  while (!bytes.empty()) {
    const auto end = std::ranges::find_if_not(bytes, is_ascii);
    utf8.append(bytes.begin(), end);
    bytes.remove_prefix(static_cast<std::size_t>(end - bytes.begin()));
    if (bytes.empty()) return;
    append_utf8(utf8, static_cast<unsigned char>(bytes.front()));
    bytes.remove_prefix(1);
  }
}

std::string utf16_bytes(std::string_view utf8) {
  std::string bytes;
  const auto put = [&](std::uint32_t unit) {
    bytes += static_cast<char>(unit & 0xFF);
    bytes += static_cast<char>(unit >> 8);
  };
  while (!utf8.empty()) {
    const std::uint32_t code = take_character(utf8);
    if (code < 0x10000) {
      put(code);
    } else {
      put(0xD800 + ((code - 0x10000) >> 10));
      put(0xDC00 + ((code - 0x10000) & 0x3FF));
    }
  }
  return bytes;
}

}  // namespace engine
