// References in parts that the engine has no model of: they follow what happens to sheets.
#include <gmock/gmock.h>

#include "engine/workbook/move_cells.h"
#include "tests/xlsx/rich_package.h"

namespace engine::xlsx {
namespace {

using testing::HasSubstr;

constexpr const char* kVml = "xl/drawings/vmlDrawing1.vml";
constexpr const char* kSheet = "xl/worksheets/sheet1.xml";
constexpr const char* kShapes = "xl/drawings/drawing1.xml";
constexpr const char* kShapeLinks = "xl/drawings/_rels/drawing1.xml.rels";
constexpr const char* kControl = "xl/ctrlProps/ctrlProp1.xml";
constexpr const char* kMapped = "xl/tables/tableSingleCells1.xml";
constexpr const char* kConnections = "xl/connections.xml";

// The rich package with shapes, form controls, mapped cells, a consolidation and a query, all of
// the sheet Data.
PartTexts package_of_references() {
  PartTexts parts = rich_package();
  const auto insert = [&](const std::string& part, std::string_view before, std::string text) {
    std::string& all = parts.at(part);
    all.insert(all.find(before), text);
  };
  parts[kShapes] =
      R"(<xdr:wsDr xmlns:xdr="http://schemas.openxmlformats.org/drawingml/2006/spreadsheetDrawing" )"
      R"(xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships" xmlns:a="a" )"
      R"(xmlns:a14="a14"><xdr:absoluteAnchor><xdr:sp textlink="$A$2"/><xdr:sp textlink=""/>)"
      R"(<xdr:sp textlink="More!$A$2"><a:hlinkClick r:id="rId1"/></xdr:sp><xdr:pic>)"
      R"(<a14:cameraTool cellRange="More!$A$2:$B$9"/></xdr:pic></xdr:absoluteAnchor></xdr:wsDr>)";
  parts[kShapeLinks] = relations({{"hyperlink", "#More!A2"}, {"image", "../media/image1.png"}});
  parts[kControl] =
      R"(<formControlPr xmlns="c" objectType="List" fmlaLink="$A$2" fmlaRange="More!$A$2:$A$9"/>)";
  parts[kMapped] = R"(<singleXmlCells xmlns=")" + std::string(kMainNamespace) +
                   R"("><singleXmlCell id="1" r="A2" connectionId="0"/></singleXmlCells>)";
  parts[kConnections] = R"(<connections xmlns=")" + std::string(kMainNamespace) +
                        R"("><connection id="1"><parameters><parameter parameterType="cell" )"
                        R"(cell="More!$A$2"/></parameters></connection></connections>)";
  insert(
      kVml, "</xml>",
      R"(<v:shape id="_x0000_s1026"><x:ClientData ObjectType="List"><x:FmlaLink>$A$2</x:FmlaLink>)"
      R"(<x:FmlaRange>More!$A$2:$A$9</x:FmlaRange><x:FmlaMacro>[0]!More!A2</x:FmlaMacro>)"
      R"(</x:ClientData></v:shape>)");
  insert(kSheet, "<conditionalFormatting",
         R"(<dataConsolidate><dataRefs count="1"><dataRef sheet="More" ref="A2:B9"/></dataRefs>)"
         R"(</dataConsolidate>)");
  insert(kSheet, "<tableParts",
         R"(<controls><control shapeId="1026" r:id="rId7"><controlPr linkedCell="A2" )"
         R"(listFillRange="More!A2:A9"/></control></controls>)");
  insert("xl/worksheets/_rels/sheet1.xml.rels", "</Relationships>",
         R"(<Relationship Id="rId7" Type="h/ctrlProp" Target="../ctrlProps/ctrlProp1.xml"/>)"
         R"(<Relationship Id="rId8" Type="h/tableSingleCells" )"
         R"(Target="../tables/tableSingleCells1.xml"/>)");
  insert("xl/_rels/workbook.xml.rels", "</Relationships>",
         R"(<Relationship Id="rId99" Type="h/connections" Target="connections.xml"/>)");
  insert("[Content_Types].xml", "</Types>",
         R"(<Override PartName="/xl/ctrlProps/ctrlProp1.xml" )"
         R"(ContentType="application/vnd.ms-excel.controlproperties+xml"/>)"
         R"(<Override PartName="/xl/connections.xml" ContentType=")"
         R"(application/vnd.openxmlformats-officedocument.spreadsheetml.connections+xml"/>)");
  return parts;
}

