// Copying and removing sheets, and edits of formulas outside of cells.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "engine/formula/formula_text.h"
#include "engine/workbook/sheet_operations.h"
#include "tests/xlsx/packages.h"

namespace engine::xlsx {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr const char* kTail =
    "<conditionalFormatting sqref=\"A1\"><cfRule type=\"expression\" priority=\"1\">"
    "<formula>One!A1&gt;A2</formula></cfRule><cfRule type=\"colorScale\" "
    "priority=\"2\"><colorScale>"
    "<cfvo type=\"formula\" val=\"One!$B$1\"/><cfvo type=\"num\" val=\"1\"/></colorScale></cfRule>"
    "</conditionalFormatting><dataValidations count=\"1\"><dataValidation sqref=\"B1\" "
    "type=\"list\">"
    "<formula1>One!$A$1:$A$3</formula1></dataValidation></dataValidations>"
    "<hyperlinks><hyperlink ref=\"A1\" r:id=\"rId1\"/><hyperlink ref=\"A2\" location=\"One!A1\"/>"
    "</hyperlinks><pageSetup orientation=\"landscape\" r:id=\"rId3\"/><drawing r:id=\"rId4\"/>"
    "<tableParts count=\"1\"><tablePart r:id=\"rId2\"/></tableParts><extLst><ext uri=\"s\">"
    "<xm:f xmlns:xm=\"http://schemas.microsoft.com/office/excel/2006/main\">One!A1:A9</xm:f></ext>"
    "</extLst>";

constexpr const char* kChart =
    "<c:chartSpace xmlns:c=\"http://schemas.openxmlformats.org/drawingml/2006/chart\"><c:ser><c:f>"
    "One!$A$1:$A$3</c:f></c:ser></c:chartSpace>";

// A picture beside a chart.
constexpr const char* kDrawing =
    "<x:wsDr xmlns:x=\"http://schemas.openxmlformats.org/drawingml/2006/spreadsheetDrawing\" "
    "xmlns:r=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships\">"
    "<x:oneCellAnchor><x:graphicFrame><c r:id=\"rId1\"/></x:graphicFrame></x:oneCellAnchor>"
    "<x:oneCellAnchor><x:pic><blip r:embed=\"rId2\"/></x:pic></x:oneCellAnchor></x:wsDr>";

PartTexts book_with_parts() {
  PartTexts parts =
      book_of(worksheet("<row><c><f>One!B1</f></c><c><f>ROWS(Table1[a])</f></c></row>",
                        "<sheetPr codeName=\"Code\"/><sheetViews><sheetView workbookViewId=\"0\">"
                        "<pivotSelection r:id=\"rId9\"/></sheetView></sheetViews>",
                        kTail));
  const std::string main(kMainNamespace);
  parts["xl/worksheets/sheet2.xml"] =
      worksheet("<row><c><f>One!B1+Two!B1</f></c><c><f>SUM(Table1[[#This Row],[a]])</f></c></row>");
  parts["xl/workbook.xml"] = workbook_text(
      "<sheet name=\"One\" sheetId=\"4\" r:id=\"rId1\"/><sheet name=\"Two\" sheetId=\"5\" "
      "r:id=\"rId3\"/>",
      "<definedNames><definedName name=\"Table1_1\">1</definedName></definedNames>");
  parts["xl/_rels/workbook.xml.rels"] = relations({{"worksheet", "worksheets/sheet1.xml"},
                                                   {"sharedStrings", "sharedStrings.xml"},
                                                   {"worksheet", "worksheets/sheet2.xml"},
                                                   {"pivotCacheDefinition", "pivotCache1.xml"}});
  parts["xl/worksheets/_rels/sheet1.xml.rels"] =
      "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">"
      "<Relationship Id=\"rId1\" Type=\"h/hyperlink\" Target=\"http://a/\" "
      "TargetMode=\"External\"/>"
      "<Relationship Id=\"rId2\" Type=\"h/table\" Target=\"../tables/table1.xml\"/>"
      "<Relationship Id=\"rId3\" Type=\"h/printerSettings\" Target=\"../p.bin\"/>"
      "<Relationship Id=\"rId4\" Type=\"h/drawing\" Target=\"../drawing1.xml\"/></Relationships>";
  parts["xl/tables/table1.xml"] =
      "<table xmlns=\"" + main +
      "\" id=\"3\" name=\"Table1\" displayName=\"Table1\" ref=\"A1:A2\">"
      "<tableColumns><tableColumn id=\"1\" name=\"a\"><calculatedColumnFormula>One!A1+Table1[a]"
      "</calculatedColumnFormula></tableColumn></tableColumns></table>";
  parts["xl/p.bin"] = "printer";
  parts["xl/drawing1.xml"] = kDrawing;
  parts["xl/_rels/drawing1.xml.rels"] =
      relations({{"chart", "chart1.xml"}, {"image", "image1.png"}});
  parts["xl/image1.png"] = "picture";
  parts["xl/chart1.xml"] = kChart;
  parts["xl/pivotCache1.xml"] = "<pivotCacheDefinition xmlns=\"" + main +
                                "\"><cacheSource type=\"worksheet\"><worksheetSource ref=\"A1:B2\" "
                                "sheet=\"One\"/></cacheSource></pivotCacheDefinition>";
  constexpr const char* kOffice = "vnd.openxmlformats-officedocument.";
  parts["[Content_Types].xml"] = types(
      {{"xl/workbook.xml", std::string(kOffice) + "spreadsheetml.sheet.main+xml"},
       {"xl/worksheets/sheet1.xml", std::string(kOffice) + "spreadsheetml.worksheet+xml"},
       {"xl/tables/table1.xml", std::string(kOffice) + "spreadsheetml.table+xml"},
       {"xl/chart1.xml", std::string(kOffice) + "drawingml.chart+xml"},
       {"xl/pivotCache1.xml", std::string(kOffice) + "spreadsheetml.pivotCacheDefinition+xml"}});
  return parts;
}

TEST(Sheets, ACopyHasWhatBelongsToItAlone) {
  const auto book = load(book_with_parts());
  const Sheet& original = book->read();
  NewSheet made = make_copy(book->workbook, *book->document, original, "Copy");
  make_room(book->workbook, made);
  place_sheet(book->workbook, *book->document, 1, std::move(made));
  NewSheet second = make_copy(book->workbook, *book->document, book->sheet(1), "Copy 2");
  make_room(book->workbook, second);
  place_sheet(book->workbook, *book->document, 3, std::move(second));

  const std::string bytes = book->save();
  PartTexts saved = unzip(bytes);
  const std::string& sheet = saved.at("xl/worksheets/sheet3.xml");
  for (const char* kept :
       {"<f>Copy!B1</f>", "<f>ROWS(Table1_2[a])</f>", "<formula>Copy!A1&gt;A2</formula>",
        "val=\"Copy!$B$1\"", "<formula1>Copy!$A$1:$A$3</formula1>", "Copy!A1:A9</xm:f>",
        "location=\"One!A1\"", R"(<hyperlink ref="A1" r:id="rId1"/>)",
        "<pageSetup orientation=\"landscape\"/>"})
    EXPECT_THAT(sheet, HasSubstr(kept));
  for (const char* left : {"codeName", "pivotSelection"}) EXPECT_THAT(sheet, Not(HasSubstr(left)));
  EXPECT_THAT(saved.at("xl/tables/table2.xml"),
              HasSubstr("id=\"4\" name=\"Table1_2\" displayName=\"Table1_2\""));
  EXPECT_THAT(saved.at("xl/tables/table2.xml"), HasSubstr(">Copy!A1+Table1_2[a]<"));
  EXPECT_THAT(saved.at("xl/tables/table3.xml"), HasSubstr("id=\"5\" name=\"Table1_2_1\""));
  EXPECT_THAT(saved.at("xl/worksheets/_rels/sheet3.xml.rels"), HasSubstr("http://a/"));
  EXPECT_EQ(saved.at("xl/worksheets/sheet1.xml"), book_with_parts().at("xl/worksheets/sheet1.xml"));
  EXPECT_THAT(saved.at("xl/workbook.xml"), HasSubstr("<workbookView"));
  EXPECT_EQ(refusal(bytes), "");
}

// What leads to a part of the original is left out; what leads out of the book, or to a place in
// it, stays.
TEST(Sheets, ACopyHoldsNoIdsThatLeadNowhere) {
  PartTexts parts = book_with_parts();
  std::string& sheet = parts["xl/worksheets/sheet1.xml"];
  sheet.insert(sheet.find("<conditionalFormatting"),
               "<dataConsolidate><dataRefs count=\"2\"><dataRef ref=\"A1\" r:id=\"rId1\"/>"
               "<dataRef ref=\"A2\" r:id=\"rId3\"/></dataRefs></dataConsolidate><customSheetViews>"
               "<customSheetView guid=\"{1}\"><pageSetup r:id=\"rId3\"/></customSheetView>"
               "</customSheetViews>");
  std::string& links = parts["xl/_rels/drawing1.xml.rels"];
  links.insert(links.find("</Relationships>"),
               "<Relationship Id=\"rId3\" Type=\"h/hyperlink\" Target=\"#One!A1\"/>");
  std::string& drawing = parts["xl/drawing1.xml"];
  drawing.insert(drawing.find("</x:pic>"), "<click r:id=\"rId3\"/>");
  const auto book = load(parts);
  NewSheet made = make_copy(book->workbook, *book->document, book->read(), "Copy");
  make_room(book->workbook, made);
  place_sheet(book->workbook, *book->document, 2, std::move(made));

  PartTexts saved = unzip(book->save());
  EXPECT_THAT(saved.at("xl/worksheets/sheet3.xml"),
              HasSubstr("<dataRefs count=\"1\"><dataRef ref=\"A1\" r:id=\"rId1\"/></dataRefs>"));
  EXPECT_THAT(saved.at("xl/worksheets/sheet3.xml"),
              HasSubstr("<customSheetView guid=\"{1}\"><pageSetup/></customSheetView>"));
  EXPECT_THAT(saved.at("xl/drawings/_rels/drawing1.xml.rels"), HasSubstr("Target=\"#One!A1\""));
}

// Modules of old programs are listed without a part.
TEST(Sheets, ListedWithoutAPartStayAsTheyAre) {
  PartTexts parts = book_with_parts();
  std::string& workbook = parts["xl/workbook.xml"];
  const std::string module = "<sheet name=\"Module1\" sheetId=\"7\" r:id=\"\"/>";
  workbook.insert(workbook.find("<sheet "), module);
  const auto book = load(parts);
  EXPECT_EQ(book->sheet(0).kind, SheetKind::kOther);
  delete_sheet(book->workbook, *book->document, 1);
  book->add_sheet("New");
  const PartTexts saved = unzip(book->save());
  EXPECT_THAT(saved.at("xl/workbook.xml"), HasSubstr("<sheets>" + module + "<sheet name=\"Two\""));
  EXPECT_THAT(saved.at("xl/worksheets/sheet3.xml"), HasSubstr("<worksheet "));
}

// Nothing can be read of them, and so nothing in them has to be changed.
TEST(Sheets, WithoutTheirPartsLetOthersGo) {
  PartTexts dangling = book_with_parts();
  std::string& workbook = dangling["xl/workbook.xml"];
  workbook.insert(workbook.find("<sheet "), "<sheet name=\"Lost\" sheetId=\"7\" r:id=\"rId9\"/>");
  PartTexts gone = dangling;
  std::string& links = gone["xl/_rels/workbook.xml.rels"];
  links.insert(links.find("</Relationships>"),
               "<Relationship Id=\"rId9\" Type=\"h/worksheet\" Target=\"gone.xml\"/>");
  for (const auto& [parts, message] :
       {std::pair{&dangling, "is damaged: xl/workbook.xml, nothing leads to sheet \"Lost\""},
        std::pair{&gone, "is damaged: xl/gone.xml, is missing"}}) {
    SCOPED_TRACE(message);
    EXPECT_EQ(refusal(zip(*parts)), message);
    const auto book = load(*parts);
    delete_sheet(book->workbook, *book->document, 1);
    activate_sheet(book->workbook, *book->document, 1);
    const PartTexts saved = unzip(book->save());
    EXPECT_THAT(saved.at("xl/worksheets/sheet2.xml"), HasSubstr("<f>#REF!B1+Two!B1</f>"));
    EXPECT_THAT(saved.at("xl/workbook.xml"),
                HasSubstr("<sheets><sheet name=\"Lost\" sheetId=\"7\" r:id=\"rId9\"/><sheet "));
  }
}

// The chart stays behind; the picture's part is both drawings', and the copy's alone in the end.
TEST(Sheets, PicturesOutliveTheSheetTheyWereCopiedFrom) {
  const auto book = load(book_with_parts());
  NewSheet made = make_copy(book->workbook, *book->document, book->read(), "Copy");
  make_room(book->workbook, made);
  place_sheet(book->workbook, *book->document, 2, std::move(made));
  delete_sheet(book->workbook, *book->document, 0);

  PartTexts saved = unzip(book->save());
  EXPECT_THAT(saved.at("xl/drawings/drawing1.xml"), HasSubstr("<x:pic><blip r:embed=\"rId2\"/>"));
  EXPECT_THAT(saved.at("xl/drawings/drawing1.xml"), Not(HasSubstr("graphicFrame")));
  EXPECT_THAT(saved.at("xl/drawings/_rels/drawing1.xml.rels"), HasSubstr("/xl/image1.png"));
  EXPECT_THAT(saved.at("xl/drawings/_rels/drawing1.xml.rels"), Not(HasSubstr("chart")));
  EXPECT_EQ(saved.at("xl/image1.png"), "picture");
  EXPECT_EQ(saved.count("xl/chart1.xml"), 0U);
}

// Its table has formulas that name it, which the deletion edits like all others.
TEST(Sheets, ACopyThatGoesLeavesNothing) {
  const auto book = load(book_with_parts());
  NewSheet made = make_copy(book->workbook, *book->document, book->read(), "Copy");
  make_room(book->workbook, made);
  place_sheet(book->workbook, *book->document, 1, std::move(made));
  delete_sheet(book->workbook, *book->document, 1);
  PartTexts saved = unzip(book->save());
  PartTexts wanted = book_with_parts();
  for (PartTexts* parts : {&saved, &wanted}) parts->erase("xl/_rels/workbook.xml.rels");
  EXPECT_EQ(saved, wanted);
}

TEST(Sheets, ARemovedSheetTakesItsPartsAlong) {
  const auto book = load(book_with_parts());
  delete_sheet(book->workbook, *book->document, 0);
  const PartTexts saved = unzip(book->save());
  for (const char* gone : {"xl/worksheets/sheet1.xml", "xl/worksheets/_rels/sheet1.xml.rels",
                           "xl/tables/table1.xml", "xl/drawing1.xml", "xl/chart1.xml", "xl/p.bin"})
    EXPECT_FALSE(saved.contains(gone)) << gone;
  EXPECT_THAT(saved.at("xl/worksheets/sheet2.xml"), HasSubstr("<f>#REF!B1+Two!B1</f>"));
  EXPECT_THAT(saved.at("xl/worksheets/sheet2.xml"), HasSubstr("<f>SUM(#REF!)</f>"));
  EXPECT_THAT(saved.at("xl/workbook.xml"),
              HasSubstr("<sheets><sheet name=\"Two\" sheetId=\"5\" r:id=\"rId3\"/></sheets>"));
  book->add_sheet("Next");
  EXPECT_THAT(unzip(book->save()).at("xl/workbook.xml"),
              HasSubstr("<sheet name=\"Next\" sheetId=\"6\""));
}

TEST(Sheets, EditsReachCarriedFormulas) {
  const auto book = load(book_with_parts());
  book->read(0);
  book->read(1);
  book->document->edit_formulas(book->workbook, [](const Sheet*, std::string_view text) {
    return formula::rename_sheet_text(text, "One", "First one", Limits().grid);
  });
  const PartTexts saved = unzip(book->save());
  const std::string& sheet = saved.at("xl/worksheets/sheet1.xml");
  for (const char* text : {"<formula>'First one'!A1&gt;A2</formula>", "val=\"'First one'!$B$1\"",
                           "'First one'!A1:A9</xm:f>", "val=\"1\""})
    EXPECT_THAT(sheet, HasSubstr(text));
  EXPECT_THAT(saved.at("xl/chart1.xml"), HasSubstr("<c:f>'First one'!$A$1:$A$3</c:f>"));
  EXPECT_THAT(saved.at("xl/tables/table1.xml"), HasSubstr(">'First one'!A1+Table1[a]<"));
  EXPECT_THAT(saved.at("xl/pivotCache1.xml"), HasSubstr("ref=\"A1:B2\" sheet=\"First one\""));
  EXPECT_EQ(saved.at("xl/worksheets/sheet2.xml"), book_with_parts().at("xl/worksheets/sheet2.xml"));
}

TEST(Sheets, EditsReachTheInputsOfDataTables) {
  const auto book =
      load(book_of(worksheet("<row><c><f t=\"dataTable\" ref=\"A1:A2\" dt2D=\"1\" r1=\"B1\" "
                             "r2=\"B2\"/><v>1</v></c></row>")));
  book->read();
  book->document->edit_formulas(book->workbook, [](const Sheet*, std::string_view text) {
    return text == "B2" ? std::optional<std::string>("B3") : std::nullopt;
  });
  EXPECT_THAT(unzip(book->save()).at("xl/worksheets/sheet1.xml"),
              HasSubstr("dt2D=\"1\" r1=\"B1\" r2=\"B3\"/>"));
}

}  // namespace
}  // namespace engine::xlsx
