// Changes to the sheets of a book, with what follows from them in its formulas and names.
//
// Each operation first makes everything that is new and then puts it in place without allocating:
// one that throws has changed nothing that can be read.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "engine/workbook/document.h"
#include "engine/workbook/workbook.h"

namespace engine {

// New texts for the formulas of the cells and names of a book, held until all of them are made. A
// shared formula is asked about once: what an edit does to it must not depend on the cell.
class FormulaEdits {
 public:
  // Asks `edit` about every formula in memory but those of `except`, a sheet that goes.
  void collect(Workbook& book, const FormulaEdit& edit, const Sheet* except = nullptr);
  // Asks about the formulas of validations alone.
  void collect_validations(Sheet& sheet, const FormulaEdit& edit);
  // Asks about the formulas of cells alone, those that they share not among them.
  void collect_records(Sheet& rows, const Sheet& sheet, const FormulaEdit& edit);
  void add(Sheet& rows, std::uint32_t record, std::string_view formula);
  // Puts the new texts in place. The sheets that hold one count as changed.
  void apply(Workbook& book) noexcept;

 private:
  // Those of the cells of `rows`, which belong to a sheet of the book.
  void collect_cells(Sheet& rows, const Sheet& sheet, const FormulaEdit& edit);

  struct CellEdit {
    Sheet* sheet;
    std::uint32_t record;
    std::string_view formula;  // which the sheet keeps
  };
  struct SharedEdit {
    Sheet* sheet;
    std::uint32_t number;
    std::string formula;
  };
  struct ValidationEdit {
    Sheet* sheet;
    std::size_t slot;
    std::size_t number;  // of the rule's formulas
    std::string formula;
  };
  struct NameEdit {
    const DefinedName* name;
    std::string definition;
  };

  std::vector<CellEdit> cells_;
  std::vector<SharedEdit> shared_;
  std::vector<ValidationEdit> validations_;
  std::vector<NameEdit> names_;
};

// Reads every worksheet that is not read yet but `except`. Those that a partial load left out stay
// closed.
void read_all_sheets(Workbook& book, Document& document, const Sheet* except = nullptr);
// The same for those that a change of some sheet can concern through formulas.
void read_referring_sheets(Workbook& book, Document& document, const Sheet* except = nullptr);

// A formula that cells share stands in the file at one of them, and the others have it moved by the
// grammar. One that the grammar does not know is bound to its cell while others share it: at
// another cell its text would mean something else.
bool holds_bound_formula(const SheetContents& contents, CellAddress cell, const Grid& grid);
// A bound formula whose own cell is not among those that share it; null without one.
const SharedFormula* stranded_formula(const SheetContents& contents, const Grid& grid);

// Rows that partial loads left out, in memory as long as this lives and afterwards where one was
// changed.
class AllRows {
 public:
  AllRows(Workbook& book, const Document& document, const Sheet* except = nullptr);
  AllRows(const AllRows&) = delete;
  AllRows& operator=(const AllRows&) = delete;
  ~AllRows();

 private:
  std::vector<Sheet*> read_;  // those whose rows were read for this
};

// A sheet with its names, made but not in the book yet.
struct NewSheet {
  explicit NewSheet(const Workbook& book) : names(book.limits.grid) {}

  std::unique_ptr<Sheet> sheet;
  DefinedNames names;
  SheetNames index = {};  // the sheet, once there is room for it
};

NewSheet make_sheet(const Workbook& book, Document& document, std::string name);

// One with the contents of another sheet, which must have been read whole. Formulas and names that
// mean the original sheet mean the copy there.
NewSheet make_copy(const Workbook& book, Document& document, const Sheet& original,
                   std::string name);

// Makes room for a new sheet, so that placing it cannot fail.
void make_room(Workbook& book, NewSheet& made);
// The first sheet of a book becomes the active one, any other leaves the active one as it is.
void place_sheet(Workbook& book, Document& document, std::size_t position, NewSheet made) noexcept;

// Moves a sheet; the others keep their order and the active sheet stays the same one.
void move_sheet(Workbook& book, std::size_t from, std::size_t to) noexcept;

// Gives a sheet another name, which no other has; references follow, places that links lead to
// among them. Reads the other sheets.
void rename_sheet(Workbook& book, Document& document, Sheet& sheet, std::string name);

// Removes a sheet with its names and returns it; references to it break. Reads the other sheets.
std::unique_ptr<Sheet> delete_sheet(Workbook& book, Document& document, std::size_t position);

// Makes a sheet the active one and the only selected one. Reads the other sheets, as which of them
// are selected is said in them.
void activate_sheet(Workbook& book, Document& document, std::size_t position);

// Whether no other sheet can be seen.
bool is_only_visible(const Workbook& book, const Sheet& sheet);

// Hides a sheet that has been read and is not the only visible one. In place of the active sheet
// another becomes active, for which the other sheets are read.
void hide_sheet(Workbook& book, Document& document, Sheet& sheet, SheetVisibility how);

}  // namespace engine
