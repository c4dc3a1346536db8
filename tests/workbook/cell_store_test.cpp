#include "engine/workbook/cell_store.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

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

// Whatever the order of writing, the cells come out ascending and each holds what it was given.
TEST(CellStore, AgreesWithAMapInAnyOrder) {
  std::mt19937 random(7);
  CellStore store;
  std::map<std::pair<int, int>, double> model;
  for (int step = 0; step < 20000; ++step) {
    const int row = static_cast<int>(random() % 300);
    const int column = static_cast<int>(random() % 120);
    if (random() % 5 == 0) {
      store.erase(row, column);
      model.erase({row, column});
    } else {
      put(store, row, column, step);
      model[{row, column}] = step;
    }
  }
  std::map<std::pair<int, int>, double> found;
  std::pair<int, int> before = {-1, -1};
  for (const Row& row : store.rows())
    for (const Cell& cell : row.span()) {
      const std::pair at{static_cast<int>(row.number), static_cast<int>(cell.column)};
      EXPECT_LT(before, at);
      before = at;
      found[at] = cell.number;
    }
  EXPECT_EQ(found, model);
  for (const auto& [at, number] : model) {
    const Cell* cell = store.find(at.first, at.second);
    ASSERT_TRUE(cell);
    EXPECT_EQ(cell->number, number);
  }
  EXPECT_EQ(store.cell_count(), model.size());
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
  store.erase(9, 4);
  EXPECT_FALSE(store.used_range(&range));
}

}  // namespace
