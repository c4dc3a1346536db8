// The filter of a sheet, or of a table: a range with its headers in the first row, which cells its
// columns show, and by what the rows were sorted.
//
// Criteria only say which rows shall be seen. Whoever applies a filter hides the others, and a
// program that opens a file takes hidden rows as they stand.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "engine/formula/interval.h"
#include "engine/formula/reference.h"
#include "engine/workbook/dates.h"

namespace engine {

enum class FilterKind : std::uint8_t {
  kValues,
  kTop10,
  kCustom,
  // The look of cells, or of today: the codec carries what these say.
  kDynamic,
  kColor,
  kIcon,
  kExtension,
  kNone,
};

enum class FilterOperator : std::uint8_t {
  kEqual,
  kLess,
  kLessOrEqual,
  kNotEqual,
  kGreaterOrEqual,
  kGreater,
};

// Texts in the order in which they came, each once whatever its case.
class ShownTexts {
 public:
  const std::vector<std::string>& all() const { return all_; }
  bool holds_folded(const std::string& folded) const { return folded_.contains(folded); }
  // One that is there already is left out.
  void add(std::string text);

  friend bool operator==(const ShownTexts& a, const ShownTexts& b) { return a.all_ == b.all_; }

 private:
  std::vector<std::string> all_;
  std::unordered_set<std::string> folded_;
};

enum class DatePart : std::uint8_t { kYear, kMonth, kDay, kHour, kMinute, kSecond };

// All times that agree with one in the parts down to the named one.
struct DateGroup {
  DateTime date;
  DatePart finest = DatePart::kYear;

  friend bool operator==(const DateGroup&, const DateGroup&) = default;
};

// Without a value empty cells are equal.
struct FilterCondition {
  FilterOperator comparison = FilterOperator::kEqual;
  std::string value;

  friend bool operator==(const FilterCondition&, const FilterCondition&) = default;
};

// What the cells of a column must be like to be shown. Fields of other kinds have their defaults.
struct FilterCriterion {
  FilterKind kind = FilterKind::kNone;

  // kValues: what cells show, empty cells among them, and dates.
  ShownTexts texts;
  bool blanks = false;
  std::vector<DateGroup> dates;

  // kTop10: so many numbers, or so many in a hundred, from the largest or from the smallest on.
  double count = 0;
  bool largest = true;
  bool percent = false;
  std::optional<double> last_shown;  // the number that ended them when the filter was applied

  // kCustom: one or two.
  std::vector<FilterCondition> conditions;
  bool both = false;  // must hold; else one is enough

  friend bool operator==(const FilterCriterion&, const FilterCriterion&) = default;
};

struct ColumnFilter {
  int column = 0;  // of the sheet
  FilterCriterion criterion;
  bool shows_button = true;
  std::uint32_t details = 0;  // kept for the codec: number of what else the file says of it

  friend bool operator==(const ColumnFilter&, const ColumnFilter&) = default;
};

struct SortKey {
  CellRange cells;
  bool descending = false;
  std::uint32_t details = 0;

  friend bool operator==(const SortKey&, const SortKey&) = default;
};

// By what rows were sorted, the most important key first. There is one at least.
struct SortState {
  CellRange range;
  std::vector<SortKey> keys;

  friend bool operator==(const SortState&, const SortState&) = default;
};

struct AutoFilter {
  std::optional<CellRange> range;
  std::vector<ColumnFilter> columns;  // ascending; others have no criterion
  std::optional<SortState> sort;

  friend bool operator==(const AutoFilter&, const AutoFilter&) = default;
};

// The rows below the header; of a range that is a header alone, that.
CellRange data_rows(const CellRange& filter);

// Null without one.
const ColumnFilter* find_column(const AutoFilter& filter, int column);
ColumnFilter* find_column(AutoFilter& filter, int column);

// Gives a column of the range a criterion. When memory is short the filter stays as it is.
void set_criterion(AutoFilter& filter, int column, FilterCriterion criterion);

// The filter over another range: criteria stay with the columns of the sheet, and with them goes
// what is outside. The sort covers the rows that there are then.
AutoFilter with_range(AutoFilter filter, const CellRange& range);

// After rows or columns were inserted or removed. A filter whose header goes is none.
AutoFilter moved(AutoFilter filter, const formula::Move& move, const Grid& grid);
// Nothing when no key is left.
std::optional<SortState> moved(SortState sort, const formula::Move& move, const Grid& grid);

}  // namespace engine
