#include "engine/workbook/metrics.h"

#include <algorithm>
#include <cmath>

namespace engine {

namespace {

// The width of a digit of Calibri 11 and of Arial 10.
constexpr int kDigitPixels = 7;

template <class Size>
Corner walk(Corner from, int distance, int count, Size size) {
  int left = from.offset + distance;
  int index = from.index;
  while (index + 1 < count && left >= size(index)) left -= size(index++);
  return {index, std::min(left, std::max(size(index) - 1, 0))};
}

}  // namespace

int pixels_of_width(double width, int digit_pixels) {
  const double rounding = std::trunc(128.0 / digit_pixels);
  return static_cast<int>(std::trunc((256 * width + rounding) / 256 * digit_pixels));
}

int column_pixels(const Sheet& sheet, int column) {
  const auto found = std::ranges::lower_bound(sheet.columns, column, {}, &ColumnProperties::last);
  if (found == sheet.columns.end() || found->first > column) return sheet.default_column_pixels;
  if (found->hidden) return 0;
  return found->width ? pixels_of_width(*found->width, kDigitPixels) : sheet.default_column_pixels;
}

int row_pixels(const Sheet& sheet, int row) {
  const Row* found = sheet.cells.find_row(row);
  const RowProperties* its = found ? sheet.properties(*found) : nullptr;
  if (!its) return sheet.default_row_pixels;
  if (its->hidden) return 0;
  return its->height ? static_cast<int>(std::lround(*its->height * 96 / 72))
                     : sheet.default_row_pixels;
}

Corner walk_columns(const Sheet& sheet, Corner from, int distance, int column_count) {
  return walk(from, distance, column_count,
              [&](int column) { return column_pixels(sheet, column); });
}

Corner walk_rows(const Sheet& sheet, Corner from, int distance, int row_count) {
  return walk(from, distance, row_count, [&](int row) { return row_pixels(sheet, row); });
}

}  // namespace engine
