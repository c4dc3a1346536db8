#include "engine/formula/plain_formula.h"

#include <gtest/gtest.h>

#include <random>
#include <span>
#include <string>
#include <string_view>

#include "tests/formula/grid.h"

namespace engine::formula {
namespace {

constexpr Grid kSmallGrid{65536, 256};

bool known(std::string_view name) { return name == "Sheet2" || name == "My sheet ä"; }

bool is_plain(const std::string& text, const Grid& grid) {
  return is_plain_formula(text, grid, known);
}

// What parse() and the search for sheets say of the same: a formula, its text as it is, no sheet
// that is not known.
bool is_taken_as_it_is(const std::string& text, const Grid& grid) {
  const auto parsed = parse(text, grid);
  return parsed && parsed->text == text && !unknown_sheet(*parsed, known);
}

constexpr const char* kPlain[] = {
    "A1+B1*2",
    "SUM($A$1:C9)",
    R"(IF(A1>0,"yes","say ""no"""))",
    R"(Sheet2!B7&" "&TEXT(C1,"0.00"))",
    "VLOOKUP(A1,'My sheet ä'!$A$1:$F$500,3,FALSE)",
    " ( 1 + 2.5 ) * -3. % ^ 2 ",
    "IF(,,)<>TODAY( )",
    "A1<=B$2>=$C3<4>5=6",
    "LOG10(-XFD1048576)/NORM.S.DIST(1,TRUE)",
    "RATE--1",
};

// Some are formulas, and some would read otherwise or are refused.
constexpr const char* kOther[] = {
    "",          "1+",        "a1",         "sum(A1)", "true",        "F(1",      "1)",
    "()",        "(,)",       "(A1,B1)",    "A1 B1",   "A1:B",        "A:C",      "1:2",
    "A1:B2:C3",  "A1#",       "@A1",        "{1}",     "#N/A",        "1E3",      ".5",
    "1.2.3",     "3(4)",      "F(1)(2)",    "F (1)",   "XFE1",        "A1048577", "A0",
    "A01",       "$A$",       "A1:XFE1",    "AB12C",   "No!A1",       "'No'!A1",  "''!A1",
    "'a:b'!A1",  "'[1]a'!A1", "'it''s'!A1", "Sheet2!", "Sheet2!F(1)", "[1]S!A1",  "T[x]",
    "_xlfn.F()", "\"abc",     "ä",          "F(1+,2)", "F(-)",        "F(G()+)",  "---1",
    "1=<2",      "A1!B1",     "Sheet2!'a'", "1;2",     "{",           "A1$",
};

TEST(PlainFormula, KnowsTheCommonForms) {
  for (const std::string text : kPlain) {
    SCOPED_TRACE(text);
    EXPECT_TRUE(is_plain(text, kGrid));
    EXPECT_TRUE(is_taken_as_it_is(text, kGrid));
  }
  for (const std::string text : kOther) {
    SCOPED_TRACE(text);
    EXPECT_FALSE(is_plain(text, kGrid));
  }
  EXPECT_TRUE(is_plain("IV65536", kSmallGrid));
  EXPECT_FALSE(is_plain("IW65536", kSmallGrid));
  EXPECT_FALSE(is_plain("IV65537", kSmallGrid));
  ParseOptions r1c1(kGrid);
  r1c1.notation = Notation::kR1C1;
  EXPECT_FALSE(is_plain_formula("A1", r1c1, known));
}

std::string repeated(std::string_view text, int count) {
  std::string out;
  for (int i = 0; i < count; ++i) out += text;
  return out;
}

TEST(PlainFormula, LeavesTheLimitsToTheParser) {
  const struct {
    const char* what;
    std::string text;
    bool plain;
  } cases[] = {
      {"text of 255", "\"" + std::string(255, 'x') + "\"", true},
      {"text of 256", "\"" + std::string(256, 'x') + "\"", false},
      {"255 arguments", "F(" + repeated(",", 254) + ")", true},
      {"256 arguments", "F(" + repeated(",", 255) + ")", false},
      {"8192 characters", repeated("1+", 4095) + "11", true},
      {"8193 characters", repeated("1+", 4096) + "1", false},
      {"all levels of operators in each of many parentheses",
       repeated("1=1&1+1*1^-(", 31) + "1=1&1+1*1^-1" + repeated(")", 31), true},
      {"one more", repeated("(", 32) + "1" + repeated(")", 32), false},
  };
  for (const auto& [what, text, plain] : cases) {
    SCOPED_TRACE(what);
    EXPECT_EQ(is_plain(text, kGrid), plain);
    EXPECT_TRUE(!plain || is_taken_as_it_is(text, kGrid));
  }
}

constexpr const char* kOperands[] = {
    "A1",         "$B$2",
    "A1:$B2",     "IV65537",
    "XFD1048577", "XFE1",
    "A",          "A:C",
    "1",          "2.5",
    ".5",         "1E5",
    "0",          "1:2",
    "\"\"",       "\"a\"\"(\"",
    "TRUE",       "true",
    "RATE",       "rate",
    "IF(",        "LOG10(",
    "A1(",        "(",
    "Sheet2!A1",  "'My sheet ä'!B2",
    "No!A1",      "Sheet2!RATE",
    "-",          "+",
    "@",          " ",
    "#REF!",      "{1,2}",
    "T[x]",       "[1]!A1",
    "F()",        "ä",
    "_x",         "'",
};
constexpr const char* kOperators[] = {
    "+", "-", "*", "/", "^", "&", "=", "<", ">", "<>", "<=", ">=", "%",  ")",
    ")", ",", ",", " ", ":", "#", "!", "$", ".", "\"", "[",  "1",  "A1",
};

// Pieces in mostly sensible order, so that many of the texts are formulas.
TEST(PlainFormula, NeverSaysMoreThanTheParser) {
  std::mt19937 random(20240229);
  const auto below = [&](std::size_t count) { return random() % count; };
  const auto piece = [&](std::span<const char* const> pieces) {
    return pieces[below(pieces.size())];
  };
  int plain = 0;
  for (int i = 0; i < 100000; ++i) {
    std::string text;
    const std::size_t pieces = 1 + below(9);
    for (std::size_t k = 0; k < pieces; ++k) {
      const bool operand = (k % 2 == 0) != (below(8) == 0);
      text += operand ? piece(kOperands) : piece(kOperators);
    }
    text += repeated(")", static_cast<int>(below(3)));
    for (const Grid& grid : {kGrid, kSmallGrid}) {
      if (!is_plain(text, grid)) continue;
      ++plain;
      ASSERT_TRUE(is_taken_as_it_is(text, grid)) << text;
    }
  }
  EXPECT_GT(plain, 1000);
}

}  // namespace
}  // namespace engine::formula
