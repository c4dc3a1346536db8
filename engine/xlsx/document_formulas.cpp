// Formulas of carried things: what an operation on cells and sheets has to change in them.
#include <algorithm>
#include <iterator>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/formula/formula_text.h"
#include "engine/formula/sheet_name.h"
#include "engine/package/block_reader.h"
#include "engine/package/file_error.h"
#include "engine/package/xml_text.h"
#include "engine/package/xml_tree.h"
#include "engine/workbook/links.h"
#include "engine/xlsx/carried_edits.h"
#include "engine/xlsx/document.h"
#include "engine/xlsx/elements/drawings.h"
#include "engine/xlsx/formula_texts.h"
#include "engine/xlsx/new_parts.h"
#include "engine/xlsx/notes_drawing.h"
#include "engine/xlsx/stored_formula.h"
#include "engine/xlsx/worksheet_elements.h"

namespace engine::xlsx {

namespace {

using package::Family;

constexpr std::string_view kPivotCacheType =
    "application/vnd.openxmlformats-officedocument.spreadsheetml.pivotCacheDefinition+xml";
constexpr std::string_view kVmlType = "application/vnd.openxmlformats-officedocument.vmlDrawing";

// Parts with formulas, but those of sheets, by their content types.
constexpr struct {
  std::string_view type;
  void (*collect)(pugi::xml_node root, TextEdits& edits);
} kFormulaParts[] = {
    {"application/vnd.openxmlformats-officedocument.drawingml.chart+xml", collect_chart},
    {"application/vnd.ms-office.chartex+xml", collect_chart},
    {"application/vnd.openxmlformats-officedocument.drawingml.chartshapes+xml", collect_drawing},
    {kDrawingType, collect_drawing},
    {kTableType, collect_table},
    {"application/vnd.ms-excel.controlproperties+xml", collect_control},
    {"application/vnd.openxmlformats-officedocument.spreadsheetml.connections+xml",
     collect_connections},
};

// The two cells that a data table puts its values into stand in its attributes.
std::optional<std::string> edited_inputs(const Sheet& sheet, const std::string& details,
                                         const FormulaEdit& edit) {
  std::string made = details;
  bool changed = false;
  for (const std::string_view name : {" r1=\"", " r2=\""}) {
    const std::size_t begin = made.find(name);
    if (begin == std::string::npos) continue;
    const std::size_t from = begin + name.size();
    const std::size_t size = made.find('"', from) - from;
    const auto text = edit(&sheet, std::string_view(made).substr(from, size));
    if (!text) continue;
    // An input that is lost is said to be, beside the place where it was.
    const bool is_cell = formula::parse_cell(*text).has_value();
    if (is_cell) made.replace(from, size, *text);
    else made.insert(begin, name[2] == '1' ? " del1=\"1\"" : " del2=\"1\"");
    changed = true;
  }
  return changed ? std::optional<std::string>(std::move(made)) : std::nullopt;
}

// `owner` is the sheet that the rows belong to.
void collect_records(Sheet& rows, const Sheet& owner, const FormulaEdit& edit,
                     CarriedEdits& edits) {
  const SheetContents& contents = rows.contents();
  for (std::uint32_t number = 0; const CellRecord& record : contents.records()) {
    const CellExtra* extra = contents.extra(record);
    if (extra && extra->form == FormulaForm::kDataTable)
      if (auto text = edited_inputs(owner, extra->formula_details, edit))
        edits.details.push_back({&rows, number, *std::move(text)});
    ++number;
  }
}

// The range that a pivot table's data comes from, as sheet and range or as a formula of both.
bool edit_source(pugi::xml_node source, const FormulaEdit& edit, const Grid& grid) {
  const std::string sheet = source.attribute("sheet").value();
  const std::string range = source.attribute("ref").value();
  if (sheet.empty() || range.empty()) return false;
  if (package::attribute(source, Family::Relationships, "id")) return false;  // another workbook
  const auto text = edit(nullptr, formula::quote_sheet_name(sheet) + "!" + range);
  if (!text) return false;
  const auto ranges = formula::ranges_of_text(*text, grid);
  if (ranges.size() != 1 || ranges[0].sheet.empty()) return false;  // what is lost stays named
  source.attribute("sheet") = ranges[0].sheet.c_str();
  source.attribute("ref") = formula::print_range(ranges[0].range).c_str();
  return true;
}

// A copy of a read sheet's tree with its formulas edited; nothing when it stays as it is.
std::optional<package::XmlTree> edited_tree(const package::XmlTree& tree, const Sheet& sheet,
                                            const FormulaEdit& edit) {
  TextEdits asked(&sheet, edit);
  collect_formulas(tree.root(), asked);
  if (asked.empty()) return std::nullopt;
  package::XmlTree copy = tree.copy();
  TextEdits edits(&sheet, edit);
  collect_formulas(copy.root(), edits);
  edits.apply();
  copy.settle();
  return copy;
}

// The part with its formulas edited; nothing when it has none or they stay as they are, and when it
// is damaged. `owner` is the sheet that it belongs to.
std::optional<std::string> edited_part(const Parts& parts, const Part& part, const Sheet* owner,
                                       const FormulaEdit& edit, const Grid& grid) try {
  if (part.type == kVmlType) return edit_controls(parts.read(part), owner, edit);
  const auto* const row =
      std::ranges::find_if(kFormulaParts, [&](const auto& one) { return one.type == part.type; });
  const bool is_cache = part.type == kPivotCacheType;
  if (!is_cache && row == std::end(kFormulaParts)) return std::nullopt;
  const auto tree = package::XmlTree::parse(parts.read(part), part.name);
  bool changed = false;
  if (is_cache) {
    const pugi::xml_node source = package::child(tree.root(), Family::Main, "cacheSource");
    visit_elements(source, [&](pugi::xml_node node) {
      const std::string_view name = package::local_name(node);
      if (name == "worksheetSource" || name == "rangeSet") changed |= edit_source(node, edit, grid);
    });
  } else {
    TextEdits edits(owner, edit);
    row->collect(tree.root(), edits);
    changed = !edits.empty();
    edits.apply();
  }
  if (!changed) return std::nullopt;
  return tree.serialize();
} catch (const package::FileError&) {
  return std::nullopt;
}

// The parts that belong to sheets: their formulas mean cells of these where they name none.
std::map<const Part*, const Sheet*> owners_of_parts(const Parts& parts, const SheetParts& sheets) {
  std::map<const Part*, const Sheet*> owners;
  for (const auto& [sheet, its] : sheets) try {
      for (const Relationship& link : parts.relationships(its.part))
        if (const Part* part = parts.target(its.part, link)) owners.emplace(part, sheet);
    } catch (const package::FileError&) {
      continue;
    }
  return owners;
}

// Shapes and pictures may lead to places in the book.
void collect_places(const Parts& parts, const FormulaEdit& edit, CarriedEdits& edits) {
  for (const auto& [key, part] : parts.all()) {
    if (part.type != kDrawingType) continue;
    try {
      for (const Relationship& link : parts.relationships(part.name)) {
        if (link.kind() != "hyperlink" || !link.target.starts_with('#')) continue;
        if (const auto place = edit(nullptr, unescape_path(link.target.substr(1))))
          edits.targets.push_back(
              parts.prepare_retarget(part.name, link.id, "#" + escape_path(*place)));
      }
    } catch (const package::FileError&) {
      continue;
    }
  }
}

// Whether the text of a worksheet may name a sheet. What stands before `!` in a formula is one,
// while a cell with an error ends behind it; elsewhere it stands in an attribute of a few elements.
// The character need not be written as itself.
bool may_name_sheets(package::BlockReader& reader) {
  constexpr std::string_view kSource = "dataRef";
  std::string tail;
  for (std::span<char> block; !(block = reader.next()).empty();) {
    char* const begin = block.data() - tail.size();
    std::ranges::copy(tail, begin);
    const std::string_view text(begin, tail.size() + block.size());
    if (package::looks_like_utf16(text)) return true;
    if (text.find("&#") != std::string_view::npos) return true;
    if (text.find(kSource) != std::string_view::npos) return true;
    for (std::size_t at = 0; (at = text.find('!', at)) != std::string_view::npos; ++at)
      if (at + 1 < text.size() && text[at + 1] != '<') return true;
    tail = text.substr(text.size() - std::min(text.size(), kSource.size()));
  }
  return false;
}

}  // namespace

// A part that is missing or damaged is left to those who read it.
bool Document::may_refer(const Sheet& sheet) const {
  const SheetPart& its = part_of(sheet);
  if (its.may_refer) return *its.may_refer;
  const Part* part = parts_.find(its.part);
  if (!part) return true;
  try {
    its.may_refer = may_name_sheets(*parts_.open(*part));
  } catch (const package::FileError&) {
    its.may_refer = true;
  }
  return *its.may_refer;
}

std::optional<std::string> Document::shown_formula(const Workbook& book,
                                                   std::string_view formula) const {
  return xlsx::shown_formula(formula, book.limits.grid);
}

void Document::edit_formulas(Workbook& book, const FormulaEdit& edit) {
  CarriedEdits edits = collect_carried(book, edit, {});
  collect_places(parts_, edit, edits);
  edits.apply(parts_, sheets_);
}

CarriedEdits Document::collect_carried(Workbook& book, const FormulaEdit& edit,
                                       const CarriedExcept& except) {
  CarriedEdits edits;
  for (const auto& sheet : book.sheets()) {
    const SheetPart& remains = part_of(*sheet);
    if (!remains.read || sheet.get() == except.sheet) continue;
    if (sheet.get() != except.tree)
      if (auto tree = edited_tree(*remains.tree, *sheet, edit))
        edits.add_tree(*sheet, *std::move(tree));
    collect_records(*sheet, *sheet, edit, edits);
    if (sheet->outside) collect_records(sheet->outside->rows, *sheet, edit, edits);
  }
  const auto owners = owners_of_parts(parts_, sheets_);
  for (const auto& [key, part] : parts_.all()) {
    if (except.parts.contains(&part)) continue;
    const auto owner = owners.find(&part);
    const Sheet* sheet = owner == owners.end() ? nullptr : owner->second;
    if (auto bytes = edited_part(parts_, part, sheet, edit, book.limits.grid))
      edits.add_part(part, *std::move(bytes));
  }
  return edits;
}

void CarriedEdits::exchange_parts(Parts& package) noexcept {
  for (auto& [part, bytes] : parts) package.exchange(*part, bytes);
}

void CarriedEdits::apply(Parts& package, SheetParts& sheets) noexcept {
  for (auto& [rows, record, text] : details) {
    SheetContents& contents = rows->change();
    contents.extra(contents.records()[record])->formula_details.swap(text);
  }
  for (auto& [sheet, tree] : trees) {
    sheet->change();
    sheets.find(sheet)->second.tree = std::move(tree);
  }
  exchange_parts(package);
  for (const Parts::Unlink& link : links) package.unrelate(link);
  for (Parts::Retarget& target : targets) Parts::retarget(target);
}

}  // namespace engine::xlsx
