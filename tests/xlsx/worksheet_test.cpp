// Cells: how files spell them, and what is written back.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "engine/workbook/metrics.h"
#include "tests/xlsx/packages.h"

namespace engine::xlsx {
namespace {

using testing::HasSubstr;

TEST(Worksheet, ReadsEveryKindOfCell) {
  struct Case {
    const char* cell;
    const char* shown;
  };
  constexpr Case kCases[] = {
      {R"(<c r="A1"><v>12.5</v></c>)", "12.5"},
      {R"(<c r="A1" s="7"><v>-3</v></c>)", "-3."},
      {R"(<c r="A1"><v>-1.25E-2</v></c>)", "-0.0125"},
      {R"(<c r="A1" t="n"><v> 1e3 </v></c>)", "1000."},
      {"<c r='$A$1'><v>&#49;2</v></c>", "12."},
      {"<c><v>5</v></c>", "5."},
      {R"(<c r="a1" t="s"><v>1</v></c>)", R"("one")"},
      {R"(<c r="A1" t="s"><v>0</v></c>)", R"("zero")"},
      {R"(<c r="A1" t="s"/>)", "-"},
      {R"(<c r="A1" t="str"><v> a&lt;_x0041_&#10;b </v></c>)", "\" a<A\nb \""},
      {R"(<c r="A1" t="str"><v></v></c>)", "\"\""},
      {R"(<c r="A1" t="b"><v>1</v></c>)", "TRUE"},
      {R"(<c r="A1" t="b"><v>false</v></c>)", "FALSE"},
      {R"(<c r="A1" t="e"><v>#N/A</v></c>)", "#N/A"},
      {R"(<c r="A1" t="e"><v>#SPILL!</v></c>)", "#SPILL!"},
      {R"(<c r="A1" t="n"><v>NaN</v></c>)", "#NUM!"},
      {R"(<c r="A1"><v>-INF</v></c>)", "#NUM!"},
      {R"(<c r="A1" t="d"><v>1900-03-01T12:00</v></c>)", "61.5"},
      {R"(<c r="A1" t="inlineStr"><is><t>in</t></is></c>)", R"("in")"},
      {R"(<c r="A1" t="inlineStr"><is><r><t>a</t></r><r><rPr><b/></rPr><t )"
       R"(xml:space="preserve"> b)"
       R"(</t></r><rPh sb="0" eb="1"><t>no</t></rPh></is></c>)",
       R"("a b")"},
      {R"(<c r="A1"><f>B1+1</f><v>3</v></c>)", "=B1+1: 3."},
      {R"(<c r="A1" t="str"><f>"a"&amp;B1</f><v>ab</v></c>)", R"(="a"&B1: "ab")"},
      {R"(<c r="A1"><f>B1</f></c>)", "=B1: -"},
      {R"(<c r="A1"><f>B1</f><v></v></c>)", "=B1: -"},
      {R"(<c r="A1"/>)", "-"},
      {R"(<c r="A1"><!-- <v>1</v> --><v><![CDATA[2]]></v></c>)", "2."},
      {R"(<c r="A1"><v>1</v></c><c r="A1"><v>2</v></c>)", "2."},
  };
  for (const auto& [cell, shown] : kCases) {
    SCOPED_TRACE(cell);
    const auto book = load(book_of(worksheet(R"(<row r="1">)" + std::string(cell) + "</row>")));
    book->read();
    EXPECT_EQ(book->show(0, 0), shown);
    book->sheet().change();
    const auto again = load(book->save());
    again->read();
    EXPECT_EQ(again->show(0, 0), shown);
  }
}

TEST(Worksheet, PlacesCellsWithoutOrderOrAddress) {
  struct Case {
    const char* rows = nullptr;
    CellAddress at;
  };
  constexpr Case kCases[] = {
      {R"(<row><c/><c t="s"><v>1</v></c></row>)", {0, 1}},
      {R"(<row r="5"/><row><c t="s"><v>1</v></c></row>)", {5, 0}},
      {R"(<row r="3"><c r="C3"/><c t="s"><v>1</v></c></row>)", {2, 3}},
      {R"(<row r="9"/><row r="2"><c r="B2"/><c r="A2" t="s"><v>1</v></c></row>)", {1, 0}},
      {R"(<row r="1"><c r="B7" t="s"><v>1</v></c></row>)", {6, 1}},
      {R"(<row r="1048576"><c r="XFD1048576" t="s"><v>1</v></c></row>)", {1048575, 16383}},
  };
  for (const auto& [rows, at] : kCases) {
    SCOPED_TRACE(rows);
    const auto book = load(book_of(worksheet(rows)));
    book->read();
    EXPECT_EQ(book->show(at.row, at.column), R"("one")");
  }
}

TEST(Worksheet, ReadsPrefixesAndStrictNamespaces) {
  PartTexts prefixed =
      book_of(R"(<x:worksheet xmlns:x=")" + std::string(kMainNamespace) +
              R"("><x:cols><x:col min="2" max="3" width="9"/></x:cols><x:sheetData><x:row r="1">)"
              R"(<x:c r="A1" t="s"><x:v>1</x:v></x:c><x:c r="B1" t="inlineStr"><x:is><x:r>)"
              "<x:t>rich</x:t></x:r></x:is></x:c></x:row></x:sheetData><x:mergeCells>"
              R"(<x:mergeCell ref="A1:B1"/></x:mergeCells></x:worksheet>)");
  const auto book = load(prefixed);
  book->read();
  ASSERT_EQ(book->sheet().contents().columns.size(), 1u);
  book->sheet().change().put_value(0, 2, Value::of_number(4), {});
  const auto again = load(book->save());
  again->read();
  EXPECT_EQ(again->show(0, 0), R"("one")");
  EXPECT_EQ(again->show(0, 1), R"("rich")");
  EXPECT_EQ(again->show(0, 2), "4.");
  EXPECT_EQ(again->sheet().contents().columns.size(), 1u);
  EXPECT_THAT(unzip(book->save()).at("xl/sharedStrings.xml"),
              HasSubstr("<si><r><t>rich</t></r></si>"));

