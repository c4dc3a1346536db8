#include "engine/workbook/metrics.h"

#include <gtest/gtest.h>

#include <cmath>

#include "engine/workbook/font_metrics.h"

namespace {

using engine::ColumnProperties;
using engine::Corner;
using engine::SheetContents;

TEST(Metrics, TurnsFileWidthsIntoPixels) {
  const struct {
    double width;
    int pixels;
  } cases[] = {{10.7109375, 75}, {13.28515625, 93}, {9.140625, 64}, {0, 0}};
  for (const auto& [width, pixels] : cases) {
    SCOPED_TRACE(width);
    EXPECT_EQ(engine::pixels_of_width(width, 7), pixels);
  }
}

// Widths that files hold for what people typed, in three default fonts.
TEST(Metrics, CharactersPixelsAndFileWidths) {
  const struct {
    int digit;
    int pixels;
    double characters;
    double width;
    double shown;
  } cases[] = {
      {7, 75, 10, 10.7109375, 10},
      {7, 64, 8.43, 9.140625, 8.43},
      {7, 93, 12.5, 13.28515625, 12.57},
      {7, 6, 0.5, 0.85546875, 0.5},
      {7, 0, 0, 0, 0},
      {7, 12, 1, 1.7109375, 1},
      {7, 1790, 255, 255.7109375, 255},
      {8, 85, 10, 10.625, 10},
      {15, 155, 10, 10.33203125, 10},
  };
  for (const auto& [digit, pixels, characters, width, shown] : cases) {
    SCOPED_TRACE(characters);
    EXPECT_EQ(engine::pixels_of_characters(characters, digit), pixels);
    EXPECT_EQ(engine::width_of_pixels(pixels, digit), width);
    EXPECT_EQ(engine::pixels_of_width(width, digit), pixels);
    EXPECT_EQ(engine::characters_of_pixels(pixels, digit), shown);
  }
  for (int digit = 1; digit <= 128; ++digit)
    for (int pixels = 0; pixels < 2000; ++pixels)
      ASSERT_EQ(engine::pixels_of_width(engine::width_of_pixels(pixels, digit), digit), pixels)
          << digit;
}

TEST(Metrics, WidthsThatCannotBeAreStillPixels) {
  for (const double width : {-1.0, 1e300, std::nan("")})
    EXPECT_GE(engine::pixels_of_width(width, 7), 0) << width;
}

TEST(Metrics, DigitsOfFonts) {
  const struct {
    const char* name;
    double size;
    int pixels;
  } cases[] = {{"Calibri", 11, 7},         {"Arial", 10, 7},       {"ARIAL", 10, 7},
               {"Calibri", 20, 14},        {"Courier New", 10, 8}, {"Verdana", 10, 8},
               {"Times New Roman", 12, 8}, {"Nobody's", 11, 7},    {"宋体", 11, 8},
               {"Calibri", 1, 1},          {"Arial", 409, 303}};
  for (const auto& [name, size, pixels] : cases) {
    SCOPED_TRACE(name);
    engine::FontRecord font;
    font.name = name;
    font.size = size;
    EXPECT_EQ(engine::digit_pixels(font), pixels);
  }
}

TEST(Metrics, ColumnsWithoutAWidthFollowTheDefaultFont) {
  SheetContents sheet;
  EXPECT_EQ(engine::default_column_pixels(sheet), 64);
  sheet.digit_pixels = 15;
  EXPECT_EQ(engine::default_column_pixels(sheet), 128);
  sheet.base_column_width = 10;
  EXPECT_EQ(engine::default_column_pixels(sheet), 160);
  sheet.default_column_width = 10.33203125;
  EXPECT_EQ(engine::default_column_pixels(sheet), 155);
}

TEST(Metrics, WalksOverWideAndHiddenColumns) {
  SheetContents sheet;
  ColumnProperties wide;
  wide.first = wide.last = 1;
  wide.width = 10.7109375;
  ColumnProperties hidden;
  hidden.first = 2;
  hidden.last = 3;
  hidden.hidden = true;
  sheet.columns.append(wide);
  sheet.columns.append(hidden);
  const struct {
    int distance = 0;
    Corner end;
  } cases[] = {{0, {0, 10}}, {54, {1, 0}}, {128, {1, 74}}, {129, {4, 0}}, {100000, {9, 63}}};
  const auto edges = engine::Edges::of_columns(sheet, 10);
  for (const auto& [distance, end] : cases) {
    SCOPED_TRACE(distance);
    const Corner found = edges.walk({0, 10}, distance);
    EXPECT_EQ(found.index, end.index);
    EXPECT_EQ(found.offset, end.offset);
  }
}

TEST(Metrics, MeasuresRowsInPixelsOfPoints) {
  SheetContents sheet;
  sheet.properties_at(2).height = 30;
  sheet.properties_at(3).hidden = true;
  EXPECT_EQ(engine::row_pixels(sheet, 0), 20);
  EXPECT_EQ(engine::row_pixels(sheet, 2), 40);
  EXPECT_EQ(engine::row_pixels(sheet, 3), 0);
}

// Edges agree with the sizes one by one, also where everything up to the end is hidden.
TEST(Metrics, KeepsEdgesOfManyRows) {
  SheetContents sheet;
  sheet.properties_at(0).height = 30;
  sheet.properties_at(1).height = 15;
  sheet.properties_at(4).height = 1e300;
  for (const int row : {5, 6, 8, 9}) sheet.properties_at(row).hidden = true;
  const auto edges = engine::Edges::of_rows(sheet, 10);
  long long position = 0;
  for (int row = 0; row < 10; ++row) {
    EXPECT_EQ(edges.position(row), position) << row;
    position += engine::row_pixels(sheet, row);
  }
  // Where rows are hidden unless they are there, the same holds.
  sheet.hides_rows = true;
  const auto few = engine::Edges::of_rows(sheet, 10);
  position = 0;
  for (int row = 0; row < 10; ++row) {
    EXPECT_EQ(few.position(row), position) << row;
    position += engine::row_pixels(sheet, row);
  }
  EXPECT_EQ(position, 40 + 20 + 546);

  const Corner last = edges.walk({7, 5}, 100);
  EXPECT_EQ(std::pair(last.index, last.offset), std::pair(9, 0));
}

// Whatever was asked before a row changes.
TEST(Metrics, FindsRowsWhileTheirSizesChange) {
  constexpr int kRows = 400;
  SheetContents sheet;
  for (int step = 0; step < 300; ++step) {
    engine::RowProperties& changed = sheet.properties_at(step * 89 % kRows);
    changed.height = step % 40;
    changed.hidden = step % 3 == 0;
    const int asked = step * 139 % kRows;
    long long position = 0;
    for (int row = 0; row < asked; ++row) position += engine::row_pixels(sheet, row);
    EXPECT_EQ(engine::row_position(sheet, asked), position);
    const int size = engine::row_pixels(sheet, asked);
    if (size == 0) continue;
    const Corner found = engine::row_at_position(sheet, position + size - 1, kRows);
    EXPECT_EQ(std::pair(found.index, found.offset), std::pair(asked, size - 1));
  }
  EXPECT_EQ(engine::row_at_position(sheet, 1 << 30, kRows).index, kRows - 1);
}

}  // namespace
