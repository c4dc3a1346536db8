// What is done with the filter of a sheet, with its hidden name and the rows that it hides.
//
// The sheet has been read, with all rows of the filter. When memory is short nothing has changed.
#pragma once

#include <optional>

#include "engine/workbook/workbook.h"

namespace engine {

// The range that the name of the sheet's scope tells; nothing when there is none, or not one.
std::optional<CellRange> named_filter_range(const Workbook& book, const Sheet& sheet);

// Gives the filter a range. A name of the sheet's scope tells it to programs that look there.
void set_filter_range(Workbook& book, Sheet& sheet, const CellRange& range);

// Hides the rows that the criteria reject and shows the others. A criterion that nobody here can
// judge by leaves the rows hidden that are. There is a range. Tells whether rows have changed.
bool apply_filter(const Workbook& book, Sheet& sheet);

// Removes range, criteria, sort and name, and shows the rows again. Tells the same.
bool remove_filter(Workbook& book, Sheet& sheet);

}  // namespace engine
