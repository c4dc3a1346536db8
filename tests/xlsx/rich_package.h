// A package with much of what books of spreadsheet programs hold around their cells.
//
// Sheets Data, More and a chart sheet. Data has styled cells, texts, formulas of all kinds,
// columns, a conditional format, a validation, links, notes with their drawing, a picture, a chart
// and a table; around them stand names, a pivot source and a calculation chain.
#pragma once

#include <string>
#include <string_view>

#include "tests/support/pictures.h"
#include "tests/xlsx/packages.h"

namespace engine::xlsx {

inline constexpr const char* kRichTypes =
    R"(<Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types">)"
    R"(<Default Extension="rels" ContentType="application/vnd.openxmlformats-package.relationships+xml"/>)"
    R"(<Default Extension="xml" ContentType="application/xml"/>)"
    R"(<Default Extension="png" ContentType="image/png"/>)"
    R"(<Default Extension="vml" ContentType="application/vnd.openxmlformats-officedocument.vmlDrawing"/>)";

inline std::string rich_types() {
  constexpr const char* kOverrides[][2] = {
      {"workbook", "spreadsheetml.sheet.main"},
      {"styles", "spreadsheetml.styles"},
      {"theme", "theme"},
      {"sharedStrings", "spreadsheetml.sharedStrings"},
      {"calcChain", "spreadsheetml.calcChain"},
      {"worksheets/sheet1", "spreadsheetml.worksheet"},
      {"worksheets/sheet2", "spreadsheetml.worksheet"},
      {"chartsheets/sheet3", "spreadsheetml.chartsheet"},
      {"comments1", "spreadsheetml.comments"},
      {"tables/table1", "spreadsheetml.table"},
      {"drawings/drawing1", "drawing"},
      {"drawings/drawing2", "drawing"},
      {"charts/chart1", "drawingml.chart"},
      {"pivotCache/pivotCacheDefinition1", "spreadsheetml.pivotCacheDefinition"},
  };
  std::string text = kRichTypes;
  for (const auto& [part, type] : kOverrides) {
    text += std::string("<Override PartName=\"/xl/") + part + ".xml\" ContentType=\"application/";
    text += std::string("vnd.openxmlformats-officedocument.") + type + "+xml\"/>";
  }
  return text + "</Types>";
}

inline constexpr const char* kRichStyles =
    R"(<styleSheet xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main">)"
    R"(<numFmts count="1"><numFmt numFmtId="164" formatCode="0.000&quot; kg&quot;"/></numFmts>)"
    R"(<fonts count="2"><font><sz val="11"/><name val="Calibri"/></font>)"
    R"(<font><b/><sz val="12"/><color theme="4"/><name val="Arial"/><family val="2"/></font></fonts>)"
    R"(<fills count="3"><fill><patternFill patternType="none"/></fill><fill><patternFill )"
    R"(patternType="gray125"/></fill><fill><patternFill patternType="solid"><fgColor )"
    R"(rgb="FFFFCC00"/></patternFill></fill></fills>)"
    R"(<borders count="2"><border><left/><right/><top/><bottom/></border><border><left )"
    R"(style="thin"><color indexed="64"/></left><right/><top/><bottom/></border></borders>)"
    R"(<cellStyleXfs count="1"><xf numFmtId="0" fontId="0" fillId="0" borderId="0"/></cellStyleXfs>)"
    R"(<cellXfs count="3"><xf numFmtId="0" fontId="0" fillId="0" borderId="0" xfId="0"/>)"
    R"(<xf numFmtId="164" fontId="1" fillId="2" borderId="1" xfId="0" applyFont="1">)"
    R"(<alignment horizontal="center" wrapText="1"/></xf>)"
    R"(<xf numFmtId="14" fontId="0" fillId="0" borderId="0" xfId="0" applyNumberFormat="1"/></cellXfs>)"
    R"(<cellStyles count="1"><cellStyle name="Normal" xfId="0" builtinId="0"/></cellStyles>)"
    R"(<dxfs count="1"><dxf><font><b/></font></dxf></dxfs></styleSheet>)";

inline constexpr const char* kRichTheme =
    R"(<a:theme xmlns:a="http://schemas.openxmlformats.org/drawingml/2006/main"><a:themeElements>)"
    R"(<a:clrScheme name="Own"><a:dk1><a:sysClr val="windowText" lastClr="000000"/></a:dk1>)"
    R"(<a:accent1><a:srgbClr val="112233"/></a:accent1></a:clrScheme></a:themeElements></a:theme>)";

