#include "engine/workbook/print_names.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "engine/formula/formula_text.h"
#include "engine/formula/sheet_name.h"
#include "engine/text/fold.h"

namespace engine {

namespace {

constexpr const char* kArea = "_xlnm.Print_Area";
constexpr const char* kTitles = "_xlnm.Print_Titles";

// Gives a name of the sheet's scope a definition; an empty one removes it.
void define(Workbook& book, const Sheet& sheet, const char* name, std::string definition) {
  const DefinedName* found = book.names.find(name, &sheet);
  if (definition.empty()) {
    if (found) book.names.remove(*found);
  } else if (found) {
    book.names.define(*found, std::move(definition));
  } else {
    book.names.add({name, std::move(definition), &sheet, false, ""});
  }
}

}  // namespace

std::vector<CellRange> ranges_of(const Workbook& book, const Sheet& sheet, const char* name) {
  const DefinedName* found = book.names.find(name, &sheet);
  if (!found) return {};
  std::vector<CellRange> ranges;
  for (const auto& [prefix, range] : formula::ranges_of_text(found->definition, book.limits.grid)) {
    if (!prefix.empty() && !equal_ignoring_case(prefix, sheet.name())) return {};
    ranges.push_back(range);
  }
  return ranges;
}

PrintTitles print_titles(const Workbook& book, const Sheet& sheet) {
  const Grid& grid = book.limits.grid;
  PrintTitles titles;
  for (const CellRange& range : ranges_of(book, sheet, kTitles)) {
    const bool whole_rows = range.column_first == 0 && range.column_last == grid.columns - 1;
    const bool whole_columns = range.row_first == 0 && range.row_last == grid.rows - 1;
    if (whole_rows) titles.rows = {range.row_first, range.row_last};
    else if (whole_columns) titles.columns = {range.column_first, range.column_last};
  }
  return titles;
}

// Columns come first, then rows.
void set_print_titles(Workbook& book, const Sheet& sheet, const PrintTitles& titles) {
  const std::string prefix = formula::quote_sheet_name(sheet.name()) + "!$";
  std::string text;
  if (titles.columns)
    text = prefix + formula::print_column(titles.columns->first) + ":$" +
           formula::print_column(titles.columns->last);
  if (titles.columns && titles.rows) text += ",";
  if (titles.rows)
    text += prefix + std::to_string(titles.rows->first + 1) + ":$" +
            std::to_string(titles.rows->last + 1);
  define(book, sheet, kTitles, std::move(text));
}

std::optional<CellRange> print_area(const Workbook& book, const Sheet& sheet) {
  const std::vector<CellRange> ranges = ranges_of(book, sheet, kArea);
  return ranges.empty() ? std::nullopt : std::optional(ranges.front());
}

void set_print_area(Workbook& book, const Sheet& sheet, const std::optional<CellRange>& area) {
  define(book, sheet, kArea, area ? formula::absolute_range_text(sheet.name(), *area) : "");
}

}  // namespace engine
