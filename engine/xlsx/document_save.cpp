// Saving: which parts a save replaces, and with what.
#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "engine/formula/reference.h"
#include "engine/package/file_error.h"
#include "engine/package/xml_tree.h"
#include "engine/workbook/sheet_operations.h"
#include "engine/xlsx/attributes.h"
#include "engine/xlsx/document.h"
#include "engine/xlsx/elements/drawings.h"
#include "engine/xlsx/elements/notes.h"
#include "engine/xlsx/new_parts.h"
#include "engine/xlsx/shared_strings.h"
#include "engine/xlsx/worksheet_elements.h"
#include "engine/xlsx/worksheet_writer.h"

namespace engine::xlsx {

namespace {

using package::Family;

// A sheet of the book in one save.
struct SavedSheet {
  const Sheet* sheet = nullptr;
  const SheetPart* remains = nullptr;
  bool rewritten = false;
  std::unique_ptr<OutsideRows> read_now;
  const OutsideRows* outside = nullptr;  // of a partly loaded sheet
  std::vector<Table> tables;             // whose names formulas may need
};

// Sheets without cells change in one thing only.
void write_tab(Parts& parts, const SavedSheet& saved) {
  const Part* part = parts.find(saved.remains->part);
  if (!part) return;
  const auto tree = package::XmlTree::parse(parts.read(*part), part->name);
  const pugi::xml_node views = package::child(tree.root(), Family::Main, "sheetViews");
  for (pugi::xml_node view : package::children(views, Family::Main, "sheetView"))
    settle_attribute(view, "tabSelected", "1", !saved.sheet->selected);
  parts.put(part->name, part->type, tree.serialize());
}

// The name that a part of the book has or gets; it is made, still empty, when there is none.
std::string related_or_new(Parts& parts, std::string_view main, const Ids& mentioned,
                           std::string_view kind, std::string_view name, std::string_view type) {
  if (const Part* part = parts.related(main, kind)) return part->name;
  std::string free(name);
  if (parts.find(name) || parts.is_mentioned(name)) {
    const std::size_t dot = name.rfind('.');
    free = parts.free_name(free.substr(0, dot).append("#").append(name.substr(dot)));
  }
  parts.put(free, type, "");
  parts.relate(main, mentioned, kind, free);
  return free;
}

void remove_calculation_chain(Parts& parts, std::string_view main) {
  std::vector<std::string> ids;
  for (const Relationship& one : parts.relationships(main))
    if (one.kind() == "calcChain") ids.push_back(one.id);
  for (const std::string& id : ids) parts.unrelate(main, id);
}

// What the properties of a document list of its workbook: the names of sheets, then the others.
std::vector<std::string> titles_of(pugi::xml_node workbook) {
  std::vector<std::string> titles;
  for (const auto& [list, one] :
       {std::pair("sheets", "sheet"), std::pair("definedNames", "definedName")})
    for (const pugi::xml_node node :
         package::children(package::child(workbook, Family::Main, list), Family::Main, one))
      titles.emplace_back(node.attribute("name").value());
  return titles;
}

// Properties need not list titles, and spreadsheet programs make them anew. Damaged ones are
// carried.
void remove_titles(Parts& parts) {
  const Part* properties = parts.related("", "extended-properties");
  if (!properties) return;
  try {
    const auto tree = package::XmlTree::parse(parts.read(*properties), properties->name);
    for (pugi::xml_node root = tree.root(), node = root.first_child(); node;) {
      const pugi::xml_node next = node.next_sibling();
      const std::string_view name = package::local_name(node);
      if (name == "HeadingPairs" || name == "TitlesOfParts") root.remove_child(node);
      node = next;
    }
    parts.put(properties->name, properties->type, tree.serialize());
  } catch (const package::FileError&) {
    return;
  }
}

}  // namespace

// One save: a copy of the list of parts, in which one kind of part after the other is replaced.
class Document::Saving {
 public:
  Saving(const Document& document, const Workbook& book)
      : document_(document),
        book_(book),
        parts_(document.parts_),
        main_(document.main_),
        is_new_(!parts_.find(main_)->stored),
        texts_(book.strings),
        text_cells_(document.text_cells_),
        formulas_moved_(document.sheet_removed_) {}

  void run(const SaveOptions& options, package::Output& output) {
    parts_.remove_signatures();
    replace_styles();
    for (const auto& sheet : book_.sheets()) enter(*sheet);
    texts_.settle();
    if (document_.has_calculation_chain_ && formulas_moved_)
      remove_calculation_chain(parts_, main_);
    replace_sheets();
    replace_texts();
    replace_workbook(options);
    parts_.drop_unreachable();
    parts_.write(output);
  }

 private:
  void replace_styles() {
    if (!is_new_ && !book_.styles.changed()) return;
    styles_ = document_.styles_part_.write(book_.styles);
    const std::string name = related_or_new(parts_, main_, document_.workbook_part_.mentioned(),
                                            "styles", "xl/styles.xml", kStylesType);
    parts_.put(name, kStylesType, std::move(styles_.bytes));
  }

