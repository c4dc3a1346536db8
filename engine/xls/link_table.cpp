#include "engine/xls/link_table.h"

#include "engine/formula/sheet_name.h"
#include "engine/workbook/sheet.h"

namespace engine::xls {

namespace {

constexpr std::string_view kLost = "#REF!";

// The prefix of sheets whose names may need apostrophes: they go around all of it.
std::string quoted(std::string_view book, std::string_view first, std::string_view last) {
  const bool plain = formula::quote_sheet_name(first) == first &&
                     (last.empty() || formula::quote_sheet_name(last) == last);
  std::string text(book);
  text += first;
  if (!last.empty()) text.append(":").append(last);
  if (plain) return text + "!";
  std::string result = "'";
  for (const char c : text) result.append(c == '\'' ? 2 : 1, c);
  return result + "'!";
}

}  // namespace

std::string LinkTable::prefix(std::uint16_t entry) const {
  if (entry >= entries.size() || entries[entry].book >= books.size()) return std::string(kLost);
  const auto& [book_number, first, last] = entries[entry];
  const LinkedBook& book = books[book_number];
  if (book.kind == LinkedBook::Kind::kOwn) {
    const Sheet* from = sheet(first);
    const Sheet* to = sheet(last);
    if (!from || !to) return std::string(kLost);
    return quoted("", from->name(), from == to ? "" : to->name());
  }
  if (book.kind == LinkedBook::Kind::kAddIn) return {};
  const std::string number = "[" + std::to_string(book.number) + "]";
  if (first == -2) return number + "!";
  const auto count = static_cast<int>(book.sheets.size());
  if (first < 0 || last < 0 || first >= count || last >= count) return std::string(kLost);
  const std::string& from = book.sheets[static_cast<std::size_t>(first)];
  const std::string& to = book.sheets[static_cast<std::size_t>(last)];
  return quoted(number, from, first == last ? "" : to);
}

std::string LinkTable::name(std::uint16_t entry, std::uint32_t number) const {
  if (entry >= entries.size() || entries[entry].book >= books.size() || number == 0) return {};
  const LinkedBook& book = books[entries[entry].book];
  if (book.kind == LinkedBook::Kind::kOwn) {
    if (number > names.size()) return {};
    const NumberedName& named = names[number - 1];
    const Sheet* scope = named.sheet == 0 ? nullptr : sheet(named.sheet - 1);
    return scope ? quoted("", scope->name(), "") + named.name : named.name;
  }
  if (number > book.names.size()) return {};
  const LinkedBook::Name& named = book.names[number - 1];
  if (book.kind == LinkedBook::Kind::kAddIn) return named.name;
  const std::string own = "[" + std::to_string(book.number) + "]";
  const bool local = named.sheet > 0 && static_cast<std::size_t>(named.sheet) <= book.sheets.size();
  // An item of another program may be called by any text.
  const bool plain = formula::forbidden_in_name(named.name).empty();
  if (!local) return own + "!" + (plain ? named.name : formula::quote_sheet_name(named.name));
  return quoted(own, book.sheets[static_cast<std::size_t>(named.sheet) - 1], "") + named.name;
}

std::string LinkTable::name(std::uint32_t number, const Sheet* from) const {
  if (number == 0 || number > names.size()) return {};
  const NumberedName& named = names[number - 1];
  const Sheet* scope = named.sheet == 0 ? nullptr : sheet(named.sheet - 1);
  return scope && from && scope != from ? quoted("", scope->name(), "") + named.name : named.name;
}

}  // namespace engine::xls
