#include "engine/workbook/merges.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace {

using engine::CellRange;
using engine::Grid;
using engine::Merges;
using engine::formula::Axis;
using engine::formula::Move;

// Ranges of every shape are set, asked for and removed, against a search of all.
TEST(Merges, AgreeWithASearchOfAll) {
  std::mt19937 random(7);
  const auto below = [&](int end) {
    return static_cast<int>(random() % static_cast<unsigned>(end));
  };
  const auto some_range = [&] {
    const int height = 1 << below(8);
    const int width = 1 << below(6);
    const int row = below(400);
    const int column = below(100);
    return CellRange{row, row + below(height), column, column + below(width)};
  };
  Merges merges;
  std::vector<CellRange> all;
  for (int round = 0; round < 4000; ++round) {
    const CellRange range = some_range();
    const auto meets = [&](const CellRange& one) { return one.overlaps(range); };
    const bool is_free = std::ranges::none_of(all, meets);
    const CellRange* found = merges.meeting(range);
    ASSERT_EQ(found == nullptr, is_free);
    EXPECT_TRUE(!found || (meets(*found) && std::ranges::find(all, *found) != all.end()));
    if (is_free && round % 1000 < 800) {
      merges.add(range);
      all.push_back(range);
    } else if (round % 3 == 0 && !all.empty()) {
      const auto index = random() % all.size();
      merges.remove(index);
      all.erase(all.begin() + static_cast<std::ptrdiff_t>(index));
    } else if (found && round % 3 == 1) {
      const CellRange gone = *found;
      ASSERT_TRUE(merges.remove_at({gone.row_last, gone.column_first}));
      std::erase(all, gone);
    }
    ASSERT_EQ(merges.size(), all.size());
    if (!all.empty()) {
      const auto index = random() % all.size();
      ASSERT_EQ(merges[index], all[index]);
    }
  }
  EXPECT_EQ(merges.all(), all);
  while (!all.empty()) {
    merges.remove(0);
    all.erase(all.begin());
    ASSERT_EQ(merges.all(), all);
  }
  EXPECT_FALSE(merges.remove_at({0, 0}));
}

TEST(Merges, OfThoseThatOverlapTheFirstHoldsItsCells) {
  const CellRange first{0, 9, 0, 9};
  const CellRange second{5, 20, 5, 20};
  Merges merges;
  merges.add(first);
  merges.add(second);
  EXPECT_EQ(merges.size(), 2U);
  EXPECT_EQ(*merges.find({7, 7}), first);
  EXPECT_FALSE(merges.find({15, 15}));
  EXPECT_TRUE(merges.remove_at({7, 7}));
  EXPECT_EQ(*merges.find({7, 7}), second);
  EXPECT_EQ(merges[0], second);
}

TEST(Merges, Move) {
  constexpr Grid kGrid{100, 50};
  const struct {
    Move move;
    std::vector<CellRange> moved;
  } cases[] = {
      {{Axis::kRows, Move::Kind::kInsert, 2, 3}, {{1, 5, 1, 2}, {8, 8, 4, 9}, {93, 99, 0, 0}}},
      {{Axis::kRows, Move::Kind::kInsert, 1, 1}, {{2, 3, 1, 2}, {6, 6, 4, 9}, {91, 99, 0, 0}}},
      {{Axis::kRows, Move::Kind::kInsert, 0, 95}, {{96, 97, 1, 2}}},
      {{Axis::kRows, Move::Kind::kRemove, 2, 4}, {{1, 1, 1, 2}, {86, 95, 0, 0}}},
      {{Axis::kRows, Move::Kind::kRemove, 91, 9}, {{1, 2, 1, 2}, {5, 5, 4, 9}}},
      {{Axis::kColumns, Move::Kind::kRemove, 5, 5}, {{1, 2, 1, 2}, {90, 99, 0, 0}}},
      {{Axis::kColumns, Move::Kind::kRemove, 2, 4}, {{1, 2, 1, 1}, {5, 5, 2, 5}, {90, 99, 0, 0}}},
  };
  Merges merges;
  for (const CellRange& range : {CellRange{1, 2, 1, 2}, {5, 5, 4, 9}, {90, 99, 0, 0}})
    merges.add(range);
  for (const auto& [move, expected] : cases) {
    SCOPED_TRACE(move.at);
    EXPECT_EQ(moved(merges, move, kGrid).all(), expected);
  }
}

}  // namespace
