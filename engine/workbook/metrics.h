// Sizes of columns and rows in pixels at 96 per inch.
//
// The width of a column has three forms. People see characters: how many digits of the default font
// fit, without padding. Screens show whole pixels: the digits and five more. Files store the pixels
// divided by a digit's, cut to 1/256. So a file's width means something only together with the
// digit that it was made for.
#pragma once

#include "engine/workbook/sheet.h"

namespace engine {

// Between the forms; `digit` is the width of a digit in pixels.
int pixels_of_width(double width, int digit);
double width_of_pixels(int pixels, int digit);
int pixels_of_characters(double characters, int digit);
double characters_of_pixels(int pixels, int digit);  // to two decimals

// The file's width of a column that stays as many characters wide while the digits change.
double restated_width(double width, int former_digit, int digit);

// Pixels of a height in points.
int pixels_of_points(double points);

// What a column without a width of its own takes up.
int default_column_pixels(const SheetContents& sheet);

// What a column or row takes up on the screen; nothing when it is hidden.
int column_pixels(const SheetContents& sheet, int column);
int row_pixels(const SheetContents& sheet, int row);

// Where a distance to the right of a column's left edge ends: the column and the rest inside it.
struct Corner {
  int index = 0;
  int offset = 0;
};
Corner walk_columns(const SheetContents& sheet, Corner from, int distance, int column_count);
Corner walk_rows(const SheetContents& sheet, Corner from, int distance, int row_count);

}  // namespace engine
