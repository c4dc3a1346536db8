// Cells: what is written is read, with its format, also after saving and loading.
#include <gmock/gmock.h>

#include <cmath>

#include "tests/api/stage.h"

namespace {

TEST(Cells, KeepTheirKindsThroughAFile) {
  Stage stage;
  libxl::Sheet* sheet = stage.sheet;
  sheet->writeNum(0, 0, 0.1);
  sheet->writeNum(0, 1, -1e300);
  sheet->writeStr(1, 0, L"Größe & \U0001F600 <Maß>");
  sheet->writeStr(1, 1, L"a\r\nb\rc");
  sheet->writeStr(1, 2, L"");
  sheet->writeBool(2, 0, true);
  sheet->writeBool(2, 1, false);
  sheet->writeBool(2, 2, true, nullptr, libxl::ErrorNA);
  sheet->writeError(2, 3, libxl::ErrorDiv0);
  sheet->writeBlank(3, 0, nullptr);
  sheet->writeStr(1048575, 16383, L"last");
  for (const char* pass : {"written", "loaded"}) {
    SCOPED_TRACE(pass);
    sheet = stage.sheet;
    EXPECT_EQ(sheet->readNum(0, 0), 0.1);
    EXPECT_EQ(sheet->readNum(0, 1), -1e300);
    EXPECT_STREQ(sheet->readStr(0, 1), L"-1E+300");
    // A character outside the basic plane is two elements.
    EXPECT_STREQ(sheet->readStr(1, 0), L"Größe & \xD83D\xDE00 <Maß>");
    EXPECT_STREQ(sheet->readStr(1, 1), L"a\nb\nc");
    EXPECT_TRUE(sheet->readBlank(1, 2));
    EXPECT_TRUE(sheet->readBool(2, 0));
    EXPECT_FALSE(sheet->readBool(2, 1));
    EXPECT_EQ(sheet->cellType(2, 1), libxl::CellBoolean);
    EXPECT_EQ(sheet->readError(2, 2), libxl::ErrorNA);
    EXPECT_EQ(sheet->readError(2, 3), libxl::ErrorDiv0);
    EXPECT_EQ(sheet->cellType(3, 0), libxl::CellBlank);
    EXPECT_EQ(sheet->cellType(3, 1), libxl::CellEmpty);
    EXPECT_STREQ(sheet->readStr(1048575, 16383), L"last");
    EXPECT_EQ(stage.message(), "ok");
    if (sheet->readNum(3, 3) != 0 || !stage.reload()) FAIL() << stage.message();
  }
}

TEST(Cells, AnswerNoWithoutARefusal) {
  Stage stage;
  stage.sheet->writeBlank(0, 0, nullptr);
  stage.sheet->writeNum(0, 1, 5);
  EXPECT_EQ(stage.sheet->readStr(0, 0), nullptr);
  EXPECT_FALSE(stage.sheet->readBlank(0, 1));
  EXPECT_FALSE(stage.sheet->readBlank(9, 9));
  EXPECT_EQ(stage.sheet->readError(0, 1), libxl::ErrorNone);
  EXPECT_EQ(stage.sheet->readFormula(0, 1), nullptr);
  EXPECT_EQ(stage.sheet->readComment(0, 1), nullptr);
  stage.sheet->removeComment(0, 1);
  EXPECT_EQ(stage.message(), "ok");
}

TEST(Cells, GiveTheFormatUnlessRefused) {
  Stage stage;
  libxl::Format* bold = stage.book->addFormat();
  stage.sheet->writeNum(0, 0, 5, bold);
  stage.sheet->writeStr(0, 1, L"x", bold);
  libxl::Format* got = nullptr;
  stage.sheet->readNum(0, 0, &got);
  EXPECT_EQ(got, bold);
  stage.sheet->readBlank(7, 7, &got);
  EXPECT_EQ(got, stage.book->format(0));
  got = nullptr;
  stage.sheet->readNum(0, 1, &got);
  EXPECT_EQ(got, nullptr);
  // Without a format a cell keeps the one it has.
  stage.sheet->writeStr(0, 0, L"y");
  EXPECT_EQ(stage.sheet->cellFormat(0, 0), bold);
  stage.sheet->setCellFormat(0, 0, nullptr);
  EXPECT_EQ(stage.sheet->cellFormat(0, 0), stage.book->format(0));
  EXPECT_STREQ(stage.sheet->readStr(0, 0), L"y");
  // An empty cell becomes blank by a format, and stays empty without.
  stage.sheet->setCellFormat(2, 0, nullptr);
  stage.sheet->setCellFormat(2, 1, bold);
  EXPECT_EQ(stage.sheet->cellType(2, 0), libxl::CellEmpty);
  EXPECT_EQ(stage.sheet->cellType(2, 1), libxl::CellBlank);
}

TEST(Cells, AreDatesByTheirFormat) {
  Stage stage;
  libxl::Format* date = stage.book->addFormat();
  date->setNumFormat(stage.book->addCustomNumFormat(L"yyyy-mm-dd"));
  stage.sheet->writeNum(0, 0, 45000, date);
  stage.sheet->writeStr(0, 1, L"45000", date);
  stage.sheet->writeNum(0, 2, 45000);
  stage.sheet->writeFormulaNum(0, 3, L"TODAY()", 45000, date);
  const bool expected[] = {true, false, false, true, false};
  for (int column = 0; column < 5; ++column)
    EXPECT_EQ(stage.sheet->isDate(0, column), expected[column]) << column;
}

TEST(Cells, UsedRangeFollowsWrites) {
  Stage stage;
  const auto range = [&] {
    libxl::Sheet& sheet = *stage.sheet;
    return std::vector<int>{sheet.firstRow(), sheet.lastRow(), sheet.firstCol(), sheet.lastCol()};
  };
  using testing::ElementsAre;
  EXPECT_THAT(range(), ElementsAre(0, 0, 0, 0));
  stage.sheet->writeNum(4, 3, 1);
  EXPECT_THAT(range(), ElementsAre(4, 5, 3, 4));
  stage.sheet->writeBlank(2, 9, nullptr);
  EXPECT_THAT(range(), ElementsAre(2, 5, 3, 10));
  stage.sheet->setCellFormat(9, 1, stage.book->format(0));
  EXPECT_THAT(range(), ElementsAre(2, 10, 1, 10));
  stage.sheet->writeComment(50, 50, L"no cell");
  EXPECT_THAT(range(), ElementsAre(2, 10, 1, 10));
  ASSERT_TRUE(stage.reload()) << stage.message();
  EXPECT_THAT(range(), ElementsAre(2, 10, 1, 10));
}

TEST(Cells, Comments) {
  Stage stage;
  stage.sheet->writeComment(1, 1, L"first\rline", L"Ann");
  stage.sheet->writeComment(1, 1, L"second\rline", L"Bob", 200, 100);
  stage.sheet->writeComment(2, 1, L"", nullptr);
  stage.sheet->writeComment(3, 1, L"gone");
  stage.sheet->removeComment(3, 1);
  for (const char* pass : {"written", "loaded"}) {
    SCOPED_TRACE(pass);
    EXPECT_STREQ(stage.sheet->readComment(1, 1), L"second\nline");
    EXPECT_STREQ(stage.sheet->readComment(2, 1), L"");
    EXPECT_EQ(stage.sheet->readComment(3, 1), nullptr);
    ASSERT_TRUE(stage.reload()) << stage.message();
  }
}

TEST(Cells, Addresses) {
  Stage stage;
  int row = 0;
  int column = 0;
  bool row_relative = false;
  bool col_relative = true;
  stage.sheet->addrToRowCol(L"$xfd1048576", &row, &column, &row_relative, &col_relative);
  EXPECT_EQ(row, 1048575);
  EXPECT_EQ(column, 16383);
  EXPECT_TRUE(row_relative);
  EXPECT_FALSE(col_relative);
  EXPECT_STREQ(stage.sheet->rowColToAddr(4, 2), L"C5");
  EXPECT_STREQ(stage.sheet->rowColToAddr(4, 26, false, true), L"AA$5");
}

}  // namespace
