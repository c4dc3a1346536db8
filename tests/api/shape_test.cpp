// Sizes, hidden rows and columns, groups, merged ranges, cleared and copied cells: as they were
// set, also after saving and loading.
#include <gmock/gmock.h>

#include <array>
#include <functional>

#include "tests/api/files.h"
#include "tests/xlsx/rich_package.h"

namespace {

using testing::HasSubstr;

// Checks what was set, saves, loads and checks again.
void expect_before_and_after_a_save(Stage& stage, const std::function<void()>& check) {
  for (const char* pass : {"set", "loaded"}) {
    SCOPED_TRACE(pass);
    check();
    ASSERT_TRUE(stage.reload()) << stage.message();
  }
}

Stage rich_book(int sheet = -1, int first = -1, int last = -1) {
  Stage stage;
  const std::string bytes = engine::xlsx::zip(engine::xlsx::rich_package());
  EXPECT_TRUE(load(*stage.book, bytes, sheet, first, last)) << stage.message();
  stage.sheet = stage.book->getSheet(0);
  return stage;
}

using Merge = std::array<int, 4>;

Merge merge_at(libxl::Sheet& sheet, int row, int column) {
  Merge merge{-1, -1, -1, -1};
  sheet.getMerge(row, column, merge.data(), &merge[1], &merge[2], &merge[3]);
  return merge;
}

Merge merge_of(libxl::Sheet& sheet, int index) {
  Merge merge{-1, -1, -1, -1};
  sheet.merge(index, merge.data(), &merge[1], &merge[2], &merge[3]);
  return merge;
}

constexpr Merge kNone{-1, -1, -1, -1};

TEST(Shape, WidthsAreWholePixels) {
  const struct {
    double set;
    double read;
  } cases[] = {{10, 10}, {12.5, 12.57}, {8.43, 8.43}, {0.5, 0.5}, {255, 255}, {1, 1}};
  Stage stage;
  int column = 0;
  for (const auto& one : cases) {
    EXPECT_TRUE(stage.sheet->setCol(column, column, one.set));
    ++column;
  }
  expect_before_and_after_a_save(stage, [&] {
    column = 0;
    for (const auto& one : cases) EXPECT_EQ(stage.sheet->colWidth(column++), one.read);
    EXPECT_EQ(stage.sheet->colWidth(column), 8.43);
    EXPECT_EQ(stage.sheet->colWidth(16383), 8.43);
  });
  EXPECT_THAT(part_of(saved(*stage.book), "xl/worksheets/sheet1.xml"),
              HasSubstr(R"(<col min="1" max="1" width="10.7109375" customWidth="1"/>)"));
}

TEST(Shape, ColumnsAndRowsHaveSizesFormatsAndAreHidden) {
  Stage stage;
  libxl::Format* bold = stage.book->addFormat();
  bold->setAlignH(libxl::AlignHCenter);
  libxl::Sheet* sheet = stage.sheet;
  sheet->writeNum(5, 3, 1);
  sheet->setCol(2, 5, 20, bold);
  sheet->setCol(3, 3, 0);                 // keeps its width
  sheet->setCol(5, 5, 9, nullptr, true);  // keeps its format
  sheet->setColHidden(9, true);
  sheet->setColHidden(10, false);
  sheet->setRow(1, 30, bold);
  sheet->setRow(1, 0);
  sheet->setRow(2, 33.5, nullptr, true);
  sheet->setRowHidden(2, false);
  sheet->setRow(3, 12);
  sheet->setRow(3, -1);
  sheet->setRowHidden(4, true);
  sheet->writeNum(1, 7, 1);
  sheet->writeNum(6, 4, 1);
  expect_before_and_after_a_save(stage, [&] {
    sheet = stage.sheet;
    EXPECT_EQ(sheet->colWidth(3), 20);
    EXPECT_EQ(sheet->colWidth(5), 9);
    for (const auto& [column, hidden] :
         {std::pair(2, false), {3, true}, {4, false}, {5, true}, {9, true}, {10, false}})
      EXPECT_EQ(sheet->colHidden(column), hidden) << column;
    EXPECT_EQ(sheet->colWidth(9), 8.43);
    EXPECT_EQ(sheet->rowHeight(0), 15);
    EXPECT_EQ(sheet->rowHeight(1), 30);
    EXPECT_EQ(sheet->rowHeight(2), 33.5);
    EXPECT_EQ(sheet->rowHeight(3), 15);
    for (int row = 0; row < 6; ++row) EXPECT_EQ(sheet->rowHidden(row), row == 1 || row == 4);
    // Cells that were there keep their format, new ones look like their row or column.
    const auto centred = [&](int row, int column) {
      return sheet->cellFormat(row, column)->alignH() == libxl::AlignHCenter;
    };
    EXPECT_FALSE(centred(5, 3));
    EXPECT_TRUE(centred(6, 4) && centred(1, 7) && centred(9, 5) && centred(1, 9));
    EXPECT_EQ(sheet->lastRow(), 7);
    EXPECT_EQ(stage.message(), "ok");
  });
}

// A sheet may hide all rows that its file does not list; those stay hidden when cells are written.
TEST(Shape, RowsThatAreNotThereMayBeHidden) {
  Stage stage;
  stage.sheet->writeNum(0, 0, 1);
  const std::string part = "xl/worksheets/sheet1.xml";
  const std::string bytes =
      with_replaced(with_replaced(saved(*stage.book), part, "</row>", R"(</row><row r="3"/>)"),
                    part, R"(defaultRowHeight="15")", R"(defaultRowHeight="15" zeroHeight="1")");
  ASSERT_TRUE(load(*stage.book, bytes));
  stage.sheet = stage.book->getSheet(0);
  stage.sheet->writeNum(4, 0, 1);
  stage.sheet->setRow(5, 20);
  stage.sheet->setRowHidden(6, false);
  stage.sheet->groupRows(7, 7, false);
  expect_before_and_after_a_save(stage, [&] {
    const bool expected[] = {false, true, false, true, true, false, false, true, true};
    for (int row = 0; row < 9; ++row) EXPECT_EQ(stage.sheet->rowHidden(row), expected[row]) << row;
  });
}

TEST(Shape, OldBooksHaveLowerRows) {
  Stage old(xlCreateBookW());
  EXPECT_EQ(old.sheet->rowHeight(0), 12.75);
  EXPECT_EQ(old.sheet->colWidth(0), 8.43);
  EXPECT_TRUE(old.sheet->setCol(0, 255, 12) && old.sheet->setMerge(0, 65535, 0, 255));
  EXPECT_FALSE(old.sheet->setCol(0, 256, 12));
  old.sheet->writeNum(65535, 255, 1);
  old.sheet->clear();
  EXPECT_EQ(old.sheet->lastRow(), 0);
}

TEST(Shape, GroupsNestAndMarkWhatSumsThemUp) {
  Stage stage;
  stage.sheet->groupRows(1, 6, false);
  stage.sheet->groupRows(2, 4);
  stage.sheet->groupCols(3, 5);
  stage.sheet->setGroupSummaryBelow(false);
  stage.sheet->setGroupSummaryRight(false);
  stage.sheet->groupRows(11, 12);
  stage.sheet->groupCols(0, 1);  // nothing stands left of it
  expect_before_and_after_a_save(stage, [&] {
    EXPECT_FALSE(stage.sheet->groupSummaryBelow() || stage.sheet->groupSummaryRight());
    for (int row = 0; row < 14; ++row)
      EXPECT_EQ(stage.sheet->rowHidden(row), (row >= 2 && row <= 4) || row == 11 || row == 12);
    const std::string part = part_of(saved(*stage.book), "xl/worksheets/sheet1.xml");
    for (const char* text :
         {R"(<sheetPr><outlinePr summaryBelow="0" summaryRight="0"/></sheetPr>)",
          R"(outlineLevelRow="2" outlineLevelCol="1"/>)",
          R"(<cols><col min="1" max="2" width="9.140625" hidden="1" outlineLevel="1"/>)"
          R"(<col min="4" max="6" width="9.140625" hidden="1" outlineLevel="1"/>)"
          R"(<col min="7" max="7" width="9.140625" collapsed="1"/></cols>)",
          R"(<row r="2" outlineLevel="1"></row><row r="3" hidden="1" outlineLevel="2"></row>)",
          R"(<row r="5" hidden="1" outlineLevel="2"></row>)"
          R"(<row r="6" outlineLevel="1" collapsed="1"></row>)",
          R"(<row r="11" collapsed="1"></row><row r="12" hidden="1" outlineLevel="1"></row>)"})
      EXPECT_THAT(part, HasSubstr(text));
  });
}

TEST(Shape, MergesKeepTheirOrder) {
  Stage stage;
  libxl::Sheet* sheet = stage.sheet;
  sheet->writeNum(1, 2, 5);
  EXPECT_TRUE(sheet->setMerge(1, 2, 1, 2));
  EXPECT_TRUE(sheet->setMerge(5, 5, 0, 16383));
  EXPECT_FALSE(sheet->setMerge(0, 1048575, 9, 9));
  EXPECT_TRUE(sheet->setMerge(8, 9, 0, 0));
  EXPECT_TRUE(sheet->setMerge(1, 2, 1, 2));  // the same again
  EXPECT_TRUE(sheet->delMergeByIndex(1));
  EXPECT_TRUE(sheet->setMerge(5, 6, 0, 4));
  expect_before_and_after_a_save(stage, [&] {
    EXPECT_EQ(stage.sheet->mergeSize(), 3);
    EXPECT_EQ(merge_of(*stage.sheet, 0), (Merge{1, 2, 1, 2}));
    EXPECT_EQ(merge_of(*stage.sheet, 1), (Merge{8, 9, 0, 0}));
    EXPECT_EQ(merge_of(*stage.sheet, 2), (Merge{5, 6, 0, 4}));
    EXPECT_EQ(merge_at(*stage.sheet, 2, 2), (Merge{1, 2, 1, 2}));
    EXPECT_EQ(merge_at(*stage.sheet, 0, 0), kNone);
    EXPECT_EQ(stage.sheet->readNum(1, 2), 5);
    EXPECT_FALSE(stage.sheet->delMerge(3, 3));
    EXPECT_EQ(stage.message(), "ok");
  });
  for (const int row : {2, 6, 9}) EXPECT_TRUE(stage.sheet->delMerge(row, row == 2 ? 1 : 0));
  ASSERT_TRUE(stage.reload());
  EXPECT_EQ(stage.sheet->mergeSize(), 0);
}

// Programs take such a file for damaged.
TEST(Shape, MergesMeetNoTable) {
  auto parts = engine::xlsx::rich_package();
  const std::string rels = "xl/worksheets/_rels/sheet2.xml.rels";
  parts[rels] = engine::xlsx::relations({{"pivotTable", "../pivotTables/pivotTable1.xml"}});
  parts["xl/pivotTables/pivotTable1.xml"] =
      R"(<pivotTableDefinition xmlns=")" + std::string(engine::xlsx::kMainNamespace) +
      R"("><location ref="C3:F20" rowPageCount="1"/></pivotTableDefinition>)";
  Stage stage;
  ASSERT_TRUE(load(*stage.book, engine::xlsx::zip(parts)));
  stage.sheet = stage.book->getSheet(0);
  EXPECT_FALSE(stage.sheet->setMerge(2, 3, 2, 3));
  EXPECT_EQ(stage.message(), R"(range C3:D4 overlaps table "Table1")");
  EXPECT_TRUE(stage.sheet->setMerge(3, 4, 0, 2));
  stage.sheet = stage.book->getSheet(1);
  EXPECT_FALSE(stage.sheet->setMerge(19, 19, 5, 6));
  EXPECT_EQ(stage.message(), "range F20:G20 overlaps a pivot table");
  EXPECT_TRUE(stage.sheet->setMerge(20, 20, 5, 6));
  // The fields above that choose its page belong to it, and all of it moves.
  EXPECT_FALSE(stage.sheet->setMerge(0, 0, 2, 3));
  EXPECT_EQ(stage.message(), "range C1:D1 overlaps a pivot table");
  EXPECT_TRUE(stage.sheet->insertRow(0, 4)) << stage.message();
  EXPECT_TRUE(stage.sheet->setMerge(0, 0, 2, 3));
  EXPECT_FALSE(stage.sheet->setMerge(24, 24, 5, 6));
}

