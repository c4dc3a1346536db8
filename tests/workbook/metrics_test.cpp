#include "engine/workbook/metrics.h"

#include <gtest/gtest.h>

namespace {

using engine::ColumnProperties;
using engine::Corner;
using engine::Sheet;

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

TEST(Metrics, WalksOverWideAndHiddenColumns) {
  Sheet sheet;
  ColumnProperties wide;
  wide.first = wide.last = 1;
  wide.width = 10.7109375;
  ColumnProperties hidden;
  hidden.first = 2;
  hidden.last = 3;
  hidden.hidden = true;
  sheet.columns = {wide, hidden};
  const struct {
    int distance;
    Corner end;
  } cases[] = {{0, {0, 10}}, {54, {1, 0}}, {128, {1, 74}}, {129, {4, 0}}, {100000, {9, 63}}};
  for (const auto& [distance, end] : cases) {
    SCOPED_TRACE(distance);
    const Corner found = engine::walk_columns(sheet, {0, 10}, distance, 10);
    EXPECT_EQ(found.index, end.index);
    EXPECT_EQ(found.offset, end.offset);
  }
}

TEST(Metrics, MeasuresRowsInPixelsOfPoints) {
  Sheet sheet;
  sheet.properties_at(2).height = 30;
  sheet.properties_at(3).hidden = true;
  EXPECT_EQ(engine::row_pixels(sheet, 0), 20);
  EXPECT_EQ(engine::row_pixels(sheet, 2), 40);
  EXPECT_EQ(engine::row_pixels(sheet, 3), 0);
}

}  // namespace
