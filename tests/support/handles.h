// Handles of the fakes, as earlier calls of a calculation would have given them.
#pragma once

#include <string>
#include <string_view>

#include "runtime/registry.h"
#include "tests/support/fake_library.h"

namespace calls {

// Registers a book and one object of each class under it. Some functions rewrite the book's record,
// so every call under test gets handles of its own.
struct Handles {
  explicit Handles(fakes::Workbook& workbook)
      : book(set_object(0, "Book", static_cast<libxl::Book*>(&workbook.book))),
        sheet(set_object(book, "Sheet", static_cast<libxl::Sheet*>(&workbook.sheet))),
        format(set_object(book, "Format", static_cast<libxl::Format*>(&workbook.format))),
        font(set_object(book, "Font", static_cast<libxl::Font*>(&workbook.font))),
        filter(set_object(book, "AutoFilter", static_cast<libxl::AutoFilter*>(&workbook.filter))),
        column(set_object(book, "FilterColumn",
                          static_cast<libxl::FilterColumn*>(&workbook.column))) {}

  long of_class(std::string_view name) const {
    if (name == "Book") return book;
    if (name == "Sheet") return sheet;
    if (name == "Format") return format;
    if (name == "Font") return font;
    return name == "AutoFilter" ? filter : column;
  }

  long book;
  long sheet;
  long format;
  long font;
  long filter;
  long column;
};

// "Sheet" of "XL_Sheet_ReadNum", and "" of a function that belongs to no class.
inline std::string class_of(std::string_view function) {
  const std::size_t end = function.find('_', 3);
  return end == std::string_view::npos ? "" : std::string(function.substr(3, end - 3));
}

}  // namespace calls