  PartTexts strict;
  for (auto [name, text] : book_of(worksheet(R"(<row><c t="d"><v>2020-01-01</v></c></row>)"))) {
    for (const auto& [from, to] :
         {std::pair{kMainNamespace, "http://purl.oclc.org/ooxml/spreadsheetml/main"},
          std::pair{kOfficeRelations, "http://purl.oclc.org/ooxml/officeDocument/relationships"}})
      for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at))
        text.replace(at, from.size(), to);
    strict[name] = text;
  }
  const auto strict_book = load(strict);
  strict_book->read();
  EXPECT_EQ(strict_book->show(0, 0), "43831.");
  EXPECT_EQ(strict_book->workbook.strings.size(), 2u);
}

TEST(Worksheet, SharedFormulasStayShared) {
  const auto book = load(book_of(
      worksheet(R"(<row r="2"><c r="B2"><f t="shared" ref="B2:C4" si="0" ca="1">A1+$A$1+A2</f>)"
                R"(<v>1</v></c><c r="C2"><f t="shared" si="0"/><v>2</v></c></row>)"
                R"(<row r="3"><c r="B3"><f t="shared" si="0"/></c>)"
                R"(<c r="C3"><f t="shared" ref="C3:C9" si="0">C1*2</f></c></row>)"
                R"(<row r="4"><c r="C4"><f t="shared" si="0"/></c></row>)")));
  book->read();
  EXPECT_EQ(book->show(1, 1), "=A1+$A$1+A2: 1.");
  EXPECT_EQ(book->show(1, 2), "=B1+$A$1+B2: 2.");
  EXPECT_EQ(book->show(2, 1), "=A2+$A$1+A3: -");
  EXPECT_EQ(book->show(3, 2), "=C2*2: -");
  book->sheet().change();
  const std::string sheet = unzip(book->save()).at("xl/worksheets/sheet1.xml");
  EXPECT_THAT(sheet, HasSubstr(R"(<c r="B2"><f ca="1" t="shared" ref="B2:C3" si="0">A1+$A$1+A2</f>)"
                               R"(<v>1</v></c><c r="C2"><f t="shared" si="0"/><v>2</v></c>)"));
  EXPECT_THAT(sheet, HasSubstr(R"(<f t="shared" ref="C3:C4" si="1">C1*2</f>)"));

  // Without the cell that had the text the next one has it.
  book->sheet().change().put_value(1, 1, Value::of_number(7), {});
  const std::string changed = unzip(book->save()).at("xl/worksheets/sheet1.xml");
  EXPECT_THAT(changed, HasSubstr(R"(ref="B2:C3" si="0">B1+$A$1+B2</f><v>2</v>)"));
  EXPECT_THAT(changed, HasSubstr(R"(<c r="B3"><f t="shared" si="0"/></c>)"));
}

