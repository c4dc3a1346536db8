// Sizes of columns and rows in pixels at 96 per inch.
//
// The width of a column has three forms. People see characters: how many digits of the default font
// fit, without padding. Screens show whole pixels: the digits and five more. Files store the pixels
// divided by a digit's, cut to 1/256. So a file's width means something only together with the
// digit that it was made for.
#pragma once

#include <vector>

#include "engine/formula/interval.h"
#include "engine/workbook/sheet.h"

namespace engine {

inline constexpr double kPixelsPerPoint = 96.0 / 72;

// Pixels of a column beside its digits.
inline constexpr int kColumnPadding = 5;

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

// What a column takes up when it is shown.
int unhidden_column_pixels(const SheetContents& sheet, int column);

// What a column or row takes up on the screen; nothing when it is hidden.
int column_pixels(const SheetContents& sheet, int column);
int row_pixels(const SheetContents& sheet, int row);

// A place inside a column or row.
struct Corner {
  int index = 0;
  int offset = 0;  // pixels from its left or upper edge
};

// What columns or rows take up together, from one up to but not including another.
long long column_distance(const SheetContents& sheet, int first, int end);
long long row_distance(const SheetContents& sheet, int first, int end);

// Where a distance ends that begins at a place; at the last of `count` columns or rows at most.
// They look at no more of a sheet than lies on the way.
Corner walk_columns(const SheetContents& sheet, Corner from, long long distance, int count);
Corner walk_rows(const SheetContents& sheet, Corner from, long long distance, int count);

// How far down a row begins, and which row lies so far down: one of the first `count`. Who asks
// again and again pays for the rows that were measured since a change, not for all of them.
long long row_position(const SheetContents& sheet, int row);
Corner row_at_position(const SheetContents& sheet, long long position, int count);

// Where the columns or rows of a sheet begin, measured once for many questions.
class Edges {
 public:
  static Edges of_columns(const SheetContents& sheet, int count);
  static Edges of_rows(const SheetContents& sheet, int count);

  // Pixels from the sheet's edge to that of a column or row.
  long long position(int index) const;
  // After others of that size were inserted, or some removed.
  Edges moved(const formula::Move& move, int size) const;
  // Where a distance ends that begins at a place; at the last column or row at most.
  Corner walk(Corner from, int distance) const;

 private:
  // Columns or rows of one size, up to the next run.
  struct Run {
    int first = 0;
    long long begin = 0;
    int size = 0;
  };

  Edges(int count, int usual);
  void append(int first, int last, int size);
  void start_run(int first, int size);

  std::vector<Run> runs_;
  int count_;
  int usual_;
};

}  // namespace engine
