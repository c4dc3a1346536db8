#include "engine/workbook/auto_fit.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "engine/workbook/metrics.h"

namespace engine {
namespace {

class AutoFit : public ::testing::Test {
 protected:
  void write(int row, int column, std::string_view text, std::uint32_t format = 0) {
    sheet.put_value(row, column, Value::of_text(book.strings.add(text)), format);
  }
  void write(int row, int column, double number, std::uint32_t format = 0) {
    sheet.put_value(row, column, Value::of_number(number), format);
  }
  std::uint32_t format(std::uint16_t aspects, auto&& edit) {
    const std::uint32_t made = *book.styles.add_format();
    edit(book.styles.change_format(made, aspects));
    return made;
  }
  void mark(int column) {
    sheet.columns.change({{column, column, [](ColumnProperties& one) { one.auto_fit = true; }}});
  }
  // 0 for a column that keeps its width.
  int width(int column) const {
    const auto widths = fitted_pixels(book, sheet, tables, column);
    return widths.empty() ? 0 : widths.at(column);
  }

  Workbook book{Limits()};
  SheetContents sheet;
  std::vector<Table> tables;
};

// Within a tenth of what LibreOffice chooses for the same texts in its own stand-in for the font.
TEST_F(AutoFit, ColumnsAreAsWideAsTheirTexts) {
  const struct {
    const char* text;
    double pixels;
  } cases[] = {{"a", 18.8},
               {"Total", 41.5},
               {"Customer", 72.3},
               {"1234567.89", 89.9},
               {"2026-11-21", 87.8},
               {"Müller & Söhne GmbH", 149.5},
               {"Illinois", 50.7},
               {"AB-1029-XY", 87.8},
               {"Description of the goods", 162.9},
               {"€ 1,234.50", 80.6},
               {"YES", 33.2},
               {"support@example.org", 150.6},
               {"The quick brown fox jumps over the lazy dog", 286.4}};
  int column = 0;
  for (const auto& [text, pixels] : cases) {
    write(0, column, text);
    mark(column);
    EXPECT_NEAR(width(column), pixels, pixels / 10) << text;
    ++column;
  }
}

TEST_F(AutoFit, MeasuresWhatCellsShow) {
  const std::uint32_t money = format(kFormatNumber, [&](FormatRecord& one) {
    one.number_format = *book.styles.add_number_format("#,##0.00 \"Euro\"");
  });
  for (int column = 0; column < 4; ++column) mark(column);
  write(0, 0, 1234.5, money);
  write(0, 1, "1,234.50 Euro");
  EXPECT_EQ(width(0), width(1));
  write(0, 2, "short\na longer line\nend");  // the longest line counts
  write(0, 3, "a longer line");
  EXPECT_EQ(width(2), width(3));
  EXPECT_EQ(width(4), 0);  // not marked
  mark(5);
  EXPECT_EQ(width(5), 0);  // nothing in it
}

TEST_F(AutoFit, IndentsAndTurnedTextsTakeTheirRoom) {
  const auto aligned = [&](auto&& edit) {
    return format(kFormatAlignment, [&](FormatRecord& one) { edit(one.alignment); });
  };
  for (int column = 0; column < 3; ++column) mark(column);
  write(0, 0, "A rather long heading");
  write(0, 1, "A rather long heading", aligned([](Alignment& one) { one.indent = 2; }));
  write(0, 2, "A rather long heading", aligned([](Alignment& one) { one.rotation = 90; }));
  EXPECT_EQ(width(1), width(0) + 6 * sheet.digit_pixels);
  EXPECT_LT(width(2), width(0) / 3);
}

TEST_F(AutoFit, TheAreaLimitsRowsAndHiddenRowsDoNotCount) {
  write(0, 0, "a title that goes over several columns");
  write(1, 0, "abc");
  write(2, 0, "abcdefghijkl");
  write(1, 1, "xyz");
  sheet.merges.add({0, 0, 0, 3});
  sheet.fit_area = FitArea{1, 0, -1, -1};
  const int longer = width(0);
  EXPECT_GT(longer, width(1));
  sheet.properties_at(2).hidden = true;
  EXPECT_LT(width(0), longer);
  sheet.fit_area = FitArea{0, 1, -1, -1};
  EXPECT_EQ(width(0), 0);
}

TEST_F(AutoFit, FilesHoldTheWidthsThatWereMeasured) {
  write(0, 1, "abcdefghijkl");
  sheet.fit_area = FitArea{};
  const Columns columns = fitted_columns(book, sheet, tables);
  EXPECT_TRUE(sheet.columns.empty());
  ASSERT_NE(columns.find(1), nullptr);
  EXPECT_TRUE(columns.find(1)->best_fit && columns.find(1)->custom_width);
  EXPECT_EQ(pixels_of_width(*columns.find(1)->width, sheet.digit_pixels), width(1));
  EXPECT_EQ(columns.find(0), nullptr);
}

// In its header row alone, and not where the button is hidden or there is no text. Tables have
// buttons of their own or none.
TEST_F(AutoFit, LeavesRoomForTheButtonOfAFilter) {
  const struct {
    int row;
    const char* text;
    int button;
  } cases[] = {{3, "Customer", 16}, {4, "Customer", 0}, {3, "", 0},        {3, "Customer", 0},
               {3, "Customer", 16}, {4, "Customer", 0}, {3, "Customer", 0}};
  int column = 0;
  for (const auto& [row, text, button] : cases) {
    write(row, column, text);
    write(8, column, "ab");
    mark(column++);
  }
  std::vector<int> plain;
  for (int i = 0; i < column; ++i) plain.push_back(width(i));
  sheet.filter.range = CellRange{3, 9, 0, 3};
  sheet.filter.columns.push_back({3, {}, false});
  tables = {{"With", {3, 9, 4, 5}, 1, 0, true}, {"Without", {3, 9, 6, 6}, 1, 0, false}};
  for (int i = 0; i < column; ++i) EXPECT_EQ(width(i) - plain[i], cases[i].button) << i;
}

}  // namespace
}  // namespace engine
