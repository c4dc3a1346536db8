#include "engine/xls/filters.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <utility>

#include "engine/package/little_endian.h"
#include "engine/text/number_text.h"
#include "engine/workbook/filter_operations.h"
#include "engine/xls/cell_errors.h"
#include "engine/xls/fields.h"
#include "engine/xls/future_records.h"

namespace engine::xls {

namespace {

using package::put16;
using package::put32;

// Of a column's record.
enum ColumnFlag : unsigned {
  kEither = 0x01,  // one condition is enough
  kFirstIsValue = 0x04,
  kSecondIsValue = 0x08,
  kTop = 0x10,
  kLargest = 0x20,
  kPercent = 0x40,
};
constexpr unsigned kCountShift = 7;

enum ValueType : unsigned {
  kNothing = 0,
  kShortNumber = 2,
  kNumber8 = 4,
  kCharacters = 6,
  kTruthOrError = 8,
  kEmptyCells = 12,
  kOtherCells = 14,
};

// By the format's numbers, from 1 on.
constexpr FilterOperator kComparisons[] = {
    FilterOperator::kLess,    FilterOperator::kEqual,    FilterOperator::kLessOrEqual,
    FilterOperator::kGreater, FilterOperator::kNotEqual, FilterOperator::kGreaterOrEqual,
};

// A condition, with the number of characters that its value has elsewhere.
struct TakenCondition {
  FilterCondition condition;
  std::size_t characters = 0;
};

std::optional<TakenCondition> take_condition(Fields& in) {
  const unsigned type = in.take8();
  const unsigned comparison = in.take8();
  Fields value(in.take(8));
  TakenCondition taken;
  if (!in.ok() || type == kNothing) return std::nullopt;
  if (comparison >= 1 && comparison <= std::size(kComparisons))
    taken.condition.comparison = kComparisons[comparison - 1];
  std::string& text = taken.condition.value;
  switch (type) {
    case kShortNumber:
    case kNumber8: {
      const double number = type == kNumber8 ? value.take_double() : decode_rk(value.take32());
      if (std::isfinite(number)) append_number(text, number);
      break;
    }
    case kCharacters:
      value.skip(4);
      taken.characters = value.take8();
      break;
    case kTruthOrError: {
      const std::uint8_t number = value.take8();
      if (value.take8() != 0) text = cell_error_text(number);
      else text = number != 0 ? "TRUE" : "FALSE";
      break;
    }
    case kEmptyCells:
      taken.condition.comparison = FilterOperator::kEqual;
      break;
    case kOtherCells:
      taken.condition.comparison = FilterOperator::kNotEqual;
      break;
    default:
      return std::nullopt;
  }
  return taken;
}

void take_characters(Fields& in, TakenCondition& of) {
  if (of.characters != 0) of.condition.value = in.take_text(of.characters);
}

void add_value(FilterCriterion& criterion, std::string value) {
  if (value.empty()) criterion.blanks = true;
  else criterion.texts.add(std::move(value));
}

// The column of the filter that a record is about; negative for none.
int take_column(Fields& in, const AutoFilter& filter) {
  const int column = in.take16();
  if (!in.ok() || !filter.range) return -1;
  const int number = filter.range->column_first + column;
  return number <= filter.range->column_last ? number : -1;
}

// What later programs say of a column.

constexpr std::size_t kFutureColumnSize = 60;
constexpr std::size_t kFutureSortSize = 38;

DateGroup take_date(Fields& in) {
  DateGroup group;
  group.date.year = in.take16();
  group.date.month = in.take16();
  group.date.day = static_cast<int>(in.take32() & 0xFF);
  group.date.hour = in.take16();
  group.date.minute = in.take16();
  group.date.second = in.take16();
  in.skip(6);
  group.finest =
      static_cast<DatePart>(std::min(in.take32(), static_cast<std::uint32_t>(DatePart::kSecond)));
  return group;
}

FilterKind kind_by_look(std::uint32_t look, std::uint32_t rule) {
  constexpr std::uint32_t kIcons = 3;
  if (look == 0) return rule == 0 ? FilterKind::kValues : FilterKind::kDynamic;
  return look == kIcons ? FilterKind::kIcon : FilterKind::kColor;
}

// Values alone can be told; nothing for a criterion that has others.
std::optional<FilterCriterion> take_values(Fields& in, std::uint32_t values, std::uint32_t dates) {
  FilterCriterion made;
  made.kind = FilterKind::kValues;
  for (; values > 0 && !in.at_end(); --values) {
    auto taken = take_condition(in);
    if (!taken || taken->condition.comparison != FilterOperator::kEqual) return std::nullopt;
    take_characters(in, *taken);
    add_value(made, std::move(taken->condition.value));
  }
  for (; dates > 0 && !in.at_end(); --dates) made.dates.push_back(take_date(in));
  return in.ok() ? std::optional(std::move(made)) : std::nullopt;
}

// Records as they stand, each behind its size: what follows their heads, the first one's from its
// column on.
std::string stored_parts(const std::vector<std::string>& parts) {
  std::string stored;
  std::size_t head = kFutureHead + 2;
  for (const std::string& part : parts) {
    const std::string_view rest = std::string_view(part).substr(std::min(head, part.size()));
    put32(stored, rest.size());
    stored += rest;
    head = kFutureHead;
  }
  return stored;
}

void take_future_column(const FutureRecords& records, SheetContents& sheet) {
  Fields in(records.parts[0]);
  in.skip(kFutureHead);
  const int column = take_column(in, sheet.filter);
  if (column < 0) return;
  const bool hides_button = in.take32() != 0;
  const std::uint32_t look = in.take32();
  const std::uint32_t rule = in.take32();
  const std::uint32_t values = in.take32();
  const std::uint32_t dates = in.take32();
  in.skip(kFutureColumnSize - 34);
  std::string rest(in.rest());
  for (std::size_t i = 1; i < records.parts.size(); ++i)
    rest.append(records.parts[i], std::min(kFutureHead, records.parts[i].size()));
  FilterCriterion made;
  made.kind = kind_by_look(look, rule);
  if (made.kind == FilterKind::kValues) {
    Fields criteria(rest);
    if (values == 0 && dates == 0) made.kind = FilterKind::kNone;
    else if (auto taken = take_values(criteria, values, dates)) made = *std::move(taken);
    else made.kind = FilterKind::kExtension;
  }
  const bool is_stored = made.kind != FilterKind::kValues && made.kind != FilterKind::kNone;
  if (made.kind == FilterKind::kNone && !hides_button) return;
  if (!find_column(sheet.filter, column)) {
    const auto place =
        std::ranges::lower_bound(sheet.filter.columns, column, {}, &ColumnFilter::column);
    sheet.filter.columns.emplace(place)->column = column;
  }
  ColumnFilter& its = *find_column(sheet.filter, column);
  its.criterion = std::move(made);
  its.shows_button = !hides_button;
  if (!is_stored) return;
  sheet.filter_details.push_back(stored_parts(records.parts));
  its.details = static_cast<std::uint32_t>(sheet.filter_details.size());
}

std::optional<CellRange> take_large_range(Fields& in, const Grid& grid) {
  std::uint32_t places[4];
  for (std::uint32_t& place : places) place = in.take32();
  const auto rows = static_cast<std::uint32_t>(grid.rows);
  const auto columns = static_cast<std::uint32_t>(grid.columns);
  if (!in.ok() || places[0] > places[1] || places[1] >= rows || places[2] > places[3] ||
      places[3] >= columns)
    return std::nullopt;
  return CellRange{static_cast<int>(places[0]), static_cast<int>(places[1]),
                   static_cast<int>(places[2]), static_cast<int>(places[3])};
}

// Each key is in a part of its own.
void take_future_sort(const FutureRecords& records, const Grid& grid, SheetContents& sheet) {
  Fields in(records.parts[0]);
  in.skip(kFutureHead + 2);
  const auto range = take_large_range(in, grid);
  if (!range || !sheet.filter.range) return;
  SortState sort{*range, {}};
  for (std::size_t i = 1; i < records.parts.size(); ++i) {
    Fields key(records.parts[i]);
    key.skip(kFutureHead);
    const unsigned flags = key.take16();
    const auto cells = take_large_range(key, grid);
    if (!cells) continue;
    std::string stored;
    put16(stored, flags);
    sheet.filter_details.push_back(stored.append(key.rest()));
    sort.keys.push_back(
        {*cells, (flags & 1) != 0, static_cast<std::uint32_t>(sheet.filter_details.size())});
  }
  if (!sort.keys.empty()) sheet.filter.sort = std::move(sort);
}

// Writing.

class FilterWriter {
 public:
  FilterWriter(RecordWriter& out, const SheetContents& sheet)
      : out_(out), sheet_(sheet), filter_(sheet.filter) {}

