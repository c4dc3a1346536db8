#include "engine/package/xml_text.h"

#include <gtest/gtest.h>

#include "engine/text/utf8.h"

namespace engine::package {
namespace {

TEST(XmlText, EscapesWhatReadersWouldChange) {
  const struct {
    const char* text;
    const char* in_text;
    const char* in_attribute;
  } cases[] = {
      {"", "", ""},
      {"plain", "plain", "plain"},
      {"a<b>&\"'", "a&lt;b&gt;&amp;\"'", "a&lt;b&gt;&amp;&quot;'"},
      {"1\r\n2\t3", "1&#13;\n2\t3", "1&#13;&#10;2&#9;3"},
      {"Größe & Maß", "Größe &amp; Maß", "Größe &amp; Maß"},
  };
  for (const auto& [text, in_text, in_attribute] : cases) {
    std::string escaped;
    append_xml_text(escaped, text);
    EXPECT_EQ(escaped, in_text);
    std::string back;
    EXPECT_TRUE(decode_xml_text(escaped, back));
    EXPECT_EQ(back, text);
    escaped.clear();
    append_xml_attribute(escaped, text);
    EXPECT_EQ(escaped, in_attribute);
    back.clear();
    EXPECT_TRUE(decode_xml_attribute(escaped, back));
    EXPECT_EQ(back, text);
  }
}

// Plain is decided eight bytes at a time, so the odd byte is tried at every place.
TEST(XmlText, FindsTheOddByteAnywhere) {
  for (std::size_t size = 1; size < 40; ++size) {
    const std::string plain(size, 'x');
    EXPECT_TRUE(is_plain_xml(plain));
    for (std::size_t at = 0; at < size; ++at) {
      for (const char odd : {'&', '\r', '\x80', '\xFF'}) {
        auto text = plain;
        text[at] = odd;
        EXPECT_FALSE(is_plain_xml(text)) << size << ' ' << at;
        EXPECT_EQ(is_utf8(text), odd == '&' || odd == '\r');
      }
    }
  }
}

TEST(XmlText, KnowsUtf8) {
  constexpr struct {
    std::string_view text;
    bool valid;
  } kCases[] = {
      {"\x7F", true},
      {"\xC2\x80", true},
      {"\xDF\xBF", true},
      {"\xE0\xA0\x80", true},
      {"\xEF\xBF\xBF", true},
      {"\xF0\x90\x80\x80", true},
      {"\xF4\x8F\xBF\xBF", true},
      {"\x80", false},
      {"\xC1\xBF", false},          // overlong
      {"\xE0\x9F\xBF", false},      // overlong
      {"\xF0\x8F\xBF\xBF", false},  // overlong
      {"\xED\xA0\x80", false},      // surrogate
      {"\xF4\x90\x80\x80", false},  // beyond the last character
      {"\xF8\x88\x80\x80\x80", false},
      {"\xE2\x82", false},
      {"\xE2\x28\xA1", false},
  };
  for (const auto& [text, valid] : kCases) {
    EXPECT_EQ(is_utf8(text), valid);
    EXPECT_EQ(is_utf8("12345678" + std::string(text) + "12345678"), valid);
  }
}

}  // namespace
}  // namespace engine::package
