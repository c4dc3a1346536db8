#include "engine/workbook/validations.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>

#include "engine/formula/formula_text.h"
#include "engine/workbook/ignored_errors.h"

namespace engine {
namespace {

using formula::Axis;
using formula::Move;

constexpr Grid kGrid{60, 60};

std::optional<std::string> unchanged(std::string_view) { return std::nullopt; }

// Which rule, by its error text, each cell has. The formula of every rule means the cell itself.
std::map<CellAddress, std::string> rules_by_cell(const Validations& validations) {
  std::map<CellAddress, std::string> rules;
  std::size_t count = 0;
  for (const Validation& rule : validations.slots()) {
    if (rule.cells.empty()) continue;
    ++count;
    EXPECT_EQ(rule.corner, corner_of(rule.cells));
    EXPECT_EQ(rule.formulas[0], formula::print_cell(rule.corner.row, rule.corner.column) + ">0");
    for (const CellRange& range : rule.cells)
      for (int row = range.row_first; row <= range.row_last; ++row)
        for (int column = range.column_first; column <= range.column_last; ++column)
          EXPECT_TRUE(rules.emplace(CellAddress{row, column}, rule.error).second)
              << "two rules at " << formula::print_cell(row, column);
  }
  EXPECT_EQ(count, validations.size());
  return rules;
}

// Rules are put, rows and columns come and go, against a book of every cell.
TEST(Validations, ACellHasTheRuleThatCameLast) {
  std::mt19937 random(5);
  const auto below = [&](int end) {
    return static_cast<int>(random() % static_cast<unsigned>(end));
  };
  Validations validations;
  std::map<CellAddress, std::string> expected;
  for (int round = 0; round < 600; ++round) {
    if (round % 5 == 4) {
      const Move move{below(2) ? Axis::kRows : Axis::kColumns,
                      below(3) ? Move::Kind::kRemove : Move::Kind::kInsert, below(60),
                      1 + below(4)};
      validations = moved(validations, move, kGrid, [&](std::string_view text) {
        return formula::adjust_text(text, move, "", true, kGrid);
      });
      std::map<CellAddress, std::string> after;
      for (const auto& [cell, rule] : expected) {
        CellAddress to = cell;
        int& place = move.axis == Axis::kRows ? to.row : to.column;
        const auto moved_to = formula::moved(place, move);
        if (!moved_to || *moved_to >= 60) continue;
        place = *moved_to;
        after.emplace(to, rule);
      }
      // A range that rows are put into takes these as well.
      if (move.kind == Move::Kind::kInsert)
        for (const auto& [cell, rule] : rules_by_cell(validations)) after.emplace(cell, rule);
      expected = std::move(after);
    } else {
      const int row = below(50);
      const int column = below(50);
      const CellRange cells{row, std::min(59, row + below(20)), column,
                            std::min(59, column + below(round % 3 == 0 ? 20 : 2))};
      Validation rule;
      rule.error = std::to_string(round);
      rule.formulas[0] = formula::print_cell(row, column) + ">0";
      validations.put(cells, std::move(rule), kGrid);
      for (int at = cells.row_first; at <= cells.row_last; ++at)
        for (int to = cells.column_first; to <= cells.column_last; ++to)
          expected[{at, to}] = std::to_string(round);
    }
    ASSERT_EQ(rules_by_cell(validations), expected) << "round " << round;
  }
}

TEST(Validations, OfAFileMayMeetUntilANewOneComes) {
  Validations validations;
  for (const char* error : {"a", "b"}) {
    Validation rule;
    rule.error = error;
    rule.cells = {{0, 9, 0, 0}, {0, 9, 2, 2}};
    validations.add(std::move(rule));
  }
  validations.put({0, 9, 0, 0}, {}, kGrid);
  EXPECT_EQ(validations.size(), 3U);
  for (std::size_t i : {0U, 1U})
    EXPECT_EQ(validations.slots()[i].cells, (CellRanges{{0, 9, 2, 2}}));
  validations.put({0, 9, 0, 2}, {}, kGrid);
  EXPECT_EQ(validations.size(), 1U);
  EXPECT_TRUE(
      moved(validations, {Axis::kRows, Move::Kind::kRemove, 0, 10}, kGrid, unchanged).empty());
}

TEST(IgnoredErrors, AddKindsForTheSameRangeAlone) {
  IgnoredErrors errors;
  errors.add({{{0, 0, 0, 0}, {5, 5, 0, 0}}, kFormulaFault, 1});
  errors.put({0, 9, 0, 0}, kNumberAsTextFault);
  errors.put({0, 9, 0, 0}, kRangeFault);
  errors.put({0, 0, 0, 0}, kRangeFault);
  ASSERT_EQ(errors.all().size(), 3U);
  EXPECT_EQ(errors.all()[0].kinds, kFormulaFault);
  EXPECT_EQ(errors.all()[1].kinds, kNumberAsTextFault | kRangeFault);

  errors = moved(errors, {Axis::kRows, Move::Kind::kRemove, 0, 1}, kGrid);
  ASSERT_EQ(errors.all().size(), 2U);
  EXPECT_EQ(errors.all()[0], (IgnoredError{{{4, 4, 0, 0}}, kFormulaFault, 1}));
  errors.put({4, 4, 0, 0}, kRangeFault);
  EXPECT_EQ(errors.all()[0].kinds, kFormulaFault | kRangeFault);
}

}  // namespace
}  // namespace engine
