#include "engine/workbook/styles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

namespace engine {
namespace {

TEST(Styles, NumberFormatsHaveOneIdEach) {
  Styles styles;
  EXPECT_EQ(styles.add_number_format("0.000"), 164U);
  EXPECT_EQ(styles.add_number_format("yyyy"), 165U);
  EXPECT_EQ(styles.add_number_format("0.000"), 164U);
  EXPECT_EQ(styles.add_number_format("0.00"), 166U);  // built in, but what is built in may change
  EXPECT_EQ(styles.code_of(165), "yyyy");
  EXPECT_EQ(styles.code_of(2), "0.00");
  EXPECT_EQ(styles.code_of(30), "");
  EXPECT_TRUE(styles.is_number_format(49) && styles.is_number_format(166));
  EXPECT_FALSE(styles.is_number_format(50) || styles.is_number_format(167));
}

TEST(Styles, NumberFormatsFollowThoseOfTheFile) {
  Styles styles;
  styles.begin_file_entries();
  styles.define_number_format(14, "0.0");
  styles.define_number_format(200, "twice");
  styles.define_number_format(200, "d");
  styles.define_number_format(170, "0");
  styles.end_of_file_entries();
  EXPECT_FALSE(styles.changed());
  EXPECT_EQ(styles.add_number_format("0"), 170U);
  EXPECT_EQ(styles.add_number_format("0.0"), 201U);
  EXPECT_EQ(styles.add_number_format("d"), 200U);
  EXPECT_EQ(styles.code_of(14), "0.0");

  styles.limits.last_number_format = 201;
  EXPECT_EQ(styles.add_number_format("m"), 164U);  // the first gap
  EXPECT_EQ(styles.add_number_format("twice"), 165U);
  styles.limits.number_formats = 5;
  EXPECT_EQ(styles.add_number_format("s"), std::nullopt);
}

TEST(Styles, DatesByNumberCodeAndValue) {
  Styles styles;
  const auto is_date = [&](std::uint32_t number, double value) {
    styles.change_format(0, kFormatNumber).number_format = number;
    return styles.is_date(0, value);
  };
  EXPECT_TRUE(is_date(14, 1));
  EXPECT_FALSE(is_date(2, 1));
  EXPECT_TRUE(is_date(30, 1));
  EXPECT_TRUE(is_date(*styles.add_number_format("[h]:mm"), 1));
  const std::uint32_t mixed = *styles.add_number_format("0;yyyy");
  EXPECT_FALSE(is_date(mixed, 1));
  EXPECT_TRUE(is_date(mixed, -1));
  EXPECT_FALSE(styles.is_date(0));
  styles.define_number_format(14, "0.00");
  EXPECT_FALSE(is_date(14, 1));
  EXPECT_FALSE(is_date(9999, 1));
}

TEST(Styles, CopiesOfAnotherBookBringWhatTheyNeed) {
  Styles from;
  from.colors.palette[0] = 0x111111;
  from.change_font(0, kFontColor).color = Color::indexed(8);
  from.add_number_format("first");
  from.change_format(0, kFormatNumber).number_format = *from.add_number_format("second");
  from.set_fill(0, {1, Color::indexed(8), Color::indexed(64), 5});
  Border border;
  border.left = {1, Color::theme(4, 0.5)};
  from.set_border(0, border);

  Styles to;
  const std::uint32_t added = *to.add_format(from, 0);
  const FormatRecord& copy = to.format(added);
  EXPECT_EQ(copy.font, 1U);
  EXPECT_EQ(to.font(1).color, Color::rgb(0x111111));
  EXPECT_EQ(to.code_of(copy.number_format), "second");
  EXPECT_EQ(copy.number_format, 164U);
  EXPECT_EQ(to.fill_of(added), (Fill{1, Color::rgb(0x111111), Color::indexed(64), 0}));
  EXPECT_EQ(to.border_of(added).left.color, Color::rgb(rgb_of(Color::theme(4, 0.5), from.colors)));
}

// Equal looks are one, a look that nothing has any more leaves its place, and none changes under
// another format that has it.
TEST(Styles, FormatsShareTheirLooks) {
  Styles styles;
  const auto filled = [](std::uint32_t rgb) { return Fill{1, Color::rgb(rgb), {}, 0}; };
  const std::uint32_t first = *styles.add_format();
  styles.set_fill(first, filled(1));
  const std::uint32_t copy = *styles.add_format(first);
  const std::uint32_t other = *styles.add_format();
  styles.set_fill(other, filled(2));
  EXPECT_NE(styles.format(other).fill, styles.format(first).fill);
  styles.set_fill(other, styles.fill_of(first));
  EXPECT_EQ(styles.format(other).fill, styles.format(first).fill);

  std::uint32_t highest = 0;
  for (std::uint32_t rgb = 3; rgb < 1000; ++rgb) {
    styles.set_fill(first, filled(rgb));
    highest = std::max(highest, styles.format(first).fill);
  }
  EXPECT_LT(highest, 5U);
  EXPECT_EQ(styles.fill_of(copy), filled(1));
  EXPECT_EQ(styles.fill_of(other), filled(1));
  styles.set_fill(first, {});
  EXPECT_EQ(styles.format(first).fill, 0U);
  // A negative zero is no other tint.
  Border border;
  border.top = {1, Color::theme(1, 0.0)};
  styles.set_border(first, border);
  border.top.color.tint = -0.0;
  styles.set_border(copy, border);
  EXPECT_EQ(styles.format(first).border, styles.format(copy).border);
}

TEST(Styles, FullListsAddNothing) {
  Styles styles;
  while (styles.format_count() < styles.limits.formats) ASSERT_TRUE(styles.add_format());
  EXPECT_EQ(styles.add_format(), std::nullopt);
  EXPECT_EQ(styles.add_format(0), std::nullopt);
  while (styles.font_count() < styles.limits.fonts) ASSERT_TRUE(styles.add_font());
  EXPECT_EQ(styles.add_font(), std::nullopt);
  EXPECT_EQ(styles.format_count(), styles.limits.formats);
}

TEST(Styles, FontsBeyondTheirListAreTheFirst) {
  Styles styles;
  styles.begin_file_entries();
  FormatRecord format;
  format.font = 7;
  styles.append_format(format, {}, {});
  styles.end_of_file_entries();
  EXPECT_EQ(styles.font_of(0), 0U);
  EXPECT_EQ(styles.font_count(), 1U);
  EXPECT_EQ(styles.fonts_from_file(), 0U);
  EXPECT_EQ(styles.formats_from_file(), 1U);
  EXPECT_EQ(styles.format(99).font, 0U);
}

}  // namespace
}  // namespace engine