enum Sheets : std::size_t { kData, kMore };

TEST(CarriedReferences, FollowWhatHappensToSheets) {
  const struct {
    const char* part;
    const char* stored;
    const char* data_moved;  // two rows inserted at the top of Data
    const char* more_moved;  // the same in More
    const char* renamed;     // More
    const char* deleted;
  } cases[] = {
      {kShapes, "textlink=\"$A$2\"", "textlink=\"$A$4\"", nullptr, nullptr, nullptr},
      {kShapes, "textlink=\"\"", nullptr, nullptr, nullptr, nullptr},
      {kShapes, "textlink=\"More!$A$2\"", nullptr, "textlink=\"More!$A$4\"",
       "textlink=\"'It''s more'!$A$2\"", "textlink=\"#REF!$A$2\""},
      {kShapes, "cellRange=\"More!$A$2:$B$9\"", nullptr, "cellRange=\"More!$A$4:$B$11\"",
       "cellRange=\"'It''s more'!$A$2:$B$9\"", "cellRange=\"#REF!$A$2:$B$9\""},
      {kShapeLinks, "Target=\"#More!A2\"", nullptr, nullptr, "Target=\"#'It''s%20more'!A2\"",
       nullptr},
      {kControl, "fmlaLink=\"$A$2\"", "fmlaLink=\"$A$4\"", nullptr, nullptr, nullptr},
      {kControl, "fmlaRange=\"More!$A$2:$A$9\"", nullptr, "fmlaRange=\"More!$A$4:$A$11\"",
       "fmlaRange=\"'It''s more'!$A$2:$A$9\"", "fmlaRange=\"#REF!$A$2:$A$9\""},
      {kVml, "<x:FmlaLink>$A$2<", "<x:FmlaLink>$A$4<", nullptr, nullptr, nullptr},
      {kVml, "<x:FmlaRange>More!$A$2:$A$9<", nullptr, "<x:FmlaRange>More!$A$4:$A$11<",
       "<x:FmlaRange>'It''s more'!$A$2:$A$9<", "<x:FmlaRange>#REF!$A$2:$A$9<"},
      {kVml, "<x:FmlaMacro>[0]!More!A2<", nullptr, nullptr, nullptr, nullptr},
      {kSheet, "linkedCell=\"A2\"", "linkedCell=\"A4\"", nullptr, nullptr, nullptr},
      {kSheet, "listFillRange=\"More!A2:A9\"", nullptr, "listFillRange=\"More!A4:A11\"",
       "listFillRange=\"'It''s more'!A2:A9\"", "listFillRange=\"#REF!A2:A9\""},
      {kSheet, "<dataRef sheet=\"More\" ref=\"A2:B9\"", nullptr, nullptr,
       "<dataRef sheet=\"It's more\" ref=\"A2:B9\"", nullptr},
      {kMapped, "r=\"A2\"", "r=\"A4\"", nullptr, nullptr, nullptr},
      {kConnections, "cell=\"More!$A$2\"", nullptr, "cell=\"More!$A$4\"",
       "cell=\"'It''s more'!$A$2\"", "cell=\"#REF!$A$2\""},
  };
  const PartTexts parts = package_of_references();
  const auto insert = [](Book& book, std::size_t sheet) {
    const formula::Move rows{formula::Axis::kRows, formula::Move::Kind::kInsert, 0, 2};
    EXPECT_FALSE(move_cells(book.workbook, *book.document, book.read(sheet), {rows, true}));
  };
  const auto after = [&](const auto& change) {
    const auto book = load(parts);
    change(*book);
    return unzip(book->save());
  };
  const PartTexts data_moved = after([&](Book& book) { insert(book, kData); });
  const PartTexts more_moved = after([&](Book& book) { insert(book, kMore); });
  const PartTexts renamed = after([](Book& book) {
    rename_sheet(book.workbook, *book.document, book.sheet(kMore), "It's more");
  });
  const PartTexts deleted =
      after([](Book& book) { delete_sheet(book.workbook, *book.document, kMore); });
  for (const auto& one : cases) {
    SCOPED_TRACE(std::string(one.part) + " " + one.stored);
    const auto expect = [&](const PartTexts& found, const char* text) {
      EXPECT_THAT(found.at(one.part), HasSubstr(text ? text : one.stored));
    };
    expect(data_moved, one.data_moved);
    expect(more_moved, one.more_moved);
    expect(renamed, one.renamed);
    expect(deleted, one.deleted);
  }
}

