// Outlines: groups of rows or columns, inside one another, that are shown or hidden as one.
//
// A group is nothing but neighbours of one outline level. The row or column beside it that sums it
// up carries the mark that it is collapsed.
#pragma once

#include <optional>

#include "engine/formula/interval.h"
#include "engine/workbook/sheet.h"

namespace engine {

inline constexpr int kMaxOutlineLevel = 7;

// The row or column that sums a group up; nothing where that would lie outside of the grid.
std::optional<int> summary_of(const SheetContents& sheet, formula::Axis axis,
                              formula::Interval group, const Grid& grid);

// The deepest level among rows or columns; 0 where none is in a group.
int outline_level(const SheetContents& sheet, formula::Axis axis, formula::Interval places);

// Makes a group of rows or columns, none of which is on the last level. One that throws has changed
// nothing.
void add_group(SheetContents& sheet, formula::Axis axis, formula::Interval group, bool collapsed,
               const Grid& grid);

}  // namespace engine
