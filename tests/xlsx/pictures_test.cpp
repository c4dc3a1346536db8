// Pictures of drawings: read from files, written beside what else there is.
#include "tests/support/pictures.h"

#include <gmock/gmock.h>

#include "engine/workbook/move_cells.h"
#include "tests/xlsx/packages.h"

namespace engine::xlsx {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

constexpr const char* kNamespaces =
    "xmlns:x=\"http://schemas.openxmlformats.org/drawingml/2006/spreadsheetDrawing\" "
    "xmlns:a=\"http://schemas.openxmlformats.org/drawingml/2006/main\" "
    "xmlns:r=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships\"";

std::string corner(const char* name, int column, int row) {
  return "<x:" + std::string(name) + "><x:col>" + std::to_string(column) +
         "</x:col><x:colOff>9525</x:colOff><x:row>" + std::to_string(row) +
         "</x:row><x:rowOff>0</x:rowOff></x:" + name + ">";
}
std::string pic(int id, const std::string& blip) {
  return "<x:pic><x:nvPicPr><x:cNvPr id=\"" + std::to_string(id) + "\" name=\"Picture " +
         std::to_string(id) + "\"/></x:nvPicPr><x:blipFill><a:blip " + blip +
         "/><a:srcRect l=\"5\"/></x:blipFill></x:pic><x:clientData/>";
}
std::string two_cells(const char* edit, const std::string& object) {
  return "<x:twoCellAnchor" + std::string(edit) + ">" + corner("from", 1, 2) + corner("to", 3, 4) +
         object + "</x:twoCellAnchor>";
}

// What lies on the sheet: a chart, pictures in every form, and pictures that are part of something
// else.
std::string objects() {
  return two_cells("", "<x:graphicFrame><x:cNvPr id=\"2\" name=\"Chart\"/></x:graphicFrame>") +
         two_cells("", pic(3, "r:embed=\"rId2\"")) +
         two_cells(" editAs=\"oneCell\"", pic(4, "r:embed=\"rId1\" r:link=\"rId3\"")) +
         "<x:oneCellAnchor>" + corner("from", 0, 9) + "<x:ext cx=\"95250\" cy=\"190500\"/>" +
         pic(5, "r:link=\"rId3\"") + "</x:oneCellAnchor>" +
         "<x:absoluteAnchor><x:pos x=\"0\" y=\"609600\"/><x:ext cx=\"95250\" cy=\"190500\"/>" +
         pic(7, "r:embed=\"rId2\"") + "</x:absoluteAnchor>" +
         two_cells("", pic(8, "r:embed=\"rId9\"")) +
         two_cells("", "<x:grpSp>" + pic(9, "r:embed=\"rId4\"") + "</x:grpSp>") +
         "<mc:AlternateContent xmlns:mc=\"http://schemas.openxmlformats.org/markup-compatibility/"
         "2006\"><mc:Choice Requires=\"x\">" +
         two_cells("", pic(10, "r:embed=\"rId2\"")) +
         "</mc:Choice><mc:Fallback/></mc:AlternateContent>";
}

PartTexts book_with_pictures() {
  PartTexts parts =
      book_of(worksheet("<row><c><v>1</v></c></row>", "", "<drawing r:id=\"rId1\"/>"));
  parts["xl/worksheets/_rels/sheet1.xml.rels"] = relations({{"drawing", "../d.xml"}});
  parts["xl/d.xml"] = "<x:wsDr " + std::string(kNamespaces) + ">" + objects() + "</x:wsDr>";
  parts["xl/_rels/d.xml.rels"] =
      "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">"
      "<Relationship Id=\"rId1\" Type=\"h/image\" Target=\"a.png\"/>"
      "<Relationship Id=\"rId2\" Type=\"h/image\" Target=\"media/b.png\"/>"
      "<Relationship Id=\"rId3\" Type=\"h/image\" Target=\"file:///C:/my%20pictures/c%231.gif\" "
      "TargetMode=\"External\"/>"
      "<Relationship Id=\"rId4\" Type=\"h/image\" Target=\"media/image1.png\"/></Relationships>";
  parts["xl/a.png"] = pictures::png(1, 1);
  parts["xl/media/b.png"] = pictures::png(2, 2);
  parts["xl/media/image1.png"] = pictures::png(3, 3);
  parts["xl/media/aside.png"] = "nothing";
  std::string& all = parts["[Content_Types].xml"];
  all.insert(all.find("<Override"), "<Default Extension=\"png\" ContentType=\"image/png\"/>");
  return parts;
}

// What the book's pictures are, readable.
std::vector<std::string> listed(Book& book) {
  book.document->read_pictures(book.workbook);
  std::vector<std::string> list;
  for (std::size_t i = 0; i < book.workbook.pictures.size(); ++i) {
    book.document->read_picture(book.workbook, i);
    const Picture& one = book.workbook.pictures[i];
    std::string text = one.header ? std::to_string(one.header->width) : one.bytes ? "?" : "-";
    list.push_back(one.link.empty() ? text : text + " " + one.link);
  }
  return list;
}

// Number in the book, form, number in the file.
std::vector<std::string> placed(const Sheet& sheet) {
  constexpr const char* kForms[] = {"two cells", "one cell", "absolute"};
  std::vector<std::string> list;
  for (const PlacedPicture& one : sheet.contents().pictures)
    list.push_back(std::to_string(one.picture) + " " + kForms[static_cast<int>(one.anchor.form)] +
                   " " + std::to_string(static_cast<int>(one.anchor.anchoring)) + " " +
                   std::to_string(one.number));
  return list;
}

void add(Book& book, Sheet& sheet, std::uint32_t picture, int row,
         Anchoring anchoring = Anchoring::kMoves) {
  sheet.change([&](SheetContents& contents) {
    const PictureBox at{.row_top = row, .width = 10, .height = 20};
    contents.pictures.push_back(
        {picture, make_anchor(contents, anchoring, at, book.workbook.limits.grid), 0});
  });
}
std::uint32_t add_picture(Book& book, const std::string& bytes, std::string link = {}) {
  book.document->read_pictures(book.workbook);
  Picture picture;
  picture.header = read_picture_header(bytes);
  if (link.empty()) picture.bytes = std::make_shared<const std::string>(bytes);
  picture.link = std::move(link);
  book.workbook.pictures.push_back(std::move(picture));
  return static_cast<std::uint32_t>(book.workbook.pictures.size() - 1);
}

TEST(Pictures, AreListedAsTheDrawingsUseThem) {
  const auto book = load(book_with_pictures());
  EXPECT_THAT(listed(*book),
              ElementsAre("2", "1 C:/my pictures/c#1.gif", "- C:/my pictures/c#1.gif", "3", "?"));
  EXPECT_THAT(placed(book->read()), ElementsAre("0 two cells 0 1", "1 two cells 1 2",
                                                "2 one cell 1 3", "0 absolute 2 4"));
}

// Whatever becomes of the sheets before anybody asks.
TEST(Pictures, KeepTheirNumbersWhenSheetsComeAndGo) {
  const auto book = load(book_with_pictures());
  book->add_sheet("Next");
  delete_sheet(book->workbook, *book->document, 0);
  EXPECT_EQ(listed(*book).size(), 5U);
  add(*book, book->sheet(), 3, 0);
  const PartTexts saved = unzip(book->save());
  EXPECT_EQ(saved.at("xl/media/image1.png"), pictures::png(3, 3));
  EXPECT_FALSE(saved.contains("xl/media/b.png"));
  EXPECT_THAT(saved.at("xl/drawings/_rels/drawing1.xml.rels"), HasSubstr("../media/image1.png"));
}

TEST(Pictures, NewOnesLieOnTopOfWhatIsThere) {
  const auto book = load(book_with_pictures());
  Sheet& sheet = book->read();
  const std::uint32_t first = add_picture(*book, pictures::png(9, 9));
  const std::uint32_t same = add_picture(*book, pictures::png(9, 9));
  const std::uint32_t link = add_picture(*book, pictures::gif(9, 9), "C:\\new\\d.gif");
  add(*book, sheet, first, 1);
  add(*book, sheet, 0, 2, Anchoring::kMovesAndSizes);
  add(*book, sheet, same, 3, Anchoring::kStays);
  add(*book, sheet, link, 4);
  const PartTexts saved = unzip(book->save());
  const std::string& drawing = saved.at("xl/d.xml");
  EXPECT_THAT(drawing, HasSubstr(objects()));
  EXPECT_THAT(drawing.substr(drawing.find(objects()) + objects().size()),
              HasSubstr("<x:oneCellAnchor><x:from><x:col>0</x:col><x:colOff>0</x:colOff><x:row>1"
                        "</x:row><x:rowOff>0</x:rowOff></x:from><x:ext cx=\"95250\" cy=\"190500\"/>"
                        "<x:pic><x:nvPicPr><x:cNvPr id=\"11\" name=\"Picture 11\"/><x:cNvPicPr>"
                        "<a:picLocks noChangeAspect=\"1\"/></x:cNvPicPr></x:nvPicPr><x:blipFill>"
                        "<a:blip r:embed=\"rId5\"/>"));
  // Equal bytes are one part, and of one picture in a drawing there is one relationship.
  for (const char* text : {"<a:blip r:embed=\"rId2\"/><a:stretch>", "cNvPr id=\"14\"",
                           "<x:twoCellAnchor editAs=\"twoCell\">", "<a:blip r:link=\"rId6\"/>"})
    EXPECT_THAT(drawing, HasSubstr(text));
  EXPECT_EQ(saved.at("xl/media/image2.png"), pictures::png(9, 9));
  EXPECT_FALSE(saved.contains("xl/media/image3.png"));
  EXPECT_THAT(saved.at("xl/_rels/d.xml.rels"),
              HasSubstr("Target=\"file:///C:\\new\\d.gif\" TargetMode=\"External\""));
  EXPECT_EQ(saved.at("[Content_Types].xml"), book_with_pictures().at("[Content_Types].xml"));

  const auto again = load(zip(saved));
  EXPECT_EQ(placed(again->read()).size(), 8U);
  EXPECT_EQ(unzip(again->save()), saved);
}

TEST(Pictures, MakeADrawingWhereThereIsNone) {
  const struct {
    std::string bytes;
    const char* part;
    const char* type;
  } cases[] = {
      {pictures::png(1, 1), "xl/media/image1.png", "image/png"},
      {pictures::jpeg(1, 1), "xl/media/image1.jpeg", "image/jpeg"},
      {pictures::gif(1, 1), "xl/media/image1.gif", "image/gif"},
      {pictures::bitmap(1, 1), "xl/media/image1.bmp", "image/bmp"},
      {pictures::tiff(1, 1), "xl/media/image1.tiff", "image/tiff"},
      {pictures::pict(1, 1), "xl/media/image1.pict", "image/pict"},
      {pictures::enhanced_metafile(99, 99), "xl/media/image1.emf", "image/x-emf"},
      {pictures::placeable_metafile(9, 9, 96), "xl/media/image1.wmf", "image/x-wmf"},
  };
  const auto book = new_book();
  for (const auto& [bytes, part, type] : cases)
    add(*book, book->add_sheet(type + 6), add_picture(*book, bytes), 0);
  const PartTexts saved = unzip(book->save());
  int number = 0;
  for (const auto& [bytes, part, type] : cases) {
    SCOPED_TRACE(type);
    EXPECT_EQ(saved.at(part), bytes);
    EXPECT_THAT(saved.at("[Content_Types].xml"),
                HasSubstr("ContentType=\"" + std::string(type) + "\""));
    const std::string name = std::to_string(++number) + ".xml";
    EXPECT_THAT(saved.at("xl/worksheets/sheet" + name), HasSubstr("<drawing r:id=\"rId1\"/>"));
    EXPECT_THAT(saved.at("xl/drawings/_rels/drawing" + name + ".rels"),
                HasSubstr("../media/" + std::string(part).substr(9)));
  }
}

// A file of the strict family keeps to it.
TEST(Pictures, OfStrictFilesAreStrict) {
  PartTexts parts = book_of(worksheet(""));
  const auto make_strict = [](std::string& text) {
    const std::pair<std::string_view, std::string_view> kFamilies[] = {
        {kMainNamespace, "http://purl.oclc.org/ooxml/spreadsheetml/main"},
        {kOfficeRelations, "http://purl.oclc.org/ooxml/officeDocument/relationships"}};
    for (const auto& [from, to] : kFamilies)
      for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos;)
        text.replace(at, from.size(), to);
  };
  for (auto& [name, text] : parts) make_strict(text);
  const auto book = load(parts);
  add(*book, book->read(), add_picture(*book, pictures::png(1, 1)), 0);
  const PartTexts saved = unzip(book->save());
  for (const char* name : {"xl/drawings/drawing1.xml", "xl/drawings/_rels/drawing1.xml.rels",
                           "xl/worksheets/_rels/sheet1.xml.rels"}) {
    EXPECT_THAT(saved.at(name), HasSubstr("http://purl.oclc.org/ooxml/")) << name;
    EXPECT_THAT(saved.at(name), Not(HasSubstr("officeDocument/2006"))) << name;
  }
  EXPECT_EQ(load(zip(saved))->read().contents().pictures.size(), 1U);
}

