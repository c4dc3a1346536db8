// What formulas of the version before refer to beyond the cells of their own sheet.
//
// Each substream lists for itself what its formulas mean: sheets of the book, sheets of other
// books, functions of add-ins, and names of these. A formula tells an entry by its number, or
// sheets of its own book by theirs. The present version has one list for all, which comes into
// being here.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "engine/xls/link_table.h"
#include "engine/xls/older_texts.h"
#include "engine/xls/record_writer.h"

namespace engine::xls {

// The list of a substream, of what all sheets share or of a sheet. Without one of its own a sheet
// has that of all.
struct OlderList {
  struct Entry {
    std::uint16_t book = 0;  // of the present list
    std::int16_t sheet = 0;  // as LinkedSheets has it
    std::vector<std::uint16_t> names;
  };

  std::int16_t sheet = -2;  // that the substream is
  const OlderList* of_all = nullptr;
  std::vector<Entry> entries;

  bool is_of_names() const { return !of_all; }
  // By its number, from 1; null for none.
  const Entry* find(std::int16_t number) const {
    const auto& its = entries.empty() && of_all ? of_all->entries : entries;
    const auto place = static_cast<std::size_t>(number);
    return number > 0 && place <= its.size() ? &its[place - 1] : nullptr;
  }
};

class OlderLinks {
 public:
  // The names of the book's sheets, in order.
  OlderLinks(const OlderTexts& texts, const std::vector<std::string>& sheets);

  // Records of a list. False for links to other programs.
  bool take_sheet(std::string_view data, OlderList& list);
  bool take_name(std::string_view data, OlderList& list);

  // The present number of an entry, of which a formula means sheets.
  std::uint16_t sheets(const OlderList& list, std::int16_t number, unsigned first, unsigned last);
  // The same where it means a name, which gets its present number.
  std::uint16_t name(const OlderList& list, std::int16_t number, std::uint16_t& name);

  void write(RecordWriter& out) const;

 private:
  // Texts in the order in which they came first.
  class Texts {
   public:
    std::uint16_t number(const std::string& text);
    const std::vector<std::string>& all() const { return texts_; }

   private:
    std::vector<std::string> texts_;
    std::map<std::string, std::uint16_t> numbers_;
  };
  struct Book {
    Texts sheets;
    Texts names;  // as data of their records
  };
  // A book and sheets of it, first and last.
  using Entry = std::tuple<std::uint16_t, std::int16_t, std::int16_t>;

  std::uint16_t number_of(const Entry& entry);

  const OlderTexts& texts_;
  std::map<std::string, std::int16_t> own_sheets_;  // their numbers
  const std::size_t own_count_;
  Texts paths_;  // of books; the first ones are the book itself and add-ins
  std::vector<Book> books_;
  std::vector<Entry> entries_;
  std::map<Entry, std::uint16_t> numbers_;
};

}  // namespace engine::xls
