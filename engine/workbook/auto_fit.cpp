#include "engine/workbook/auto_fit.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>
#include <string_view>

#include "engine/workbook/display.h"
#include "engine/workbook/font_metrics.h"
#include "engine/workbook/metrics.h"

namespace engine {

namespace {

constexpr double kMaxCharacters = 255;
constexpr int kDigitsAnIndent = 3;
constexpr double kLineHeight = 1.2;    // of the font's size
constexpr double kWidestLetter = 1.1;  // of the font's size, bold ones included
constexpr double kButton = 16;         // pixels, of a filter

// How wide a text is that stands in so many lines at the angle of its format.
double turned(double width, double height, std::uint8_t rotation) {
  const int degrees = rotation > 90 ? rotation - 90 : rotation;
  const double angle = degrees * std::numbers::pi / 180;
  return width * std::cos(angle) + height * std::sin(angle);
}

class Measuring {
 public:
  Measuring(const Workbook& book, const SheetContents& sheet, std::span<const Table> tables,
            std::optional<int> only)
      : book_(book), sheet_(sheet) {
    for (const Table& table : tables)
      if (table.has_buttons) headers_.emplace(table.cells.row_first, table.cells);
    CellRange used;
    if (!sheet.cells.used_range(&used)) return;
    const auto mark = [&](int first, int last, int row_first, int row_last) {
      first = std::max(first, only.value_or(first));
      last = std::min({last, only.value_or(last), used.column_last});
      for (int column = first; column <= last; ++column)
        marked_.insert_or_assign(column, Column{row_first, row_last, 0});
    };
    const auto mark_run = [&](const ColumnProperties& run) {
      if (run.auto_fit) mark(run.first, run.last, 0, used.row_last);
    };
    if (!only) std::ranges::for_each(sheet.columns, mark_run);
    else if (const ColumnProperties* run = sheet.columns.find(*only)) mark_run(*run);
    if (!sheet.fit_area) return;
    const auto end = [](int stated, int of_used) { return stated < 0 ? of_used : stated; };
    mark(sheet.fit_area->column_first, end(sheet.fit_area->column_last, used.column_last),
         sheet.fit_area->row_first, end(sheet.fit_area->row_last, used.row_last));
  }

  std::map<int, int> measure() {
    std::map<int, int> widths;
    if (marked_.empty()) return widths;
    for (const Row& row : sheet_.cells.rows()) measure_row(row);
    const int most = pixels_of_characters(kMaxCharacters, sheet_.digit_pixels);
    for (const auto& [column, its] : marked_) {
      if (its.text == 0) continue;
      const double wanted = std::ceil(its.text) + kColumnPadding + sheet_.digit_pixels;
      widths.emplace(column, static_cast<int>(std::min<double>(wanted, most)));
    }
    return widths;
  }

 private:
  struct Column {
    int row_first;
    int row_last;
    double text;  // pixels
  };

  void measure_row(const Row& row) {
    const RowProperties* properties = sheet_.properties(row);
    if (properties && properties->hidden) return;
    const int number = static_cast<int>(row.number);
    for (const Cell& cell : row.span()) {
      const auto found = marked_.find(cell.column);
      if (found == marked_.end()) continue;
      Column& column = found->second;
      if (number < column.row_first || number > column.row_last) continue;
      const CellRange* merge = sheet_.merges.find({number, cell.column});
      if (merge && merge->column_first != merge->column_last) continue;
      const double button = button_at(number, cell.column);
      const double text = width_of(cell, column.text - button);
      if (text > 0) column.text = std::max(column.text, text + button);
    }
  }

  // How wide the button is that stands beside the text.
  double button_at(int row, int column) const {
    const auto& range = sheet_.filter.range;
    if (range && row == range->row_first && range->contains(row, column)) {
      const ColumnFilter* its = find_column(sheet_.filter, column);
      return !its || its->shows_button ? kButton : 0;
    }
    const auto [first, last] = headers_.equal_range(row);
    return std::any_of(first, last,
                       [&](const auto& one) { return one.second.contains(row, column); })
               ? kButton
               : 0;
  }

  // At most `known` where a glance tells that the cell is no wider.
  double width_of(const Cell& cell, double known) const {
    const FormatRecord& format = book_.styles.format(cell.style);
    const FontRecord& font = book_.styles.font(format.font);
    const double em = font.size * kPixelsPerPoint;
    const double indent = format.alignment.indent * kDigitsAnIndent * sheet_.digit_pixels;
    const std::uint8_t rotation = format.alignment.rotation;
    const std::string text = display(book_, sheet_, cell);
    if (text.empty()) return 0;
    if (rotation == 0 && static_cast<double>(text.size()) * kWidestLetter * em + indent <= known)
      return known;
    double width = 0;
    double height = 0;
    for (std::string_view rest = text; !rest.empty();) {
      const std::string_view line = rest.substr(0, rest.find('\n'));
      rest.remove_prefix(std::min(rest.size(), line.size() + 1));
      width = std::max(width, text_pixels(line, font));
      height += kLineHeight * em;
    }
    if (rotation == kStacked) return em + indent;
    return turned(width, height, rotation) + indent;
  }

  static constexpr std::uint8_t kStacked = 255;

  const Workbook& book_;
  const SheetContents& sheet_;
  std::map<int, Column> marked_;
  std::multimap<int, CellRange> headers_;  // tables with buttons, by the row that has them
};

}  // namespace

std::map<int, int> fitted_pixels(const Workbook& book, const SheetContents& sheet,
                                 std::span<const Table> tables, std::optional<int> column) {
  return Measuring(book, sheet, tables, column).measure();
}

std::optional<FitArea> moved(const FitArea& area, const formula::Move& move, const Grid& grid) {
  const bool rows = move.axis == formula::Axis::kRows;
  FitArea after = area;
  int& first = rows ? after.row_first : after.column_first;
  int& last = rows ? after.row_last : after.column_last;
  const int size = rows ? grid.rows : grid.columns;
  const auto interval = formula::moved({first, last < 0 ? size - 1 : last}, move, size);
  if (!interval) return std::nullopt;
  first = interval->first;
  if (last >= 0) last = interval->last;
  return after;
}

Columns fitted_columns(const Workbook& book, const SheetContents& sheet,
                       std::span<const Table> tables) {
  Columns columns = sheet.columns;
  for (const auto& [column, pixels] : fitted_pixels(book, sheet, tables)) {
    const double width = width_of_pixels(pixels, sheet.digit_pixels);
    columns.change({{column, column, [width](ColumnProperties& one) {
                       one.width = width;
                       one.custom_width = true;
                       one.best_fit = true;
                     }}});
  }
  return columns;
}

}  // namespace engine