TEST(Shape, ClearLeavesNothingInTheCells) {
  Stage stage = rich_book();
  libxl::Sheet* sheet = stage.sheet;
  sheet->clear(4, 4, 0, 5);
  EXPECT_EQ(stage.message(), "cell A5 is part of the array formula in A5:A6");
  sheet->clear(5, 9, 0, 5);
  EXPECT_EQ(stage.message(), "cell A6 is part of the array formula in A5:A6");
  sheet->setMerge(4, 5, 1, 2);
  sheet->setRow(4, 40);
  sheet->clear(0, 1, 0, 0);
  sheet->clear(3, 2000000, 0, 2000000);
  EXPECT_EQ(stage.message(), "ok");
  expect_before_and_after_a_save(stage, [&] {
    sheet = stage.sheet;
    EXPECT_EQ(sheet->cellType(1, 0), libxl::CellEmpty);
    EXPECT_EQ(sheet->readComment(0, 0), nullptr);
    EXPECT_FALSE(sheet->isFormula(4, 0));
    EXPECT_EQ(sheet->lastRow(), 3);
    EXPECT_STREQ(sheet->readFormula(2, 3), L"A3*2");
    EXPECT_EQ(sheet->mergeSize(), 1);
    EXPECT_EQ(sheet->rowHeight(4), 40);
    EXPECT_EQ(sheet->colWidth(0), 12);
  });
  EXPECT_TRUE(stage.sheet->writeNum(5, 0, 1)) << "the array is gone";
  stage.sheet->clear();
  EXPECT_EQ(stage.sheet->lastRow(), 0);
}

