// Hyperlinks of files: what is listed of them, and what of the file a change leaves.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/xlsx/packages.h"

namespace engine::xlsx {
namespace {

using testing::HasSubstr;
using testing::Not;

// One relationship serves two links, one link lies on no cells, one leads nowhere.
constexpr const char* kLinks =
    "<hyperlinks><hyperlink ref=\"A1\" r:id=\"rId1\" tooltip=\"tip\" display=\"show\"/>"
    "<hyperlink ref=\"A2:B3\" r:id=\"rId1\" location=\"x\"/><hyperlink ref=\"nowhere\" "
    "r:id=\"rId2\"/><hyperlink ref=\"A4\" location=\"#One!A1\" tooltip=\"in here\"/>"
    "<hyperlink ref=\"A5\" r:id=\"rId3\"/><hyperlink ref=\"A6\" r:id=\"rId9\"/>"
    "<hyperlink ref=\"A7\" r:id=\"rId4\"/></hyperlinks>";

PartTexts book_with_links() {
  PartTexts parts = book_of(worksheet("", "", kLinks));
  const auto to = [](const char* id, const char* target) {
    return "<Relationship Id=\"" + std::string(id) + "\" Type=\"" + std::string(kOfficeRelations) +
           "/hyperlink\" Target=\"" + target + "\" TargetMode=\"External\"/>";
  };
  parts["xl/worksheets/_rels/sheet1.xml.rels"] =
      "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">" +
      to("rId1", "http://a/") + to("rId2", "http://b/") + to("rId3", "dir/a%20b%C3%A4.txt") +
      to("rId4", "#'My%20Sheet'!A1") + "</Relationships>";
  return parts;
}

std::vector<std::string> texts(const Links& links) {
  std::vector<std::string> all;
  for (std::size_t i = 0; i < links.size(); ++i) all.push_back(links[i].text);
  return all;
}

TEST(LinksOfFiles, AreListedAsCallersWriteThem) {
  const auto book = load(book_with_links());
  const Links& links = book->read().contents().links;
  EXPECT_THAT(texts(links), testing::ElementsAre("http://a/", "http://a/#x", "#One!A1",
                                                 "dir/a bä.txt", "", "#'My Sheet'!A1"));
  EXPECT_EQ(links[1].cells, (CellRange{1, 2, 0, 1}));
}

TEST(LinksOfFiles, KeepWhatTheModelDoesNotKnow) {
  const auto book = load(book_with_links());
  book->read();
  book->sheet().change();
  const std::string unchanged = unzip(book->save()).at("xl/worksheets/sheet1.xml");
  EXPECT_THAT(unchanged, HasSubstr(kLinks));

  Links& links = book->sheet().change().links;
  links.remove(0);
  links.put({{9, 9, 0, 0}, "http://new/"});
  links.put({{3, 3, 0, 0}, "mailto:a@b"});
  links = moved(links, {formula::Axis::kRows, formula::Move::Kind::kRemove, 1, 1}, Limits().grid);
  PartTexts saved = unzip(book->save());
  EXPECT_THAT(saved.at("xl/worksheets/sheet1.xml"),
              HasSubstr("<hyperlinks><hyperlink ref=\"nowhere\" r:id=\"rId2\"/>"
                        "<hyperlink ref=\"A2:B2\" r:id=\"rId1\" location=\"x\"/>"
                        "<hyperlink ref=\"A3\" r:id=\"rId5\"/><hyperlink ref=\"A4\" r:id=\"rId3\"/>"
                        "<hyperlink ref=\"A5\" r:id=\"rId9\"/><hyperlink ref=\"A6\" r:id=\"rId4\"/>"
                        "<hyperlink ref=\"A9\" r:id=\"rId6\"/></hyperlinks>"));
  const std::string& relationships = saved.at("xl/worksheets/_rels/sheet1.xml.rels");
  for (const char* target : {"http://a/", "http://b/", "mailto:a@b", "http://new/"})
    EXPECT_THAT(relationships, HasSubstr(target));

  for (std::size_t left = links.size(); left > 0; --left)
    book->sheet().change().links.remove(left - 1);
  saved = unzip(book->save());
  EXPECT_THAT(saved.at("xl/worksheets/sheet1.xml"),
              HasSubstr("<hyperlinks><hyperlink ref=\"nowhere\" r:id=\"rId2\"/></hyperlinks>"));
  EXPECT_THAT(saved.at("xl/worksheets/_rels/sheet1.xml.rels"), Not(HasSubstr("http://a/")));
}

// Line ends between the links of a list make none.
TEST(LinksOfFiles, AListGoesWithItsLast) {
  const auto book = load(book_of(
      worksheet("", "", "<hyperlinks>\n <hyperlink ref=\"A1\" location=\"B2\"/>\n</hyperlinks>")));
  book->read().change().links.remove(0);
  EXPECT_THAT(unzip(book->save()).at("xl/worksheets/sheet1.xml"), Not(HasSubstr("hyperlinks")));
}

TEST(LinksOfFiles, AreCopiedWithTheirSheet) {
  const auto book = load(book_with_links());
  book->read();
  book->sheet().change().links.remove(1);
  NewSheet made = make_copy(book->workbook, *book->document, book->sheet(), "Copy");
  make_room(book->workbook, made);
  place_sheet(book->workbook, *book->document, 1, std::move(made));
  const auto again = load(book->save());
  EXPECT_EQ(texts(again->read(1).contents().links), texts(again->read(0).contents().links));
  EXPECT_EQ(texts(again->sheet(1).contents().links).size(), 5U);
}

TEST(LinksOfFiles, OfDamagedRelationshipsAreLeftAlone) {
  PartTexts parts = book_with_links();
  parts["xl/worksheets/_rels/sheet1.xml.rels"] = "<Relationships>";
  const auto book = load(parts);
  EXPECT_TRUE(book->read().contents().links.empty());
  EXPECT_THAT(book->sheet().links_damage, HasSubstr("sheet1.xml.rels"));
  book->sheet().change().put_blank(0, 0, 0);
  EXPECT_THAT(unzip(book->save()).at("xl/worksheets/sheet1.xml"), HasSubstr(kLinks));
}

}  // namespace
}  // namespace engine::xlsx