  void write() {
    if (sheet_.filtered) out_.record(kFiltered, {});
    if (!filter_.range) return;
    const CellRange& range = *filter_.range;
    out_.record(kFilterInfo,
                {static_cast<std::uint32_t>(range.column_last - range.column_first + 1)});
    for (const ColumnFilter& one : filter_.columns) write_column(one);
    if (filter_.sort) write_sort(*filter_.sort);
  }

 private:
  void write_column(const ColumnFilter& column) {
    const FilterCriterion& criterion = column.criterion;
    switch (criterion.kind) {
      case FilterKind::kValues:
        return write_values(column);
      case FilterKind::kTop10:
        begin_column(column, kTop | (criterion.largest ? kLargest : 0U) |
                                 (criterion.percent ? kPercent : 0U) |
                                 static_cast<unsigned>(criterion.count) << kCountShift);
        return end_column({});
      case FilterKind::kCustom:
        begin_column(column, criterion.both ? 0U : kEither);
        return end_column(criterion.conditions);
      case FilterKind::kNone:
        return write_future(column);
      default:
        return write_stored(column);
    }
  }

  void write_values(const ColumnFilter& column) {
    const FilterCriterion& criterion = column.criterion;
    const std::vector<std::string>& texts = criterion.texts.all();
    const std::size_t count = texts.size() + (criterion.blanks ? 1 : 0);
    const bool fits = count <= 2 && criterion.dates.empty() && column.shows_button;
    if (!fits) return write_future(column);
    std::vector<FilterCondition> conditions;
    for (const std::string& text : texts) conditions.push_back({FilterOperator::kEqual, text});
    if (criterion.blanks) conditions.emplace_back();
    begin_column(column, kEither | kFirstIsValue | (count == 2 ? kSecondIsValue : 0U));
    end_column(conditions);
  }