// The chart and the group are the file's to move, the pictures the model's: both by one rule.
TEST(Pictures, MoveAndGoWithTheirRows) {
  const auto book = load(book_with_pictures());
  Sheet& sheet = book->read();
  add(*book, sheet, 0, 20);
  ASSERT_FALSE(move_cells(book->workbook, *book->document, sheet,
                          {{formula::Axis::kRows, formula::Move::Kind::kInsert, 0, 5}, true}));
  std::string drawing = unzip(book->save()).at("xl/d.xml");
  EXPECT_THAT(drawing, Not(HasSubstr("<x:row>2</x:row>")));
  EXPECT_THAT(drawing, HasSubstr("<x:row>14</x:row>"));  // of the one that stood in row 9
  EXPECT_THAT(drawing, HasSubstr("<x:row>25</x:row>"));
  EXPECT_THAT(drawing, HasSubstr("y=\"609600\""));
  EXPECT_THAT(drawing, HasSubstr("<a:srcRect l=\"5\"/>"));
  ASSERT_FALSE(move_cells(book->workbook, *book->document, sheet,
                          {{formula::Axis::kRows, formula::Move::Kind::kRemove, 6, 5}, true}));
  drawing = unzip(book->save()).at("xl/d.xml");
  EXPECT_THAT(placed(sheet),
              ElementsAre("1 two cells 1 2", "2 one cell 1 3", "0 absolute 2 4", "0 one cell 1 0"));
  for (const char* gone : {"\"Chart\"", "\"Picture 3\"", "grpSp", "\"Picture 10\""})
    EXPECT_THAT(drawing, Not(HasSubstr(gone)));
  // It leads nowhere and is not shown.
  EXPECT_THAT(drawing, HasSubstr("\"Picture 8\""));
}

