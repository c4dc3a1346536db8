#include "engine/text/number_text.h"

#include <gtest/gtest.h>

#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

namespace engine::package {
namespace {

std::string text_of(double value) {
  std::string text;
  append_number(text, value);
  return text;
}

TEST(NumberText, IsTheShortestThatReadsBack) {
  constexpr struct {
    double value;
    const char* text;
  } kCases[] = {
      {0, "0"},
      {-0.0, "0"},
      {12, "12"},
      {-0.5, "-0.5"},
      {100000, "100000"},
      {0.1, "0.1"},
      {0.3, "0.3"},
      {0.1 + 0.2, "0.30000000000000004"},
      {0.000001, "0.000001"},
      {1.5e-7, "1.5E-07"},
      {1e20, "1E+20"},
      {999999999.999999, "999999999.999999"},
      {123456789012345678.0, "123456789012345680"},
      {1.0 / 3, "0.3333333333333333"},
      {5e-324, "5E-324"},
      {-1.7976931348623157e308, "-1.7976931348623157E+308"},
  };
  for (const auto& [value, text] : kCases) EXPECT_EQ(text_of(value), text);
}

// The fast way must agree with the standard library's shortest digits.
TEST(NumberText, ReadsBackAndIsNeverLonger) {
  std::mt19937_64 random(7);
  for (int i = 0; i < 300000; ++i) {
    const auto bits = random();
    double value = 0;
    std::memcpy(&value, &bits, sizeof value);
    if (i % 3 == 1) value = static_cast<double>(bits % 1000000007) / 1000000;
    if (i % 3 == 2) value = static_cast<double>(bits % 4294967296) / 7;
    if (!std::isfinite(value)) continue;
    const auto text = text_of(value);
    std::array<char, 400> fixed{};
    const auto end =
        std::to_chars(fixed.data(), fixed.data() + fixed.size(), value, std::chars_format::fixed);
    ASSERT_EQ(parse_number(text), value) << text;
    ASSERT_LE(text.size(), static_cast<std::size_t>(end.ptr - fixed.data())) << text;
  }
}

TEST(NumberText, IsParsed) {
  const struct {
    const char* text = nullptr;
    std::optional<double> value;
  } cases[] = {
      {"12", 12},
      {" +12.50\t", 12.5},
      {"-.5", -0.5},
      {"5.", 5},
      {"1E+20", 1e20},
      {"1.5e-07", 1.5e-7},
      {"123456789012345678901234567890", 123456789012345678901234567890.0},
      {"0.30000000000000004", 0.1 + 0.2},
      {"1e-400", 0},
      {"1e400", {}},
      {"-1e400", {}},
      {"", {}},
      {" ", {}},
      {"-", {}},
      {".", {}},
      {"+-1", {}},
      {"1 2", {}},
      {"12x", {}},
      {"inf", {}},
      {"nan", {}},
      {"0x10", {}},
      {"1,5", {}},
      {"1e", {}},
  };
  for (const auto& [text, value] : cases) EXPECT_EQ(parse_number(text), value) << text;
}

}  // namespace
}  // namespace engine::package
