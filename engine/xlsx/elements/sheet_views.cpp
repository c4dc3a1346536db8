#include "engine/xlsx/elements/sheet_views.h"

#include <algorithm>
#include <optional>

#include "engine/formula/reference.h"
#include "engine/package/xml_tree.h"
#include "engine/xlsx/attributes.h"
#include "engine/xlsx/moved_cells.h"
#include "engine/xlsx/styles_patch.h"
#include "engine/xlsx/styles_read.h"

namespace engine::xlsx {

namespace {

using package::Family;

constexpr std::string_view kPropertyOrder[] = {"tabColor", "outlinePr", "pageSetUpPr"};
constexpr std::string_view kViewOrder[] = {"pane", "selection", "pivotSelection", "extLst"};

// What the model has of sheetPr.
struct Properties {
  Color tab_color;
  bool summary_below = true;
  bool summary_right = true;
  bool fitted = false;
  bool filtered = false;

  friend bool operator==(const Properties&, const Properties&) = default;
};

constexpr struct {
  const char* element;
  const char* attribute;
  bool Properties::*flag;
} kPropertyFlags[] = {
    {"outlinePr", "summaryBelow", &Properties::summary_below},
    {"outlinePr", "summaryRight", &Properties::summary_right},
    {"pageSetUpPr", "fitToPage", &Properties::fitted},
};

Properties read_properties(pugi::xml_node element) {
  Properties made;
  made.tab_color = read_color(package::child(element, Family::Main, "tabColor"));
  for (const auto& [name, attribute, flag] : kPropertyFlags)
    made.*flag =
        package::child(element, Family::Main, name).attribute(attribute).as_bool(made.*flag);
  made.filtered = element.attribute("filterMode").as_bool();
  return made;
}

constexpr int kMinZoom = 10;
constexpr int kMaxZoom = 400;
constexpr int kUsualZoom = 100;

// Two zooms stand in a view: of what it shows now, and of the normal view. 0 leaves it to programs.
const char* zoom_of_normal_view(pugi::xml_node view) {
  const std::string_view shown = view.attribute("view").value();
  return shown.empty() || shown == "normal" ? "zoomScale" : "zoomScaleNormal";
}

int read_zoom(pugi::xml_node view) {
  const int zoom = view.attribute(zoom_of_normal_view(view)).as_int();
  return zoom >= kMinZoom && zoom <= kMaxZoom ? zoom : kUsualZoom;
}

std::optional<CellAddress> read_corner(pugi::xml_node element, const Grid& grid) {
  const auto cell = formula::parse_cell(element.attribute("topLeftCell").value());
  if (!cell || !grid.holds(cell->row, cell->column)) return std::nullopt;
  return CellAddress{cell->row, cell->column};
}

// Null where the panes are not frozen: bars that can be moved are none of ours.
pugi::xml_node frozen_pane(pugi::xml_node view) {
  const pugi::xml_node pane = package::child(view, Family::Main, "pane");
  const std::string_view state = pane.attribute("state").value();
  return state == "frozen" || state == "frozenSplit" ? pane : pugi::xml_node();
}

// A null view reads as one that says nothing.
SheetView read_view(pugi::xml_node view, const Grid& grid) {
  SheetView made;
  made.gridlines = view.attribute("showGridLines").as_bool(true);
  made.right_to_left = view.attribute("rightToLeft").as_bool();
  made.zoom = read_zoom(view);
  const CellAddress corner = read_corner(view, grid).value_or(CellAddress());
  made.top_left = corner;
  const pugi::xml_node pane = frozen_pane(view);
  const auto frozen = [&](const char* name, int from, int size) {
    return std::clamp(pane.attribute(name).as_int(), 0, size - 1 - from);
  };
  made.frozen_rows = frozen("ySplit", corner.row, grid.rows);
  made.frozen_columns = frozen("xSplit", corner.column, grid.columns);
  if (made.frozen_rows != 0) made.frozen_from.row = corner.row;
  if (made.frozen_columns != 0) made.frozen_from.column = corner.column;
  return scroll(made, read_corner(pane, grid).value_or(corner));
}

// The pane that scrolls both ways; an empty name where none is frozen.
std::string_view pane_that_scrolls(const SheetView& view) {
  if (view.frozen_rows != 0) return view.frozen_columns != 0 ? "bottomRight" : "bottomLeft";
  return view.frozen_columns != 0 ? "topRight" : "";
}

// Each pane has a selection. That of the pane which was active goes on as that of the one which
// scrolls; the others begin at their first visible cell.
void divide_selections(pugi::xml_node view, std::string_view active, const SheetView& wanted) {
  const std::string_view scrolls = pane_that_scrolls(wanted);
  pugi::xml_node kept;
  for (const pugi::xml_node one : package::children(view, Family::Main, "selection")) {
    const std::string_view pane = one.attribute("pane").value();
    if (!kept && (pane.empty() ? "topLeft" : pane) == active) kept = one;
    else view.remove_child(one);
  }
  if (scrolls.empty()) {
    kept.remove_attribute("pane");
    return;
  }
  if (!kept) kept = ordered_child(view, "selection", kViewOrder);
  set_attribute(kept, "pane", scrolls);
  if (scrolls != "bottomRight") return;
  const auto add = [&](const char* pane, int row, int column) {
    const pugi::xml_node one = package::insert_child(view, "selection", kept);
    const std::string cell = formula::print_cell(row, column);
    set_attribute(one, "pane", pane);
    set_attribute(one, "activeCell", cell);
    set_attribute(one, "sqref", cell);
  };
  add("topRight", wanted.frozen_from.row, wanted.top_left.column);
  add("bottomLeft", wanted.top_left.row, wanted.frozen_from.column);
}

void patch_panes(pugi::xml_node view, const SheetView& stored, const SheetView& wanted) {
  pugi::xml_node pane = package::child(view, Family::Main, "pane");
  const std::string_view scrolls = pane_that_scrolls(wanted);
  if (scrolls != pane_that_scrolls(stored)) {
    const std::string active = pane ? pane.attribute("activePane").as_string("topLeft") : "topLeft";
    view.remove_child(pane);
    pane = {};
    divide_selections(view, active, wanted);
  }
  if (scrolls.empty()) return;
  if (!pane) {
    pane = ordered_child(view, "pane", kViewOrder);
    set_attribute(pane, "activePane", scrolls);
    set_attribute(pane, "state", "frozen");
  }
  const auto settle = [&](const char* name, int count) {
    settle_attribute(pane, name, std::to_string(count), count == 0);
  };
  settle("xSplit", wanted.frozen_columns);
  settle("ySplit", wanted.frozen_rows);
  set_attribute(pane, "topLeftCell",
                formula::print_cell(wanted.top_left.row, wanted.top_left.column));
}

// The first cell that the whole view shows, frozen or not.
CellAddress corner_of(const SheetView& view) {
  return {view.frozen_rows != 0 ? view.frozen_from.row : view.top_left.row,
          view.frozen_columns != 0 ? view.frozen_from.column : view.top_left.column};
}

void patch_view(pugi::xml_node view, const SheetView& wanted, const Grid& grid) {
  const SheetView stored = read_view(view, grid);
  settle_flag(view, "showGridLines", wanted.gridlines, true);
  settle_flag(view, "rightToLeft", wanted.right_to_left);
  if (wanted.zoom != stored.zoom) {
    for (const char* name : {zoom_of_normal_view(view), "zoomScaleNormal"})
      settle_attribute(view, name, std::to_string(wanted.zoom), wanted.zoom == kUsualZoom);
  }
  const CellAddress corner = corner_of(wanted);
  if (corner != corner_of(stored))
    settle_attribute(view, "topLeftCell", formula::print_cell(corner.row, corner.column),
                     corner == CellAddress());
  const bool same_panes = wanted.frozen_rows == stored.frozen_rows &&
                          wanted.frozen_columns == stored.frozen_columns &&
                          wanted.top_left == stored.top_left;
  if (!same_panes) patch_panes(view, stored, wanted);
}

}  // namespace

void read_sheet_properties(pugi::xml_node element, const SheetReading& to) {
  const Properties stored = read_properties(element);
  to.sheet.tab_color = stored.tab_color;
  to.sheet.summary_below = stored.summary_below;
  to.sheet.summary_right = stored.summary_right;
  to.sheet.page.fitted = stored.fitted;
  to.sheet.filtered = stored.filtered;
}

void patch_sheet_properties(pugi::xml_node root, const SheetPatching& from) {
  const SheetContents& sheet = from.sheet.contents();
  const Properties wanted{sheet.tab_color, sheet.summary_below, sheet.summary_right,
                          sheet.page.fitted, sheet.filtered};
  pugi::xml_node element = package::child(root, Family::Main, "sheetPr");
  const Properties stored = read_properties(element);
  if (stored == wanted) return;
  if (!element) element = worksheet_child(root, "sheetPr");
  patch_color(element, "tabColor", wanted.tab_color, kPropertyOrder);
  for (const auto& [name, attribute, flag] : kPropertyFlags) {
    if (wanted.*flag == stored.*flag) continue;
    const pugi::xml_node child = ordered_child(element, name, kPropertyOrder);
    settle_flag(child, attribute, wanted.*flag, Properties().*flag);
    remove_if_bare(child);
  }
  settle_flag(element, "filterMode", wanted.filtered);
  remove_if_bare(element);
}

// A name of code belongs to one sheet.
void copy_sheet_properties(pugi::xml_node element, const SheetCopying& /*to*/) {
  element.remove_attribute("codeName");
}

void read_views(pugi::xml_node element, const SheetReading& to) {
  const pugi::xml_node view = package::child(element, Family::Main, "sheetView");
  to.remains.selected = view.attribute("tabSelected").as_bool();
  to.sheet.view = read_view(view, to.context.workbook.limits.grid);
}

void patch_views(pugi::xml_node root, const SheetPatching& from) {
  const bool selected = from.sheet.selected;
  const SheetView& wanted = from.sheet.contents().view;
  pugi::xml_node views = package::child(root, Family::Main, "sheetViews");
  pugi::xml_node first = package::child(views, Family::Main, "sheetView");
  if (!first && (selected || wanted != SheetView())) {
    if (!views) views = worksheet_child(root, "sheetViews");
    first = package::append_child(views, "sheetView");
    set_attribute(first, "workbookViewId", "0");
  }
  for (const pugi::xml_node view : package::children(views, Family::Main, "sheetView"))
    settle_flag(view, "tabSelected", selected);
  if (first) patch_view(first, wanted, from.book.limits.grid);
}

// Pivot tables are not copied.
void copy_views(pugi::xml_node element, const SheetCopying& /*to*/) {
  for (pugi::xml_node view : package::children(element, Family::Main, "sheetView"))
    for (const pugi::xml_node pivot : package::children(view, Family::Main, "pivotSelection"))
      view.remove_child(pivot);
}

namespace {

// A cell that a view stands at. Where it is removed the view stands at what comes in its place.
void move_place(pugi::xml_node element, const char* name, const formula::Move& move,
                const Grid& grid) {
  const pugi::xml_attribute attribute = element.attribute(name);
  auto cell = formula::parse_cell(attribute.value());
  if (!cell) return;
  const bool rows = move.axis == formula::Axis::kRows;
  int& place = rows ? cell->row : cell->column;
  place = std::min(formula::moved(place, move).value_or(move.at),
                   (rows ? grid.rows : grid.columns) - 1);
  set_attribute(element, name, formula::print_cell(cell->row, cell->column));
}

}  // namespace

void move_views(pugi::xml_node element, const SheetMoving& moving) {
  const auto& [sheet, move, grid] = moving;
  for (const pugi::xml_node view : package::children(element, Family::Main, "sheetView")) {
    for (const pugi::xml_node selection : package::children(view, Family::Main, "selection")) {
      move_place(selection, "activeCell", move, grid);
      const auto cells = moved_ranges(selection.attribute("sqref").value(), move, grid);
      if (!cells) continue;
      const std::string active = selection.attribute("activeCell").as_string("A1");
      set_attribute(selection, "sqref", cells->empty() ? active : *cells);
      // Its number among the ranges may be that of another one now.
      pugi::xml_node(selection).remove_attribute("activeCellId");
    }
  }
}

// Each view has a page setup of its own, which may name settings of a printer.
void copy_custom_views(pugi::xml_node element, const SheetCopying& /*to*/) {
  visit_elements(element, [](pugi::xml_node node) {
    node.remove_attribute(package::attribute(node, Family::Relationships, "id"));
  });
}

}  // namespace engine::xlsx
