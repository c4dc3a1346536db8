// Files that are refused, and with which words.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/xlsx/packages.h"

namespace engine::xlsx {
namespace {

using testing::StartsWith;

TEST(Damage, InAWorksheetNamesTheCell) {
  struct Case {
    const char* rows;
    const char* text;
  };
  constexpr Case kCases[] = {
      {R"(<row r="7"><c r="B7" t="s"><v>40</v></c></row>)",
       "is damaged: xl/worksheets/sheet1.xml, cell B7, text 40 of 2"},
      {R"(<row r="7"><c t="s"><v>-1</v></c></row>)",
       "is damaged: xl/worksheets/sheet1.xml, cell A7, text -1 of 2"},
      {R"(<row r="7"><c r="C7"><v>abc</v></c></row>)",
       "is damaged: xl/worksheets/sheet1.xml, cell C7, \"abc\" is not a number"},
      {R"(<row r="7"><c r="C7"><v>1e999</v></c></row>)",
       "is damaged: xl/worksheets/sheet1.xml, cell C7, \"1e999\" is not a number"},
      {R"(<row r="7"><c r="C7" t="b"><v>2</v></c></row>)",
       "is damaged: xl/worksheets/sheet1.xml, cell C7, \"2\" is not a true/false value"},
      {R"(<row r="7"><c r="C7" t="d"><v>today</v></c></row>)",
       "is damaged: xl/worksheets/sheet1.xml, cell C7, \"today\" is not a date"},
      {R"(<row r="7"><c r="C7" t="q"><v>1</v></c></row>)",
       "is damaged: xl/worksheets/sheet1.xml, cell C7, type \"q\" is not known"},
      {R"(<row r="7"><c r="C7"><f t="shared" si="3"/></c></row>)",
       "is damaged: xl/worksheets/sheet1.xml, cell C7, shared formula 3 is missing"},
      {R"(<row r="7"><c r="XFE7"/></row>)",
       "is damaged: xl/worksheets/sheet1.xml, cell XFE7, is beyond the last cell"},
      {R"(<row r="7"><c r="7C"/></row>)",
       "is damaged: xl/worksheets/sheet1.xml, cell address \"7C\" is not one"},
      {"<row r=\"1048577\"/>", "is damaged: xl/worksheets/sheet1.xml, row 1048577 of 1048576"},
      {"<row r=\"1048576\"/><row><c/></row>",
       "is damaged: xl/worksheets/sheet1.xml, cell A1048577, is beyond the last cell"},
  };
  for (const auto& [rows, text] : kCases)
    EXPECT_EQ(refusal(zip(book_of(worksheet(rows)))), text) << rows;
}

TEST(Damage, OfOneSheetLeavesTheBookUsable) {
  PartTexts parts = book_of(worksheet("<row><c t=\"s\"><v>9</v></c></row>"));
  const auto book = load(parts);
  EXPECT_THROW(book->read(), package::FileError);
  EXPECT_EQ(book->sheet().loading, Loading::kUnread);
  EXPECT_EQ(unzip(book->save()), unzip(zip(parts)));
}

TEST(Damage, PackagesThatAreNoWorkbook) {
  const PartTexts good = book_of(worksheet(""));
  PartTexts no_main = good;
  no_main.erase("xl/workbook.xml");
  PartTexts document = good;
  document["xl/workbook.xml"] = "<w:document xmlns:w=\"urn:w\"/>";
  const auto of_namespace = [&](std::string_view uri) {
    PartTexts parts = good;
    parts["xl/workbook.xml"] = "<s:workbook xmlns:s=\"" + std::string(uri) + "\"/>";
    return zip(parts);
  };
  PartTexts binary = good;
  binary["[Content_Types].xml"] =
      types({{"xl/workbook.xml", "vnd.ms-excel.sheet.binary.macroEnabled.main"}});
  PartTexts no_sheet = good;
  no_sheet.erase("xl/worksheets/sheet1.xml");
  PartTexts foreign_sheet = good;
  foreign_sheet["xl/worksheets/sheet1.xml"] = "<worksheet xmlns=\"urn:s\"><sheetData/></worksheet>";
  PartTexts shared_sheet = good;
  shared_sheet["xl/workbook.xml"] = workbook_text(
      "<sheet name=\"One\" sheetId=\"4\" r:id=\"rId1\"/><sheet name=\"Two\" sheetId=\"5\" "
      "r:id=\"rId1\"/>");
  PartTexts no_relations = good;
  no_relations.erase("xl/_rels/workbook.xml.rels");
  const std::pair<std::string, const char*> kCases[] = {
      {zip({{"a.txt", "x"}}), "is not an .xlsx workbook"},
      {zip(document), "is not an .xlsx workbook"},
      {of_namespace("urn:s"), "is not an .xlsx workbook"},
      {of_namespace("http://schemas.microsoft.com/office/excel/2006/2"),
       "is a workbook of an Excel 2007 beta version"},
      {of_namespace("http://schemas.openxmlformats.org/spreadsheetml/2006/5/main"),
       "is a workbook of an Excel 2007 beta version"},
      {zip(binary), "is a binary .xlsb workbook"},
      {zip(no_main), "is damaged: xl/workbook.xml, is missing"},
      {zip(no_sheet), "is damaged: xl/worksheets/sheet1.xml, is missing"},
      {zip(foreign_sheet), "is damaged: xl/worksheets/sheet1.xml, byte 0, not a worksheet"},
      {zip(shared_sheet), "is damaged: xl/workbook.xml, nothing leads to sheet \"Two\""},
      {zip(no_relations), "is damaged: xl/workbook.xml, nothing leads to sheet \"One\""},
  };
  for (const auto& [bytes, text] : kCases) EXPECT_EQ(refusal(bytes), text);
}

TEST(Damage, OptionalPartsStopNothing) {
  PartTexts parts = book_of(worksheet("<row><c><v>1</v></c></row>"));
  parts["xl/theme/theme1.xml"] = "<broken";
  parts["xl/comments1.xml"] = "<broken";
  parts["xl/_rels/workbook.xml.rels"] = relations({{"worksheet", "worksheets/sheet1.xml"},
                                                   {"sharedStrings", "nowhere.xml"},
                                                   {"theme", "theme/theme1.xml"},
                                                   {"calcChain", "NULL"}});
  parts["xl/worksheets/_rels/sheet1.xml.rels"] = relations({{"comments", "../comments1.xml"}});
  const auto book = load(parts);
  EXPECT_EQ(book->read().contents().cells.cell_count(), 1u);
  EXPECT_THAT(book->sheet().comments_damage, StartsWith("is damaged: xl/comments1.xml"));
  EXPECT_EQ(unzip(book->save()).at("xl/comments1.xml"), "<broken");
}

// The boxes of notes: what can be read is told, a sheet whose boxes are lost takes no new ones.
TEST(Damage, DrawingsThatDoNotUnpackStopNothing) {
  PartTexts parts = book_of(worksheet("", {}, R"(<legacyDrawing r:id="rId1"/>)"));
  parts["xl/boxes.vml"] = "<xml></xml>";
  parts["xl/worksheets/_rels/sheet1.xml.rels"] =
      relations({{"vmlDrawing", "../boxes.vml"}, {"comments", "../comments1.xml"}});
  parts["xl/comments1.xml"] = "<comments xmlns=\"" + std::string(kMainNamespace) +
                              "\"><authors><author/></authors><commentList><comment ref=\"A1\" "
                              "authorId=\"0\"><text><t>x</t></text></comment></commentList>"
                              "</comments>";
  std::string bytes = zip(parts);
  bytes[bytes.find("xl/boxes.vml") + std::string_view("xl/boxes.vml").size()] ^= 0x7F;
  const auto book = load(bytes);
  book->read();
  EXPECT_EQ(book->sheet().contents().comments.size(), 1u);
  EXPECT_THAT(book->sheet().comments_damage, StartsWith("is damaged: xl/boxes.vml"));
  Sheet& other = book->add_sheet("Other");
  other.change().comments[{0, 0}].text = "new";
  EXPECT_NO_THROW(book->save());
}

// Threads go when their note changes, which takes a part that can be read.
TEST(Damage, ThreadsThatCannotBeReadKeepTheirNotes) {
  PartTexts parts = book_of(worksheet("<row><c><v>1</v></c></row>"));
  parts["xl/threads.xml"] = "<broken";
  parts["xl/worksheets/_rels/sheet1.xml.rels"] = relations({{"threadedComment", "../threads.xml"}});
  const auto book = load(parts);
  book->read().change().put_blank(0, 0, {});
  EXPECT_THAT(book->sheet().comments_damage, StartsWith("is damaged: xl/threads.xml"));
  EXPECT_EQ(unzip(book->save()).at("xl/threads.xml"), "<broken");
}

// Whatever is cut off, the file is refused or what is there is read.
TEST(Damage, EveryPrefixOfAFileIsRefused) {
  const std::string file = zip(book_of(worksheet("<row><c t=\"s\"><v>1</v></c></row>")));
  for (std::size_t size = 0; size < file.size(); ++size)
    EXPECT_NE(refusal(std::string_view(file).substr(0, size)), "") << size;
}

// The same for the XML of each part, which an intact archive delivers.
TEST(Damage, EveryPrefixOfAPartIsReadOrRefused) {
  const PartTexts good =
      book_of(worksheet("<row r=\"1\" ht=\"3\"><c r=\"A1\" t=\"s\"><v>1</v></c><c "
                        "r=\"B1\"><f>A1</f><v>2</v></c></row>",
                        R"(<cols><col min="1" max="2" width="3"/></cols>)"));
  for (const auto& [name, text] : good) {
    PartTexts parts = good;
    for (std::size_t size = 0; size < text.size(); ++size) {
      parts[name] = text.substr(0, size);
      EXPECT_NE(refusal(zip(parts)), "") << name << " " << size;
    }
  }
}

}  // namespace
}  // namespace engine::xlsx