TEST(Shape, CopiedCellsHaveValuesFormulasAndFormats) {
  const struct {
    const char* source;
    int row;
    int column;
    const wchar_t* formula;  // of the copy, far below and one column to the left
    const wchar_t* text;     // null: no text
  } cases[] = {
      {"a number with a format", 1, 1, nullptr, L"45000"},
      {"rich text", 0, 2, nullptr, L"rich text"},
      {"a formula", 1, 2, L"SUM(#REF!,#REF!)", L"8.5"},
      {"a shared formula", 2, 3, L"#REF!*2", L"0"},
      {"nothing", 9, 9, nullptr, nullptr},
  };
  Stage stage = rich_book();
  for (const auto& one : cases) {
    const int row = one.row + 20;
    stage.sheet->writeComment(row, one.column - 1, L"stays");
    stage.sheet->writeNum(row, one.column - 1, 77);
    EXPECT_TRUE(stage.sheet->copyCell(one.row, one.column, row, one.column - 1));
  }
  // Of an array a cell gets the formula for itself.
  EXPECT_TRUE(stage.sheet->copyCell(5, 0, 6, 1));
  EXPECT_FALSE(stage.sheet->copyCell(0, 0, 5, 0));
  EXPECT_EQ(stage.message(), "cell A6 is part of the array formula in A5:A6");
  EXPECT_TRUE(stage.sheet->copyCell(5, 0, 5, 0));
  expect_before_and_after_a_save(stage, [&] {
    libxl::Sheet* sheet = stage.sheet;
    for (const auto& [source, row, column, formula, text] : cases) {
      SCOPED_TRACE(source);
      const int to = row + 20;
      EXPECT_STREQ(sheet->readFormula(to, column - 1), formula);
      EXPECT_STREQ(sheet->readStr(to, column - 1), text);
      EXPECT_EQ(sheet->cellFormat(to, column - 1), sheet->cellFormat(row, column));
      EXPECT_STREQ(sheet->readComment(to, column - 1), L"stays");
    }
    EXPECT_EQ(sheet->cellType(29, 8), libxl::CellEmpty);
    EXPECT_STREQ(sheet->readFormula(6, 1), L"More!B2:B3*2");
    EXPECT_EQ(sheet->readNum(6, 1), 16);
    EXPECT_TRUE(sheet->writeNum(6, 1, 16)) << "it is no array";
    EXPECT_TRUE(sheet->copyCell(5, 0, 6, 1));
  });
}

