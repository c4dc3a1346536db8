#include "engine/xlsx/sheet_part.h"

#include <algorithm>
#include <array>
#include <functional>
#include <span>

#include "engine/package/xml_tree.h"

namespace engine::xlsx {

namespace {

constexpr std::string_view kNewWorksheet =
    "<worksheet xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\" "
    "xmlns:r=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships\">"
    "<dimension ref=\"A1\"/><sheetViews><sheetView workbookViewId=\"0\"/></sheetViews>"
    "<sheetFormatPr defaultRowHeight=\"15\"/><sheetData/>"
    "<pageMargins left=\"0.7\" right=\"0.7\" top=\"0.75\" bottom=\"0.75\" header=\"0.3\" "
    "footer=\"0.3\"/></worksheet>";

}  // namespace

std::vector<NamedPart> table_parts(const Parts& parts, const SheetPart& sheet) {
  using package::Family;
  std::vector<NamedPart> found;
  const auto add = [&](const NamedPart& one) {
    if (one.part && std::ranges::find(found, one.part, &NamedPart::part) == found.end())
      found.push_back(one);
  };
  const pugi::xml_node root = sheet.tree ? sheet.tree->root() : pugi::xml_node();
  const pugi::xml_node list = package::child(root, Family::Main, "tableParts");
  for (const pugi::xml_node table : package::children(list, Family::Main, "tablePart"))
    add(parts.named_by(table, sheet.part));
  for (const Relationship& one : parts.relationships(sheet.part))
    if (one.kind() == "table") add({&one, parts.target(sheet.part, one)});
  return found;
}

bool has_formula_element(const SheetContents& sheet, const CellRecord& record) {
  if (record.has_formula()) return true;
  const CellExtra* extra = sheet.extra(record);
  return extra && (extra->form != FormulaForm::kNormal || !extra->formula_details.empty());
}

std::uint64_t formulas_of(const SheetContents& sheet) {
  std::uint64_t sum = 0;
  for (const Row& row : sheet.cells.rows()) {
    for (const Cell& cell : row.span()) {
      if (cell.kind != CellKind::kRecord) continue;
      const CellRecord& record = *sheet.record(cell);
      if (!has_formula_element(sheet, record)) continue;
      const std::uint64_t place = (std::uint64_t{row.number} << 16) | cell.column;
      sum = (sum ^ place ^ record.shared ^ std::hash<std::string_view>()(record.formula)) *
            0x9E3779B97F4A7C15u;
      sum ^= sum >> 29;
    }
  }
  return sum;
}

package::XmlTree new_worksheet() { return package::XmlTree::parse(kNewWorksheet, "new worksheet"); }

}  // namespace engine::xlsx