TEST(CarriedReferences, AMappedCellGoesWithItsRow) {
  const auto book = load(package_of_references());
  const formula::Move row{formula::Axis::kRows, formula::Move::Kind::kRemove, 1, 1};
  EXPECT_FALSE(move_cells(book->workbook, *book->document, book->read(), {row, true}));
  const PartTexts parts = unzip(book->save());
  EXPECT_FALSE(parts.contains(kMapped));
  EXPECT_THAT(parts.at(kControl), HasSubstr("fmlaLink=\"#REF!\""));
}

// A sheet that names no other stays as it is stored, whatever happens to others.
TEST(CarriedReferences, SheetsWithoutAnyStayUnread) {
  const struct {
    const char* rows;
    const char* tail;
    bool read;
  } cases[] = {
      {"<row><c><v>1</v></c><c><f>A1*2</f><v>2</v></c></row>", "", false},
      {"<row><c t=\"e\"><f>1/0</f><v>#DIV/0!</v></c></row>", "", false},
      {"<row><c><f>Data!A1</f></c></row>", "", true},
      {"<row><c><f>Data&#33;A1</f></c></row>", "", true},
      {"<row><c><f><![CDATA[Data!A1]]></f></c></row>", "", true},
      {"",
       R"(<dataConsolidate><dataRefs><dataRef sheet="Data" ref="A1"/></dataRefs>)"
       R"(</dataConsolidate>)",
       true},
      {"", R"(<hyperlinks><hyperlink ref="A1" location="Data!A1"/></hyperlinks>)", true},
  };
  for (const auto& [rows, tail, read] : cases) {
    SCOPED_TRACE(std::string(rows) + tail);
    PartTexts parts = rich_package();
    parts["xl/worksheets/sheet2.xml"] = worksheet(rows, {}, tail);
    const auto loading_after = [&](const auto& change) {
      const auto book = load(parts);
      change(*book);
      return book->sheet(kMore).loading;
    };
    const Loading expected = read ? Loading::kRead : Loading::kUnread;
    EXPECT_EQ(loading_after([](Book& book) {
                rename_sheet(book.workbook, *book.document, book.sheet(kData), "New");
              }),
              expected);
    EXPECT_EQ(
        loading_after([](Book& book) {
          const formula::Move rows_move{formula::Axis::kRows, formula::Move::Kind::kInsert, 0, 2};
          move_cells(book.workbook, *book.document, book.read(kData), {rows_move, true});
        }),
        expected);
    // Its table can be called from anywhere.
    EXPECT_EQ(loading_after([](Book& book) {
                book.read(kData);
                delete_sheet(book.workbook, *book.document, kData);
              }),
              Loading::kRead);
  }
}

}  // namespace
}  // namespace engine::xlsx
