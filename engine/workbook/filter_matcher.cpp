#include "engine/workbook/filter_matcher.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <string_view>

#include "engine/text/fold.h"
#include "engine/text/number_text.h"
#include "engine/text/utf8.h"
#include "engine/workbook/dates.h"
#include "engine/workbook/display.h"
#include "engine/workbook/iso_date.h"

namespace engine {

namespace {

// Marks of a pattern that are no characters.
constexpr char32_t kAnyRun = 0x110000;
constexpr char32_t kAnyOne = 0x110001;

// `*` and `?` stand for other characters, a `~` in front makes them plain.
std::u32string pattern_of(std::string_view folded) {
  std::u32string pattern;
  while (!folded.empty()) {
    char32_t code = take_character(folded);
    const bool is_plain = code == U'~' && !folded.empty() &&
                          std::string_view("*?~").find(folded.front()) != std::string_view::npos;
    if (is_plain) code = take_character(folded);
    else if (code == U'*') code = kAnyRun;
    else if (code == U'?') code = kAnyOne;
    if (code != kAnyRun || pattern.empty() || pattern.back() != kAnyRun) pattern.push_back(code);
  }
  return pattern;
}

// The last run of any characters is the only one that may have to begin anew.
bool matches(const std::u32string& pattern, std::string_view text) {
  std::size_t at = 0;
  std::optional<std::size_t> run;  // behind the last run
  std::string_view rest_of_run;
  while (!text.empty()) {
    if (at < pattern.size() && pattern[at] == kAnyRun) {
      run = ++at;
      rest_of_run = text;
      continue;
    }
    std::string_view next = text;
    const char32_t code = take_character(next);
    if (at < pattern.size() && (pattern[at] == kAnyOne || pattern[at] == code)) {
      ++at;
      text = next;
      continue;
    }
    if (!run) return false;
    at = *run;
    take_character(rest_of_run);
    text = rest_of_run;
  }
  while (at < pattern.size() && pattern[at] == kAnyRun) ++at;
  return at == pattern.size();
}

// 2026-03-01, with a time behind it or without: 2026-03-01 14:05, 2026-03-01T14:05:30.
std::optional<double> serial_of_text(std::string text, bool date1904) {
  constexpr std::size_t kYear = 4;
  if (text.find('-') != kYear) return std::nullopt;
  std::ranges::replace(text, ' ', 'T');
  return parse_iso_date(text, date1904 ? DateBase::k1904 : DateBase::k1900);
}

// What a value says if it is a number as a whole: 1.5, 15%, 2026-03-01.
std::optional<double> number_of_text(std::string_view text, bool date1904) {
  if (const auto number = parse_number(text)) return number;
  if (text.ends_with('%')) {
    const auto number = parse_number(text.substr(0, text.size() - 1));
    return number ? std::optional(*number / 100) : std::nullopt;
  }
  return serial_of_text(std::string(text), date1904);
}

template <class T>
bool compare(FilterOperator comparison, const T& a, const T& b) {
  switch (comparison) {
    case FilterOperator::kLess:
      return a < b;
    case FilterOperator::kLessOrEqual:
      return a <= b;
    case FilterOperator::kGreater:
      return b < a;
    case FilterOperator::kGreaterOrEqual:
      return b <= a;
    default:
      return false;
  }
}

}  // namespace

class FilterMatcher::Seen {
 public:
  Seen(const Workbook& book, const SheetContents& sheet, const Cell* cell)
      : book_(book), sheet_(sheet), cell_(cell), value_(cell ? sheet.value(*cell) : Value()) {}

  bool is_number() const { return value_.kind == ValueKind::kNumber; }
  bool is_text() const { return value_.kind == ValueKind::kText; }
  bool is_empty() const {
    return value_.kind == ValueKind::kNone || (is_text() && book_.strings[value_.text()].empty());
  }
  double number() const { return value_.number; }
  bool is_date() const { return is_number() && book_.styles.is_date(cell_->style, value_.number); }
  const std::string& shown() const {
    if (!shown_) shown_ = cell_ ? fold_case(display(book_, sheet_, *cell_)) : std::string();
    return *shown_;
  }

