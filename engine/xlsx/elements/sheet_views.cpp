#include "engine/xlsx/elements/sheet_views.h"

#include "engine/package/xml_tree.h"
#include "engine/xlsx/attributes.h"

namespace engine::xlsx {

using package::Family;

// A name of code belongs to one sheet.
void copy_sheet_properties(pugi::xml_node element, const SheetCopying& /*to*/) {
  element.remove_attribute("codeName");
}

void read_views(pugi::xml_node element, const SheetReading& to) {
  const pugi::xml_node view = package::child(element, Family::Main, "sheetView");
  to.remains.selected = view.attribute("tabSelected").as_bool();
}

void patch_views(pugi::xml_node root, const SheetPatching& from) {
  const bool selected = from.sheet.selected;
  const pugi::xml_node views = package::child(root, Family::Main, "sheetViews");
  for (const pugi::xml_node view : package::children(views, Family::Main, "sheetView"))
    if (view.attribute("tabSelected").as_bool() != selected)
      settle_attribute(view, "tabSelected", "1", !selected);
  if (views || !selected) return;
  const pugi::xml_node view =
      package::append_child(worksheet_child(root, "sheetViews"), "sheetView");
  set_attribute(view, "tabSelected", "1");
  set_attribute(view, "workbookViewId", "0");
}

// Pivot tables are not copied.
void copy_views(pugi::xml_node element, const SheetCopying& /*to*/) {
  for (pugi::xml_node view : package::children(element, Family::Main, "sheetView"))
    for (const pugi::xml_node pivot : package::children(view, Family::Main, "pivotSelection"))
      view.remove_child(pivot);
}

// Each view has a page setup of its own, which may name settings of a printer.
void copy_custom_views(pugi::xml_node element, const SheetCopying& /*to*/) {
  visit_elements(element, [](pugi::xml_node node) {
    node.remove_attribute(package::attribute(node, Family::Relationships, "id"));
  });
}

}  // namespace engine::xlsx
