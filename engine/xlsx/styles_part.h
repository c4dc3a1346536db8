// The styles part of a package: xl/styles.xml.
//
// The part's tree is kept as it was read. Writing patches a copy of it: entries of the file that
// were changed are patched where they stand, added ones come behind them, and everything else
// (styles by name, conditional looks, colours, extensions, what is unknown) stays untouched.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "engine/package/xml_tree.h"
#include "engine/workbook/styles.h"

namespace engine::xlsx {

// What saving a book makes of its styles.
struct WrittenStyles {
  std::vector<std::uint32_t> format_numbers;  // by index in the book; empty: each keeps its own
  std::string bytes;                          // the whole part

  // The number by which the file's cells, rows and columns name a format of the book.
  std::uint32_t file_number(std::uint32_t index) const {
    if (format_numbers.empty()) return index;
    return index < format_numbers.size() ? format_numbers[index] : 0;
  }
};

class StylesPart {
 public:
  // Reads the part into the book's styles. Empty bytes stand for a book without such a part, a new
  // one for instance. The theme may be empty or damaged: the usual colours stand in. `part` names
  // the part in errors. Throws FileError when the part is not well-formed or no style sheet; wrong
  // counts, indices beyond their lists and missing pieces are read with defaults.
  void read(std::string_view bytes, std::string_view part, std::string_view theme, Styles& styles);

  // The part as it is to be saved. Nothing changes: writing again gives the same bytes. The lists
  // never outgrow the format, as the workbook's do not.
  WrittenStyles write(const Styles& styles) const;

 private:
  package::XmlTree document_;
};

}  // namespace engine::xlsx
