#include "engine/xlsx/elements/sizes.h"

#include <algorithm>

#include "engine/formula/reference.h"
#include "engine/package/xml_tree.h"
#include "engine/text/number_text.h"
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
  if (height && *height >= 0 && *height <= 409.5)
    sheet.default_row_pixels = pixels_of_points(*height);
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

// Some programs list columns in another order than their own; the tree is put in order as well, for
// the writer. Of columns that several entries tell of the first of these counts.
void read_columns(pugi::xml_node element, const SheetReading& to) {
  const auto first = [](pugi::xml_node node) { return node.attribute("min").as_int(); };
  std::vector<pugi::xml_node> nodes = package::children(element, Family::Main, "col");
  if (!std::ranges::is_sorted(nodes, {}, first)) {
    std::ranges::stable_sort(nodes, {}, first);
    for (const pugi::xml_node node : nodes) element.append_move(node);
  }
  std::vector<ColumnProperties>& columns = to.sheet.columns;
  for (const pugi::xml_node node : nodes) {
    ColumnProperties one;
    one.first = node.attribute("min").as_int() - 1;
    one.last =
        std::min(node.attribute("max").as_int(), to.context.workbook.limits.grid.columns) - 1;
    const int from = columns.empty() ? 0 : columns.back().last + 1;
    one.first = std::max(one.first, from);
    if (one.first > one.last) continue;
    if (const auto width = parse_number(node.attribute("width").value())) one.width = *width;
    one.style = to.context.format(node.attribute("style").as_uint());
    one.custom_width = node.attribute("customWidth").as_bool();
    one.hidden = node.attribute("hidden").as_bool();
    one.best_fit = node.attribute("bestFit").as_bool();
    one.collapsed = node.attribute("collapsed").as_bool();
    one.outline_level =
        static_cast<std::uint8_t>(std::min(node.attribute("outlineLevel").as_uint(), 7U));
    columns.push_back(one);
  }
}

// Columns are written anew; one that begins inside a column element of the file takes over what
// that says beyond the model.
void patch_columns(pugi::xml_node root, const SheetPatching& from) {
  const SheetContents& sheet = from.sheet.contents();
  const pugi::xml_node old = package::child(root, Family::Main, "cols");
  if (sheet.columns.empty()) {
    root.remove_child(old);
    return;
  }
  pugi::xml_node columns =
      old ? package::insert_child(root, "cols", old) : worksheet_child(root, "cols");
  for (const pugi::xml_attribute attribute : old.attributes()) columns.append_copy(attribute);
  pugi::xml_node stored = package::child(old, Family::Main, "col");
  for (const ColumnProperties& one : sheet.columns) {
    while (stored && stored.attribute("max").as_int() <= one.first)
      stored = package::next_sibling(stored, Family::Main, "col");
    const bool inside = stored && stored.attribute("min").as_int() <= one.first + 1;
    const pugi::xml_node node =
        inside ? columns.append_copy(stored) : package::append_child(columns, "col");
    set_attribute(node, "min", std::to_string(one.first + 1));
    set_attribute(node, "max", std::to_string(one.last + 1));
    settle_attribute(node, "width", number_text(one.width.value_or(0)), !one.width);
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
