#include "devhost/fm/values.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <string>
#include <vector>

#include "devhost/fm/number_text.h"
#include "devhost/fm/unicode.h"

namespace devhost {
namespace {

TEST(Numbers, BecomeText) {
  struct Case {
    double number;
    const char16_t* text;
  };
  const Case kCases[] = {
      {0, u"0"},
      {-0.0, u"0"},
      {1, u"1"},
      {-5, u"-5"},
      {0.5, u".5"},
      {-0.25, u"-.25"},
      {0.1 + 0.2, u".3"},
      {12.5, u"12.5"},
      {1.0 / 3, u".3333333333333333"},
      {2.0 / 3, u".6666666666666666"},
      {200.0 / 3, u"66.66666666666667"},
      {9007199254740992.0, u"9007199254740992"},
      {9007199254740991.0, u"9007199254740991"},
      {1e20, u"100000000000000000000"},
      {1.5e17, u"150000000000000000"},
      {1e-5, u".00001"},
      {1.25e-10, u".000000000125"},
      {123456789.125, u"123456789.125"},
      {9999999999999.99, u"9999999999999.99"},
      {std::numeric_limits<double>::infinity(), u"?"},
  };
  for (const auto& [number, text] : kCases) {
    SCOPED_TRACE(number);
    EXPECT_EQ(text_from_number(number), text);
  }
}

TEST(Numbers, AreReadFromText) {
  struct Case {
    const char16_t* text;
    double number;
  };
  const Case kCases[] = {
      {u"", 0},
      {u"12", 12},
      {u"-12.5", -12.5},
      {u".5", .5},
      {u"-.25", -.25},
      {u"5.", 5},
      {u"1,234.5", 1234.5},
      {u"EUR -1 234.50 net", -1234.5},
      {u"1.2.3", 1.23},
      {u"3-4", 34},
      {u"none", 0},
      {u"-", 0},
      {u".", 0},
      {u"9007199254740993", 9007199254740992},
  };
  for (const auto& [text, number] : kCases) {
    SCOPED_TRACE(utf8_from_utf16(text));
    EXPECT_EQ(number_from_text(text), number);
  }
  EXPECT_EQ(number_from_text(std::u16string(400, u'9')), std::numeric_limits<double>::infinity());
  EXPECT_EQ(number_from_text(u"." + std::u16string(400, u'0') + u"1"), 0);
}

TEST(Numbers, SurviveTheirWayThroughTheHost) {
  for (const double number : {0.1, 2.675, 123456789012.125, 99999999999999.9, 9007199254740991.0,
                              -9007199254740992.0, 1.1e-300, 65535.0, 1e300, 123456.7890625}) {
    SCOPED_TRACE(number);
    const fmx::FixPtUniquePtr host_number(0, 16);
    host_number->AssignDouble(number);
    EXPECT_EQ(host_number->AsFloat(), number);
  }
  const fmx::FixPtUniquePtr sum(7, 16);
  EXPECT_EQ(sum->AsFloat(), 7);
  sum->AssignDouble(0.1 + 0.2);
  EXPECT_EQ(sum->AsFloat(), 0.3);
  EXPECT_THROW(sum->AssignDouble(std::numeric_limits<double>::quiet_NaN()), std::exception);
}

TEST(Numbers, BecomeIntegersWithoutTheirFraction) {
  struct Case {
    double number;
    std::int32_t integer;
  };
  constexpr Case kCases[] = {
      {2.9, 2},
      {-2.9, -2},
      {2147483647.5, 2147483647},
      {1e12, 2147483647},
      {-1e12, std::numeric_limits<std::int32_t>::min()},
  };
  for (const auto& [number, integer] : kCases) {
    SCOPED_TRACE(number);
    EXPECT_EQ(NumberObject(number).AsLong(), integer);
  }
}

TEST(Parameters, AreConvertedToWhatIsAskedFor) {
  ValueList list;
  list.values = {Value(2.5), Value(u"12 kg"), Value(u""), Value(std::u16string(400, u'9'))};
  EXPECT_EQ(list.Size(), 4U);
  EXPECT_EQ(static_cast<const TextObject&>(list.AtAsText(0)).units, u"2.5");
  EXPECT_EQ(list.AtAsNumber(1).AsLong(), 12);
  EXPECT_TRUE(list.AtAsBoolean(1));
  EXPECT_FALSE(list.AtAsBoolean(2));
  EXPECT_EQ(list.AtAsBinaryData(1).GetCount(), 0);
  EXPECT_THROW(list.AtAsNumber(3), std::exception);
  EXPECT_THROW(list.AtAsNumber(4), std::exception);
  EXPECT_THROW(list.AtAsText(4), std::exception);
  EXPECT_THROW(list.AtAsBoolean(4), std::exception);
  EXPECT_THROW(list.AtAsBinaryData(4), std::exception);
}

TEST(Texts, AreAssignedInEveryForm) {
  const fmx::TextUniquePtr text;
  const auto units = [&] { return static_cast<const TextObject&>(*text).units; };
  text->Assign("Grüße 😀", fmx::Text::kEncoding_UTF8);
  EXPECT_EQ(units(), u"Grüße 😀");
  text->Assign("a\xFFz", fmx::Text::kEncoding_Native);
  EXPECT_EQ(units(), u"a\uFFFDz");
  // A pair arrives whole or as two elements.
  text->AssignWide(L"\U0001F600");
  EXPECT_EQ(units(), u"😀");
  const wchar_t halves[] = {0xD83D, 0xDE00, 0};
  text->AssignWide(halves);
  EXPECT_EQ(units(), u"😀");
  const std::uint16_t plain[] = {'a', 'b', 0, 'c'};
  text->AssignUnicode(plain);
  EXPECT_EQ(units(), u"ab");
}

TEST(Texts, AreCutIntoRanges) {
  const TextObject whole(u"name ( a ) | text");
  const fmx::TextUniquePtr text;
  text->SetText(whole, 5);
  EXPECT_EQ(static_cast<const TextObject&>(*text).units, u"( a ) | text");
  text->DeleteText(6);
  EXPECT_EQ(static_cast<const TextObject&>(*text).units, u"( a ) ");
  text->DeleteText(0, 2);
  EXPECT_EQ(static_cast<const TextObject&>(*text).units, u"a ) ");
  EXPECT_EQ(whole.Find(TextObject(u" ("), 0), 4U);
  EXPECT_EQ(whole.Find(TextObject(u" ("), 5), fmx::Text::kSize_Invalid);
  EXPECT_THROW(text->DeleteText(5, 1), std::exception);
  std::uint16_t units[4] = {};
  whole.GetUnicode(units, 1, 3);
  EXPECT_EQ(std::u16string(units, units + 3), u"ame");
  EXPECT_THROW(whole.GetUnicode(units, 15, 3), std::exception);
}

// Only whole characters and their closing zero are written.
TEST(Texts, FillBuffersWithWholeCharacters) {
  struct Case {
    const char16_t* text;
    std::uint32_t buffer_size;
    const char* bytes;
  };
  constexpr Case kCases[] = {
      {u"abc", 8, "abc"},  {u"abc", 3, "ab"},  {u"Grüße", 8, "Grüße"},
      {u"Grüße", 4, "Gr"}, {u"日本", 5, "日"}, {u"日本", 7, "日本"},
      {u"a😀", 5, "a"},     {u"a😀", 6, "a😀"},   {u"a", 1, ""},
  };
  for (const auto& [text, buffer_size, bytes] : kCases) {
    SCOPED_TRACE(bytes);
    std::vector<char> buffer(buffer_size);
    TextObject(text).GetBytes(buffer.data(), buffer_size, 0, fmx::Text::kSize_End,
                              fmx::Text::kEncoding_UTF8);
    EXPECT_STREQ(buffer.data(), bytes);
  }
}

TEST(ContainerObjects, HoldStreamsByTypeAndPlace) {
  const fmx::BinaryDataUniquePtr original;
  original->AddFNAMData(TextObject(u"ß.png"));
  original->AddSIZEData(258, -1);
  const fmx::QuadCharUniquePtr png('P', 'N', 'G', 'f');
  original->Add(*png, 4, "data");
  const fmx::BinaryDataUniquePtr copy(original.get());
  ASSERT_EQ(copy->GetCount(), 3);
  EXPECT_EQ(copy->GetIndex(*png), 2U);
  EXPECT_EQ(copy->GetIndex(QuadCharObject({'F', 'I', 'L', 'E'})), fmx::BinaryData::kNoStream);
  EXPECT_EQ(copy->GetSize(0), 6U);
  QuadCharObject type;
  copy->GetType(1, type);
  EXPECT_EQ(type[0], 'S');
  std::array<unsigned char, 4> size = {};
  copy->GetData(1, 0, 4, size.data());
  EXPECT_EQ(size, (std::array<unsigned char, 4>{1, 2, 0xFF, 0xFF}));
  EXPECT_THROW(copy->GetData(2, 2, 3, size.data()), std::exception);
  EXPECT_THROW(copy->GetSize(3), std::exception);
  EXPECT_THROW(type[4], std::exception);
}

}  // namespace
}  // namespace devhost
