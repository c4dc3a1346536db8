// The file behind a workbook, as the workbook's operations see it.
//
// A codec makes one when it loads a book or when a new book is begun. It reads sheets on demand,
// carries what the engine has no model of, and writes the book. A book that lives in memory only
// has nothing to read and nothing to carry, which is what most duties do here.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/formula/formula.h"
#include "engine/formula/interval.h"
#include "engine/workbook/cell.h"

namespace engine {

namespace package {
class Output;
}

struct OutsideRows;
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
  int header_rows = 1;
  int totals_rows = 0;
  bool has_buttons = false;  // of a filter of its own, beside its headers
};

// Why rows or columns cannot be inserted or removed.
struct MoveRefusal {
  enum class Kind : std::uint8_t {
    kRowNotLoaded,  // `place`
    kPush,          // `place` holds something that would leave the sheet
    kArray,         // the one in `range` would be split
    kPivotTable,    // one would be split
    kTableHeader,   // of `table`, which would lose it and keep others of its rows
    kTableRows,     // `table` would keep none but its header or totals
    kBoundFormula,  // the first cell of `range` has a formula for others that nobody understands
  };

  Kind kind = Kind::kPush;
  int place = 0;
  CellRange range;
  std::string table;
};

// What an insertion or removal comes to in what a file carries: made, and not in place yet.
class CarriedMove {
 public:
  CarriedMove() = default;
  CarriedMove(const CarriedMove&) = delete;
  CarriedMove& operator=(const CarriedMove&) = delete;
  virtual ~CarriedMove() = default;

  virtual void apply() noexcept = 0;

  // What becomes of formulas because tables or columns of theirs go; none if the function is empty.
  std::function<std::optional<std::string>(std::string_view formula)> edit;
  // Formulas, by the cells that have them before the move, that read otherwise than `edit` makes
  // them: what they mean depends on where they stand.
  std::vector<std::pair<CellAddress, std::string>> formulas;
  // Texts of cells of the columns that are inserted, at their new places.
  std::vector<std::pair<CellAddress, std::string>> texts;
};

struct SaveOptions {
  bool as_template = false;  // the kind of file that makes new workbooks rather than being one
  // What the target's name promises; nothing when it tells nothing.
  std::optional<bool> with_macros;
  // Cached values of formulas may be old: who opens the file is asked to calculate anew. What the
  // file itself says of that stays.
  bool calculate = false;
};

class Document {
 public:
  Document() = default;
  Document(const Document&) = delete;
  Document& operator=(const Document&) = delete;
  virtual ~Document() = default;

  // Reads a sheet that is not read yet; of one that is marked as partly loaded only its
  // `loaded_rows`. One that is excluded may be read behind the scenes and stays excluded. Throws
  // FileError and leaves the sheet as it was when the file turns out to be damaged there.
  virtual void read_sheet(Workbook& /*book*/, Sheet& /*sheet*/) {}

  // Reads the rows that a partial load of the sheet left out. Throws FileError.
  virtual std::unique_ptr<OutsideRows> read_outside(const Workbook& book, const Sheet& sheet) const;

  // Whether a sheet that is not read yet may say something of others: false only where its formulas
  // mean no cells but its own.
  virtual bool may_refer(const Sheet& /*sheet*/) const { return true; }
  // Makes the pictures of the file the first of the book's, once: before somebody asks for one or
  // adds one. Their bytes stay in the file. Parts that are damaged tell nothing here.
  virtual void read_pictures(Workbook& /*book*/) {}

  // Fetches the bytes of a picture that the file holds. Throws FileError.
  virtual void read_picture(Workbook& /*book*/, std::size_t /*index*/) {}

  // The tables of a sheet, read or not.
  virtual std::vector<Table> tables(const Workbook& /*book*/, const Sheet& /*sheet*/) const {
    return {};
  }

  // The ranges of a sheet that pivot tables fill, read or not.
  virtual std::vector<CellRange> pivot_tables(const Workbook& /*book*/,
                                              const Sheet& /*sheet*/) const {
    return {};
  }

  // Whether a table has the name, ignoring case; one that is damaged counts as none.
  virtual bool is_table_name(const Workbook& /*book*/, std::string_view /*name*/) const {
    return false;
  }

  // A formula without what the format alone puts into it, which callers may write all the same;
  // nothing when it has none of that.
  virtual std::optional<std::string> shown_formula(const Workbook& /*book*/,
                                                   std::string_view /*formula*/) const {
    return std::nullopt;
  }

  // Makes what the file will hold of a new, empty sheet. It enters the file with place_sheet().
  virtual void begin_sheet(const Workbook& /*book*/, Sheet& /*sheet*/) {}

  // The same for a sheet that is a copy of another, with copies of what is carried for that. Tells
  // the names that the copies of its tables got.
  virtual std::vector<formula::TableChange> copy_sheet(const Workbook& /*book*/,
                                                       const Sheet& /*original*/, Sheet& /*copy*/) {
    return {};
  }

  // The sheet stands in the book now.
  virtual void place_sheet(Sheet& /*sheet*/) noexcept {}

  // Drops what belongs to a sheet that leaves the book and applies an edit as below: both are done
  // or, when memory is short, neither.
  virtual void remove_sheet(Workbook& /*book*/, Sheet& /*sheet*/, const FormulaEdit& /*edit*/) {}

  // Applies an edit to the formulas of carried things, as conditional formats, validations, charts,
  // pivot sources, and to the places of the book that carried things lead to. Sheets that may
  // refer to others must have been read before.
  virtual void edit_formulas(Workbook& /*book*/, const FormulaEdit& /*edit*/) {}

  // Why the file cannot have rows or columns of the sheet inserted or removed; nothing when it can.
  // The sheet has been read. Parts that are damaged tell nothing here.
  virtual std::optional<MoveRefusal> refusal_of_move(const Workbook& /*book*/,
                                                     const Sheet& /*sheet*/,
                                                     const formula::Move& /*move*/) const {
    return std::nullopt;
  }

  // Prepares it. All sheets that may refer to others have been read. Null when nothing is carried.
  // Throws FileError.
  virtual std::unique_ptr<CarriedMove> prepare_move(Workbook& /*book*/, Sheet& /*sheet*/,
                                                    const formula::Move& /*move*/) {
    return nullptr;
  }

  // Brings into agreement what a file says twice, before it is written: the headers of tables and
  // the names of their columns, which formulas use. Like an operation it changes all or nothing.
  virtual void settle_tables(Workbook& /*book*/) {}

  // Writes the whole book. Neither book nor document changes: saving again gives the same bytes.
  virtual void save(const Workbook& book, const SaveOptions& options, package::Output& output) = 0;
};

}  // namespace engine
