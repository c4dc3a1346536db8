// What formulas of a book refer to beyond the cells of their own sheet: other sheets, other books,
// names.
//
// A formula names an entry of EXTERNSHEET: a book and sheets of it, first and last. Books are
// SUPBOOK records, one of them the file itself and one the functions of add-ins.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace engine {
class Sheet;
}

namespace engine::xls {

struct LinkedBook {
  enum class Kind : std::uint8_t { kOwn, kAddIn, kOther };

  Kind kind = Kind::kOther;
  int number = 0;  // among the other books, from 1
  std::vector<std::string> sheets;
  struct Name {
    std::string name;
    int sheet = 0;  // number of the sheet that knows it, from 1; 0: the whole book does
  };
  std::vector<Name> names;
};

// Numbers of sheets: -1 one that is gone, -2 none, the book as a whole.
struct LinkedSheets {
  std::uint16_t book = 0;
  std::int16_t first = 0;
  std::int16_t last = 0;
};

// A name of the book, as formulas refer to it: by its number, from 1.
struct NumberedName {
  std::string name;
  int sheet = 0;            // as LinkedBook::Name
  bool is_defined = false;  // the model has it, or had it once
};

class LinkTable {
 public:
  std::vector<LinkedBook> books;
  std::vector<LinkedSheets> entries;
  std::vector<NumberedName> names;
  // The sheets of the file in its order; null for one that has left the book. Their present names
  // count, as formulas are read when their sheet is.
  std::vector<const Sheet*> sheets;

  // What stands in front of a reference, with "!"; for a sheet that is gone #REF!.
  std::string prefix(std::uint16_t entry) const;
  // A sheet of the file by its number, from 0; null for one that has left the book.
  const Sheet* sheet(int number) const {
    return number >= 0 && static_cast<std::size_t>(number) < sheets.size()
               ? sheets[static_cast<std::size_t>(number)]
               : nullptr;
  }

  // A name that an entry's book has; empty when there is none.
  std::string name(std::uint16_t entry, std::uint32_t number) const;
  // A name of this book in a formula of a sheet; null stands for none.
  std::string name(std::uint32_t number, const Sheet* from) const;
};

}  // namespace engine::xls
