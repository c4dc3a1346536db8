// Tables and filters through the interface: what is set comes back, rows are hidden and shown, and
// objects follow or leave.
#include <gmock/gmock.h>

#include <array>
#include <functional>
#include <string>
#include <vector>

#include "tests/api/files.h"
#include "tests/xlsx/packages.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

using Range = std::array<int, 4>;
constexpr Range kNone{-1, -1, -1, -1};

Range ref_of(const libxl::AutoFilter& filter) {
  Range range = kNone;
  filter.getRef(range.data(), &range[1], &range[2], &range[3]);
  return range;
}

Range sort_range_of(libxl::AutoFilter& filter) {
  Range range = kNone;
  filter.getSortRange(range.data(), &range[1], &range[2], &range[3]);
  return range;
}

// Rows 0..9 of two columns: a header, then texts that repeat and numbers that rise.
struct Filtered : Stage {
  Filtered() {
    sheet->writeStr(0, 0, L"Kind");
    sheet->writeStr(0, 1, L"Count");
    constexpr const wchar_t* kKinds[] = {L"tea", L"Coffee", L"milk"};
    for (int row = 1; row < 10; ++row) {
      sheet->writeStr(row, 0, kKinds[row % 3]);
      sheet->writeNum(row, 1, row);
    }
    filter = sheet->autoFilter();
    filter->setRef(0, 9, 0, 1);
  }
  std::vector<int> hidden() const {
    std::vector<int> rows;
    for (int row = 0; row < 12; ++row)
      if (sheet->rowHidden(row)) rows.push_back(row);
    return rows;
  }
  bool load_again() {
    if (!reload()) return false;
    filter = sheet->autoFilter();
    return true;
  }

  libxl::AutoFilter* filter;
};

TEST(Filters, HideTheRowsThatTheyReject) {
  Filtered stage;
  libxl::FilterColumn* kind = stage.filter->column(0);
  kind->addFilter(L"TEA");
  kind->addFilter(L"milk");
  stage.filter->column(1)->setCustomFilter(libxl::OperatorGreater, L"2", libxl::OperatorLess, L"9",
                                           true);
  EXPECT_THAT(stage.hidden(), ElementsAre());
  stage.sheet->applyFilter();
  EXPECT_EQ(stage.message(), "ok");
  EXPECT_THAT(stage.hidden(), ElementsAre(1, 2, 4, 7, 9));
  const std::string part = part_of(saved(*stage.book), "xl/worksheets/sheet1.xml");
  EXPECT_THAT(part, HasSubstr(R"(<sheetPr filterMode="1"/>)"));
  ASSERT_TRUE(stage.load_again());
  EXPECT_THAT(stage.hidden(), ElementsAre(1, 2, 4, 7, 9));
  // Rows below the range are nobody's, those that are accepted are shown.
  stage.sheet->setRowHidden(11, true);
  stage.filter->column(1)->clear();
  stage.sheet->applyFilter();
  EXPECT_THAT(stage.hidden(), ElementsAre(1, 4, 7, 11));
  stage.filter->column(1)->setTop10(2, false, false);
  stage.sheet->applyFilter();
  EXPECT_THAT(stage.hidden(), ElementsAre(1, 3, 4, 5, 6, 7, 8, 9, 11));
  EXPECT_THAT(part_of(saved(*stage.book), "xl/worksheets/sheet1.xml"),
              HasSubstr(R"(<top10 top="0" val="2" filterVal="2"/>)"));
  stage.sheet->removeFilter();
  EXPECT_THAT(stage.hidden(), ElementsAre(11));
  const std::string after = saved(*stage.book);
  EXPECT_THAT(part_of(after, "xl/worksheets/sheet1.xml"), Not(HasSubstr("ilter")));
  EXPECT_THAT(part_of(after, "xl/workbook.xml"), Not(HasSubstr("_FilterDatabase")));
}

TEST(Filters, OfCellsThatAreNotThereHideThemLikeBlankOnes) {
  Filtered stage;
  stage.filter->setRef(0, 11, 0, 1);
  stage.filter->column(0)->setCustomFilter(libxl::OperatorNotEqual, L"");
  stage.sheet->applyFilter();
  EXPECT_THAT(stage.hidden(), ElementsAre(10, 11));
  stage.filter->column(0)->setCustomFilter(libxl::OperatorEqual, L"");
  stage.sheet->applyFilter();
  EXPECT_THAT(stage.hidden(), ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 9));
}

