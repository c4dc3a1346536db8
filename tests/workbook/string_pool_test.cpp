#include "engine/workbook/string_pool.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using engine::StringPool;

TEST(StringPool, GivesEqualTextsOneNumber) {
  StringPool pool;
  for (int round = 0; round < 2; ++round)
    for (int i = 0; i < 5000; ++i)
      ASSERT_EQ(pool.add("text " + std::to_string(i)), static_cast<std::uint32_t>(i));
  EXPECT_EQ(pool.size(), 5000U);
  EXPECT_EQ(pool[4321], "text 4321");
  EXPECT_EQ(pool.add(""), 5000U);
  EXPECT_EQ(pool.add(std::string(3000000, 'x')), 5001U);
  EXPECT_EQ(pool[5001].size(), 3000000U);
  EXPECT_EQ(pool[0], "text 0");
}

// A file may list a text twice; sheets that nobody opened refer to both.
TEST(StringPool, KeepsTheNumbersOfAFile) {
  StringPool pool;
  pool.append("a");
  pool.append("b");
  pool.append("a");
  pool.end_of_file_entries();
  EXPECT_EQ(pool.size(), 3U);
  const std::uint32_t found = pool.add("a");
  EXPECT_TRUE(found == 0 || found == 2);
  EXPECT_EQ(pool.add("c"), 3U);
  EXPECT_EQ(pool.count_from_file(), 3U);
}

TEST(StringPool, NeverGivesARichTextForAPlainOne) {
  StringPool pool;
  pool.append("bold");
  pool.mark_rich(0);
  EXPECT_EQ(pool.append_rich("bold", "<r/>"), 1U);
  const std::uint32_t plain = pool.add("bold");
  EXPECT_EQ(plain, 2U);
  EXPECT_EQ(pool.add("bold"), plain);
  EXPECT_EQ(pool.rich(0), nullptr);
  ASSERT_TRUE(pool.rich(1));
  EXPECT_EQ(*pool.rich(1), "<r/>");
  EXPECT_EQ(pool.rich(plain), nullptr);
}

}  // namespace
