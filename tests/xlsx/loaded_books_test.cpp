// Books from files: what a save carries, and what it changes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/xlsx/packages.h"

namespace engine::xlsx {
namespace {

using testing::HasSubstr;
using testing::Not;

// The names of the parts that differ between two packages.
std::vector<std::string> differing(const PartTexts& a, const PartTexts& b) {
  std::vector<std::string> names;
  for (const auto& [name, text] : a)
    if (!b.contains(name) || b.at(name) != text) names.push_back(name);
  for (const auto& [name, text] : b)
    if (!a.contains(name)) names.push_back(name);
  return names;
}

PartTexts rich_book() {
  PartTexts parts =
      book_of(worksheet("<row r=\"1\"><c r=\"A1\" t=\"s\"><v>1</v></c><c r=\"B1\">"
                        "<f>A1</f><v>2</v></c></row>"));
  parts["xl/workbook.xml"] = workbook_text(
      "<sheet name=\"One\" sheetId=\"4\" r:id=\"rId1\" own=\"1\"/>\n"
      "<sheet name=\"Chart\" sheetId=\"9\" r:id=\"rId3\"/>",
      "<definedNames>\n<definedName name=\"N\" comment=\"c\">One!$A$1</definedName>"
      "<definedName name=\"Lost\" localSheetId=\"7\">1</definedName></definedNames>"
      "<calcPr calcId=\"1\"/><extLst><ext uri=\"u\"/></extLst>");
  parts["xl/_rels/workbook.xml.rels"] = relations({{"worksheet", "worksheets/sheet1.xml"},
                                                   {"sharedStrings", "sharedStrings.xml"},
                                                   {"chartsheet", "chartsheets/sheet1.xml"},
                                                   {"calcChain", "calcChain.xml"},
                                                   {"custom", "odd name.bin"}});
  parts["xl/chartsheets/sheet1.xml"] = "<chartsheet xmlns=\"" + std::string(kMainNamespace) +
                                       "\"><sheetViews><sheetView workbookViewId=\"0\"/>"
                                       "</sheetViews><drawing/></chartsheet>";
  parts["xl/calcChain.xml"] = "<calcChain/>";
  parts["xl/odd name.bin"] = std::string("\0\1\2", 3);
  parts["_xmlsignatures/origin.sigs"] = "";
  parts["_rels/.rels"] =
      "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">"
      "<Relationship Id=\"a\" Type=\"" +
      std::string(kOfficeRelations) +
      R"(/officeDocument" Target="xl/workbook.xml"/></Relationships>)";
  return parts;
}

TEST(LoadedBook, IsCarriedByteForByte) {
  const PartTexts parts = rich_book();
  const auto book = load(parts);
  EXPECT_EQ(differing(parts, unzip(book->save())), std::vector<std::string>());
  book->read();
  EXPECT_EQ(differing(parts, unzip(book->save())), std::vector<std::string>());
}

TEST(LoadedBook, ChangesTouchOnlyWhatTheyConcern) {
  using Names = std::vector<std::string>;
  struct Case {
    const char* what;
    void (*change)(Book& book);
    Names parts;
  };
  const Case kCases[] = {
      {"number",
       [](Book& b) { b.read().change().put_value(8, 0, Value::of_number(1), {}); },
       {"xl/worksheets/sheet1.xml"}},
      {"known text",
       [](Book& b) {
         b.read().change().put_value(8, 0, Value::of_text(b.workbook.strings.add("zero")), {});
       },
       {"xl/worksheets/sheet1.xml"}},
      {"new text",
       [](Book& b) {
         b.read().change().put_value(8, 0, Value::of_text(b.workbook.strings.add("new")), {});
       },
       {"xl/sharedStrings.xml", "xl/worksheets/sheet1.xml"}},
      {"formula removed",
       [](Book& b) { b.read().change().put_value(0, 1, Value::of_number(1), {}); },
       {"[Content_Types].xml", "xl/_rels/workbook.xml.rels", "xl/calcChain.xml",
        "xl/worksheets/sheet1.xml"}},
      {"sheet renamed",
       [](Book& b) { b.workbook.rename_sheet(b.sheet(), "New", "new"); },
       {"xl/workbook.xml"}},
      {"name",
       [](Book& b) { b.workbook.names.define(*b.workbook.names.begin(), "2"); },
       {"xl/workbook.xml"}},
      {"tab", [](Book& b) { b.sheet(1).selected = true; }, {"xl/chartsheets/sheet1.xml"}},
  };
  PartTexts parts = rich_book();
  parts["[Content_Types].xml"] =
      types({{"xl/workbook.xml", "vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml"},
             {"xl/calcChain.xml", "calc"}});
  for (const Case& one : kCases) {
    SCOPED_TRACE(one.what);
    const auto book = load(parts);
    one.change(*book);
    EXPECT_EQ(differing(parts, unzip(book->save())), one.parts);
  }
}

TEST(LoadedBook, WorkbookPartKeepsWhatItHas) {
  const auto book = load(rich_book());
  Workbook& workbook = book->workbook;
  ASSERT_EQ(workbook.sheets().size(), 2u);
  EXPECT_EQ(book->sheet(1).kind, SheetKind::kChart);
  ASSERT_EQ(workbook.names.size(), 1u);
  DefinedName renamed = *workbook.names.begin();
  renamed.name = "M";
  workbook.names.remove(*workbook.names.begin());
  workbook.names.add(std::move(renamed));
  workbook.names.add({"L", "One!$B$2", &book->sheet(1), false, ""});
  workbook.move_sheet(0, 1);
  book->add_sheet("Third");
  workbook.active_sheet = 2;
  const PartTexts saved = unzip(book->save());
  const std::string& text = saved.at("xl/workbook.xml");
  EXPECT_THAT(text, HasSubstr("<sheet name=\"Chart\" sheetId=\"9\" r:id=\"rId3\"/>"));
  EXPECT_THAT(text, HasSubstr("<sheet name=\"One\" sheetId=\"4\" r:id=\"rId1\" own=\"1\"/>"
                              "<sheet name=\"Third\" sheetId=\"10\" r:id=\"rId6\"/>"));
  EXPECT_THAT(text, HasSubstr("<definedName name=\"M\" comment=\"c\">One!$A$1</definedName>"
                              "<definedName name=\"L\" localSheetId=\"0\">One!$B$2</definedName>"));
  EXPECT_THAT(text, HasSubstr("activeTab=\"2\""));
  EXPECT_THAT(text, HasSubstr("<calcPr calcId=\"1\"/><extLst><ext uri=\"u\"/></extLst>"));
  EXPECT_TRUE(saved.contains("xl/worksheets/sheet2.xml"));
}

TEST(LoadedBook, SharedTextsAreAppendedTo) {
  struct Case {
    const char* stored;
    const char* saved;  // behind the declaration of the namespace
  };
  constexpr Case kCases[] = {
      {"<sst xmlns=\"M\" uniqueCount=\"1\" count=\"5\" own=\"1\"><!-- c "
       "--><si><r><t>a</t></r></si>\n"
       "</sst>",
       "<sst xmlns=\"M\" own=\"1\" count=\"6\" uniqueCount=\"2\"><!-- c "
       "--><si><r><t>a</t></r></si>\n"
       "<si><t>new</t></si></sst>"},
      {"<sst xmlns=\"M\"/>",
       R"(<sst xmlns="M" count="1" uniqueCount="1"><si><t>new</t></si></sst>)"},
      {R"(<sst xmlns="M" count="1"><si/><extLst/></sst>)",
       R"(<sst xmlns="M" count="2" uniqueCount="2"><si/><si><t>new</t></si><extLst/></sst>)"},
      {R"(<x:sst xmlns:x="M" count="1"><x:si><x:t>a</x:t></x:si></x:sst>)",
       "<x:sst xmlns:x=\"M\" count=\"2\" uniqueCount=\"2\"><x:si><x:t>a</x:t></x:si>"
       "<si xmlns=\"M\"><t>new</t></si></x:sst>"},
  };
  const auto with_namespace = [](std::string text) {
    return text.replace(text.find("\"M\"") + 1, 1, kMainNamespace);
  };
  for (const auto& [stored, saved] : kCases) {
    SCOPED_TRACE(stored);
    PartTexts parts = book_of(worksheet(""));
    parts["xl/sharedStrings.xml"] = with_namespace(stored);
    const auto book = load(parts);
    book->read().change().put_value(0, 0, Value::of_text(book->workbook.strings.add("new")), {});
    std::string expected = with_namespace(saved);
    if (const std::size_t item = expected.find("si xmlns=\"M\""); item != std::string::npos)
      expected.replace(item + 10, 1, kMainNamespace);
    const std::string bytes = book->save();
    EXPECT_EQ(unzip(bytes).at("xl/sharedStrings.xml"), expected);
    const auto again = load(bytes);
    again->read();
    EXPECT_EQ(again->show(0, 0), "\"new\"");
  }
}

TEST(LoadedBook, RichTextsNeverBecomePlainOnes) {
  PartTexts parts = book_of(worksheet("<row><c t=\"s\"><v>0</v></c></row>"));
  parts["xl/sharedStrings.xml"] =
      texts_part("<si><r><rPr><b/></rPr><t>a</t></r><r><t>b</t></r></si><si><t>c</t></si>");
  const auto book = load(parts);
  book->read();
  EXPECT_EQ(book->show(0, 0), "\"ab\"");
  EXPECT_EQ(book->workbook.strings.add("ab"), 2u);
  EXPECT_EQ(book->workbook.strings.add("c"), 1u);
}

TEST(LoadedBook, SignaturesGo) {
  PartTexts parts = rich_book();
  parts["_rels/.rels"].insert(
      parts["_rels/.rels"].find("</"),
      "<Relationship Id=\"s\" Type=\"http://schemas.openxmlformats.org/package/2006/relationships/"
      "digital-signature/origin\" Target=\"_xmlsignatures/origin.sigs\"/>");
  const PartTexts saved = unzip(load(parts)->save());
  EXPECT_FALSE(saved.contains("_xmlsignatures/origin.sigs"));
  EXPECT_THAT(saved.at("_rels/.rels"), Not(HasSubstr("signature")));
}

TEST(LoadedBook, CommentsAreWrittenWithTheirBoxes) {
  const auto book = load(book_of(worksheet("<row><c><v>1</v></c></row>", "", "<pageMargins/>")));
  Sheet& sheet = book->read();
  sheet.change().comments[{0, 0}] = {"hello", "me", 0, 0};
  const std::string bytes = book->save();
  const PartTexts saved = unzip(bytes);
  EXPECT_THAT(saved.at("xl/worksheets/sheet1.xml"),
              HasSubstr("<pageMargins/><legacyDrawing r:id=\"rId2\"/>"));
  EXPECT_TRUE(saved.contains("xl/comments1.xml") && saved.contains("xl/drawings/vmlDrawing1.vml"));
  const auto again = load(bytes);
  EXPECT_EQ(again->read().contents().comments.at({0, 0}).text, "hello");
  again->sheet().change().comments.clear();
  EXPECT_TRUE(load(again->save())->read().contents().comments.empty());
}

}  // namespace
}  // namespace engine::xlsx
