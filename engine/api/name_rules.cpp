#include "engine/api/name_rules.h"

#include <algorithm>

#include "engine/api/messages.h"
#include "engine/formula/sheet_name.h"
#include "engine/text/fold.h"
#include "engine/text/utf8.h"

namespace engine::api {

namespace {

constexpr std::size_t kMaxName = 255;

// The first character that no sheet's name may hold; empty when there is none.
std::string_view forbidden_in_sheet_name(std::string_view name) {
  const auto is_forbidden = [](char c) {
    const auto code = static_cast<unsigned char>(c);
    return code < 0x20 || code == 0x7F ||
           std::string_view(":\\/?*[]").find(c) != std::string_view::npos;
  };
  const auto found = std::ranges::find_if(name, is_forbidden);
  return found == name.end() ? std::string_view() : name.substr(found - name.begin(), 1);
}

// Names that formulas or the file format give a meaning.
bool is_reserved(std::string_view name) {
  const std::string folded = fold_case(name);
  return folded == "true" || folded == "false" || folded == "print_area" ||
         folded == "print_titles" || folded.starts_with("_xlnm.") || folded.starts_with("_xlfn");
}

}  // namespace

bool check_sheet_name(BookContext& book, const std::string& name, const Sheet* renamed) {
  if (name.empty()) return book.refuse(false, messages::empty("sheet name"));
  const std::size_t length = utf16_length(name);
  const std::size_t limit = book.workbook().limits.sheet_name;
  if (length > limit) return book.refuse(false, messages::too_long("sheet name", length, limit));
  const std::string_view forbidden = forbidden_in_sheet_name(name);
  if (!forbidden.empty())
    return book.refuse(false, messages::sheet_name_character(name, forbidden));
  if (name.front() == '\'' || name.back() == '\'')
    return book.refuse(false, messages::sheet_name_apostrophe(name));
  if (equal_ignoring_case(name, "History"))
    return book.refuse(false, messages::sheet_name_reserved(name));
  const Sheet* other = book.workbook().find_sheet(name);
  return !other || other == renamed || book.refuse(false, messages::sheet_name_used(name));
}

bool check_defined_name(BookContext& book, const std::string& name) {
  if (name.empty()) return book.refuse(false, messages::empty("name"));
  const std::size_t length = utf16_length(name);
  if (length > kMaxName) return book.refuse(false, messages::too_long("name", length, kMaxName));
  const std::string_view forbidden = formula::forbidden_in_name(name);
  if (!forbidden.empty()) return book.refuse(false, messages::name_character(name, forbidden));
  if (formula::looks_like_address(name))
    return book.refuse(false, messages::name_like_address(name));
  return !is_reserved(name) || book.refuse(false, messages::name_reserved(name));
}

}  // namespace engine::api
