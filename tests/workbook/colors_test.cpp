#include <gtest/gtest.h>

#include "engine/workbook/color.h"

namespace engine {
namespace {

struct SetterCase {
  int number = 0;
  bool rgb_mode = false;
  std::optional<Color> color;
};
const SetterCase kSetterCases[] = {
    {8, false, Color::indexed(8)},
    {0, false, Color::indexed(8)},
    {7, true, Color::indexed(15)},
    {63, false, Color::indexed(63)},
    {64, false, Color::indexed(64)},
    {65, true, Color::indexed(65)},
    {66, false, std::nullopt},
    {80, false, std::nullopt},
    {81, false, Color::indexed(81)},
    {82, true, Color::rgb(82)},
    {32767, false, Color::automatic()},
    {32767, true, Color::automatic()},
    {0xFFFFFF, false, std::nullopt},
    {0xFFFFFF, true, Color::rgb(0xFFFFFF)},
    {0x01000000, false, Color::rgb(0)},
    {0x01123456, true, Color::rgb(0x123456)},
    {0x7FABCDEF, false, Color::rgb(0xABCDEF)},
    {-1, false, Color::rgb(0xFFFFFF)},
    {static_cast<int>(0xFF102030), false, Color::rgb(0x102030)},
};

TEST(Colors, NumbersOfSetters) {
  for (const auto& [number, rgb_mode, color] : kSetterCases) {
    SCOPED_TRACE(testing::Message() << number << (rgb_mode ? " in RGB mode" : ""));
    EXPECT_EQ(color_of_number(number, rgb_mode), color);
  }
}

struct GetterCase {
  Color color;
  int palette_number = 0;
  int rgb_number = 0;
};
const GetterCase kGetterCases[] = {
    {{}, 64, 64},
    {Color::automatic(), 32767, 32767},
    {Color::indexed(2), 10, 0x01FF0000},
    {Color::indexed(10), 10, 0x01FF0000},
    {Color::indexed(18), 18, 0x01000080},
    {Color::indexed(32), 32, 0x01000080},
    {Color::indexed(64), 64, 64},
    {Color::indexed(65), 65, 65},
    {Color::indexed(81), 81, 81},
    {Color::indexed(77), 32767, 32767},
    {Color::indexed(4000000000), 32767, 32767},
    {Color::rgb(0xFF0000), 10, 0x01FF0000},
    {Color::rgb(0xFE0102), 10, 0x01FE0102},
    {Color::rgb(0x000080), 18, 0x01000080},  // the first of two equal entries
    {Color::theme(0, 0), 9, 0x01FFFFFF},
    {Color::theme(1, 0), 8, 0x01000000},
    {Color::theme(10, 0), 12, 0x010000FF},
    {Color::theme(0, -0.5), 23, 0x01808080},
    {Color::theme(12, 0), 32767, 32767},
};

TEST(Colors, NumbersOfGetters) {
  const ColorTable table;
  for (const auto& [color, palette_number, rgb] : kGetterCases) {
    SCOPED_TRACE(rgb);
    EXPECT_EQ(number_of_color(color, 64, false, table), palette_number);
    EXPECT_EQ(number_of_color(color, 64, true, table), rgb);
  }
}

TEST(Colors, UseTheBooksOwnPalette) {
  ColorTable table;
  table.palette[2] = 0x123456;
  EXPECT_EQ(number_of_color(Color::indexed(10), 64, true, table), rgb_number(0x123456));
  EXPECT_EQ(number_of_color(Color::rgb(0x123457), 64, false, table), 10);
}

// As spreadsheet programs show them; they round more often on the way, so a step is allowed.
TEST(Colors, Tint) {
  struct Case {
    double tint;
    std::uint32_t rgb;
    std::uint32_t result;
  };
  constexpr Case kCases[] = {
      {0, 0x4F81BD, 0x4F81BD},
      {0.5, 0x000000, 0x808080},
      {-0.25, 0xFFFFFF, 0xBFBFBF},
      {1, 0x4F81BD, 0xFFFFFF},
      {-1, 0x4F81BD, 0x000000},
      {0.5, 0xFF0000, 0xFF8080},
      {-0.5, 0x00FF00, 0x008000},
      {0.6, 0x0000FF, 0x9999FF},
      {0.7999816888943144, 0x4F81BD, 0xDCE6F1},
      {0.3999755851924192, 0x4F81BD, 0x95B3D7},
      {-0.249977111117893, 0x4F81BD, 0x366092},
      {0.5999938962981048, 0xF79646, 0xFCD5B4},
      {0.7999816888943144, 0xC0504D, 0xF2DCDB},
      {-0.249977111117893, 0xC0504D, 0x963634},
      {0.7999816888943144, 0x9BBB59, 0xEBF1DE},
      {-0.499984740745262, 0x9BBB59, 0x4F6228},
      {7, 0x1F497D, 0xFFFFFF},
  };
  for (const auto& [tint, rgb, result] : kCases) {
    const std::uint32_t made = tinted(rgb, tint);
    SCOPED_TRACE(testing::Message() << std::hex << rgb << " by " << tint << " is " << made);
    for (const int shift : {0, 8, 16}) EXPECT_NEAR(made >> shift & 0xFF, result >> shift & 0xFF, 1);
  }
}

}  // namespace
}  // namespace engine
