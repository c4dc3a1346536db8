#include "engine/api/sheet_object.h"

#include "engine/api/format.h"
#include "engine/api/messages.h"
#include "engine/api/outputs.h"
#include "engine/formula/reference.h"
#include "engine/text/wide.h"
#include "engine/workbook/sheet_operations.h"

namespace engine::api {

bool SheetObject::refuse_cell(int row, int column) const {
  const Grid& grid = limits().grid;
  if (row < 0 || row >= grid.rows) return book_.refuse(false, messages::row(row, grid));
  return book_.refuse(false, messages::column(column, grid));
}

bool SheetObject::check_rows(int first, int last) const { return check_range({first, last, 0, 0}); }

bool SheetObject::check_columns(int first, int last) const {
  return check_range({0, 0, first, last});
}

bool SheetObject::check_range(const CellRange& range) const {
  const auto& [row_first, row_last, column_first, column_last] = range;
  const Grid& grid = limits().grid;
  for (const int row : {row_first, row_last})
    if (row < 0 || row >= grid.rows) return book_.refuse(false, messages::row(row, grid));
  for (const int column : {column_first, column_last})
    if (column < 0 || column >= grid.columns)
      return book_.refuse(false, messages::column(column, grid));
  if (row_first > row_last) return book_.refuse(false, messages::row_order(row_first, row_last));
  return column_first <= column_last ||
         book_.refuse(false, messages::column_order(column_first, column_last));
}

bool SheetObject::check_tables(const CellRange& range) const {
  for (const Table& table : book_.document().tables(book_.workbook(), *sheet_))
    if (table.cells.overlaps(range))
      return book_.refuse(false, messages::overlaps_table(range, table.name));
  return true;
}

bool SheetObject::check_value(std::string_view property, int value, int low, int high) const {
  if (value >= low && value <= high) return true;
  return book_.refuse(false, messages::out_of_range(property, value, low, high));
}

bool SheetObject::check_format(const libxl::Format* format, Style* style) const {
  if (!format) return true;
  const auto& object = static_cast<const FormatObject&>(*format);
  if (&object.book() != &book_) return book_.refuse(false, messages::foreign("format"));
  if (object.detached()) return book_.refuse(false, messages::gone("format"));
  *style = object.index();
  return true;
}

bool SheetObject::find_loaded(int row) const {
  const CellRange& rows = sheet_->loaded_rows;
  if (row >= rows.row_first && row <= rows.row_last) return true;
  return book_.refuse(false, messages::row_not_loaded(row, sheet_->name()));
}

bool SheetObject::check_loaded_rows(int first, int last) const {
  if (!check_loaded(first)) return false;
  const int behind = sheet_->loaded_rows.row_last + 1;
  return sheet_->loading != Loading::kPartly || last < behind || check_loaded(behind);
}

bool SheetObject::check_bindings(int row, int column) const {
  const CellRange* array = contents().arrays.find({row, column});
  if (array) return book_.refuse(false, messages::part_of_array({row, column}, *array));
  return !holds_bound_formula(contents(), {row, column}, limits().grid) ||
         book_.refuse(false, messages::bound_formula({row, column}));
}

// The used range. Rows may be kept for their properties alone: only those with cells count.
CellRange SheetObject::used_range() const {
  CellRange range{0, -1, 0, -1};
  contents().cells.used_range(&range);
  return range;
}

int SheetObject::firstRow() const {
  return run(0, [&] { return used_range().row_first; });
}
int SheetObject::lastRow() const {
  return run(0, [&] { return used_range().row_last + 1; });
}
int SheetObject::firstCol() const {
  return run(0, [&] { return used_range().column_first; });
}
int SheetObject::lastCol() const {
  return run(0, [&] { return used_range().column_last + 1; });
}

void SheetObject::addrToRowCol(const wchar_t* addr, int* row, int* column, bool* rowRelative,
                               bool* colRelative) {
  run([&] {
    to_utf8(addr, text_);
    if (text_.empty()) return book_.refuse(messages::empty("address"));
    const auto cell = formula::parse_cell(text_);
    if (!cell) return book_.refuse(messages::invalid_address(text_));
    const Grid& grid = limits().grid;
    if (cell->row >= grid.rows || cell->column >= grid.columns)
      return book_.refuse(messages::address_beyond_grid(text_, grid));
    give(row, cell->row);
    give(column, cell->column);
    give(rowRelative, !cell->row_absolute);
    give(colRelative, !cell->column_absolute);
  });
}

const wchar_t* SheetObject::rowColToAddr(int row, int column, bool rowRelative, bool colRelative) {
  return run(nullptr, [&]() -> const wchar_t* {
    if (!check_cell(row, column)) return nullptr;
    text_.clear();
    formula::append_cell(text_, formula::CellReference{row, column, !rowRelative, !colRelative});
    return book_.give(text_);
  });
}

}  // namespace engine::api
