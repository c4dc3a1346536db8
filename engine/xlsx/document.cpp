#include "engine/xlsx/document.h"

#include <algorithm>
#include <array>
#include <utility>

#include "engine/package/file_error.h"
#include "engine/package/file_kind.h"
#include "engine/package/xml_tree.h"
#include "engine/xlsx/comments.h"
#include "engine/xlsx/new_parts.h"
#include "engine/xlsx/notes_drawing.h"
#include "engine/xlsx/shared_strings.h"
#include "engine/xlsx/worksheet_reader.h"

namespace engine::xlsx {

namespace {

using package::Family;
using package::FileError;

// The relationship of the package that leads to its main part.
const Relationship& main_relationship(const Parts& parts) {
  const auto& all = parts.relationships("");
  const auto found = std::ranges::find(all, "officeDocument", &Relationship::kind);
  if (found == all.end()) throw FileError("is not an .xlsx workbook");
  return *found;
}

std::string read_related(const Parts& parts, std::string_view owner, std::string_view kind) {
  const Part* part = parts.related(owner, kind);
  return part ? parts.read(*part) : std::string();
}

// A damaged theme changes a few colours; the usual ones stand in.
std::string read_theme(const Parts& parts, std::string_view main) {
  try {
    return read_related(parts, main, "theme");
  } catch (const FileError&) {
    return {};
  }
}

}  // namespace

std::unique_ptr<Document> Document::make_new(Workbook& book) {
  std::unique_ptr<Document> made(new Document);
  made->parts_ = new_parts();
  made->main_ = kMainPart;
  made->styles_part_.read("", "", "", book.styles);
  return made;
}

std::unique_ptr<Document> Document::load(std::shared_ptr<const package::Source> source,
                                         Workbook& book, LoadScope scope) {
  if (package::file_kind(*source) != package::FileKind::Zip)
    throw FileError("is protected by a password");
  std::unique_ptr<Document> made(new Document);
  Parts& parts = made->parts_ = Parts(std::move(source));
  const Relationship& to_main = main_relationship(parts);
  const Part* main = parts.target("", to_main);
  if (!main) package::throw_damaged(resolve_target("", to_main.target), "is missing");
  if (is_binary_workbook_type(main->type)) throw FileError("is a binary .xlsb workbook");
  made->main_ = main->name;
  made->workbook_part_.read(parts.read(*main), parts, main->name, book, made->sheets_);
  book.is_template = is_template_type(main->type);
  made->is_macro_enabled_ = is_macro_enabled_type(main->type);
  made->has_calculation_chain_ = parts.related(main->name, "calcChain") != nullptr;
  if (scope == LoadScope::kInfo) return made;

  const Part* styles = parts.related(main->name, "styles");
  made->styles_part_.read(styles ? parts.read(*styles) : "", styles ? styles->name : "",
                          read_theme(parts, main->name), book.styles);
  made->formats_ = book.styles.format_count();
  if (const Part* texts = parts.related(main->name, "sharedStrings"))
    made->text_cells_ = read_shared_strings(*parts.open(*texts), texts->name, book.strings);
  else book.strings.end_of_file_entries();
  for (const auto& sheet : book.sheets()) made->read_tab(*sheet);
  return made;
}

// Sheets that hold no cells are not read later on; whether their tab is selected counts all the
// same.
void Document::read_tab(Sheet& sheet) {
  if (sheet.kind == SheetKind::kWorksheet) return;
  sheet.loading = Loading::kRead;
  const Part* part = parts_.find(part_of(sheet).part);
  if (!part) return;
  try {
    const auto tree = package::XmlTree::parse(parts_.read(*part), part->name);
    const pugi::xml_node views = package::child(tree.root(), Family::Main, "sheetViews");
    const pugi::xml_node view = package::child(views, Family::Main, "sheetView");
    sheet.selected = sheets_.at(&sheet).selected = view.attribute("tabSelected").as_bool();
  } catch (const FileError&) {
    return;
  }
}

SheetContext Document::context(Workbook& texts, const Workbook& book) const {
  const std::uint32_t shared = book.strings.count_from_file();
  const pugi::xml_node settings =
      package::child(workbook_part_.tree().root(), Family::Main, "workbookPr");
  const bool compatible = settings.attribute("dateCompatibility").as_bool(true);
  const DateBase base = compatible ? DateBase::k1900 : DateBase::kFull1900;
  return {texts,    parts_,
          shared,   &texts == &book ? 0 : shared,
          formats_, book.date1904 ? DateBase::k1904 : base};
}

void Document::read_sheet(Workbook& book, Sheet& sheet) {
  SheetPart& known = sheets_.at(&sheet);
  if (known.read || sheet.kind != SheetKind::kWorksheet) return;
  if (known.part.empty())
    package::throw_damaged(main_, "nothing leads to sheet \"" + sheet.name() + "\"");
  const Part* part = parts_.find(known.part);
  if (!part) package::throw_damaged(known.part, "is missing");

  SheetContents contents;
  SheetPart made;
  made.part = known.part;
  made.relationship = known.relationship;
  made.id = known.id;
  made.listed = known.listed;
  RowFilter filter;
  if (sheet.loading == Loading::kPartly)
    filter = {sheet.loaded_rows.row_first, sheet.loaded_rows.row_last, false};
  read_worksheet(*parts_.open(*part), part->name, context(book, book), filter, contents, made);
  if (has_calculation_chain_) made.formulas = formulas_of(contents);
  std::string damage = read_notes(made, contents);
  std::string drawing_damage = read_drawing(book, made, contents);
  made.comments = contents.comments;
  made.pictures = contents.pictures;
  made.read = true;

  known = std::move(made);
  sheet.take(std::move(contents));
  sheet.selected = known.selected;
  sheet.comments_damage = std::move(damage);
  sheet.links_damage = known.links_damage;
  sheet.drawing_damage = std::move(drawing_damage);
  if (sheet.loading == Loading::kUnread) sheet.loading = Loading::kRead;
}

std::unique_ptr<OutsideRows> Document::read_outside(const Workbook& book,
                                                    const Sheet& sheet) const {
  auto outside = std::make_unique<OutsideRows>(book);
  SheetPart remains;
  SheetContents contents;
  const Part* part = parts_.find(part_of(sheet).part);
  remains.part = part->name;
  const RowFilter filter{sheet.loaded_rows.row_first, sheet.loaded_rows.row_last, true};
  read_worksheet(*parts_.open(*part), part->name, context(outside->texts, book), filter, contents,
                 remains);
  outside->rows.take(std::move(contents));
  return outside;
}

// Comments that cannot be read are carried; what is wrong is told when one is to be changed. So are
// those whose boxes or threads cannot be rewritten.
std::string Document::read_notes(const SheetPart& sheet, SheetContents& contents) const {
  std::string damage;
  try {
    const Part* part = parts_.related(sheet.part, "comments");
    if (part) read_comments(parts_.read(*part), part->name, contents.comments);
  } catch (const FileError& error) {
    contents.comments.clear();
    damage = error.what();
  }
  try {
    const pugi::xml_node link = package::child(sheet.tree->root(), Family::Main, "legacyDrawing");
    const Part* boxes = parts_.named_by(link, sheet.part).part;
    if (boxes) read_note_sizes(parts_.read_text(*boxes), contents.comments);
    const Part* threads = parts_.related(sheet.part, "threadedComment");
    if (threads) package::XmlTree::parse(parts_.read(*threads), threads->name);
  } catch (const FileError& error) {
    damage = error.what();
  }
  return damage;
}

}  // namespace engine::xlsx
