// Formulas: what is taken, how it reads back, and what is refused.
#include <gmock/gmock.h>

#include "tests/api/files.h"
#include "tests/api/stage.h"

namespace {

struct Taken {
  const wchar_t* written;
  const wchar_t* read;
};
constexpr Taken kTaken[] = {
    {L"1+2", L"1+2"},
    {L"=sum(a1:$b$2)", L"SUM(A1:$B$2)"},
    {L"'Other one'!A1*2", L"'Other one'!A1*2"},
    {L"xlookup(1,A:A,B:B)", L"XLOOKUP(1,A:A,B:B)"},
    {L"_xlfn.XLOOKUP(1,A:A,B:B)", L"XLOOKUP(1,A:A,B:B)"},
    {L"LET(x,5,x+1)", L"LET(x,5,x+1)"},
    {L"{1,2;3,4}", L"{1,2;3,4}"},
    {L"Unknown_Name+NOSUCHFUNCTION(1)", L"Unknown_Name+NOSUCHFUNCTION(1)"},
    {L"\"a\"&\"\u00DF\"", L"\"a\"&\"\u00DF\""},
};

TEST(Formulas, ReadAsTheyWereWritten) {
  Stage stage;
  stage.book->addSheet(L"Other one");
  int row = 0;
  for (const Taken& taken : kTaken)
    EXPECT_TRUE(stage.sheet->writeFormulaNum(row++, 0, taken.written, 1)) << stage.message();
  for (const char* pass : {"written", "loaded"}) {
    SCOPED_TRACE(pass);
    row = 0;
    for (const Taken& taken : kTaken) EXPECT_STREQ(stage.sheet->readFormula(row++, 0), taken.read);
    ASSERT_TRUE(stage.reload()) << stage.message();
  }
}

struct Refused {
  const wchar_t* formula;
  const char* message;
};
constexpr Refused kRefused[] = {
    {nullptr, "formula is empty"},
    {L"=", "formula is empty"},
    {L"{=A1:A3}", "array formula braces are not accepted"},
    {L"={=A1:A3}", "array formula braces are not accepted"},
    {L"1+", R"(formula "1+" is not valid at position 2)"},
    {L"=SUM(1,2", R"(formula "SUM(1,2" is not valid at position 7)"},
    {L"Nope!A1", R"(formula "Nope!A1" refers to unknown sheet "Nope")"},
    {L"A1048577+1", "formula refers to A1048577, beyond the last cell XFD1048576"},
};

TEST(Formulas, AreRefusedWithTheirPlace) {
  Stage stage;
  stage.sheet->writeNum(0, 0, 7);
  for (const Refused& refused : kRefused) {
    SCOPED_TRACE(refused.message);
    EXPECT_FALSE(stage.sheet->writeFormula(0, 0, refused.formula));
    EXPECT_EQ(stage.message(), refused.message);
    EXPECT_EQ(stage.sheet->readNum(0, 0), 7);
  }
  EXPECT_FALSE(stage.sheet->writeFormula(0, 0, std::wstring(8193, L'1').c_str()));
  EXPECT_EQ(stage.message(), "formula is 8193 characters long, the limit is 8192");
}

TEST(Formulas, HaveTheTypeOfTheirCachedValue) {
  Stage stage;
  libxl::Sheet* sheet = stage.sheet;
  sheet->writeFormula(0, 0, L"1+1");
  sheet->writeFormulaNum(0, 1, L"1+1", 2);
  sheet->writeFormulaStr(0, 2, LR"("a")", L"a\r\nb");
  sheet->writeFormulaStr(0, 3, LR"("")", nullptr);
  sheet->writeFormulaBool(0, 4, L"1=1", true);
  const libxl::CellType types[] = {libxl::CellBlank, libxl::CellNumber, libxl::CellText,
                                   libxl::CellText, libxl::CellBoolean};
  for (const char* pass : {"written", "loaded"}) {
    SCOPED_TRACE(pass);
    sheet = stage.sheet;
    for (int column = 0; column < 5; ++column) {
      EXPECT_EQ(sheet->cellType(0, column), types[column]) << column;
      EXPECT_TRUE(sheet->isFormula(0, column)) << column;
      EXPECT_FALSE(sheet->readBlank(0, column)) << column;
    }
    EXPECT_EQ(sheet->readNum(0, 0), 0);
    EXPECT_EQ(stage.message(), "ok");
    EXPECT_EQ(sheet->readNum(0, 1), 2);
    EXPECT_STREQ(sheet->readStr(0, 2), L"a\nb");
    EXPECT_STREQ(sheet->readStr(0, 3), L"");
    EXPECT_TRUE(sheet->readBool(0, 4));
    ASSERT_TRUE(stage.reload()) << stage.message();
  }
  // A value in its place ends a formula.
  stage.sheet->writeNum(0, 1, 2);
  EXPECT_FALSE(stage.sheet->isFormula(0, 1));
}

TEST(Formulas, SpeakR1C1WhenAsked) {
  Stage stage;
  stage.sheet->writeFormulaNum(4, 2, L"A1+$B$2", 0);
  stage.book->setRefR1C1();
  EXPECT_STREQ(stage.sheet->readFormula(4, 2), L"R[-4]C[-2]+R2C2");
  EXPECT_TRUE(stage.sheet->writeFormulaNum(5, 2, L"R[-4]C[-2]+R2C2", 0)) << stage.message();
  ASSERT_TRUE(stage.reload()) << stage.message();
  EXPECT_TRUE(stage.book->refR1C1());
  stage.book->setRefR1C1(false);
  EXPECT_STREQ(stage.sheet->readFormula(5, 2), L"A2+$B$2");
}

// Whether the saved book asks to be calculated anew.
bool asks_for_calculation(Stage& stage) {
  return part_of(saved(*stage.book), "xl/workbook.xml").find(R"(fullCalcOnLoad="1")") !=
         std::string::npos;
}

TEST(Formulas, OldValuesAreCalculatedByWhoOpensTheBook) {
  Stage stage;
  stage.sheet->writeNum(0, 0, 1);
  EXPECT_FALSE(asks_for_calculation(stage)) << "no formula";
  stage.sheet->writeFormula(0, 1, L"A1");
  EXPECT_TRUE(asks_for_calculation(stage)) << "no value";

  Stage loaded;
  loaded.sheet->writeNum(0, 0, 1);
  ASSERT_TRUE(loaded.reload()) << loaded.message();
  EXPECT_FALSE(asks_for_calculation(loaded)) << "nothing written";
  loaded.sheet->writeNum(0, 0, 2);
  EXPECT_FALSE(asks_for_calculation(loaded)) << "no formula in sight";
  loaded.sheet->writeFormulaNum(0, 1, L"A1", 2);
  EXPECT_TRUE(asks_for_calculation(loaded)) << "a value may be old";
  loaded.sheet->writeNum(0, 1, 2);
  EXPECT_FALSE(asks_for_calculation(loaded)) << "the formula went";

  ASSERT_TRUE(stage.reload()) << stage.message();
  stage.sheet->writeNum(0, 1, 2);
  EXPECT_TRUE(asks_for_calculation(stage)) << "the file asks itself";
}

// A 3-D reference covers the sheets between its ends: its text stays, its value does not.
TEST(Formulas, SheetsThatComeGoOrMoveMakeValuesOld) {
  const struct {
    const char* name;
    bool (*run)(libxl::Book&);
    bool asks;
  } cases[] = {
      {"moveSheet", [](libxl::Book& book) { return book.moveSheet(1, 2); }, true},
      {"moveSheet to its place", [](libxl::Book& book) { return book.moveSheet(1, 1); }, false},
      {"delSheet", [](libxl::Book& book) { return book.delSheet(1); }, true},
      {"copy",
       [](libxl::Book& book) { return book.insertSheet(1, L"N", book.getSheet(2)) != nullptr; },
       true},
      {"insertSheet", [](libxl::Book& book) { return book.insertSheet(1, L"N") != nullptr; },
       false},
  };
  const std::string bytes =
      with_replaced(three_sheets(), "xl/worksheets/sheet1.xml", R"(<c r="A1"><v>)",
                    R"(<c r="A1"><f>SUM(One:Three!A2)</f><v>)");
  for (const auto& [name, run, asks] : cases) {
    SCOPED_TRACE(name);
    Stage stage;
    ASSERT_TRUE(load(*stage.book, bytes)) << stage.message();
    EXPECT_TRUE(run(*stage.book)) << stage.message();
    EXPECT_EQ(asks_for_calculation(stage), asks);
  }
}

// The text of a shared formula moves to another cell by the grammar, or not at all.
TEST(Formulas, SharedOnesThatAreNotUnderstoodStayAtTheirCell) {
  std::string bytes = with_replaced(three_sheets(), "xl/worksheets/sheet1.xml", R"(<c r="A1"><v>)",
                                    R"(<c r="A1"><f t="shared" ref="A1:A2" si="0">B1 ?? 2</f><v>)");
  bytes = with_replaced(bytes, "xl/worksheets/sheet1.xml", R"(<c r="A2"><v>)",
                        R"(<c r="A2"><f t="shared" si="0"/><v>)");
  Stage stage;
  ASSERT_TRUE(load(*stage.book, bytes)) << stage.message();
  libxl::Sheet* sheet = stage.book->getSheet(0);
  EXPECT_TRUE(sheet->writeNum(4, 4, 1));
  EXPECT_FALSE(sheet->writeNum(0, 0, 1));
  EXPECT_EQ(stage.message(),
            "cell A1 holds the formula of other cells too, which is not understood");
  const std::string part = part_of(saved(*stage.book), "xl/worksheets/sheet1.xml");
  EXPECT_NE(part.find(R"(<f t="shared" ref="A1:A2" si="0">B1 ?? 2</f>)"), std::string::npos);
  EXPECT_NE(part.find(R"(<f t="shared" si="0"/>)"), std::string::npos);

  ASSERT_TRUE(stage.book->loadRaw(bytes.data(), static_cast<unsigned>(bytes.size()), 0, 1, 2));
  sheet = stage.book->getSheet(0);
  EXPECT_TRUE(sheet->writeNum(2, 0, 1)) << stage.message();
  const char* data = nullptr;
  unsigned size = 0;
  EXPECT_FALSE(stage.book->saveRaw(&data, &size));
  EXPECT_TRUE(
      stage.message().ends_with("xl/worksheets/sheet1.xml, cell A1, the formula that other "
                                "cells share is not understood"))
      << stage.message();
  EXPECT_TRUE(sheet->writeNum(1, 0, 1)) << stage.message();
  EXPECT_TRUE(stage.book->saveRaw(&data, &size)) << stage.message();

  ASSERT_TRUE(load(*stage.book, bytes)) << stage.message();
  sheet = stage.book->getSheet(0);
  EXPECT_TRUE(sheet->writeNum(1, 0, 1)) << stage.message();
  EXPECT_TRUE(sheet->writeNum(0, 0, 1)) << "nobody shares it any more";
}

TEST(Formulas, ArraysAreReadAndNotBroken) {
  Stage stage;
  const std::string bytes =
      with_replaced(three_sheets(), "xl/worksheets/sheet1.xml", R"(<c r="A1"><v>)",
                    R"(<c r="A1"><f t="array" ref="A1:A2">B1:B2*2</f><v>)");
  ASSERT_TRUE(load(*stage.book, bytes)) << stage.message();
  libxl::Sheet* sheet = stage.book->getSheet(0);
  EXPECT_TRUE(sheet->isFormula(1, 0));
  EXPECT_FALSE(sheet->isFormula(2, 0));
  EXPECT_STREQ(sheet->readFormula(1, 0), L"B1:B2*2");
  EXPECT_EQ(sheet->readNum(1, 0), 2);
  EXPECT_FALSE(sheet->writeBlank(1, 0, nullptr));
  EXPECT_EQ(stage.message(), "cell A2 is part of the array formula in A1:A2");
  EXPECT_FALSE(sheet->writeFormula(0, 0, L"1"));
  EXPECT_EQ(stage.message(), "cell A1 is part of the array formula in A1:A2");
  sheet->setCellFormat(1, 0, stage.book->addFormat());
  EXPECT_EQ(stage.message(), "ok");
  ASSERT_TRUE(stage.reload()) << stage.message();
  EXPECT_STREQ(stage.sheet->readFormula(1, 0), L"B1:B2*2");
}

// Also where the cell that holds the formula was not loaded; it follows what happens to sheets.
TEST(Formulas, CellsOfAnArrayKeepItInAPartialLoad) {
  Stage stage;
  const std::string bytes =
      with_replaced(three_sheets(), "xl/worksheets/sheet1.xml", R"(<c r="A1"><v>)",
                    R"(<c r="A1"><f t="array" ref="A1:A2">_xlfn.CONCAT(Two!B1:B2)</f><v>)");
  ASSERT_TRUE(load(*stage.book, bytes, 0, 1, 3)) << stage.message();
  libxl::Sheet* sheet = stage.book->getSheet(0);
  EXPECT_TRUE(sheet->isFormula(1, 0));
  EXPECT_FALSE(sheet->isFormula(2, 0));
  EXPECT_STREQ(sheet->readFormula(1, 0), L"CONCAT(Two!B1:B2)");
  ASSERT_TRUE(stage.book->delSheet(1)) << stage.message();
  EXPECT_STREQ(sheet->readFormula(1, 0), L"CONCAT(#REF!B1:B2)");
  ASSERT_TRUE(load(*stage.book, saved(*stage.book))) << stage.message();
  EXPECT_STREQ(stage.book->getSheet(0)->readFormula(1, 0), L"CONCAT(#REF!B1:B2)");
}

// A spreadsheet takes columns without a table's name only while they are typed: files have it.
TEST(Formulas, ColumnsOfTheTableAroundAreStoredWithItsName) {
  Stage stage;
  stage.sheet->writeStr(0, 0, L"Net");
  stage.sheet->writeNum(1, 0, 2);
  ASSERT_TRUE(load(
      *stage.book,
      with_added(saved(*stage.book),
                 {{"xl/worksheets/_rels/sheet1.xml.rels",
                   "<Relationships "
                   "xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">"
                   "<Relationship Id=\"rId1\" Type=\"http://schemas.openxmlformats.org/"
                   "officeDocument/2006/relationships/table\" Target=\"../tables/table1.xml\"/>"
                   "</Relationships>"},
                  {"xl/tables/table1.xml",
                   "<table xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\" "
                   "id=\"1\" displayName=\"Sales\" ref=\"A1:B2\"/>"}})))
      << stage.message();
  libxl::Sheet* sheet = stage.book->getSheet(0);
  EXPECT_TRUE(sheet->writeFormula(1, 1, L"[@Net]*2+SUM([Net])")) << stage.message();
  EXPECT_TRUE(sheet->writeFormula(5, 1, L"SUM([Net])")) << stage.message();
  EXPECT_STREQ(sheet->readFormula(1, 1), L"[@Net]*2+SUM([Net])");
  ASSERT_TRUE(stage.reload()) << stage.message();
  EXPECT_STREQ(stage.sheet->readFormula(1, 1), L"Sales[[#This Row],[Net]]*2+SUM(Sales[Net])");
  EXPECT_STREQ(stage.sheet->readFormula(5, 1), L"SUM([Net])");
}

}  // namespace
