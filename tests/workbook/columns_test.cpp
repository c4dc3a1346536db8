#include "engine/workbook/columns.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace {

using engine::ColumnProperties;
using engine::Columns;

// Changes of every place and size, against a list that knows each column by itself.
TEST(Columns, AreCutAndJoinedAsTheyChange) {
  constexpr int kColumns = 40;
  std::mt19937 random(5);
  const auto below = [&](int end) {
    return static_cast<int>(random() % static_cast<unsigned>(end));
  };
  Columns columns;
  std::vector<int> widths(kColumns, 0);  // 0 is none
  for (int round = 0; round < 3000; ++round) {
    const int first = below(kColumns);
    const int last = first + below(std::min(kColumns - first, 1 + round % 9));
    const int width = below(3);
    const auto edit = [&](ColumnProperties& run) {
      ASSERT_TRUE(run.first >= first && run.last <= last && run.first <= run.last);
      run.width = width == 0 ? std::nullopt : std::optional<double>(width);
    };
    columns.change({{first, last, edit}});
    std::fill(widths.begin() + first, widths.begin() + last + 1, width);
    int before = -1;
    const ColumnProperties* left = nullptr;
    for (const ColumnProperties& run : columns) {
      ASSERT_TRUE(run.first > before && run.first <= run.last);
      ASSERT_FALSE(left && left->last + 1 == run.first && left->width == run.width);
      before = run.last;
      left = &run;
    }
    for (int column = 0; column < kColumns; ++column) {
      const ColumnProperties* found = columns.find(column);
      ASSERT_EQ(found ? found->width.value_or(0) : 0, widths[static_cast<std::size_t>(column)]);
    }
  }
}

TEST(Columns, TakeSeveralChangesAtOnce) {
  Columns columns;
  const auto hide = [](ColumnProperties& run) { run.hidden = true; };
  const auto mark = [](ColumnProperties& run) { run.collapsed = true; };
  columns.change({{2, 4, hide}, {5, 5, mark}});
  columns.change({{3, 3, mark}, {2, 2, mark}});
  ASSERT_EQ(columns.size(), 3U);
  EXPECT_EQ(columns.find(2)->last, 3);
  EXPECT_TRUE(columns.find(3)->hidden && columns.find(3)->collapsed);
  EXPECT_FALSE(columns.find(4)->collapsed);
  EXPECT_FALSE(columns.find(5)->hidden);
}

}  // namespace