 private:
  const Workbook& book_;
  const SheetContents& sheet_;
  const Cell* cell_;
  const Value value_;
  mutable std::optional<std::string> shown_;
};

FilterMatcher::FilterMatcher(const Workbook& book, const SheetContents& sheet,
                             const ColumnFilter& filter, const CellRange& range)
    : book_(book), sheet_(sheet), filter_(filter) {
  for (const auto& [comparison, value] : filter.criterion.conditions) {
    std::string folded = fold_case(value);
    std::u32string pattern = pattern_of(folded);
    conditions_.push_back(
        {comparison, std::move(folded), std::move(pattern), number_of_text(value, book.date1904)});
  }
  if (filter.criterion.kind == FilterKind::kTop10) take_numbers(range);
}

bool FilterMatcher::is_carried() const {
  const FilterKind kind = filter_.criterion.kind;
  return kind != FilterKind::kValues && kind != FilterKind::kTop10 && kind != FilterKind::kCustom &&
         kind != FilterKind::kNone;
}

// Finds the number that ends those which are shown. Without numbers there is none.
void FilterMatcher::take_numbers(const CellRange& range) {
  std::vector<double> numbers;
  for (const Row& row : sheet_.cells.rows(static_cast<std::uint32_t>(range.row_first) + 1,
                                          static_cast<std::uint32_t>(range.row_last) + 1)) {
    const Cell* cell = sheet_.cells.find(static_cast<int>(row.number), filter_.column);
    const Value value = cell ? sheet_.value(*cell) : Value();
    if (value.kind == ValueKind::kNumber) numbers.push_back(value.number);
  }
  if (numbers.empty()) return;
  const FilterCriterion& criterion = filter_.criterion;
  const auto all = static_cast<double>(numbers.size());
  const double wanted =
      criterion.percent ? std::floor(all * criterion.count / 100) : std::floor(criterion.count);
  const auto count = static_cast<std::ptrdiff_t>(std::clamp(wanted, 1.0, all));
  const auto last = numbers.begin() + (count - 1);
  if (criterion.largest) std::ranges::nth_element(numbers, last, std::greater());
  else std::ranges::nth_element(numbers, last);
  last_shown_ = *last;
}

bool FilterMatcher::accepts(const Cell* cell) const {
  const Seen seen(book_, sheet_, cell);
  switch (filter_.criterion.kind) {
    case FilterKind::kValues:
      return accepts_value(seen);
    case FilterKind::kTop10:
      return accepts_number(seen);
    case FilterKind::kCustom: {
      const auto meets_it = [&](const Condition& one) { return meets(seen, one); };
      return filter_.criterion.both ? std::ranges::all_of(conditions_, meets_it)
                                    : std::ranges::any_of(conditions_, meets_it);
    }
    default:
      return true;
  }
}

bool FilterMatcher::accepts_value(const Seen& cell) const {
  if (cell.is_empty()) return filter_.criterion.blanks;
  return filter_.criterion.texts.holds_folded(cell.shown()) || is_in_dates(cell);
}

bool FilterMatcher::is_in_dates(const Seen& cell) const {
  const std::vector<DateGroup>& groups = filter_.criterion.dates;
  if (groups.empty() || !cell.is_date()) return false;
  const auto date = date_of_serial(cell.number(), book_.date1904);
  if (!date) return false;
  constexpr int DateTime::*kParts[] = {&DateTime::year, &DateTime::month,  &DateTime::day,
                                       &DateTime::hour, &DateTime::minute, &DateTime::second};
  return std::ranges::any_of(groups, [&](const DateGroup& group) {
    return std::all_of(std::begin(kParts), std::begin(kParts) + static_cast<int>(group.finest) + 1,
                       [&](int DateTime::*part) { return (*date).*part == group.date.*part; });
  });
}

bool FilterMatcher::accepts_number(const Seen& cell) const {
  if (!cell.is_number() || !last_shown_) return false;
  return filter_.criterion.largest ? cell.number() >= *last_shown_ : cell.number() <= *last_shown_;
}

bool FilterMatcher::meets(const Seen& cell, const Condition& condition) const {
  if (condition.comparison == FilterOperator::kEqual) return equals(cell, condition);
  if (condition.comparison == FilterOperator::kNotEqual) return !equals(cell, condition);
  if (condition.number)
    return cell.is_number() && compare(condition.comparison, cell.number(), *condition.number);
  return cell.is_text() && !cell.is_empty() &&
         compare(condition.comparison, cell.shown(), condition.folded);
}

bool FilterMatcher::equals(const Seen& cell, const Condition& condition) const {
  if (condition.folded.empty()) return cell.is_empty();
  if (condition.number)
    return (cell.is_number() && cell.number() == *condition.number) ||
           cell.shown() == condition.folded;
  return matches(condition.pattern, cell.shown());
}

}  // namespace engine
