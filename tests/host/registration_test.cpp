#include <gtest/gtest.h>

#include "devhost/fm/function_registry.h"
#include "host/plugin.h"
#include "tests/support/string_table.h"

namespace {

using devhost::FunctionRegistry;

short nothing(short, const fmx::ExprEnv&, const fmx::DataVect&, fmx::Data&) { return 0; }

class Registration : public testing::Test {
 protected:
  static const devhost::RegisteredFunction* find(std::u16string_view name) {
    return FunctionRegistry::instance().find(name);
  }

  calls::StringTable table_{
      R"table("20" = "One ( a )|Does one."; "21" = "Two"; "22" = "One ( b )";)table"};
  fmx::QuadCharUniquePtr id_{'W', 'n', 'q', 't'};
};

TEST_F(Registration, GoesByTheHostsVersion) {
  for (const std::int16_t version : {std::int16_t{55}, std::int16_t{56}}) {
    SCOPED_TRACE(version);
    table_.block().extension_version = version;
    KelFileMakerPlugin plugin(*id_);
    ASSERT_EQ(plugin.RegisterFunction(20, nothing, 1, 2), 0);
    const auto* found = find(u"One");
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(std::string(found->plugin.begin(), found->plugin.end()), "Wnqt");
    EXPECT_EQ(found->id, 20);
    EXPECT_EQ(found->prototype, u"One ( a )");
    EXPECT_EQ(found->description, version < 56 ? u"" : u"Does one.");
    EXPECT_EQ(found->minimum, 1);
    EXPECT_EQ(found->maximum, 2);
    EXPECT_TRUE(found->visible());
    EXPECT_EQ(found->function, nothing);
  }
}

TEST_F(Registration, AMaximumOfZeroIsTheMinimum) {
  KelFileMakerPlugin plugin(*id_);
  plugin.RegisterHiddenFunction(21, nothing, 0, 0);
  plugin.RegisterFunction(20, nothing, 3, 0);
  EXPECT_EQ(find(u"Two")->maximum, 0);
  EXPECT_FALSE(find(u"Two")->visible());
  EXPECT_EQ(find(u"One")->maximum, 3);
}

// What a host refuses belongs to somebody else and is not taken back.
TEST_F(Registration, TakesBackWhatWasAccepted) {
  KelFileMakerPlugin first(*id_);
  ASSERT_EQ(first.RegisterFunction(20, nothing, 1, 1), 0);
  {
    KelFileMakerPlugin second(*id_);
    EXPECT_NE(second.RegisterFunction(20, nothing, 1, 1), 0);
    EXPECT_NE(second.RegisterFunction(22, nothing, 1, 1), 0);
    EXPECT_EQ(second.RegisterFunction(21, nothing, 1, 1), 0);
    EXPECT_NE(find(u"Two"), nullptr);
  }
  EXPECT_EQ(find(u"Two"), nullptr);
  EXPECT_NE(find(u"One"), nullptr);
}

TEST_F(Registration, KnowsServers) {
  KelFileMakerPlugin plugin(*id_);
  for (unsigned char kind = 0; kind < 9; ++kind) {
    plugin.set_fmx_application(kind);
    EXPECT_EQ(plugin.running_on_server(), kind == 3 || kind == 4 || kind == 7) << int{kind};
  }
}

}  // namespace
