#include "engine/xlsx/elements/extensions.h"

#include <set>
#include <string>
#include <utility>

#include "engine/package/xml_tree.h"
#include "engine/xlsx/attributes.h"
#include "engine/xlsx/moved_cells.h"

namespace engine::xlsx {

namespace {

using package::Family;

// Whether an element of the shared namespace belongs to a validation.
bool is_of_validation(pugi::xml_node node) {
  const pugi::xml_node parent = node.parent();
  return package::local_name(parent) == "dataValidation" ||
         package::local_name(parent.parent()) == "dataValidation";
}

}  // namespace

bool is_shared_extension(pugi::xml_node node, std::string_view local) {
  if (package::local_name(node) != local) return false;
  const std::string_view prefix = package::prefix_of(node.name());
  const std::string declaration = std::string("xmlns:").append(prefix);
  for (pugi::xml_node at = node; at; at = at.parent())
    if (const pugi::xml_attribute uri = at.attribute(declaration.c_str()))
      return std::string_view(uri.value()) == "http://schemas.microsoft.com/office/excel/2006/main";
  return false;
}

bool is_extended_validation(pugi::xml_node node) {
  if (package::local_name(node) != "dataValidation") return false;
  for (const pugi::xml_node child : node.children())
    if (is_shared_extension(child, "sqref")) return true;
  return false;
}

void move_extensions(pugi::xml_node element, const SheetMoving& moving) {
  std::set<pugi::xml_node> lost;
  visit_elements(element, [&](pugi::xml_node node) {
    if (!is_shared_extension(node, "sqref") || is_of_validation(node)) return;
    const auto moved = moved_ranges(node.text().get(), moving.move, moving.grid);
    if (moved && moved->empty()) lost.insert(node.parent());
    else if (moved) node.text().set(moved->c_str());
  });
  remove_with_lists(std::move(lost), element.parent());
}

void collect_extensions(pugi::xml_node element, TextEdits& edits) {
  visit_elements(element, [&](pugi::xml_node node) {
    if (is_shared_extension(node, "f") && !is_of_validation(node)) edits.ask(node);
  });
}

// An extension that names parts (slicers, timelines) is nothing without them.
void copy_extensions(pugi::xml_node element, const SheetCopying& /*to*/) {
  for (const pugi::xml_node one : package::children(element, Family::Main, "ext"))
    if (refers_to_parts(one)) element.remove_child(one);
  if (count_elements(element) == 0) element.parent().remove_child(element);
}

}  // namespace engine::xlsx
