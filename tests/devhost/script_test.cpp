#include "devhost/calc/script.h"

#include <gtest/gtest.h>

#include <string>

#include "devhost/fm/unicode.h"

namespace devhost {
namespace {

TEST(Script, PrintsAndAssignsLineByLine) {
  struct Case {
    const char* text;
    const char* output;
  };
  constexpr Case kCases[] = {
      {"", ""},
      {"// nothing\n\n", ""},
      {"1\n2", "1\n2\n"},
      {"1\r\n2\r\n", "1\n2\n"},
      {"$x = 5\n$x = 5\n$X + 1", "6\n"},
      {"$x = 5 = 6\n$x", "0\n"},
      {"($x = 5)", "0\n"},
      {"\"\"\n$none\n1", "1\n"},
      {"List ( 1 ;\n  2\n)\n3", "1\n2\n3\n"},
      {"$a = Let ( [ // comment ( \n x = 1 ;\n y = 2 ] ;\n x + y )\n$a", "3\n"},
      {"\"one\ntwo\"\n3", "one\ntwo\n3\n"},
      {"1 /* a\nb */\n2", "1\n2\n"},
      {"\xEF\xBB\xBF"
       "1",
       "1\n"},
  };
  for (const auto& [text, output] : kCases) {
    SCOPED_TRACE(text);
    Evaluator evaluator([](const Failure&) { ADD_FAILURE(); });
    std::string printed_text;
    for (const Statement& statement : parse_script(utf16_from_utf8(text))) {
      if (const auto value = run_statement(evaluator, statement)) printed_text += printed(*value);
    }
    EXPECT_EQ(printed_text, output);
  }
}

std::string told(const SyntaxError& error) {
  return "line " + std::to_string(error.position().line) + ", column " +
         std::to_string(error.position().column) + ": " + error.what();
}

TEST(Script, TellsWhereItIsWrong) {
  struct Case {
    const char16_t* text;
    const char* problem;
  };
  constexpr Case kCases[] = {
      {u"1\n2 +\n3", "line 2, column 4: a value is expected here"},
      {u"1\n$x =\n2", "line 2, column 5: a value is expected here"},
      {u"1\n( 2\n3", "line 3, column 1: ) is expected here"},
      {u"1 )\n2", "line 1, column 3: an operator is expected here"},
      {u"1\n$x = nothing", "line 2, column 6: there is no function or variable nothing"},
  };
  for (const auto& [text, problem] : kCases) {
    SCOPED_TRACE(utf8_from_utf16(text));
    try {
      parse_script(text);
      ADD_FAILURE() << "was accepted";
    } catch (const SyntaxError& error) {
      EXPECT_EQ(told(error), problem);
    }
  }
}

TEST(Script, KnowsWhatIsUnfinished) {
  for (const char16_t* text : {u"Let (", u"[ 1", u"\"a", u"1 /* b", u"( \")\" "}) {
    EXPECT_TRUE(is_unfinished(text)) << utf8_from_utf16(text);
  }
  for (const char16_t* text : {u"1", u"( 1 )", u"1 )", u"#", u"\"(\"", u""}) {
    EXPECT_FALSE(is_unfinished(text)) << utf8_from_utf16(text);
  }
}

}  // namespace
}  // namespace devhost
