#include <gtest/gtest.h>

#include "engine/text/fold.h"
#include "engine/text/utf8.h"
#include "engine/text/wide.h"

namespace {

using engine::to_utf8;
using engine::to_wide;

struct Conversion {
  const wchar_t* given;
  const char* utf8;
  const wchar_t* given_back;
};
constexpr Conversion kConversions[] = {
    {L"Grüße 数据", "Grüße 数据", L"Grüße 数据"},
    {L"\xD83D\xDE00", "😀", L"\xD83D\xDE00"},  // a surrogate each
    {L"\x1F600", "😀", L"\xD83D\xDE00"},       // one element
    {L"a\xD83D", "a\uFFFD", L"a\xFFFD"},      // a high surrogate alone
    {L"\xDE00\xD83D"
     L"b",
     "\uFFFD\uFFFD"
     "b",
     L"\xFFFD\xFFFD"
     L"b"},                              // in the wrong order
    {L"\x110000", "\uFFFD", L"\xFFFD"},  // beyond all characters
    {L"", "", L""},
    {nullptr, "", L""},
};

TEST(Text, PassesBetweenWideAndUtf8) {
  for (const auto& [given, utf8, given_back] : kConversions) {
    SCOPED_TRACE(utf8);
    EXPECT_EQ(to_utf8(given), utf8);
    EXPECT_EQ(to_wide(utf8), given_back);
    EXPECT_EQ(engine::utf16_length(utf8), to_wide(utf8).size());
  }
}

TEST(Text, ReplacesBytesThatAreNotUtf8) {
  EXPECT_EQ(to_wide("a\xFF\xC3"), L"a\xFFFD\xFFFD");
  EXPECT_EQ(to_wide("\xED\xA0\x80").find(L'\xD800'), std::wstring::npos);
}

TEST(Text, MakesLineFeedsOfAllLineEnds) {
  std::string text = "a\r\nb\rc\nd\r\r\n";
  engine::normalize_line_ends(text);
  EXPECT_EQ(text, "a\nb\nc\nd\n\n");
}

TEST(Text, CutsBetweenCharacters) {
  EXPECT_EQ(engine::first_characters("ab", 64), "ab");
  EXPECT_EQ(engine::first_characters("aüb", 2), "aü");
  EXPECT_EQ(engine::first_characters("😀😀", 1), "😀");
}

struct Names {
  const char* a;
  const char* b;
  bool equal;
};
constexpr Names kNames[] = {
    {"Data", "dATA", true},     {"Straße", "STRAßE", true},
    {"ÄÖÜ", "äöü", true},       {"ΣΑΣ", "σας", true},
    {"данные", "ДАННЫЕ", true}, {"Data", "Data ", false},
    {"İstanbul", "x", false},   {"", "", true},
    {"Sheet", "Sheet1", false}, {"a", "ä", false},
    {"\xC3", "\xC4", false},    {"ı", "i", false},
};

TEST(Text, ComparesNamesIgnoringCase) {
  for (const auto& [a, b, equal] : kNames) {
    SCOPED_TRACE(a);
    EXPECT_EQ(engine::equal_ignoring_case(a, b), equal);
    EXPECT_EQ(engine::fold_case(a) == engine::fold_case(b), equal);
  }
}

}  // namespace