  std::uint32_t number_of(const ColumnFilter& column) const {
    return static_cast<std::uint32_t>(column.column - filter_.range->column_first);
  }

  void begin_column(const ColumnFilter& column, unsigned flags) {
    out_.begin(kFilterColumn);
    out_.put16(number_of(column));
    out_.put16(flags);
  }

  void end_column(std::span<const FilterCondition> conditions) {
    for (std::size_t i = 0; i < 2; ++i) {
      if (i < conditions.size()) put_condition(conditions[i]);
      else out_.put_zeros(10);
    }
    for (const FilterCondition& one : conditions) put_text(one);
    out_.end();
  }

  // The number that a value says if it says nothing more.
  static std::optional<double> number_of(std::string_view value) {
    const auto number = parse_number(value);
    if (!number) return std::nullopt;
    std::string text;
    append_number(text, *number);
    return text == value ? number : std::nullopt;
  }

  void put_condition(const FilterCondition& condition) {
    const auto comparison = static_cast<std::uint32_t>(
        std::ranges::find(kComparisons, condition.comparison) - std::begin(kComparisons) + 1);
    const std::string& value = condition.value;
    if (value.empty()) {
      const bool others = condition.comparison == FilterOperator::kNotEqual;
      out_.put8(others ? kOtherCells : kEmptyCells);
      out_.put8(comparison);
      out_.put_zeros(8);
    } else if (const auto number = number_of(value)) {
      out_.put8(kNumber8);
      out_.put8(comparison);
      out_.put_double(*number);
    } else {
      const bool is_plain = value.find_first_of("*?") == std::string::npos;
      out_.put8(kCharacters);
      out_.put8(comparison);
      out_.put32(0);
      out_.put8(static_cast<std::uint32_t>(Characters(value).count()));
      out_.put8(is_plain ? 1 : 0);
      out_.put16(0);
    }
  }

