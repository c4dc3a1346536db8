// Operations of a sheet that shape it: sizes, hidden rows and columns, groups, merged ranges,
// cleared and copied cells.
#include <algorithm>
#include <cmath>

#include "engine/api/messages.h"
#include "engine/api/outputs.h"
#include "engine/api/sheet_object.h"
#include "engine/formula/formula_text.h"
#include "engine/package/file_error.h"
#include "engine/workbook/auto_fit.h"
#include "engine/workbook/metrics.h"
#include "engine/workbook/outline.h"

namespace engine::api {

namespace {

using formula::Axis;

constexpr double kAutomatic = -1;     // a size that follows the contents
constexpr int kOpenEnd = -1;          // of an area: the end of the used range
constexpr double kMaxWidth = 255;     // characters
constexpr double kMaxHeight = 409.5;  // points

}  // namespace

// Sizes.

bool SheetObject::check_size(std::string_view property, double size, double limit) const {
  if (!std::isfinite(size)) return book_.refuse(false, messages::not_finite(property));
  return size == kAutomatic || (size >= 0 && size <= limit) ||
         book_.refuse(false, messages::out_of_range(property, size, 0.0, limit));
}

// Those that cannot be read have no buttons that anybody knows of.
std::vector<Table> SheetObject::readable_tables() const try {
  return book_.document().tables(book_.workbook(), *sheet_);
} catch (const package::FileError&) {
  return {};
}

double SheetObject::colWidth(int column) const {
  return run(0, [&]() -> double {
    if (!check_columns(column, column)) return 0;
    const auto fitted = fitted_pixels(book_.workbook(), contents(), readable_tables(), column);
    const int pixels =
        fitted.empty() ? unhidden_column_pixels(contents(), column) : fitted.at(column);
    return characters_of_pixels(pixels, contents().digit_pixels);
  });
}

double SheetObject::rowHeight(int row) const {
  return run(0, [&]() -> double {
    if (!check_rows(row, row) || !check_loaded(row)) return 0;
    const RowProperties* its = contents().properties(row);
    return its && its->height ? *its->height : contents().default_row_height;
  });
}

bool SheetObject::setCol(int colFirst, int colLast, double width, libxl::Format* format,
                         bool hidden) {
  return run(false, [&] {
    Style style;
    if (!check_columns(colFirst, colLast) || !check_size("column width", width, kMaxWidth))
      return false;
    if (!check_format(format, &style)) return false;
    const int digit = contents().digit_pixels;
    const int pixels = width == kAutomatic ? 0 : pixels_of_characters(width, digit);
    const auto edit = [&](ColumnProperties& run) {
      if (width == kAutomatic) {
        run.auto_fit = true;
      } else if (pixels > 0) {
        run.width = width_of_pixels(pixels, digit);
        run.custom_width = true;
        run.best_fit = run.auto_fit = false;
      }
      // What is closed keeps the width that it had.
      run.hidden = hidden || (pixels == 0 && width != kAutomatic);
      if (style) run.style = *style;
    };
    sheet_->change([&](SheetContents& contents) {
      contents.columns.change({{colFirst, colLast, edit}});
    });
    return true;
  });
}

bool SheetObject::setRow(int row, double height, libxl::Format* format, bool hidden) {
  return run(false, [&] {
    Style style;
    if (!check_rows(row, row) || !check_size("row height", height, kMaxHeight)) return false;
    if (!check_format(format, &style) || !check_loaded(row)) return false;
    sheet_->change([&](SheetContents& contents) {
      RowProperties& its = contents.properties_at(row);
      if (height == kAutomatic) its.height.reset();
      else if (height > 0) its.height = height;
      if (height != 0) its.custom_height = height > 0;
      its.hidden = hidden || height == 0;
      if (style) its.style = *style;
    });
    return true;
  });
}

bool SheetObject::rowHidden(int row) const {
  return run(false, [&] {
    if (!check_rows(row, row) || !check_loaded(row)) return false;
    return contents().is_hidden(row);
  });
}

bool SheetObject::setRowHidden(int row, bool hidden) {
  return run(false, [&] {
    if (!check_rows(row, row) || !check_loaded(row)) return false;
    if (contents().is_hidden(row) == hidden) return true;
    sheet_->change([&](SheetContents& contents) { contents.properties_at(row).hidden = hidden; });
    return true;
  });
}

bool SheetObject::colHidden(int column) const {
  return run(false, [&] {
    if (!check_columns(column, column)) return false;
    const ColumnProperties* its = contents().columns.find(column);
    return its && its->hidden;
  });
}

bool SheetObject::setColHidden(int column, bool hidden) {
  return run(false, [&] {
    if (!check_columns(column, column)) return false;
    const ColumnProperties* its = contents().columns.find(column);
    if ((its && its->hidden) == hidden) return true;
    sheet_->change([&](SheetContents& contents) {
      const auto edit = [&](ColumnProperties& run) { run.hidden = hidden; };
      contents.columns.change({{column, column, edit}});
    });
    return true;
  });
}

// Groups.

bool SheetObject::add_group(formula::Axis axis, int first, int last, bool collapsed) {
  const Grid& grid = limits().grid;
  const int level = outline_level(contents(), axis, {first, last}) + 1;
  if (level > kMaxOutlineLevel)
    return book_.refuse(false, messages::out_of_range("outline level", level, 1, kMaxOutlineLevel));
  sheet_->change([&](SheetContents& contents) {
    engine::add_group(contents, axis, {first, last}, collapsed, grid);
  });
  return true;
}

bool SheetObject::groupRows(int rowFirst, int rowLast, bool collapsed) {
  return run(false, [&] {
    if (!check_rows(rowFirst, rowLast) || !check_loaded_rows(rowFirst, rowLast)) return false;
    const auto summary = summary_of(contents(), Axis::kRows, {rowFirst, rowLast}, limits().grid);
    if (collapsed && summary && !check_loaded(*summary)) return false;
    return add_group(Axis::kRows, rowFirst, rowLast, collapsed);
  });
}

bool SheetObject::groupCols(int colFirst, int colLast, bool collapsed) {
  return run(false, [&] {
    return check_columns(colFirst, colLast) &&
           add_group(Axis::kColumns, colFirst, colLast, collapsed);
  });
}

bool SheetObject::groupSummaryBelow() const {
  return run(false, [&] { return contents().summary_below; });
}
void SheetObject::setGroupSummaryBelow(bool below) {
  run([&] {
    if (contents().summary_below != below) sheet_->change().summary_below = below;
  });
}
bool SheetObject::groupSummaryRight() const {
  return run(false, [&] { return contents().summary_right; });
}
void SheetObject::setGroupSummaryRight(bool right) {
  run([&] {
    if (contents().summary_right != right) sheet_->change().summary_right = right;
  });
}

// Merged ranges.

bool SheetObject::getMerge(int row, int column, int* rowFirst, int* rowLast, int* colFirst,
                           int* colLast) {
  return run(false, [&] {
    if (!check_cell(row, column)) return false;
    const CellRange* found = contents().merges.find({row, column});
    if (found) give_range(*found, rowFirst, rowLast, colFirst, colLast);
    return found != nullptr;
  });
}

// Tables and pivot tables hold no merged cells: programs take such a file for damaged.
bool SheetObject::check_mergeable(const CellRange& range) const {
  if (!check_tables(range)) return false;
  for (const CellRange& pivot : book_.document().pivot_tables(book_.workbook(), *sheet_))
    if (pivot.overlaps(range)) return book_.refuse(false, messages::overlaps_pivot_table(range));
  return true;
}

bool SheetObject::setMerge(int rowFirst, int rowLast, int colFirst, int colLast) {
  return run(false, [&] {
    const CellRange range{rowFirst, rowLast, colFirst, colLast};
    if (!check_range(range)) return false;
    if (rowFirst == rowLast && colFirst == colLast)
      return book_.refuse(false, messages::merge_of_one_cell({rowFirst, colFirst}));
    if (const CellRange* found = contents().merges.meeting(range))
      return *found == range || book_.refuse(false, messages::overlaps_merge(range, *found));
    if (!check_mergeable(range)) return false;
    sheet_->change([&](SheetContents& contents) { contents.merges.add(range); });
    return true;
  });
}

bool SheetObject::delMerge(int row, int column) {
  return run(false, [&] {
    if (!check_cell(row, column) || !contents().merges.find({row, column})) return false;
    sheet_->change([&](SheetContents& contents) { contents.merges.remove_at({row, column}); });
    return true;
  });
}

int SheetObject::mergeSize() const {
  return run(0, [&] { return static_cast<int>(contents().merges.size()); });
}

bool SheetObject::check_merge(int index) const {
  const std::size_t count = contents().merges.size();
  return (index >= 0 && static_cast<std::size_t>(index) < count) ||
         book_.refuse(false, messages::index("merged range", index, count));
}

bool SheetObject::merge(int index, int* rowFirst, int* rowLast, int* colFirst, int* colLast) {
  return run(false, [&] {
    if (!check_merge(index)) return false;
    give_range(contents().merges[static_cast<std::size_t>(index)], rowFirst, rowLast, colFirst,
               colLast);
    return true;
  });
}

bool SheetObject::delMergeByIndex(int index) {
  return run(false, [&] {
    if (!check_merge(index)) return false;
    sheet_->change().merges.remove(static_cast<std::size_t>(index));
    return true;
  });
}

// Cells.

void SheetObject::clear(int rowFirst, int rowLast, int colFirst, int colLast) {
  run([&] {
    if (!check_cell(rowFirst, colFirst)) return;
    const Grid& grid = limits().grid;
    const CellRange range{rowFirst, std::min(rowLast, grid.rows - 1), colFirst,
                          std::min(colLast, grid.columns - 1)};
    if (rowFirst > rowLast) return book_.refuse(messages::row_order(rowFirst, rowLast));
    if (colFirst > colLast) return book_.refuse(messages::column_order(colFirst, colLast));
    if (!check_loaded_rows(range.row_first, range.row_last)) return;
    if (const CellRange* array = contents().arrays.cut_by(range)) {
      const CellAddress inside{std::max(range.row_first, array->row_first),
                               std::max(range.column_first, array->column_first)};
      return book_.refuse(messages::part_of_array(inside, *array));
    }
    if (!check_comments()) return;
    sheet_->change().clear(range);
    book_.contents().values_changed = true;
  });
}

// Of an array's cell the copy has the array's formula for itself.
bool SheetObject::copyCell(int rowSrc, int colSrc, int rowDst, int colDst) {
  return run(false, [&] {
    if (!check_cell(rowSrc, colSrc) || !check_cell(rowDst, colDst)) return false;
    if (!check_loaded(rowSrc)) return false;
    if (rowSrc == rowDst && colSrc == colDst) return true;
    if (!check_writable(rowDst, colDst)) return false;
    const Cell* found = contents().cells.find(rowSrc, colSrc);
    if (!found) {
      sheet_->change().erase_cells({rowDst, rowDst, colDst, colDst});
      book_.contents().values_changed = true;
      return true;
    }
    const Cell cell = *found;
    const Value value = contents().value(cell);
    CellAddress anchor;
    const CellRecord* record = formula_record(cell, {rowSrc, colSrc}, &anchor);
    if (!record) return put(rowDst, colDst, value, cell.style);
    const Grid& grid = limits().grid;
    const std::string_view text = contents().formula(*record, anchor, grid, text_);
    const auto shifted = formula::shift_text(text, rowDst - rowSrc, colDst - colSrc, grid);
    return put_formula(rowDst, colDst, shifted ? *shifted : std::string(text), value, cell.style);
  });
}

// Where the area reaches to the end of the used range its first row and column still have to exist.
void SheetObject::setAutoFitArea(int rowFirst, int colFirst, int rowLast, int colLast) {
  run([&] {
    const CellRange stated = {rowFirst, rowLast == kOpenEnd ? rowFirst : rowLast, colFirst,
                              colLast == kOpenEnd ? colFirst : colLast};
    if (check_range(stated))
      sheet_->change().fit_area = FitArea{rowFirst, colFirst, rowLast, colLast};
  });
}

}  // namespace engine::api