// What the file alone can judge by keeps hidden what it hid.
TEST(Filters, LeaveToOthersWhatTheyCannotJudge) {
  Filtered stage;
  stage.sheet->setRowHidden(2, true);
  stage.sheet->setRowHidden(3, true);
  stage.filter->column(1)->setTop10(5);
  const std::string bytes =
      with_replaced(saved(*stage.book), "xl/worksheets/sheet1.xml", R"(<top10 val="5"/>)",
                    R"(<dynamicFilter type="aboveAverage" val="3"/>)");
  ASSERT_TRUE(load(*stage.book, bytes));
  stage.sheet = stage.book->getSheet(0);
  stage.filter = stage.sheet->autoFilter();
  EXPECT_EQ(stage.filter->columnByIndex(0)->filterType(), libxl::FilterDynamic);
  stage.filter->column(0)->addFilter(L"tea");
  stage.sheet->applyFilter();
  EXPECT_THAT(stage.hidden(), ElementsAre(1, 2, 3, 4, 5, 7, 8));
  EXPECT_THAT(part_of(saved(*stage.book), "xl/worksheets/sheet1.xml"),
              HasSubstr(R"(<dynamicFilter type="aboveAverage" val="3"/>)"));
}

TEST(Filters, GiveBackWhatWasSet) {
  Filtered stage;
  libxl::FilterColumn* values = stage.filter->column(0);
  for (const wchar_t* value : {L"tea", L"", L"milk", L"Tea"}) values->addFilter(value);
  stage.filter->column(1)->setCustomFilter(libxl::OperatorLess, L"3", libxl::OperatorGreater, L"7");
  EXPECT_TRUE(stage.filter->setSort(1, true));
  for (const char* pass : {"set", "loaded"}) {
    SCOPED_TRACE(pass);
    EXPECT_EQ(ref_of(*stage.filter), (Range{0, 9, 0, 1}));
    EXPECT_EQ(stage.filter->columnSize(), 2);
    values = stage.filter->columnByIndex(0);
    EXPECT_EQ(values, stage.filter->column(0));
    EXPECT_EQ(values->index(), 0);
    EXPECT_EQ(values->filterType(), libxl::FilterValues);
    EXPECT_EQ(values->filterSize(), 3);
    EXPECT_STREQ(values->filter(0), L"tea");
    EXPECT_STREQ(values->filter(1), L"milk");
    EXPECT_STREQ(values->filter(2), L"");
    libxl::FilterColumn* custom = stage.filter->column(1);
    libxl::Operator operators[2];
    const wchar_t* texts[2];
    bool both = true;
    EXPECT_TRUE(custom->getCustomFilter(&operators[0], &texts[0], &operators[1], &texts[1], &both));
    EXPECT_EQ(operators[0], libxl::OperatorLess);
    EXPECT_EQ(operators[1], libxl::OperatorGreater);
    EXPECT_STREQ(texts[0], L"3");
    EXPECT_STREQ(texts[1], L"7");
    EXPECT_FALSE(both);
    EXPECT_EQ(custom->filterSize(), 0);
    double count = -1;
    EXPECT_FALSE(custom->getTop10(&count, nullptr, nullptr));
    EXPECT_EQ(count, -1);
    EXPECT_EQ(sort_range_of(*stage.filter), (Range{1, 9, 0, 1}));
    int column = -1;
    bool descending = false;
    EXPECT_TRUE(stage.filter->getSort(&column, &descending));
    EXPECT_EQ(column, 1);
    EXPECT_TRUE(descending);
    EXPECT_EQ(stage.message(), "ok");
    ASSERT_TRUE(stage.load_again());
  }
}

// One kind takes the place of another, and a single condition stands beside an empty one.
TEST(Filters, HaveOneKindOfCriterionAColumn) {
  Filtered stage;
  libxl::FilterColumn* column = stage.filter->column(1);
  EXPECT_EQ(column->filterType(), libxl::FilterNone);
  column->setTop10(10, true, true);
  column->addFilter(L"5");
  EXPECT_EQ(column->filterType(), libxl::FilterValues);
  column->setCustomFilter(libxl::OperatorGreaterOrEqual, L"5", libxl::OperatorEqual, L"", true);
  EXPECT_EQ(column->filterType(), libxl::FilterCustom);
  EXPECT_EQ(column->filterSize(), 0);
  libxl::Operator second = libxl::OperatorGreater;
  const wchar_t* value = nullptr;
  bool both = true;
  EXPECT_TRUE(column->getCustomFilter(nullptr, nullptr, &second, &value, &both));
  EXPECT_EQ(second, libxl::OperatorEqual);
  EXPECT_STREQ(value, L"");
  EXPECT_FALSE(both);
  column->setTop10(7);
  double count = 0;
  bool top = false;
  bool percent = true;
  EXPECT_TRUE(column->getTop10(&count, &top, &percent));
  EXPECT_EQ(count, 7);
  EXPECT_TRUE(top && !percent);
  column->clear();
  EXPECT_EQ(stage.filter->columnSize(), 0);
  EXPECT_EQ(column->filterType(), libxl::FilterNone);
  EXPECT_THAT(part_of(saved(*stage.book), "xl/worksheets/sheet1.xml"),
              HasSubstr(R"(<autoFilter ref="A1:B10"/>)"));
}

