#include "engine/api/auto_filter.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "engine/api/messages.h"
#include "engine/api/outputs.h"
#include "engine/api/sheet_object.h"
#include "engine/text/utf8.h"
#include "engine/text/wide.h"
#include "engine/workbook/filter_operations.h"

namespace engine::api {

namespace {

constexpr std::size_t kMaxValue = 255;  // UTF-16 code units
constexpr int kMostItems = 500;
constexpr int kMostPercent = 100;

}  // namespace

// The filter.

AutoFilterObject::AutoFilterObject(BookContext& book, const SheetObject& owner)
    : BookPart(book, "auto-filter"), owner_(owner), sheet_(owner.sheet()) {}

void AutoFilterObject::detach() noexcept {
  BookPart::detach();
  sheet_ = nullptr;
  for (FilterColumnObject* column : columns_) column->detach();
  std::vector<FilterColumnObject*>().swap(columns_);
}

void AutoFilterObject::follow(const formula::Move& move) noexcept {
  std::erase_if(columns_, [&](FilterColumnObject* one) {
    const auto to = move.axis == formula::Axis::kRows ? std::optional(one->column())
                                                      : formula::moved(one->column(), move);
    if (to) one->set_column(*to);
    else one->detach();
    return !to;
  });
  drop_columns();
}

void AutoFilterObject::drop_columns() noexcept {
  const auto& range = filter().range;
  std::erase_if(columns_, [&](FilterColumnObject* one) {
    const bool stays =
        range && one->column() >= range->column_first && one->column() <= range->column_last;
    if (!stays) one->detach();
    return !stays;
  });
}

bool AutoFilterObject::getRef(int* rowFirst, int* rowLast, int* colFirst, int* colLast) const {
  return run(false, [&] {
    if (!filter().range) return false;
    give_range(*filter().range, rowFirst, rowLast, colFirst, colLast);
    return true;
  });
}

// Tables have filters of their own: programs take a file in which the two meet for damaged.
void AutoFilterObject::setRef(int rowFirst, int rowLast, int colFirst, int colLast) {
  run([&] {
    const CellRange range{rowFirst, rowLast, colFirst, colLast};
    if (!owner_.check_range(range) || !owner_.check_tables(range)) return;
    set_filter_range(book_.workbook(), *sheet_, range);
    drop_columns();
  });
}

bool AutoFilterObject::check_column(int id) const {
  const auto& range = filter().range;
  if (!range) return book_.refuse(false, messages::no_filter());
  return book_.check_index("filter column", id,
                           static_cast<std::size_t>(range->column_last - range->column_first) + 1);
}

FilterColumnObject* AutoFilterObject::column_object(int column) {
  const auto place = std::ranges::lower_bound(columns_, column, {}, &FilterColumnObject::column) -
                     columns_.begin();
  const auto at = columns_.begin() + place;
  if (at != columns_.end() && (*at)->column() == column) return *at;
  all_columns_.push_back(std::make_unique<FilterColumnObject>(book_, *sheet_, column));
  return *columns_.insert(columns_.begin() + place, all_columns_.back().get());
}

libxl::FilterColumn* AutoFilterObject::column(int colId) {
  return run(nullptr, [&]() -> libxl::FilterColumn* {
    if (!check_column(colId)) return nullptr;
    return column_object(filter().range->column_first + colId);
  });
}

int AutoFilterObject::columnSize() const {
  return run(0, [&] { return static_cast<int>(filter().columns.size()); });
}

libxl::FilterColumn* AutoFilterObject::columnByIndex(int index) {
  return run(nullptr, [&]() -> libxl::FilterColumn* {
    if (!book_.check_index("filter column", index, filter().columns.size())) return nullptr;
    return column_object(filter().columns[static_cast<std::size_t>(index)].column);
  });
}

bool AutoFilterObject::getSortRange(int* rowFirst, int* rowLast, int* colFirst, int* colLast) {
  return run(false, [&] {
    if (!filter().sort) return false;
    give_range(filter().sort->range, rowFirst, rowLast, colFirst, colLast);
    return true;
  });
}

bool AutoFilterObject::getSort(int* columnIndex, bool* descending) {
  return run(false, [&] {
    if (!filter().sort) return false;
    const SortKey& key = filter().sort->keys.front();
    give(columnIndex, key.cells.column_first - filter().range->column_first);
    give(descending, key.descending);
    return true;
  });
}

bool AutoFilterObject::setSort(int columnIndex, bool descending) {
  return run(false, [&] {
    if (!check_column(columnIndex)) return false;
    const CellRange rows = data_rows(*filter().range);
    SortKey key{rows, descending};
    key.cells.column_first = key.cells.column_last = rows.column_first + columnIndex;
    SortState sort{rows, {key}};
    sheet_->change().filter.sort = std::move(sort);
    return true;
  });
}

// A column.

const FilterCriterion& FilterColumnObject::criterion() const {
  static const FilterCriterion kNone;
  const ColumnFilter* found = find_column(of_sheet(), column_);
  return found ? found->criterion : kNone;
}

void FilterColumnObject::set(FilterCriterion criterion) {
  sheet_->change([&](SheetContents& contents) {
    set_criterion(contents.filter, column_, std::move(criterion));
  });
}

bool FilterColumnObject::check_value(const std::string& value) const {
  const std::size_t length = utf16_length(value);
  return length <= kMaxValue ||
         book_.refuse(false, messages::too_long("filter value", length, kMaxValue));
}

bool FilterColumnObject::check_operator(libxl::Operator comparison) const {
  return (comparison >= libxl::OperatorEqual && comparison <= libxl::OperatorGreater) ||
         book_.refuse(false, messages::unknown("filter operator", comparison));
}

int FilterColumnObject::index() const {
  return run(-1, [&] { return column_ - of_sheet().range->column_first; });
}

libxl::Filter FilterColumnObject::filterType() const {
  return run(libxl::FilterNone, [&] { return static_cast<libxl::Filter>(criterion().kind); });
}

int FilterColumnObject::filterSize() const {
  return run(0, [&] {
    return static_cast<int>(criterion().texts.all().size()) + (criterion().blanks ? 1 : 0);
  });
}

// The entry for empty cells stands behind the others.
const wchar_t* FilterColumnObject::filter(int index) const {
  return run(nullptr, [&]() -> const wchar_t* {
    const auto& texts = criterion().texts.all();
    const std::size_t count = texts.size() + (criterion().blanks ? 1 : 0);
    if (!book_.check_index("filter value", index, count)) return nullptr;
    const auto place = static_cast<std::size_t>(index);
    return book_.give(place < texts.size() ? std::string_view(texts[place]) : std::string_view());
  });
}

void FilterColumnObject::addFilter(const wchar_t* value) {
  run([&] {
    std::string text = to_utf8(value);
    if (!check_value(text)) return;
    const auto add = [&](FilterCriterion& to) {
      if (text.empty()) to.blanks = true;
      else to.texts.add(std::move(text));
    };
    if (criterion().kind == FilterKind::kValues) {
      sheet_->change(
          [&](SheetContents& contents) { add(find_column(contents.filter, column_)->criterion); });
      return;
    }
    FilterCriterion made;
    made.kind = FilterKind::kValues;
    add(made);
    set(std::move(made));
  });
}

bool FilterColumnObject::getTop10(double* value, bool* top, bool* percent) {
  return run(false, [&] {
    if (criterion().kind != FilterKind::kTop10) return false;
    give(value, criterion().count);
    give(top, criterion().largest);
    give(percent, criterion().percent);
    return true;
  });
}

void FilterColumnObject::setTop10(double value, bool top, bool percent) {
  run([&] {
    if (!std::isfinite(value)) return book_.refuse(messages::not_finite("top 10 value"));
    const double most = percent ? kMostPercent : kMostItems;
    if (value < 1 || value > most)
      return book_.refuse(messages::out_of_range("top 10 value", value, 1.0, most));
    if (value != std::floor(value)) return book_.refuse(messages::not_whole("top 10 value", value));
    FilterCriterion made;
    made.kind = FilterKind::kTop10;
    made.count = value;
    made.largest = top;
    made.percent = percent;
    set(std::move(made));
  });
}

// A condition that is alone stands beside an equal one without a value.
bool FilterColumnObject::getCustomFilter(libxl::Operator* op1, const wchar_t** v1,
                                         libxl::Operator* op2, const wchar_t** v2,
                                         bool* andOp) const {
  return run(false, [&] {
    const std::vector<FilterCondition>& conditions = criterion().conditions;
    if (conditions.empty()) return false;
    const FilterCondition& first = conditions.front();
    const FilterCondition second = conditions.size() > 1 ? conditions[1] : FilterCondition();
    to_wide(second.value, second_value_);
    const wchar_t* first_value = book_.give(first.value);
    give(op1, static_cast<libxl::Operator>(first.comparison));
    give(v1, first_value);
    give(op2, static_cast<libxl::Operator>(second.comparison));
    give(v2, second_value_.c_str());
    give(andOp, criterion().both);
    return true;
  });
}

void FilterColumnObject::setCustomFilter(libxl::Operator op1, const wchar_t* v1,
                                         libxl::Operator op2, const wchar_t* v2, bool andOp) {
  run([&] {
    std::string first = to_utf8(v1);
    std::string second = to_utf8(v2);
    if (!check_operator(op1) || !check_value(first) || !check_operator(op2) || !check_value(second))
      return;
    FilterCriterion made;
    made.kind = FilterKind::kCustom;
    made.conditions.push_back({static_cast<FilterOperator>(op1), std::move(first)});
    if (v2 && (!second.empty() || op2 != libxl::OperatorEqual)) {
      made.conditions.push_back({static_cast<FilterOperator>(op2), std::move(second)});
      made.both = andOp;
    }
    set(std::move(made));
  });
}

void FilterColumnObject::clear() {
  run([&] {
    if (find_column(of_sheet(), column_)) set({});
  });
}

}  // namespace engine::api
