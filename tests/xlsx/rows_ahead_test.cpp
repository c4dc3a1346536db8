// Rows that are read ahead give what reading them in order gives, wherever the part is cut.
#include "engine/xlsx/rows_ahead.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "engine/package/file_error.h"
#include "engine/xlsx/worksheet_reader.h"
#include "tests/xlsx/packages.h"

namespace engine::xlsx {
namespace {

using package::BlockReader;

// Blocks that end at given places, each worked on before it is given. What `after` does to a block
// then is seen only by a reader of its bytes.
class CutReader : public BlockReader {
 public:
  CutReader(std::string_view bytes, std::vector<std::size_t> ends)
      : bytes_(bytes), ends_(std::move(ends)) {}

  void work_ahead(Work work) override { work_ = std::move(work); }

  std::span<char> next() override {
    const std::size_t end = given_ < ends_.size() ? ends_[given_++] : bytes_.size();
    memory_.assign(kHeadroom + (end - offset_) + kTailroom, '\0');
    const std::span<char> block(memory_.data() + kHeadroom, end - offset_);
    std::copy_n(bytes_.data() + offset_, block.size(), block.data());
    if (work_) {
      const std::string before(block.begin(), block.end());
      work_(block, offset_);
      EXPECT_EQ(std::string(block.begin(), block.end()), before);
      if (after) after(block);
    }
    offset_ = end;
    return block;
  }

  void (*after)(std::span<char> block) = nullptr;

