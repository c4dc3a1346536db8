#include "engine/xlsx/elements/filters.h"

#include "engine/package/xml_tree.h"
#include "engine/xlsx/attributes.h"
#include "engine/xlsx/moved_cells.h"

namespace engine::xlsx {

namespace {

using package::Family;

void move_criteria(pugi::xml_node filter, int first, int first_after, const formula::Move& move) {
  for (pugi::xml_node column : package::children(filter, Family::Main, "filterColumn")) {
    const auto to = formula::moved(first + column.attribute("colId").as_int(), move);
    if (to) set_attribute(column, "colId", std::to_string(*to - first_after));
    else filter.remove_child(column);
  }
}

}  // namespace

bool move_filter(pugi::xml_node filter, const formula::Move& move, const Grid& grid) {
  const auto range = formula::parse_range(filter.attribute("ref").value(), grid);
  if (!range) return true;
  const auto to = moved_range(*range, move, grid);
  const bool header_goes =
      move.axis == formula::Axis::kRows && !formula::moved(range->row_first, move);
  if (!to || header_goes) {
    filter.parent().remove_child(filter);
    return false;
  }
  set_attribute(filter, "ref", formula::print_range(*to));
  if (move.axis == formula::Axis::kColumns)
    move_criteria(filter, range->column_first, to->column_first, move);
  if (const pugi::xml_node sort = package::child(filter, Family::Main, "sortState"))
    move_sort(sort, move, grid);
  return true;
}

void move_sheet_sort(pugi::xml_node sort, const SheetMoving& moving) {
  move_sort(sort, moving.move, moving.grid);
}

void move_sheet_filter(pugi::xml_node filter, const SheetMoving& moving) {
  const pugi::xml_node root = filter.parent();
  if (!move_filter(filter, moving.move, moving.grid))
    package::child(root, Family::Main, "sheetPr").remove_attribute("filterMode");
}

void move_sort(pugi::xml_node sort, const formula::Move& move, const Grid& grid) {
  const auto moved = moved_ranges(sort.attribute("ref").value(), move, grid);
  if (moved && !moved->empty()) set_attribute(sort, "ref", *moved);
  bool is_left = !moved || !moved->empty();
  for (pugi::xml_node condition : package::children(sort, Family::Main, "sortCondition")) {
    const auto to = moved_ranges(condition.attribute("ref").value(), move, grid);
    if (to && to->empty()) sort.remove_child(condition);
    else if (to) set_attribute(condition, "ref", *to);
  }
  is_left &= package::child(sort, Family::Main, "sortCondition") != nullptr;
  if (!is_left) sort.parent().remove_child(sort);
}

}  // namespace engine::xlsx