TEST(Filters, OfASheetAreOneObjectThatAsksForNothing) {
  Stage stage;
  const std::string before = saved(*stage.book);
  libxl::AutoFilter* filter = stage.sheet->autoFilter();
  EXPECT_EQ(filter, stage.sheet->autoFilter());
  EXPECT_EQ(ref_of(*filter), kNone);
  EXPECT_EQ(sort_range_of(*filter), kNone);
  EXPECT_EQ(stage.message(), "ok");
  EXPECT_EQ(filter->columnSize(), 0);
  stage.sheet->removeFilter();
  EXPECT_EQ(stage.message(), "ok");
  EXPECT_EQ(part_of(saved(*stage.book), "xl/workbook.xml"), part_of(before, "xl/workbook.xml"));
}

TEST(Filters, AndTheirColumnsFollowTheCells) {
  Filtered stage;
  libxl::FilterColumn* kind = stage.filter->column(0);
  libxl::FilterColumn* count = stage.filter->column(1);
  kind->addFilter(L"tea");
  count->setTop10(3);
  stage.sheet->insertCol(0, 1);
  EXPECT_EQ(kind->index(), 0);
  stage.sheet->insertCol(3, 3);
  EXPECT_EQ(ref_of(*stage.filter), (Range{0, 9, 2, 4}));
  EXPECT_EQ(count->index(), 2);
  EXPECT_EQ(stage.filter->column(2), count);
  stage.sheet->insertRow(4, 5);
  stage.sheet->removeCol(2, 2);
  EXPECT_EQ(kind->index(), -1);
  EXPECT_EQ(stage.message(), "the filter column is no longer in the book");
  EXPECT_EQ(count->index(), 1);
  EXPECT_EQ(stage.filter->columnSize(), 1);
  const std::string bytes = saved(*stage.book);
  EXPECT_THAT(part_of(bytes, "xl/worksheets/sheet1.xml"),
              HasSubstr(R"(<autoFilter ref="C1:D12"><filterColumn colId="1"><top10)"));
  EXPECT_THAT(part_of(bytes, "xl/workbook.xml"), HasSubstr("Data!$C$1:$D$12"));
  // Without its header it is none.
  stage.sheet->removeRow(0, 0);
  EXPECT_EQ(ref_of(*stage.filter), kNone);
  EXPECT_EQ(count->filterSize(), 0);
  EXPECT_EQ(stage.message(), "the filter column is no longer in the book");
  EXPECT_THAT(part_of(saved(*stage.book), "xl/workbook.xml"), Not(HasSubstr("_FilterDatabase")));
}

TEST(Filters, LoseTheColumnsThatTheirRangeHasNoMore) {
  Filtered stage;
  libxl::FilterColumn* kind = stage.filter->column(0);
  libxl::FilterColumn* count = stage.filter->column(1);
  count->setTop10(3);
  stage.filter->setRef(0, 20, 1, 3);
  EXPECT_EQ(stage.message(), "ok");
  EXPECT_EQ(count->index(), 0);
  EXPECT_EQ(kind->filterType(), libxl::FilterNone);
  EXPECT_EQ(stage.message(), "the filter column is no longer in the book");
  stage.filter->setRef(0, 9, 0, 1);
  EXPECT_NE(stage.filter->column(0), kind);
  EXPECT_EQ(stage.filter->column(1), count);
  stage.sheet->removeFilter();
  count->clear();
  EXPECT_EQ(stage.message(), "the filter column is no longer in the book");
  stage.book->addSheet(L"Other");
  stage.book->delSheet(0);
  EXPECT_EQ(stage.filter->columnSize(), 0);
  EXPECT_EQ(stage.message(), "the auto-filter is no longer in the book");
}

