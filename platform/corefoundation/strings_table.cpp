#include "platform/corefoundation/strings_table.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace corefoundation {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

void append(std::u16string& text, char32_t character) {
  if (character < 0x10000) {
    text += static_cast<char16_t>(character);
    return;
  }
  text += static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10));
  text += static_cast<char16_t>(0xDC00 + ((character - 0x10000) & 0x3FF));
}

// How many bytes follow a lead byte, and which of its bits count; -1 for no lead byte.
std::pair<int, unsigned> lead(unsigned char byte) {
  if (byte < 0x80) return {0, 0x7F};
  if (byte >= 0xC2 && byte < 0xE0) return {1, 0x1F};
  if (byte >= 0xE0 && byte < 0xF0) return {2, 0x0F};
  if (byte >= 0xF0 && byte < 0xF5) return {3, 0x07};
  return {-1, 0};
}

// The character at the front, which is taken off. Of a broken one only the first byte is.
char32_t take_character(std::string_view& bytes) {
  constexpr char32_t kSmallest[] = {0, 0x80, 0x800, 0x10000};
  const auto first = static_cast<unsigned char>(bytes[0]);
  const auto [more, mask] = lead(first);
  char32_t character = first & mask;
  bool whole = more >= 0 && bytes.size() > static_cast<std::size_t>(more);
  for (int i = 1; whole && i <= more; ++i) {
    const auto byte = static_cast<unsigned char>(bytes[static_cast<std::size_t>(i)]);
    whole = (byte & 0xC0) == 0x80;
    character = (character << 6) | (byte & 0x3F);
  }
  whole = whole && character >= kSmallest[more] && character <= 0x10FFFF &&
          (character < 0xD800 || character > 0xDFFF);
  bytes.remove_prefix(whole ? static_cast<std::size_t>(more) + 1 : 1);
  return whole ? character : kReplacement;
}

std::u16string utf16_from_pairs(std::string_view bytes, bool big_endian) {
  std::u16string text;
  text.reserve(bytes.size() / 2);
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    const auto high = static_cast<unsigned char>(bytes[big_endian ? i : i + 1]);
    const auto low = static_cast<unsigned char>(bytes[big_endian ? i + 1 : i]);
    text += static_cast<char16_t>((high << 8) | low);
  }
  return text;
}

std::u16string decode(std::string_view bytes) {
  if (bytes.starts_with("\xFE\xFF")) return utf16_from_pairs(bytes.substr(2), true);
  if (bytes.starts_with("\xFF\xFE")) return utf16_from_pairs(bytes.substr(2), false);
  if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
  return utf16_from_utf8(bytes);
}

std::optional<unsigned> hexadecimal(char16_t unit) {
  if (unit >= u'0' && unit <= u'9') return static_cast<unsigned>(unit - u'0');
  if (unit >= u'a' && unit <= u'f') return static_cast<unsigned>(unit - u'a') + 10;
  if (unit >= u'A' && unit <= u'F') return static_cast<unsigned>(unit - u'A') + 10;
  return std::nullopt;
}

// A place in the text of a table. What it reads, it steps over; where the text is not what was
// asked for, nothing comes back.
class Cursor {
 public:
  explicit Cursor(std::u16string_view text) : rest_(text) {}

  bool at_end() const { return rest_.empty(); }

  // Blanks and comments. False when a comment has no end.
  bool skip_space() {
    while (!at_end()) {
      if (rest_[0] <= u' ') {
        rest_.remove_prefix(1);
      } else if (rest_.starts_with(u"//")) {
        rest_.remove_prefix(std::min(rest_.find(u'\n'), rest_.size()));
      } else if (rest_.starts_with(u"/*")) {
        const std::size_t end = rest_.find(u"*/", 2);
        if (end == std::u16string_view::npos) return false;
        rest_.remove_prefix(end + 2);
      } else {
        return true;
      }
    }
    return true;
  }

  bool take(char16_t unit) {
    if (!skip_space() || !rest_.starts_with(unit)) return false;
    rest_.remove_prefix(1);
    return true;
  }

  std::optional<std::u16string> string() {
    if (!skip_space() || at_end()) return std::nullopt;
    return rest_[0] == u'"' ? quoted() : bare();
  }

 private:
  std::optional<std::u16string> bare() {
    const auto is_word = [](char16_t unit) {
      return (unit >= u'0' && unit <= u'9') || (unit >= u'A' && unit <= u'Z') ||
             (unit >= u'a' && unit <= u'z') || unit == u'_' || unit == u'.' || unit == u'-';
    };
    std::size_t length = 0;
    while (length < rest_.size() && is_word(rest_[length])) ++length;
    if (length == 0) return std::nullopt;
    std::u16string word(rest_.substr(0, length));
    rest_.remove_prefix(length);
    return word;
  }

  std::optional<std::u16string> quoted() {
    rest_.remove_prefix(1);
    std::u16string text;
    while (!at_end()) {
      const char16_t unit = rest_[0];
      rest_.remove_prefix(1);
      if (unit == u'"') return text;
      if (unit != u'\\') {
        text += unit;
        continue;
      }
      const std::optional<char16_t> escaped = escape();
      if (!escaped) return std::nullopt;
      text += *escaped;
    }
    return std::nullopt;
  }

  // What follows a backslash. A character without a meaning of its own stands for itself.
  std::optional<char16_t> escape() {
    if (at_end()) return std::nullopt;
    const char16_t unit = rest_[0];
    rest_.remove_prefix(1);
    switch (unit) {
      case u'n':
        return u'\n';
      case u'r':
        return u'\r';
      case u't':
        return u'\t';
      case u'U':
        return unit_by_number();
      default:
        return unit;
    }
  }

  std::optional<char16_t> unit_by_number() {
    if (rest_.size() < 4) return std::nullopt;
    unsigned number = 0;
    for (int i = 0; i < 4; ++i) {
      const std::optional<unsigned> digit = hexadecimal(rest_[0]);
      if (!digit) return std::nullopt;
      number = number * 16 + *digit;
      rest_.remove_prefix(1);
    }
    return static_cast<char16_t>(number);
  }

  std::u16string_view rest_;
};

}  // namespace

std::u16string utf16_from_utf8(std::string_view bytes) {
  std::u16string text;
  text.reserve(bytes.size());
  while (!bytes.empty()) append(text, take_character(bytes));
  return text;
}

std::optional<StringsTable> parse_strings_table(std::string_view bytes) {
  const std::u16string text = decode(bytes);
  StringsTable table;
  Cursor cursor(text);
  while (cursor.skip_space() && !cursor.at_end()) {
    std::optional<std::u16string> key = cursor.string();
    if (!key || !cursor.take(u'=')) return std::nullopt;
    std::optional<std::u16string> value = cursor.string();
    if (!value || !cursor.take(u';')) return std::nullopt;
    table.emplace(std::move(*key), std::move(*value));
  }
  if (!cursor.at_end()) return std::nullopt;
  return table;
}

}  // namespace corefoundation
