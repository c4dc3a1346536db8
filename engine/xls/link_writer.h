// What the formulas of a book refer to beyond the cells of their own sheet, as it is written:
// books, entries of sheets, names. Formulas add what is missing.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "engine/workbook/workbook.h"
#include "engine/xls/record_writer.h"

namespace engine::xls {

class LinkWriter {
 public:
  explicit LinkWriter(const Workbook& book);

  // Number of the entry for a run of sheets; nothing when the book has no such sheet.
  std::optional<std::uint16_t> sheets(std::string_view first, std::string_view last);
  // Of one that refers to a sheet that is gone.
  std::uint16_t lost_sheet() { return entry(Book::kOwn, kLost, kLost); }
  // Of the book itself, for names of its sheets.
  std::uint16_t whole_book() { return entry(Book::kOwn, kNone, kNone); }

  // Number of a name, from 1, as a formula on a sheet means it: that of the sheet, else that of the
  // book. One that nobody has defined is added, without a definition.
  std::uint32_t name(std::string_view name, const Sheet* from);
  // The same of a sheet's own; nothing when it has none.
  std::optional<std::uint32_t> name_of(std::string_view name, std::string_view sheet) const;

  // A function without a number of its own: its entry and its number there, from 1.
  std::pair<std::uint16_t, std::uint32_t> function(std::string_view name);

  // SUPBOOK, EXTERNNAME and EXTERNSHEET records; none when no formula needs them.
  void write(RecordWriter& out) const;
  // Names that are referred to and have no definition, behind those of the book.
  const std::vector<std::string>& undefined() const { return undefined_; }

 private:
  enum class Book : std::uint8_t { kOwn, kFunctions };
  static constexpr int kLost = -1;
  static constexpr int kNone = -2;
  using Entry = std::tuple<Book, int, int>;
  using Key = std::pair<const Sheet*, std::string>;  // scope and folded name

  std::uint16_t entry(Book book, int first, int last);
  const std::uint32_t* find(std::string_view name, const Sheet* scope) const;

  const Workbook& book_;
  std::map<const Sheet*, int> positions_;
  std::vector<Entry> entries_;
  std::map<Entry, std::uint16_t> numbers_;
  std::map<Key, std::uint32_t> names_;
  std::uint32_t last_name_ = 0;
  std::vector<std::string> undefined_;
  std::vector<std::string> functions_;
  std::map<std::string, std::uint32_t, std::less<>> function_numbers_;
};

}  // namespace engine::xls