TEST(Filters, AreCopiedWithTheirSheet) {
  Filtered stage;
  stage.filter->column(0)->addFilter(L"tea");
  stage.sheet->applyFilter();
  libxl::Sheet* copy = stage.book->addSheet(L"A copy", stage.sheet);
  ASSERT_TRUE(copy);
  EXPECT_NE(copy->autoFilter(), stage.filter);
  EXPECT_STREQ(copy->autoFilter()->columnByIndex(0)->filter(0), L"tea");
  EXPECT_TRUE(copy->rowHidden(1));
  copy->removeFilter();
  EXPECT_EQ(stage.filter->columnSize(), 1);
  const std::string names = part_of(saved(*stage.book), "xl/workbook.xml");
  EXPECT_THAT(names, HasSubstr("Data!$A$1:$B$10"));
  EXPECT_THAT(names, Not(HasSubstr("'A copy'!")));
}

// Programs count anew what depends on the rows that are seen.
TEST(Filters, AskForNewResultsOfFormulas) {
  Filtered stage;
  stage.sheet->writeFormulaNum(11, 1, L"SUBTOTAL(109,B2:B10)", 45);
  stage.filter->column(0)->addFilter(L"tea");
  const std::string bytes = with_replaced(saved(*stage.book), "xl/workbook.xml",
                                          R"(<calcPr fullCalcOnLoad="1"/>)", "<calcPr/>");
  ASSERT_TRUE(load(*stage.book, bytes));
  stage.sheet = stage.book->getSheet(0);
  EXPECT_THAT(part_of(saved(*stage.book), "xl/workbook.xml"), Not(HasSubstr("fullCalcOnLoad")));
  stage.sheet->applyFilter();
  EXPECT_THAT(part_of(saved(*stage.book), "xl/workbook.xml"), HasSubstr("fullCalcOnLoad=\"1\""));
}

TEST(Filters, OfSomeRowsAreNotApplied) {
  Filtered stage;
  stage.filter->column(0)->addFilter(L"tea");
  const std::string bytes = saved(*stage.book);
  ASSERT_TRUE(load(*stage.book, bytes, 0, 0, 5));
  stage.sheet = stage.book->getSheet(0);
  for (const auto call : {&libxl::Sheet::applyFilter, &libxl::Sheet::removeFilter}) {
    (stage.sheet->*call)();
    EXPECT_EQ(stage.message(), "row 6 of sheet \"Data\" is not loaded");
  }
  EXPECT_EQ(saved(*stage.book), bytes);
}

TEST(Filters, RefuseWhatTheyCannotBe) {
  const struct {
    const char* message;
    std::function<void(Filtered&)> call;
  } cases[] = {
      {"row -1 is out of range 0..1048575", [](Filtered& s) { s.filter->setRef(-1, 9, 0, 1); }},
      {"column 16384 is out of range 0..16383",
       [](Filtered& s) { s.filter->setRef(0, 9, 0, 16384); }},
      {"first row 9 is after last row 0", [](Filtered& s) { s.filter->setRef(9, 0, 0, 1); }},
      {"filter column 2 is out of range 0..1",
       [](Filtered& s) { EXPECT_FALSE(s.filter->column(2)); }},
      {"filter column -1 is out of range 0..1",
       [](Filtered& s) { EXPECT_FALSE(s.filter->setSort(-1)); }},
      {"filter column 0 is out of range: there are none",
       [](Filtered& s) { EXPECT_FALSE(s.filter->columnByIndex(0)); }},
      {"filter value 0 is out of range: there are none",
       [](Filtered& s) { EXPECT_FALSE(s.filter->column(0)->filter(0)); }},
      {"filter value is 256 characters long, the limit is 255",
       [](Filtered& s) { s.filter->column(0)->addFilter(std::wstring(256, L'x').c_str()); }},
      {"filter value is 256 characters long, the limit is 255",
       [](Filtered& s) {
         s.filter->column(0)->setCustomFilter(libxl::OperatorEqual, L"a", libxl::OperatorEqual,
                                              std::wstring(256, L'x').c_str());
       }},
      {"filter operator 6 is not known",
       [](Filtered& s) {
         s.filter->column(0)->setCustomFilter(static_cast<libxl::Operator>(6), L"a");
       }},
      {"filter operator -1 is not known",
       [](Filtered& s) {
         s.filter->column(0)->setCustomFilter(libxl::OperatorLess, L"a",
                                              static_cast<libxl::Operator>(-1));
       }},
      {"top 10 value 501 is out of range 1..500",
       [](Filtered& s) { s.filter->column(0)->setTop10(501); }},
      {"top 10 value 0.5 is out of range 1..500",
       [](Filtered& s) { s.filter->column(0)->setTop10(0.5); }},
      {"top 10 value 101 is out of range 1..100",
       [](Filtered& s) { s.filter->column(0)->setTop10(101, true, true); }},
      {"top 10 value 2.5 is not a whole number",
       [](Filtered& s) { s.filter->column(0)->setTop10(2.5); }},
      {"top 10 value is not a finite number",
       [](Filtered& s) { s.filter->column(0)->setTop10(HUGE_VAL); }},
      {"table 0 is out of range: there are none",
       [](Filtered& s) {
         EXPECT_EQ(s.sheet->tableSize(), 0);
         EXPECT_FALSE(s.sheet->table(0, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr));
       }},
  };
  Filtered stage;
  const std::string before = saved(*stage.book);
  for (const auto& [message, call] : cases) {
    call(stage);
    EXPECT_EQ(stage.message(), message);
  }
  EXPECT_EQ(saved(*stage.book), before);
  stage.sheet->removeFilter();
  stage.sheet->applyFilter();
  EXPECT_EQ(stage.message(), "the sheet has no auto-filter range");
  EXPECT_FALSE(stage.filter->column(0));
  EXPECT_EQ(stage.message(), "the sheet has no auto-filter range");
  EXPECT_FALSE(stage.filter->setSort(0));
  EXPECT_EQ(stage.message(), "the sheet has no auto-filter range");
}

