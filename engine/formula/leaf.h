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

// For nodes of prefix kSheet and kSheets.
SheetPrefix read_prefix(const Formula& formula, const Node& node);
// Sheet1!, 'Sheet 1'! or 'First sheet:Last sheet'!
void append_prefix(std::string& out, const SheetPrefix& prefix);

// Whether the prefix, which is of kind kSheet, names this sheet.
bool names_sheet(const Formula& formula, const Node& node, std::string_view sheet);

// The address without its sheet prefix.
void append_reference(std::string& out, const Reference& reference, Notation notation,
                      CellAddress base);

}  // namespace engine::formula
