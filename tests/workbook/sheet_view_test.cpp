#include "engine/workbook/sheet_view.h"

#include <gtest/gtest.h>

#include <utility>

namespace engine {
namespace {

using formula::Axis;
using formula::Move;
using Kind = Move::Kind;

constexpr Grid kGrid{100, 50};

// A view in one direction: `frozen` rows from `from` on, `top` the first that scrolls.
SheetView rows(int from, int frozen, int top) {
  SheetView view;
  view.frozen_from.row = from;
  view.frozen_rows = frozen;
  view.top_left.row = top;
  return view;
}

SheetView turned(SheetView view) {
  std::swap(view.frozen_rows, view.frozen_columns);
  std::swap(view.frozen_from.row, view.frozen_from.column);
  std::swap(view.top_left.row, view.top_left.column);
  return view;
}

TEST(SheetView, StaysScrolledWherePanesAreFrozen) {
  const struct {
    SheetView view;
    int frozen;
    SheetView wanted;
  } cases[] = {
      {rows(0, 0, 0), 3, rows(0, 3, 3)},     {rows(0, 0, 20), 3, rows(0, 3, 20)},
      {rows(0, 0, 20), 30, rows(0, 30, 30)}, {rows(0, 3, 3), 1, rows(0, 1, 1)},
      {rows(5, 3, 20), 1, rows(0, 1, 20)},   {rows(5, 3, 8), 0, rows(0, 0, 0)},
      {rows(0, 3, 20), 0, rows(0, 0, 20)},
  };
  for (const auto& [view, frozen, wanted] : cases) {
    SCOPED_TRACE(frozen);
    EXPECT_EQ(freeze(view, frozen, 0), wanted);
    EXPECT_EQ(freeze(turned(view), 0, frozen), turned(wanted));
  }
}

TEST(SheetView, ScrollsBehindTheFrozenPart) {
  EXPECT_EQ(scroll(rows(5, 3, 8), {2, 7}).top_left, (CellAddress{8, 7}));
  EXPECT_EQ(scroll(rows(0, 0, 8), {2, 0}).top_left, (CellAddress{2, 0}));
  EXPECT_EQ(scroll(rows(0, 3, 3), {3, 0}).top_left, (CellAddress{3, 0}));
}

TEST(SheetView, FollowsWhatIsInsertedAndRemoved) {
  const struct {
    SheetView view;
    Kind kind;
    int at;
    int count;
    SheetView wanted;
  } cases[] = {
      // Not frozen.
      {rows(0, 0, 0), Kind::kInsert, 0, 5, rows(0, 0, 0)},
      {rows(0, 0, 9), Kind::kInsert, 9, 5, rows(0, 0, 14)},
      {rows(0, 0, 9), Kind::kInsert, 10, 5, rows(0, 0, 9)},
      {rows(0, 0, 9), Kind::kInsert, 0, 95, rows(0, 0, 99)},
      {rows(0, 0, 9), Kind::kRemove, 4, 5, rows(0, 0, 4)},
      {rows(0, 0, 9), Kind::kRemove, 4, 9, rows(0, 0, 4)},
      // Frozen from the first row.
      {rows(0, 3, 3), Kind::kInsert, 0, 2, rows(0, 5, 5)},
      {rows(0, 3, 3), Kind::kInsert, 2, 2, rows(0, 5, 5)},
      {rows(0, 3, 3), Kind::kInsert, 3, 2, rows(0, 3, 3)},
      {rows(0, 3, 9), Kind::kInsert, 3, 2, rows(0, 3, 11)},
      {rows(0, 3, 3), Kind::kInsert, 1, 200, rows(0, 99, 99)},
      {rows(0, 3, 3), Kind::kRemove, 1, 1, rows(0, 2, 2)},
      {rows(0, 3, 3), Kind::kRemove, 1, 9, rows(0, 1, 1)},
      {rows(0, 3, 20), Kind::kRemove, 1, 9, rows(0, 1, 11)},
      {rows(0, 3, 8), Kind::kRemove, 1, 9, rows(0, 1, 1)},
      {rows(0, 3, 3), Kind::kRemove, 0, 3, rows(0, 0, 0)},
      {rows(0, 3, 9), Kind::kRemove, 0, 3, rows(0, 0, 6)},
      // Frozen further down.
      {rows(5, 3, 8), Kind::kInsert, 4, 2, rows(7, 3, 10)},
      {rows(5, 3, 8), Kind::kInsert, 5, 2, rows(5, 5, 10)},
      {rows(5, 3, 8), Kind::kRemove, 0, 6, rows(0, 2, 2)},
      {rows(5, 3, 8), Kind::kRemove, 5, 3, rows(0, 0, 0)},
  };
  for (const auto& [view, kind, at, count, wanted] : cases) {
    SCOPED_TRACE(testing::Message() << view.frozen_from.row << " " << view.frozen_rows << " "
                                    << view.top_left.row << ": " << at << " " << count);
    EXPECT_EQ(moved(view, {Axis::kRows, kind, at, count}, {100, 9}), wanted);
    EXPECT_EQ(moved(view, {Axis::kColumns, kind, at, count}, kGrid), view);
    EXPECT_EQ(moved(turned(view), {Axis::kColumns, kind, at, count}, {9, 100}), turned(wanted));
  }
}

}  // namespace
}  // namespace engine
