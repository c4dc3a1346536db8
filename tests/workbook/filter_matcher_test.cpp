#include "engine/workbook/filter_matcher.h"

#include <gtest/gtest.h>

#include <string>
#include <variant>
#include <vector>

namespace engine {
namespace {

using Op = FilterOperator;

// What a cell holds: a number under a format, a text, a flag, an error; or there is none.
struct Number {
  double number;
  const char* code = "General";
};
using Content = std::variant<std::monostate, Number, const char*, bool, std::uint32_t>;
constexpr std::uint32_t kNotAvailable = 42;

class FilterMatching : public ::testing::Test {
 protected:
  static constexpr CellRange kRange{0, 100, 0, 0};

  void put(int row, const Content& content) {
    std::uint32_t format = 0;
    Value value;
    if (const auto* number = std::get_if<Number>(&content)) {
      value = Value::of_number(number->number);
      format = *book.styles.add_format();
      book.styles.change_format(format, kFormatNumber).number_format =
          *book.styles.add_number_format(number->code);
    } else if (const auto* text = std::get_if<const char*>(&content)) {
      value = Value::of_text(book.strings.add(*text));
    } else if (const auto* flag = std::get_if<bool>(&content)) {
      value = Value::of_boolean(*flag);
    } else if (const auto* error = std::get_if<std::uint32_t>(&content)) {
      value = Value::of_error(*error);
    } else {
      return;
    }
    sheet.put_value(row, 0, value, format);
  }
  bool accepts(const FilterCriterion& criterion, int row) const {
    const ColumnFilter filter{0, criterion};
    return FilterMatcher(book, sheet, filter, kRange).accepts(sheet.cells.find(row, 0));
  }

