// Where formulas stand in the trees of parts.
#pragma once

#include <optional>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/workbook/document.h"

namespace engine::xlsx {

// New texts for elements and attributes of trees, held until all of them are made.
class TextEdits {
 public:
  // Conditional formats, validations, and their extended variants and sparklines. True when a
  // formula of the sheet changes.
  bool collect_worksheet(pugi::xml_node root, const Sheet* sheet, const FormulaEdit& edit);
  void collect_chart(pugi::xml_node root, const FormulaEdit& edit);
  // Formulas of calculated columns and totals.
  void collect_table(pugi::xml_node root, const Sheet* sheet, const FormulaEdit& edit);

  bool empty() const { return elements_.empty() && attributes_.empty(); }
  void apply();

 private:
  void ask(pugi::xml_node element, const Sheet* sheet, const FormulaEdit& edit);
  void ask_limit(pugi::xml_node limit, const Sheet* sheet, const FormulaEdit& edit);

  std::vector<std::pair<pugi::xml_node, std::string>> elements_;
  std::vector<std::pair<pugi::xml_attribute, std::string>> attributes_;
};

// The bytes of a table part with its formulas edited; nothing when they stay as they are.
std::optional<std::string> edited_table(std::string_view bytes, const Sheet* sheet,
                                        const FormulaEdit& edit);

}  // namespace engine::xlsx
