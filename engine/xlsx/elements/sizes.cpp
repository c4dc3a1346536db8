#include "engine/xlsx/elements/sizes.h"

#include <algorithm>

#include "engine/formula/reference.h"
#include "engine/package/xml_tree.h"
#include "engine/text/number_text.h"
#include "engine/workbook/auto_fit.h"
#include "engine/workbook/font_metrics.h"
#include "engine/workbook/metrics.h"
#include "engine/xlsx/attributes.h"

namespace engine::xlsx {

using package::Family;

void patch_dimension(pugi::xml_node root, const SheetPatching& from) {
  CellRange range;
  bool any = from.sheet.contents().cells.used_range(&range);
  CellRange others;
  if (from.outside && from.outside->rows.contents().cells.used_range(&others)) {
    if (!any) range = others;
    range = {std::min(range.row_first, others.row_first), std::max(range.row_last, others.row_last),
             std::min(range.column_first, others.column_first),
             std::max(range.column_last, others.column_last)};
    any = true;
  }
  set_attribute(worksheet_child(root, "dimension"), "ref",
                any ? formula::print_range(range) : "A1");
}

void read_default_sizes(pugi::xml_node element, const SheetReading& to) {
  SheetContents& sheet = to.sheet;
  sheet.digit_pixels = digit_pixels(to.context.workbook.styles.font(0));
  const auto width = parse_number(element.attribute("defaultColWidth").value());
  if (width && *width >= 0 && *width <= 255) sheet.default_column_width = *width;
  sheet.base_column_width = std::clamp(element.attribute("baseColWidth").as_int(8), 0, 255);
  const auto height = parse_number(element.attribute("defaultRowHeight").value());
  if (height && *height >= 0 && *height <= 409.5) sheet.default_row_height = *height;
  sheet.hides_rows = element.attribute("zeroHeight").as_bool();
}

void patch_default_sizes(pugi::xml_node root, const SheetPatching& from) {
  const SheetContents& sheet = from.sheet.contents();
  unsigned rows = 0;
  unsigned columns = 0;
  const auto note = [&](const SheetContents& one) {
    for (const RowProperties& row : one.row_properties)
      rows = std::max<unsigned>(rows, row.outline_level);
  };
  note(sheet);
  if (from.outside) note(from.outside->rows.contents());
  for (const ColumnProperties& column : sheet.columns)
    columns = std::max<unsigned>(columns, column.outline_level);
  pugi::xml_node format = package::child(root, Family::Main, "sheetFormatPr");
  if (!format) {
    if (rows == 0 && columns == 0) return;
    format = worksheet_child(root, "sheetFormatPr");
    set_attribute(format, "defaultRowHeight", "15");
  }
  if (sheet.default_column_width)
    set_attribute(format, "defaultColWidth", number_text(*sheet.default_column_width));
  settle_attribute(format, "outlineLevelRow", std::to_string(rows), rows == 0);
  settle_attribute(format, "outlineLevelCol", std::to_string(columns), columns == 0);
}

namespace {

// Whether a column element says what the model does not know of, if only by saying no width.
bool says_more(pugi::xml_node column) {
  constexpr std::string_view kKnown[] = {"min",         "max",       "width",
                                         "style",       "hidden",    "bestFit",
                                         "customWidth", "collapsed", "outlineLevel"};
  const auto is_known = [&](pugi::xml_attribute attribute) {
    return std::ranges::find(kKnown, std::string_view(attribute.name())) != std::end(kKnown);
  };
  return column.first_child() || !column.attribute("width") ||
         !std::ranges::all_of(column.attributes(), is_known);
}

}  // namespace

// Some programs list columns in another order than their own; the tree is put in order as well, for
// the writer. Of columns that several entries tell of the first of these counts.
void read_columns(pugi::xml_node element, const SheetReading& to) {
  const auto first = [](pugi::xml_node node) { return node.attribute("min").as_int(); };
  std::vector<pugi::xml_node> nodes = package::children(element, Family::Main, "col");
  if (!std::ranges::is_sorted(nodes, {}, first)) {
    std::ranges::stable_sort(nodes, {}, first);
    for (const pugi::xml_node node : nodes) element.append_move(node);
  }
  int free = 0;  // the first column that no entry tells of so far
  std::uint32_t number = 0;
  for (const pugi::xml_node node : nodes) {
    ++number;
    ColumnProperties one;
    one.first = node.attribute("min").as_int() - 1;
    one.last =
        std::min(node.attribute("max").as_int(), to.context.workbook.limits.grid.columns) - 1;
    one.first = std::max(one.first, free);
    if (one.first > one.last) continue;
    free = one.last + 1;
    if (const auto width = parse_number(node.attribute("width").value())) one.width = *width;
    one.style = to.context.format(node.attribute("style").as_uint());
    one.custom_width = node.attribute("customWidth").as_bool();
    one.hidden = node.attribute("hidden").as_bool();
    one.best_fit = node.attribute("bestFit").as_bool();
    one.collapsed = node.attribute("collapsed").as_bool();
    one.outline_level =
        static_cast<std::uint8_t>(std::min(node.attribute("outlineLevel").as_uint(), 7U));
    if (says_more(node)) one.details = number;
    to.sheet.columns.append(one);
  }
}

// Columns are written anew. Those of which the file says more than the model knows take over their
// element. A width that nobody set is written all the same: without one columns would be closed.
void patch_columns(pugi::xml_node root, const SheetPatching& from) {
  const SheetContents& sheet = from.sheet.contents();
  const pugi::xml_node old = package::child(root, Family::Main, "cols");
  const Columns fitted = fitted_columns(from.book, sheet, from.tables);
  if (fitted.empty()) {
    root.remove_child(old);
    return;
  }
  const std::string usual_width =
      number_text(width_of_pixels(default_column_pixels(sheet), sheet.digit_pixels));
  pugi::xml_node columns =
      old ? package::insert_child(root, "cols", old) : worksheet_child(root, "cols");
  for (const pugi::xml_attribute attribute : old.attributes()) columns.append_copy(attribute);
  const std::vector<pugi::xml_node> stored = package::children(old, Family::Main, "col");
  for (const ColumnProperties& one : fitted) {
    const pugi::xml_node node = one.details != 0 ? columns.append_copy(stored[one.details - 1])
                                                 : package::append_child(columns, "col");
    set_attribute(node, "min", std::to_string(one.first + 1));
    set_attribute(node, "max", std::to_string(one.last + 1));
    if (one.width) set_attribute(node, "width", number_text(*one.width));
    else if (one.details == 0) set_attribute(node, "width", usual_width);
    const std::uint32_t style = from.styles.file_number(one.style);
    settle_attribute(node, "style", std::to_string(style), style == 0);
    settle_attribute(node, "hidden", "1", !one.hidden);
    settle_attribute(node, "bestFit", "1", !one.best_fit);
    settle_attribute(node, "customWidth", "1", !one.custom_width);
    settle_attribute(node, "outlineLevel", std::to_string(one.outline_level),
                     one.outline_level == 0);
    settle_attribute(node, "collapsed", "1", !one.collapsed);
  }
  root.remove_child(old);
}

}  // namespace engine::xlsx