  Workbook book{Limits()};
  SheetContents sheet;
};

TEST_F(FilterMatching, OfOneCondition) {
  const struct {
    Content cell;
    Op comparison;
    const char* value;
    bool accepted;
  } cases[] = {
      {"Green Tea", Op::kEqual, "green tea", true},
      {"Green Tea", Op::kEqual, "green", false},
      {"Green Tea", Op::kEqual, "gr*", true},
      {"Green Tea", Op::kEqual, "*TEA", true},
      {"Green Tea", Op::kEqual, "g*e*t?a", true},
      {"Green Tea", Op::kEqual, "g?een tea?", false},
      {"aab", Op::kEqual, "*ab", true},
      {"abcabd", Op::kEqual, "*ab?", true},
      {"", Op::kEqual, "*", true},
      {"2*3?~", Op::kEqual, "2~*3~?~~", true},
      {"2x3?~", Op::kEqual, "2~*3~?~~", false},
      {"a~b", Op::kEqual, "a~b", true},
      {"ß€😀", Op::kEqual, "ß??", true},
      {"Green Tea", Op::kNotEqual, "*tea*", false},
      {"Coffee", Op::kNotEqual, "*tea*", true},
      {std::monostate(), Op::kNotEqual, "*tea*", true},
      {Number{12}, Op::kEqual, "12", true},
      {Number{12}, Op::kEqual, " 12.0", true},
      {Number{12}, Op::kEqual, "1?", true},
      {Number{1234.5, "#,##0.00"}, Op::kEqual, "1,234.50", true},
      {Number{1234.5, "#,##0.00"}, Op::kEqual, "1234.5", true},
      {Number{1234.5, "#,##0.00"}, Op::kEqual, "1234.50", true},
      {Number{0.125, "0%"}, Op::kEqual, "13%", true},
      {Number{0.125, "0%"}, Op::kEqual, "12.5%", true},
      {Number{0.125, "0%"}, Op::kLess, "13%", true},
      {Number{46082, "d.m.yyyy"}, Op::kEqual, "2026-03-01", true},
      {Number{46082, "d.m.yyyy"}, Op::kEqual, "1.3.2026", true},
      {Number{46082.5, "d.m.yyyy"}, Op::kGreater, "2026-03-01", true},
      {Number{46082.5}, Op::kEqual, "2026-03-01T12:00:00", true},
      {Number{46082.5}, Op::kGreater, "2026-03-01 12:00", false},
      {"12", Op::kEqual, "12", true},
      {"12", Op::kGreaterOrEqual, "12", false},
      {true, Op::kEqual, "true", true},
      {true, Op::kGreater, "0", false},
      {kNotAvailable, Op::kEqual, "#n/a", true},
      {kNotAvailable, Op::kLess, "z", false},
      {Number{5}, Op::kLess, "5", false},
      {Number{5}, Op::kLessOrEqual, "5", true},
      {Number{5}, Op::kGreaterOrEqual, "5", true},
      {Number{5}, Op::kGreater, "4.9", true},
      {Number{5}, Op::kNotEqual, "5", false},
      {Number{5}, Op::kGreater, "apple", false},
      {"Banana", Op::kGreater, "apple", true},
      {"apple", Op::kLess, "BANANA", true},
      {"zz", Op::kLess, "é", true},
      {"a*", Op::kGreaterOrEqual, "a*", true},
      {std::monostate(), Op::kLess, "5", false},
      {std::monostate(), Op::kEqual, "", true},
      {"", Op::kEqual, "", true},
      {"x", Op::kEqual, "", false},
      {Number{0}, Op::kEqual, "", false},
      {std::monostate(), Op::kNotEqual, "", false},
      {Number{0}, Op::kNotEqual, "", true},
  };
  int row = 0;
  for (const auto& [cell, comparison, value, accepted] : cases) {
    put(++row, cell);
    FilterCriterion criterion;
    criterion.kind = FilterKind::kCustom;
    criterion.conditions = {{comparison, value}};
    EXPECT_EQ(accepts(criterion, row), accepted) << "case " << row << ": " << value;
  }
}

TEST_F(FilterMatching, OfTwoConditionsAsTheyAreJoined) {
  FilterCriterion criterion;
  criterion.kind = FilterKind::kCustom;
  criterion.conditions = {{Op::kGreater, "2"}, {Op::kLess, "4"}};
  for (int row = 1; row <= 5; ++row) put(row, Number{static_cast<double>(row)});
  for (const bool both : {true, false}) {
    criterion.both = both;
    for (int row = 1; row <= 5; ++row)
      EXPECT_EQ(accepts(criterion, row), !both || row == 3) << row << both;
  }
}

TEST_F(FilterMatching, OfValuesByWhatCellsShow) {
  FilterCriterion criterion;
  criterion.kind = FilterKind::kValues;
  for (const char* value : {"Tea", "1,234.50", "TRUE", "#N/A", "a*"}) criterion.texts.add(value);
  const struct {
    Content cell;
    bool accepted;
  } cases[] = {
      {"tea", true},
      {"teas", false},
      {Number{1234.5, "#,##0.00"}, true},
      {Number{1234.5}, false},
      {true, true},
      {false, false},
      {kNotAvailable, true},
      {"abc", false},  // wildcards are plain characters here
      {"A*", true},
      {std::monostate(), false},
      {"", false},
  };
  int row = 0;
  for (const auto& [cell, accepted] : cases) {
    put(++row, cell);
    EXPECT_EQ(accepts(criterion, row), accepted) << row;
  }
  criterion.blanks = true;
  EXPECT_TRUE(accepts(criterion, row));
  EXPECT_TRUE(accepts(criterion, row + 1));
}

TEST_F(FilterMatching, OfDatesByTheirParts) {
  put(1, Number{46082.60474537037, "yyyy-mm-dd"});  // 2026-03-01 14:30:50
  put(2, Number{46082.60474537037});
  const struct {
    DatePart finest;
    DateTime date;
    bool accepted;
  } cases[] = {
      {DatePart::kYear, {2026}, true},
      {DatePart::kYear, {2025, 3, 1}, false},
      {DatePart::kMonth, {2026, 3, 9}, true},
      {DatePart::kMonth, {2026, 4}, false},
      {DatePart::kDay, {2026, 3, 1, 5}, true},
      {DatePart::kDay, {2026, 3, 2}, false},
      {DatePart::kHour, {2026, 3, 1, 14}, true},
      {DatePart::kMinute, {2026, 3, 1, 14, 30}, true},
      {DatePart::kMinute, {2026, 3, 1, 14, 31}, false},
      {DatePart::kSecond, {2026, 3, 1, 14, 30, 50}, true},
      {DatePart::kSecond, {2026, 3, 1, 14, 30, 51}, false},
  };
  for (const auto& [finest, date, accepted] : cases) {
    FilterCriterion criterion;
    criterion.kind = FilterKind::kValues;
    criterion.dates = {{date, finest}};
    EXPECT_EQ(accepts(criterion, 1), accepted) << static_cast<int>(finest) << date.month;
    EXPECT_FALSE(accepts(criterion, 2)) << "a number that is no date";
  }
}

TEST_F(FilterMatching, OfTheLargestAndSmallestNumbers) {
  put(0, Number{99});  // the header
  const double numbers[] = {5, 1, 9, 5, 7, 3, 9};
  int row = 0;
  for (const double number : numbers) put(++row, Number{number});
  put(++row, "12");
  put(++row, true);
  const struct {
    double count;
    bool largest;
    bool percent;
    std::vector<int> rows;
  } cases[] = {
      {1, true, false, {3, 7}},
      {3, true, false, {3, 5, 7}},
      {4, true, false, {1, 3, 4, 5, 7}},
      {2, false, false, {2, 6}},
      {10, true, true, {3, 7}},
      {30, false, true, {2, 6}},
      {100, true, true, {1, 2, 3, 4, 5, 6, 7}},
      {500, false, false, {1, 2, 3, 4, 5, 6, 7}},
  };
  for (const auto& [count, largest, percent, rows] : cases) {
    FilterCriterion criterion;
    criterion.kind = FilterKind::kTop10;
    criterion.count = count;
    criterion.largest = largest;
    criterion.percent = percent;
    std::vector<int> shown;
    for (int at = 1; at <= row + 1; ++at)
      if (accepts(criterion, at)) shown.push_back(at);
    EXPECT_EQ(shown, rows) << count << largest << percent;
  }
}

}  // namespace
}  // namespace engine