  void put_text(const FilterCondition& condition) {
    if (!condition.value.empty() && !number_of(condition.value))
      out_.put_characters(Characters(condition.value));
  }

  void begin_future_column(const ColumnFilter& column) {
    begin_future_record(out_, kFutureFilterColumn, *filter_.range);
    out_.put16(number_of(column));
  }

  // Each value and each date in a record of its own that goes on.
  void write_future(const ColumnFilter& column) {
    constexpr std::uint32_t kOfSheet = 0x08;
    const FilterCriterion& criterion = column.criterion;
    const std::vector<std::string>& texts = criterion.texts.all();
    begin_future_column(column);
    out_.put32(column.shows_button ? 0 : 1);
    out_.put32(0);
    out_.put32(0);
    out_.put32(static_cast<std::uint32_t>(texts.size()) + (criterion.blanks ? 1 : 0));
    out_.put32(static_cast<std::uint32_t>(criterion.dates.size()));
    out_.put16(kOfSheet);
    out_.put32(0);
    out_.put32(0xFFFFFFFF);
    out_.put_zeros(16);
    out_.end();
    for (const std::string& text : texts) write_value({FilterOperator::kEqual, text});
    if (criterion.blanks) write_value({});
    for (const DateGroup& date : criterion.dates) write_date(date);
  }

  void begin_continuing() { begin_future_record(out_, kFutureContinue, *filter_.range); }

  void write_value(const FilterCondition& value) {
    begin_continuing();
    put_condition(value);
    put_text(value);
    out_.end();
  }

  void write_date(const DateGroup& group) {
    const auto put = [&](int part) { out_.put16(static_cast<std::uint32_t>(part)); };
    begin_continuing();
    put(group.date.year);
    put(group.date.month);
    out_.put32(static_cast<std::uint32_t>(group.date.day));
    put(group.date.hour);
    put(group.date.minute);
    put(group.date.second);
    out_.put_zeros(6);
    out_.put32(static_cast<std::uint32_t>(group.finest));
    out_.end();
  }

  void write_stored(const ColumnFilter& column) {
    if (column.details == 0) return;
    Fields parts(sheet_.filter_details[column.details - 1]);
    for (bool first = true; !parts.at_end(); first = false) {
      if (first) begin_future_column(column);
      else begin_continuing();
      out_.put(parts.take(parts.take32()));
      out_.end();
    }
  }

  void put_large_range(const CellRange& range) {
    for (const int place : {range.row_first, range.row_last, range.column_first, range.column_last})
      out_.put32(static_cast<std::uint32_t>(place));
  }

  // A column's records name the cells that are filtered in their heads, those of an order do not.
  void write_sort(const SortState& sort) {
    constexpr std::uint32_t kOfFilter = 0x10;
    begin_future_record(out_, kSortState);
    out_.put16(kOfFilter);
    put_large_range(sort.range);
    out_.put32(static_cast<std::uint32_t>(sort.keys.size()));
    out_.put32(0);
    out_.end();
    for (const SortKey& key : sort.keys) write_key(key);
  }

