#include "engine/xlsx/elements/page_breaks.h"

#include <algorithm>

#include "engine/package/xml_tree.h"
#include "engine/xlsx/attributes.h"

namespace engine::xlsx {

namespace {

using package::Family;

int place_of(pugi::xml_node node) { return node.attribute("id").as_int(); }
// Other breaks are a program's own: it found the page full there.
bool is_manual(pugi::xml_node node) { return node.attribute("man").as_bool(); }

// Breaks of rows lie above one of `size` rows.
PageBreakList breaks_of(pugi::xml_node element, int size) {
  PageBreakList list;
  for (const pugi::xml_node node : package::children(element, Family::Main, "brk")) {
    const int at = place_of(node);
    if (!is_manual(node) || at <= 0 || at >= size) continue;
    list.push_back({at, node.attribute("min").as_int(), node.attribute("max").as_int(),
                    node.attribute("pt").as_bool()});
  }
  std::ranges::stable_sort(list, {}, &PageBreak::at);
  const auto doubles = std::ranges::unique(list, {}, &PageBreak::at);
  list.erase(doubles.begin(), doubles.end());
  return list;
}

void remove_manual_breaks(pugi::xml_node element) {
  for (const pugi::xml_node node : package::children(element, Family::Main, "brk"))
    if (is_manual(node)) element.remove_child(node);
}

void write_break(pugi::xml_node node, const PageBreak& one) {
  set_attribute(node, "id", std::to_string(one.at));
  settle_attribute(node, "min", std::to_string(one.first), one.first == 0);
  settle_attribute(node, "max", std::to_string(one.last), one.last == 0);
  set_attribute(node, "man", "1");
  settle_attribute(node, "pt", "1", !one.by_pivot_table);
}

// Between the breaks that programs made, of which one at the same place becomes manual.
void insert_breaks(pugi::xml_node element, const PageBreakList& list) {
  pugi::xml_node next = package::child(element, Family::Main, "brk");
  for (const PageBreak& one : list) {
    while (next && place_of(next) < one.at) next = package::next_sibling(next, Family::Main, "brk");
    const bool is_there = next && place_of(next) == one.at;
    write_break(is_there ? next : package::insert_child(element, "brk", next), one);
  }
}

void patch_breaks(pugi::xml_node root, const char* name, const PageBreakList& list, int size) {
  pugi::xml_node element = package::child(root, Family::Main, name);
  if (breaks_of(element, size) == list) return;
  if (!element) element = worksheet_child(root, name);
  remove_manual_breaks(element);
  insert_breaks(element, list);
  const std::size_t count = package::children(element, Family::Main, "brk").size();
  if (count == 0) {
    root.remove_child(element);
    return;
  }
  set_attribute(element, "count", std::to_string(count));
  set_attribute(element, "manualBreakCount", std::to_string(list.size()));
}

}  // namespace

void read_row_breaks(pugi::xml_node element, const SheetReading& to) {
  to.sheet.breaks.rows = breaks_of(element, to.context.workbook.limits.grid.rows);
}

void patch_row_breaks(pugi::xml_node root, const SheetPatching& from) {
  patch_breaks(root, "rowBreaks", from.sheet.contents().breaks.rows, from.book.limits.grid.rows);
}

void read_column_breaks(pugi::xml_node element, const SheetReading& to) {
  to.sheet.breaks.columns = breaks_of(element, to.context.workbook.limits.grid.columns);
}

void patch_column_breaks(pugi::xml_node root, const SheetPatching& from) {
  patch_breaks(root, "colBreaks", from.sheet.contents().breaks.columns,
               from.book.limits.grid.columns);
}

}  // namespace engine::xlsx
