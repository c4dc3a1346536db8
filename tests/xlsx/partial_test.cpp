// Books of which only a sheet, or some rows of it, are loaded.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "engine/package/file_error.h"
#include "engine/workbook/metrics.h"
#include "engine/workbook/move_cells.h"
#include "engine/workbook/sheet_operations.h"
#include "tests/xlsx/packages.h"

namespace engine::xlsx {
namespace {

// Four rows: a shared formula that begins outside, a text of the list, one of its own, a number.
constexpr const char* kRows =
    "<row r=\"1\" ht=\"9\"><c r=\"A1\"><f t=\"shared\" ref=\"A1:A3\" "
    "si=\"0\">B1</f><v>1</v></c></row>"
    "<row r=\"2\"><c r=\"A2\"><f t=\"shared\" si=\"0\"/><v>2</v></c><c r=\"B2\"><v>22</v></c></row>"
    "<row r=\"3\"><c r=\"A3\"><f t=\"shared\" si=\"0\"/><v>3</v></c><c r=\"B3\" "
    "t=\"s\"><v>1</v></c>"
    "</row><row r=\"4\"><c r=\"A4\" t=\"str\"><v>own</v></c><c r=\"B4\" t=\"e\"><v>#SPILL!</v></c>"
    "<c r=\"C4\" t=\"str\"><f>One!B4</f><v>result</v></c>"
    "<c r=\"D4\" t=\"str\"><f>T(B4)</f><v></v></c></row>";

std::unique_ptr<Book> load_rows(int first, int last, std::string_view rows = kRows) {
  auto book = load(book_of(worksheet(rows)));
  book->sheet().loading = Loading::kPartly;
  book->sheet().loaded_rows = {first, last, 0, 16383};
  book->read();
  return book;
}

TEST(PartialLoad, ReadsOnlyItsRows) {
  const auto book = load_rows(1, 1);
  EXPECT_EQ(book->sheet().loading, Loading::kPartly);
  EXPECT_EQ(book->show(1, 0), "=B2: 2.");
  CellRange used;
  ASSERT_TRUE(book->sheet().contents().cells.used_range(&used));
  EXPECT_EQ(used, (CellRange{1, 1, 0, 1}));
}

// Pictures lie over the other rows as well. An insertion moves these, and they are saved once.
TEST(PartialLoad, KnowsHowHighTheOtherRowsAre) {
  const auto book =
      load_rows(1, 2,
                std::string(kRows) +
                    "<row r=\"5\" hidden=\"1\"/><row r=\"6\" ht=\"30\" customHeight=\"1\"/>");
  const auto sizes = [](const SheetContents& sheet) {
    std::vector<int> pixels;
    for (int row = 0; row < 8; ++row) pixels.push_back(row_pixels(sheet, row));
    return pixels;
  };
  EXPECT_THAT(sizes(book->sheet().contents()), testing::ElementsAre(12, 20, 20, 20, 0, 40, 20, 20));
  const CellsMove below_the_second{{formula::Axis::kRows, formula::Move::Kind::kInsert, 2, 1},
                                   true};
  ASSERT_FALSE(move_cells(book->workbook, *book->document, book->sheet(), below_the_second));
  const auto after = testing::ElementsAre(12, 20, 20, 20, 20, 0, 40, 20);
  EXPECT_THAT(sizes(book->sheet().contents()), after);
  const auto again = load(book->save());
  again->read();
  EXPECT_THAT(sizes(again->sheet().contents()), after);
}

TEST(PartialLoad, SavesTheOtherRowsAsTheyWere) {
  const auto book = load_rows(1, 2);
  StringPool& strings = book->workbook.strings;
  book->sheet().change().put_value(1, 1, Value::of_text(strings.add("new")), {});
  book->sheet().change().put_value(2, 5, Value::of_text(strings.add("newer")), {});
  const std::string first = book->save();
  EXPECT_EQ(book->save(), first);
  const auto again = load(first);
  again->read();
  constexpr std::pair<CellAddress, const char*> kCells[] = {
      {{0, 0}, "=B1: 1."},     {{1, 0}, "=B2: 2."},
      {{1, 1}, "\"new\""},     {{2, 1}, "\"one\""},
      {{2, 5}, "\"newer\""},   {{3, 0}, "\"own\""},
      {{3, 1}, "#SPILL!"},     {{3, 2}, "=One!B4: \"result\""},
      {{3, 3}, "=T(B4): \"\""}};
  for (const auto& [at, shown] : kCells)
    EXPECT_EQ(again->show(at.row, at.column), shown) << at.row << " " << at.column;
  EXPECT_EQ(again->sheet().change().properties_at(0).height, 9);
}

TEST(PartialLoad, TextsOfTheOtherRowsKeepTheirRuns) {
  constexpr std::string_view kItem = "<is><r><rPr><b/></rPr><t>a</t></r><r><t>b</t></r></is>";
  const std::string row = R"(<row r="2"><c r="A2" t="inlineStr">)" + std::string(kItem) +
                          R"(</c><c r="B2" t="inlineStr" ph="1">)" + std::string(kItem) +
                          "</c></row>";
  const auto book = load_rows(0, 0, row);
  book->sheet().change().put_value(0, 0, Value::of_number(1), {});
  EXPECT_THAT(unzip(book->save()).at("xl/worksheets/sheet1.xml"), testing::HasSubstr(row));
}

// The first cell of an array holds its formula, so a value in another one would be lost.
TEST(PartialLoad, KnowsArraysThatReachIn) {
  const auto array = [](std::string_view range) {
    return R"(<row r="1"><c r="A1"><f t="array" ref=")" + std::string(range) +
           R"(">B1:B3</f><v>1</v></c></row><row r="2"><c r="A2"><v>2</v></c></row>)";
  };
  EXPECT_NE(load_rows(1, 1, array("A1:A3"))->sheet().contents().arrays.find({1, 0}), nullptr);
  EXPECT_EQ(load_rows(1, 1, array("A1:B1"))->sheet().contents().arrays.find({0, 0}), nullptr);
}

