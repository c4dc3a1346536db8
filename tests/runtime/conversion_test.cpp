#include <gtest/gtest.h>

#include <limits>

#include "runtime/containers.h"
#include "tests/support/calls.h"

namespace {

using calls::container;
using calls::narrow;
using calls::parameters;

std::string as_string(const std::vector<char>& bytes) { return {bytes.begin(), bytes.end()}; }

TEST(Parameters, OmittedOnesTakeTheDefault) {
  const auto params = parameters({1});
  EXPECT_EQ(ParameterAsLong(params, 1, 129), 129);
  EXPECT_EQ(ParameterAsLong(params, 1, static_cast<unsigned long>(-1)), -1);
  EXPECT_TRUE(ParameterAsBoolean(params, 1, true));
  EXPECT_EQ(ParameterAsDouble(params, 1, 0.5), 0.5);
  EXPECT_EQ(ParameterAsUTF8String(params, 1, "Unknown.xls"), "Unknown.xls");
  EXPECT_EQ(ParameterAsWideString(params, 1), L"");
  EXPECT_TRUE(ParameterAsVectorChar(params, 1).empty());
}

TEST(Parameters, NumbersComeAsTheHostConvertsThem) {
  const auto params = parameters({-7, 2.75, 0, u"3 apples", u""});
  EXPECT_EQ(ParameterAsLong(params, 0, 5), -7);
  EXPECT_EQ(ParameterAsDouble(params, 1, 5), 2.75);
  EXPECT_FALSE(ParameterAsBoolean(params, 2, true));
  EXPECT_EQ(ParameterAsLong(params, 3, 5), 3);
}

TEST(Parameters, TextsComeUnitByUnit) {
  struct Case {
    const char16_t* text;
    std::wstring wide;
    std::string utf8;
  };
  const Case kCases[] = {
      {u"", L"", ""},
      {u"Gr\u00fc\u00dfe", L"Gr\u00fc\u00dfe", "Gr\xc3\xbc\xc3\x9f\x65"},
      {u"a\U0001F600", {L'a', wchar_t{0xd83d}, wchar_t{0xde00}}, "a\xf0\x9f\x98\x80"},
  };
  for (const auto& [text, wide, utf8] : kCases) {
    SCOPED_TRACE(utf8);
    const auto params = parameters({text});
    EXPECT_EQ(ParameterAsWideString(params, 0), wide);
    EXPECT_EQ(ParameterAsUTF8String(params, 0, ""), utf8);
  }
}

TEST(Parameters, TextsEndAtTheirFirstZero) {
  devhost::ValueList params;
  params.values.emplace_back(std::u16string(u"ab\0cd", 5));
  EXPECT_EQ(ParameterAsWideString(params, 0), L"ab");
  EXPECT_EQ(ParameterAsUTF8String(params, 0, ""), "ab");
}

// Two bytes are set aside for a unit, so 400 of the 600 bytes fit, cut between characters.
TEST(Parameters, TextsOfThreeByteCharactersAreCut) {
  devhost::ValueList params;
  params.values.emplace_back(std::u16string(200, u'\u8868'));
  const std::string cut = ParameterAsUTF8String(params, 0, "");
  EXPECT_EQ(cut.size(), 399);
  EXPECT_EQ(cut.substr(396), "\xe8\xa1\xa8");
  EXPECT_EQ(ParameterAsWideString(params, 0).size(), 200);
}

TEST(Parameters, BytesComeFromTheStreamOrTheText) {
  struct Case {
    const char* name;
    calls::Argument argument;
    std::string bytes;
    short last_error;
  };
  const Case kCases[] = {
      {"text", u"\u00fc", "\xc3\xbc", 0},
      {"number", 12, "12", 0},
      {"empty", u"", "", 0},
      {"file", container({{"FNAM", "n"}, {"FILE", std::string("a\0b", 3)}}), std::string("a\0b", 3),
       0},
      {"attributes only", container({{"FNAM", "n"}, {"SIZE", "1234"}}), "", 10},
  };
  for (const Case& each : kCases) {
    SCOPED_TRACE(each.name);
    NoError();
    EXPECT_EQ(as_string(ParameterAsVectorChar(parameters({each.argument}), 0)), each.bytes);
    EXPECT_EQ(g_last_error, each.last_error);
  }
}

TEST(Results, AreStoredInTheHostsForm) {
  devhost::Value result;
  SetResult(0.1, result);
  EXPECT_TRUE(result.is_number());
  EXPECT_EQ(result.number().value, 0.1);
  SetResult(std::string("\xc3\xbc"), result);
  EXPECT_FALSE(result.is_number());
  EXPECT_EQ(result.units(), u"\u00fc");
  SetResult(std::make_unique<std::string>("owned"), result);
  EXPECT_EQ(narrow(result.units()), "owned");
  SetResult(std::wstring{L'a', wchar_t{0xd83d}, wchar_t{0xde00}}, result);
  EXPECT_EQ(result.units(), u"a\U0001F600");
  EXPECT_EQ(TextConstantFunction(std::wstring(L"w"), result), 0);
  EXPECT_EQ(narrow(result.units()), "w");
}

TEST(Results, BytesAsTextEndAtTheFirstZeroAndGrowByOne) {
  devhost::Value result;
  std::vector<char> bytes = {'a', 'b', '\0', 'c', 'd'};
  SetResult(bytes, result);
  EXPECT_EQ(narrow(result.units()), "ab");
  EXPECT_EQ(bytes.size(), 6);
}

}  // namespace
