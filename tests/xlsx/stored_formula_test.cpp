#include "engine/xlsx/stored_formula.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "engine/formula/formula_text.h"
#include "engine/workbook/sheet_operations.h"
#include "tests/xlsx/packages.h"

namespace engine::xlsx {
namespace {

constexpr Grid kGrid = Limits().grid;

struct Case {
  const char* shown;
  const char* stored;
};

constexpr Case kBothWays[] = {
    {"XLOOKUP(1,A:A,B:B)", "_xlfn.XLOOKUP(1,A:A,B:B)"},
    {"1+SORT(FILTER(A1:A9,B1:B9))", "1+_xlfn._xlws.SORT(_xlfn._xlws.FILTER(A1:A9,B1:B9))"},
    {"NORM.S.DIST(A1,TRUE)&\"IFS(\"", "_xlfn.NORM.S.DIST(A1,TRUE)&\"IFS(\""},
    {"LET(x,A1,y,x*2,x+y+z)", "_xlfn.LET(_xlpm.x,A1,_xlpm.y,_xlpm.x*2,_xlpm.x+_xlpm.y+z)"},
    {"MAP(A1:A3,LAMBDA(v,v+w))+v", "_xlfn.MAP(A1:A3,_xlfn.LAMBDA(_xlpm.v,_xlpm.v+w))+v"},
    {"LET(f,LAMBDA(n,n),f(2))", "_xlfn.LET(_xlpm.f,_xlfn.LAMBDA(_xlpm.n,_xlpm.n),_xlpm.f(2))"},
    {"SUM(A1#)", "SUM(_xlfn.ANCHORARRAY(A1))"},
    {"SORT(A1:A3)#", "_xlfn.ANCHORARRAY(_xlfn._xlws.SORT(A1:A3))"},
    {"1+ IFS (A1,2)", "1+ _xlfn.IFS (A1,2)"},
    {"@A1:A9+@Rate", "_xlfn.SINGLE(A1:A9)+_xlfn.SINGLE(Rate)"},
    {"@A1#", "_xlfn.SINGLE(_xlfn.ANCHORARRAY(A1))"},
};

TEST(StoredFormula, GoesBothWays) {
  for (const auto& [shown, stored] : kBothWays) {
    SCOPED_TRACE(shown);
    EXPECT_EQ(stored_formula(shown, kGrid), stored);
    EXPECT_EQ(shown_formula(stored, kGrid), shown);
  }
}

TEST(StoredFormula, CompletesThisRow) {
  constexpr Case kCases[] = {
      {"Sales[@Net]", "Sales[[#This Row],[Net]]"},
      {"Sales[@[Net sum]:[Tax]]", "Sales[[#This Row],[Net sum]:[Tax]]"},
      {"Sales[@]", "Sales[#This Row]"},
      {"[@Net]*2", "Here[[#This Row],[Net]]*2"},
      {"SUM([Net])", "SUM(Here[Net])"},
  };
  const Table here = {"Here", {1, 9, 0, 2}};
  for (const auto& [shown, stored] : kCases) {
    SCOPED_TRACE(shown);
    EXPECT_EQ(stored_formula(shown, kGrid, {std::span(&here, 1), {5, 1}}), stored);
  }
}

TEST(StoredFormula, LeavesTheRest) {
  for (const char* shown : {"SUM(A1)", "Table1[#All]", "_xlfn.XLOOKUP(1,A:A,B:B)", "MyIFS(A1)",
                            "_xlfn.LET(_xlpm.x,#N/A,_xlpm.x)", "'IFS('!A1", "IFS+#N/A", "IFS(",
                            "NETWORKDAYS.INTL(A1,B1)"})
    EXPECT_FALSE(stored_formula(shown, kGrid)) << shown;
  // Unknown functions, prefixes in unusual places, and what would read differently without them.
  for (const char* stored : {"SUM(A1)", "_xlfn.FUTURE(A1)", "_xlfn.SORT(A1:A3)",
                             "_xlfn.SINGLE(A1+1)", "_xlfn.SINGLE(A1):B2", "_xlpm.x+1",
                             "_xlfn.LET(_xlpm.x1,2,_xlpm.x1)", "\"_xlfn.IFS(1)\"", "_xlfn.IFS("})
    EXPECT_FALSE(shown_formula(stored, kGrid)) << stored;
}

// What the file says stays beside what it shows when the one does not follow from the other.
TEST(StoredFormula, KeepsTheSpellingOfTheFile) {
  constexpr struct {
    const char* stored;
    const char* shown;
    bool kept;
  } kCases[] = {
      {"SUM(A1)+#N/A", "SUM(A1)+#N/A", false},
      {"_xlfn.IFS(A1,2)", "IFS(A1,2)", false},
      {"T[[#This Row],[Net]]", "T[[#This Row],[Net]]", false},
      {"_xlfn.FUTURE(A1)", "_xlfn.FUTURE(A1)", false},
      {"IFS(A1,2)", "IFS(A1,2)", true},
      {"SUM([Net])", "SUM([Net])", true},
      {"T[@Net]", "T[@Net]", true},
      {"A1#+1", "A1#+1", true},
      {"_xlfn.LET(_xlpm.x1,IFS(1,2),_xlpm.x1)", "_xlfn.LET(_xlpm.x1,IFS(1,2),_xlpm.x1)", true},
  };
  for (const auto& [stored, shown, kept] : kCases) {
    SCOPED_TRACE(stored);
    std::string formula = stored;
    std::string spelling;
    show_formula(formula, kGrid, spelling);
    EXPECT_EQ(formula, shown);
    EXPECT_EQ(spelling, kept ? stored : "");
  }
}

TEST(StoredFormula, IsWrittenAsItStoodUntilItChanges) {
  auto parts =
      book_of(worksheet("<row><c><f>One!B1+IFS(1,2)</f></c><c><f>SUM([Net])</f></c>"
                        "<c><f>_xlfn.FUTURE(1)</f></c><c><f>_xlfn.IFS(1,One!B1)</f></c></row>"));
  parts["xl/workbook.xml"] =
      workbook_text("<sheet name=\"One\" sheetId=\"4\" r:id=\"rId1\"/>",
                    "<definedNames><definedName name=\"N\">IFS(1,2)</definedName>"
                    "<definedName name=\"P\">_xlfn.IFS(One!B1,2)</definedName></definedNames>");
  const auto book = load(parts);
  EXPECT_EQ(std::next(book->workbook.names.begin())->definition, "IFS(One!B1,2)");
  Sheet& sheet = book->read();
  EXPECT_EQ(book->show(sheet, 0, 3), "=IFS(1,One!B1): -");
  sheet.change();
  PartTexts saved = unzip(book->save());
  EXPECT_EQ(saved.at("xl/workbook.xml"), parts.at("xl/workbook.xml"));
  for (const char* text : {"<f>One!B1+IFS(1,2)</f>", "<f>SUM([Net])</f>", "<f>_xlfn.FUTURE(1)</f>",
                           "<f>_xlfn.IFS(1,One!B1)</f>"})
    EXPECT_THAT(saved.at("xl/worksheets/sheet1.xml"), testing::HasSubstr(text));

  FormulaEdits edits;
  edits.collect(book->workbook, [](const Sheet*, std::string_view text) {
    return formula::rename_sheet_text(text, "One", "Two", kGrid);
  });
  edits.apply(book->workbook);
  saved = unzip(book->save());
  for (const char* text : {"<f>Two!B1+_xlfn.IFS(1,2)</f>", "<f>SUM([Net])</f>",
                           "<f>_xlfn.FUTURE(1)</f>", "<f>_xlfn.IFS(1,Two!B1)</f>"})
    EXPECT_THAT(saved.at("xl/worksheets/sheet1.xml"), testing::HasSubstr(text));
  for (const char* text : {">IFS(1,2)<", ">_xlfn.IFS(Two!B1,2)<"})
    EXPECT_THAT(saved.at("xl/workbook.xml"), testing::HasSubstr(text));
}

// Only saving asks for tables, and it goes without those that cannot be read.
TEST(StoredFormula, NeedsNoTableThatIsDamaged) {
  const std::string table =
      "<table xmlns=\"" + std::string(kMainNamespace) + "\" displayName=\"T\" ref=\"A1:B9\"/>";
  const struct {
    std::string relationships;
    std::string table;
    const char* written;
  } cases[] = {
      {relations({{"table", "../table1.xml"}}), table, "<f>T[[#This Row],[Net]]</f>"},
      {relations({{"table", "../table1.xml"}}), "<table", "<f>[[#This Row],[Net]]</f>"},
      {relations({{"table", "../gone.xml"}}), table, "<f>[[#This Row],[Net]]</f>"},
      {"<Relationships", table, "<f>[[#This Row],[Net]]</f>"},
  };
  for (const auto& [relationships, bytes, written] : cases) {
    SCOPED_TRACE(relationships + bytes);
    auto parts = book_of(worksheet("<row><c><f>1</f></c></row>"));
    parts["xl/worksheets/_rels/sheet1.xml.rels"] = relationships;
    parts["xl/table1.xml"] = bytes;
    const auto book = load(parts);
    Sheet& sheet = book->read();
    sheet.change().records()[0].formula = "[@Net]";
    const PartTexts saved = unzip(book->save());
    EXPECT_THAT(saved.at("xl/worksheets/sheet1.xml"), testing::HasSubstr(written));
    EXPECT_EQ(saved.at("xl/table1.xml"), bytes);
  }
}

}  // namespace
}  // namespace engine::xlsx