// Plain cells are recognised as one piece, which a blank in the tag prevents: both ways agree, and
// what they read comes back.
TEST(Worksheet, FormulasReadTheSameInOnePieceAndTokenByToken) {
  const std::string long_sum = [] {
    std::string text = "A1";
    while (text.size() < 9000) text += "&amp;A1";
    return text;
  }();
  struct Case {
    std::string attributes;
    std::string content;
  };
  const Case cases[] = {
      {"", "<f>B1+1</f><v>3</v>"},
      {" s=\"0\"", "<f>B1+1</f><v>-3.25E-3</v>"},
      {" t=\"n\"", "<f>B1+1</f><v></v>"},
      {"", "<f>B1</f>"},
      {"", "<f></f><v>1</v>"},
      {"", "<f/><v>1</v>"},
      {" t=\"str\"", "<f>IF(B1&gt;0,&quot;a&quot;,\"b\")</f><v>x &lt;&amp;&#65; y</v>"},
      {" t=\"str\"", "<f>T(B1)</f><v></v>"},
      {" t=\"str\"", "<f>T(B1)</f>"},
      {" t=\"str\"", "<f>B1</f><v>_x0041_ _xyz _</v>"},
      {" t=\"str\"", "<f>'Größe'!B1&amp;\"ß\"</f><v>Größe\r\n \xEF\xBF\xBE</v>"},
      {" t=\"str\"", "<f>B1</f><v>" + std::string(300, 'v') + "</v>"},
      {" t=\"s\"", "<f>B1</f><v>1</v>"},
      {" t=\"b\"", "<f>B1=1</f><v>1</v>"},
      {" t=\"e\"", "<f>B1/0</f><v>#DIV/0!</v>"},
      {"", "<f>" + long_sum + "</f><v>1</v>"},
      {"", "<f>LEN(\"" + std::string(200, '>') + "\")</f><v>200</v>"},
      {"", "<f>_xlfn.CONCAT(A1,B1)</f><v>1</v>"},
      {"", "<f>CONCAT(A1,B1)</f><v>1</v>"},
      {"", "<f>_xlfn.ANCHORARRAY(B1)+T[[#This Row],[Net]]</f><v>1</v>"},
      {"", "<f>not a formula (</f><v>1</v>"},
      {"", "<f t=\"shared\" si=\"7\"/><v>1</v>"},
      {" t=\"str\"", "<f t=\"shared\" si=\"7\"/><v>one</v>"},
      {"", "<f t=\"shared\" si=\"7\"/>"},
      {"", "<f t=\"array\" ref=\"A2\">B1</f><v>1</v>"},
      {"", "<f ca=\"1\">B1</f><v>1</v>"},
  };
  // What is recognised needs other text behind it.
  const std::string behind =
      "<row r=\"9\"><c r=\"A9\" t=\"str\"><v>" + std::string(500, ' ') + "</v></c></row>";
  for (const auto& [attributes, content] : cases) {
    SCOPED_TRACE(attributes + content);
    std::string shown;
    std::string stored;
    for (const std::string_view blank : {"", " "}) {
      const auto book = load(book_of(
          worksheet(R"(<row r="1"><c r="A1"><f t="shared" ref="A1:A2" si="7">C1*2</f></c></row>)"
                    R"(<row r="2"><c r="A2")" +
                    attributes + std::string(blank) + ">" + content + "</c></row>" + behind)));
      book->read().change();
      const std::string saved = book->save();
      const auto again = load(saved);
      again->read();
      EXPECT_EQ(again->show(1, 0), book->show(1, 0));
      if (blank.empty()) {
        shown = book->show(1, 0);
        stored = unzip(saved).at("xl/worksheets/sheet1.xml");
      }
      EXPECT_EQ(book->show(1, 0), shown);
      EXPECT_EQ(unzip(saved).at("xl/worksheets/sheet1.xml"), stored);
    }
  }
}