  // Without more: by values, without a list of one's own.
  void write_key(const SortKey& key) {
    static const std::string kPlain(14, '\0');
    const std::string_view stored =
        key.details == 0 ? std::string_view(kPlain) : sheet_.filter_details[key.details - 1];
    begin_future_record(out_, kFutureContinue);
    out_.put16((package::get16(stored, 0) & ~1U) | (key.descending ? 1 : 0));
    put_large_range(key.cells);
    out_.put(stored.substr(2));
    out_.end();
  }

  RecordWriter& out_;
  const SheetContents& sheet_;
  const AutoFilter& filter_;
};

}  // namespace

void read_filtered(Fields& /*in*/, SheetReading& to) { to.sheet.filtered = true; }

void read_filter_info(Fields& /*in*/, SheetReading& to) {
  to.sheet.filter.range = named_filter_range(to.context.workbook, to.context.sheet);
}

void read_filter_column(Fields& in, SheetReading& to) {
  const int column = take_column(in, to.sheet.filter);
  const unsigned flags = in.take16();
  if (column < 0 || !in.ok()) return;
  FilterCriterion made;
  if ((flags & kTop) != 0) {
    made.kind = FilterKind::kTop10;
    made.count = flags >> kCountShift;
    made.largest = (flags & kLargest) != 0;
    made.percent = (flags & kPercent) != 0;
    return set_criterion(to.sheet.filter, column, std::move(made));
  }
  std::optional<TakenCondition> taken[2];
  for (auto& one : taken) one = take_condition(in);
  bool are_values = (flags & kEither) != 0;
  for (std::size_t i = 0; i < 2; ++i) {
    if (!taken[i]) continue;
    take_characters(in, *taken[i]);
    if (!in.ok()) return;
    are_values = are_values && (flags & (kFirstIsValue << i)) != 0 &&
                 taken[i]->condition.comparison == FilterOperator::kEqual;
    made.conditions.push_back(std::move(taken[i]->condition));
  }
  if (made.conditions.empty()) return;
  if (are_values) {
    made.kind = FilterKind::kValues;
    for (FilterCondition& one : std::exchange(made.conditions, {}))
      add_value(made, std::move(one.value));
  } else {
    made.kind = FilterKind::kCustom;
    made.both = made.conditions.size() == 2 && (flags & kEither) == 0;
  }
  set_criterion(to.sheet.filter, column, std::move(made));
}

bool is_of_sheet_filter(std::string_view data) {
  constexpr std::size_t kFlags = 34;
  constexpr unsigned kOfSheet = 0x08;
  return data.size() >= kFutureColumnSize && (package::get16(data, kFlags) & kOfSheet) != 0;
}

bool is_sort_of_sheet_filter(std::string_view data) {
  constexpr unsigned kWhat = 0x38;
  constexpr unsigned kFilter = 0x10;
  return data.size() >= kFutureSortSize && (package::get16(data, kFutureHead) & kWhat) == kFilter;
}

void read_future_filter(Fields& in, SheetReading& to) {
  std::string whole(in.rest());
  to.filter.records.push_back({in.take16(), {std::move(whole)}});
  to.filter.goes_on = true;
}

void continue_filter(std::string_view data, SheetReading& to) {
  if (to.filter.goes_on) to.filter.records.back().parts.emplace_back(data);
}

void finish_filter(SheetReading& reading) {
  for (const FutureRecords& one : reading.filter.records) {
    if (one.id == kFutureFilterColumn) take_future_column(one, reading.sheet);
    else take_future_sort(one, reading.context.workbook.limits.grid, reading.sheet);
  }
}

void write_filter(RecordWriter& out, const Sheet& sheet) {
  FilterWriter(out, sheet.contents()).write();
}

}  // namespace engine::xls