  void enter(const Sheet& sheet) {
    SavedSheet& saved = sheets_.emplace_back();
    saved.sheet = &sheet;
    saved.remains = &document_.part_of(sheet);
    const bool other_tab = sheet.selected != saved.remains->selected;
    if (sheet.kind != SheetKind::kWorksheet) {
      if (other_tab) write_tab(parts_, saved);
      return;
    }
    const bool is_new = saved.remains->listed == 0;
    saved.rewritten = is_new || (saved.remains->read && (sheet.changed() || other_tab));
    if (saved.rewritten) enter_cells(saved);
  }

  // A text that cannot be moved to a cell that has to hold it now would be another formula there.
  void check_shared(const SavedSheet& saved, const SheetContents& contents) const {
    const SharedFormula* stranded = stranded_formula(contents, book_.limits.grid);
    if (!stranded) return;
    std::string place = saved.remains->part + ", cell ";
    formula::append_cell(place, stranded->at.row, stranded->at.column);
    package::throw_damaged(place, "the formula that other cells share is not understood");
  }

  // Rows outside of a partial load are read for the save when no edit has kept them.
  void enter_cells(SavedSheet& saved) {
    if (saved.sheet->loading == Loading::kPartly) {
      saved.outside = saved.sheet->outside.get();
      formulas_moved_ |= saved.outside && saved.outside->rows.changed();
      if (!saved.outside) {
        saved.read_now = document_.read_outside(book_, *saved.sheet);
        saved.outside = saved.read_now.get();
      }
    }
    check_shared(saved, saved.sheet->contents());
    if (saved.outside) check_shared(saved, saved.outside->rows.contents());
    texts_.enter(saved.sheet->contents());
    text_cells_ -= std::min(text_cells_, saved.remains->text_cells);
    if (document_.has_calculation_chain_)
      formulas_moved_ |= formulas_of(saved.sheet->contents()) != saved.remains->formulas;
  }

  void replace_sheets() {
    NotesWriter notes(parts_);
    const StoredPictures none;
    PicturesWriter pictures(parts_, book_, document_.pictures_ ? *document_.pictures_ : none);
    for (SavedSheet& saved : sheets_) {
      if (!saved.rewritten) continue;
      saved.tables = tables_of(saved);
      package::XmlTree tree = saved.remains->tree->copy();
      patch_elements(tree.root(), {book_, *saved.sheet, *saved.remains, saved.outside, saved.tables,
                                   styles_, parts_, notes, pictures});
      parts_.put_blocks(saved.remains->part, {},
                        write_worksheet(std::move(tree), *saved.sheet, saved.outside,
                                        WriteContext{book_, styles_, texts_, saved.tables}));
    }
  }

  // Tables that cannot be read complete no formula; they are carried as they are.
  std::vector<Table> tables_of(const SavedSheet& saved) const try {
    return document_.tables(book_, *saved.sheet);
  } catch (const package::FileError&) {
    return {};
  }

  void replace_texts() {
    if (texts_.empty()) return;
    const std::string name =
        related_or_new(parts_, main_, document_.workbook_part_.mentioned(), "sharedStrings",
                       "xl/sharedStrings.xml", kSharedStringsType);
    std::string stored = parts_.read_text(*parts_.find(name));
    parts_.put_blocks(name, {},
                      write_shared_strings(std::move(stored), name, book_.strings, texts_,
                                           text_cells_ + texts_.cells()));
  }

  void replace_workbook(const SaveOptions& options) {
    const WorkbookPart& part = document_.workbook_part_;
    const package::XmlTree tree = part.patched(book_, document_.sheets_, options.calculate);
    std::string bytes = tree.serialize();
    if (is_new_ || bytes != part.tree().serialize()) parts_.put(main_, {}, std::move(bytes));
    if (!is_new_ && titles_of(tree.root()) != titles_of(part.tree().root())) remove_titles(parts_);
    const std::string_view type = parts_.find(main_)->type;
    if (type.empty() || is_workbook_type(type))
      parts_.set_type(main_, workbook_type(has_macros(options), options.as_template));
  }

  // A project of macros makes the kind of the book; without one the target's name does, and where
  // that tells nothing the file.
  bool has_macros(const SaveOptions& options) const {
    return parts_.related(main_, "vbaProject") ||
           options.with_macros.value_or(document_.is_macro_enabled_);
  }

  const Document& document_;
  const Workbook& book_;
  Parts parts_;
  const std::string& main_;
  const bool is_new_;
  WrittenStyles styles_;
  WrittenTexts texts_;
  std::vector<SavedSheet> sheets_;
  std::uint64_t text_cells_;  // cells of all sheets that name a shared text
  bool formulas_moved_;
};

void Document::save(const Workbook& book, const SaveOptions& options, package::Output& output) {
  Saving(*this, book).run(options, output);
}

}  // namespace engine::xlsx
