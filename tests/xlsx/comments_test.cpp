#include "engine/xlsx/comments.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>

#include "engine/package/file_error.h"
#include "engine/workbook/limits.h"
#include "engine/xlsx/notes_drawing.h"

namespace {

using engine::Comment;
using engine::SheetContents;
using testing::HasSubstr;
using testing::Not;

constexpr std::string_view kPart = "xl/comments1.xml";

Comment note(std::string text, std::string author) {
  Comment made;
  made.text = std::move(text);
  made.author = std::move(author);
  made.width = 129;
  made.height = 75;
  return made;
}

constexpr std::string_view kStored =
    "<x:comments xmlns:x=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\">"
    "<x:authors><x:author>Ann</x:author><x:author/></x:authors><x:commentList>"
    "<x:comment ref=\"A1\" authorId=\"0\" shapeId=\"7\"><x:text><x:r><x:rPr><x:b/></x:rPr>"
    "<x:t>Bo</x:t></x:r><x:r><x:t>ld_x0041_</x:t></x:r><x:rPh sb=\"0\" "
    "eb=\"1\"><x:t>no</x:t></x:rPh>"
    "</x:text></x:comment>"
    "<x:comment ref=\"C4\" authorId=\"9\"><x:text><x:t>plain</x:t></x:text></x:comment>"
    "</x:commentList><x:extLst><x:ext uri=\"u\"/></x:extLst></x:comments>";

TEST(Comments, ReadsRichTextAsPlainText) {
  SheetContents sheet;
  engine::xlsx::read_comments(kStored, kPart, sheet.comments);
  ASSERT_EQ(sheet.comments.size(), 2U);
  const Comment& rich = sheet.comments.at({0, 0});
  EXPECT_EQ(rich.text, "BoldA");
  EXPECT_EQ(rich.author, "Ann");
  EXPECT_EQ(sheet.comments.at({3, 2}).author, "");
}

TEST(Comments, WritesWhatItReads) {
  SheetContents sheet;
  sheet.comments[{0, 0}] = note("hello <&> 😀\n_x000D_", "me");
  sheet.comments[{5, 2}] = note("", "me");
  sheet.comments[{1, 1}] = note(" other ", "");
  SheetContents again;
  engine::xlsx::read_comments(engine::xlsx::write_comments("", kPart, sheet.comments, {}), kPart,
                              again.comments);
  ASSERT_EQ(again.comments.size(), 3U);
  for (const auto& [cell, written] : sheet.comments) {
    EXPECT_EQ(again.comments.at(cell).text, written.text);
    EXPECT_EQ(again.comments.at(cell).author, written.author);
  }
}

TEST(Comments, LeavesTheLookOfUnchangedOnes) {
  SheetContents sheet;
  engine::xlsx::read_comments(kStored, kPart, sheet.comments);
  const engine::Comments as_read = sheet.comments;
  sheet.comments.erase({3, 2});
  sheet.comments[{8, 8}] = note("new", "Bob");
  const std::string written = engine::xlsx::write_comments(kStored, kPart, sheet.comments, as_read);
  EXPECT_THAT(written, HasSubstr("<x:comment ref=\"A1\" authorId=\"0\" shapeId=\"7\"><x:text><x:r>"
                                 "<x:rPr><x:b/></x:rPr>"));
  EXPECT_THAT(written, Not(HasSubstr("C4")));
  EXPECT_THAT(written, HasSubstr("<x:author>Bob</x:author>"));
  EXPECT_THAT(written, HasSubstr("<x:comment ref=\"I9\" authorId=\"2\">"));
  EXPECT_THAT(written, HasSubstr("<x:ext uri=\"u\"/>"));
}

TEST(Comments, RefusesWhatIsNoList) {
  SheetContents sheet;
  EXPECT_THROW(engine::xlsx::read_comments("<a/>", kPart, sheet.comments),
               engine::package::FileError);
  EXPECT_THROW(
      engine::xlsx::read_comments("<comments xmlns=\"http://schemas.openxmlformats.org/"
                                  "spreadsheetml/2006/main\"><commentList><comment ref=\"?\"/>"
                                  "</commentList></comments>",
                                  kPart, sheet.comments),
      engine::package::FileError);
}

// One name stands for many comments in a file and with each of them in memory.
TEST(Comments, LongAuthorsCostNoMoreThanTheFileDoes) {
  std::string part =
      "<comments xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\">"
      "<authors><author>" +
      std::string(20000, 'a') + "</author></authors><commentList>";
  for (int row = 1; row <= 20000; ++row)
    part.append("<comment ref=\"A").append(std::to_string(row)).append("\" authorId=\"0\"/>");
  part.append("</commentList></comments>");
  engine::Comments comments;
  EXPECT_THROW(engine::xlsx::read_comments(part, kPart, comments), engine::package::FileError);
}

// Threads of notes that were not touched are the bytes that the file has.
TEST(Comments, ThreadsGoWithTheirNotesOnly) {
  constexpr std::string_view kThreads =
      "<ThreadedComments xmlns='urn:t'><threadedComment ref='A1'><text>a</text></threadedComment >"
      "<threadedComment ref='B2'><text>b</text></threadedComment></ThreadedComments>";
  engine::Comments as_read;
  as_read[{0, 0}].text = as_read[{1, 1}].text = "fallback";
  engine::Comments comments = as_read;
  comments[{5, 5}].text = "new";
  EXPECT_EQ(engine::xlsx::write_threads(kThreads, "threads", comments, as_read), kThreads);
  comments[{1, 1}].text = "other";
  const std::string written = engine::xlsx::write_threads(kThreads, "threads", comments, as_read);
  EXPECT_THAT(written, HasSubstr("ref=\"A1\""));
  EXPECT_THAT(written, Not(HasSubstr("ref=\"B2\"")));
}

// A drawing with two notes and a button; a bare <br> keeps it from being well-formed.
constexpr std::string_view kDrawing =
    "<xml xmlns:v=\"urn:schemas-microsoft-com:vml\"><o:shapelayout v:ext=\"edit\">"
    "<o:idmap v:ext=\"edit\" data=\"1,3\"/></o:shapelayout><v:shapetype id=\"_x0000_t202\"/>"
    "<v:shape id=\"_x0000_s1025\"><x:ClientData ObjectType=\"Note\"><x:Row>0</x:Row>"
    "<x:Column>0</x:Column></x:ClientData></v:shape>"
    "<v:shape id=\"_x0000_s3073\"><x:ClientData ObjectType=\"Note\">\n <x:Row>\n 3</x:Row>"
    "<x:Column>2</x:Column></x:ClientData></v:shape>"
    "<v:shape id=\"_x0000_s3074\"><br><x:ClientData ObjectType=\"Button\"/></v:shape></xml>";

TEST(NotesDrawing, ExchangesOnlyBoxesOfChangedNotes) {
  SheetContents sheet;
  sheet.comments[{0, 0}].text = "as it was";
  const engine::Comments as_read = sheet.comments;
  sheet.comments[{4, 1}] = note("new", "");
  engine::xlsx::ShapeClusters clusters;
  clusters.enter(kDrawing);
  const std::string written =
      engine::xlsx::write_notes_drawing(kDrawing, sheet, as_read, engine::Limits().grid, clusters);
  EXPECT_THAT(written, HasSubstr("_x0000_s1025"));
  EXPECT_THAT(written, Not(HasSubstr("_x0000_s3073")));
  EXPECT_THAT(written, HasSubstr("<br><x:ClientData ObjectType=\"Button\"/></v:shape>"));
  EXPECT_THAT(written, HasSubstr("<v:shape id=\"_x0000_s3075\""));
  EXPECT_THAT(written, HasSubstr("<x:Row>4</x:Row><x:Column>1</x:Column>"));
  EXPECT_THAT(written, HasSubstr("data=\"1,3\""));
  EXPECT_TRUE(written.ends_with("</xml>"));
}

TEST(NotesDrawing, GivesEveryShapeOfTheBookItsOwnId) {
  engine::xlsx::ShapeClusters clusters;
  clusters.enter(kDrawing);
  SheetContents sheet;
  for (int row = 0; row < 1100; ++row) sheet.comments[{row, 0}] = note("n", "");
  const std::string first =
      engine::xlsx::write_notes_drawing("", sheet, {}, engine::Limits().grid, clusters);
  const std::string second =
      engine::xlsx::write_notes_drawing("", sheet, {}, engine::Limits().grid, clusters);
  EXPECT_THAT(first, HasSubstr("data=\"2,4\""));
  EXPECT_THAT(first, HasSubstr("\"_x0000_s2049\""));
  EXPECT_THAT(first, HasSubstr("\"_x0000_s3071\""));
  EXPECT_THAT(first, Not(HasSubstr("\"_x0000_s3072\"")));
  EXPECT_THAT(first, HasSubstr("\"_x0000_s4097\""));
  EXPECT_THAT(second, HasSubstr("data=\"5,6\""));
}

TEST(NotesDrawing, TellsTheSizesOfItsBoxes) {
  const struct {
    const char* style;
    int width;
    int height;
  } cases[] = {
      {"position:absolute; width:108pt;height:59.25pt;z-index:1", 144, 79},
      {"max-width:9pt;height:20px;\n  width:30px", 30, 20},
      {"width:2in;margin-left:5pt", 0, 0},
      {"width:9e99pt;height:99999999999pt", 0, 32767},
      {"width:;height", 0, 0},
  };
  for (const auto& [style, width, height] : cases) {
    SCOPED_TRACE(style);
    SheetContents sheet;
    sheet.comments[{3, 1}] = {};
    engine::xlsx::read_note_sizes(
        "<xml><v:shape style=\"" + std::string(style) +
            "\"><x:ClientData ObjectType=\"Note\"><x:Row>3</x:Row><x:Column>1</x:Column>"
            "</x:ClientData></v:shape></xml>",
        sheet.comments);
    EXPECT_EQ(sheet.comments.at({3, 1}).width, width);
    EXPECT_EQ(sheet.comments.at({3, 1}).height, height);
  }
}

TEST(NotesDrawing, PlacesTheBoxBesideItsCell) {
  SheetContents sheet;
  sheet.comments[{0, 0}] = note("first", "");
  sheet.comments[{9, 3}] = note("inner", "");
  sheet.comments[{1048575, 16383}] = note("last", "");
  engine::xlsx::ShapeClusters clusters;
  const std::string written =
      engine::xlsx::write_notes_drawing("", sheet, {}, engine::Limits().grid, clusters);
  EXPECT_THAT(written, HasSubstr("<x:Anchor>1, 15, 0, 2, 3, 16, 3, 17</x:Anchor>"));
  EXPECT_THAT(written, HasSubstr("<x:Anchor>4, 15, 8, 10, 6, 16, 12, 5</x:Anchor>"));
  EXPECT_THAT(written, HasSubstr("16383, 15, 1048574, 10, 16383, 63, 1048575, 19"));
  EXPECT_THAT(written, HasSubstr("width:96.75pt;height:56.25pt"));
}

// Drawings declare their namespaces under any prefix and anywhere, or not at all. The shape of the
// note in B2 stays, the one in A1 goes, and the one of C3 is written so that its prefixes hold.
TEST(NotesDrawing, GoesByNamespaces) {
  constexpr std::string_view kVml = "urn:schemas-microsoft-com:vml";
  constexpr std::string_view kOffice = "urn:schemas-microsoft-com:office:office";
  constexpr std::string_view kExcel = "urn:schemas-microsoft-com:office:excel";
  struct Case {
    const char* root;   // V, O and X stand for the namespaces
    const char* shape;  // R and C for row and column
    const char* written_root;
    const char* box;
    const char* data;
  };
  const Case cases[] = {
      {"<xml xmlns:vml='V' xmlns:n0=\"O\" xmlns:n1=\"X\">",
       "<vml:shape id='a'><n1:ClientData ObjectType='Note'><n1:Row>R</n1:Row><n1:Column >C"
       "</n1:Column></n1:ClientData></vml:shape>",
       "<xml xmlns:vml='V' xmlns:n0=\"O\" xmlns:n1=\"X\">", "<vml:shape id=\"_x0000_s1025\"",
       "</vml:textbox><n1:ClientData ObjectType=\"Note\">"},
      {"<xml>",
       "<v:shape id='a'><x:ClientData ObjectType='Note'><x:Row>R</x:Row><x:Column>C</x:Column>"
       "</x:ClientData></v:shape>",
       "<xml xmlns:v=\"V\" xmlns:o=\"O\" xmlns:x=\"X\">", "<v:shape id=\"_x0000_s1025\"",
       "</v:textbox><x:ClientData ObjectType=\"Note\">"},
      {"<xml xmlns:v=\"V\">",
       "<v:shape id='a'><n:ClientData xmlns:n='X' ObjectType='Note'><n:Row>R</n:Row>"
       "<n:Column>C</n:Column></n:ClientData></v:shape>",
       "<xml xmlns:o=\"O\" xmlns:x=\"X\" xmlns:v=\"V\">", "<v:shape id=\"_x0000_s1025\"",
       "</v:textbox><x:ClientData ObjectType=\"Note\">"},
      {"<xml xmlns:v=\"urn:v\" xmlns:v1=\"urn:v1\" xmlns:a=\"X\" xmlns:x=\"X\">",
       "<shape xmlns='V' id='a'><ClientData xmlns='X' ObjectType='Note'><Row>R</Row><Column>C"
       "</Column></ClientData></shape><v:shape xmlns:v='V'/>",
       "<xml xmlns:v2=\"V\" xmlns:o=\"O\" xmlns:v=\"urn:v\" xmlns:v1=\"urn:v1\" xmlns:a=\"X\" "
       "xmlns:x=\"X\">",
       "<v2:shape id=\"_x0000_s1025\"", "</v2:textbox><x:ClientData ObjectType=\"Note\">"},
      {"<?xml version='1.0'?><!-- <v:shape> --><w:xml xmlns:w='urn:w'><v:group>",
       "<ns0:shape xmlns:ns0='V' id='a' alt='3 > 2'><br><p a='1'><ns0:fill/><ns1:ClientData "
       "xmlns:ns1='X' ObjectType='Note'><ns1:Row>R</ns1:Row><ns1:Column>C</ns1:Column>"
       "</ns1:ClientData></ns0:shape>",
       "<w:xml xmlns:v=\"V\" xmlns:o=\"O\" xmlns:x=\"X\" xmlns:w='urn:w'>",
       "<v:shape id=\"_x0000_s1025\"", "</v:textbox><x:ClientData ObjectType=\"Note\">"},
  };
  const auto spelled = [&](std::string text, const char* row, const char* column) {
    const std::pair<const char*, std::string_view> names[] = {
        {"'V'", kVml},   {"\"V\"", kVml},   {"'O'", kOffice}, {"\"O\"", kOffice},
        {"'X'", kExcel}, {"\"X\"", kExcel}, {">R<", row},     {">C<", column}};
    for (const auto& [from, to] : names)
      for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos;)
        text.replace(at + 1, 1, to);
    return text;
  };
  for (const auto& [root, shape, written_root, box, data] : cases) {
    SCOPED_TRACE(root);
    const std::string kept = spelled(shape, "1", "1");
    const std::string drawing =
        spelled(root, "", "") + spelled(shape, "0", "0") + kept +
        (std::string_view(root).ends_with("<v:group>") ? "</w:xml >" : "</xml>");
    SheetContents sheet;
    sheet.comments[{1, 1}].text = "as it was";
    const engine::Comments as_read = sheet.comments;
    sheet.comments[{2, 2}] = note("new", "");
    engine::xlsx::ShapeClusters clusters;
    const std::string written =
        engine::xlsx::write_notes_drawing(drawing, sheet, as_read, engine::Limits().grid, clusters);
    EXPECT_THAT(written, HasSubstr(spelled(written_root, "", "")));
    EXPECT_THAT(written, HasSubstr(kept));
    EXPECT_THAT(written, Not(HasSubstr(spelled(shape, "0", "0"))));
    EXPECT_THAT(written, HasSubstr(box));
    EXPECT_THAT(written, HasSubstr(data));
    EXPECT_GT(written.find(box), written.find(kept));
    EXPECT_TRUE(std::regex_search(written, std::regex("</[a-z0-9]*:shape></(w:xml |xml)>$")));
  }
}

