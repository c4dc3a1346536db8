#include "engine/xlsx/elements/conditions.h"

#include <algorithm>
#include <iterator>
#include <optional>

#include "engine/formula/formula_text.h"
#include "engine/package/xml_tree.h"
#include "engine/xlsx/attributes.h"
#include "engine/xlsx/moved_cells.h"

namespace engine::xlsx {

namespace {

using package::Family;

// Extensions hold formulas (f) and ranges (sqref) in elements of a namespace that all share.
bool is_shared_extension(pugi::xml_node node, std::string_view local) {
  if (package::local_name(node) != local) return false;
  const std::string_view prefix = package::prefix_of(node.name());
  const std::string declaration = std::string("xmlns:").append(prefix);
  for (pugi::xml_node at = node; at; at = at.parent())
    if (const pugi::xml_attribute uri = at.attribute(declaration.c_str()))
      return std::string_view(uri.value()) == "http://schemas.microsoft.com/office/excel/2006/main";
  return false;
}

bool is_number(std::string_view text) {
  return text.find_first_not_of("+-.0123456789Ee") == std::string_view::npos;
}

bool has_elements(pugi::xml_node node) {
  for (const pugi::xml_node one : node.children())
    if (one.type() == pugi::node_element) return true;
  return false;
}

// Removes what has lost its cells, and what holds nothing then: the list around it, a group of
// sparklines without one, the extension, the list of extensions.
void remove_extension(pugi::xml_node node, pugi::xml_node list) {
  for (;;) {
    pugi::xml_node parent = node.parent();
    const bool is_list = node == list;
    parent.remove_child(node);
    if (is_list) return;
    if (has_elements(parent)) {
      const auto left = std::distance(parent.begin(), parent.end());
      if (parent.attribute("count")) set_attribute(parent, "count", std::to_string(left));
      return;
    }
    const bool is_group = package::local_name(parent) == "sparklines";
    node = is_group ? parent.parent() : parent;
  }
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

void move_extensions(pugi::xml_node element, const SheetMoving& moving) {
  std::vector<pugi::xml_node> lost;
  visit_elements(element, [&](pugi::xml_node node) {
    if (!is_shared_extension(node, "sqref")) return;
    const auto moved = moved_ranges(node.text().get(), moving.move, moving.grid);
    if (moved && moved->empty()) lost.push_back(node.parent());
    else if (moved) node.text().set(moved->c_str());
  });
  for (const pugi::xml_node node : lost) remove_extension(node, element);
}

void restate_rules(pugi::xml_node root, const formula::Move& move, const Grid& grid) {
  if (move.kind == formula::Move::Kind::kInsert) return;
  visit_elements(root, [&](pugi::xml_node rule) {
    const std::string_view name = package::local_name(rule);
    if (name != "conditionalFormatting" && name != "dataValidation") return;
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
    collect_validations(rule, edits);
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

void collect_validations(pugi::xml_node element, TextEdits& edits) {
  visit_elements(element, [&](pugi::xml_node node) {
    const std::string_view local = package::local_name(node);
    if (local == "formula1" || local == "formula2") edits.ask(node);
  });
}

void collect_extensions(pugi::xml_node element, TextEdits& edits) {
  visit_elements(element, [&](pugi::xml_node node) {
    if (is_shared_extension(node, "f")) edits.ask(node);
  });
}

// An extension that names parts (slicers, timelines) is nothing without them.
void copy_extensions(pugi::xml_node element, const SheetCopying& /*to*/) {
  for (const pugi::xml_node one : package::children(element, Family::Main, "ext"))
    if (refers_to_parts(one)) element.remove_child(one);
  if (!element.first_child()) element.parent().remove_child(element);
}

}  // namespace engine::xlsx
