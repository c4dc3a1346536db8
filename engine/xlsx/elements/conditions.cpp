#include "engine/xlsx/elements/conditions.h"

#include "engine/package/xml_tree.h"

namespace engine::xlsx {

namespace {

using package::Family;

// Extensions hold formulas in elements of a namespace that all of them share.
bool is_extension_formula(pugi::xml_node node) {
  if (package::local_name(node) != "f") return false;
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

}  // namespace

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
    if (is_extension_formula(node)) edits.ask(node);
  });
}

// An extension that names parts (slicers, timelines) is nothing without them.
void copy_extensions(pugi::xml_node element, const SheetCopying& /*to*/) {
  for (const pugi::xml_node one : package::children(element, Family::Main, "ext"))
    if (refers_to_parts(one)) element.remove_child(one);
  if (!element.first_child()) element.parent().remove_child(element);
}

}  // namespace engine::xlsx
