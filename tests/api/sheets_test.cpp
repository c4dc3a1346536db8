// The list of sheets, and what becomes of formulas when it changes.
#include <gmock/gmock.h>

#include "tests/api/files.h"
#include "tests/api/stage.h"

namespace {

using testing::ElementsAre;

std::vector<std::wstring> names(const libxl::Book& book) {
  std::vector<std::wstring> all;
  all.reserve(static_cast<std::size_t>(book.sheetCount()));
  for (int i = 0; i < book.sheetCount(); ++i) all.emplace_back(book.getSheetName(i));
  return all;
}

// A book with sheets A, B, C, D.
struct Four : Stage {
  Four() {
    book->delSheet(0);
    for (const wchar_t* name : {L"A", L"B", L"C", L"D"}) book->addSheet(name);
  }
};

TEST(Sheets, ActiveSheetStaysTheSameOne) {
  Four stage;
  libxl::Book& book = *stage.book;
  EXPECT_EQ(book.activeSheet(), 0);
  book.setActiveSheet(2);
  book.insertSheet(0, L"New");
  EXPECT_EQ(book.activeSheet(), 3);
  EXPECT_TRUE(book.moveSheet(3, 0));
  EXPECT_THAT(names(book), ElementsAre(L"C", L"New", L"A", L"B", L"D"));
  EXPECT_EQ(book.activeSheet(), 0);
  EXPECT_TRUE(book.moveSheet(0, 4));
  EXPECT_THAT(names(book), ElementsAre(L"New", L"A", L"B", L"D", L"C"));
  EXPECT_EQ(book.activeSheet(), 4);
  EXPECT_TRUE(book.delSheet(1));
  EXPECT_EQ(book.activeSheet(), 3);
  EXPECT_TRUE(book.delSheet(3));
  EXPECT_EQ(book.activeSheet(), 2);  // none follows: the one before
  EXPECT_TRUE(book.delSheet(2) && book.delSheet(1) && book.delSheet(0));
  EXPECT_EQ(book.activeSheet(), 0);
  EXPECT_EQ(book.sheetCount(), 0);
}

TEST(Sheets, AreTheSameObjectsWhereverTheyStand) {
  Four stage;
  libxl::Sheet* c = stage.book->getSheet(2);
  stage.book->moveSheet(2, 0);
  stage.book->delSheet(1);
  EXPECT_EQ(stage.book->getSheet(0), c);
  EXPECT_STREQ(c->name(), L"C");
}

TEST(Sheets, DeletingOneBreaksReferencesToIt) {
  Four stage;
  libxl::Sheet* a = stage.book->getSheet(0);
  a->writeFormulaNum(0, 0, L"B!A1+SUM(C!A1:B2)+D!C3", 5);
  a->writeFormulaNum(0, 1, L"SUM(B:D!A1)", 5);
  a->writeFormulaNum(0, 2, L"A1", 5);
  EXPECT_TRUE(stage.book->delSheet(1));
  EXPECT_STREQ(a->readFormula(0, 0), L"#REF!A1+SUM(C!A1:B2)+D!C3");
  EXPECT_STREQ(a->readFormula(0, 1), L"SUM('C:D'!A1)");  // C alone would be an address
  EXPECT_STREQ(a->readFormula(0, 2), L"A1");
  EXPECT_EQ(a->readNum(0, 0), 5);
}

TEST(Sheets, DeletingOneReachesSheetsNotReadYet) {
  Four stage;
  stage.book->getSheet(3)->writeFormulaNum(0, 0, L"B!A1", 5);
  ASSERT_TRUE(stage.reload()) << stage.message();
  ASSERT_TRUE(stage.book->delSheet(1)) << stage.message();
  EXPECT_STREQ(stage.book->getSheet(2)->readFormula(0, 0), L"#REF!A1");
  ASSERT_TRUE(stage.reload()) << stage.message();
  EXPECT_STREQ(stage.book->getSheet(2)->readFormula(0, 0), L"#REF!A1");
  EXPECT_THAT(names(*stage.book), ElementsAre(L"A", L"C", L"D"));
}

TEST(Sheets, CopiesAreWholeAndTheirOwn) {
  Stage stage;
  libxl::Sheet* original = stage.sheet;
  original->writeStr(0, 0, L"text");
  original->writeFormulaNum(1, 0, LR"(Data!A1&"x")", 3);
  original->writeError(2, 5, libxl::ErrorRef);
  original->writeComment(2, 5, L"note", L"Ann");
  libxl::Sheet* copy = stage.book->insertSheet(0, L"It's", original);
  ASSERT_TRUE(copy) << stage.message();
  original->writeStr(0, 0, L"changed");
  original->removeComment(2, 5);
  EXPECT_EQ(stage.book->activeSheet(), 1);
  for (const char* pass : {"made", "loaded"}) {
    SCOPED_TRACE(pass);
    EXPECT_STREQ(copy->readStr(0, 0), L"text");
    EXPECT_STREQ(copy->readFormula(1, 0), LR"('It''s'!A1&"x")");
    EXPECT_EQ(copy->readNum(1, 0), 3);
    EXPECT_EQ(copy->readError(2, 5), libxl::ErrorRef);
    EXPECT_STREQ(copy->readComment(2, 5), L"note");
    EXPECT_EQ(copy->lastRow(), 3);
    EXPECT_STREQ(stage.book->getSheet(1)->readFormula(1, 0), LR"(Data!A1&"x")");
    EXPECT_EQ(stage.book->getSheet(1)->readComment(2, 5), nullptr);
    ASSERT_TRUE(stage.reload()) << stage.message();
    copy = stage.sheet;
  }
}

TEST(Sheets, CellsOfACopyShareFormats) {
  Stage stage;
  libxl::Format* format = stage.book->addFormat();
  stage.sheet->writeNum(0, 0, 1, format);
  EXPECT_EQ(stage.book->addSheet(L"Copy", stage.sheet)->cellFormat(0, 0), format);
  EXPECT_EQ(stage.book->formatSize(), 2);
}

TEST(Sheets, NamesFollowTheirSheet) {
  const std::string bytes = with_replaced(
      three_sheets(), "xl/workbook.xml", "</sheets>",
      R"(</sheets><definedNames><definedName name="Rate" localSheetId="1">Two!$A$1)"
      R"(</definedName><definedName name="First">One!$A$1</definedName></definedNames>)");
  Stage stage;
  ASSERT_TRUE(load(*stage.book, bytes)) << stage.message();
  ASSERT_TRUE(stage.book->addSheet(L"Copy", stage.book->getSheet(1))) << stage.message();
  ASSERT_TRUE(stage.book->delSheet(0)) << stage.message();
  const std::string part = part_of(saved(*stage.book), "xl/workbook.xml");
  for (const char* name :
       {R"(name="Rate" localSheetId="0">Two!$A$1<)", R"(name="Rate" localSheetId="2">Copy!$A$1<)",
        R"(name="First">#REF!$A$1<)"})
    EXPECT_THAT(part, testing::HasSubstr(name));
  ASSERT_TRUE(stage.book->delSheet(0)) << stage.message();
  EXPECT_THAT(part_of(saved(*stage.book), "xl/workbook.xml"),
              testing::Not(testing::HasSubstr("Two!")));
}

}  // namespace