// A reader meets the text first, in whatever order the file had the cells.
TEST(Worksheet, SharedFormulasOfRowsInDescendingOrderComeBack) {
  const auto book = load(
      book_of(worksheet(R"(<row r="9"><c r="B9"><f t="shared" ref="B1:B9" si="3">A9</f></c></row>)"
                        R"(<row r="1"><c r="B1"><f t="shared" si="3"/></c></row>)")));
  book->read().change();
  const auto again = load(book->save());
  again->read();
  EXPECT_EQ(again->show(0, 1), "=A1: -");
  EXPECT_EQ(again->show(8, 1), "=A9: -");
}

// A small file can name a long formula from any number of cells.
TEST(Worksheet, SharedFormulasStandInMemoryOnce) {
  std::string text = "A1";
  while (text.size() < 8000) text += "+A1";
  std::string rows = "<row r=\"1\"><c r=\"B1\"><f t=\"shared\" ref=\"B1:B9999\" si=\"0\">" + text +
                     "</f></c></row>";
  for (int row = 2; row < 10000; ++row)
    rows += "<row><c r=\"B" + std::to_string(row) + "\"><f t=\"shared\" si=\"0\"/></c></row>";
  const auto book = load(book_of(worksheet(rows)));
  book->read();
  std::size_t held = 0;
  for (const CellRecord& record : book->sheet().contents().records()) held += record.formula.size();
  EXPECT_LT(held, 1000000u);
  EXPECT_THAT(book->show(9998, 1), testing::StartsWith("=A9999+A9999+"));
  book->sheet().change();
  EXPECT_LT(unzip(book->save()).at("xl/worksheets/sheet1.xml").size(), 1000000u);
}

TEST(Worksheet, WritesBackWhatItDoesNotKnow) {
  constexpr const char* kPieces[] = {
      R"(<sheetPr codeName="S"><tabColor rgb="FF00FF00"/></sheetPr>)",
      R"(<sheetView workbookViewId="0" zoomScale="80" x:own="1"/>)",
      R"(<col min="2" max="3" width="9.5" x:extra="a&amp;b" phonetic="1"/>)",
      R"(<row r="1" ht="20" customHeight="1" x:dyDescent="0.25" ph="1">)",
      R"(<c r="A1" t="e" cm="1"><f t="array" ref="A1:B2" ca="1">SUM(A1)</f><v>#N/A</v></c>)",
      R"(<c r="D1"><v>1</v><x:more>text</x:more></c>)",
      R"(<c r="E1"><f t="dataTable" ref="E1:E3" dt2D="0" r1="B1"/><v>2</v></c>)",
      "<x:tail/></row>",
      R"(<c r="A2" t="d"><v>2020-02-03</v></c>)",
      R"(<mergeCells count="1"><mergeCell ref="F1:G1"/></mergeCells>)",
      R"(<mc:AlternateContent xmlns:mc="urn:mc"><mc:Choice Requires="x"/></mc:AlternateContent>)",
      R"(<extLst><ext uri="{1}"><x:deep>&lt;</x:deep></ext></extLst>)",
      R"(<c r="B2" t="str"><f>T(A1)</f><v xml:space="preserve">blank behind </v></c>)",
  };
  const auto piece = [&](int i) { return std::string(kPieces[i]); };
  std::string sheet =
      worksheet(piece(3) + piece(4) + piece(5) + piece(6) + piece(7) + R"(<row r="2">)" + piece(8) +
                    piece(12) + "</row>",
                piece(0) + "<sheetViews>" + piece(1) + "</sheetViews><cols>" + piece(2) + "</cols>",
                piece(9) + piece(10) + piece(11));
  sheet.insert(sheet.find(" xmlns:r="), R"( xmlns:x="urn:x")");
  const auto book = load(book_of(sheet));
  book->read();
  EXPECT_EQ(book->sheet().contents().arrays.size(), 2u);
  book->sheet().change().put_value(5, 0, Value::of_number(1), {});
  const std::string saved = unzip(book->save()).at("xl/worksheets/sheet1.xml");
  for (const char* text : kPieces) EXPECT_THAT(saved, HasSubstr(text));
  EXPECT_THAT(saved, HasSubstr(R"(xmlns:x="urn:x")"));
  EXPECT_THAT(saved, HasSubstr(R"(<dimension ref="A1:E6"/><sheetViews>)"));
}

