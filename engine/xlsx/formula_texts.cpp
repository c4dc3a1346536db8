#include "engine/xlsx/formula_texts.h"

#include <iterator>

#include "engine/package/xml_tree.h"

namespace engine::xlsx {

namespace {

using package::Family;

// Everything below a node, in document order.
template <class Visit>
void visit_all(pugi::xml_node parent, const Visit& visit) {
  for (const pugi::xml_node node : parent.children()) {
    if (node.type() != pugi::node_element) continue;
    visit(node);
    visit_all(node, visit);
  }
}

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

void TextEdits::ask(pugi::xml_node element, const Sheet* sheet, const FormulaEdit& edit) {
  if (auto text = edit(sheet, element.text().get()))
    elements_.emplace_back(element, *std::move(text));
}

// A limit of a colour scale, data bar or icon set is a number or a formula.
void TextEdits::ask_limit(pugi::xml_node limit, const Sheet* sheet, const FormulaEdit& edit) {
  const pugi::xml_attribute value = limit.attribute("val");
  if (!value || is_number(value.value())) return;
  if (auto text = edit(sheet, value.value())) attributes_.emplace_back(value, *std::move(text));
}

bool TextEdits::collect_worksheet(pugi::xml_node root, const Sheet* sheet,
                                  const FormulaEdit& edit) {
  const std::size_t before = elements_.size() + attributes_.size();
  for (const pugi::xml_node format :
       package::children(root, Family::Main, "conditionalFormatting")) {
    visit_all(format, [&](pugi::xml_node node) {
      if (package::is(node, Family::Main, "formula")) ask(node, sheet, edit);
      else if (package::is(node, Family::Main, "cfvo")) ask_limit(node, sheet, edit);
    });
  }
  visit_all(package::child(root, Family::Main, "dataValidations"), [&](pugi::xml_node node) {
    const std::string_view local = package::local_name(node);
    if (local == "formula1" || local == "formula2") ask(node, sheet, edit);
  });
  visit_all(package::child(root, Family::Main, "extLst"), [&](pugi::xml_node node) {
    if (is_extension_formula(node)) ask(node, sheet, edit);
  });
  return elements_.size() + attributes_.size() != before;
}

void TextEdits::collect_chart(pugi::xml_node root, const FormulaEdit& edit) {
  visit_all(root, [&](pugi::xml_node node) {
    if (package::local_name(node) == "f" && node.text()) ask(node, nullptr, edit);
  });
}

void TextEdits::collect_table(pugi::xml_node root, const Sheet* sheet, const FormulaEdit& edit) {
  visit_all(root, [&](pugi::xml_node node) {
    const std::string_view local = package::local_name(node);
    if (local == "calculatedColumnFormula" || local == "totalsRowFormula") ask(node, sheet, edit);
  });
}

void TextEdits::apply() {
  for (auto& [element, text] : elements_) element.text().set(text.c_str());
  for (auto& [attribute, text] : attributes_) attribute = text.c_str();
}

std::optional<std::string> edited_table(std::string_view bytes, const Sheet* sheet,
                                        const FormulaEdit& edit) {
  const auto tree = package::XmlTree::parse(bytes, "table");
  TextEdits edits;
  edits.collect_table(tree.root(), sheet, edit);
  if (edits.empty()) return std::nullopt;
  edits.apply();
  return tree.serialize();
}

}  // namespace engine::xlsx
