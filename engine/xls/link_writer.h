// What the formulas of a book refer to beyond the cells of their own sheet, as it is written:
// books, entries of sheets, names. What a loaded file has keeps its numbers, as formulas that
// nobody touches go by them; formulas add what is missing.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "engine/workbook/workbook.h"
#include "engine/xls/link_table.h"
#include "engine/xls/record_writer.h"

namespace engine::xls {

class LinkWriter {
 public:
  // `file` is empty for a new book and outlives this.
  LinkWriter(const Workbook& book, const LinkTable& file);

  // Number of the entry for a run of sheets; nothing when the book has no such sheet.
  std::optional<std::uint16_t> sheets(std::string_view first, std::string_view last);
  // The same of another book that the file is linked with, by what stands in front of "!", without
  // apostrophes: [1]Sheet1, [1]First:Last or [1].
  std::optional<std::uint16_t> foreign_sheets(std::string_view prefix);
  // Of one that refers to a sheet that is gone.
  std::uint16_t lost_sheet() { return entry(own_book(), kLost, kLost); }
  // Of the book itself, for names of its sheets.
  std::uint16_t whole_book() { return entry(own_book(), kNone, kNone); }

  // Number of a name, from 1, as a formula on a sheet means it: that of the sheet, else that of the
  // book. One that nobody has defined is added, without a definition.
  std::uint32_t name(std::string_view name, const Sheet* from);
  // The same; nothing when the file has none.
  std::optional<std::uint32_t> name_of_file(std::string_view name, const Sheet* from) const;
  // The same of a sheet's own; nothing when it has none.
  std::optional<std::uint32_t> name_of(std::string_view name, std::string_view sheet) const;
  // A name that another book has, or a sheet of it: its entry and its number there, from 1.
  std::optional<std::pair<std::uint16_t, std::uint32_t>> foreign_name(std::string_view prefix,
                                                                      std::string_view name);

  // A function without a number of its own: its entry and its number there, from 1.
  std::pair<std::uint16_t, std::uint32_t> function(std::string_view name);

  // A name as it is written: one that is defined, or text alone.
  struct Name {
    const DefinedName* defined = nullptr;
    std::string text;
    const Sheet* scope = nullptr;
    bool is_spare = false;  // stands for nothing, in place of one that has gone
  };
  // By their numbers; the file's come first.
  const std::vector<Name>& names() const { return names_; }
  const LinkTable& file() const { return file_; }

  // Records that the file does not have: books, and functions behind those that it has.
  void write_new_functions(RecordWriter& out) const;
  void write_new_books(RecordWriter& out) const;
  // How many sheets the book has, for the record that says so.
  std::size_t sheet_count() const { return book_.sheets().size(); }
  // EXTERNSHEET, if any formula needs it.
  void write_entries(RecordWriter& out) const;
  // Whether a book of the file is that of functions.
  bool has_functions(std::size_t book) const { return functions_book_ == book; }

 private:
  static constexpr int kLost = -1;
  static constexpr int kNone = -2;
  using Entry = std::tuple<std::size_t, int, int>;   // number of the book, sheets
  using Key = std::pair<const Sheet*, std::string>;  // scope and folded name

  void take_entries();
  void take_names();
  std::size_t own_book();
  std::size_t functions_book();
  std::uint16_t entry(std::size_t book, int first, int last);
  std::optional<Entry> find_foreign(std::string_view prefix) const;
  const std::uint32_t* find(std::string_view name, const Sheet* scope) const;
  // As a formula on a sheet means it.
  const std::uint32_t* find_from(const Sheet* from, std::string_view name) const;
  std::uint32_t add_name(Name name);

  const Workbook& book_;
  const LinkTable& file_;
  std::map<const Sheet*, int> positions_;
  std::size_t books_ = 0;
  std::optional<std::size_t> own_book_;
  std::optional<std::size_t> functions_book_;
  std::vector<Entry> entries_;
  std::map<Entry, std::uint16_t> numbers_;
  std::vector<Name> names_;
  std::map<Key, std::uint32_t> name_numbers_;
  std::vector<std::string> functions_;  // new ones
  std::map<std::string, std::uint32_t, std::less<>> function_numbers_;
  std::uint32_t last_function_ = 0;
};

}  // namespace engine::xls
