#include "engine/xlsx/sheet_part.h"

#include <algorithm>
#include <array>
#include <functional>
#include <span>

#include "engine/package/xml_tree.h"

namespace engine::xlsx {

namespace {

using package::Family;

constexpr std::string_view kNewWorksheet =
    "<worksheet xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\" "
    "xmlns:r=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships\">"
    "<dimension ref=\"A1\"/><sheetViews><sheetView workbookViewId=\"0\"/></sheetViews>"
    "<sheetFormatPr defaultRowHeight=\"15\"/><sheetData/>"
    "<pageMargins left=\"0.7\" right=\"0.7\" top=\"0.75\" bottom=\"0.75\" header=\"0.3\" "
    "footer=\"0.3\"/></worksheet>";

constexpr auto kWorksheetOrder = std::to_array<std::string_view>({
    "sheetPr",
    "dimension",
    "sheetViews",
    "sheetFormatPr",
    "cols",
    "sheetData",
    "sheetCalcPr",
    "sheetProtection",
    "protectedRanges",
    "scenarios",
    "autoFilter",
    "sortState",
    "dataConsolidate",
    "customSheetViews",
    "mergeCells",
    "phoneticPr",
    "conditionalFormatting",
    "dataValidations",
    "hyperlinks",
    "printOptions",
    "pageMargins",
    "pageSetup",
    "headerFooter",
    "rowBreaks",
    "colBreaks",
    "customProperties",
    "cellWatches",
    "ignoredErrors",
    "smartTags",
    "drawing",
    "legacyDrawing",
    "legacyDrawingHF",
    "drawingHF",
    "picture",
    "oleObjects",
    "controls",
    "webPublishItems",
    "tableParts",
    "extLst",
});

constexpr auto kWorkbookOrder = std::to_array<std::string_view>({
    "fileVersion",    "fileSharing",
    "workbookPr",     "workbookProtection",
    "bookViews",      "sheets",
    "functionGroups", "externalReferences",
    "definedNames",   "calcPr",
    "oleSize",        "customWorkbookViews",
    "pivotCaches",    "smartTagPr",
    "smartTagTypes",  "webPublishing",
    "fileRecoveryPr", "webPublishObjects",
    "extLst",
});

// A new child goes in front of the first that has to stand behind it. Children of other namespaces
// (alternate content above all) belong to what stands before them.
pugi::xml_node child_in_order(pugi::xml_node root, std::string_view local,
                              std::span<const std::string_view> order) {
  if (const pugi::xml_node found = package::child(root, Family::Main, local)) return found;
  const auto place = std::ranges::find(order, local);
  for (const pugi::xml_node node : root.children()) {
    if (package::family(node) != Family::Main) continue;
    const bool behind = std::find(place, order.end(), package::local_name(node)) != order.end();
    if (behind) return package::insert_child(root, local, node);
  }
  return package::append_child(root, local);
}

}  // namespace

SheetPart* part_of(Sheet& sheet) { return static_cast<SheetPart*>(sheet.remains.get()); }

const SheetPart* part_of(const Sheet& sheet) {
  return static_cast<const SheetPart*>(sheet.remains.get());
}

bool has_formula_element(const CellRecord& record) {
  return !record.formula.empty() || (record.extra && (record.extra->form != FormulaForm::kNormal ||
                                                      !record.extra->formula_details.empty()));
}

std::uint64_t formulas_of(const SheetContents& sheet) {
  std::uint64_t sum = 0;
  for (const Row& row : sheet.cells.rows()) {
    for (const Cell& cell : row.span()) {
      if (cell.kind != CellKind::kRecord || !has_formula_element(*sheet.record(cell))) continue;
      const std::uint64_t place = (std::uint64_t{row.number} << 16) | cell.column;
      sum = (sum ^ place ^ std::hash<std::string>()(sheet.record(cell)->formula)) *
            0x9E3779B97F4A7C15u;
      sum ^= sum >> 29;
    }
  }
  return sum;
}

package::XmlTree new_worksheet() { return package::XmlTree::parse(kNewWorksheet, "new worksheet"); }

pugi::xml_node worksheet_child(pugi::xml_node root, std::string_view local) {
  return child_in_order(root, local, kWorksheetOrder);
}

pugi::xml_node workbook_child(pugi::xml_node root, std::string_view local) {
  return child_in_order(root, local, kWorkbookOrder);
}

}  // namespace engine::xlsx