 private:
  std::string_view bytes_;
  std::vector<std::size_t> ends_;
  std::size_t given_ = 0;
  std::size_t offset_ = 0;
  std::vector<char> memory_;
  Work work_;
};

std::string show(const Workbook& book, const SheetContents& sheet, const Cell& cell) {
  std::string text = std::to_string(cell.column) + " " + std::to_string(cell.style) + " ";
  const Value value = sheet.value(cell);
  if (value.kind == ValueKind::kNumber) text += std::to_string(value.number);
  else text += std::to_string(static_cast<int>(value.kind)) + "/" + std::to_string(value.bits);
  if (value.kind == ValueKind::kError) text += error_text(book, value.error());
  if (const CellRecord* record = sheet.record(cell)) {
    text += " record " + std::to_string(cell.bits) + " " + std::string(record->formula) + " " +
            std::to_string(record->shared);
    if (const CellExtra* extra = sheet.extra(*record))
      text += extra->details + "|" + extra->children + "|" + extra->formula_details + "|" +
              extra->formula_spelling;
  }
  return text + "\n";
}

// All that reading the sheet makes, or what it is refused with.
std::string reading(BlockReader& reader) {
  Workbook book{Limits()};
  for (const char* text : {"zero", "one"}) book.strings.append(text);
  book.strings.end_of_file_entries();
  SheetContents sheet;
  SheetPart remains;
  const Parts parts;
  try {
    read_worksheet(reader, "sheet.xml", {book, parts, 2, 0, 5, DateBase::k1900}, RowFilter(), sheet,
                   remains);
  } catch (const package::FileError& error) {
    return error.what();
  }
  std::string text;
  for (const Row& row : sheet.cells.rows()) {
    text += "row " + std::to_string(row.number);
    if (const RowProperties* its = sheet.properties(row)) {
      text += " properties " + std::to_string(row.properties) + " " +
              std::to_string(its->height.value_or(-1)) + " " +
              std::to_string(its->style.value_or(99)) + (its->hidden ? " hidden" : "");
      if (its->details != 0) text += sheet.row_details[its->details - 1];
    }
    text += "\n";
    for (const Cell& cell : row.span()) text += show(book, sheet, cell);
  }
  CellRange range;
  if (sheet.cells.used_range(&range))
    text += "used " + std::to_string(range.row_first) + " " + std::to_string(range.row_last) + " " +
            std::to_string(range.column_first) + " " + std::to_string(range.column_last) + "\n";
  for (std::uint32_t i = 0; i < book.strings.size(); ++i)
    text += std::string(book.strings[i]) + (book.strings.rich(i) ? " rich\n" : "\n");
  for (const SharedFormula& shared : sheet.shared_formulas) text += "shared " + shared.text + "\n";
  return text + "details " + std::to_string(sheet.row_details.size()) + " arrays " +
         std::to_string(sheet.arrays.size()) + " texts " + std::to_string(remains.text_cells);
}

std::string reading_in_order(std::string_view part) {
  package::MemoryReader reader(part);
  return reading(reader);
}

constexpr std::string_view kPlain =
    R"(<row r="1" spans="1:2"><c r="A1"><v>1</v></c><c r="B1" s="2" t="s"><v>1</v></c></row>)"
    R"(<row r="2" spans="1:2"><c r="A2"><v>2.5</v></c><c r="B2" s="9"/></row>)"
    R"(<row r="4"><c r="C4" t="s"><v>0</v></c></row><row r="5"><c r="A5"><v>3</v></c></row>)";

// Rows between plain ones.
constexpr std::string_view kRows[] = {
    "",
    R"(<row r="6" ht="20" customHeight="1" x:d="1"><c r="A6"><v>1</v></c></row>)"
    R"(<row r="7" s="2" customFormat="1" x:d="2"/><row r="8" hidden="1" x:d="1"></row>)",
    R"(<row><c><v>1</v></c><c><v>2</v></c></row><row><c><v>3</v></c></row>)",
    R"(<row r="3"><c r="A3"><v>1</v></c></row><row r="2"><c r="B2"><v>7</v></c></row>)"
    R"(<row><c r="A1"><v>9</v></c></row><row r="2" ht="7"><c r="A2"/><c r="A2"/></row><row/>)",
    " \n<row r=\"6\">\n <c r=\"A6\">\n<v>1</v></c>\n</row>\n<row r=\"7\"> </row>\n",
    R"(<!-- <row r="6"><c r="A6"><v>1</v></c></row><row r="7"></row> --><row r="8"></row>)",
    R"(<row r="6"><c r="A6" t="str"><v><![CDATA[</row><row r="9">x</row>]]></v></c></row>)",
    R"(<?p <row r="6"><c r="A6"><v>1</v></c></row> ?><x><row r="7"></row></x>)",
    R"(<row r="6"><c r="A6" t="str"><v>new</v></c><c r="B6" t="str"><v>one</v></c></row>)"
    R"(<row r="7"><c r="A7" t="inlineStr"><is><t>new</t></is></c></row>)"
    R"(<row r="8"><c r="A8" t="inlineStr"><is><r><rPr><b/></rPr><t>rich</t></r></is></c></row>)",
    R"(<row r="6"><c r="A6" t="str"><f>B6&amp;"x"</f><v>x</v></c><c r="B6"><f>A1+1</f></c></row>)"
    R"(<row r="7"><c r="A7" t="b" cm="1"><v>1</v></c><c r="B7" t="s"><f>A1</f><v>1</v></c></row>)"
    R"(<row r="8"><c r="A8" t="d"><v>1999-01-01</v></c><c r="B8"><f>_xlfn.X()</f></c></row>)",
    R"(<row r="6"><c r="A6" t="e"><v>#REF!</v></c></row>)"
    R"(<row r="7"><c r="A7" t="e"><v>#SPILL!</v></c></row>)",
    R"(<row r="6"><c r="A6"><f t="shared" ref="A6:A9" si="0">B6</f></c></row>)"
    R"(<row r="7"><c r="A7"><f t="shared" si="0"/></c></row>)"
    R"(<row r="8"><c r="A8"><f t="shared" si="0">C8</f></c></row>)"
    R"(<row r="9"><c r="A9"><f t="shared" si="0"/></c></row>)",
    R"(<row r="6"><c r="A6"><f t="array" ref="A6:A7">B6:B7</f></c></row>)"
    R"(<row r="7"><c r="A7"><f t="array" ref="A7">B6</f></c></row>)"
    R"(<row r="8"><c r="A8"><f t="dataTable" ref="A8:B8" dt2D="1"/></c></row>)",
    R"(<row r="6"><c r="A6"/><extLst><ext a="1"/></extLst></row><row r="6"><extLst/></row>)",
    R"(<row r="6"></row></sheetData><sheetData><row><c><v>1</v></c></row>)",
    R"(<row r="6"></row></sheetData><sheetData/><row r="7"><c r="A7"/></row><sheetData>)",
    R"(<row r="6"><c r="A6" t="s"><v>2</v></c></row>)",
    R"(<row r="6"><c r="A6"><v>1x</v></c></row>)",
    R"(<row r="6"><c r="A6"><f t="shared" si="5"/></c></row>)",
    R"(<row r="0"></row>)",
    R"(<row r="6"><c r="A6"></row>)",
    R"(<row r="6" a></row>)",
    R"(<row r="6"><c r="A6" t="str"><v>&no;</v></c></row>)",
    R"(<row r="6"></row></sheetData></worksheet><row r="7"></row>)",
};

TEST(RowsAhead, AgreesWithReadingInOrderWhereverThePartIsCut) {
  for (const std::string_view rows : kRows) {
    SCOPED_TRACE(rows);
    std::string part = worksheet(std::string(kPlain).append(rows).append(
        R"(<row r="10"><c r="A10"><v>1</v></c></row><row><c><v>2</v></c></row>)"));
    const std::string expected = reading_in_order(part);
    const std::size_t head = part.find("<row");
    for (std::size_t cut = head + 1; cut < part.size(); ++cut) {
      CutReader reader(part, {head, cut});
      ASSERT_EQ(reading(reader), expected) << "cut at " << cut;
    }
    for (std::size_t size = 1; size < part.size() - head; ++size) {
      std::vector<std::size_t> ends = {head};
      while (ends.back() + size < part.size()) ends.push_back(ends.back() + size);
      CutReader reader(part, ends);
      ASSERT_EQ(reading(reader), expected) << "blocks of " << size;
    }
  }
}

TEST(RowsAhead, LeavesRowsThatAreNotTheSheets) {
  constexpr std::string_view kRowsOnly = R"(<row r="7"><c r="A7"><v>1</v></c></row>)";
  for (const char* part : {"<worksheet xmlns=\"$\"><sheetData/>%</worksheet>",
                           "<worksheet xmlns=\"$\"><sheetData></sheetData><x>%</x></worksheet>",
                           "<x:worksheet xmlns:x=\"$\"><x:sheetData>%</x:sheetData></x:worksheet>",
                           "<worksheet xmlns=\"$\"><sheetData><!--%--></sheetData></worksheet>"}) {
    SCOPED_TRACE(part);
    std::string text = part;
    text.replace(text.find('$'), 1, kMainNamespace);
    const std::size_t place = text.find('%');
    text.replace(place, 1, kRowsOnly);
    CutReader reader(text, {place});
    EXPECT_EQ(reading(reader), reading_in_order(text));
  }
}

// What rows say once they were read ahead is not asked for any more. The first one, which lies in
// two blocks, is not.
TEST(RowsAhead, ReadsRowsOnce) {
  std::string part = worksheet(kPlain);
  const std::size_t head = part.find("<row");
  CutReader reader(part, {head, head + 1});
  reader.after = [](std::span<char> block) {
    const std::string_view text(block.data(), block.size());
    for (std::size_t at = text.find("</row>");
         (at = text.find("<v>", at)) != std::string_view::npos; at += 3)
      block[at + 3] = '0';
  };
  EXPECT_EQ(reading(reader), reading_in_order(part));
}

// The same through an archive, with threads.
TEST(RowsAhead, AgreesWithReadingInOrderOnTwoThreads) {
  std::string rows;
  const auto add_rows = [&rows](int first, int count) {
    for (int row = first; row < first + count; ++row) {
      const std::string number = std::to_string(row);
      rows += "<row r=\"" + number + "\" ht=\"" + std::to_string(row / 9 % 5) + "\">";
      for (const char* column : {"A", "B", "C", "D", "E", "F"})
        rows += std::string("<c r=\"") + column + number + "\"><v>" + number + ".25</v></c>";
      rows += "<c r=\"G" + number + "\" t=\"str\"><f>A" + number + "&amp;1</f><v>text " +
              std::to_string(row % 100) + "</v></c></row>";
    }
  };
  add_rows(1, 8000);
  add_rows(6000, 9000);
  for (const char* tail : {"", R"(<row r="9"><c r="A9"><v>1x</v></c></row>)"}) {
    SCOPED_TRACE(tail);
    std::string text = rows + tail;
    add_rows(20000, 4000);
    text += rows;
    const std::string part = worksheet(text);
    const package::Archive archive(source_of(zip({{"sheet.xml", part}})));
    EXPECT_EQ(reading(*archive.open(archive.entries().front())), reading_in_order(part));
  }
}

}  // namespace
}  // namespace engine::xlsx
