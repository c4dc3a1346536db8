#include "engine/package/xml_tree.h"

#include <gmock/gmock.h>

#include "engine/package/file_error.h"

namespace engine::package {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr std::string_view kDeclaration =
    "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n";

TEST(XmlTree, WritesWhatItRead) {
  constexpr std::string_view kTexts[] = {
      "<a/>",
      R"(<a b="1" xmlns:c="u" c:d="2"><c:e/>text<!-- comment --><?p i?></a>)",
      "<a> <b> </b>\n\t</a>",
      "<a><![CDATA[<&]]>]]&gt;</a>",
      "<a b=\"&lt;&amp;&quot;&#10;&#13;&#09;\">&lt;&amp;&gt;&#13;\n€😀</a>",
      "<!-- before --><a/><!-- behind -->",
  };
  for (const auto text : kTexts) {
    EXPECT_EQ(XmlTree::parse(text, "part").serialize(), std::string(kDeclaration).append(text));
  }
}

TEST(XmlTree, CutsInFrontOfAnEndTag) {
  struct Case {
    const char* text;
    const char* head;
    const char* tail;
  };
  constexpr Case kCases[] = {
      {"<a><list/></a>", "<a><list>", "</list></a>"},
      {"<a><list><b/></list></a>", "<a><list><b/>", "</list></a>"},
      {"<!-- 1 --><a b=\"&lt;&amp;&quot;&#10;&#13;\"> <c><b/></c><x:list xmlns:x=\"u\"> "
       "<![CDATA[<]]>&#13;</x:list><?p i?>&amp;<d/></a><!-- 2 -->",
       "<!-- 1 --><a b=\"&lt;&amp;&quot;&#10;&#13;\"> <c><b/></c><x:list xmlns:x=\"u\"> "
       "<![CDATA[<]]>&#13;",
       "</x:list><?p i?>&amp;<d/></a><!-- 2 -->"},
  };
  for (const auto& [text, head, tail] : kCases) {
    SCOPED_TRACE(text);
    const auto document = XmlTree::parse(text, "part");
    pugi::xml_node list = document.root().first_child();
    while (local_name(list) != "list") list = list.next_sibling();
    const auto halves = document.cut_in(list);
    EXPECT_EQ(halves.head, std::string(kDeclaration).append(head));
    EXPECT_EQ(halves.tail, tail);
  }
}

// A return that was a reference stays one; where references mean nothing it stays as it is.
TEST(XmlTree, KeepsReturns) {
  auto document = XmlTree::parse("<a>1&#13;2\r\n3</a>", "part");
  auto root = document.root();
  EXPECT_STREQ(root.text().get(), "1\r2\n3");
  root.append_child(pugi::node_cdata).set_value("4\r<!--5\r");
  root.append_child(pugi::node_comment).set_value("6\r");
  root.append_child(pugi::node_pcdata).set_value("7\r");
  EXPECT_EQ(serialize_xml(root), "<a>1&#13;2\n3<![CDATA[4\r<!--5\r]]><!--6\r-->7&#13;</a>");
}

TEST(XmlTree, ReadsOtherEncodings) {
  const std::string_view marked = "\xEF\xBB\xBF<a>€</a>";
  const std::string wide("\xFE\xFF\0<\0a\0>\x20\xAC\0<\0/\0a\0>", 18);
  for (const auto text : {marked, std::string_view(wide)}) {
    EXPECT_STREQ(XmlTree::parse(text, "part").root().text().get(), "€");
  }
}

TEST(XmlTree, RefusesHostileText) {
  std::string deep;
  for (int i = 0; i < 100000; ++i) deep += "<a>";
  std::string many = "<a>";
  for (int i = 0; i < 2000000; ++i) many += "<b/>";
  std::string wide = "<a";
  for (int i = 0; i < 300; ++i) wide += " b=''";
  const struct {
    std::string text;
    const char* error;
  } cases[] = {
      {"", "holds no element"},
      {"<a>", "ends too early"},
      {"<a><b></a>", "does not match"},
      {"<a b=\"1\" c></a>", "an attribute is not well-formed"},
      {"<!DOCTYPE a [<!ENTITY b \"bb\">]><a>&b;</a>", "declares a document type"},
      {"<a>&b;</a>", "unknown character"},
      {"<a b=\"&b;\"/>", "unknown character"},
      {std::string("<a/>\0<b", 7), "zero byte"},
      {deep, "nests too deep"},
      {many + "</a>", "holds too many elements"},
      {wide + "/>", "an element has too many attributes"},
  };
  for (const auto& [text, error] : cases) {
    try {
      XmlTree::parse(text, "xl/workbook.xml");
      ADD_FAILURE() << text.substr(0, 60);
    } catch (const FileError& failure) {
      EXPECT_THAT(failure.what(), StartsWith("is damaged: xl/workbook.xml, "));
      EXPECT_THAT(failure.what(), HasSubstr(error));
    }
  }
}

constexpr std::string_view kBook =
    "<w:workbook xmlns:w=\"http://purl.oclc.org/ooxml/spreadsheetml/main\" "
    "xmlns:q=\"http://purl.oclc.org/ooxml/officeDocument/relationships\">"
    "<sheets xmlns=\"urn:other\"/><w:sheets><w:sheet q:id=\"r1\" id=\"7\"/>"
    "<x:sheet xmlns:x=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\"/>"
    "<w:other/></w:sheets></w:workbook>";

TEST(XmlTree, MatchesNamespacesNotPrefixes) {
  const auto document = XmlTree::parse(kBook, "part");
  const auto book = document.root();
  EXPECT_TRUE(is(book, Family::Main, "workbook"));
  const auto sheets = child(book, Family::Main, "sheets");
  EXPECT_STREQ(sheets.name(), "w:sheets");
  EXPECT_EQ(children(sheets, Family::Main, "sheet").size(), 2U);
  const auto sheet = child(sheets, Family::Main, "sheet");
  EXPECT_STREQ(attribute(sheet, Family::Relationships, "id").value(), "r1");
  EXPECT_FALSE(attribute(sheet, Family::Main, "id"));
  EXPECT_FALSE(child(sheets, Family::Chart, "sheet"));
  EXPECT_FALSE(next_sibling(sheets, Family::Main, "sheets"));
}

TEST(XmlTree, AddsInTheRightNamespace) {
  const auto document = XmlTree::parse(kBook, "part");
  const auto sheets = child(document.root(), Family::Main, "sheets");
  auto sheet = append_child(sheets, "sheet");
  set_attribute(sheet, Family::Relationships, "id", "r2");
  set_attribute(sheet, Family::Xml, "space", "preserve");
  set_attribute(sheet, Family::MarkupCompatibility, "Ignorable", "x");
  insert_child(sheets, "first", sheets.first_child());
  EXPECT_EQ(serialize_xml(sheet),
            "<w:sheet q:id=\"r2\" xml:space=\"preserve\" mc:Ignorable=\"x\"/>");
  EXPECT_STREQ(sheets.first_child().name(), "w:first");
  EXPECT_STREQ(document.root().attribute("xmlns:mc").value(),
               std::string(uri_of(Family::MarkupCompatibility)).c_str());
  const auto again = XmlTree::parse(document.serialize(), "part");
  const auto last = child(again.root(), Family::Main, "sheets").last_child();
  EXPECT_STREQ(attribute(last, Family::MarkupCompatibility, "Ignorable").value(), "x");
}

}  // namespace
}  // namespace engine::package
