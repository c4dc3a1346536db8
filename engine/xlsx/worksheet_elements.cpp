#include "engine/xlsx/worksheet_elements.h"

#include <algorithm>
#include <array>
#include <functional>
#include <iterator>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include "engine/formula/reference.h"
#include "engine/package/xml_tree.h"
#include "engine/xlsx/attributes.h"
#include "engine/xlsx/elements/conditions.h"
#include "engine/xlsx/elements/drawings.h"
#include "engine/xlsx/elements/links.h"
#include "engine/xlsx/elements/merges.h"
#include "engine/xlsx/elements/notes.h"
#include "engine/xlsx/elements/page_breaks.h"
#include "engine/xlsx/elements/page_setup.h"
#include "engine/xlsx/elements/protection.h"
#include "engine/xlsx/elements/sheet_views.h"
#include "engine/xlsx/elements/sizes.h"
#include "engine/xlsx/elements/tables.h"

namespace engine::xlsx {

namespace {

using package::Family;

constexpr CellsAttribute kRef[] = {{{}, "ref", CellsForm::kRange}};
constexpr CellsAttribute kSqref[] = {{{}, "sqref", CellsForm::kRanges}};
// Panes and the corner of a view belong to the model.
constexpr CellsAttribute kSelections[] = {{"selection", "activeCell", CellsForm::kCell},
                                          {"selection", "sqref", CellsForm::kRanges}};
constexpr CellsAttribute kViews[] = {{"selection", "activeCell", CellsForm::kCell},
                                     {"selection", "sqref", CellsForm::kRanges},
                                     {"pane", "topLeftCell", CellsForm::kCell},
                                     {"sheetView", "topLeftCell", CellsForm::kCell}};
constexpr CellsAttribute kProtectedRanges[] = {{"protectedRange", "sqref", CellsForm::kRanges}};
constexpr CellsAttribute kScenarios[] = {{{}, "sqref", CellsForm::kRanges},
                                         {"inputCells", "r", CellsForm::kCell}};
constexpr CellsAttribute kAutoFilter[] = {{{}, "ref", CellsForm::kRange},
                                          {"sortState", "ref", CellsForm::kRange},
                                          {"sortCondition", "ref", CellsForm::kRange}};
constexpr CellsAttribute kSortState[] = {{{}, "ref", CellsForm::kRange},
                                         {"sortCondition", "ref", CellsForm::kRange}};
constexpr CellsAttribute kValidations[] = {{"dataValidation", "sqref", CellsForm::kRanges}};
constexpr CellsAttribute kWatches[] = {{"cellWatch", "r", CellsForm::kCell}};
constexpr CellsAttribute kIgnoredErrors[] = {{"ignoredError", "sqref", CellsForm::kRanges}};
constexpr CellsAttribute kSmartTags[] = {{"cellSmartTags", "r", CellsForm::kCell}};

constexpr auto kElements = std::to_array<WorksheetElement>({
    {.name = "sheetPr",
     .read = read_sheet_properties,
     .patch = patch_sheet_properties,
     .copy = copy_sheet_properties},
    {.name = "dimension", .patch = patch_dimension, .cells = kRef},
    {.name = "sheetViews",
     .read = read_views,
     .patch = patch_views,
     .copy = copy_views,
     .cells = kSelections},
    {.name = "sheetFormatPr", .read = read_default_sizes, .patch = patch_default_sizes},
    {.name = "cols", .read = read_columns, .patch = patch_columns},
    {.name = "sheetData"},
    {.name = "sheetCalcPr"},
    {.name = "sheetProtection", .read = read_sheet_protection, .patch = patch_sheet_protection},
    {.name = "protectedRanges", .cells = kProtectedRanges},
    {.name = "scenarios", .cells = kScenarios},
    {.name = "autoFilter", .cells = kAutoFilter},
    {.name = "sortState", .cells = kSortState},
    {.name = "dataConsolidate", .copy = copy_consolidation},
    {.name = "customSheetViews", .copy = copy_custom_views, .cells = kViews},
    {.name = "mergeCells", .read = read_merges, .patch = patch_merges},
    {.name = "phoneticPr"},
    {.name = "conditionalFormatting", .formulas = collect_conditional_format, .cells = kSqref},
    {.name = "dataValidations", .formulas = collect_validations, .cells = kValidations},
    {.name = "hyperlinks", .read = read_links, .patch = patch_links, .copy = copy_links},
    {.name = "printOptions", .read = read_print_options, .patch = patch_print_options},
    {.name = "pageMargins", .read = read_margins, .patch = patch_margins},
    {.name = "pageSetup",
     .read = read_page_setup,
     .patch = patch_page_setup,
     .copy = copy_page_setup},
    {.name = "headerFooter", .read = read_header_footer, .patch = patch_header_footer},
    {.name = "rowBreaks", .read = read_row_breaks, .patch = patch_row_breaks},
    {.name = "colBreaks", .read = read_column_breaks, .patch = patch_column_breaks},
    {.name = "customProperties", .copying = Copying::kDropped},
    {.name = "cellWatches", .cells = kWatches},
    {.name = "ignoredErrors", .cells = kIgnoredErrors},
    {.name = "smartTags", .cells = kSmartTags},
    {.name = "drawing", .copy = copy_drawing},
    {.name = "legacyDrawing", .patch = patch_notes, .copying = Copying::kDropped},
    {.name = "legacyDrawingHF", .copying = Copying::kDropped},
    {.name = "drawingHF", .copying = Copying::kDropped},
    {.name = "picture", .copying = Copying::kDropped},
    {.name = "oleObjects", .copying = Copying::kDropped},
    {.name = "controls", .copying = Copying::kDropped},
    {.name = "webPublishItems", .copying = Copying::kDropped},
    {.name = "tableParts", .copy = copy_tables},
    {.name = "extLst", .copy = copy_extensions, .formulas = collect_extensions},
});

constexpr auto kOrder = [] {
  std::array<std::string_view, kElements.size()> names;
  std::ranges::transform(kElements, names.begin(), &WorksheetElement::name);
  return names;
}();

// The row of an element; null for one that the format does not know.
const WorksheetElement* row_of(pugi::xml_node element) {
  if (package::family(element) != Family::Main) return nullptr;
  const auto* const found =
      std::ranges::find(kElements, package::local_name(element), &WorksheetElement::name);
  return found == kElements.end() ? nullptr : found;
}

// Where cells named by a text are after a move: nothing when all stay, an empty text when none is
// left. What names no cells stays as it stands.
std::optional<std::string> moved_cells(std::string_view text, CellsForm form,
                                       const formula::Move& move, const Grid& grid) {
  const bool rows = move.axis == formula::Axis::kRows;
  std::string moved;
  bool changed = false;
  while (!text.empty()) {
    const std::size_t end = form == CellsForm::kRanges ? text.find(' ') : std::string_view::npos;
    const std::string_view one = text.substr(0, end);
    text.remove_prefix(std::min(text.size(), one.size() + 1));
    auto range = formula::parse_range(one, grid);
    std::optional<formula::Interval> interval;
    if (range) {
      int& first = rows ? range->row_first : range->column_first;
      int& last = rows ? range->row_last : range->column_last;
      interval = formula::moved({first, last}, move, rows ? grid.rows : grid.columns);
      changed |= interval != formula::Interval{first, last};
      if (!interval) continue;
      first = interval->first;
      last = interval->last;
    }
    if (!moved.empty()) moved.push_back(' ');
    if (range) formula::append_range(moved, *range);
    else moved.append(one);
  }
  return changed ? std::optional(std::move(moved)) : std::nullopt;
}

// Removes an element, and the list around it when it was the last in there.
void remove_with_list(pugi::xml_node element, pugi::xml_node root) {
  pugi::xml_node list = element.parent();
  list.remove_child(element);
  if (list == root) return;
  const auto left = std::distance(list.begin(), list.end());
  if (left == 0) list.parent().remove_child(list);
  else if (list.attribute("count")) set_attribute(list, "count", std::to_string(left));
}

// Views stay when the cells that they stand at are gone.
bool is_place_of_view(pugi::xml_node element) {
  const std::string_view name = package::local_name(element);
  return name == "selection" || name == "pane" || name == "sheetView";
}

bool move_attribute(pugi::xml_node element, const CellsAttribute& cells, const formula::Move& move,
                    const Grid& grid, std::set<pugi::xml_node>& lost) {
  const pugi::xml_attribute attribute = element.attribute(cells.attribute);
  if (!attribute) return false;
  const auto moved = moved_cells(attribute.value(), cells.form, move, grid);
  if (!moved) return false;
  if (!moved->empty()) set_attribute(element, cells.attribute, *moved);
  else if (is_place_of_view(element)) element.remove_attribute(attribute);
  else lost.insert(element);
  return true;
}

}  // namespace

void read_elements(pugi::xml_node root, const SheetReading& to) {
  for (const WorksheetElement& row : kElements)
    if (row.read) row.read(package::child(root, Family::Main, row.name), to);
}

void patch_elements(pugi::xml_node root, const SheetPatching& from) {
  for (const WorksheetElement& row : kElements)
    if (row.patch) row.patch(root, from);
}

void copy_elements(pugi::xml_node root, const SheetCopying& to) {
  for (pugi::xml_node element = root.first_child(); element;) {
    const pugi::xml_node next = element.next_sibling();
    const WorksheetElement* row = row_of(element);
    const bool dropped = row ? row->copying == Copying::kDropped : refers_to_parts(element);
    if (dropped) root.remove_child(element);
    else if (row && row->copy) row->copy(element, to);
    element = next;
  }
  remove_identification(root);
}

void collect_formulas(pugi::xml_node root, TextEdits& edits) {
  for (const pugi::xml_node element : root.children())
    if (const WorksheetElement* row = row_of(element); row && row->formulas)
      row->formulas(element, edits);
}

bool move_cells(pugi::xml_node root, const formula::Move& move, const Grid& grid) {
  bool changed = false;
  std::set<pugi::xml_node> lost;
  for (const pugi::xml_node element : root.children()) {
    const WorksheetElement* row = row_of(element);
    if (!row) continue;
    for (const CellsAttribute& cells : row->cells) {
      if (cells.element.empty()) changed |= move_attribute(element, cells, move, grid, lost);
      visit_elements(element, [&](pugi::xml_node node) {
        if (package::local_name(node) == cells.element)
          changed |= move_attribute(node, cells, move, grid, lost);
      });
    }
  }
  const auto goes_with_another = [&](pugi::xml_node element) {
    while ((element = element.parent()))
      if (lost.contains(element)) return true;
    return false;
  };
  std::vector<pugi::xml_node> outermost;
  std::ranges::copy_if(lost, std::back_inserter(outermost), std::not_fn(goes_with_another));
  for (const pugi::xml_node element : outermost) remove_with_list(element, root);
  return changed;
}

pugi::xml_node worksheet_child(pugi::xml_node root, std::string_view name) {
  return ordered_child(root, name, kOrder);
}

}  // namespace engine::xlsx
