#include "engine/xlsx/escapes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/xlsx/packages.h"

namespace engine::xlsx {
namespace {

struct Case {
  std::string text;
  std::string escaped;
};

TEST(Escapes, GoThereAndBack) {
  const Case kCases[] = {
      {"plain _ x_ _x _x00 Größe", "plain _ x_ _x _x00 Größe"},
      {"a\tb\nc", "a\tb\nc"},
      {"a\rb\x01", "a_x000D_b_x0001_"},
      {"_x0041_", "_x005F_x0041_"},
      {"__x00e9__", "__x005F_x00e9__"},
      {"_x005F_x0041_", "_x005F_x005F_x005F_x0041_"},
      {"\xEF\xBF\xBF|\xEF\xBF\xBD", "_xFFFF_|\xEF\xBF\xBD"},
      {"_x0000_", "_x0000_"},
      {"__x0000_x0041_", "__x0000_x005F_x0041_"},
      {"_x005F_x0000_", "_x005F_x005F_x0000_"},
  };
  for (const auto& [text, escaped] : kCases) {
    SCOPED_TRACE(escaped);
    EXPECT_EQ(escape(text), escaped);
    EXPECT_EQ(unescape(escaped), text);
  }
}

// Both layers in one pass, wherever in a long text the character stands.
TEST(Escapes, AreWrittenWithThoseOfXml) {
  constexpr std::pair<const char*, const char*> kCases[] = {
      {"&", "&amp;"},
      {"<>", "&lt;&gt;"},
      {"\r", "_x000D_"},
      {"\t\n\"'", "\t\n\"'"},
      {"_", "_"},
      {"_x0041_", "_x005F_x0041_"},
      {"\xEF\xBF\xBF", "_xFFFF_"},
      {"\uFF0C", "\uFF0C"},
      {"\x01&", "_x0001_&amp;"},
  };
  for (const auto& [text, written] : kCases) {
    for (std::size_t before = 0; before < 70; ++before) {
      for (const std::size_t behind : {0, 40}) {
        std::string out = ">";
        append_text(out, std::string(before, 'a') + text + std::string(behind, 'z'));
        EXPECT_EQ(out, ">" + std::string(before, 'a') + written + std::string(behind, 'z'));
      }
    }
  }
}

// Wherever in a text of whatever length the character stands.
TEST(Escapes, PlainTextHasNoneOfWhatMayBeWrittenInAnotherWay) {
  for (std::size_t size = 0; size < 70; ++size) {
    EXPECT_TRUE(is_plain_text(std::string(size, 'a'))) << size;
    for (std::size_t at = 0; at < size; ++at) {
      for (const char special : {'&', '<', '>', '_', '\r', '\x01', '\xEF'}) {
        std::string text(size, 'a');
        text[at] = special;
        EXPECT_FALSE(is_plain_text(text)) << at << " of " << size << ": " << special;
      }
    }
  }
}

TEST(Escapes, ReadWhatOtherProgramsWrite) {
  constexpr std::pair<const char*, const char*> kCases[] = {
      {"_x00e4__X00E4_", "ä_X00E4_"},          // digits in either case, the x in one
      {"_xD83D__xDE00_", "\xF0\x9F\x98\x80"},  // a pair of surrogates
      {"_xD83D_ _xDE00_", "\xEF\xBF\xBD \xEF\xBF\xBD"},
      {"_xD83D__x0041_",
       "\xEF\xBF\xBD"
       "A"},
      {"_x12_x0041_", "_x12A"},
  };
  for (const auto& [escaped, text] : kCases) EXPECT_EQ(unescape(escaped), text) << escaped;
}

// Nothing reads U+0000, so a rewritten sheet must not come to say something else than it did.
TEST(Escapes, OfNoCharacterStayAsTheFileHasThem) {
  PartTexts parts =
      book_of(worksheet(R"(<row r="1"><c r="A1" t="inlineStr"><is><t>a_x0000_</t></is></c>)"
                        R"(<c r="B1" t="str"><f>C1</f><v>b_x0000_</v></c>)"
                        R"(<c r="C1" t="s"><v>0</v></c></row>)"));
  parts["xl/sharedStrings.xml"] = texts_part("<si><t>c_x0000_</t></si>");
  const auto book = load(parts);
  Sheet& sheet = book->read();
  for (const auto& [column, text] :
       {std::pair(0, "\"a_x0000_\""), {1, "=C1: \"b_x0000_\""}, {2, "\"c_x0000_\""}})
    EXPECT_EQ(book->show(0, column), text);
  sheet.change().put_value(5, 5, Value::of_text(book->workbook.strings.add("d_x0000_")),
                           std::nullopt);
  const PartTexts saved = unzip(book->save());
  EXPECT_THAT(saved.at("xl/worksheets/sheet1.xml"), testing::HasSubstr("<v>b_x0000_</v>"));
  for (const char* text : {"<t>a_x0000_</t>", "<t>c_x0000_</t>", "<t>d_x0000_</t>"})
    EXPECT_THAT(saved.at("xl/sharedStrings.xml"), testing::HasSubstr(text));
}

}  // namespace
}  // namespace engine::xlsx
