// Formulas as .xlsx files spell them, and as callers see them.
//
// Functions newer than the file format carry a prefix in the file, most of them `_xlfn.`, and the
// parameters of LET and LAMBDA carry `_xlpm.`. The spill operator A1# and implicit intersection @A1
// are stored as the calls _xlfn.ANCHORARRAY(A1) and _xlfn.SINGLE(A1), and Table1[@Net] as
// Table1[[#This Row],[Net]]. Both ways leave alone what they do not know.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "engine/workbook/document.h"

namespace engine::xlsx {

// Where a formula stands. The table there completes [@Net], which a file has only with a table's
// name.
struct FormulaPlace {
  std::span<const Table> tables;  // of the sheet
  CellAddress at;

  std::string_view table() const;
};

// Tells most formulas, which read the same in a file, by one look over the text.
bool is_stored_as_shown(std::string_view shown);

// Each gives the new text, or nothing when it is the same.
std::optional<std::string> shown_formula(std::string_view stored, const Grid& grid);
std::optional<std::string> stored_formula(std::string_view shown, const Grid& grid,
                                          const FormulaPlace& place = {});

// Makes a formula of a file the one that callers see. `spelling` becomes what the file had when
// storing the formula again would not give that: a newer function without its prefix, a column
// without its table.
void show_formula(std::string& formula, const Grid& grid, std::string& spelling);

}  // namespace engine::xlsx
