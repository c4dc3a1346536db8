#include "engine/workbook/array_ranges.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace {

using engine::ArrayRanges;
using engine::CellAddress;
using engine::CellRange;

// Ranges of every shape, many on top of one another: what is found holds the cell, and none is
// found only where none does.
TEST(ArrayRanges, AgreeWithASearchOfAll) {
  std::mt19937 random(3);
  const auto below = [&](int end) {
    return static_cast<int>(random() % static_cast<unsigned>(end));
  };
  for (const auto& [height, width] : {std::pair(1, 1), {1, 16384}, {1000, 1}, {60, 90}, {3, 2}}) {
    SCOPED_TRACE(height);
    ArrayRanges ranges;
    std::vector<CellRange> all;
    EXPECT_FALSE(ranges.find({0, 0}));
    for (int i = 0; i < 60; ++i) {
      const int row = below(1000);
      const int column = below(200);
      all.push_back({row, row + below(height), column, std::min(column + below(width), 16383)});
      ranges.add(all.back());
      const ArrayRanges copy = ranges;
      for (int tries = 0; tries < 200; ++tries) {
        const CellAddress at{below(1100), tries % 10 == 0 ? below(16384) : below(220)};
        const CellRange* found = copy.find(at);
        const auto holds = [&](const CellRange& range) {
          return range.contains(at.row, at.column);
        };
        if (found) ASSERT_TRUE(holds(*found));
        else ASSERT_TRUE(std::ranges::none_of(all, holds)) << at.row << " " << at.column;
      }
    }
    EXPECT_EQ(ranges.size(), all.size());
  }
}

}  // namespace