// Tables.

std::string table_part(const char* name, const char* attributes) {
  return "<table xmlns=\"" + std::string(engine::xlsx::kMainNamespace) + "\" id=\"1\" name=\"n\" " +
         "displayName=\"" + name + "\" " + attributes + "><tableColumns><tableColumn id=\"1\" " +
         "name=\"One\"/><tableColumn id=\"2\" name=\"Two\"/></tableColumns></table>";
}

// Two tables, which the sheet lists in the other order than its relationships.
std::string book_with_tables() {
  engine::xlsx::PartTexts parts = engine::xlsx::book_of(engine::xlsx::worksheet(
      "", "", R"(<tableParts><tablePart r:id="rId2"/><tablePart r:id="rId1"/></tableParts>)"));
  parts["xl/worksheets/_rels/sheet1.xml.rels"] = engine::xlsx::relations(
      {{"table", "../tables/table1.xml"}, {"table", "../tables/table2.xml"}});
  parts["xl/tables/table1.xml"] = table_part("Grüße", R"(ref="B2:C6" totalsRowCount="1")");
  parts["xl/tables/table2.xml"] = table_part("Bare", R"(ref="E3:F9" headerRowCount="0")");
  return engine::xlsx::zip(parts);
}

struct TableFacts {
  std::wstring name;
  Range range = kNone;
  int headers = -1;
  int totals = -1;
  friend bool operator==(const TableFacts&, const TableFacts&) = default;
};

TableFacts table_of(const libxl::Sheet& sheet, int index) {
  TableFacts facts;
  Range& range = facts.range;
  const wchar_t* name = sheet.table(index, range.data(), &range[1], &range[2], &range[3],
                                    &facts.headers, &facts.totals);
  facts.name = name ? name : L"";
  return facts;
}

TEST(Tables, AreToldInTheOrderOfTheirSheet) {
  Stage stage;
  ASSERT_TRUE(load(*stage.book, book_with_tables()));
  libxl::Sheet* sheet = stage.book->getSheet(0);
  EXPECT_EQ(sheet->tableSize(), 2);
  EXPECT_EQ(table_of(*sheet, 0), (TableFacts{L"Bare", {2, 8, 4, 5}, 0, 0}));
  EXPECT_EQ(table_of(*sheet, 1), (TableFacts{L"Grüße", {1, 5, 1, 2}, 1, 1}));
  sheet->removeRow(5, 5);
  sheet->insertRow(0, 0);
  EXPECT_EQ(stage.message(), "ok");
  EXPECT_EQ(table_of(*sheet, 0), (TableFacts{L"Bare", {3, 8, 4, 5}, 0, 0}));
  EXPECT_EQ(table_of(*sheet, 1), (TableFacts{L"Grüße", {2, 5, 1, 2}, 1, 0}));
  EXPECT_EQ(table_of(*sheet, 2), TableFacts());
  EXPECT_EQ(stage.message(), "table 2 is out of range 0..1");
  libxl::Sheet* copy = stage.book->addSheet(L"Copy", sheet);
  EXPECT_EQ(table_of(*copy, 1).name, L"Grüße_1");
}

TEST(Tables, HaveFiltersOfTheirOwn) {
  Stage stage;
  ASSERT_TRUE(load(*stage.book, book_with_tables()));
  libxl::AutoFilter* filter = stage.book->getSheet(0)->autoFilter();
  filter->setRef(5, 20, 0, 1);
  EXPECT_EQ(stage.message(), "range A6:B21 overlaps table \"Grüße\"");
  filter->setRef(9, 20, 0, 1);
  EXPECT_EQ(stage.message(), "ok");
}

}  // namespace
