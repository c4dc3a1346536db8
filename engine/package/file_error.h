// What is wrong with a file, as the predicate of a sentence about it.
//
// The reader of a part knows what it found and where, but not what its caller calls the file. So an
// error's text lacks its subject: "is damaged: xl/workbook.xml, ends too early". The interface puts
// `file "prices.xlsx"` or `the workbook data` in front of it.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace engine::package {

// A file that cannot be opened, read, understood or written.
class FileError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// `place` is a part, and a cell or element in it: "xl/worksheets/sheet1.xml, cell B7".
[[noreturn]] inline void throw_damaged(std::string_view place, std::string_view what) {
  std::string text = "is damaged: ";
  text.append(place).append(", ").append(what);
  throw FileError(text);
}

}  // namespace engine::package
