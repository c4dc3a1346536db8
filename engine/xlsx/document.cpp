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
using package::FileKind;

// Whether a compound file has an entry of that name. Directory entries are 128 bytes and begin with
// their name in UTF-16; where the directory lies does not matter for that.
bool has_entry(const package::Source& source, std::string_view name) {
  constexpr std::size_t kEntry = 128;
  std::string wanted;
  for (const char c : name) wanted.append({c, '\0'});
  wanted.append(2, '\0');
  std::vector<char> block(512 * kEntry);
  for (std::uint64_t offset = 0; offset < source.size(); offset += block.size()) {
    const std::size_t size = std::min<std::uint64_t>(block.size(), source.size() - offset);
    source.read(offset, std::span(block).first(size));
    for (std::size_t at = 0; at + kEntry <= size; at += kEntry)
      if (std::string_view(&block[at], wanted.size()) == wanted) return true;
  }
  return false;
}

void check_kind(const package::Source& source) {
  switch (package::file_kind(source)) {
    case FileKind::Zip:
      return;
    case FileKind::CompoundFile:
      if (has_entry(source, "EncryptedPackage")) throw FileError("is protected by a password");
      if (has_entry(source, "Workbook")) throw FileError("is an .xls workbook, not .xlsx");
      if (has_entry(source, "Book")) throw FileError("is an Excel 5.0/95 or older workbook");
      break;
    case FileKind::OldBiff:
      throw FileError("is an Excel 5.0/95 or older workbook");
    case FileKind::Xml:
    case FileKind::Html:
    case FileKind::Other:
    case FileKind::Empty:
      break;
  }
  throw FileError("is not an .xlsx workbook");
}

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

// The part with the boxes of a sheet's notes; null when there is none.
const Part* notes_drawing_of(const Parts& parts, const SheetPart& sheet) {
  const pugi::xml_node link =
      package::child(sheet.tree.document_element(), Family::Main, "legacyDrawing");
  const std::string_view id = package::attribute(link, Family::Relationships, "id").value();
  const Relationship* relationship = link ? parts.relationship(sheet.part, id) : nullptr;
  return relationship ? parts.target(sheet.part, *relationship) : nullptr;
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
  check_kind(*source);
  std::unique_ptr<Document> made(new Document);
  Parts& parts = made->parts_ = Parts(std::move(source));
  const Relationship& to_main = main_relationship(parts);
  const Part* main = parts.target("", to_main);
  if (!main) package::throw_damaged(resolve_target("", to_main.target), "is missing");
  if (is_binary_workbook_type(main->type)) throw FileError("is a binary .xlsb workbook");
  made->main_ = main->name;
  made->workbook_part_.read(parts.read(*main), parts, main->name, book);
  book.is_template = is_template_type(main->type);
  book.has_macros = parts.related(main->name, "vbaProject") != nullptr;
  made->has_calculation_chain_ = parts.related(main->name, "calcChain") != nullptr;
  if (scope == LoadScope::kInfo) return made;

  const Part* styles = parts.related(main->name, "styles");
  made->styles_part_.read(styles ? parts.read(*styles) : "", styles ? styles->name : "",
                          read_theme(parts, main->name), book.styles);
  made->formats_ = book.styles.format_count();
  if (const Part* texts = parts.related(main->name, "sharedStrings"))
    made->text_cells_ = read_shared_strings(*parts.open(*texts), texts->name, book.strings);
  else book.strings.end_of_file_entries();
  for (const auto& sheet : book.sheets) made->read_tab(*sheet);
  return made;
}

// Sheets that hold no cells are not read later on; whether their tab is selected counts all the
// same.
void Document::read_tab(Sheet& sheet) const {
  if (sheet.kind == SheetKind::kWorksheet) return;
  sheet.loading = Loading::kRead;
  const Part* part = parts_.find(part_of(sheet)->part);
  if (!part) return;
  try {
    const pugi::xml_document tree = package::parse_xml(parts_.read(*part), part->name);
    const pugi::xml_node views =
        package::child(tree.document_element(), Family::Main, "sheetViews");
    const pugi::xml_node view = package::child(views, Family::Main, "sheetView");
    sheet.selected = view.attribute("tabSelected").as_bool();
  } catch (const FileError&) {
    sheet.selected = false;
  }
}

SheetContext Document::context(Workbook& texts, const Workbook& book) const {
  const std::uint32_t shared = book.strings.count_from_file();
  return {texts, shared, &texts == &book ? 0 : shared, formats_, book.date1904};
}

void Document::read_sheet(Workbook& book, Sheet& sheet) {
  const SheetPart* known = part_of(sheet);
  if (!known || known->read || sheet.kind != SheetKind::kWorksheet) return;
  const Part* part = parts_.find(known->part);
  if (!part) package::throw_damaged(known->part.empty() ? main_ : known->part, "is missing");

  Sheet made;
  made.name = sheet.name;
  made.kind = sheet.kind;
  made.visibility = sheet.visibility;
  made.loading = sheet.loading == Loading::kUnread ? Loading::kRead : sheet.loading;
  made.loaded_rows = sheet.loaded_rows;
  auto remains = std::make_unique<SheetPart>();
  remains->part = known->part;
  remains->relationship = known->relationship;
  remains->id = known->id;
  RowFilter filter;
  if (sheet.loading == Loading::kPartly)
    filter = {sheet.loaded_rows.row_first, sheet.loaded_rows.row_last, false};
  read_worksheet(*parts_.open(*part), part->name, context(book, book), filter, made, *remains);
  if (has_calculation_chain_) remains->formulas = formulas_of(made);
  remains->read = true;
  made.remains = std::move(remains);
  read_notes(made);
  sheet = std::move(made);
}

std::unique_ptr<OutsideRows> Document::read_outside(const Workbook& book,
                                                    const Sheet& sheet) const {
  auto outside = std::make_unique<OutsideRows>(book);
  auto remains = std::make_unique<SheetPart>();
  const Part* part = parts_.find(part_of(sheet)->part);
  const RowFilter filter{sheet.loaded_rows.row_first, sheet.loaded_rows.row_last, true};
  read_worksheet(*parts_.open(*part), part->name, context(outside->workbook, book), filter,
                 outside->sheet, *remains);
  outside->sheet.remains = std::move(remains);
  return outside;
}

// Comments that cannot be read are carried; what is wrong is told when one is to be changed.
void Document::read_notes(Sheet& sheet) const {
  try {
    const Part* part = parts_.related(part_of(sheet)->part, "comments");
    if (part) read_comments(parts_.read(*part), part->name, sheet);
  } catch (const FileError& error) {
    sheet.comments.clear();
    sheet.comments_damage = error.what();
  }
  try {
    const Part* boxes = notes_drawing_of(parts_, *part_of(sheet));
    if (boxes) read_note_sizes(parts_.read(*boxes), sheet);
  } catch (const FileError& error) {
    sheet.comments_damage = error.what();
  }
}

}  // namespace engine::xlsx
