// Formulas in the trees of parts, changed all at once.
#pragma once

#include <optional>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/package/xml_tree.h"
#include "engine/workbook/document.h"

namespace engine::xlsx {

// Everything below a node, in document order.
template <class Visit>
void visit_elements(pugi::xml_node parent, const Visit& visit) {
  for (const pugi::xml_node node : parent.children()) {
    if (node.type() != pugi::node_element) continue;
    visit(node);
    visit_elements(node, visit);
  }
}

// New texts for elements and attributes, held until all of them are made.
class TextEdits {
 public:
  // `sheet` is the one that the formulas stand on; null for those that belong to no sheet.
  TextEdits(const Sheet* sheet, const FormulaEdit& edit) : sheet_(sheet), edit_(edit) {}

  // The text of the element or attribute is a formula.
  void ask(pugi::xml_node element);
  void ask(pugi::xml_attribute attribute);
  // The attribute is the name of a sheet; cells of it are told elsewhere.
  void ask_sheet(pugi::xml_attribute attribute);

  bool empty() const { return elements_.empty() && attributes_.empty(); }
  void apply();

 private:
  const Sheet* sheet_;
  const FormulaEdit& edit_;
  std::vector<std::pair<pugi::xml_node, std::string>> elements_;
  std::vector<std::pair<pugi::xml_attribute, std::string>> attributes_;
};

// The formulas of a chart: what its series and titles show.
void collect_chart(pugi::xml_node root, TextEdits& edits);
// Those of a table: calculated columns and totals.
void collect_table(pugi::xml_node root, TextEdits& edits);
// The cells that a form control shows and changes.
void collect_control(pugi::xml_node root, TextEdits& edits);
// The cells that queries of connections take values from.
void collect_connections(pugi::xml_node root, TextEdits& edits);

}  // namespace engine::xlsx
