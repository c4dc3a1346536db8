// The file behind a workbook, as the workbook's operations see it.
//
// A codec makes one when it loads a book or when a new book is begun. It reads sheets on demand,
// carries what the engine has no model of, and writes the book.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/formula/formula.h"
#include "engine/workbook/cell.h"

namespace engine {

namespace package {
class Output;
}

class Sheet;
class Workbook;

// The new text of a formula that stands on the sheet, nothing when it stays as it is. The sheet is
// null for formulas that belong to no sheet.
using FormulaEdit =
    std::function<std::optional<std::string>(const Sheet* sheet, std::string_view formula)>;

// A table by the name that formulas call it by, with its cells, header and totals included.
struct Table {
  std::string name;
  CellRange cells;
};

struct SaveOptions {
  bool as_template = false;  // the kind of file that makes new workbooks rather than being one
};

class Document {
 public:
  virtual ~Document() = default;

  // Reads a sheet that is not read yet. Throws FileError and leaves it as it was when the file
  // turns out to be damaged there.
  virtual void read_sheet(Workbook& book, Sheet& sheet) = 0;

  // The tables of a sheet, read or not.
  virtual std::vector<Table> tables(const Sheet& sheet) const = 0;

  // Makes the carried things of a new sheet that is a copy of another, and tells the names that
  // the copies of its tables got.
  virtual std::vector<formula::TableChange> copy_sheet(Workbook& book, const Sheet& original,
                                                       Sheet& copy) = 0;

  // Drops what belongs to a sheet that leaves the book and applies an edit as below: both are done
  // or, when memory is short, neither.
  virtual void remove_sheet(Workbook& book, Sheet& sheet, const FormulaEdit& edit) = 0;

  // Applies an edit to the formulas of carried things: conditional formats, validations, charts,
  // pivot sources. Sheets must have been read before.
  virtual void edit_formulas(Workbook& book, const FormulaEdit& edit) = 0;

  // Writes the whole book. Neither book nor document changes: saving again gives the same bytes.
  virtual void save(const Workbook& book, const SaveOptions& options, package::Output& output) = 0;
};

}  // namespace engine