TEST(NotesDrawing, FindsAPlaceForBoxes) {
  const std::pair<std::string, const char*> cases[] = {
      {"<xml/>", "</v:shape></xml>"},
      {"<a:xml xmlns:a=\"urn:a\" />", "</v:shape></a:xml>"},
      {" \n", "</v:shape></xml>"},
      {"<xml><v:shape>", "</x:ClientData></v:shape>"},
      {std::string("\xFF\xFE<\0x\0m\0l\0>\0<\0/\0x\0m\0l\0>\0", 24), "</v:shape></xml>"},
  };
  for (const auto& [drawing, end] : cases) {
    SCOPED_TRACE(drawing);
    SheetContents sheet;
    sheet.comments[{2, 2}] = note("new", "");
    engine::xlsx::ShapeClusters clusters;
    const std::string written =
        engine::xlsx::write_notes_drawing(drawing, sheet, {}, engine::Limits().grid, clusters);
    EXPECT_THAT(written, HasSubstr(" xmlns:v=\"urn:schemas-microsoft-com:vml\""));
    EXPECT_THAT(written, HasSubstr("<v:shapetype id=\"_x0000_t202\""));
    EXPECT_TRUE(written.ends_with(end)) << written;
    engine::Comments again = sheet.comments;
    again[{2, 2}].width = 0;
    engine::xlsx::read_note_sizes(written, again);
    EXPECT_EQ(again.at({2, 2}).width, 129);
  }
}

