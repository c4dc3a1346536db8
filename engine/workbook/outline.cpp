#include "engine/workbook/outline.h"

#include <algorithm>

namespace engine {

namespace {

using formula::Axis;
using formula::Interval;

void group_rows(SheetContents& sheet, Interval group, bool collapsed, std::optional<int> summary) {
  // What needs memory comes first. Rows of which nothing is known are none that anybody sees.
  for (int row = group.first; row <= group.last; ++row) sheet.properties_at(row);
  if (summary) sheet.properties_at(*summary).collapsed = true;
  for (int row = group.first; row <= group.last; ++row) {
    RowProperties& its = sheet.properties_at(row);
    ++its.outline_level;
    its.hidden |= collapsed;
  }
}

void group_columns(SheetContents& sheet, Interval group, bool collapsed,
                   std::optional<int> summary) {
  const Columns::Change grouped{group.first, group.last, [&](ColumnProperties& run) {
                                  ++run.outline_level;
                                  run.hidden |= collapsed;
                                }};
  if (!summary) return sheet.columns.change({grouped});
  const auto mark = [](ColumnProperties& run) { run.collapsed = true; };
  sheet.columns.change({grouped, {*summary, *summary, mark}});
}

}  // namespace

std::optional<int> summary_of(const SheetContents& sheet, Axis axis, Interval group,
                              const Grid& grid) {
  const bool rows = axis == Axis::kRows;
  const bool is_behind = rows ? sheet.summary_below : sheet.summary_right;
  const int place = is_behind ? group.last + 1 : group.first - 1;
  if (place < 0 || place >= (rows ? grid.rows : grid.columns)) return std::nullopt;
  return place;
}

int outline_level(const SheetContents& sheet, Axis axis, Interval places) {
  int level = 0;
  if (axis == Axis::kRows) {
    const auto first = static_cast<std::uint32_t>(places.first);
    for (const Row& row : sheet.cells.rows(first, static_cast<std::uint32_t>(places.last) + 1))
      if (const RowProperties* its = sheet.properties(row))
        level = std::max<int>(level, its->outline_level);
  } else {
    auto run = sheet.columns.first_from(places.first);
    for (; run != sheet.columns.end() && run->first <= places.last; ++run)
      level = std::max<int>(level, run->outline_level);
  }
  return level;
}

void add_group(SheetContents& sheet, Axis axis, Interval group, bool collapsed, const Grid& grid) {
  const std::optional<int> summary =
      collapsed ? summary_of(sheet, axis, group, grid) : std::nullopt;
  if (axis == Axis::kRows) group_rows(sheet, group, collapsed, summary);
  else group_columns(sheet, group, collapsed, summary);
}

}  // namespace engine
