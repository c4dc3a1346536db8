// Sizes of columns and rows in pixels at 96 per inch.
#pragma once

#include "engine/workbook/sheet.h"

namespace engine {

// Pixels of a column width as a file stores it: in digits of the default font, padding included.
int pixels_of_width(double width, int digit_pixels);

// What a column or row takes up on the screen; nothing when it is hidden.
int column_pixels(const Sheet& sheet, int column);
int row_pixels(const Sheet& sheet, int row);

// Where a distance to the right of a column's left edge ends: the column and the rest inside it.
struct Corner {
  int index = 0;
  int offset = 0;
};
Corner walk_columns(const Sheet& sheet, Corner from, int distance, int column_count);
Corner walk_rows(const Sheet& sheet, Corner from, int distance, int row_count);

}  // namespace engine
