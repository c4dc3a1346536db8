// The plug-in's file, loaded and called as a host does it.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "devhost/fm/function_registry.h"
#include "devhost/program/library.h"

namespace {

using devhost::FunctionRegistry;

class PluginFile : public testing::Test {
 protected:
  void SetUp() override { ASSERT_NE(entry_, nullptr); }

  // Returns the block's answer.
  std::intptr_t send(std::uint8_t message, std::int16_t version = 56) {
    fmx::CallBlock block{};
    block.extension_version = version;
    block.message = message;
    block.result = 12345;
    block.instance = path_.data();
    entry_(&block);
    return block.result;
  }

  static std::ptrdiff_t registered(bool visible) {
    const auto all = FunctionRegistry::instance().all();
    return std::count_if(all.begin(), all.end(),
                         [=](const auto* function) { return function->visible() == visible; });
  }

  std::string path_ = PLUGIN_FILE;
  const devhost::Library library_{PLUGIN_FILE};
  const fmx::EntryPoint entry_ = library_.find<fmx::EntryPoint>("FMExternCallProc");
};

TEST_F(PluginFile, StartsAndStopsOverAndOver) {
  send(fmx::kShutdown);
  for (int round = 0; round < 100; ++round) {
    SCOPED_TRACE(round);
    ASSERT_EQ(send(fmx::kInit, round % 2 == 0 ? 55 : 56), 59);
    ASSERT_EQ(registered(true), 278);
    ASSERT_EQ(registered(false), 361);
    send(fmx::kShutdown);
    ASSERT_TRUE(FunctionRegistry::instance().all().empty());
  }
  send(fmx::kShutdown);
}

TEST_F(PluginFile, LeavesOtherMessagesAlone) {
  for (const int message : {1, 2, 3, 5, 6, 8, 255})
    EXPECT_EQ(send(static_cast<std::uint8_t>(message)), 12345) << message;
}

TEST_F(PluginFile, TellsItsStrings) {
  std::vector<char16_t> buffer(1000);
  fmx::CallBlock block{};
  block.message = fmx::kGetString;
  block.parm1 = 131;
  block.parm3 = buffer.size();
  block.result = reinterpret_cast<std::intptr_t>(buffer.data());
  block.instance = path_.data();
  entry_(&block);
  EXPECT_NE(buffer[0], 0);
  EXPECT_EQ(block.result, reinterpret_cast<std::intptr_t>(buffer.data()));
}

TEST_F(PluginFile, ExportsNothingElse) {
  for (const char* name :
       {"xlCreateXMLBookW", "FM_Text_Constructor1", "CFRelease", "gFMX_ExternCallPtr"})
    EXPECT_EQ(library_.find<void (*)()>(name), nullptr) << name;
}

}  // namespace
