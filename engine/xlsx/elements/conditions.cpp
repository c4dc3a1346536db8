#include "engine/xlsx/elements/conditions.h"

#include <algorithm>
#include <optional>

#include "engine/formula/formula_text.h"
#include "engine/package/xml_tree.h"
#include "engine/xlsx/elements/extensions.h"
#include "engine/xlsx/moved_cells.h"

namespace engine::xlsx {

namespace {

using package::Family;

bool is_number(std::string_view text) {
  return text.find_first_not_of("+-.0123456789Ee") == std::string_view::npos;
}

// The first cell of those that stay of some ranges, or of all, where they are before the move.
std::optional<CellAddress> first_cell(std::string_view ranges, const Grid& grid,
                                      const formula::Move* move) {
  std::optional<CellAddress> first;
  for_each_range(ranges, grid, [&](CellRange range) {
    if (move && move->kind == formula::Move::Kind::kRemove) {
      if (!moved_range(range, *move, grid)) return;
      const bool rows = move->axis == formula::Axis::kRows;
      int& begin = rows ? range.row_first : range.column_first;
      if (begin >= move->at && begin < move->at + move->count) begin = move->at + move->count;
    }
    if (!first) first = {range.row_first, range.column_first};
    first->row = std::min(first->row, range.row_first);
    first->column = std::min(first->column, range.column_first);
  });
  return first;
}

}  // namespace

void restate_rules(pugi::xml_node root, const formula::Move& move, const Grid& grid) {
  if (move.kind == formula::Move::Kind::kInsert) return;
  visit_elements(root, [&](pugi::xml_node rule) {
    const std::string_view name = package::local_name(rule);
    if (name != "conditionalFormatting") return;
    std::string ranges = rule.attribute("sqref").value();
    for (const pugi::xml_node child : rule.children())
      if (is_shared_extension(child, "sqref")) ranges = child.text().get();
    const auto before = first_cell(ranges, grid, nullptr);
    const auto after = first_cell(ranges, grid, &move);
    if (!before || !after || *before == *after) return;
    const FormulaEdit shift = [&](const Sheet*, std::string_view formula) {
      return formula::shift_text(formula, after->row - before->row, after->column - before->column,
                                 grid);
    };
    TextEdits edits(nullptr, shift);
    collect_conditional_format(rule, edits);
    collect_extensions(rule, edits);
    edits.apply();
  });
}

void collect_conditional_format(pugi::xml_node element, TextEdits& edits) {
  visit_elements(element, [&](pugi::xml_node node) {
    if (package::is(node, Family::Main, "formula")) edits.ask(node);
    if (!package::is(node, Family::Main, "cfvo")) return;
    // A limit of a colour scale, data bar or icon set is a number or a formula.
    const pugi::xml_attribute value = node.attribute("val");
    if (value && !is_number(value.value())) edits.ask(value);
  });
}

}  // namespace engine::xlsx
