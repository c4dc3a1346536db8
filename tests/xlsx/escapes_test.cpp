#include "engine/xlsx/escapes.h"

#include <gtest/gtest.h>

namespace engine::xlsx {
namespace {

struct Case {
  std::string text;
  std::string escaped;
};

TEST(Escapes, GoThereAndBack) {
  const Case kCases[] = {
      {"plain _ x_ _x _x00 Größe", "plain _ x_ _x _x00 Größe"},
      {"a\tb\nc", "a\tb\nc"},
      {"a\rb\x01", "a_x000D_b_x0001_"},
      {"_x0041_", "_x005F_x0041_"},
      {"__x00e9__", "__x005F_x00e9__"},
      {"_x005F_x0041_", "_x005F_x005F_x005F_x0041_"},
      {"\xEF\xBF\xBF|\xEF\xBF\xBD", "_xFFFF_|\xEF\xBF\xBD"},
  };
  for (const auto& [text, escaped] : kCases) {
    SCOPED_TRACE(escaped);
    EXPECT_EQ(escape(text), escaped);
    EXPECT_EQ(needs_escape(text), text != escaped);
    EXPECT_EQ(unescape(escaped), text);
  }
}

TEST(Escapes, ReadWhatOtherProgramsWrite) {
  constexpr std::pair<const char*, const char*> kCases[] = {
      {"_x00e4__X00E4_", "ä_X00E4_"},          // digits in either case, the x in one
      {"_xD83D__xDE00_", "\xF0\x9F\x98\x80"},  // a pair of surrogates
      {"_xD83D_ _xDE00_", "\xEF\xBF\xBD \xEF\xBF\xBD"},
      {"_xD83D__x0041_",
       "\xEF\xBF\xBD"
       "A"},
      {"_x0000_", "_x0000_"},
      {"_x12_x0041_", "_x12A"},
  };
  for (const auto& [escaped, text] : kCases) EXPECT_EQ(unescape(escaped), text) << escaped;
}

}  // namespace
}  // namespace engine::xlsx
