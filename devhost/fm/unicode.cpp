#include "devhost/fm/unicode.h"

#include <utf8proc.h>

#include <cstddef>

namespace devhost {
namespace {

constexpr utf8proc_int32_t kReplacement = 0xFFFD;

bool is_high_surrogate(char16_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool is_low_surrogate(char16_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

void append(std::u16string& text, utf8proc_int32_t character) {
  append_character(text, static_cast<char32_t>(character));
}

// The character at the front, which is taken off.
utf8proc_int32_t take_character(std::u16string_view& text) {
  const auto character = static_cast<utf8proc_int32_t>(first_character(text));
  text.remove_prefix(character_length(text));
  return character;
}

template <typename Change>
std::u16string changed(std::u16string_view text, Change change) {
  std::u16string result;
  result.reserve(text.size());
  while (!text.empty()) append(result, change(take_character(text)));
  return result;
}

}  // namespace

std::size_t character_length(std::u16string_view text) {
  return text.size() > 1 && is_high_surrogate(text[0]) && is_low_surrogate(text[1]) ? 2 : 1;
}

void append_character(std::u16string& text, char32_t character) {
  if (character < 0x10000) {
    text += static_cast<char16_t>(character);
    return;
  }
  text += static_cast<char16_t>(0xD800 + (((character - 0x10000) >> 10) & 0x3FF));
  text += static_cast<char16_t>(0xDC00 + ((character - 0x10000) & 0x3FF));
}

char32_t first_character(std::u16string_view text) {
  if (character_length(text) == 1) return text[0];
  return 0x10000 + ((char32_t{text[0]} - 0xD800) << 10) + (char32_t{text[1]} - 0xDC00);
}

std::size_t utf8_length(std::u16string_view character) {
  if (character.size() == 2) return 4;
  if (character[0] < 0x80) return 1;
  return character[0] < 0x800 ? 2 : 3;
}

std::u16string utf16_from_utf8(std::string_view bytes) {
  std::u16string text;
  text.reserve(bytes.size());
  while (!bytes.empty()) {
    utf8proc_int32_t character = kReplacement;
    const utf8proc_ssize_t used = utf8proc_iterate(
        static_cast<const utf8proc_uint8_t*>(static_cast<const void*>(bytes.data())),
        static_cast<utf8proc_ssize_t>(bytes.size()), &character);
    append(text, used > 0 ? character : kReplacement);
    bytes.remove_prefix(used > 0 ? static_cast<std::size_t>(used) : 1);
  }
  return text;
}

std::string utf8_from_utf16(std::u16string_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  while (!text.empty()) {
    utf8proc_int32_t character = take_character(text);
    if (character >= 0xD800 && character < 0xE000) character = kReplacement;
    utf8proc_uint8_t encoded[4] = {};
    const utf8proc_ssize_t length = utf8proc_encode_char(character, encoded);
    bytes.append(encoded, encoded + length);
  }
  return bytes;
}

std::filesystem::path path_from_utf8(std::string_view bytes) {
  return std::u8string(bytes.begin(), bytes.end());
}

std::string utf8_from_path(const std::filesystem::path& path) {
  const std::u8string bytes = path.u8string();
  return {bytes.begin(), bytes.end()};
}

// The sharp s has a capital of its own, which nobody expects.
std::u16string to_upper(std::u16string_view text) {
  return changed(text, [](utf8proc_int32_t character) {
    return character == 0xDF ? character : utf8proc_toupper(character);
  });
}

std::u16string to_lower(std::u16string_view text) { return changed(text, utf8proc_tolower); }

int compare_ignoring_case(std::u16string_view left, std::u16string_view right) {
  while (!left.empty() && !right.empty()) {
    const utf8proc_int32_t a = utf8proc_tolower(take_character(left));
    const utf8proc_int32_t b = utf8proc_tolower(take_character(right));
    if (a != b) return a < b ? -1 : 1;
  }
  return static_cast<int>(!left.empty()) - static_cast<int>(!right.empty());
}

}  // namespace devhost
