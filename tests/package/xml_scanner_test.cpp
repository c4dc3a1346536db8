#include "engine/package/xml_scanner.h"

#include <gmock/gmock.h>

#include "engine/package/file_error.h"

namespace engine::package {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;
using Token = XmlScanner::Token;

// Every token on one line: <name a=value> or <name/>, text in brackets, </name>.
std::string tokens_of(std::string_view xml, std::size_t block_size) {
  MemoryReader reader(xml, block_size);
  XmlScanner scanner(reader, "part.xml");
  std::string out;
  std::string scratch;
  for (;;) {
    switch (scanner.next()) {
      case Token::Start: {
        out.append("<").append(scanner.name());
        auto attributes = scanner.attributes();
        for (XmlAttribute attribute; attributes.next(attribute);) {
          out.append(" ").append(attribute.name).append("=");
          out.append(scanner.value(attribute.value, scratch));
        }
        out += scanner.self_closing() ? "/>" : ">";
        break;
      }
      case Token::End:
        out.append("</").append(scanner.name()).append(">");
        break;
      case Token::Text:
        out.append("[").append(scanner.text(scratch)).append("]");
        break;
      case Token::Finish:
        return out;
    }
  }
}

std::string failure_of(std::string_view xml, std::size_t block_size = 1000) {
  try {
    tokens_of(xml, block_size);
  } catch (const FileError& error) {
    return error.what();
  }
  return "";
}

constexpr std::size_t kBlockSizes[] = {1, 2, 3, 5, 7, 16, 17, 64, 100000};

constexpr std::string_view kCells =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<!-- <x> -->"
    "<sheet xmlns='u'><row r=\"1\"><c r=\"A1\" s=\"3\" t=\"s\"><v>12</v></c><c r=\"B1\"/></row>"
    "<mergeCells><mergeCell ref=\"A1:B2\"/></mergeCells></sheet>\n";

TEST(XmlScanner, GivesTheSameTokensForAnyBlocks) {
  const std::string long_text(200000, 'x');
  const struct {
    std::string xml;
    std::string tokens;
  } cases[] = {
      {"<a/>", "<a/></a>"},
      {"<a></a>", "<a></a>"},
      {"\xEF\xBB\xBF<a>1</a>", "<a>[1]</a>"},
      {std::string(kCells),
       "<sheet xmlns=u><row r=1><c r=A1 s=3 t=s><v>[12]</v></c><c r=B1/></c></row>"
       "<mergeCells><mergeCell ref=A1:B2/></mergeCell></mergeCells></sheet>"},
      {"<a b = \"1\"\n c='2' ></a >", "<a b=1 c=2></a>"},
      {R"(<a b='"' c="'>/">></a>)", R"(<a b=" c='>/>[>]</a>)"},
      {"<a> \n <b/>\t</a>", "<a>[ \n ]<b/></b>[\t]</a>"},
      {"<a>x&amp;&lt;&gt;&quot;&apos;&#65;&#x20AC;&#x1F600;</a>", "<a>[x&<>\"'A€😀]</a>"},
      {"<a>1\r\n2\r3&#13;&#10;</a>", "<a>[1\n2\n3\r\n]</a>"},
      {"<a b=\"1\r\n2\t3&#10;&#9;\"/>", "<a b=1 2 3\n\t/></a>"},
      {"<a>1<![CDATA[<&amp;]]]>]]>2<![CDATA[]]></a>", "<a>[1][<&amp;]][]]>2][]</a>"},
      {"<a>1<!-- -- > -->2<?p ?> ?>3</a>", "<a>[1][2][ ?>3]</a>"},
      {"<x:a><x:b/><c/></x:a>", "<a><b/></b><c/></c></a>"},
      {"<a><longElementName></longElementName ></a>", "<a><longElementName></longElementName></a>"},
      {"<a>" + long_text + "</a>", "<a>[" + long_text + "]</a>"},
      {"<a b=\"" + long_text + "\"/>", "<a b=" + long_text + "/></a>"},
      {std::string("\xFF\xFE<\0a\0>\0\xAC\x20<\0/\0a\0>\0", 18), "<a>[€]</a>"},
      {std::string("\0<\0a\0/\0>", 8), "<a/></a>"},
  };
  for (const auto& [xml, tokens] : cases) {
    for (const auto block_size : kBlockSizes) {
      if (xml.size() > 1000 && block_size < 64) continue;
      SCOPED_TRACE(xml.substr(0, 100) + " by " + std::to_string(block_size));
      EXPECT_EQ(tokens_of(xml, block_size), tokens);
    }
  }
}

TEST(XmlScanner, RefusesWhatIsNotWellFormed) {
  std::string deep;
  for (int i = 0; i < 300; ++i) deep += "<a>";
  const struct {
    std::string xml;
    const char* error;
  } cases[] = {
      {"", "holds no element"},
      {" \n", "holds no element"},
      {"text", "text stands outside of the root element"},
      {"<a/>text", "text stands outside of the root element"},
      {"<a/><![CDATA[x]]>", "text stands outside of the root element"},
      {"<a/><b/>", "a second root element"},
      {"</a>", "an end tag without a start tag"},
      {"<a></b>", "an end tag does not match"},
      {"<a></ab>", "an end tag does not match"},
      {"<ab></a>", "an end tag does not match"},
      {"<a><b></a></b>", "an end tag does not match"},
      {"<longElementName></longElementNama>", "an end tag does not match"},
      {"<a><b", "ends too early"},
      {"<a <b/>", "a tag does not end"},
      {"<a b=\"<\"/>", "a tag does not end"},
      {"<>", "a tag has no name"},
      {"< a/>", "a tag has no name"},
      {"<a b/>", "an attribute is not well-formed"},
      {"<a b=1/>", "an attribute is not well-formed"},
      {"<a =\"1\"/>", "an attribute is not well-formed"},
      {"<a>&b;</a>", "refers to an unknown character"},
      {"<a>&amp</a>", "refers to an unknown character"},
      {"<a>&#0;</a>", "refers to an unknown character"},
      {"<a>&#xD800;</a>", "refers to an unknown character"},
      {"<a>&#x110000;</a>", "refers to an unknown character"},
      {"<a>&#99999999999;</a>", "refers to an unknown character"},
      {"<a>\xFF</a>", "text is not UTF-8"},
      {"<a>\xE2\x82</a>", "text is not UTF-8"},
      {"<a><![CDATA[\xC0\x80]]></a>", "text is not UTF-8"},
      {"<a b=\"\xED\xA0\x80\"/>", "an attribute is not UTF-8"},
      {"<!DOCTYPE a><a/>", "declares a document type"},
      {"<!DOCTYPE a [<!ENTITY b \"c\">]><a>&b;</a>", "declares a document type"},
      {"<a><!ELEMENT b></a>", "unknown markup"},
      {"<?xml version='1.0' encoding='ISO-8859-1'?><a/>", "is encoded as ISO-8859-1"},
      {deep, "nests too deep"},
      {std::string("\xFF\xFE<\0a\0\0\xD8", 8), "UTF-16 text is not well-formed"},
      {std::string("\xFF\xFE<\0a", 5), "UTF-16 text is not well-formed"},
  };
  for (const auto& [xml, error] : cases) {
    for (const std::size_t block_size : {1, 1000}) {
      SCOPED_TRACE(xml.substr(0, 60));
      const auto failure = failure_of(xml, block_size);
      EXPECT_THAT(failure, StartsWith("is damaged: part.xml, byte "));
      EXPECT_THAT(failure, HasSubstr(error));
    }
  }
}

TEST(XmlScanner, RefusesEveryPrefix) {
  const auto whole = kCells.substr(0, kCells.size() - 1);
  for (std::size_t size = 0; size < whole.size(); ++size) {
    for (const std::size_t block_size : {1, 3, 1000}) {
      EXPECT_THAT(failure_of(whole.substr(0, size), block_size), StartsWith("is damaged")) << size;
    }
  }
}

TEST(XmlScanner, SurvivesEveryChangedByte) {
  for (std::size_t at = 0; at < kCells.size(); ++at) {
    for (const char value : {'<', '>', '/', '"', '\'', '&', '!', '\0', '\xFF'}) {
      std::string xml(kCells);
      xml[at] = value;
      const auto whole = failure_of(xml);
      EXPECT_EQ(failure_of(xml, 1), whole) << xml;
    }
  }
}

TEST(XmlScanner, TellsWhereItFails) {
  const std::string xml = "<a>" + std::string(5000, '\n') + "<b></c></a>";
  for (const std::size_t block_size : {7, 100000}) {
    EXPECT_THAT(failure_of(xml, block_size), HasSubstr("part.xml, byte 5006, an end tag"));
  }
}

TEST(XmlScanner, RefusesTokensWithoutEnd) {
  // An endless attribute must not be gathered without bound.
  class Endless : public BlockReader {
   public:
    std::span<char> next() override {
      std::fill(block_.begin(), block_.end(), 'x');
      if (first_) std::copy_n("<a b=\"", 6, block_.begin() + kHeadroom);
      first_ = false;
      return {block_.data() + kHeadroom, block_.size() - kHeadroom - kTailroom};
    }

   private:
    bool first_ = true;
    std::vector<char> block_ = std::vector<char>(kHeadroom + (1 << 20) + kTailroom);
  };
  Endless reader;
  XmlScanner scanner(reader, "part.xml");
  EXPECT_THROW(scanner.next(), FileError);
}

TEST(XmlScanner, KeepsAndSkipsElements) {
  constexpr std::string_view kElement =
      "<x:ext uri=\"{1}\"><!-- c --><y> 1&amp;<![CDATA[<]]></y><?p i?><z/>\r\n</x:ext >";
  const std::string xml = "<a>1" + std::string(kElement) + "2<b/>3<c>4<d>5</d>6</c></a>";
  for (const auto block_size : kBlockSizes) {
    SCOPED_TRACE(block_size);
    MemoryReader reader(xml, block_size);
    XmlScanner scanner(reader, "part.xml");
    std::string kept;
    std::string text;
    std::string rest;
    while (scanner.next() != Token::Finish) {
      if (scanner.token() == Token::Text) rest += scanner.raw_text();
      if (scanner.token() != Token::Start) continue;
      if (scanner.name() == "x:ext" || scanner.name() == "b") scanner.append_element(kept);
      if (scanner.name() == "c") scanner.append_text(text);
    }
    EXPECT_EQ(kept, std::string(kElement) + "<b/>");
    EXPECT_EQ(text, "46");
    EXPECT_EQ(rest, "123");
  }
}

TEST(XmlScanner, KnowsWhatTheRootDeclares) {
  constexpr std::string_view kXml =
      "<x:worksheet xmlns:x='http://purl.oclc.org/ooxml/spreadsheetml/main' "
      "xmlns:r=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships\" "
      "xmlns:o=\"urn:other\"><x:drawing id=\"1\" r:id=\"rId2\"/></x:worksheet>";
  MemoryReader reader(kXml, 10);
  XmlScanner scanner(reader, "part.xml");
  scanner.next();
  EXPECT_EQ(scanner.root_tag(), kXml.substr(0, kXml.find('>') + 1));
  EXPECT_EQ(scanner.root_family("x"), Family::Main);
  EXPECT_EQ(scanner.root_family("r"), Family::Relationships);
  EXPECT_EQ(scanner.root_family("o"), Family::Unknown);
  EXPECT_EQ(scanner.root_family(""), Family::None);
  EXPECT_EQ(scanner.name(), "worksheet");
  scanner.next();
  EXPECT_EQ(scanner.attributes().find("id"), "1");
  EXPECT_EQ(scanner.attributes().find_prefixed("id"), "rId2");
  EXPECT_EQ(scanner.attributes().find("none").data(), nullptr);
}

// What a caller recognises by itself and what it leaves to the scanner may alternate.
TEST(XmlScanner, LetsTheCallerReadAhead) {
  constexpr std::string_view kCell = "<c><v>1</v></c>";
  std::string xml = "<row>";
  for (int i = 0; i < 100; ++i) xml += kCell;
  xml += "</row>";
  for (const auto block_size : kBlockSizes) {
    MemoryReader reader(xml, block_size);
    XmlScanner scanner(reader, "part.xml");
    int cells = 0;
    for (scanner.next(); scanner.token() != Token::Finish; scanner.next()) {
      if (scanner.token() == Token::Start && scanner.name() == "c") ++cells;
      while (scanner.ahead().starts_with(kCell)) {
        scanner.consume(kCell.size());
        ++cells;
      }
    }
    EXPECT_EQ(cells, 100) << block_size;
  }
}

}  // namespace
}  // namespace engine::package
