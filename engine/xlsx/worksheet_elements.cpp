#include "engine/xlsx/worksheet_elements.h"

#include <algorithm>
#include <array>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include "engine/formula/reference.h"
#include "engine/package/xml_tree.h"
#include "engine/xlsx/attributes.h"
#include "engine/xlsx/elements/conditions.h"
#include "engine/xlsx/elements/drawings.h"
#include "engine/xlsx/elements/extensions.h"
#include "engine/xlsx/elements/filters.h"
#include "engine/xlsx/elements/links.h"
#include "engine/xlsx/elements/merges.h"
#include "engine/xlsx/elements/notes.h"
#include "engine/xlsx/elements/page_breaks.h"
#include "engine/xlsx/elements/page_setup.h"
#include "engine/xlsx/elements/protection.h"
#include "engine/xlsx/elements/sheet_views.h"
#include "engine/xlsx/elements/sizes.h"
#include "engine/xlsx/elements/tables.h"
#include "engine/xlsx/elements/validations.h"
#include "engine/xlsx/moved_cells.h"

namespace engine::xlsx {

namespace {

using package::Family;

constexpr CellsAttribute kRef[] = {{{}, "ref"}};
constexpr CellsAttribute kSqref[] = {{{}, "sqref"}};
constexpr CellsAttribute kProtectedRanges[] = {{"protectedRange", "sqref"}};
constexpr CellsAttribute kSmartTags[] = {{"cellSmartTags", "r"}};

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
     .move = move_views},
    {.name = "sheetFormatPr", .read = read_default_sizes, .patch = patch_default_sizes},
    {.name = "cols", .read = read_columns, .patch = patch_columns},
    {.name = "sheetData"},
    {.name = "sheetCalcPr"},
    {.name = "sheetProtection", .read = read_sheet_protection, .patch = patch_sheet_protection},
    {.name = "protectedRanges", .cells = kProtectedRanges},
    {.name = "scenarios"},
    {.name = "autoFilter", .read = read_sheet_filter, .patch = patch_sheet_filter},
    {.name = "sortState", .move = move_sheet_sort},
    {.name = "dataConsolidate", .copy = copy_consolidation, .formulas = collect_consolidation},
    {.name = "customSheetViews", .copy = copy_custom_views},
    {.name = "mergeCells", .read = read_merges, .patch = patch_merges},
    {.name = "phoneticPr"},
    {.name = "conditionalFormatting", .formulas = collect_conditional_format, .cells = kSqref},
    {.name = "dataValidations", .read = read_validations, .patch = patch_validations},
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
    {.name = "cellWatches"},
    {.name = "ignoredErrors", .read = read_ignored_errors, .patch = patch_ignored_errors},
    {.name = "smartTags", .cells = kSmartTags},
    {.name = "drawing", .patch = patch_drawing, .copy = copy_drawing},
    {.name = "legacyDrawing", .patch = patch_notes, .copying = Copying::kDropped},
    {.name = "legacyDrawingHF", .copying = Copying::kDropped},
    {.name = "drawingHF", .copying = Copying::kDropped},
    {.name = "picture", .copying = Copying::kDropped},
    {.name = "oleObjects", .copying = Copying::kDropped, .move = move_controls},
    {.name = "controls",
     .copying = Copying::kDropped,
     .formulas = collect_controls,
     .move = move_controls},
    {.name = "webPublishItems", .copying = Copying::kDropped},
    {.name = "tableParts", .copy = copy_tables},
    {.name = "extLst",
     .read = read_extended_validations,
     .copy = copy_extensions,
     .formulas = collect_extensions,
     .move = move_extensions},
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

void move_attribute(pugi::xml_node element, const char* name, const SheetMoving& moving,
                    std::set<pugi::xml_node>& lost) {
  const pugi::xml_attribute attribute = element.attribute(name);
  if (!attribute) return;
  const auto moved = moved_ranges(attribute.value(), moving.move, moving.grid);
  if (!moved) return;
  if (!moved->empty()) set_attribute(element, name, *moved);
  else lost.insert(element);
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

void move_elements(pugi::xml_node root, const SheetMoving& moving) {
  std::set<pugi::xml_node> lost;
  for (pugi::xml_node element = root.first_child(); element;) {
    const pugi::xml_node next = element.next_sibling();
    const WorksheetElement* row = row_of(element);
    if (row && row->move) row->move(element, moving);
    else if (row)
      for (const auto& [name, attribute] : row->cells) {
        if (name.empty()) move_attribute(element, attribute, moving, lost);
        else
          for (const pugi::xml_node node : package::children(element, Family::Main, name))
            move_attribute(node, attribute, moving, lost);
      }
    element = next;
  }
  remove_with_lists(std::move(lost), root);
}

pugi::xml_node worksheet_child(pugi::xml_node root, std::string_view name) {
  return ordered_child(root, name, kOrder);
}

}  // namespace engine::xlsx
