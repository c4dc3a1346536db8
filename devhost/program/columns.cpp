#include "devhost/program/columns.h"

#include <utf8proc.h>

#include <cstddef>
#include <cstdint>

#include "devhost/fm/unicode.h"

namespace devhost {
namespace {

constexpr char16_t kEllipsis = u'…';

int width_of(char32_t character) {
  return utf8proc_charwidth(static_cast<std::int32_t>(character));
}

char32_t harmless(char32_t character) {
  if (character == U'\n' || character == U'\r' || character == U'\t') return character;
  const bool is_control = character < 0x20 || (character >= 0x7F && character < 0xA0);
  // Marks that turn the direction of what follows, the rest of the line included.
  const bool turns =
      (character >= 0x202A && character <= 0x202E) || (character >= 0x2066 && character <= 0x2069);
  const bool is_half = character >= 0xD800 && character <= 0xDFFF;
  return is_control || turns || is_half ? 0xFFFD : character;
}

}  // namespace

std::u16string harmless(std::u16string_view text) {
  std::u16string out;
  for (; !text.empty(); text.remove_prefix(character_length(text))) {
    append_character(out, harmless(first_character(text)));
  }
  return out;
}

std::u16string on_one_line(std::u16string_view text) {
  std::u16string out;
  char16_t before = u'\0';
  for (const char16_t unit : harmless(text)) {
    const bool is_end = unit == u'\r' || (unit == u'\n' && before != u'\r');
    if (is_end) out += u'↵';
    else if (unit == u'\t') out += u' ';
    else if (unit != u'\n') out += unit;
    before = unit;
  }
  return out;
}

int columns_of(std::u16string_view text) {
  int columns = 0;
  for (; !text.empty(); text.remove_prefix(character_length(text))) {
    columns += width_of(first_character(text));
  }
  return columns;
}

std::u16string cut_to(std::u16string_view text, int columns) {
  if (columns_of(text) <= columns) return std::u16string(text);
  // Marks without a width stay with the character that they belong to.
  std::size_t length = 0;
  for (int used = 1; length < text.size(); length += character_length(text.substr(length))) {
    used += width_of(first_character(text.substr(length)));
    if (used > columns) break;
  }
  std::u16string out(text.substr(0, length));
  if (columns > 0) out += kEllipsis;
  return out;
}

std::u16string fitted(std::u16string_view text, int columns, bool at_the_right) {
  std::u16string out = cut_to(text, columns);
  const int missing = columns - columns_of(out);
  if (missing > 0) {
    out.insert(at_the_right ? 0 : out.size(), static_cast<std::size_t>(missing), u' ');
  }
  return out;
}

}  // namespace devhost
