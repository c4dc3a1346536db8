#include "engine/xlsx/parts.h"

#include <gtest/gtest.h>

#include "tests/xlsx/packages.h"

namespace engine::xlsx {
namespace {

TEST(Relationships, LeadFromPartToPart) {
  struct Case {
    const char* owner;
    const char* target;
    const char* part;
  };
  constexpr Case kCases[] = {
      {"", "xl/workbook.xml", "xl/workbook.xml"},
      {"", "/xl/workbook.xml", "xl/workbook.xml"},
      {"xl/workbook.xml", "worksheets/sheet1.xml", "xl/worksheets/sheet1.xml"},
      {"xl/worksheets/sheet1.xml", "../drawings/a.vml", "xl/drawings/a.vml"},
      {"xl/worksheets/sheet1.xml", "..\\drawings\\a.vml", "xl/drawings/a.vml"},
      {"xl/workbook.xml", "./a//b/../c.xml#there", "xl/a/c.xml"},
      {"xl/workbook.xml", "../../../a.xml", "a.xml"},
      {"xl/workbook.xml", "NULL", "xl/NULL"},
  };
  for (const auto& [owner, target, part] : kCases)
    EXPECT_EQ(resolve_target(owner, target), part) << target;
}

TEST(Relationships, AreWrittenRelative) {
  EXPECT_EQ(relative_target("", "xl/workbook.xml"), "xl/workbook.xml");
  EXPECT_EQ(relative_target("xl/workbook.xml", "xl/worksheets/a.xml"), "worksheets/a.xml");
  EXPECT_EQ(relative_target("xl/worksheets/a.xml", "xl/tables/b.xml"), "../tables/b.xml");
  EXPECT_EQ(relative_target("book/sheets/a.xml", "xl/b.xml"), "../../xl/b.xml");
}

TEST(Parts, AreFoundWithoutCaseAndThroughPercentEscapes) {
  PartTexts texts = book_of(worksheet(""));
  texts["xl/my sheet.xml"] = worksheet("");
  texts["xl/_rels/workbook.xml.rels"] =
      relations({{"worksheet", "My%20Sheet.xml"}, {"sharedStrings", "/XL/sharedstrings.XML"}});
  const Parts parts(source_of(zip(texts)));
  ASSERT_NE(parts.related("xl/workbook.xml", "worksheet"), nullptr);
  EXPECT_EQ(parts.related("xl/workbook.xml", "worksheet")->name, "xl/my sheet.xml");
  EXPECT_NE(parts.related("xl/Workbook.xml", "sharedStrings"), nullptr);
}

TEST(Parts, PruningTakesOnlyWhatNothingElseNeeds) {
  PartTexts texts = book_of(worksheet(""));
  texts["xl/worksheets/_rels/sheet1.xml.rels"] =
      relations({{"drawing", "../drawings/drawing1.xml"}, {"image", "../media/shared.png"}});
  texts["xl/drawings/drawing1.xml"] = "<d/>";
  texts["xl/media/shared.png"] = "png";
  texts["xl/orphan.xml"] = "<o/>";
  texts["xl/_rels/workbook.xml.rels"] =
      relations({{"worksheet", "worksheets/sheet1.xml"}, {"image", "media/shared.png"}});
  Parts parts(source_of(zip(texts)));
  parts.unrelate("xl/workbook.xml", "rId1");
  parts.drop_unreachable();
  EXPECT_EQ(parts.find("xl/worksheets/sheet1.xml"), nullptr);
  EXPECT_EQ(parts.find("xl/drawings/drawing1.xml"), nullptr);
  EXPECT_NE(parts.find("xl/media/shared.png"), nullptr);
  EXPECT_NE(parts.find("xl/orphan.xml"), nullptr);

  package::MemoryOutput output;
  parts.write(output);
  const PartTexts saved = unzip(output.view());
  EXPECT_FALSE(saved.contains("xl/worksheets/_rels/sheet1.xml.rels"));
  EXPECT_EQ(saved.at("[Content_Types].xml").find("sheet1.xml"), std::string::npos);
}

// Older spreadsheet programs state the type of each part of relationships by itself.
TEST(Parts, RelationshipsKeepTheirTypes) {
  PartTexts texts = book_of(worksheet(""));
  constexpr const char* kType =
      "ContentType=\"application/vnd.openxmlformats-package.relationships+xml\"/>";
  std::string& list = texts["[Content_Types].xml"];
  const std::string usual = std::string("<Default Extension=\"rels\" ") + kType;
  list.replace(list.find(usual), usual.size(),
               std::string("<Override PartName=\"/_rels/.rels\" ") + kType +
                   "<Override PartName=\"/xl/_rels/workbook.xml.rels\" " + kType);
  const auto book = load(texts);
  EXPECT_EQ(unzip(book->save()), texts);
  book->read().change().comments[{0, 0}] = {"note", "me", 100, 100};
  const std::string saved = unzip(book->save()).at("[Content_Types].xml");
  for (const char* name :
       {"/_rels/.rels", "/xl/_rels/workbook.xml.rels", "/xl/worksheets/_rels/sheet1.xml.rels"})
    EXPECT_NE(saved.find(std::string("<Override PartName=\"") + name + "\" " + kType),
              std::string::npos)
        << name;
}

// A part that was made, with what it leads to: what another needs too stays, as does what the file
// has.
TEST(Parts, ForgettingTakesWhatWasMadeForAPartAlone) {
  PartTexts texts = book_of(worksheet(""));
  texts["xl/media/stored.png"] = "png";
  Parts parts(source_of(zip(texts)));
  const std::string main = "xl/workbook.xml";
  const std::string sheet = parts.free_name("xl/worksheets/sheet#.xml");
  for (const char* name : {"xl/drawings/drawing1.xml", "xl/media/own.png", "xl/media/shared.png"})
    parts.put(name, "", "");
  parts.put(sheet, "", "");
  const std::string id = parts.relate(main, {}, "worksheet", sheet);
  parts.relate(sheet, {}, "drawing", "xl/drawings/drawing1.xml");
  parts.relate("xl/drawings/drawing1.xml", {}, "worksheet", sheet);
  for (const char* name : {"xl/media/own.png", "xl/media/shared.png", "xl/media/stored.png"})
    parts.relate("xl/drawings/drawing1.xml", {}, "image", name);
  parts.relate("xl/worksheets/sheet1.xml", {}, "image", "xl/media/shared.png");
  parts.forget(main, id);
  for (const char* name :
       {"xl/worksheets/sheet2.xml", "xl/drawings/drawing1.xml", "xl/media/own.png"})
    EXPECT_EQ(parts.find(name), nullptr) << name;
  for (const char* name : {"xl/media/shared.png", "xl/media/stored.png"})
    EXPECT_NE(parts.find(name), nullptr) << name;
  EXPECT_EQ(parts.relationship(main, id), nullptr);
  EXPECT_EQ(parts.free_name("xl/worksheets/sheet#.xml"), sheet);
}

TEST(Parts, NewNamesAndIdsAreFree) {
  PartTexts texts = book_of(worksheet(""));
  texts["xl/worksheets/SHEET2.xml"] = "";
  Parts parts(source_of(zip(texts)));
  EXPECT_EQ(parts.free_name("xl/worksheets/sheet#.xml"), "xl/worksheets/sheet3.xml");
  texts["xl/worksheets/_rels/sheet1.xml.rels"] = relations({{"drawing", "sheet3.xml"}});
  EXPECT_EQ(Parts(source_of(zip(texts))).free_name("xl/worksheets/sheet#.xml"),
            "xl/worksheets/sheet4.xml");
  EXPECT_EQ(parts.relate("xl/workbook.xml", {"rId3"}, "styles", "xl/styles.xml"), "rId4");
}

}  // namespace
}  // namespace engine::xlsx
