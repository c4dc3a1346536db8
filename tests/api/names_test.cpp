// Named ranges, print titles and areas, and names of sheets, with what refers to them.
#include <gmock/gmock.h>

#include <regex>

#include "tests/api/files.h"
#include "tests/api/stage.h"
#include "tests/xlsx/packages.h"
#include "tests/xlsx/rich_package.h"

namespace {

using engine::xlsx::unzip;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

// "Total 0 1 2 3 -1": name, rows, columns, scope, and "hidden".
std::vector<std::wstring> ranges(const libxl::Sheet& sheet) {
  std::vector<std::wstring> all;
  for (int index = 0; index < sheet.namedRangeSize(); ++index) {
    int values[5] = {};
    bool hidden = false;
    const wchar_t* name = sheet.namedRange(index, &values[0], &values[1], &values[2], &values[3],
                                           &values[4], &hidden);
    all.emplace_back(name ? name : L"-");
    for (const int value : values) all.back() += L" " + std::to_wstring(value);
    if (hidden) all.back() += L" hidden";
  }
  return all;
}

// "0 1 2 3", or "no".
std::wstring range(const libxl::Sheet& sheet, const wchar_t* name,
                   int scope = libxl::ScopeUndefined) {
  int values[4] = {};
  if (!sheet.getNamedRange(name, &values[0], &values[1], &values[2], &values[3], scope))
    return L"no";
  std::wstring shown;
  for (const int value : values) shown += (shown.empty() ? L"" : L" ") + std::to_wstring(value);
  return shown;
}

std::string part(Stage& stage, const char* name) { return unzip(saved(*stage.book))[name]; }

TEST(Names, AreFoundByScope) {
  Stage stage;
  libxl::Sheet& data = *stage.sheet;
  libxl::Sheet& more = *stage.book->addSheet(L"My 'M' x");
  EXPECT_TRUE(data.setNamedRange(L"Total", 0, 1, 2, 3));
  EXPECT_TRUE(data.setNamedRange(L"Own", 4, 4, 0, 0, 0));
  EXPECT_TRUE(more.setNamedRange(L"Größe", 0, 1048575, 0, 16383));
  EXPECT_TRUE(more.setNamedRange(L"TOTAL", 7, 7, 7, 7, 1)) << "of its own";
  EXPECT_TRUE(data.setNamedRange(L"total", 5, 6, 0, 0)) << "the book's";
  EXPECT_TRUE(more.setNamedRange(L"total", 8, 8, 8, 8)) << "its own again";
  for (int round = 0; round < 2; ++round) {
    libxl::Sheet& first = *stage.book->getSheet(0);
    libxl::Sheet& second = *stage.book->getSheet(1);
    EXPECT_THAT(ranges(first), ElementsAre(L"Total 5 6 0 0 -1", L"Own 4 4 0 0 0"));
    EXPECT_THAT(ranges(second), ElementsAre(L"Größe 0 1048575 0 16383 -1", L"TOTAL 8 8 8 8 1"));
    EXPECT_EQ(range(first, L"ToTaL"), L"5 6 0 0");
    EXPECT_EQ(range(first, L"own", 0), L"4 4 0 0");
    EXPECT_EQ(range(first, L"own", libxl::ScopeWorkbook), L"no");
    EXPECT_EQ(range(first, L"GRÖßE"), L"no") << "cells of another sheet";
    EXPECT_EQ(range(second, L"GRÖßE"), L"0 1048575 0 16383");
    EXPECT_EQ(range(second, L"total", libxl::ScopeWorkbook), L"no");
    EXPECT_EQ(stage.message(), "ok");
    ASSERT_TRUE(stage.reload());
  }
  EXPECT_THAT(part(stage, "xl/workbook.xml"),
              HasSubstr("<definedName name=\"TOTAL\" localSheetId=\"1\">'My ''M'' x'!$I$9"
                        "</definedName>"));
  EXPECT_FALSE(stage.sheet->delNamedRange(L"Größe"));
  EXPECT_TRUE(stage.sheet->delNamedRange(L"own"));
  EXPECT_FALSE(stage.sheet->delNamedRange(L"own"));
  EXPECT_THAT(ranges(*stage.sheet), ElementsAre(L"Total 5 6 0 0 -1"));
  stage.book->delSheet(1);
  EXPECT_FALSE(stage.sheet->setNamedRange(L"x", 0, 0, 0, 0, 1));
  EXPECT_EQ(stage.message(), "scope 1 is out of range -2..0");
}

TEST(Names, ThatAFileHolds) {
  constexpr const char* kNames =
      "<definedNames><definedName name=\"_xlnm.Print_Area\" localSheetId=\"0\">Data!$A$1,Data!$C$3"
      "</definedName><definedName name=\"a\" comment=\"why\" hidden=\"1\">'data'!B2:$C3"
      "</definedName><definedName name=\"b\">Data!$A$1*2</definedName><definedName name=\"c\">"
      "Data!$A:$B</definedName><definedName name=\"d\" localSheetId=\"0\" function=\"1\">$D$4"
      "</definedName><definedName name=\"e\">More!$A$1</definedName><definedName name=\"f\">"
      "(Data!$A$1,Data!$C$3)</definedName></definedNames>";
  Stage stage;
  stage.book->addSheet(L"More");
  ASSERT_TRUE(load(*stage.book, with_replaced(saved(*stage.book), "xl/workbook.xml", "</sheets>",
                                              std::string("</sheets>") + kNames)));
  stage.sheet = stage.book->getSheet(0);
  EXPECT_THAT(part(stage, "xl/workbook.xml"), HasSubstr(kNames));
  EXPECT_THAT(ranges(*stage.sheet),
              ElementsAre(L"a 1 2 1 2 -1 hidden", L"c 0 1048575 0 1 -1", L"d 3 3 3 3 0"));
  for (const wchar_t* other : {L"_xlnm.Print_Area", L"b", L"e", L"f", L"", L"g"}) {
    EXPECT_EQ(range(*stage.sheet, other), L"no");
    EXPECT_FALSE(stage.sheet->delNamedRange(other));
    EXPECT_EQ(stage.message(), "ok");
  }
  EXPECT_TRUE(stage.sheet->setNamedRange(L"A", 0, 0, 0, 0));
  EXPECT_TRUE(stage.sheet->setNamedRange(L"b", 1, 1, 0, 0));
  EXPECT_TRUE(stage.sheet->delNamedRange(L"c"));
  EXPECT_THAT(ranges(*stage.sheet),
              ElementsAre(L"a 0 0 0 0 -1 hidden", L"b 1 1 0 0 -1", L"d 3 3 3 3 0"));
  const std::string workbook = part(stage, "xl/workbook.xml");
  EXPECT_THAT(workbook,
              HasSubstr("<definedName name=\"a\" comment=\"why\" hidden=\"1\">Data!$A$1<"));
  EXPECT_THAT(workbook,
              HasSubstr("<definedName name=\"d\" localSheetId=\"0\" function=\"1\">$D$4<"));
}

TEST(Names, ThatNobodyMayGive) {
  struct Case {
    std::wstring name;
    const char* message;
  };
  const Case kCases[] = {
      {L"", "name is empty"},
      {std::wstring(256, L'x'), "name is 256 characters long, the limit is 255"},
      {L"1a", "name \"1a\" holds a character that is not allowed: 1"},
      {L".a", "name \".a\" holds a character that is not allowed: ."},
      {L"a b", "name \"a b\" holds a character that is not allowed:  "},
      {L"a\tb", "name \"a\tb\" holds a character that is not allowed: U+0009"},
      {L"a€", "name \"a€\" holds a character that is not allowed: €"},
      {L"A1", "name \"A1\" looks like a cell address"},
      {L"tax2020", "name \"tax2020\" looks like a cell address"},
      {L"r1c1", "name \"r1c1\" looks like a cell address"},
      {L"R", "name \"R\" looks like a cell address"},
      {L"true", "name \"true\" is reserved"},
      {L"PRINT_AREA", "name \"PRINT_AREA\" is reserved"},
      {L"_XLNM.x", "name \"_XLNM.x\" is reserved"},
      {L"_xlfnx", "name \"_xlfnx\" is reserved"},
      {L"TABLE1", "name \"TABLE1\" is already used by a table"},
      {L"_", "ok"},
      {L"\\a.?", "ok"},
      {L"XFE1", "ok"},
      {L"Größe1", "ok"},
      {L"합계", "ok"},
      {L"हिन्दी", "ok"},
  };
  Stage stage;
  ASSERT_TRUE(load(*stage.book, engine::xlsx::zip(engine::xlsx::rich_package())));
  stage.sheet = stage.book->getSheet(0);
  for (const auto& [name, message] : kCases) {
    EXPECT_EQ(stage.sheet->setNamedRange(name.c_str(), 0, 0, 0, 0),
              std::string_view(message) == "ok");
    EXPECT_EQ(stage.message(), message);
  }
  ASSERT_TRUE(stage.reload());
  EXPECT_EQ(range(*stage.sheet, L"हिन्दी"), L"0 0 0 0");
  EXPECT_FALSE(stage.sheet->getNamedRange(L"x", nullptr, nullptr, nullptr, nullptr, -3));
  EXPECT_EQ(stage.message(), "scope -3 is out of range -2..2");
  EXPECT_FALSE(stage.sheet->setNamedRange(L"x", 1, 0, 0, 16384));
  EXPECT_EQ(stage.message(), "column 16384 is out of range 0..16383");
  EXPECT_EQ(stage.sheet->namedRange(99, nullptr, nullptr, nullptr, nullptr), nullptr);
  EXPECT_THAT(stage.message(), HasSubstr("named range 99 is out of range 0.."));
}

TEST(PrintNames, AreSetTogetherAndApart) {
  Stage stage;
  stage.sheet->setName(L"A b");
  int first = 0;
  int last = 0;
  EXPECT_FALSE(stage.sheet->printRepeatRows(&first, &last));
  stage.sheet->setPrintRepeatRows(0, 1);
  EXPECT_THAT(part(stage, "xl/workbook.xml"),
              HasSubstr("<definedName name=\"_xlnm.Print_Titles\" localSheetId=\"0\">"
                        "'A b'!$1:$2</definedName>"));
  stage.sheet->setPrintRepeatCols(2, 27);
  stage.sheet->setPrintArea(0, 9, 1, 3);
  ASSERT_TRUE(stage.reload());
  EXPECT_THAT(part(stage, "xl/workbook.xml"), HasSubstr(">'A b'!$C:$AB,'A b'!$1:$2<"));
  EXPECT_THAT(part(stage, "xl/workbook.xml"), HasSubstr(">'A b'!$B$1:$D$10<"));
  EXPECT_TRUE(stage.sheet->printRepeatRows(&first, &last));
  EXPECT_EQ(first, 0);
  EXPECT_EQ(last, 1);
  EXPECT_TRUE(stage.sheet->printRepeatCols(&first, &last));
  EXPECT_EQ(first, 2);
  EXPECT_EQ(last, 27);
  EXPECT_TRUE(stage.sheet->printArea(nullptr, &last, &first, nullptr));
  EXPECT_EQ(first, 1);
  EXPECT_EQ(last, 9);
  EXPECT_EQ(stage.sheet->namedRangeSize(), 0);

  stage.book->addSheet(L"Copy", stage.sheet);
  EXPECT_THAT(part(stage, "xl/workbook.xml"), HasSubstr(">Copy!$C:$AB,Copy!$1:$2<"));
  stage.sheet->clearPrintRepeats();
  stage.sheet->clearPrintArea();
  EXPECT_FALSE(stage.sheet->printRepeatCols(&first, &last));
  EXPECT_FALSE(stage.sheet->printArea(&first, &last, &first, &last));
  EXPECT_THAT(part(stage, "xl/workbook.xml"), Not(HasSubstr(">'A b'!$")));
  stage.sheet->setPrintRepeatRows(5, 4);
  EXPECT_EQ(stage.message(), "first row 5 is after last row 4");
  stage.sheet->setPrintRepeatCols(5, 16384);
  EXPECT_EQ(stage.message(), "column 16384 is out of range 0..16383");
}

TEST(PrintNames, OfOtherFormsCountAsNone) {
  const struct {
    const char* titles;
    bool rows;
    bool columns;
  } cases[] = {{"data!$1:$2", true, false},
               {"Data!$A$1:$XFD$2,Data!$A:$A", true, true},
               {"Data!$A$1:$B$2", false, false},
               {"More!$1:$2", false, false},
               {"OFFSET(Data!$A$1,1,1)", false, false}};
  for (const auto& [titles, rows, columns] : cases) {
    SCOPED_TRACE(titles);
    Stage stage;
    stage.book->addSheet(L"More");
    ASSERT_TRUE(load(*stage.book,
                     with_replaced(saved(*stage.book), "xl/workbook.xml", "</sheets>",
                                   "</sheets><definedNames><definedName localSheetId=\"0\" "
                                   "name=\"_xlnm.Print_Titles\">" +
                                       std::string(titles) + "</definedName></definedNames>")));
    EXPECT_EQ(stage.book->getSheet(0)->printRepeatRows(nullptr, nullptr), rows);
    EXPECT_EQ(stage.book->getSheet(0)->printRepeatCols(nullptr, nullptr), columns);
  }
}

// Whatever mentions the sheet mentions its new name.
TEST(SheetName, IsFollowedEverywhere) {
  Stage stage;
  ASSERT_TRUE(load(*stage.book, engine::xlsx::zip(engine::xlsx::rich_package())));
  libxl::Sheet* more = stage.book->getSheet(1);
  EXPECT_TRUE(more->setNamedRange(L"There", 0, 0, 0, 0));
  more->setName(L"It's new");
  ASSERT_EQ(stage.message(), "ok");
  EXPECT_STREQ(more->name(), L"It's new");
  EXPECT_STREQ(stage.book->getSheetName(1), L"It's new");
  EXPECT_EQ(stage.book->getSheet(1), more);
  EXPECT_THAT(ranges(*more), ElementsAre(L"There 0 0 0 0 -1"));
  auto parts = unzip(saved(*stage.book));
  for (const auto& [name, text] : parts)
    EXPECT_FALSE(std::regex_search(text, std::regex("[^A-Za-z]More[!\"]"))) << name;
  const std::string& sheet = parts.at("xl/worksheets/sheet1.xml");
  for (const char* text :
       {"<f>SUM(A2,'It''s new'!A1)</f>", ">'It''s new'!A1:A2*2</f>",
        "<formula>'It''s new'!A1&gt;A2</formula>", "<formula1>'It''s new'!$A$1:$A$3</formula1>",
        "location=\"'It''s new'!A1\"", ">'It''s new'!A1:A3</xm:f>"})
    EXPECT_THAT(sheet, HasSubstr(text));
  EXPECT_THAT(parts.at("xl/workbook.xml"), HasSubstr(">'It''s new'!$A$1*2</definedName>"));
  EXPECT_THAT(parts.at("xl/charts/chart1.xml"), HasSubstr(">'It''s new'!$A$1:$A$3<"));
  EXPECT_THAT(parts.at("xl/tables/table1.xml"), HasSubstr(">'It''s new'!A1+Table1[Value]<"));
  EXPECT_THAT(parts.at("xl/pivotCache/pivotCacheDefinition1.xml"), HasSubstr("sheet=\"It's new\""));
  ASSERT_TRUE(stage.reload());
  EXPECT_STREQ(stage.sheet->readFormula(1, 2, nullptr), L"SUM(A2,'It''s new'!A1)");
}

// The properties of the document go on without a list of names that no longer hold.
TEST(SheetName, LeavesNoOldOneInTheProperties) {
  const std::string titles =
      "<HeadingPairs/><TitlesOfParts><lpstr>Data</lpstr></TitlesOfParts></Properties>";
  const std::string bytes =
      with_replaced(three_sheets(), "docProps/app.xml", "</Properties>", titles);
  Stage stage;
  ASSERT_TRUE(load(*stage.book, bytes));
  stage.book->getSheet(0)->writeNum(0, 0, 7);
  EXPECT_THAT(part(stage, "docProps/app.xml"), HasSubstr(titles));
  stage.book->getSheet(0)->setName(L"New");
  EXPECT_THAT(part(stage, "docProps/app.xml"), Not(HasSubstr("<HeadingPairs")));
  EXPECT_THAT(part(stage, "docProps/app.xml"), Not(HasSubstr("Data")));
}

TEST(SheetName, FollowsTheRules) {
  Stage stage;
  stage.book->addSheet(L"More");
  struct Case {
    const wchar_t* name;
    const char* message;
  };
  const Case kCases[] = {
      {L"", "sheet name is empty"},
      {nullptr, "sheet name is empty"},
      {L"a/b", "sheet name \"a/b\" holds a character that is not allowed: /"},
      {L"'a", "sheet name \"'a\" begins or ends with an apostrophe"},
      {L"history", "sheet name \"history\" is reserved"},
      {L"MORE", "sheet name \"MORE\" is already used"},
      {L"DATA", "ok"},
  };
  for (const auto& [name, message] : kCases) {
    stage.sheet->setName(name);
    EXPECT_EQ(stage.message(), message);
  }
  EXPECT_STREQ(stage.sheet->name(), L"DATA");
}

// Sheets beside a partial load follow, and one that is damaged and may refer to others refuses.
TEST(SheetName, AsksForTheOtherSheets) {
  Stage stage;
  ASSERT_TRUE(load(*stage.book, engine::xlsx::zip(engine::xlsx::rich_package()), 1, 0, 0));
  stage.book->getSheet(1)->setName(L"New");
  ASSERT_EQ(stage.message(), "ok");
  ASSERT_TRUE(stage.reload());
  EXPECT_STREQ(stage.sheet->readFormula(1, 2, nullptr), L"SUM(A2,New!A1)");

  auto parts = engine::xlsx::rich_package();
  parts["xl/worksheets/sheet1.xml"] = "<worksheet><f>More!A1</f>";
  ASSERT_TRUE(load(*stage.book, engine::xlsx::zip(parts)));
  libxl::Sheet* more = stage.book->getSheet(1);
  more->setName(L"New");
  EXPECT_THAT(stage.message(), HasSubstr("xl/worksheets/sheet1.xml"));
  EXPECT_STREQ(more->name(), L"More");
}

}  // namespace
