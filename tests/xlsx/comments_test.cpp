#include "engine/xlsx/comments.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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

}  // namespace
