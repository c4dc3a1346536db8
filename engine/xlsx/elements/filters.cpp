#include "engine/xlsx/elements/filters.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>
#include <vector>

#include "engine/package/xml_tree.h"
#include "engine/text/number_text.h"
#include "engine/xlsx/attributes.h"
#include "engine/xlsx/escapes.h"

namespace engine::xlsx {

namespace {

using package::Family;

// In the order of FilterKind.
constexpr std::string_view kKinds[] = {
    "filters", "top10", "customFilters", "dynamicFilter", "colorFilter", "iconFilter", "extLst"};
// In the order of FilterOperator.
constexpr std::string_view kOperators[] = {"equal",    "lessThan",           "lessThanOrEqual",
                                           "notEqual", "greaterThanOrEqual", "greaterThan"};
// In the order of DatePart.
constexpr struct {
  const char* name;
  int DateTime::*part;
} kDateParts[] = {{"year", &DateTime::year},     {"month", &DateTime::month},
                  {"day", &DateTime::day},       {"hour", &DateTime::hour},
                  {"minute", &DateTime::minute}, {"second", &DateTime::second}};
constexpr std::string_view kFilterOrder[] = {"filterColumn", "sortState", "extLst"};
constexpr std::string_view kEmptyValue = " ";  // of a condition

template <class Names>
auto index_in(const Names& names, std::string_view name) {
  return static_cast<std::size_t>(std::ranges::find(names, name) - std::begin(names));
}

std::optional<CellRange> range_of(pugi::xml_node element, const Grid& grid) {
  return formula::parse_range(element.attribute("ref").value(), grid);
}

// Reading. A null element says nothing.

void read_values(pugi::xml_node element, FilterCriterion& criterion) {
  criterion.blanks = element.attribute("blank").as_bool();
  for (const pugi::xml_node node : package::children(element, Family::Main, "filter"))
    criterion.texts.add(unescape(node.attribute("val").value()));
  for (const pugi::xml_node node : package::children(element, Family::Main, "dateGroupItem")) {
    DateGroup group;
    for (const auto& [name, part] : kDateParts) group.date.*part = node.attribute(name).as_int();
    const std::string_view finest = node.attribute("dateTimeGrouping").value();
    const auto* const found =
        std::ranges::find(kDateParts, finest, [](const auto& one) { return one.name; });
    if (found == std::end(kDateParts)) continue;
    group.finest = static_cast<DatePart>(found - std::begin(kDateParts));
    criterion.dates.push_back(group);
  }
}

void read_top10(pugi::xml_node element, FilterCriterion& criterion) {
  criterion.count = parse_number(element.attribute("val").value()).value_or(0);
  criterion.largest = element.attribute("top").as_bool(true);
  criterion.percent = element.attribute("percent").as_bool();
  criterion.last_shown = parse_number(element.attribute("filterVal").value());
}

void read_conditions(pugi::xml_node element, FilterCriterion& criterion) {
  constexpr std::size_t kMost = 2;
  for (const pugi::xml_node node : package::children(element, Family::Main, "customFilter")) {
    if (criterion.conditions.size() == kMost) break;
    const auto comparison = index_in(kOperators, node.attribute("operator").as_string("equal"));
    std::string value = unescape(node.attribute("val").value());
    if (value == kEmptyValue) value.clear();
    criterion.conditions.push_back({comparison < std::size(kOperators)
                                        ? static_cast<FilterOperator>(comparison)
                                        : FilterOperator::kEqual,
                                    std::move(value)});
  }
  criterion.both = criterion.conditions.size() == kMost && element.attribute("and").as_bool();
}

// What alternate content offers is a later form.
FilterCriterion read_criterion(pugi::xml_node column) {
  FilterCriterion criterion;
  for (const pugi::xml_node node : column.children()) {
    if (node.type() != pugi::node_element) continue;
    const auto kind = package::family(node) == Family::Main
                          ? index_in(kKinds, package::local_name(node))
                          : std::size(kKinds);
    criterion.kind =
        kind < std::size(kKinds) ? static_cast<FilterKind>(kind) : FilterKind::kExtension;
    if (criterion.kind == FilterKind::kValues) read_values(node, criterion);
    if (criterion.kind == FilterKind::kTop10) read_top10(node, criterion);
    if (criterion.kind == FilterKind::kCustom) read_conditions(node, criterion);
    break;
  }
  return criterion;
}

// A second element of a column, or one of a column that the range does not have, is no criterion.
std::vector<ColumnFilter> read_columns(pugi::xml_node filter, const CellRange& range) {
  std::vector<ColumnFilter> columns;
  std::uint32_t number = 0;
  for (const pugi::xml_node node : package::children(filter, Family::Main, "filterColumn")) {
    ++number;
    const unsigned id = node.attribute("colId").as_uint();
    if (id > static_cast<unsigned>(range.column_last - range.column_first)) continue;
    const bool shows = node.attribute("showButton").as_bool(true);
    columns.push_back({range.column_first + static_cast<int>(id), read_criterion(node),
                       shows && !node.attribute("hiddenButton").as_bool(), number});
  }
  std::ranges::stable_sort(columns, {}, &ColumnFilter::column);
  const auto doubles = std::ranges::unique(columns, {}, &ColumnFilter::column);
  columns.erase(doubles.begin(), doubles.end());
  return columns;
}

std::optional<SortState> read_sort(pugi::xml_node element, const Grid& grid) {
  const auto range = range_of(element, grid);
  if (!range) return std::nullopt;
  SortState sort{*range, {}};
  std::uint32_t number = 0;
  for (const pugi::xml_node node : package::children(element, Family::Main, "sortCondition")) {
    ++number;
    if (const auto cells = range_of(node, grid))
      sort.keys.push_back({*cells, node.attribute("descending").as_bool(), number});
  }
  return sort.keys.empty() ? std::nullopt : std::optional(std::move(sort));
}

AutoFilter read_filter(pugi::xml_node element, const Grid& grid) {
  AutoFilter filter;
  filter.range = range_of(element, grid);
  if (!filter.range) return {};
  filter.columns = read_columns(element, *filter.range);
  filter.sort = read_sort(package::child(element, Family::Main, "sortState"), grid);
  return filter;
}

// Writing.

void write_values(pugi::xml_node element, const FilterCriterion& criterion) {
  settle_flag(element, "blank", criterion.blanks);
  for (const pugi::xml_node node : package::children(element, Family::Main, "filter"))
    element.remove_child(node);
  const pugi::xml_node dates = package::child(element, Family::Main, "dateGroupItem");
  for (const std::string& text : criterion.texts.all())
    set_attribute(package::insert_child(element, "filter", dates), "val", escape(text));
}

void write_top10(pugi::xml_node element, const FilterCriterion& criterion) {
  settle_flag(element, "top", criterion.largest, true);
  settle_flag(element, "percent", criterion.percent);
  set_attribute(element, "val", number_text(criterion.count));
  const auto& last = criterion.last_shown;
  settle_attribute(element, "filterVal", last ? number_text(*last) : "", !last);
}

void write_conditions(pugi::xml_node element, const FilterCriterion& criterion) {
  settle_flag(element, "and", criterion.both);
  for (const pugi::xml_node node : package::children(element, Family::Main, "customFilter"))
    element.remove_child(node);
  for (const auto& [comparison, value] : criterion.conditions) {
    const pugi::xml_node node = package::append_child(element, "customFilter");
    settle_attribute(node, "operator", kOperators[static_cast<std::size_t>(comparison)],
                     comparison == FilterOperator::kEqual);
    set_attribute(node, "val", value.empty() ? std::string(kEmptyValue) : escape(value));
  }
}

// A criterion of another kind takes the place of what stood there.
void write_criterion(pugi::xml_node column, const FilterCriterion& criterion, FilterKind before) {
  if (criterion.kind != before) column.remove_children();
  if (criterion.kind == FilterKind::kNone) return;
  const std::string_view name = kKinds[static_cast<std::size_t>(criterion.kind)];
  pugi::xml_node element = package::child(column, Family::Main, name);
  if (!element) element = package::append_child(column, name);
  if (criterion.kind == FilterKind::kValues) write_values(element, criterion);
  if (criterion.kind == FilterKind::kTop10) write_top10(element, criterion);
  if (criterion.kind == FilterKind::kCustom) write_conditions(element, criterion);
}

// Elements by the numbers that the model keeps of them; null where it has none.
pugi::xml_node numbered(const std::vector<pugi::xml_node>& nodes, std::uint32_t number) {
  return number != 0 && number <= nodes.size() ? nodes[number - 1] : pugi::xml_node();
}

// Removes elements whose things the model has no more.
template <class Things>
void remove_lost(pugi::xml_node parent, const std::vector<pugi::xml_node>& nodes,
                 const Things& now) {
  std::vector<bool> stays(nodes.size());
  for (const auto& one : now)
    if (numbered(nodes, one.details)) stays[one.details - 1] = true;
  for (std::size_t i = 0; i < nodes.size(); ++i)
    if (!stays[i]) parent.remove_child(nodes[i]);
}

void patch_columns(pugi::xml_node filter, const AutoFilter& stored, const AutoFilter& wanted) {
  const auto nodes = package::children(filter, Family::Main, "filterColumn");
  static const FilterCriterion kNone;
  std::vector<const FilterCriterion*> criteria(nodes.size());
  for (const ColumnFilter& one : stored.columns) criteria[one.details - 1] = &one.criterion;
  remove_lost(filter, nodes, wanted.columns);
  pugi::xml_node next = package::child(filter, Family::Main, "sortState");
  if (!next) next = package::child(filter, Family::Main, "extLst");
  for (auto column = wanted.columns.rbegin(); column != wanted.columns.rend(); ++column) {
    pugi::xml_node node = numbered(nodes, column->details);
    const FilterCriterion& before = node ? *criteria[column->details - 1] : kNone;
    if (!node) node = package::insert_child(filter, "filterColumn", next);
    const std::string id = std::to_string(column->column - wanted.range->column_first);
    if (node.attribute("colId").value() != id) set_attribute(node, "colId", id);
    if (column->criterion != before) write_criterion(node, column->criterion, before.kind);
    next = node;
  }
}

// What a sort says besides its keys goes with the last of those that were read.
void patch_sort(pugi::xml_node parent, pugi::xml_node element,
                const std::optional<SortState>& stored, const std::optional<SortState>& wanted) {
  if (stored == wanted) return;
  const bool goes_on = wanted && std::ranges::any_of(wanted->keys, [](const SortKey& key) {
                         return key.details != 0;
                       });
  if (!goes_on) {
    parent.remove_child(element);
    element = {};
  }
  if (!wanted) return;
  if (!element) element = ordered_child(parent, "sortState", kFilterOrder);
  set_attribute(element, "ref", formula::print_range(wanted->range));
  const auto nodes = package::children(element, Family::Main, "sortCondition");
  remove_lost(element, nodes, wanted->keys);
  for (const SortKey& key : wanted->keys) {
    pugi::xml_node node = numbered(nodes, key.details);
    if (!node) node = package::append_child(element, "sortCondition");
    settle_flag(node, "descending", key.descending);
    set_attribute(node, "ref", formula::print_range(key.cells));
  }
}

void patch_filter(pugi::xml_node element, const AutoFilter& stored, const AutoFilter& wanted) {
  if (stored.range != wanted.range)
    set_attribute(element, "ref", formula::print_range(*wanted.range));
  patch_columns(element, stored, wanted);
  patch_sort(element, package::child(element, Family::Main, "sortState"), stored.sort, wanted.sort);
}

}  // namespace

void read_sheet_filter(pugi::xml_node element, const SheetReading& to) {
  to.sheet.filter = read_filter(element, to.context.workbook.limits.grid);
}

// An element that names no range is no filter.
void patch_sheet_filter(pugi::xml_node root, const SheetPatching& from) {
  const AutoFilter& wanted = from.sheet.contents().filter;
  pugi::xml_node element = package::child(root, Family::Main, "autoFilter");
  const AutoFilter stored = read_filter(element, from.book.limits.grid);
  if (stored == wanted) return;
  if (!stored.range || !wanted.range) {
    root.remove_child(element);
    element = {};
  }
  if (!wanted.range) return;
  if (!element) element = worksheet_child(root, "autoFilter");
  patch_filter(element, stored, wanted);
}

void move_sheet_sort(pugi::xml_node sort, const SheetMoving& moving) {
  const auto stored = read_sort(sort, moving.grid);
  if (stored) patch_sort(sort.parent(), sort, stored, moved(*stored, moving.move, moving.grid));
}

void move_table_filter(pugi::xml_node table, const formula::Move& move, const Grid& grid) {
  if (pugi::xml_node filter = package::child(table, Family::Main, "autoFilter")) {
    const AutoFilter stored = read_filter(filter, grid);
    const AutoFilter wanted = moved(stored, move, grid);
    if (stored.range && !wanted.range) table.remove_child(filter);
    else if (stored != wanted) patch_filter(filter, stored, wanted);
  }
  const pugi::xml_node sort = package::child(table, Family::Main, "sortState");
  if (const auto stored = read_sort(sort, grid))
    patch_sort(table, sort, stored, moved(*stored, move, grid));
}

}  // namespace engine::xlsx
