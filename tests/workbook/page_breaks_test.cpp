#include "engine/workbook/page_breaks.h"

#include <gtest/gtest.h>

namespace engine {
namespace {

using formula::Axis;
using formula::Move;
using Kind = Move::Kind;

constexpr Grid kGrid{100, 50};

PageBreakList breaks(std::initializer_list<int> places) {
  PageBreakList list;
  for (const int at : places) list.push_back({at, 0, 49});
  return list;
}

TEST(PageBreaks, StandInOrderAndOnceAPlace) {
  PageBreakList list;
  for (const int at : {7, 3, 9, 3, 5}) put_break(list, {at, 0, 49});
  EXPECT_EQ(list, breaks({3, 5, 7, 9}));
  EXPECT_TRUE(has_break(list, 7));
  EXPECT_FALSE(has_break(list, 8));
  remove_break(list, 7);
  remove_break(list, 8);
  EXPECT_EQ(list, breaks({3, 5, 9}));
}

TEST(PageBreaks, FollowWhatIsInsertedAndRemoved) {
  const struct {
    Kind kind;
    int at;
    int count;
    PageBreakList wanted;
  } cases[] = {
      {Kind::kInsert, 0, 10, breaks({15, 20, 30})},
      {Kind::kInsert, 10, 1, breaks({5, 11, 21})},
      {Kind::kInsert, 21, 5, breaks({5, 10, 20})},
      {Kind::kInsert, 6, 85, breaks({5, 95})},  // what passes the last row goes
      {Kind::kRemove, 10, 1, breaks({5, 19})},
      {Kind::kRemove, 6, 4, breaks({5, 6, 16})},
      {Kind::kRemove, 5, 6, breaks({14})},
      {Kind::kRemove, 0, 5, breaks({5, 15})},  // above the first row is none
      {Kind::kRemove, 0, 99, {}},
  };
  for (const auto& [kind, at, count, wanted] : cases) {
    SCOPED_TRACE(testing::Message() << at << " " << count);
    const Move move{Axis::kRows, kind, at, count};
    EXPECT_EQ(moved(PageBreaks{breaks({5, 10, 20}), {}}, move, kGrid), (PageBreaks{wanted, {}}));
    const Move across{Axis::kColumns, kind, at, count};
    EXPECT_EQ(moved(PageBreaks{{}, breaks({5, 10, 20})}, across, {50, 100}),
              (PageBreaks{{}, wanted}));
  }
}

TEST(PageBreaks, AreAsLongAsTheirColumns) {
  const struct {
    PageBreak one;
    Move move;
    PageBreakList wanted;
  } cases[] = {
      {{5, 2, 9}, {Axis::kColumns, Kind::kInsert, 4, 3}, {{5, 2, 12}}},
      {{5, 2, 9, true}, {Axis::kColumns, Kind::kRemove, 0, 4}, {{5, 0, 5, true}}},
      {{5, 2, 9}, {Axis::kColumns, Kind::kRemove, 1, 20}, {}},
      // As long as the sheet, however they say so.
      {{5, 0, 49}, {Axis::kColumns, Kind::kRemove, 4, 3}, {{5, 0, 49}}},
      {{5, 0, 49}, {Axis::kColumns, Kind::kInsert, 4, 3}, {{5, 0, 49}}},
      {{5, 0, 0}, {Axis::kColumns, Kind::kRemove, 0, 3}, {{5, 0, 0}}},
  };
  for (const auto& [one, move, wanted] : cases) {
    SCOPED_TRACE(testing::Message() << one.first << " " << one.last << ": " << move.at);
    EXPECT_EQ(moved(PageBreaks{{one}, {}}, move, kGrid), (PageBreaks{wanted, {}}));
  }
}

}  // namespace
}  // namespace engine
