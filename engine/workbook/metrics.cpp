#include "engine/workbook/metrics.h"

#include <algorithm>
#include <cmath>

namespace engine {

namespace {

constexpr int kPadding = 5;          // pixels beside the digits
constexpr double kMaxWidth = 65535;  // files may say anything; columns end far below

template <class Size>
Corner walk(Corner from, int distance, int count, Size size) {
  int left = from.offset + distance;
  int index = from.index;
  while (index + 1 < count && left >= size(index)) left -= size(index++);
  return {index, std::min(left, std::max(size(index) - 1, 0))};
}

}  // namespace

int pixels_of_width(double width, int digit) {
  const double sane = width > 0 ? std::min(width, kMaxWidth) : 0;
  const double rounding = std::trunc(128.0 / digit);
  return static_cast<int>((256 * sane + rounding) / 256 * digit);
}

double width_of_pixels(int pixels, int digit) {
  return std::trunc(static_cast<double>(pixels) / digit * 256) / 256;
}

// Below one character the padding shrinks with it.
int pixels_of_characters(double characters, int digit) {
  return characters < 1 ? static_cast<int>(std::lround(characters * (digit + kPadding)))
                        : static_cast<int>(std::lround(characters * digit)) + kPadding;
}

double characters_of_pixels(int pixels, int digit) {
  const double exact = pixels < digit + kPadding ? static_cast<double>(pixels) / (digit + kPadding)
                                                 : static_cast<double>(pixels - kPadding) / digit;
  return std::round(exact * 100) / 100;
}

double restated_width(double width, int former_digit, int digit) {
  const double characters =
      characters_of_pixels(pixels_of_width(width, former_digit), former_digit);
  return width_of_pixels(pixels_of_characters(characters, digit), digit);
}

int pixels_of_points(double points) { return static_cast<int>(std::lround(points * 96 / 72)); }

// Without a stated width there is room for the base width and the padding, and more until the
// pixels are a multiple of eight.
int default_column_pixels(const SheetContents& sheet) {
  if (sheet.default_column_width)
    return pixels_of_width(*sheet.default_column_width, sheet.digit_pixels);
  return (sheet.base_column_width * sheet.digit_pixels + kPadding + 7) / 8 * 8;
}

int column_pixels(const SheetContents& sheet, int column) {
  const auto found = std::ranges::lower_bound(sheet.columns, column, {}, &ColumnProperties::last);
  if (found == sheet.columns.end() || found->first > column) return default_column_pixels(sheet);
  if (found->hidden) return 0;
  return found->width ? pixels_of_width(*found->width, sheet.digit_pixels)
                      : default_column_pixels(sheet);
}

int row_pixels(const SheetContents& sheet, int row) {
  const Row* found = sheet.cells.find_row(row);
  const RowProperties* its = found ? sheet.properties(*found) : nullptr;
  if (!its) return sheet.default_row_pixels;
  if (its->hidden) return 0;
  return its->height ? pixels_of_points(*its->height) : sheet.default_row_pixels;
}

Corner walk_columns(const SheetContents& sheet, Corner from, int distance, int column_count) {
  return walk(from, distance, column_count,
              [&](int column) { return column_pixels(sheet, column); });
}

Corner walk_rows(const SheetContents& sheet, Corner from, int distance, int row_count) {
  return walk(from, distance, row_count, [&](int row) { return row_pixels(sheet, row); });
}

}  // namespace engine
