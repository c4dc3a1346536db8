// New, copied and removed sheets: what becomes of their parts.
#include <memory>
#include <utility>

#include "engine/formula/formula_text.h"
#include "engine/formula/reference.h"
#include "engine/package/file_error.h"
#include "engine/package/xml_tree.h"
#include "engine/xlsx/document.h"
#include "engine/xlsx/escapes.h"
#include "engine/xlsx/formula_texts.h"
#include "engine/xlsx/new_parts.h"
#include "engine/xlsx/worksheet_elements.h"

namespace engine::xlsx {

namespace {

using package::Family;

constexpr std::string_view kSheetName = "xl/worksheets/sheet#.xml";

// A new sheet's part is of the family of namespaces that the workbook is of.
void take_over_namespaces(pugi::xml_node from, pugi::xml_node root) {
  const std::string_view uri = from.attribute("xmlns").value();
  if (package::family_of(uri) != Family::Main || uri == root.attribute("xmlns").value()) return;
  root.attribute("xmlns") = from.attribute("xmlns").value();
  if (const pugi::xml_attribute relationships = from.attribute("xmlns:r"))
    root.attribute("xmlns:r") = relationships.value();
}

// The formulas of tables that are copied with their sheet.
void edit_tables(NewParts& made, const FormulaEdit& edit) {
  for (auto& [key, part] : made.all()) {
    if (part.type != kTableType) continue;
    const auto tree = package::XmlTree::parse(*part.bytes, part.name);
    TextEdits edits(nullptr, edit);
    collect_table(tree.root(), edits);
    if (edits.empty()) continue;
    edits.apply();
    part.bytes = std::make_shared<const std::string>(tree.serialize());
  }
}

}  // namespace

Document::ArrivingSheet Document::new_sheet(const Sheet& sheet) {
  ArrivingSheet made{{}, NewParts(parts_)};
  SheetPart& part = made.sheet[&sheet];
  part.part = made.parts.add(kSheetName, kWorksheetType, {});
  Relationship link =
      parts_.new_relationship(main_, workbook_part_.mentioned(), "worksheet", part.part);
  part.relationship = link.id;
  made.parts.add_relationship(main_, std::move(link));
  part.id = workbook_part_.last_sheet_id() + 1;
  part.read = true;
  return made;
}

void Document::begin_sheet(const Workbook& /*book*/, Sheet& sheet) {
  if (!empty_worksheet_) {
    package::XmlTree tree = new_worksheet();
    take_over_namespaces(workbook_part_.tree().root(), tree.root());
    tree.settle();
    empty_worksheet_ = std::make_shared<const package::XmlTree>(std::move(tree));
  }
  ArrivingSheet made = new_sheet(sheet);
  made.part().tree = empty_worksheet_;
  arriving_ = std::move(made);
}

std::vector<formula::TableChange> Document::copy_sheet(const Workbook& book, const Sheet& original,
                                                       Sheet& copy) {
  if (table_names_) table_names_->take_back();
  const SheetPart& from = part_of(original);
  ArrivingSheet made = new_sheet(copy);
  package::XmlTree tree = from.tree->copy();
  std::vector<formula::TableChange> tables;
  copy_elements(tree.root(), {book, parts_, from, made.part(), made.parts, table_names_, tables});
  const FormulaEdit edit = [&](const Sheet*, std::string_view text) {
    return formula::change_tables_text(
        text, formula::retarget_sheet_text(text, original.name(), copy.name(), book.limits.grid),
        tables, book.limits.grid);
  };
  edit_tables(made.parts, edit);
  TextEdits texts(&original, edit);
  collect_formulas(tree.root(), texts);
  texts.apply();
  tree.settle();
  made.part().tree = std::make_shared<const package::XmlTree>(std::move(tree));
  made.part().copied_headers = odd_headers(book, original);
  made.part().pictures = from.pictures;
  arriving_ = std::move(made);
  return tables;
}

void Document::place_sheet(Sheet& /*sheet*/) noexcept {
  workbook_part_.note_sheet_id(arriving_->part().id);
  if (table_names_) table_names_->settle();
  sheets_.merge(arriving_->sheet);
  parts_.take(std::move(arriving_->parts));
  arriving_.reset();
}

// A part that no file has goes at once, one of the file with all that nothing else needs at the
// save.
void Document::remove_part(const SheetPart& gone) {
  if (gone.listed == 0) parts_.forget(main_, gone.relationship);
  else parts_.unrelate(main_, gone.relationship);
}

void Document::remove_sheet(Workbook& book, Sheet& sheet, const FormulaEdit& edit) {
  const SheetPart& gone = part_of(sheet);
  read_pictures(book);  // which keeps those of the sheet
  CarriedEdits edits = collect_carried(book, edit, {&sheet, nullptr, {}});
  // Parts of the sheet that goes may be among them.
  edits.exchange_parts(parts_);
  try {
    remove_part(gone);
  } catch (...) {
    edits.exchange_parts(parts_);
    throw;
  }
  edits.parts.clear();
  edits.apply(parts_, sheets_);
  if (gone.listed != 0) sheet_removed_ = true;
  sheets_.erase(&sheet);
}

}  // namespace engine::xlsx
