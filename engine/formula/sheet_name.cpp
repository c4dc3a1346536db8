#include "engine/formula/sheet_name.h"

#include <utf8proc.h>

#include <cstdint>

#include "engine/formula/reference.h"
#include "engine/formula/scan.h"
#include "engine/text/utf8.h"

namespace engine::formula {
namespace {

bool is_letter_or_digit(std::uint32_t code) {
  switch (utf8proc_category(static_cast<utf8proc_int32_t>(code))) {
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

// Marks stand with the letters of some scripts.
bool is_mark(std::uint32_t code) {
  const auto category = utf8proc_category(static_cast<utf8proc_int32_t>(code));
  return category == UTF8PROC_CATEGORY_MN || category == UTF8PROC_CATEGORY_MC;
}

bool is_decimal_digit(std::uint32_t code) {
  return utf8proc_category(static_cast<utf8proc_int32_t>(code)) == UTF8PROC_CATEGORY_ND;
}

bool is_plain(std::string_view name) {
  while (!name.empty()) {
    if (name.front() == '_' || name.front() == '.') {
      name.remove_prefix(1);
      continue;
    }
    if (!is_letter_or_digit(take_character(name))) return false;
  }
  return true;
}

}  // namespace

bool looks_like_address(std::string_view name) {
  if (name.empty()) return false;
  if (const auto cell = parse_cell(name)) return cell->column < kAddressColumns;
  const char* const end = name.data() + name.size();
  int position = 0;  // is not looked at, so the size does not matter
  bool absolute = false;
  const char* p = name.data();
  if (const char* behind = scan_r1c1_part(p, end, 'R', 0, 1, position, absolute)) p = behind;
  if (p == end) return true;
  return scan_r1c1_part(p, end, 'C', 0, 1, position, absolute) == end;
}

std::string_view forbidden_in_name(std::string_view name) {
  std::string_view rest = name;
  while (!rest.empty()) {
    const std::string_view from = rest;
    const std::uint32_t code = take_character(rest);
    const bool first = from.size() == name.size();
    const bool allowed =
        code == '_' || code == '\\' ||
        (first ? is_letter_or_digit(code) && !is_decimal_digit(code)
               : code == '.' || code == '?' || is_letter_or_digit(code) || is_mark(code));
    if (!allowed) return from.substr(0, from.size() - rest.size());
  }
  return {};
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