// Shape ids stay inside of their clusters, and clusters inside of what ids can be.
TEST(NotesDrawing, IdsKeepToTheirClusters) {
  const std::pair<std::string, const char*> cases[] = {
      {"<o:idmap data=\"7\"/><v:shape id=\"_x0000_s1030\"/>", "\"_x0000_s7169\""},
      {"<o:idmap data='7'/>_x0000_s7170 _x0000_s2000000000 _x0000_s99999999999",
       "\"_x0000_s7171\""},
      {"<o:idmap data=\"7\"/>_x0000_s8191", "\"_x0000_s3073\""},
      {"<o:idmap data=\"2097152, -1,1,2\"/>", "\"_x0000_s2049\""},
      {"<o:idmap data=\"2147483647\"/><o:idmap data=\"5\"/>", "\"_x0000_s3073\""},
      {"<o:idmap/><v:shape id=\"_x0000_s3073\"/>", "\"_x0000_s4097\""},
  };
  for (const auto& [inside, id] : cases) {
    SCOPED_TRACE(inside);
    const std::string drawing = "<xml>" + inside + "</xml>";
    SheetContents sheet;
    sheet.comments[{2, 2}] = note("new", "");
    engine::xlsx::ShapeClusters clusters;
    clusters.enter("<xml><o:idmap data=\"1,2\"/></xml>");
    clusters.enter(drawing);
    EXPECT_THAT(
        engine::xlsx::write_notes_drawing(drawing, sheet, {}, engine::Limits().grid, clusters),
        HasSubstr(id));
  }
}

