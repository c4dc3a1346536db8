#include "engine/workbook/cell_store.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <utility>
#include <vector>

namespace {

using engine::Cell;
using engine::CellKind;
using engine::CellRange;
using engine::CellStore;
using engine::Row;

void put(CellStore& store, int row, int column, double number) {
  Cell& cell = store.at(row, column);
  cell.kind = CellKind::kNumber;
  cell.number = number;
}

using Cells = std::map<std::pair<int, int>, double>;

// The cells in the order in which a store gives them, which must be ascending.
Cells cells_of(const CellStore& store) {
  Cells found;
  std::pair<int, int> before = {-1, -1};
  for (const Row& row : store.rows())
    for (const Cell& cell : row.span()) {
      const std::pair at{static_cast<int>(row.number), static_cast<int>(cell.column)};
      EXPECT_LT(before, at);
      before = at;
      found[at] = cell.number;
    }
  return found;
}

CellRange range_of(const Cells& cells) {
  CellRange range{cells.begin()->first.first, cells.rbegin()->first.first, 1 << 20, 0};
  for (const auto& [at, number] : cells) {
    range.column_first = std::min(range.column_first, at.second);
    range.column_last = std::max(range.column_last, at.second);
  }
  return range;
}

// Whatever the order of writing, the cells come out ascending and each holds what it was given, in
// a copy as well; neither of the two follows the other.
TEST(CellStore, AgreesWithAMapInAnyOrder) {
  for (const unsigned distance : {1U, 63U, 3000U}) {
    SCOPED_TRACE(distance);
    std::mt19937 random(7);
    CellStore store;
    CellStore copy;
    Cells model;
    Cells model_of_copy;
    for (int step = 0; step < 20000; ++step) {
      if (step == 10000) {
        copy = store;
        model_of_copy = model;
      }
      const int row = static_cast<int>(random() % 300 * distance);
      const int column = static_cast<int>(random() % 120);
      if (random() % 5 == 0) {
        store.erase({row, row, column, column}, [](const Cell&) {});
        model.erase({row, column});
      } else {
        put(store, row, column, step);
        model[{row, column}] = step;
      }
      if (step % 1000 != 0 || model.empty()) continue;
      CellRange used;
      EXPECT_TRUE(store.used_range(&used));
      EXPECT_EQ(used, range_of(model));
    }
    EXPECT_EQ(cells_of(store), model);
    EXPECT_EQ(cells_of(copy), model_of_copy);
    for (const auto& [at, number] : model) {
      const Cell* cell = store.find(at.first, at.second);
      ASSERT_TRUE(cell);
      EXPECT_EQ(cell->number, number);
    }
    EXPECT_EQ(store.cell_count(), model.size());
    put(copy, 2, 5, -1);
    EXPECT_EQ(cells_of(store), model);
  }
}

// Rows that only one of two stores has cells of change hands, the others' cells are told one by
// one; what is written afterwards disturbs none of them.
TEST(CellStore, TakesTheCellsOfAnother) {
  std::mt19937 random(11);
  CellStore store;
  CellStore other;
  Cells model;
  for (int step = 0; step < 3000; ++step) {
    const int row = static_cast<int>(random() % 400);
    const int column = static_cast<int>(random() % 40);
    const bool is_first = row < 220 && random() % 2 == 0;
    if (!is_first && row < 180) continue;
    put(is_first ? store : other, row, column, step);
    if (!is_first || !other.find(row, column)) model[{row, column}] = step;
  }
  store.row_at(300);
  store.take_cells(std::move(other), [&](int row, const Cell& cell) {
    EXPECT_LT(row, 220);
    store.at(row, cell.column) = cell;
  });
  for (int row = 0; row < 400; ++row) {
    put(store, row, 50, row);
    model[{row, 50}] = row;
  }
  EXPECT_EQ(cells_of(store), model);
  CellRange used;
  EXPECT_TRUE(store.used_range(&used));
  EXPECT_EQ(used, range_of(model));
}

TEST(CellStore, GivesTheRowsBetweenTwo) {
  CellStore store;
  for (const int row : {0, 63, 64, 200, 1048575}) store.row_at(row);
  constexpr std::uint32_t kEnd = 1048576;
  struct Case {
    std::uint32_t first;
    std::uint32_t end;
    std::vector<std::uint32_t> rows;
  };
  const Case cases[] = {
      {0, kEnd, {0, 63, 64, 200, 1048575}},
      {1, 64, {63}},
      {64, 65, {64}},
      {65, 200, {}},
      {201, kEnd, {1048575}},
      {201, 1048575, {}},
      {0, 0, {}},
      {kEnd, kEnd, {}},
  };
  for (const auto& [first, end, rows] : cases) {
    SCOPED_TRACE(first);
    std::vector<std::uint32_t> found;
    for (const Row& row : store.rows(first, end)) found.push_back(row.number);
    EXPECT_EQ(found, rows);
  }
  EXPECT_TRUE(CellStore().rows().empty());
}

TEST(CellStore, KeepsCellsWhenRowsGrowInTurn) {
  CellStore store;
  for (int column = 0; column < 700; ++column)
    for (int row = 0; row < 50; ++row) put(store, row, column, row * 1000 + column);
  for (int row = 0; row < 50; ++row)
    for (int column = 0; column < 700; ++column)
      ASSERT_EQ(store.find(row, column)->number, row * 1000 + column);
}

TEST(CellStore, ReachesTheCornersOfTheGrid) {
  CellStore store;
  put(store, 1048575, 16383, 2);
  put(store, 0, 0, 1);
  for (int column = 0; column < 16384; ++column) put(store, 5, column, column);
  CellRange range;
  ASSERT_TRUE(store.used_range(&range));
  EXPECT_EQ(range, (CellRange{0, 1048575, 0, 16383}));
  EXPECT_EQ(store.find(5, 16383)->number, 16383);
  EXPECT_FALSE(store.find(5, 16384 - 1) == nullptr);
  EXPECT_FALSE(store.find(4, 0));
}

TEST(CellStore, CountsRowsWithoutCellsAsUnused) {
  CellStore store;
  store.row_at(3);
  CellRange range;
  EXPECT_FALSE(store.used_range(&range));
  put(store, 9, 4, 1);
  ASSERT_TRUE(store.used_range(&range));
  EXPECT_EQ(range, (CellRange{9, 9, 4, 4}));
  store.erase({9, 9, 4, 4}, [](const Cell&) {});
  EXPECT_FALSE(store.used_range(&range));
}

}  // namespace