// The same rows read whole and in part, in windows of every place and size: rows that are passed
// over in one go, and what must be noticed in them all the same.
TEST(PartialLoad, WindowsShowWhatTheWholeShows) {
  constexpr std::string_view kPieces[] = {
      R"(<row r="1"><c r="A1"><v>1</v></c><c r="B1" t="s"><v>1</v></c></row>)",
      R"(<row r="2" spans="1:2"><c r="A2"><v>2</v></c><c r="C7"><v>27</v></c><c><v>3</v></c></row>)",
      R"(<row r="3"><c r="A3"><f t="shared" ref="A3:A9" si="0">B1</f><v>1</v></c><!-- </row> -->)"
      R"(<c r="B3" t="str"><v>own</v></c></row>)",
      R"(<row><c r="A4"><f>1+1</f><v>2</v></c><c r="B4"><f ca="1">2+2</f><v>4</v></c></row>)",
      "<row r=\"5\" />\n<row r=\"6\">\n<c r=\"A6\"><v>6</v></c>\n</row>\n",
      R"(<row r="7"><c r="A7"><f t="shared" si="0"/></c><c r="D7" t="b"><v>1</v></c></row>)",
      R"(<row r="8"><c s="0" r="A8"><v>8</v></c><c><v>88</v></c><c><f t="shared" ref="C8:C9" )"
      R"(si="1">A1</f></c></row>)",
      R"(<row r="9"><c r="A9" t="inlineStr"><is><r><t>a</t></r><r><rPr><b/></rPr><t>b</t></r></is>)"
      R"(</c><c r="B9" t="str"><v><![CDATA[</row>]]></v></c><c r="C9"><f t="shared" si="1"/></c>)"
      R"(</row>)",
      R"(<row r="2"><c r="D2"><v>4</v></c><x><c r="A5"/></x></row>)",
      R"(<row r="10"><c r="A10"><v>1</v><x><c r="A11"><v>5</v></c></x></c><c r="B10"/></row>)",
  };
  std::string rows;
  for (const std::string_view piece : kPieces) rows.append(piece);
  for (int row = 20; row < 40; ++row) {
    const std::string name = std::to_string(row);
    rows.append(R"(<row r=")" + name + R"("><c r="A)" + name + R"("><v>5</v></c></row>)");
  }
  const auto whole = load_rows(0, 1048575, rows);
  for (int first = 0; first < 40; ++first)
    for (int last = first; last < 40; ++last) {
      const auto part = load_rows(first, last, rows);
      std::size_t cells = 0;
      for (int row = first; row <= last; ++row)
        for (int column = 0; column < 5; ++column) {
          ASSERT_EQ(part->show(row, column), whole->show(row, column))
              << first << " " << last << ": " << row << " " << column;
          cells += whole->sheet().contents().cells.find(row, column) != nullptr ? 1 : 0;
        }
      ASSERT_EQ(part->sheet().contents().cells.cell_count(), cells) << first << " " << last;
    }
}

TEST(PartialLoad, FormulasOfTheOtherRowsFollow) {
  const auto book = load_rows(1, 1);
  {
    const AllRows rows(book->workbook, *book->document);
    FormulaEdits edits;
    edits.collect(book->workbook, [](const Sheet*, std::string_view formula) {
      return formula == "One!B4" ? std::optional<std::string>("Two!B4") : std::nullopt;
    });
    edits.apply(book->workbook);
  }
  const auto again = load(book->save());
  again->read();
  EXPECT_EQ(again->show(3, 2), "=Two!B4: \"result\"");
  EXPECT_EQ(again->show(3, 0), "\"own\"");
  EXPECT_EQ(again->show(1, 0), "=B2: 2.");
}

// The second sheet's part is damaged in front of the rows that were read.
TEST(PartialLoad, RowsThatCannotBeReadLeaveNoneBehind) {
  PartTexts parts = book_of(worksheet(kRows));
  parts["xl/worksheets/sheet2.xml"] = worksheet(R"(<row r="1"><c r="A1" t="s"><v>9</v></c></row>)");
  parts["xl/workbook.xml"] = workbook_text(
      "<sheet name=\"One\" sheetId=\"4\" r:id=\"rId1\"/><sheet name=\"Two\" sheetId=\"5\" "
      "r:id=\"rId3\"/>");
  parts["xl/_rels/workbook.xml.rels"] = relations({{"worksheet", "worksheets/sheet1.xml"},
                                                   {"sharedStrings", "sharedStrings.xml"},
                                                   {"worksheet", "worksheets/sheet2.xml"}});
  const auto book = load(parts);
  for (const auto& sheet : book->workbook.sheets()) {
    sheet->loading = Loading::kPartly;
    sheet->loaded_rows = {1, 1, 0, 16383};
    book->document->read_sheet(book->workbook, *sheet);
  }
  EXPECT_THROW(AllRows(book->workbook, *book->document), package::FileError);
  EXPECT_EQ(book->sheet(0).outside, nullptr);
}

TEST(PartialLoad, ExcludedSheetsStayExcluded) {
  const PartTexts parts = book_of(worksheet(kRows));
  const auto book = load(parts);
  book->sheet().loading = Loading::kExcluded;
  EXPECT_EQ(unzip(book->save()), parts);
  book->read();
  EXPECT_EQ(book->sheet().loading, Loading::kExcluded);
  EXPECT_EQ(book->show(1, 1), "22.");
}

}  // namespace
}  // namespace engine::xlsx
