#include "engine/workbook/number_format.h"

#include <gtest/gtest.h>

#include <string>

namespace engine {
namespace {

struct DateCase {
  const char* code;
  bool is_date;
};
constexpr DateCase kDateCases[] = {
    {"General", false},
    {"GENERAL", false},
    {"0", false},
    {"0.00", false},
    {"#,##0", false},
    {"#,##0.00;[Red]-#,##0.00", false},
    {"0%", false},
    {"0.00E+00", false},
    {"0.00e+00", false},
    {"##0.0E-0", false},
    {"# ?/?", false},
    {"@", false},
    {"", false},
    {";;;", false},
    {"_-* #,##0.00 €", false},
    {R"(_(* #,##0_);_(* \(#,##0\);_(* "-"_);_(@_))", false},
    {"yyyy-mm-dd", true},
    {"YYYY\\-MM\\-DD", true},
    {"yyyy", true},
    {"d", true},
    {"D", true},
    {"m", true},
    {"h", true},
    {"H:MM", true},
    {"s", true},
    {"ss.000", true},
    {"mmm-yy", true},
    {"mmmmm", true},
    {"dddd", true},
    {"h:mm AM/PM", true},
    {"A/P", true},
    {"a/p", true},
    {"am/pm", true},
    {"0 a", false},
    {"0 A/B", false},
    {"yyyy;@", true},
    {"@;yyyy", false},
    {"m/d/yyyy\\ h:mm;@", true},
    // What is quoted, escaped, a blank of a width or a filling stands for itself.
    {"\"y\"", false},
    {"0.0\"s\"", false},
    {"#,##0 \"Std.\"", false},
    {"#,##0 Std", true},
    {"\"days: \"d", true},
    {"\"it\"s", true},
    {"\\d", false},
    {R"(0\d\a\y\s)", false},
    {"\\\\d", true},
    {R"(\"d\")", true},
    {"_d0", false},
    {"_dd", true},
    {"*d0", false},
    {"*\"d", true},
    {"0\\", false},
    {"0_", false},
    {"\\ü0", false},
    {"0\\ €d", true},
    // Brackets: colours, conditions, places and elapsed time.
    {"[Red]0", false},
    {"[Red]", false},
    {"[Red]d", true},
    {"[Magenta]0", false},
    {"[Color 5]0", false},
    {"[h]", true},
    {"[hh]:mm", true},
    {"[H]:MM:SS", true},
    {"[mm]", true},
    {"[ss]", true},
    {"[s].00", true},
    {"[hm]", false},
    {"[head]0", false},
    {"[]0", false},
    {"[$-409]", false},
    {"[$-409]0.00", false},
    {"[$-409]d\\-mmm", true},
    {"[$-F400]h:mm:ss\\ AM/PM", true},
    {R"([$-F800]dddd\,\ mmmm\ dd\,\ yyyy)", true},
    {"[$€-407]#,##0.00", false},
    {"#,##0.00\\ [$USD]", false},
    {"[$kr-41D]\\ 0", false},
    {"[DBNum1]0", false},
    {"[DBNum1]yyyy", true},
    {R"([<=9999999]###\-####;\(###\)\ ###\-####)", false},
    // The first section counts when there is no value.
    {"0;yyyy", false},
    {"yyyy;0", true},
    {"[>100]0;mm", false},
    {"0;0;0;\"Sheet\"@", false},
    {"0;0;0;d", false},
};

TEST(NumberFormat, TellsDates) {
  for (const auto& [code, is_date] : kDateCases) {
    SCOPED_TRACE(code);
    EXPECT_EQ(is_date_format(code), is_date);
  }
}

struct ValueCase {
  const char* code;
  double value;
  bool is_date;
};
constexpr ValueCase kValueCases[] = {
    {"0;yyyy", 5, false},
    {"0;yyyy", 0, false},
    {"0;yyyy", -5, true},
    {"yyyy;0", -5, false},
    {"0;0;h:mm", 5, false},
    {"0;0;h:mm", -5, false},
    {"0;0;h:mm", 0, true},
    {"0;yyyy;0", -1, true},
    {"[>100]0;mm", 101, false},
    {"[>100]0;mm", 100, true},
    {"[>=100]0;mm", 100, false},
    {"[<1]h:mm;[<60]d;0", 0.5, true},
    {"[<1]h:mm;[<60]d;0", 59, true},
    {"[<1]h:mm;[<60]d;0", 60, false},
    {"[=0]\"none\";yyyy", 0, false},
    {"[=0]\"none\";yyyy", 40000, true},
    {"[<>0]yyyy;0", 0, false},
    {"[<>0]yyyy;0", 1, true},
    {"[Red][<0]yyyy;0", -1, true},
    {"[>-5]0;yyyy", -6, true},
    {"[>1.5]0;yyyy", 1.25, true},
    // A last section for texts leaves negative numbers to the first.
    {"yyyy;@", -5, true},
    {"0;yyyy;@", -5, true},
    {"0;0;0;yyyy", 5, false},
    // A value that no section wants is shown by none; the first answers.
    {"[>100]yyyy", 5, true},
};

TEST(NumberFormat, TellsDatesByTheSectionOfTheValue) {
  for (const auto& [code, value, is_date] : kValueCases) {
    SCOPED_TRACE(std::string(code) + " of " + std::to_string(value));
    EXPECT_EQ(is_date_format(code, value), is_date);
    EXPECT_TRUE(is_date_format(code) == is_date || is_date_by_value(code));
  }
  EXPECT_FALSE(is_date_by_value("yyyy\\-mm\\-dd;@"));
}

struct ValidCase {
  const char* code;
  bool is_valid;
};
constexpr ValidCase kValidCases[] = {
    {"0.00", true},      {"a;b;c;d", true},  {"a;b;c;d;e", false},
    {"\"open", false},   {"\"shut\"", true}, {"\\\"0", true},
    {"_\"0", true},      {"*\"0", true},     {"0\"\"", true},
    {"[Red", false},     {"[Red]0", true},   {"0]", false},
    {"\"]\"0", true},    {"\\]0", true},     {"\"a;b;c;d;e\"", true},
    {"\\;;;;", true},    {";;;;", false},    {"[$;-409]0;0;0;0", true},
    {"[a\"]0\"", false}, {"0\\", true},
};

TEST(NumberFormat, ChecksCodes) {
  for (const auto& [code, is_valid] : kValidCases) {
    SCOPED_TRACE(code);
    EXPECT_EQ(is_valid_number_format(code), is_valid);
  }
}

// The built-in dates are told by number; where the number has a code, the code says the same.
TEST(NumberFormat, BuiltInNumbersAgreeWithTheirCodes) {
  for (std::uint32_t id = 0; id < 164; ++id) {
    const std::string_view code = built_in_number_format(id);
    if (code.empty()) continue;
    SCOPED_TRACE(id);
    EXPECT_EQ(is_date_format(code), is_built_in_date(id));
    EXPECT_TRUE(is_valid_number_format(code));
  }
  EXPECT_TRUE(is_built_in_date(27) && is_built_in_date(36) && is_built_in_date(58));
  EXPECT_FALSE(is_built_in_date(23) || is_built_in_date(37) || is_built_in_date(59));
}

}  // namespace
}  // namespace engine
