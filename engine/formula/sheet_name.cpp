#include "engine/formula/sheet_name.h"

#include <utf8proc.h>

#include <algorithm>

#include "engine/formula/reference.h"
#include "engine/formula/scan.h"

namespace engine::formula {
namespace {

// Takes the next character off `rest`, folded. A byte that is no UTF-8 stands for itself, above all
// characters.
utf8proc_int32_t take_folded(std::string_view& rest) {
  const auto* const bytes = reinterpret_cast<const utf8proc_uint8_t*>(rest.data());
  utf8proc_int32_t c = -1;
  const auto length = utf8proc_iterate(bytes, static_cast<utf8proc_ssize_t>(rest.size()), &c);
  if (length <= 0) {
    c = 0x110000 + bytes[0];
    rest.remove_prefix(1);
    return c;
  }
  rest.remove_prefix(static_cast<std::size_t>(length));
  if (c == 0x130 || c == 0x131) return c;  // the Turkish i, dotted and dotless, have no case here
  // Characters fold to the lower case of their capital: so do the two small sigmas.
  return utf8proc_tolower(utf8proc_toupper(c));
}

bool is_letter_or_digit(utf8proc_int32_t c) {
  switch (utf8proc_category(c)) {
    case UTF8PROC_CATEGORY_LU:
    case UTF8PROC_CATEGORY_LL:
    case UTF8PROC_CATEGORY_LT:
    case UTF8PROC_CATEGORY_LM:
    case UTF8PROC_CATEGORY_LO:
    case UTF8PROC_CATEGORY_ND:
      return true;
    default:
      return false;
  }
}

bool is_plain(std::string_view name) {
  while (!name.empty()) {
    if (name.front() == '_' || name.front() == '.') {
      name.remove_prefix(1);
      continue;
    }
    if (!is_letter_or_digit(take_folded(name))) return false;
  }
  return true;
}

}  // namespace

bool same_name(std::string_view a, std::string_view b) {
  while (!a.empty() && !b.empty()) {
    if (a.front() == b.front() && static_cast<unsigned char>(a.front()) < 0x80) {
      a.remove_prefix(1);
      b.remove_prefix(1);
    } else if (take_folded(a) != take_folded(b)) {
      return false;
    }
  }
  return a.empty() && b.empty();
}

std::string folded_name(std::string_view name) {
  std::string key;
  while (!name.empty()) {
    const utf8proc_int32_t c = take_folded(name);
    if (c >= 0x110000) {
      key += static_cast<char>(c - 0x110000);
      continue;
    }
    utf8proc_uint8_t bytes[4];
    const auto length = utf8proc_encode_char(c, bytes);
    key.append(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(length));
  }
  return key;
}

bool looks_like_address(std::string_view name) {
  if (name.empty()) return false;
  if (const auto cell = parse_cell(name)) return cell->col < kXlsxGrid.cols;
  const char* const end = name.data() + name.size();
  int position = 0;
  bool absolute = false;
  const char* p = name.data();
  if (const char* behind = scan_r1c1_part(p, end, 'R', 0, kXlsxGrid.rows, position, absolute))
    p = behind;
  if (p == end) return true;
  return scan_r1c1_part(p, end, 'C', 0, kXlsxGrid.cols, position, absolute) == end;
}

std::string quote_sheet_name(std::string_view name) {
  const bool plain = !name.empty() && !is_digit(name.front()) && name.front() != '.' &&
                     is_plain(name) && !looks_like_address(name) && !equals_upper(name, "TRUE") &&
                     !equals_upper(name, "FALSE");
  if (plain) return std::string(name);
  std::string quoted = "'";
  for (const char c : name) quoted.append(c == '\'' ? 2 : 1, c);
  return quoted += '\'';
}

}  // namespace engine::formula
