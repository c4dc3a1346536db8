#include "engine/xlsx/formula_texts.h"

namespace engine::xlsx {

void TextEdits::ask(pugi::xml_node element) {
  if (auto text = edit_(sheet_, element.text().get()))
    elements_.emplace_back(element, *std::move(text));
}

void TextEdits::ask(pugi::xml_attribute attribute) {
  if (auto text = edit_(sheet_, attribute.value()))
    attributes_.emplace_back(attribute, *std::move(text));
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

}  // namespace engine::xlsx