inline std::string rich_data() {
  return worksheet(
      R"(<row r="1" spans="1:3" ht="20" customHeight="1"><c r="A1" t="s"><v>0</v></c>)"
      R"(<c r="B1" s="1" t="s"><v>1</v></c><c r="C1" t="s"><v>2</v></c></row>)"
      R"(<row r="2"><c r="A2"><v>1.5</v></c><c r="B2" s="2"><v>45000</v></c><c r="C2">)"
      R"(<f>SUM(A2,More!A1)</f><v>8.5</v></c><c r="D2"><f t="shared" ref="D2:D3" si="0">A2*2</f>)"
      R"(<v>3</v></c></row>)"
      R"(<row r="3"><c r="A3" t="inlineStr"><is><r><t>in</t></r><r><rPr><b/></rPr><t>line</t></r></is>)"
      R"(</c><c r="B3" t="b"><v>1</v></c><c r="C3" t="e"><f>1/0</f><v>#DIV/0!</v></c>)"
      R"(<c r="D3"><f t="shared" si="0"/><v>0</v></c></row>)"
      R"(<row r="5"><c r="A5"><f t="array" ref="A5:A6">More!A1:A2*2</f><v>14</v></c></row>)"
      R"(<row r="6"><c r="A6"><v>16</v></c></row>)",
      R"(<sheetPr codeName="Data"/><dimension ref="A1:D6"/><sheetViews><sheetView tabSelected="1" )"
      R"(workbookViewId="0"/></sheetViews><sheetFormatPr defaultRowHeight="15"/><cols><col min="1" )"
      R"(max="2" width="12.7109375" customWidth="1"/><col min="3" max="3" width="20" style="1"/></cols>)",
      R"(<autoFilter ref="F1:G3"><filterColumn colId="0"><filters><filter val="x"/></filters>)"
      R"(</filterColumn></autoFilter>)"
      R"(<conditionalFormatting sqref="A2:A3"><cfRule type="expression" dxfId="0" priority="1">)"
      R"(<formula>More!A1&gt;A2</formula></cfRule></conditionalFormatting><dataValidations count="1">)"
      R"(<dataValidation type="list" sqref="B9"><formula1>More!$A$1:$A$3</formula1></dataValidation>)"
      R"(</dataValidations><hyperlinks><hyperlink ref="A1" r:id="rId1"/><hyperlink ref="A2" )"
      R"(location="More!A1"/></hyperlinks><pageMargins left="1" right="1" top="1" bottom="1" )"
      R"(header="0" footer="0"/><drawing r:id="rId2"/><legacyDrawing r:id="rId3"/><tableParts )"
      R"(count="1"><tablePart r:id="rId4"/></tableParts><extLst><ext uri="sparklines"><xm:f )"
      R"(xmlns:xm="http://schemas.microsoft.com/office/excel/2006/main">More!A1:A3</xm:f></ext></extLst>)");
}

inline constexpr const char* kRichNotes =
    R"(<xml xmlns:v="urn:schemas-microsoft-com:vml" xmlns:o="urn:schemas-microsoft-com:office:office" )"
    R"(xmlns:x="urn:schemas-microsoft-com:office:excel"><o:shapelayout v:ext="edit"><o:idmap )"
    R"(v:ext="edit" data="1"/></o:shapelayout><v:shapetype id="_x0000_t202"/><v:shape )"
    R"(id="_x0000_s1025" type="#_x0000_t202" style="width:96pt;height:55pt"><x:ClientData )"
    R"(ObjectType="Note"><x:Row>0</x:Row><x:Column>0</x:Column></x:ClientData></v:shape></xml>)";

inline constexpr const char* kRichDrawing =
    R"(<xdr:wsDr xmlns:xdr="http://schemas.openxmlformats.org/drawingml/2006/spreadsheetDrawing" )"
    R"(xmlns:a="http://schemas.openxmlformats.org/drawingml/2006/main" )"
    R"(xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships">)"
    R"(<xdr:oneCellAnchor><xdr:graphicFrame><c r:id="rId1"/></xdr:graphicFrame></xdr:oneCellAnchor>)"
    R"(<xdr:oneCellAnchor><xdr:from><xdr:col>1</xdr:col><xdr:row>1</xdr:row></xdr:from>)"
    R"(<xdr:ext cx="95250" cy="95250"/><xdr:pic><xdr:blipFill><a:blip r:embed="rId2"/>)"
    R"(</xdr:blipFill></xdr:pic></xdr:oneCellAnchor></xdr:wsDr>)";

