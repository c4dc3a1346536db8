#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "devhost/calc/evaluator.h"
#include "devhost/calc/parser.h"
#include "devhost/fm/function_registry.h"
#include "devhost/fm/unicode.h"
#include "devhost/program/plugin_module.h"

namespace devhost {
namespace {

TEST(Plugin, IsCalledFromCalculations) {
  const PluginModule plugin(FAKE_PLUGIN, 56);
  struct Case {
    const char16_t* calculation;
    const char16_t* result;
  };
  constexpr Case kCases[] = {
      {u"Fake_Add ( 1.5 ; \"2 kg\" )", u"3.5"},
      {u"fake_add ( 1 )", u"101"},
      {u"Fake_Count", u"0"},
      {u"Fake_Count ( )", u"0"},
      {u"Fake_Count ( 1 ; \"\" ; 3 )", u"3"},
      {u"Fake_Constant + 1", u"8"},
      {u"Host_Streams ( Fake_File ( \"ä.txt\" ) ) & Fake_File ( \"b\" )", u"FNAM 6\rFILE 3b"},
      {u"Fake_Refusals", u"8:1205 9:1204 10:1201 11:1201 12:1202 13:1202 14:1203 "},
  };
  Evaluator evaluator([](const Failure&) { ADD_FAILURE(); });
  for (const auto& [calculation, result] : kCases) {
    SCOPED_TRACE(utf8_from_utf16(calculation));
    EXPECT_EQ(evaluator.evaluate(parse_calculation(calculation)).units(), result);
  }
  EXPECT_THROW(parse_calculation(u"Fake_Add ( 1 ; 2 ; 3 )"), SyntaxError);
  EXPECT_THROW(parse_calculation(u"Fake_Add"), SyntaxError);
}

TEST(Plugin, ReportsFailuresInItsOwnWords) {
  const PluginModule plugin(FAKE_PLUGIN, 56);
  std::vector<Failure> failures;
  Evaluator evaluator([&](const Failure& failure) { failures.push_back(failure); });
  EXPECT_EQ(evaluator.evaluate(parse_calculation(u"1 & Fake_Fail & 2")).units(), u"1?2");
  ASSERT_EQ(failures.size(), 1U);
  EXPECT_EQ(failures[0].function, u"Fake_Fail");
  EXPECT_EQ(failures[0].code, 42);
  EXPECT_EQ(failures[0].message, u"made to fail: ß");
}

TEST(Plugin, RegistersWithAndWithoutDescriptions) {
  for (const std::int16_t version : {std::int16_t{55}, std::int16_t{56}}) {
    const PluginModule plugin(FAKE_PLUGIN, version);
    const RegisteredFunction* function = FunctionRegistry::instance().find(u"FAKE_add");
    ASSERT_NE(function, nullptr);
    EXPECT_EQ(function->prototype, u"Fake_Add ( … )");
    EXPECT_EQ(function->description, version < 56 ? u"" : u"Described.");
    EXPECT_TRUE(function->visible());
    EXPECT_FALSE(FunctionRegistry::instance().find(u"Fake_Constant")->visible());
  }
  EXPECT_TRUE(FunctionRegistry::instance().all().empty());
}

TEST(Plugin, AnswersRequestsForStrings) {
  const PluginModule plugin(FAKE_PLUGIN, 56);
  EXPECT_EQ(plugin.string(PluginModule::kNameString), "Fake plug-in");
  EXPECT_EQ(plugin.string(PluginModule::kDescriptionString), FAKE_PLUGIN);
  EXPECT_EQ(plugin.string(1), "");
}

TEST(Plugin, IsRefusedWithAReason) {
  struct Case {
    const char* file;
    const char* part;
  };
  constexpr Case kCases[] = {
      {"/nowhere/Nothing.fmx", "No such file"},
      {XLCALC, "does not load"},
      {REFUSING_PLUGIN, "refuses to start: it answers 58, not 59"},
  };
  for (const auto& [file, part] : kCases) {
    SCOPED_TRACE(file);
    try {
      const PluginModule plugin(file, 56);
      ADD_FAILURE() << "was accepted";
    } catch (const PluginError& error) {
      EXPECT_NE(std::string(error.what()).find(part), std::string::npos) << error.what();
    }
  }
}

}  // namespace
}  // namespace devhost
