// Changing the font that the widths of a book's columns are measured by.
#pragma once

#include <optional>
#include <string>

#include "engine/workbook/document.h"
#include "engine/workbook/workbook.h"

namespace engine {

// What of a font changes.
struct FontChange {
  std::optional<std::string> name;
  std::optional<double> size;
};

// Changes font 0. Columns stay as many characters wide as they are: where digits of the new font
// are wider or narrower, the sheets' widths are stated anew, for which all sheets are read. Throws
// FileError, with nothing changed, when one is damaged.
void change_default_font(Workbook& book, Document& document, FontChange change);

}  // namespace engine
