// Reading and printing of what a leaf consists of: sheet prefix and reference.
#pragma once

#include <string>
#include <string_view>

#include "engine/formula/formula.h"

namespace engine::formula {

// The sheets that a prefix names, unquoted; both are the same for a single one.
struct SheetPrefix {
  std::string first;
  std::string last;
};

// For nodes of prefix kSheet and kSheets, and of kExternal, which stands in `first` as a whole.
SheetPrefix read_prefix(const Formula& formula, const Node& node);
// Sheet1!, 'Sheet 1'! or 'First sheet:Last sheet'!
void append_prefix(std::string& out, const SheetPrefix& prefix);

// Whether the prefix, which is of kind kSheet, names this sheet.
bool names_sheet(const Formula& formula, const Node& node, std::string_view sheet);

// Whether a reference means cells of this sheet and no other.
bool means_sheet(const Formula& formula, const Node& node, std::string_view sheet, bool own_sheet);

// Moves the parts of a reference that are relative; false when it leaves the grid.
bool shift_reference(Reference& reference, int rows, int columns, const Grid& grid);
// Puts a reference where its cells are after a move; false when none of them is left.
bool adjust_reference(Reference& reference, const Move& move, const Grid& grid);

// The address without its sheet prefix.
void append_reference(std::string& out, const Reference& reference, Notation notation,
                      CellAddress base);

}  // namespace engine::formula
