#include <gtest/gtest.h>

#include <iterator>
#include <string>
#include <utility>

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
// What is no character; where no element is that large, half of one.
constexpr bool kShortElements = sizeof(wchar_t) == 2;
constexpr wchar_t kBeyond[] = {static_cast<wchar_t>(kShortElements ? 0xDC00 : 0x110000), 0};
constexpr wchar_t kNegative[] = {static_cast<wchar_t>(kShortElements ? 0xDFFE : -1), 0};

constexpr Conversion kConversions[] = {
    {L"Grüße 数据", "Grüße 数据", L"Grüße 数据"},
    {L"\xD83D\xDE00", "😀", L"\xD83D\xDE00"},  // a surrogate each
    {L"\U0001F600", "😀", L"\xD83D\xDE00"},    // one element where it has room
    {L"a\xD83D", "a\uFFFD", L"a\xFFFD"},      // a high surrogate alone
    {L"\xDE00\xD83D"
     L"b",
     "\uFFFD\uFFFD"
     "b",
     L"\xFFFD\xFFFD"
     L"b"},                          // in the wrong order
    {kBeyond, "\uFFFD", L"\xFFFD"},  // beyond all characters
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

// Texts are taken in blocks as long as they are ASCII.
TEST(Text, PassesWhereverTheFirstCharacterBeyondAsciiStands) {
  std::string ascii;
  for (char next = '0'; next < '0' + 40; ascii += next++)
    for (const auto& [wide_end, utf8_end] :
         {std::pair(L"", ""), std::pair(L"\xE4\x20AC\xD83D\xDE00\x7F z", "ä€😀\x7F z")}) {
      const std::wstring wide = std::wstring(ascii.begin(), ascii.end()) + wide_end;
      EXPECT_EQ(to_utf8(wide.c_str()), ascii + utf8_end);
      EXPECT_EQ(to_wide(ascii + utf8_end), wide);
    }
}

// Characters of all lengths are narrowed together: each stands beside each other in every place.
TEST(Text, NarrowsEveryMixtureOfCharacters) {
  struct Piece {
    std::wstring wide;
    const char* utf8;
  };
  const Piece pieces[] = {
      {L"\x7F", "\x7F"},
      {L"\x80", "\xC2\x80"},
      {L"\x7FF", "\xDF\xBF"},
      {L"\x800", "\xE0\xA0\x80"},
      {L"\xD7FF", "\xED\x9F\xBF"},
      {L"\xE000", "\xEE\x80\x80"},
      {L"\xFFFF", "\xEF\xBF\xBF"},
      {L"\xD800\xDC00", "\xF0\x90\x80\x80"},
      {L"\U0010FFFF", "\xF4\x8F\xBF\xBF"},
      {L"\xDFFF", "\uFFFD"},
      {kBeyond, "\uFFFD"},
      {kNegative, "\uFFFD"},
  };
  for (const Piece& first : pieces)
    for (const Piece& second : pieces)
      for (const Piece& third : pieces) {
        std::wstring wide;
        std::string utf8;
        for (int i = 0; i < 7; ++i)
          for (const Piece* piece : {&first, &second, &third}) {
            wide += piece->wide;
            utf8 += piece->utf8;
          }
        ASSERT_EQ(to_utf8(wide.c_str()), utf8);
      }
}

// The two ways of reading UTF-8 agree on every sequence of up to four bytes that matters: each lead
// with continuations at and beside their bounds.
TEST(Text, TellsUtf8FromOtherBytes) {
  constexpr unsigned char kFollowing[] = {0x00, 0x7F, 0x80, 0x8F, 0x90,
                                          0x9F, 0xA0, 0xBF, 0xC0, 0xFF};
  int valid = 0;
  for (int lead = 0; lead < 256; ++lead)
    for (const unsigned char second : kFollowing)
      for (const unsigned char third : kFollowing)
        for (const unsigned char fourth : kFollowing) {
          const unsigned char bytes[] = {static_cast<unsigned char>(lead), second, third, fourth};
          const std::string text(std::begin(bytes), std::end(bytes));
          std::size_t at = 0;
          std::uint32_t code = 0;
          std::size_t size = 1;
          for (; at < text.size() && size != 0; at += size)
            size = engine::decode_utf8(text.data() + at, text.data() + text.size(), code);
          ASSERT_EQ(engine::is_utf8(text), size != 0)
              << lead << " " << int{second} << " " << int{third};
          ASSERT_EQ(engine::is_utf8("12345678" + text + "12345678"), size != 0);
          if (size != 0) ++valid;
        }
  EXPECT_EQ(valid, 3688);  // as a decoder of another making counts them
}

TEST(Text, ReplacesBytesThatAreNotUtf8) {
  EXPECT_EQ(to_wide("a\xFF\xC3"), L"a\xFFFD\xFFFD");
  EXPECT_EQ(to_wide("\xED\xA0\x80").find(L'\xD800'), std::wstring::npos);
}

// Texts are checked and widened in steps of several bytes; characters of all lengths stand on every
// border of a step here.
TEST(Text, StepsMeetEveryCharacterEverywhere) {
  constexpr const char* kCharacters[] = {"a", "\u00e4", "\u20ac", "\U0001F600"};
  for (std::size_t lead = 0; lead < 20; ++lead)
    for (int mixture = 0; mixture < 256; ++mixture) {
      std::string utf8(lead, 'x');
      for (int i = 0; i < 16; ++i) utf8 += kCharacters[mixture >> (i % 4 * 2) & 3];
      ASSERT_TRUE(engine::is_utf8(utf8)) << utf8;
      const std::wstring wide = to_wide(utf8);
      ASSERT_EQ(wide.size(), engine::utf16_length(utf8)) << utf8;
      ASSERT_EQ(to_utf8(wide.c_str()), utf8);
    }
}

// One character after the other: whether all are UTF-8, and the text with U+FFFD for what is not.
bool is_utf8_by_character(std::string_view text) {
  std::uint32_t code = 0;
  while (!text.empty()) {
    const auto size = engine::decode_utf8(text.data(), text.data() + text.size(), code);
    if (size == 0) return false;
    text.remove_prefix(size);
  }
  return true;
}

std::string repaired(std::string_view text) {
  std::string whole;
  while (!text.empty()) engine::append_utf8(whole, engine::take_character(text));
  return whole;
}

TEST(Text, TellsDamageAtEveryByte) {
  const std::string whole = "plain text, \u00e4\u07ff\u0800\ud7fb\uffff\U00010000\U0010ffff, more";
  for (std::size_t size = 0; size <= whole.size(); ++size)
    for (int byte = 0; byte < 256 && size > 0; ++byte) {
      std::string cut = whole.substr(0, size);
      cut.back() = static_cast<char>(byte);
      for (const std::string& text : {cut, cut + whole.substr(size)}) {
        EXPECT_EQ(engine::is_utf8(text), is_utf8_by_character(text)) << size << " " << byte;
        const std::wstring wide = to_wide(text);
        EXPECT_EQ(wide, to_wide(repaired(text))) << size << " " << byte;
      }
    }
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
