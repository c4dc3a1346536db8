#include "engine/workbook/auto_filter.h"

#include <algorithm>
#include <utility>

#include "engine/text/fold.h"
#include "engine/workbook/cell_ranges.h"

namespace engine {

namespace {

// The place of a column among those with a criterion, or where it would enter.
auto place_of(auto& columns, int column) {
  return std::ranges::lower_bound(columns, column, {}, &ColumnFilter::column);
}

void drop_outside(AutoFilter& filter) {
  std::erase_if(filter.columns, [&](const ColumnFilter& one) {
    return one.column < filter.range->column_first || one.column > filter.range->column_last;
  });
}

}  // namespace

void ShownTexts::add(std::string text) {
  std::string folded = fold_case(text);
  if (folded_.contains(folded)) return;
  all_.push_back(std::move(text));
  try {
    folded_.insert(std::move(folded));
  } catch (...) {
    all_.pop_back();
    throw;
  }
}

CellRange data_rows(const CellRange& filter) {
  CellRange rows = filter;
  rows.row_first = std::min(filter.row_first + 1, filter.row_last);
  return rows;
}

const ColumnFilter* find_column(const AutoFilter& filter, int column) {
  const auto found = place_of(filter.columns, column);
  return found != filter.columns.end() && found->column == column ? &*found : nullptr;
}

ColumnFilter* find_column(AutoFilter& filter, int column) {
  return const_cast<ColumnFilter*>(find_column(std::as_const(filter), column));
}

void set_criterion(AutoFilter& filter, int column, FilterCriterion criterion) {
  auto place = place_of(filter.columns, column);
  const bool is_there = place != filter.columns.end() && place->column == column;
  if (criterion.kind == FilterKind::kNone && (!is_there || place->shows_button)) {
    if (is_there) filter.columns.erase(place);
    return;
  }
  if (!is_there) {
    place = filter.columns.emplace(place);
    place->column = column;
  }
  place->criterion = std::move(criterion);
}

AutoFilter with_range(AutoFilter filter, const CellRange& range) {
  if (filter.range == range) return filter;
  filter.range = range;
  drop_outside(filter);
  if (!filter.sort) return filter;
  const CellRange rows = data_rows(range);
  std::erase_if(filter.sort->keys, [&](const SortKey& key) { return !key.cells.overlaps(rows); });
  if (filter.sort->keys.empty()) {
    filter.sort.reset();
    return filter;
  }
  filter.sort->range = rows;
  for (SortKey& key : filter.sort->keys) {
    key.cells.row_first = rows.row_first;
    key.cells.row_last = rows.row_last;
    key.cells.column_first = std::max(key.cells.column_first, rows.column_first);
    key.cells.column_last = std::min(key.cells.column_last, rows.column_last);
  }
  return filter;
}

std::optional<SortState> moved(SortState sort, const formula::Move& move, const Grid& grid) {
  const auto range = moved_range(sort.range, move, grid);
  if (!range) return std::nullopt;
  sort.range = *range;
  std::erase_if(sort.keys, [&](SortKey& key) {
    const auto cells = moved_range(key.cells, move, grid);
    if (cells) key.cells = *cells;
    return !cells;
  });
  return sort.keys.empty() ? std::nullopt : std::optional(std::move(sort));
}

AutoFilter moved(AutoFilter filter, const formula::Move& move, const Grid& grid) {
  if (!filter.range) return filter;
  const bool columns = move.axis == formula::Axis::kColumns;
  const auto range = moved_range(*filter.range, move, grid);
  if (!range || (!columns && !formula::moved(filter.range->row_first, move))) return {};
  filter.range = range;
  if (columns) {
    std::erase_if(filter.columns, [&](ColumnFilter& one) {
      const auto to = formula::moved(one.column, move);
      if (to) one.column = *to;
      return !to;
    });
    drop_outside(filter);
  }
  if (filter.sort) filter.sort = moved(*std::move(filter.sort), move, grid);
  return filter;
}

}  // namespace engine