TEST(Worksheet, ColumnsAndRowsFollowTheModel) {
  const auto book = load(book_of(
      worksheet(R"(<row r="2" spans="1:3" s="1" hidden="true" outlineLevel="2" collapsed="1"/>)",
                R"(<sheetFormatPr defaultRowHeight="18" baseColWidth="10"/><cols>)"
                R"(<col min="1" max="1" width="20" customWidth="1" hidden="1"/>)"
                R"(<col min="4" max="16384" width="3" outlineLevel="1"/></cols>)")));
  Sheet& sheet = book->read();
  EXPECT_EQ(sheet.contents().default_row_height, 18);
  EXPECT_EQ(engine::default_column_pixels(sheet.contents()), 80);
  const RowProperties& row = sheet.change().properties_at(1);
  EXPECT_TRUE(row.hidden && row.collapsed && row.outline_level == 2 && !row.style);
  ASSERT_EQ(sheet.contents().columns.size(), 2u);
  EXPECT_EQ(sheet.contents().columns.find(3)->last, 16383);
  const auto show = [](ColumnProperties& run) { run.hidden = false; };
  const auto deepen = [](ColumnProperties& run) { run.outline_level = 2; };
  sheet.change().columns.change({{0, 0, show}});
  sheet.change().columns.change({{10, 16383, deepen}});
  sheet.change().properties_at(7).height = 33;
  const std::string saved = unzip(book->save()).at("xl/worksheets/sheet1.xml");
  EXPECT_THAT(saved, HasSubstr(R"(<col min="1" max="1" width="20" customWidth="1"/>)"
                               R"(<col min="4" max="10" width="3" outlineLevel="1"/>)"
                               R"(<col min="11" max="16384" width="3" outlineLevel="2"/>)"));
  EXPECT_THAT(saved, HasSubstr(R"(<row r="2" hidden="1" outlineLevel="2" collapsed="1"></row>)"
                               R"(<row r="8" ht="33"></row>)"));
  EXPECT_THAT(saved, HasSubstr(R"(outlineLevelRow="2" outlineLevelCol="2")"));
}

// A row that is to look like format 0 says so; else its empty places look like their columns.
TEST(Worksheet, RowsMayHaveFormatZero) {
  for (const char* attributes : {R"( s="0" customFormat="1")", R"( customFormat="1")"}) {
    SCOPED_TRACE(attributes);
    PartTexts parts = book_of(worksheet(R"(<row r="1")" + std::string(attributes) + "/>",
                                        R"(<cols><col min="1" max="9" style="1"/></cols>)"));
    for (int round = 0; round < 2; ++round) {
      const auto book = load(parts);
      Sheet& sheet = book->read();
      const Row* row = sheet.contents().cells.find_row(0);
      ASSERT_TRUE(row != nullptr);
      EXPECT_EQ(sheet.contents().properties(*row)->style, 0u);
      sheet.change();
      parts = unzip(book->save());
    }
  }
}

TEST(Worksheet, ColumnsMayStandInAnyOrder) {
  const auto book = load(book_of(worksheet(
      {}, R"(<cols><col min="5" max="6" width="50" phonetic="1"/>)"
          R"(<col min="1" max="1" width="10"/><col min="3" max="5" width="30"/></cols>)")));
  Sheet& sheet = book->read();
  ASSERT_EQ(sheet.contents().columns.size(), 3u);
  EXPECT_EQ(sheet.contents().columns.find(0)->width, 10);
  EXPECT_EQ(sheet.contents().columns.find(4)->width, 30);
  EXPECT_EQ(sheet.contents().columns.find(5)->width, 50);
  sheet.change();
  EXPECT_THAT(
      unzip(book->save()).at("xl/worksheets/sheet1.xml"),
      HasSubstr(R"(<cols><col min="1" max="1" width="10"/><col min="3" max="5" width="30"/>)"
                R"(<col min="6" max="6" width="50" phonetic="1"/></cols>)"));
}

