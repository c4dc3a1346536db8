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

// By looking along the edges and by looking through the list, for small rectangles and large ones.
TEST(ArrayRanges, AreCutByRectanglesOrLieInThem) {
  std::mt19937 random(4);
  const auto some_range = [&](unsigned size) {
    const auto below = [&](unsigned end) { return static_cast<int>(random() % end); };
    const int row = below(100);
    const int column = below(40);
    return CellRange{row, row + below(size), column, column + below(size)};
  };
  ArrayRanges ranges;
  std::vector<CellRange> all;
  while (all.size() < 60) {
    const CellRange range = some_range(5);
    if (std::ranges::any_of(all, [&](const CellRange& one) { return one.overlaps(range); }))
      continue;
    ranges.add(range);
    all.push_back(range);
  }
  for (int round = 0; round < 2000; ++round) {
    const CellRange cells = some_range(round % 2 == 0 ? 4 : 60);
    const auto lies_in = [&](const CellRange& range) {
      return cells.contains(range.row_first, range.column_first) &&
             cells.contains(range.row_last, range.column_last);
    };
    const auto is_cut = [&](const CellRange& range) {
      return range.overlaps(cells) && !lies_in(range);
    };
    const CellRange* found = ranges.cut_by(cells);
    ASSERT_EQ(found != nullptr, std::ranges::any_of(all, is_cut));
    EXPECT_TRUE(!found || is_cut(*found));
    if (round % 100 != 0) continue;
    ranges.remove_inside(cells);
    std::erase_if(all, lies_in);
    ASSERT_EQ(ranges.size(), all.size());
    for (const CellRange& left : all) ASSERT_TRUE(ranges.find({left.row_last, left.column_last}));
  }
}

// Whatever is removed, and asked for in between.
TEST(ArrayRanges, AreRemovedWhereTheyLieInRectangles) {
  std::mt19937 random(5);
  const auto below = [&](unsigned end) { return static_cast<int>(random() % end); };
  ArrayRanges ranges;
  std::vector<CellRange> all;
  for (int i = 0; i < 400; ++i) {
    const int row = below(200);
    const int column = below(20);
    all.push_back({row, row + below(9), column, column + below(4)});
    ranges.add(all.back());
  }
  while (!all.empty()) {
    const int row = below(200);
    const int column = below(20);
    const CellRange cells{row, row + below(12), column, column + below(6)};
    ranges.remove_inside(cells);
    std::erase_if(all, [&](const CellRange& one) {
      return cells.contains(one.row_first, one.column_first) &&
             cells.contains(one.row_last, one.column_last);
    });
    ASSERT_EQ(ranges.size(), all.size());
    for (int tries = 0; tries < 40; ++tries) {
      const CellAddress at{below(210), below(24)};
      const auto holds = [&](const CellRange& one) { return one.contains(at.row, at.column); };
      ASSERT_EQ(ranges.find(at) != nullptr, std::ranges::any_of(all, holds));
    }
    if (all.size() % 50 == 0) {
      ASSERT_TRUE(std::ranges::equal(ranges.all(), all));
    }
  }
  EXPECT_TRUE(ranges.empty());
}

}  // namespace
