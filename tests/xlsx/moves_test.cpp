// Rows and columns that are inserted and removed, with all that follows in the file.
#include <gmock/gmock.h>

#include <random>

#include "engine/formula/formula_text.h"
#include "engine/workbook/move_cells.h"
#include "tests/xlsx/rich_package.h"

namespace engine::xlsx {
namespace {

using formula::Axis;
using testing::HasSubstr;
using testing::Not;
using Kind = formula::Move::Kind;

constexpr formula::Move insert_rows(int at, int count) {
  return {Axis::kRows, Kind::kInsert, at, count};
}
constexpr formula::Move remove_rows(int at, int count) {
  return {Axis::kRows, Kind::kRemove, at, count};
}
constexpr formula::Move insert_columns(int at, int count) {
  return {Axis::kColumns, Kind::kInsert, at, count};
}
constexpr formula::Move remove_columns(int at, int count) {
  return {Axis::kColumns, Kind::kRemove, at, count};
}

std::optional<MoveRefusal> move(Book& book, const formula::Move& move, std::size_t sheet = 0) {
  return move_cells(book.workbook, *book.document, book.read(sheet), {move, true});
}

// The parts of a book after a move, saved.
PartTexts parts_after(const PartTexts& parts, const formula::Move& its, std::size_t sheet = 0) {
  const auto book = load(parts);
  EXPECT_FALSE(move(*book, its, sheet));
  return unzip(book->save());
}

// Formulas that cells share read after any moves as if each cell had its own.

constexpr const char* kShared[] = {
    "A4*2",          "$A$4+A$4+$A4",
    "SUM(A1:A9)",    "SUM($A$1:A4)",
    "SUM(A4:A$20)",  "More!A4",
    "SUM(More!4:6)", "SUM(A:B)+SUM(More!B:C)",
    "A9:A4+B1",      "SUM(More!$A$2:A6)+C3",
};

std::string rows_of_formulas(bool shared) {
  const Grid grid = Limits().grid;
  std::string rows;
  for (int row = 2; row < 14; ++row) {
    rows += "<row r=\"" + std::to_string(row + 1) + "\">";
    int number = 0;
    for (const char* text : kShared) {
      for (int column = 3 + 2 * number; column < 5 + 2 * number; ++column) {
        const bool first = row == 2 && column == 3 + 2 * number;
        const auto own = formula::shift_text(text, row - 2, column - 3 - 2 * number, grid);
        rows += "<c r=\"" + formula::print_cell(row, column) + "\">";
        if (!shared) rows += "<f>" + own.value_or(text) + "</f>";
        else rows += "<f t=\"shared\" si=\"" + std::to_string(number) + "\">";
        if (shared) rows += (first ? text : std::string()) + "</f>";
        rows += "</c>";
      }
      ++number;
    }
    rows += "</row>";
  }
  return worksheet(rows);
}

PartTexts book_of_formulas(bool shared) {
  PartTexts parts = book_of(rows_of_formulas(shared));
  parts["xl/worksheets/sheet2.xml"] = rows_of_formulas(shared);
  parts["xl/workbook.xml"] = workbook_text(
      R"(<sheet name="Data" sheetId="1" r:id="rId1"/><sheet name="More" sheetId="2" r:id="rId3"/>)");
  parts["xl/_rels/workbook.xml.rels"] = relations({{"worksheet", "worksheets/sheet1.xml"},
                                                   {"sharedStrings", "sharedStrings.xml"},
                                                   {"worksheet", "worksheets/sheet2.xml"}});
  return parts;
}

TEST(Moves, LeaveSharedFormulasAsIfEachCellHadItsOwn) {
  std::mt19937 random(7);
  for (int round = 0; round < 40 && !HasFailure(); ++round) {
    const auto shared = load(book_of_formulas(true));
    const auto own = load(book_of_formulas(false));
    std::string done;
    for (int step = 0; step < 4; ++step) {
      const auto axis = random() % 3 == 0 ? Axis::kColumns : Axis::kRows;
      const auto kind = random() % 2 == 0 ? Kind::kInsert : Kind::kRemove;
      const formula::Move its{axis, kind, static_cast<int>(random() % 12),
                              1 + static_cast<int>(random() % 3)};
      const std::size_t sheet = random() % 2;
      done += std::to_string(sheet) + (axis == Axis::kRows ? " row " : " column ") +
              (kind == Kind::kInsert ? "+" : "-") + std::to_string(its.count) + " at " +
              std::to_string(its.at) + "; ";
      SCOPED_TRACE(done);
      ASSERT_FALSE(move(*shared, its, sheet));
      ASSERT_FALSE(move(*own, its, sheet));
      for (std::size_t i = 0; i < 2; ++i)
        for (const Row& row : own->sheet(i).contents().cells.rows())
          for (const Cell& cell : row.span()) {
            const int number = static_cast<int>(row.number);
            EXPECT_EQ(shared->show(shared->sheet(i), number, cell.column),
                      own->show(own->sheet(i), number, cell.column))
                << formula::print_cell(number, cell.column);
          }
    }
    const auto again = load(shared->save());
    for (std::size_t i = 0; i < 2; ++i) {
      again->read(i);
      for (const Row& row : own->sheet(i).contents().cells.rows())
        for (const Cell& cell : row.span())
          EXPECT_EQ(again->show(again->sheet(i), static_cast<int>(row.number), cell.column),
                    own->show(own->sheet(i), static_cast<int>(row.number), cell.column));
    }
  }
}

TEST(Moves, KeepAFormulaSharedWhereAllOfItMovesAlike) {
  const auto book = load(book_of_formulas(true));
  EXPECT_FALSE(move(*book, insert_rows(0, 3)));
  EXPECT_EQ(book->sheet(0).contents().shared_formulas.size(), std::size(kShared));
}

// Each cell below has a range whose end is cut at another distance, and so a long text of its own.
TEST(Moves, RefuseWhatMakesALongSharedFormulaManyTexts) {
  constexpr int kRows = 34'000;
  std::string text = "SUM(A1:A66000)";
  while (text.size() < 8000) text += "=\"" + std::string(255, 'x') + '"';
  std::string rows;
  for (int row = 1; row <= kRows; ++row)
    rows += R"(<row><c><f t="shared" si="0">)" + std::exchange(text, "") + "</f></c></row>";
  const auto book = load(book_of(worksheet(rows)));
  const std::string first = book->show(book->read(0), 1, 0);
  EXPECT_THROW(move(*book, remove_rows(66'000, kRows)), std::bad_alloc);
  EXPECT_EQ(book->show(book->sheet(0), 1, 0), first);
  EXPECT_FALSE(move(*book, remove_rows(66'000, 3)));
}

// Elements of a worksheet.

TEST(Moves, ChangeWhatElementsSay) {
  constexpr const char* kXm = R"(xmlns:xm="http://schemas.microsoft.com/office/excel/2006/main")";
  const std::string xm = kXm;
  const struct {
    std::string elements;
    formula::Move move;
    std::string after;  // empty: nothing is left
  } cases[] = {
      {R"(<conditionalFormatting sqref="B2:B9 D2:D9"><cfRule type="expression" priority="1">)"
       R"(<formula>A2&gt;$A$1</formula></cfRule></conditionalFormatting>)",
       insert_rows(1, 2),
       R"(<conditionalFormatting sqref="B4:B11 D4:D11"><cfRule type="expression" priority="1">)"
       R"(<formula>A4&gt;$A$1</formula></cfRule></conditionalFormatting>)"},
      // The first cell goes: the rule is restated for the next.
      {R"(<conditionalFormatting sqref="B2:B9"><cfRule type="expression" priority="1"><formula>)"
       R"(AND(A2&gt;$A$1,B$2=1)</formula></cfRule></conditionalFormatting>)",
       remove_rows(1, 1),
       R"(<conditionalFormatting sqref="B2:B8"><cfRule type="expression" priority="1"><formula>)"
       R"(AND(A2&gt;$A$1,#REF!=1)</formula></cfRule></conditionalFormatting>)"},
      {R"(<dataValidations count="2"><dataValidation type="custom" sqref="B2:C5"><formula1>A2=1)"
       R"(</formula1></dataValidation><dataValidation type="list" sqref="B2"><formula1>$A$1:$A$9)"
       R"(</formula1></dataValidation></dataValidations>)",
       remove_columns(1, 1),
       R"(<dataValidations count="1"><dataValidation type="custom" sqref="B2:B5"><formula1>#REF!=1)"
       R"(</formula1></dataValidation></dataValidations>)"},
      {R"(<autoFilter ref="A1:D9"><filterColumn colId="0"/><filterColumn colId="1"/><filterColumn )"
       R"(colId="3"/><sortState ref="A2:D9"><sortCondition ref="B2:B9"/></sortState></autoFilter>)",
       remove_columns(1, 1),
       R"(<autoFilter ref="A1:C9"><filterColumn colId="0"/><filterColumn colId="2"/></autoFilter>)"},
      {R"(<autoFilter ref="B3:D9"><filterColumn colId="1"/></autoFilter>)", remove_rows(2, 1), ""},
      {R"(<autoFilter ref="B3:D9"><filterColumn colId="1"/></autoFilter>)", insert_columns(2, 2),
       R"(<autoFilter ref="B3:F9"><filterColumn colId="3"/></autoFilter>)"},
      {R"(<protectedRanges><protectedRange name="a" sqref="A1:B2 C3"/></protectedRanges>)",
       remove_rows(2, 1),
       R"(<protectedRanges><protectedRange name="a" sqref="A1:B2"/></protectedRanges>)"},
      {R"(<ignoredErrors><ignoredError sqref="A3" evalError="1"/></ignoredErrors>)",
       remove_rows(2, 1), ""},
      {R"(<mergeCells count="1"><mergeCell ref="A3:A4"/></mergeCells>)", remove_rows(2, 1), ""},
      {R"(<scenarios sqref="A5"><scenario name="s"><inputCells r="A5" val="1"/></scenario>)"
       R"(</scenarios>)",
       insert_rows(0, 1),
       R"(<scenarios sqref="A5"><scenario name="s"><inputCells r="A5" val="1"/></scenario>)"
       R"(</scenarios>)"},
      {"<extLst><ext uri=\"u\"><sparklineGroups><sparklineGroup><c/><sparklines><sparkline>"
       "<xm:f " +
           xm + ">One!A1:A9</xm:f><xm:sqref " + xm +
           ">C5</xm:sqref></sparkline>"
           "</sparklines></sparklineGroup></sparklineGroups></ext></extLst>",
       insert_rows(2, 2),
       "<extLst><ext uri=\"u\"><sparklineGroups><sparklineGroup><c/><sparklines><sparkline>"
       "<xm:f " +
           xm + ">One!A1:A11</xm:f><xm:sqref " + xm +
           ">C7</xm:sqref></sparkline>"
           "</sparklines></sparklineGroup></sparklineGroups></ext></extLst>"},
      {"<extLst><ext uri=\"u\"><sparklineGroups><sparklineGroup><c/><sparklines><sparkline>"
       "<xm:f " +
           xm + ">One!A1:A9</xm:f><xm:sqref " + xm +
           ">C5</xm:sqref></sparkline>"
           "</sparklines></sparklineGroup></sparklineGroups></ext></extLst>",
       remove_columns(2, 1), ""},
      {"<extLst><ext uri=\"u\"><dataValidations count=\"2\"><dataValidation><formula1><xm:f " + xm +
           ">A2</xm:f></formula1><xm:sqref " + xm +
           ">B2:B3</xm:sqref></dataValidation>"
           "<dataValidation><xm:sqref " +
           xm +
           ">B2</xm:sqref></dataValidation>"
           "</dataValidations></ext></extLst>",
       remove_rows(1, 1),
       "<extLst><ext uri=\"u\"><dataValidations count=\"1\"><dataValidation><formula1><xm:f " + xm +
           ">A2</xm:f></formula1><xm:sqref " + xm +
           ">B2</xm:sqref></dataValidation>"
           "</dataValidations></ext></extLst>"},
  };
  for (const auto& [elements, its, after] : cases) {
    SCOPED_TRACE(elements);
    const PartTexts parts = parts_after(book_of(worksheet("", "", elements)), its);
    const std::string& text = parts.at("xl/worksheets/sheet1.xml");
    EXPECT_THAT(text, HasSubstr("</sheetData>" + after + "</worksheet>"));
  }
}

TEST(Moves, LeaveTheViewWhereSomethingIs) {
  const std::string head =
      R"(<sheetViews><sheetView topLeftCell="A4" workbookViewId="0"><selection activeCell="B5" )"
      R"(sqref="B5"/></sheetView></sheetViews>)";
  const PartTexts parts = parts_after(book_of(worksheet("", head)), remove_rows(2, 4));
  EXPECT_THAT(parts.at("xl/worksheets/sheet1.xml"),
              HasSubstr(R"(topLeftCell="A3" workbookViewId="0"><selection activeCell="B3" )"
                        R"(sqref="B3"/>)"));
}

PartTexts without_table() {
  PartTexts parts = rich_package();
  std::string& links = parts["xl/worksheets/_rels/sheet1.xml.rels"];
  links.replace(links.find("h/table"), 7, "h/other");
  return parts;
}

// The look of what is inserted.

TEST(Moves, GiveInsertedRowsTheLookOfTheRowBefore) {
  PartTexts parts = without_table();
  parts["xl/worksheets/sheet1.xml"] = worksheet(
      R"(<row r="1" s="2" customFormat="1" ht="30" customHeight="1" hidden="1" outlineLevel="2">)"
      R"(<c r="A1" s="1"><v>1</v></c><c r="B1"><v>2</v></c></row><row r="2" outlineLevel="1">)"
      R"(<c r="A2"><v>3</v></c></row>)");
  const auto book = load(parts);
  EXPECT_FALSE(move(*book, insert_rows(1, 2)));
  EXPECT_THAT(
      unzip(book->save())["xl/worksheets/sheet1.xml"],
      HasSubstr(
          R"(<row r="2" s="2" customFormat="1" ht="30" customHeight="1" outlineLevel="1"><c )"
          R"(r="A2" s="1"/></row><row r="3" s="2" customFormat="1" ht="30" customHeight="1" )"
          R"(outlineLevel="1"><c r="A3" s="1"/></row><row r="4" outlineLevel="1"><c r="A4">)"));
  EXPECT_FALSE(move(*book, insert_rows(0, 1)));
  EXPECT_EQ(book->sheet().contents().cells.find_row(0), nullptr);
}

TEST(Moves, GiveInsertedColumnsTheLookOfTheColumnBefore) {
  PartTexts parts = without_table();
  parts["xl/worksheets/sheet1.xml"] =
      worksheet(R"(<row r="1"><c r="A1" s="1"><v>1</v></c><c r="B1"><v>2</v></c></row>)"
                R"(<row r="2"><c r="A2"><v>1</v></c><c r="XFD2" s="1"/></row>)",
                R"(<cols><col min="1" max="2" width="20" hidden="1" customWidth="1"/></cols>)");
  const PartTexts after = parts_after(parts, insert_columns(1, 2));
  EXPECT_THAT(after.at("xl/worksheets/sheet1.xml"),
              HasSubstr(R"(<cols><col min="1" max="1" width="20" hidden="1" customWidth="1"/>)"
                        R"(<col min="2" max="3" width="20" customWidth="1"/><col min="4" max="4" )"
                        R"(width="20" hidden="1" customWidth="1"/></cols>)"));
  EXPECT_THAT(
      after.at("xl/worksheets/sheet1.xml"),
      HasSubstr(R"(<row r="1"><c r="A1" s="1"><v>1</v></c><c r="B1" s="1"/><c r="C1" s="1"/>)"
                R"(<c r="D1"><v>2</v></c></row><row r="2"><c r="A2"><v>1</v></c></row>)"));
}

// Other parts of the file.

TEST(Moves, TakeTheCarriedPartsAlong) {
  const struct {
    formula::Move move;
    std::size_t sheet;
    const char* part;
    const char* text;
  } cases[] = {
      {insert_rows(0, 2), 0, "xl/comments1.xml", "ref=\"A3\""},
      {insert_rows(0, 2), 0, "xl/threaded1.xml", "ref=\"A3\""},
      {insert_rows(0, 2), 0, "xl/drawings/vmlDrawing1.vml", "<x:Row>2</x:Row><x:Column>0<"},
      {insert_columns(0, 1), 0, "xl/drawings/vmlDrawing1.vml", "<x:Row>0</x:Row><x:Column>1<"},
      {insert_rows(0, 2), 0, "xl/tables/table1.xml", "ref=\"A3:C5\""},
      {remove_rows(1, 1), 0, "xl/tables/table1.xml", "ref=\"A1:C2\""},
      {insert_columns(1, 1), 0, "xl/tables/table1.xml",
       R"(ref="A1:D3"><tableColumns count="4"><tableColumn id="1" name="Name"/><tableColumn id="4" )"
       R"(name="Column1"/><tableColumn id="2" name="Value"/>)"},
      {insert_columns(1, 1), 0, "xl/worksheets/sheet1.xml", "<c r=\"B1\" t=\"s\"><v>4</v></c>"},
      {remove_columns(0, 1), 0, "xl/tables/table1.xml",
       R"(ref="A1:B3"><tableColumns count="2"><tableColumn id="2" name="Value"/>)"},
      {remove_columns(1, 1), 0, "xl/worksheets/sheet2.xml", "Data!A2+SUM(#REF!)"},
      {remove_columns(1, 1), 0, "xl/tables/table1.xml", "More!A1+#REF!<"},
      {remove_rows(0, 3), 0, "xl/worksheets/sheet2.xml", "#REF!+SUM(#REF!)"},
      {remove_rows(0, 3), 0, "xl/workbook.xml", ">Data!$A$1:$D$3<"},
      {insert_rows(1, 1), 1, "xl/charts/chart1.xml", "More!$A$1:$A$4"},
      {insert_rows(1, 1), 1, "xl/pivotCache/pivotCacheDefinition1.xml", "ref=\"A1:A4\""},
      {insert_rows(1, 1), 1, "xl/worksheets/sheet1.xml", "<formula1>More!$A$1:$A$4</formula1>"},
      {insert_rows(1, 1), 1, "xl/workbook.xml", ">More!$A$1*2<"},
      {insert_rows(0, 1), 1, "xl/workbook.xml", ">More!$A$2*2<"},
      {insert_rows(0, 1), 1, "xl/tables/table1.xml", "More!A2+Table1[Value]"},
  };
  for (const auto& [its, sheet, part, text] : cases) {
    SCOPED_TRACE(std::string(part) + ": " + text);
    EXPECT_THAT(parts_after(rich_package(), its, sheet).at(part), HasSubstr(text));
  }
}

TEST(Moves, DropWhatTheyRemove) {
  const PartTexts parts = parts_after(rich_package(), remove_rows(0, 3));
  EXPECT_FALSE(parts.contains("xl/tables/table1.xml"));
  EXPECT_FALSE(parts.contains("xl/calcChain.xml"));
  EXPECT_THAT(parts.at("xl/worksheets/sheet1.xml"), Not(HasSubstr("tablePart")));
  EXPECT_THAT(parts.at("xl/comments1.xml"), Not(HasSubstr("<comment ")));
  EXPECT_THAT(parts.at("xl/drawings/vmlDrawing1.vml"), Not(HasSubstr("<v:shape ")));
}

TEST(Moves, LeavePartsByteForByteThatTheyDoNotConcern) {
  const PartTexts before = rich_package();
  const PartTexts after = parts_after(before, insert_rows(9, 2));
  for (const char* part : {"xl/comments1.xml", "xl/drawings/vmlDrawing1.vml",
                           "xl/charts/chart1.xml", "xl/drawings/drawing1.xml",
                           "xl/tables/table1.xml", "xl/threaded1.xml", "xl/worksheets/sheet2.xml"})
    EXPECT_EQ(after.at(part), before.at(part)) << part;
}

// Pictures and shapes. The sheet's rows are 20 pixels, its third one 40.
TEST(Moves, KeepObjectsAtTheirCells) {
  const struct {
    const char* anchor;  // element and attribute, rows and offsets of both corners
    int from[2];
    int to[2];
    formula::Move move;
    std::string after;
  } cases[] = {
      {"twoCellAnchor", {2, 5}, {5, 6}, insert_rows(3, 2), "2 5 7 6"},
      {"twoCellAnchor", {2, 5}, {5, 6}, insert_rows(2, 2), "4 5 7 6"},
      {"twoCellAnchor", {2, 5}, {5, 6}, remove_rows(1, 2), "1 0 3 6"},
      {"twoCellAnchor", {2, 5}, {5, 6}, remove_rows(4, 2), "2 5 4 0"},
      {"twoCellAnchor", {2, 5}, {5, 6}, remove_rows(2, 4), "gone"},
      {"twoCellAnchor", {2, 5}, {5, 0}, remove_rows(2, 3), "gone"},
      {"twoCellAnchor", {2, 5}, {5, 6}, insert_columns(0, 2), "2 5 5 6"},
      {"twoCellAnchor editAs=\"oneCell\"", {0, 0}, {3, 0}, insert_rows(1, 2), "0 0 4 0"},
      {"twoCellAnchor editAs=\"oneCell\"", {1, 0}, {3, 0}, insert_rows(0, 2), "3 0 5 0"},
      {"twoCellAnchor editAs=\"absolute\"", {2, 5}, {5, 6}, insert_rows(0, 2), "2 5 5 6"},
  };
  for (const auto& [anchor, from, to, its, after] : cases) {
    SCOPED_TRACE(std::string(anchor) + " to " + after);
    const auto corner = [](const char* name, const int(&at)[2]) {
      return "<xdr:" + std::string(name) +
             "><xdr:col>9</xdr:col><xdr:colOff>0</xdr:colOff><xdr:row>" + std::to_string(at[0]) +
             "</xdr:row><xdr:rowOff>" + std::to_string(at[1]) + "</xdr:rowOff></xdr:" + name + ">";
    };
    const std::string name = std::string(anchor).substr(0, std::string(anchor).find(' '));
    PartTexts parts = without_table();
    parts["xl/worksheets/sheet1.xml"] =
        worksheet(R"(<row r="3" ht="30" customHeight="1"/>)", "", R"(<drawing r:id="rId2"/>)");
    parts["xl/drawings/drawing1.xml"] =
        "<xdr:wsDr xmlns:xdr=\"http://schemas.openxmlformats.org/drawingml/2006/"
        "spreadsheetDrawing\"><xdr:" +
        std::string(anchor) + ">" + corner("from", from) + corner("to", to) + "</xdr:" + name +
        "></xdr:wsDr>";
    const std::string text = parts_after(parts, its).at("xl/drawings/drawing1.xml");
    if (after == "gone") {
      EXPECT_THAT(text, Not(HasSubstr("Anchor")));
      continue;
    }
    std::string found;
    for (std::size_t at = 0; (at = text.find("<xdr:row", at)) != std::string::npos;) {
      const std::size_t begin = text.find('>', at) + 1;
      at = text.find('<', begin);
      found += (found.empty() ? "" : " ") + text.substr(begin, at - begin);
    }
    EXPECT_EQ(found, after);
  }
}

// Refusals.

TEST(Moves, AreRefusedWhereThingsWouldBeSplit) {
  using Refusal = MoveRefusal::Kind;
  const struct {
    const char* tables;  // attributes of the table
    formula::Move move;
    std::optional<Refusal> refusal;
  } cases[] = {
      {R"(ref="A1:C3")", remove_rows(0, 1), Refusal::kTableHeader},
      {R"(ref="A1:C3")", remove_rows(1, 2), Refusal::kTableRows},
      {R"(ref="A1:C3")", remove_rows(1, 1), std::nullopt},
      {R"(ref="A1:C3" totalsRowCount="1")", remove_rows(1, 1), Refusal::kTableRows},
      {R"(ref="A1:C3" totalsRowCount="1")", remove_rows(2, 1), std::nullopt},
      {R"(ref="A1:C3" headerRowCount="0")", remove_rows(0, 2), std::nullopt},
      {R"(ref="A1:C3")", insert_rows(5, 1), Refusal::kArray},  // of A5:A6
      {R"(ref="A1:C3")", remove_rows(5, 1), Refusal::kArray},
      {R"(ref="A1:C3")", remove_rows(4, 2), std::nullopt},
      {R"(ref="A1:C3")", insert_rows(4, 1), std::nullopt},
      {R"(ref="A1:C3")", insert_rows(3, 1048572), Refusal::kPush},
      {R"(ref="A1:C3")", insert_columns(1, 16382), Refusal::kPush},
      {R"(ref="A1:C3")", insert_columns(3, 16380), std::nullopt},
  };
  for (const auto& [table, its, refusal] : cases) {
    SCOPED_TRACE(table);
    SCOPED_TRACE(its.at);
    PartTexts parts = rich_package();
    std::string& text = parts["xl/tables/table1.xml"];
    text.replace(text.find("ref=\"A1:C3\""), 11, table);
    const auto book = load(parts);
    const auto given = move(*book, its);
    EXPECT_EQ(given.has_value(), refusal.has_value());
    if (given && refusal) {
      EXPECT_EQ(given->kind, *refusal);
    }
  }
}

}  // namespace
}  // namespace engine::xlsx