TEST(Pictures, ThatWouldLeaveTheSheetRefuseAMove) {
  const auto book = load(book_with_pictures());
  Sheet& sheet = book->read();
  add(*book, sheet, 0, 1000);
  const auto refusal =
      move_cells(book->workbook, *book->document, sheet,
                 {{formula::Axis::kRows, formula::Move::Kind::kInsert, 500, 1048000}, true});
  ASSERT_TRUE(refusal);
  EXPECT_EQ(refusal->place, 1000);
}

TEST(Pictures, AreCopiedWithTheirSheet) {
  const auto book = load(book_with_pictures());
  Sheet& sheet = book->read();
  add(*book, sheet, add_picture(*book, pictures::png(9, 9)), 0);
  ASSERT_FALSE(move_cells(book->workbook, *book->document, sheet,
                          {{formula::Axis::kRows, formula::Move::Kind::kInsert, 0, 5}, true}));
  NewSheet made = make_copy(book->workbook, *book->document, sheet, "Copy");
  make_room(book->workbook, made);
  place_sheet(book->workbook, *book->document, 1, std::move(made));
  EXPECT_EQ(placed(book->sheet(1)), placed(sheet));
  const PartTexts saved = unzip(book->save());
  const auto again = load(zip(saved));
  EXPECT_EQ(placed(again->read(1)).size(), 5U);
  EXPECT_EQ(again->sheet(1).contents().pictures, again->read(0).contents().pictures);
  EXPECT_THAT(saved.at("xl/drawings/drawing1.xml"), Not(HasSubstr("\"Chart\"")));
  EXPECT_THAT(saved.at("xl/drawings/drawing1.xml"), HasSubstr("<a:srcRect l=\"5\"/>"));
}

// A damaged drawing is carried, and so are the cells and pictures of others.
TEST(Pictures, OfADamagedDrawingAreNone) {
  for (const char* text : {"<broken", "<other/>"}) {
    PartTexts parts = book_with_pictures();
    parts["xl/d.xml"] = text;
    const auto book = load(parts);
    EXPECT_THAT(book->read().contents().pictures, testing::IsEmpty());
    EXPECT_THAT(book->sheet().drawing_damage, HasSubstr("xl/d.xml"));
    EXPECT_EQ(listed(*book).size(), 4U);
    EXPECT_EQ(unzip(book->save()), parts);
  }
}

}  // namespace
}  // namespace engine::xlsx
