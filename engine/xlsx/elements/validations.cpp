#include "engine/xlsx/elements/validations.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <set>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "engine/formula/formula_text.h"
#include "engine/formula/reference.h"
#include "engine/package/xml_tree.h"
#include "engine/workbook/ignored_errors.h"
#include "engine/workbook/validations.h"
#include "engine/xlsx/attributes.h"
#include "engine/xlsx/elements/extensions.h"
#include "engine/xlsx/escapes.h"
#include "engine/xlsx/formula_texts.h"
#include "engine/xlsx/moved_cells.h"
#include "engine/xlsx/stored_formula.h"

namespace engine::xlsx {

namespace {

using package::Family;
using Names = std::span<const std::string_view>;

constexpr std::string_view kTypes[] = {"none", "whole", "decimal",    "list",
                                       "date", "time",  "textLength", "custom"};
constexpr std::string_view kOperators[] = {"between",     "notBetween",        "equal",
                                           "notEqual",    "lessThan",          "lessThanOrEqual",
                                           "greaterThan", "greaterThanOrEqual"};
constexpr std::string_view kErrorStyles[] = {"stop", "warning", "information"};
constexpr const char* kFormulas[] = {"formula1", "formula2"};
// So many ranges may stand in one attribute.
constexpr std::size_t kMaxRanges = 32767;

constexpr struct {
  const char* name;
  bool Validation::*flag;
} kFlags[] = {{"allowBlank", &Validation::allow_blank},
              {"showDropDown", &Validation::hide_drop_down},  // the name says the opposite
              {"showInputMessage", &Validation::show_prompt},
              {"showErrorMessage", &Validation::show_error}};

constexpr struct {
  const char* name;
  std::string Validation::*text;
} kTexts[] = {{"errorTitle", &Validation::error_title},
              {"error", &Validation::error},
              {"promptTitle", &Validation::prompt_title},
              {"prompt", &Validation::prompt}};

constexpr struct {
  const char* name;
  FaultKind kind;
} kFaults[] = {{"evalError", kEvaluationFault},
               {"twoDigitTextYear", kTwoDigitYearFault},
               {"numberStoredAsText", kNumberAsTextFault},
               {"formula", kFormulaFault},
               {"formulaRange", kRangeFault},
               {"unlockedFormula", kUnlockedFormulaFault},
               {"emptyCellReference", kEmptyReferenceFault},
               {"listDataValidation", kValidationFault}};

// The value of an enumeration by its name; the first one for a name that is not known.
template <class E>
E value_of(pugi::xml_attribute attribute, Names names) {
  const auto found = std::ranges::find(names, std::string_view(attribute.value()));
  return found == names.end() ? E{} : static_cast<E>(found - names.begin());
}

template <class E>
void settle_value(pugi::xml_node node, const char* name, E value, Names names) {
  if (value_of<E>(node.attribute(name), names) != value)
    settle_attribute(node, name, names[static_cast<std::size_t>(value)], value == E{});
}

// The cells of an element; none when a part of the text names none.
CellRanges cells_of(std::string_view text, const Grid& grid) {
  CellRanges cells;
  bool all_known = true;
  for_each_part(text, grid, [&](std::string_view one, const std::optional<CellRange>& range) {
    all_known &= range || one.empty();
    if (range) cells.insert(*range);
  });
  return all_known ? cells : CellRanges();
}

template <class Ranges>
std::string text_of(const Ranges& ranges) {
  std::string text;
  for (const CellRange& range : ranges) {
    if (!text.empty()) text.push_back(' ');
    formula::append_range(text, range);
  }
  return text;
}

// Validations.

// The element of an extension that holds its cells.
pugi::xml_node cells_node(pugi::xml_node node) {
  for (const pugi::xml_node child : node.children())
    if (is_shared_extension(child, "sqref")) return child;
  return {};
}

// The element with the text of a formula, wherever alternate content or an extension has it.
pugi::xml_node formula_node(pugi::xml_node node, std::string_view name) {
  pugi::xml_node found;
  visit_elements(node, [&](pugi::xml_node one) {
    if (!found && package::local_name(one) == name) found = one;
  });
  for (const pugi::xml_node child : found.children())
    if (is_shared_extension(child, "f")) return child;
  return found;
}

Validation validation_of(pugi::xml_node node, const Grid& grid) {
  Validation rule;
  const pugi::xml_node cells = cells_node(node);
  rule.cells = cells_of(cells ? cells.text().get() : node.attribute("sqref").value(), grid);
  if (rule.cells.empty()) return rule;
  rule.corner = corner_of(rule.cells);
  rule.type = value_of<ValidationType>(node.attribute("type"), kTypes);
  rule.comparison = value_of<ValidationOperator>(node.attribute("operator"), kOperators);
  rule.error_style = value_of<ValidationErrorStyle>(node.attribute("errorStyle"), kErrorStyles);
  for (const auto& [name, flag] : kFlags) rule.*flag = node.attribute(name).as_bool();
  for (const auto& [name, text] : kTexts) rule.*text = unescape(node.attribute(name).value());
  for (std::size_t i = 0; i < rule.formulas.size(); ++i) {
    rule.formulas[i] = formula_node(node, kFormulas[i]).text().get();
    if (auto shown = shown_formula(rule.formulas[i], grid)) rule.formulas[i] = *std::move(shown);
  }
  return rule;
}

std::vector<pugi::xml_node> extended_nodes(pugi::xml_node extensions) {
  std::vector<pugi::xml_node> nodes;
  visit_elements(extensions, [&](pugi::xml_node node) {
    if (is_extended_validation(node)) nodes.push_back(node);
  });
  return nodes;
}

// All validations of a worksheet in the order of their numbers.
std::vector<pugi::xml_node> validation_nodes(pugi::xml_node root) {
  const pugi::xml_node list = package::child(root, Family::Main, "dataValidations");
  std::vector<pugi::xml_node> nodes = package::children(list, Family::Main, "dataValidation");
  std::ranges::copy(extended_nodes(package::child(root, Family::Main, "extLst")),
                    std::back_inserter(nodes));
  return nodes;
}

void read_nodes(const std::vector<pugi::xml_node>& nodes, std::size_t before,
                const SheetReading& to) {
  for (const pugi::xml_node node : nodes) {
    Validation rule = validation_of(node, to.context.workbook.limits.grid);
    rule.details = static_cast<std::uint32_t>(++before);
    if (!rule.cells.empty()) to.sheet.validations.add(std::move(rule));
  }
}

// Writes some cells of a rule, with its formulas as they read at the corner of those.
void write_cells(pugi::xml_node node, const Validation& rule, const CellRanges& cells,
                 const Validation& stored, const Grid& grid) {
  const CellAddress corner = corner_of(cells);
  for (std::size_t i = 0; i < rule.formulas.size(); ++i) {
    std::string text = rule.formulas[i];
    if (auto moved = formula::shift_text(text, corner.row - rule.corner.row,
                                         corner.column - rule.corner.column, grid))
      text = *std::move(moved);
    if (text == stored.formulas[i]) continue;
    if (auto spelled = stored_formula(text, grid)) text = *std::move(spelled);
    pugi::xml_node to = formula_node(node, kFormulas[i]);
    if (!to) to = package::append_child(node, kFormulas[i]);
    to.text().set(text.c_str());
  }
  if (cells == stored.cells) return;
  if (const pugi::xml_node to = cells_node(node)) to.text().set(text_of(cells).c_str());
  else set_attribute(node, "sqref", text_of(cells));
}

// Writes a rule into its element, or into one that is new, and further ones behind that where it
// has more ranges than one may hold.
void write_validation(pugi::xml_node node, const Validation& rule, const Validation& stored,
                      const Grid& grid) {
  settle_value(node, "type", rule.type, kTypes);
  settle_value(node, "errorStyle", rule.error_style, kErrorStyles);
  settle_value(node, "operator", rule.comparison, kOperators);
  for (const auto& [name, flag] : kFlags) settle_flag(node, name, rule.*flag);
  for (const auto& [name, text] : kTexts)
    if (rule.*text != stored.*text)
      settle_attribute(node, name, escape(rule.*text), (rule.*text).empty());
  if (rule.cells.size() <= kMaxRanges) return write_cells(node, rule, rule.cells, stored, grid);
  for (auto at = rule.cells.begin(); at != rule.cells.end();) {
    const auto left = static_cast<std::size_t>(std::distance(at, rule.cells.end()));
    const auto end = std::next(at, static_cast<std::ptrdiff_t>(std::min(left, kMaxRanges)));
    const pugi::xml_node next =
        end == rule.cells.end() ? pugi::xml_node() : node.parent().insert_copy_after(node, node);
    write_cells(node, rule, CellRanges(at, end), stored, grid);
    node = next;
    at = end;
  }
}

}  // namespace

void read_validations(pugi::xml_node element, const SheetReading& to) {
  read_nodes(package::children(element, Family::Main, "dataValidation"), 0, to);
}

void read_extended_validations(pugi::xml_node extensions, const SheetReading& to) {
  const pugi::xml_node list = package::child(extensions.parent(), Family::Main, "dataValidations");
  read_nodes(extended_nodes(extensions),
             package::children(list, Family::Main, "dataValidation").size(), to);
}

void patch_validations(pugi::xml_node root, const SheetPatching& from) {
  const Grid& grid = from.book.limits.grid;
  const std::vector<pugi::xml_node> nodes = validation_nodes(root);
  std::vector<bool> claimed(nodes.size());
  pugi::xml_node list = package::child(root, Family::Main, "dataValidations");
  std::set<pugi::xml_node> grown;
  for (const Validation& rule : from.sheet.contents().validations.slots()) {
    if (rule.cells.empty()) continue;
    const bool is_known = rule.details != 0 && rule.details <= nodes.size();
    if (!is_known && !list) list = worksheet_child(root, "dataValidations");
    const pugi::xml_node node =
        is_known ? nodes[rule.details - 1] : package::append_child(list, "dataValidation");
    if (is_known) claimed[rule.details - 1] = true;
    write_validation(node, rule, is_known ? validation_of(node, grid) : Validation(), grid);
    if (!is_known || rule.cells.size() > kMaxRanges) grown.insert(node.parent());
  }
  std::set<pugi::xml_node> gone;
  for (std::size_t i = 0; i < nodes.size(); ++i)
    if (!claimed[i] && !validation_of(nodes[i], grid).cells.empty()) gone.insert(nodes[i]);
  for (const pugi::xml_node one : grown)
    set_attribute(one, "count", std::to_string(count_elements(one)));
  remove_with_lists(std::move(gone), root);
}

// Ignored errors.

void read_ignored_errors(pugi::xml_node element, const SheetReading& to) {
  std::uint32_t number = 0;
  for (const pugi::xml_node node : package::children(element, Family::Main, "ignoredError")) {
    IgnoredError made;
    made.details = ++number;
    made.cells = cells_of(node.attribute("sqref").value(), to.context.workbook.limits.grid);
    for (const auto& [name, kind] : kFaults)
      if (node.attribute(name).as_bool()) made.kinds = static_cast<std::uint8_t>(made.kinds | kind);
    if (!made.cells.empty()) to.sheet.ignored_errors.add(std::move(made));
  }
}

void patch_ignored_errors(pugi::xml_node root, const SheetPatching& from) {
  const Grid& grid = from.book.limits.grid;
  pugi::xml_node list = package::child(root, Family::Main, "ignoredErrors");
  const std::vector<pugi::xml_node> nodes = package::children(list, Family::Main, "ignoredError");
  const pugi::xml_node extensions = package::child(list, Family::Main, "extLst");
  std::vector<bool> claimed(nodes.size());
  const auto write = [](pugi::xml_node node, const IgnoredError& one, const CellRanges& before) {
    if (one.cells != before) set_attribute(node, "sqref", text_of(one.cells));
    for (const auto& [name, kind] : kFaults) settle_flag(node, name, (one.kinds & kind) != 0);
  };
  for (const IgnoredError& one : from.sheet.contents().ignored_errors.all()) {
    if (one.details != 0) {
      const pugi::xml_node node = nodes[one.details - 1];
      claimed[one.details - 1] = true;
      write(node, one, cells_of(node.attribute("sqref").value(), grid));
      continue;
    }
    if (!list) list = worksheet_child(root, "ignoredErrors");
    write(package::insert_child(list, "ignoredError", extensions), one, {});
  }
  for (std::size_t i = 0; i < nodes.size(); ++i)
    if (!claimed[i] && !cells_of(nodes[i].attribute("sqref").value(), grid).empty())
      list.remove_child(nodes[i]);
  if (list && package::children(list, Family::Main, "ignoredError").empty())
    root.remove_child(list);
}

}  // namespace engine::xlsx