// Each of these took minutes where something was looked for again and again up to the end.
TEST(NotesDrawing, ReadsHostileDrawingsInOnePass) {
  constexpr const char* kPieces[] = {"<v:shapetype",   "<v:shapetype>",
                                     "<v:shape",       "<v:shape>",
                                     "<v:shape a=\"",  "</v:shape>",
                                     "<v:shape a='>",  "<!--",
                                     "<![CDATA[",      "<?",
                                     "_x0000_s1",      "<",
                                     "<a xmlns:v=''>", "<o:idmap data=\"1\"/>"};
  for (const char* piece : kPieces) {
    SCOPED_TRACE(piece);
    std::string drawing = "<xml>";
    for (int i = 0; i < 400000; ++i) drawing.append(piece);
    drawing.append("</xml>");
    SheetContents sheet;
    sheet.comments[{2, 2}] = note("new", "");
    engine::xlsx::ShapeClusters clusters;
    clusters.enter(drawing);
    EXPECT_THAT(
        engine::xlsx::write_notes_drawing(drawing, sheet, {}, engine::Limits().grid, clusters),
        HasSubstr("<x:Row>2</x:Row><x:Column>2</x:Column></x:ClientData></v:shape>"));
  }
}

// Far to the right, and above a million rows of no height.
TEST(NotesDrawing, MeasuresTheSheetOnce) {
  SheetContents sheet;
  sheet.default_row_height = 0;
  for (int row = 0; row < 20000; ++row) sheet.comments[{row, 16000 + row % 300}] = note("n", "");
  engine::xlsx::ShapeClusters clusters;
  EXPECT_THAT(engine::xlsx::write_notes_drawing("", sheet, {}, engine::Limits().grid, clusters),
              HasSubstr("<x:Anchor>16002, 15, 0, 10, 16004, 16, 1048575, 0</x:Anchor>"));
}

}  // namespace