inline PartTexts rich_package() {
  const auto main = [](std::string_view element, std::string_view content) {
    return "<" + std::string(element) + " xmlns=\"" + std::string(kMainNamespace) +
           "\" xmlns:r=\"" + std::string(kOfficeRelations) + "\"" + std::string(content);
  };
  PartTexts parts;
  parts["[Content_Types].xml"] = rich_types();
  parts["_rels/.rels"] = relations({{"officeDocument", "xl/workbook.xml"}});
  parts["xl/workbook.xml"] = workbook_text(
      R"(<sheet name="Data" sheetId="1" r:id="rId1"/><sheet name="More" sheetId="2" r:id="rId2"/>)"
      R"(<sheet name="Chart" sheetId="3" r:id="rId3"/>)",
      R"(<definedNames><definedName name="All">Data!$A$1:$D$6</definedName><definedName )"
      R"(name="Local" localSheetId="0">More!$A$1*2</definedName></definedNames><calcPr calcId="1"/>)");
  parts["xl/_rels/workbook.xml.rels"] =
      relations({{"worksheet", "worksheets/sheet1.xml"},
                 {"worksheet", "worksheets/sheet2.xml"},
                 {"chartsheet", "chartsheets/sheet3.xml"},
                 {"styles", "styles.xml"},
                 {"theme", "theme.xml"},
                 {"sharedStrings", "sharedStrings.xml"},
                 {"calcChain", "calcChain.xml"},
                 {"pivotCacheDefinition", "pivotCache/pivotCacheDefinition1.xml"}});
  parts["xl/styles.xml"] = kRichStyles;
  parts["xl/theme.xml"] = kRichTheme;
  parts["xl/sharedStrings.xml"] = texts_part(
      "<si><t>Name</t></si><si><t xml:space=\"preserve\"> a text &amp; more </t></si>"
      "<si><r><rPr><b/></rPr><t>rich</t></r><r><t> text</t></r></si>");
  parts["xl/calcChain.xml"] = main("calcChain", "><c r=\"C2\" i=\"1\"/></calcChain>");
  parts["xl/worksheets/sheet1.xml"] = rich_data();
  parts["xl/worksheets/_rels/sheet1.xml.rels"] =
      "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">"
      "<Relationship Id=\"rId1\" Type=\"h/hyperlink\" Target=\"http://a/\" "
      "TargetMode=\"External\"/>"
      "<Relationship Id=\"rId2\" Type=\"h/drawing\" Target=\"../drawings/drawing1.xml\"/>"
      "<Relationship Id=\"rId3\" Type=\"h/vmlDrawing\" Target=\"../drawings/vmlDrawing1.vml\"/>"
      "<Relationship Id=\"rId4\" Type=\"h/table\" Target=\"../tables/table1.xml\"/>"
      "<Relationship Id=\"rId5\" Type=\"h/comments\" Target=\"../comments1.xml\"/>"
      "<Relationship Id=\"rId6\" Type=\"h/threadedComment\" Target=\"../threaded1.xml\"/>"
      "</Relationships>";
  parts["xl/worksheets/sheet2.xml"] = worksheet(
      "<row><c><v>7</v></c></row><row><c><v>8</v></c></row><row><c><f>Data!A2+"
      "SUM(Table1[Value])</f><v>9</v></c></row>");
  parts["xl/chartsheets/sheet3.xml"] =
      main("chartsheet",
           "><sheetViews><sheetView workbookViewId=\"0\"/></sheetViews>"
           "<drawing r:id=\"rId1\"/></chartsheet>");
  parts["xl/chartsheets/_rels/sheet3.xml.rels"] =
      relations({{"drawing", "../drawings/drawing2.xml"}});
  parts["xl/comments1.xml"] =
      main("comments",
           "><authors><author>Ann</author></authors><commentList><comment ref=\"A1\" "
           "authorId=\"0\"><text><t>a note</t></text></comment></commentList></comments>");
  parts["xl/threaded1.xml"] = "<ThreadedComments><threadedComment ref=\"A1\"/></ThreadedComments>";
  parts["xl/drawings/vmlDrawing1.vml"] = kRichNotes;
  parts["xl/drawings/drawing1.xml"] = kRichDrawing;
  parts["xl/drawings/drawing2.xml"] = "<wsDr/>";
  parts["xl/drawings/_rels/drawing1.xml.rels"] =
      relations({{"chart", "../charts/chart1.xml"}, {"image", "../media/image1.png"}});
  parts["xl/charts/chart1.xml"] =
      "<c:chartSpace xmlns:c=\"http://schemas.openxmlformats.org/drawingml/2006/chart\"><c:ser>"
      "<c:f>More!$A$1:$A$3</c:f></c:ser></c:chartSpace>";
  parts["xl/media/image1.png"] = pictures::png(4, 3);
  parts["xl/tables/table1.xml"] = main(
      "table", R"( id="1" name="Table1" displayName="Table1" ref="A1:C3"><tableColumns count="3">)"
               R"(<tableColumn id="1" name="Name"/><tableColumn id="2" name="Value"/><tableColumn )"
               R"(id="3" name="Sum"><calculatedColumnFormula>More!A1+Table1[Value])"
               R"(</calculatedColumnFormula></tableColumn></tableColumns></table>)");
  parts["xl/pivotCache/pivotCacheDefinition1.xml"] =
      main("pivotCacheDefinition", R"(><cacheSource type="worksheet"><worksheetSource ref="A1:A3" )"
                                   R"(sheet="More"/></cacheSource></pivotCacheDefinition>)");
  return parts;
}

}  // namespace engine::xlsx