// Where a book renounces the compatible base of dates, day 0 is another day.
TEST(Worksheet, DatesCountFromTheBaseOfTheBook) {
  struct Case {
    const char* settings;
    const char* shown;
  };
  constexpr Case kCases[] = {
      {"", "31."},
      {R"(<workbookPr dateCompatibility="1"/>)", "31."},
      {R"(<workbookPr dateCompatibility="0"/>)", "32."},
      {R"(<workbookPr dateCompatibility="false" date1904="1"/>)", "-1430."},
  };
  for (const auto& [settings, shown] : kCases) {
    SCOPED_TRACE(settings);
    PartTexts parts = book_of(worksheet(R"(<row><c t="d"><v>1900-01-31</v></c></row>)"));
    std::string& text = parts.at("xl/workbook.xml");
    text.insert(text.find("<sheets>"), settings);
    const auto book = load(parts);
    book->read();
    EXPECT_EQ(book->show(0, 0), shown);
  }
}

// What a row holds besides cells is kept once, however often the file has the row.
TEST(Worksheet, RepeatedRowsKeepTheirLastChildren) {
  const auto book = load(book_of(worksheet(
      R"(<row r="1" x="1"><a/></row><row r="1"><b/></row><row r="1"><c r="A1"/><e/></row>)")));
  Sheet& sheet = book->read();
  sheet.change();
  EXPECT_THAT(unzip(book->save()).at("xl/worksheets/sheet1.xml"),
              HasSubstr(R"(<sheetData><row r="1" x="1"><c r="A1"/><e/></row></sheetData>)"));
}

// Numbers as files spell them, in cells that are taken as one piece: each must be the double that
// the digits say.
TEST(Worksheet, PlainNumbersAreExact) {
  constexpr const char* kNumbers[] = {"0",
                                      "-0.5",
                                      "7",
                                      "12345678",
                                      "123456789",
                                      "9007199254740992",
                                      "9007199254740993",
                                      "90071992547409931",
                                      "1234567890123456789",
                                      "0.1",
                                      "5.",
                                      ".5",
                                      "0.12345678901234567",
                                      "8.9999999999999982",
                                      "99999999.99999999",
                                      "524048569.5714286",
                                      "-0.0000000000000001",
                                      "123456789012345678901234567890.5",
                                      "1E-7",
                                      "-1.7976931348623157E+308",
                                      "4.9406564584124654E-324",
                                      "000000000000000000012"};
  std::string rows;
  for (int row = 1; const char* number : kNumbers) {
    const std::string name = std::to_string(row++);
    rows.append(R"(<row r=")" + name + R"("><c r="A)" + name + R"(" t="n"><v>)");
    rows.append(number).append("</v></c></row>");
  }
  // The last cells of a block go the careful way, so there is something behind.
  rows.append(R"(<row r="99"><c r="A99" t="str"><v>)" + std::string(300, 'x') + "</v></c></row>");
  const auto book = load(book_of(worksheet(rows)));
  const Sheet& sheet = book->read();
  for (int row = 0; const char* number : kNumbers) {
    const Cell* cell = sheet.contents().cells.find(row++, 0);
    ASSERT_TRUE(cell != nullptr) << number;
    EXPECT_EQ(cell->number, std::strtod(number, nullptr)) << number;
  }
}

// Long enough for several blocks, with cells on both sides of every border.
TEST(Worksheet, ManyRowsComeBack) {
  const auto book = new_book();
  Sheet& sheet = book->add_sheet("Many");
  for (int row = 0; row < 5000; ++row)
    for (int column = 0; column < 7; ++column)
      sheet.change().put_value(row * 3, column * 5, Value::of_number(row * 1.1 / (column + 1)), {});
  const auto again = load(book->save());
  Sheet& read = again->read();
  ASSERT_EQ(read.contents().cells.cell_count(), 35000u);
  for (const Row& row : sheet.contents().cells.rows())
    for (const Cell& cell : row.span()) {
      const Cell* found = read.contents().cells.find(static_cast<int>(row.number), cell.column);
      ASSERT_TRUE(found && found->number == cell.number) << row.number;
    }
}

}  // namespace
}  // namespace engine::xlsx
