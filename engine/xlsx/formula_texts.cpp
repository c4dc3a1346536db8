#include "engine/xlsx/formula_texts.h"

#include "engine/formula/formula_text.h"
#include "engine/formula/sheet_name.h"

namespace engine::xlsx {

void TextEdits::ask(pugi::xml_node element) {
  if (auto text = edit_(sheet_, element.text().get()))
    elements_.emplace_back(element, *std::move(text));
}

void TextEdits::ask(pugi::xml_attribute attribute) {
  if (auto text = edit_(sheet_, attribute.value()))
    attributes_.emplace_back(attribute, *std::move(text));
}

void TextEdits::ask_sheet(pugi::xml_attribute attribute) {
  constexpr Grid kOneCell{1, 1};
  const auto text = edit_(sheet_, formula::quote_sheet_name(attribute.value()) + "!A1");
  if (!text) return;
  const auto cells = formula::ranges_of_text(*text, kOneCell);
  if (cells.size() == 1 && !cells[0].sheet.empty())
    attributes_.emplace_back(attribute, cells[0].sheet);
}

void TextEdits::apply() {
  for (auto& [element, text] : elements_) element.text().set(text.c_str());
  for (auto& [attribute, text] : attributes_) attribute = text.c_str();
}

void collect_chart(pugi::xml_node root, TextEdits& edits) {
  visit_elements(root, [&](pugi::xml_node node) {
    if (package::local_name(node) == "f" && node.text()) edits.ask(node);
  });
}

void collect_table(pugi::xml_node root, TextEdits& edits) {
  visit_elements(root, [&](pugi::xml_node node) {
    const std::string_view local = package::local_name(node);
    if (local == "calculatedColumnFormula" || local == "totalsRowFormula") edits.ask(node);
  });
}

void collect_control(pugi::xml_node root, TextEdits& edits) {
  for (const char* name : {"fmlaGroup", "fmlaLink", "fmlaRange", "fmlaTxbx"})
    if (const pugi::xml_attribute formula = root.attribute(name)) edits.ask(formula);
}

void collect_connections(pugi::xml_node root, TextEdits& edits) {
  visit_elements(root, [&](pugi::xml_node node) {
    if (!package::is(node, package::Family::Main, "parameter")) return;
    if (const pugi::xml_attribute cell = node.attribute("cell")) edits.ask(cell);
  });
}

}  // namespace engine::xlsx
