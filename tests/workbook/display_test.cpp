#include "engine/workbook/display.h"

#include <gtest/gtest.h>

#include <string>

#include "engine/workbook/font_metrics.h"

namespace engine {
namespace {

struct NumberCase {
  double number;
  const char* code;
  const char* shown;
};
constexpr NumberCase kNumberCases[] = {
    {0, "General", "0"},
    {-12.5, "General", "-12.5"},
    {1.0 / 3, "General", "0.333333333"},
    {44927.123456, "General", "44927.12346"},
    {123456789012, "General", "1.23457E+11"},
    {1.5e-7, "General", "1.5E-07"},
    {9.9999999e-5, "", "1E-04"},
    {0.5, "0", "1"},  // halves go away from zero, in decimals and not in what the bits say
    {1234.5, "0", "1235"},
    {2.675, "0.00", "2.68"},
    {-0.4, "0", "0"},
    {123456789012345678.0, "0", "123456789012346000"},
    {1234567.891, "#,##0.00", "1,234,567.89"},
    {12, "0,000", "0,012"},
    {5, ".00", "5.00"},
    {0.5, "#.##", ".5"},
    {5, "?0.0?", " 5.0 "},
    {1234567, "0.0,", "1234.6"},
    {123456789, "#,##0,,", "123"},
    {0.1234, "0.0%", "12.3%"},
    {123456789, "000-00-0000", "123-45-6789"},
    {31.75, "0.00E+00", "3.18E+01"},
    {0.00099999, "0.0E+00", "1.0E-03"},
    {12345678, "##0.0E+0", "12.3E+6"},
    {999960, "##0.0E+0", "1.0E+6"},
    {2.25, "# ?/?", "2 1/4"},
    {3.14159265, "# ?/?", "3 1/7"},
    {3.14159265, "?\?/?\?", "22/7 "},
    {0.3, "# ?/8", " 2/8"},
    {4, "# ?\?/?\?", "4      "},
    {-1234.5, "$#,##0.00;($#,##0.00)", "($1,234.50)"},
    {-3, "0;[Red]-0", "-3"},
    {0, "0;-0;\"none\"", "none"},
    {150, "[>=100]\"big \"0;[<0]\"neg \"0;0.0", "big 150"},
    {-2, "[>=100]\"big \"0;[<0]\"neg \"0;0.0", "neg 2"},
    {7, "[>=100]\"big \"0;[<0]\"neg \"0;0.0", "7.0"},
    {12, "#,##0.00 [$€-407]", "12.00 €"},
    {12, "0 \"pcs\"\\.", "12 pcs."},
    {12, "_-* 0_-", " 12 "},
    {12, ";;;", ""},
    {12, "@", "12"},
    {46347, "yyyy-mm-dd", "2026-11-21"},
    {46347, "dddd, mmmm d, yy", "Saturday, November 21, 26"},
    {46347, "ddd mmm mmmmm", "Sat Nov N"},
    {0, "d.m.yyyy", "0.1.1900"},
    {60, "yyyy-mm-dd", "1900-02-29"},
    {-1, "yyyy-mm-dd", ""},
    {0.75, "h:mm AM/PM", "6:00 PM"},
    {0.75, "h A/P", "6 P"},
    {46347.999999, "yyyy-mm-dd hh:mm:ss", "2026-11-22 00:00:00"},
    {1.5, "[h]:mm:ss", "36:00:00"},
    {0.0105, "[mm]:ss.00", "15:07.20"},
    {0.0105, "m:ss", "15:07"},
    {46347, "m/d", "11/21"},
};

TEST(Display, ShowsNumbersUnderTheirFormat) {
  for (const auto& [number, code, shown] : kNumberCases)
    EXPECT_EQ(display_number(number, code, false), shown) << number << " as " << code;
  EXPECT_EQ(display_number(0, "ddd yyyy-mm-dd", true), "Fri 1904-01-01");
}

TEST(Display, ShowsTextsUnderTheLastSection) {
  EXPECT_EQ(display_text("a", "0.00"), "a");
  EXPECT_EQ(display_text("a", "@ \"(\"@\")\""), "a (a)");
  EXPECT_EQ(display_text("a", "0;-0;0;\"text \"@"), "text a");
  EXPECT_EQ(display_text("a", ";;;"), "");
}

// What LibreOffice measures with the free fonts of the same widths, without its margins.
TEST(Display, LinesAreAsWideAsInTheirFont) {
  FontRecord font;
  const auto expect = [&](const char* name, double size, const char* line, double pixels) {
    font.name = name;
    font.size = size;
    EXPECT_NEAR(text_pixels(line, font), pixels, pixels * 0.05) << name << ' ' << line;
  };
  expect("Calibri", 11, "Description of the goods", 148);
  expect("Calibri", 11, "Müller & Söhne GmbH", 136);
  expect("Arial", 10, "Amount due (EUR)", 112);
  expect("Times New Roman", 12, "support@example.org", 142);
  expect("Courier New", 10, "iiiiWWWW", 64);
  expect("A font that nobody knows", 11, "Description of the goods", 148);
  const double calm = text_pixels("Total", font);
  font.bold = true;
  EXPECT_GT(text_pixels("Total", font), calm);
  EXPECT_NEAR(text_pixels("日本", font), text_pixels("0000", font), 0.01);
  EXPECT_NEAR(text_pixels("o\xCC\x88", font), text_pixels("ö", font), 0.01);  // a mark of its own
}

}  // namespace
}  // namespace engine