TEST(Shape, RowsThatAreNotLoadedAreRefused) {
  Stage stage = rich_book(0, 1, 2);
  libxl::Sheet* sheet = stage.sheet;
  const struct {
    const char* call;
    std::function<bool()> failed;
    int row;
  } cases[] = {
      {"rowHeight", [&] { return sheet->rowHeight(0) == 0; }, 0},
      {"setRow", [&] { return !sheet->setRow(3, 10); }, 3},
      {"setRowHidden", [&] { return !sheet->setRowHidden(4, true); }, 4},
      {"groupRows", [&] { return !sheet->groupRows(2, 5, false); }, 3},
      {"the row that sums up", [&] { return !sheet->groupRows(1, 2); }, 3},
      {"clear", [&] { return sheet->clear(), true; }, 0},
      {"clear to the end", [&] { return sheet->clear(1), true; }, 3},
      {"copyCell from", [&] { return !sheet->copyCell(0, 0, 1, 0); }, 0},
      {"copyCell to", [&] { return !sheet->copyCell(1, 0, 5, 0); }, 5},
  };
  for (const auto& [call, failed, row] : cases) {
    SCOPED_TRACE(call);
    EXPECT_TRUE(failed());
    EXPECT_EQ(stage.message(), "row " + std::to_string(row) + " of sheet \"Data\" is not loaded");
  }
  EXPECT_TRUE(sheet->groupRows(1, 2, false) && sheet->setMerge(40, 41, 0, 1));
  EXPECT_TRUE(sheet->setCol(0, 0, 30) && sheet->setRow(2, 50));
  sheet->clear(1, 1);
  ASSERT_TRUE(stage.reload());
  EXPECT_EQ(stage.sheet->rowHeight(0), 20);
  EXPECT_EQ(stage.sheet->rowHeight(2), 50);
  EXPECT_EQ(stage.sheet->colWidth(0), 30);
  EXPECT_EQ(stage.sheet->mergeSize(), 1);
  EXPECT_EQ(stage.sheet->cellType(1, 0), libxl::CellEmpty);
  EXPECT_EQ(stage.sheet->readNum(5, 0), 16);
}

}  // namespace
