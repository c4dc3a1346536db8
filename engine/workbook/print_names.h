// What a sheet prints, as names of its scope say it: the titles that every page repeats and the
// area.
#pragma once

#include <optional>
#include <vector>

#include "engine/formula/interval.h"
#include "engine/workbook/workbook.h"

namespace engine {

struct PrintTitles {
  std::optional<formula::Interval> rows;
  std::optional<formula::Interval> columns;
};

// The ranges that a name of the sheet's scope stands for; none when one lies elsewhere.
std::vector<CellRange> ranges_of(const Workbook& book, const Sheet& sheet, const char* name);

// What stands there in another form than rows and columns counts as nothing.
PrintTitles print_titles(const Workbook& book, const Sheet& sheet);
void set_print_titles(Workbook& book, const Sheet& sheet, const PrintTitles& titles);

// The first range of the area; nothing when there is no area, or not one of plain ranges.
std::optional<CellRange> print_area(const Workbook& book, const Sheet& sheet);
// Replaces the whole area; without one all is printed.
void set_print_area(Workbook& book, const Sheet& sheet, const std::optional<CellRange>& area);

}  // namespace engine
