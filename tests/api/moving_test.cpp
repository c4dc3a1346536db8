// Rows and columns that come and go, as callers see it.
#include <gmock/gmock.h>

#include "tests/api/files.h"
#include "tests/xlsx/rich_package.h"

namespace {

using testing::HasSubstr;

Stage rich(int first = -1, int last = -1) {
  Stage stage;
  const std::string bytes = engine::xlsx::zip(engine::xlsx::rich_package());
  EXPECT_TRUE(load(*stage.book, bytes, first < 0 ? -1 : 0, first, last)) << stage.message();
  stage.sheet = stage.book->getSheet(0);
  return stage;
}

TEST(Moving, IsRefusedWithAReason) {
  const struct {
    bool (*call)(libxl::Sheet& sheet);
    const char* message;
  } cases[] = {
      {[](libxl::Sheet& s) { return s.insertRow(-1, 0); }, "row -1 is out of range 0..1048575"},
      {[](libxl::Sheet& s) { return s.removeRow(0, 1048576); },
       "row 1048576 is out of range 0..1048575"},
      {[](libxl::Sheet& s) { return s.insertCol(0, 16384); },
       "column 16384 is out of range 0..16383"},
      {[](libxl::Sheet& s) { return s.removeRow(2, 1); }, "first row 2 is after last row 1"},
      {[](libxl::Sheet& s) { return s.removeCol(2, 1); }, "first column 2 is after last column 1"},
      {[](libxl::Sheet& s) { return s.insertRow(3, 1048575); },
       "inserting 1048573 rows would push used row 5 off the sheet"},
      {[](libxl::Sheet& s) { return s.insertCol(1, 16383); },
       "inserting 16383 columns would push used column 3 off the sheet"},
      {[](libxl::Sheet& s) { return s.insertRow(5, 6); },
       "rows 5..6 would split the array formula in A5:A6"},
      {[](libxl::Sheet& s) { return s.removeRow(5, 9); },
       "rows 5..9 would split the array formula in A5:A6"},
      {[](libxl::Sheet& s) { return s.removeRow(0, 1); },
       "rows 0..1 hold the header of table \"Table1\""},
      {[](libxl::Sheet& s) { return s.removeRow(1, 2); },
       "rows 1..2 hold all data rows of table \"Table1\""},
  };
  Stage stage = rich();
  const std::string before = saved(*stage.book);
  for (const auto& [call, message] : cases) {
    EXPECT_FALSE(call(*stage.sheet));
    EXPECT_EQ(stage.message(), message);
  }
  EXPECT_EQ(saved(*stage.book), before);
}

TEST(Moving, TakesRowsOutsideOfAPartialLoadAlong) {
  Stage stage = rich(1, 2);
  EXPECT_FALSE(stage.sheet->insertRow(4, 4));
  EXPECT_EQ(stage.message(), "row 4 of sheet \"Data\" is not loaded");
  EXPECT_FALSE(stage.sheet->removeRow(2, 3));
  EXPECT_EQ(stage.message(), "row 3 of sheet \"Data\" is not loaded");
  EXPECT_TRUE(stage.sheet->insertRow(2, 3)) << stage.message();
  EXPECT_TRUE(stage.sheet->insertCol(0, 0)) << stage.message();
  EXPECT_TRUE(stage.sheet->writeNum(3, 9, 7)) << stage.message();
  EXPECT_EQ(stage.sheet->cellType(5, 0), 0);
  EXPECT_EQ(stage.message(), "row 5 of sheet \"Data\" is not loaded");
  ASSERT_TRUE(stage.reload()) << stage.message();
  EXPECT_STREQ(stage.sheet->readStr(0, 1), L"Name");
  EXPECT_EQ(stage.sheet->readNum(1, 1), 1.5);
  EXPECT_EQ(stage.sheet->readNum(3, 9), 7);
  EXPECT_STREQ(stage.sheet->readFormula(1, 3), L"SUM(B2,More!A1)");
  EXPECT_STREQ(stage.sheet->readFormula(4, 4), L"B5*2");
  EXPECT_STREQ(stage.sheet->readFormula(6, 1), L"More!A1:A2*2");
  EXPECT_STREQ(stage.book->getSheet(1)->readFormula(2, 0), L"Data!B2+SUM(Table1[Value])");
}

TEST(Moving, LeavesNamesWhereTheyAreWhenAsked) {
  for (const bool follow : {true, false}) {
    Stage stage = rich();
    EXPECT_TRUE(stage.sheet->insertRow(0, 0, follow));
    EXPECT_THAT(part_of(saved(*stage.book), "xl/workbook.xml"),
                HasSubstr(follow ? ">Data!$A$2:$D$7<" : ">Data!$A$1:$D$6<"));
  }
}

// The columns of a table that go take along what formulas inside say of them without its name.
TEST(Moving, BreaksWhatRefersToLostColumnsOfATable) {
  Stage stage = rich();
  EXPECT_TRUE(stage.sheet->writeFormula(2, 2, L"[@Value]+[@Name]+SUM(Table1[[Name]:[Value]])+A9"));
  EXPECT_TRUE(stage.sheet->removeCol(1, 1));
  EXPECT_STREQ(stage.sheet->readFormula(2, 1), L"#REF!+[@Name]+SUM(Table1[[Name]:[Name]])+A9");
  ASSERT_TRUE(stage.reload()) << stage.message();
}

TEST(Moving, WorksInABookOfTheOldFormat) {
  Stage old(xlCreateBookW());
  old.sheet->writeNum(65535, 0, 1);
  EXPECT_FALSE(old.sheet->insertRow(0, 0));
  EXPECT_EQ(old.message(), "inserting 1 rows would push used row 65535 off the sheet");
  EXPECT_TRUE(old.sheet->removeRow(0, 0));
  EXPECT_EQ(old.sheet->readNum(65534, 0), 1);
  EXPECT_EQ(old.sheet->lastRow(), 65535);
  EXPECT_TRUE(old.sheet->insertRow(0, 0));
  EXPECT_TRUE(old.sheet->insertCol(0, 254));
  EXPECT_EQ(old.sheet->readNum(65535, 255), 1);
}

TEST(Moving, PutsAndTakesWhatItPut) {
  Stage stage;
  for (int row = 0; row < 200; ++row)
    for (int column = 0; column < 5; ++column) stage.sheet->writeNum(row, column, row * 5 + column);
  EXPECT_TRUE(stage.sheet->insertRow(70, 133));
  EXPECT_TRUE(stage.sheet->insertCol(2, 4));
  EXPECT_EQ(stage.sheet->readNum(134, 5), 70 * 5 + 2);
  EXPECT_EQ(stage.sheet->lastRow(), 264);
  EXPECT_EQ(stage.sheet->lastCol(), 8);
  EXPECT_TRUE(stage.sheet->writeNum(100, 3, 1));
  EXPECT_TRUE(stage.sheet->removeCol(2, 4));
  EXPECT_TRUE(stage.sheet->removeRow(70, 133));
  for (int row = 0; row < 200; ++row)
    for (int column = 0; column < 5; ++column)
      EXPECT_EQ(stage.sheet->readNum(row, column), row * 5 + column);
  EXPECT_EQ(stage.sheet->lastRow(), 200);
}

}  // namespace
