#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "devhost/calc/evaluator.h"
#include "devhost/calc/parser.h"
#include "devhost/calc/script.h"
#include "devhost/fm/unicode.h"

namespace devhost {
namespace {

std::string text_of(const std::string& calculation) {
  Evaluator evaluator([](const Failure& failure) {
    ADD_FAILURE() << utf8_from_utf16(failure.function) << " " << utf8_from_utf16(failure.message);
  });
  evaluator.set_variable(u"$Given", Value(u"12"));
  return utf8_from_utf16(
      evaluator.evaluate(parse_calculation(utf16_from_utf8(calculation))).units());
}

TEST(Calculation, GivesItsResult) {
  struct Case {
    const char* calculation;
    const char* result;
  };
  constexpr Case kCases[] = {
      // Numbers and operators.
      {"1 + 2 * 3", "7"},
      {"(1 + 2) * 3", "9"},
      {"10 - 4 - 3", "3"},
      {"64 / 4 / 2", "8"},
      {"2 ^ 3 ^ 2", "64"},
      {"-2 ^ 2", "4"},
      {"2 * -3", "-6"},
      {"2 ^ -1", ".5"},
      {"+5", "5"},
      {"1 / 4", ".25"},
      {"1 / 0", "?"},
      {"0 - 1 / 4", "-.25"},
      {".1 + .2 = .3", "1"},
      {"9007199254740991 + 1", "9007199254740992"},
      {"10 ^ 400", "?"},
      {"\"12 pieces\" + 1", "13"},
      {"\"\" + 1", "1"},
      // Texts.
      {R"("a" & 1 + 2 & "b")", "a3b"},
      {"1 & .5", "1.5"},
      {"\"say \\\"x\\\" \\\\ \\¶\"", "say \"x\" \\ ¶"},
      {"\"a¶b\" & ¶ & \"c\"", "a\rb\rc"},
      {"\"a\nb\"", "a\rb"},
      {R"("C:\temp")", "C:\\temp"},
      // Comparisons and logic.
      {R"("ABC" = "abc")", "1"},
      {"\"Ärger\" = \"äRGER\"", "1"},
      {R"("a" < "B")", "1"},
      {R"("10" < "9")", "1"},
      {"\"10\" < 9", "0"},
      {"\"05\" = 5", "1"},
      {"\"\" = 0", "0"},
      {R"("" = "")", "1"},
      {"1 ≠ 2 and 1 <> 2 and 1 ≤ 1 and 1 <= 1 and 2 ≥ 1 and 2 >= 1", "1"},
      {"1 or 0 and 0", "1"},
      {"1 xor 1", "0"},
      {"NOT 0 And 1", "1"},
      {"not 1 = 0", "1"},
      {"\"yes\" and 1", "0"},
      {"1 + 1 = 2", "1"},
      {R"("a" & "b" = "ab")", "1"},
      // Spaces and comments.
      {" 1 // one\n + /* two\n */ 2", "3"},
      {"Length(\"abc\")", "3"},
      // Forms that choose.
      {R"(If ( 1 ; "a" ; "b" ))", "a"},
      {"If ( 0 ; \"a\" )", ""},
      {R"(Case ( 0 ; "a" ; 2 > 1 ; "b" ; "c" ))", "b"},
      {R"(Case ( 0 ; "a" ; 0 ; "b" ; "c" ))", "c"},
      {R"(Case ( 0 ; "a" ; 0 ; "b" ))", ""},
      // Local and other variables.
      {"Let ( x = 5 ; x * x )", "25"},
      {"Let ( [ x = 5 ; y = x + 1 ] ; x & y )", "56"},
      {"Let ( [ x = 1 ; x = x + 1 ; ] ; X )", "2"},
      {"Let ( x = 1 ; Let ( x = x + 1 ; x ) & x )", "21"},
      {"Let ( x = Let ( y = 2 ; y + 1 ) ; x )", "3"},
      {"Let ( length = 4 ; length + Length ( \"ab\" ) )", "6"},
      {"Let ( $a = 3 ; $A + 1 )", "4"},
      {"Let ( größe.1_x = 3 ; größe.1_x )", "3"},
      {"$none", ""},
      {"$given + 1", "13"},
      {"While ( [ i = 0 ; s = \"\" ] ; i < 3 ; [ i = i + 1 ; s = s & i ] ; s )", "123"},
      {"While ( i = 0 ; i < 3 ; i = i + 1 ; i )", "3"},
      {"While ( [ i = 0 ] ; Let ( t = 1 ; i < 3 ) ; [ i = i + 1 ; twice = i * 2 ] ; twice )", "6"},
      {"While ( i = 5 ; i < 3 ; i = i + 1 ; i )", "5"},
      {"Let ( i = 7 ; While ( i = 0 ; i < 3 ; i = i + 1 ; i ) & i )", "37"},
      // Functions of texts.
      {R"(Left ( "abcde" ; 2 ) & Right ( "abcde" ; 2 ) & Middle ( "abcde" ; 2 ; 3 ))", "abdebcd"},
      {R"(Left ( "abc" ; 9 ) & Left ( "abc" ; -1 ) & Right ( "abc" ; 9 ))", "abcabc"},
      {R"(Middle ( "abc" ; 0 ; 2 ) & Middle ( "abc" ; 4 ; 1 ))", "ab"},
      {"Length ( 12.50 )", "4"},
      {R"(Position ( "Banana" ; "AN" ; 1 ; 2 ))", "4"},
      {R"(Position ( "Banana" ; "an" ; 3 ; 1 ))", "4"},
      {R"(Position ( "Banana" ; "an" ; 6 ; -2 ))", "2"},
      {R"(Position ( "Banana" ; "x" ; 1 ; 1 ))", "0"},
      {R"(Position ( "Banana" ; "an" ; 6 ; -3 ))", "0"},
      {R"(Substitute ( "banana" ; "an" ; "o" ))", "booa"},
      {R"(Substitute ( "banana" ; "A" ; "o" ))", "banana"},
      {R"(Substitute ( "abc" ; [ "a" ; "b" ] ; [ "b" ; "c" ] ))", "ccc"},
      {"Char ( 65 ) & Char ( 228 ) & Char ( 128512 ) & Char ( 0 )", "Aä😀"},
      {"Code ( \"A\" ) & \" \" & Code ( \"😀\" ) & Code ( \"\" )", "65 128512"},
      {R"(Exact ( "a" ; "A" ) & Exact ( "a" ; "a" ))", "01"},
      {"IsEmpty ( \"\" ) & IsEmpty ( 0 ) & IsEmpty ( $none )", "101"},
      {"Upper ( \"straße ä\" ) & Lower ( \"ÄB\" )", "STRAßE Ääb"},
      {R"("[" & Trim ( "  a b " ) & "]" & Trim ( "   " ))", "[a b]"},
      {R"(GetAsText ( 5 / 2 ) & GetAsNumber ( "a1b2" ) & GetAsNumber ( "" ))", "2.512"},
      // Functions of numbers.
      {R"(Round ( 2.675 ; 2 ) & " " & Round ( -2.5 ; 0 ) & " " & Round ( 1250 ; -2 ))",
       "2.68 -3 1300"},
      {"Round ( 123456789.125 ; 2 )", "123456789.13"},
      {"Int ( 3.9 ) & Int ( -3.9 )", "3-3"},
      {"Mod ( 7 ; 3 ) & Mod ( -7 ; 3 ) & Mod ( 7 ; -3 ) & Mod ( 1 ; 0 )", "12-2?"},
      {"Abs ( -3 ) & Abs ( 3 )", "33"},
      {"Min ( 3 ; 1 ; 2 ) & Max ( 3 ; \"\" ; 10 ; 2 )", "110"},
      {"True & False", "10"},
      // Lists.
      {R"(List ( "a" ; "" ; "b" ; 3 ))", "a\rb\r3"},
      {"ValueCount ( \"a¶b¶c\" ) & ValueCount ( \"a¶¶\" ) & ValueCount ( \"\" )", "320"},
      {"GetValue ( \"a¶b¶c\" ; 2 ) & GetValue ( \"a¶b\" ; 3 ) & GetValue ( \"a¶b\" ; 0 )", "b"},
      {"GetValue ( \"a¶¶c\" ; 2 ) & GetValue ( \"a¶¶c\" ; 3 )", "c"},
  };
  for (const auto& [calculation, result] : kCases) {
    SCOPED_TRACE(calculation);
    EXPECT_EQ(text_of(calculation), result);
  }
}

TEST(Calculation, LeavesWhatDoesNotCountAlone) {
  Evaluator evaluator([](const Failure&) { ADD_FAILURE(); });
  for (const char16_t* calculation : {
           u"0 and Host_WriteFile ( \"\" ; \"\" )",
           u"1 or Host_WriteFile ( \"\" ; \"\" )",
           u"If ( 1 ; 1 ; Host_WriteFile ( \"\" ; \"\" ) )",
           u"Case ( 1 ; 1 ; Host_WriteFile ( \"\" ; \"\" ) ; 1 )",
       }) {
    evaluator.evaluate(parse_calculation(calculation));
  }
}

std::string told(const SyntaxError& error) {
  return "line " + std::to_string(error.position().line) + ", column " +
         std::to_string(error.position().column) + ": " + error.what();
}

TEST(Calculation, TellsWhereItIsWrong) {
  struct Case {
    const char* calculation;
    const char* problem;
  };
  constexpr Case kCases[] = {
      {"", "line 1, column 1: a value is expected here"},
      {"1 +", "line 1, column 4: a value is expected here"},
      {"1 2", "line 1, column 3: an operator is expected here"},
      {"(1\n + 2", "line 2, column 5: ) is expected here"},
      {"1 )", "line 1, column 3: an operator is expected here"},
      {"\"äß😀\" & nothing", "line 1, column 9: there is no function or variable nothing"},
      {"Nothing ( 1 )", "line 1, column 1: there is no function or variable Nothing"},
      {"Left ( \"a\" )", "line 1, column 1: Left takes 2 parameters, not 1"},
      {"Lefft ( 1 )",
       "line 1, column 1: there is no function or variable Lefft; did you mean Left?"},
      {"Abs ( )", "line 1, column 1: Abs takes 1 parameter, not 0"},
      {"List ( )", "line 1, column 1: List takes 1 or more parameters, not 0"},
      {"If ( 1 ; 2 ; 3 ; 4 )", "line 1, column 1: If takes 2 to 3 parameters, not 4"},
      {"Let ( x = 1 ; x", "line 1, column 16: ) is expected here"},
      {"Let ( x = x ; 1 )", "line 1, column 11: there is no function or variable x"},
      {"Let ( x = 1 ; 1 ) + x", "line 1, column 21: there is no function or variable x"},
      {"Let ( 5 = 1 ; 1 )", "line 1, column 7: the name of a variable is expected here"},
      {"Let ( [ x = 1 y = 2 ] ; 1 )", "line 1, column 15: ; or ] is expected here"},
      {"Left ( [ \"a\" ; 1 ] )", "line 1, column 8: a value is expected here"},
      {"Substitute ( 1 ; [ 2 ; 3 ] ; 4 )", "line 1, column 1: Substitute takes a text and pairs"},
      {"\"open", "line 1, column 1: text without closing quote"},
      {"1 /* open", "line 1, column 3: comment without end"},
      {"1 + #", "line 1, column 5: unexpected character #"},
      {"$ + 1", "line 1, column 1: a variable needs a name after the $"},
      {"\xFF", "line 1, column 1: unexpected character \uFFFD"},
  };
  for (const auto& [calculation, problem] : kCases) {
    SCOPED_TRACE(calculation);
    try {
      parse_calculation(utf16_from_utf8(calculation));
      ADD_FAILURE() << "was accepted";
    } catch (const SyntaxError& error) {
      EXPECT_EQ(told(error), problem);
    }
  }
}

std::u16string repeated(std::u16string_view part, int times) {
  std::u16string text;
  for (int i = 0; i < times; ++i) text += part;
  return text;
}

// Long is fine, deep is refused before the stack ends.
TEST(Calculation, BoundsItsDepthButNotItsLength) {
  Evaluator evaluator([](const Failure&) { ADD_FAILURE(); });
  const auto value = [&](const std::u16string& text) {
    return evaluator.evaluate(parse_calculation(text)).number().value;
  };
  EXPECT_EQ(value(repeated(u"1+", 20000) + u"1"), 20001);
  const std::u16string level = u"0 or 1 and 1 = 1 & 0 + 1 * 1 ^ - ( ";
  EXPECT_EQ(value(repeated(level, 90) + u"1" + repeated(u")", 90)), 0);
  for (const std::u16string_view opening : {u"(", u"-", u"not ", u"Abs(", u"Let(x=", u"If(1;"}) {
    SCOPED_TRACE(utf8_from_utf16(opening));
    EXPECT_THROW(value(repeated(opening, 20000)), SyntaxError);
  }
}

TEST(Calculation, EndsLoopsThatDoNotEnd) {
  std::vector<Failure> failures;
  Evaluator evaluator([&](const Failure& failure) { failures.push_back(failure); });
  EXPECT_EQ(evaluator.evaluate(parse_calculation(u"While ( i = 0 ; 1 ; i = i + 1 ; i )")).units(),
            u"?");
  ASSERT_EQ(failures.size(), 1U);
  EXPECT_EQ(failures[0].function, u"While");
}

}  // namespace
}  // namespace devhost
