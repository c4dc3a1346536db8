#include "engine/workbook/auto_filter.h"

#include <gtest/gtest.h>

#include <string>

#include "engine/workbook/limits.h"

namespace engine {
namespace {

using formula::Axis;
using Kind = formula::Move::Kind;

// "A1:D9; B C; A2:D9 by C2:C9": range, columns with a criterion, sort.
std::string shown(const AutoFilter& filter) {
  if (!filter.range) return "";
  std::string text = formula::print_range(*filter.range) + ";";
  for (const ColumnFilter& one : filter.columns) text += " " + formula::print_column(one.column);
  if (!filter.sort) return text;
  text += "; " + formula::print_range(filter.sort->range) + " by";
  for (const SortKey& key : filter.sort->keys) text += " " + formula::print_range(key.cells);
  return text;
}

CellRange range(const char* text) { return *formula::parse_range(text, Limits().grid); }

AutoFilter sample() {
  AutoFilter filter;
  filter.range = range("B3:E9");
  FilterCriterion criterion;
  criterion.kind = FilterKind::kDynamic;
  for (const int column : {4, 1, 2}) set_criterion(filter, column, criterion);
  filter.sort = SortState{range("B4:E9"), {{range("C4:C9"), true}, {range("E4:E9")}}};
  return filter;
}

TEST(AutoFilter, FollowsRowsAndColumns) {
  const struct {
    formula::Move move;
    const char* after;
  } cases[] = {
      {{Axis::kRows, Kind::kInsert, 2, 2}, "B5:E11; B C E; B6:E11 by C6:C11 E6:E11"},
      {{Axis::kRows, Kind::kInsert, 5, 1}, "B3:E10; B C E; B4:E10 by C4:C10 E4:E10"},
      {{Axis::kRows, Kind::kRemove, 2, 1}, ""},
      {{Axis::kRows, Kind::kRemove, 3, 6}, "B3:E3; B C E"},
      {{Axis::kRows, Kind::kRemove, 0, 2}, "B1:E7; B C E; B2:E7 by C2:C7 E2:E7"},
      {{Axis::kColumns, Kind::kInsert, 2, 2}, "B3:G9; B E G; B4:G9 by E4:E9 G4:G9"},
      {{Axis::kColumns, Kind::kRemove, 1, 2}, "B3:C9; C; B4:C9 by C4:C9"},
      {{Axis::kColumns, Kind::kRemove, 2, 3}, "B3:B9; B"},
      {{Axis::kColumns, Kind::kRemove, 0, 9}, ""},
      {{Axis::kColumns, Kind::kInsert, 4, 16380}, "B3:XFD9; B C; B4:XFD9 by C4:C9"},
  };
  for (const auto& [move, after] : cases)
    EXPECT_EQ(shown(moved(sample(), move, Limits().grid)), after) << move.at << "+" << move.count;
  EXPECT_EQ(shown(moved(AutoFilter(), cases[0].move, Limits().grid)), "");
}

TEST(AutoFilter, GetsAnotherRange) {
  const struct {
    const char* to;
    const char* after;
  } cases[] = {
      {"B3:E9", "B3:E9; B C E; B4:E9 by C4:C9 E4:E9"},
      {"A3:F30", "A3:F30; B C E; A4:F30 by C4:C30 E4:E30"},
      {"C1:D9", "C1:D9; C; C2:D9 by C2:C9"},
      {"B20:E30", "B20:E30; B C E"},
      {"D3:D9", "D3:D9;"},
      {"C4:C4", "C4; C; C4 by C4"},
  };
  for (const auto& [to, after] : cases)
    EXPECT_EQ(shown(with_range(sample(), range(to))), after) << to;
}

TEST(AutoFilter, DropsAColumnThatSaysNothingAnyMore) {
  AutoFilter filter = sample();
  set_criterion(filter, 2, {});
  set_criterion(filter, 3, {});
  filter.columns.back().shows_button = false;
  set_criterion(filter, 4, {});
  ASSERT_EQ(filter.columns.size(), 2U);
  EXPECT_EQ(find_column(filter, 4)->criterion.kind, FilterKind::kNone);
}

TEST(ShownTexts, AreEachThereOnce) {
  ShownTexts texts;
  for (const char* text : {"b", "a", "B", "ä", "Ä"}) texts.add(text);
  EXPECT_EQ(texts.all(), (std::vector<std::string>{"b", "a", "ä"}));
}

}  // namespace
}  // namespace engine
