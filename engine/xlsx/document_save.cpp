// Saving: which parts a save replaces, and with what.
#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "engine/package/file_error.h"
#include "engine/package/xml_tree.h"
#include "engine/xlsx/comments.h"
#include "engine/xlsx/document.h"
#include "engine/xlsx/new_parts.h"
#include "engine/xlsx/notes_drawing.h"
#include "engine/xlsx/shared_strings.h"
#include "engine/xlsx/worksheet_writer.h"

namespace engine::xlsx {

namespace {

using package::Family;

// A sheet of the book with its part in the package that is written.
struct SavedSheet {
  const Sheet* sheet = nullptr;
  const SheetPart* remains = nullptr;  // null for a new sheet that nothing was carried for
  SheetEntry entry;
  std::string part;
  bool rewritten = false;
  std::unique_ptr<OutsideRows> read_now;
  const OutsideRows* outside = nullptr;  // of a partly loaded sheet
};

bool differs_from_file(const Sheet& sheet) {
  const SheetPart* remains = part_of(sheet);
  if (!remains || remains->relationship.empty()) return true;
  return remains->read && (sheet.changed() || sheet.selected != remains->selected);
}

// The comments that the file has for the sheet.
const Comments& comments_as_read(const SavedSheet& saved) {
  static const Comments kNone;
  return saved.remains ? saved.remains->comments : kNone;
}

// Gives a sheet that no file has its part, its parts' names and its ids.
void enter_new_sheet(Parts& parts, std::string_view main, std::uint32_t id, SavedSheet& saved) {
  saved.part = parts.free_name("xl/worksheets/sheet#.xml");
  parts.put(saved.part, kWorksheetType, "");
  saved.entry.relationship = parts.relate(main, "worksheet", saved.part);
  saved.entry.id = id;
  if (!saved.remains) return;
  for (const Relationship& link : saved.remains->links) parts.add_relationship(saved.part, link);
  for (const AddedPart& added : saved.remains->added) {
    const std::string name = parts.free_name(added.pattern);
    parts.put(name, added.type, added.bytes);
    parts.add_relationship(saved.part, {added.relationship, relationship_type(added.kind),
                                        relative_target(saved.part, name), false});
    for (const Relationship& link : added.links) parts.add_relationship(name, link);
  }
}

// Writes the texts and the boxes of a sheet's notes; `root` is the sheet's tree.
class NotesWriter {
 public:
  NotesWriter(Parts& parts, const Grid& grid) : parts_(parts), grid_(grid) {}

  void write(const SavedSheet& saved, pugi::xml_node root) {
    write_texts(saved);
    write_threads_of(saved);
    write_boxes(saved, root);
  }

 private:
  void write_texts(const SavedSheet& saved) {
    const Part* stored = parts_.related(saved.part, "comments");
    const std::string name = stored ? stored->name : parts_.free_name("xl/comments#.xml");
    if (!stored && saved.sheet->contents().comments.empty()) return;
    const std::string bytes = stored ? parts_.read(*stored) : std::string();
    parts_.put(
        name, kCommentsType,
        write_comments(bytes, name, saved.sheet->contents().comments, comments_as_read(saved)));
    if (bytes.empty()) parts_.relate(saved.part, "comments", name);
  }

  void write_threads_of(const SavedSheet& saved) {
    const Part* stored = parts_.related(saved.part, "threadedComment");
    if (!stored) return;
    const std::string name = stored->name;
    parts_.put(name, stored->type,
               write_threads(parts_.read(*stored), name, saved.sheet->contents().comments,
                             comments_as_read(saved)));
  }

  void write_boxes(const SavedSheet& saved, pugi::xml_node root) {
    enter_drawings();
    pugi::xml_node link = package::child(root, Family::Main, "legacyDrawing");
    const std::string_view id = package::attribute(link, Family::Relationships, "id").value();
    const Relationship* relationship = link ? parts_.relationship(saved.part, id) : nullptr;
    const Part* stored = relationship ? parts_.target(saved.part, *relationship) : nullptr;
    if (!stored && saved.sheet->contents().comments.empty()) return;
    const std::string name =
        stored ? stored->name : parts_.free_name("xl/drawings/vmlDrawing#.vml");
    const std::string bytes = stored ? parts_.read(*stored) : std::string();
    parts_.put(name, kNotesDrawingType,
               write_notes_drawing(bytes, saved.sheet->contents(), comments_as_read(saved), grid_,
                                   clusters_));
    if (stored) return;
    if (!link) link = worksheet_child(root, "legacyDrawing");
    package::set_attribute(link, Family::Relationships, "id",
                           parts_.relate(saved.part, "vmlDrawing", name));
  }

  // A drawing that cannot be read shows no shapes that a new one could get in the way of.
  void enter_drawings() {
    if (std::exchange(entered_, true)) return;
    for (const auto& [key, part] : parts_.all()) {
      if (!key.ends_with(".vml")) continue;
      try {
        clusters_.enter(parts_.read(part));
      } catch (const package::FileError&) {
        continue;
      }
    }
  }

  Parts& parts_;
  const Grid& grid_;
  ShapeClusters clusters_;
  bool entered_ = false;
};

// A new sheet's part is of the family of namespaces that the workbook is of.
void take_over_namespaces(pugi::xml_node from, pugi::xml_node root) {
  const std::string_view uri = from.attribute("xmlns").value();
  if (package::family_of(uri) != Family::Main || uri == root.attribute("xmlns").value()) return;
  root.attribute("xmlns") = from.attribute("xmlns").value();
  if (const pugi::xml_attribute relationships = from.attribute("xmlns:r"))
    root.attribute("xmlns:r") = relationships.value();
}

// Sheets without cells change in one thing only.
void write_tab(Parts& parts, const SavedSheet& saved) {
  const Part* part = parts.find(saved.part);
  if (!part) return;
  const auto tree = package::XmlTree::parse(parts.read(*part), part->name);
  const pugi::xml_node views = package::child(tree.root(), Family::Main, "sheetViews");
  for (pugi::xml_node view : package::children(views, Family::Main, "sheetView")) {
    view.remove_attribute("tabSelected");
    if (saved.sheet->selected) view.append_attribute("tabSelected") = "1";
  }
  parts.put(part->name, part->type, tree.serialize());
}

// The name that a part of the book has or gets; it is made, still empty, when there is none.
std::string related_or_new(Parts& parts, std::string_view main, std::string_view kind,
                           std::string_view name, std::string_view type) {
  if (const Part* part = parts.related(main, kind)) return part->name;
  std::string free(name);
  if (parts.find(name)) {
    const std::size_t dot = name.rfind('.');
    free = parts.free_name(free.substr(0, dot).append("#").append(name.substr(dot)));
  }
  parts.put(free, type, "");
  parts.relate(main, kind, free);
  return free;
}

void remove_calculation_chain(Parts& parts, std::string_view main) {
  std::vector<std::string> ids;
  for (const Relationship& one : parts.relationships(main))
    if (one.kind() == "calcChain") ids.push_back(one.id);
  for (const std::string& id : ids) parts.prune(main, id);
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
    for (const auto& sheet : book_.sheets) enter(*sheet);
    texts_.settle();
    if (document_.has_calculation_chain_ && formulas_moved_)
      remove_calculation_chain(parts_, main_);
    replace_sheets();
    replace_texts();
    replace_workbook(options);
    parts_.write(output);
  }

 private:
  void replace_styles() {
    if (!is_new_ && !book_.styles.changed()) return;
    styles_ = document_.styles_part_.write(book_.styles);
    const std::string name = related_or_new(parts_, main_, "styles", "xl/styles.xml", kStylesType);
    parts_.put(name, kStylesType, std::move(styles_.bytes));
  }

  void enter(const Sheet& sheet) {
    SavedSheet& saved = sheets_.emplace_back();
    saved.sheet = &sheet;
    saved.remains = part_of(sheet);
    if (saved.remains && !saved.remains->relationship.empty()) {
      saved.part = saved.remains->part;
      saved.entry = {&sheet, saved.remains->relationship, saved.remains->id};
    } else {
      saved.entry.sheet = &sheet;
      const auto earlier = static_cast<std::uint32_t>(new_sheets_++);
      enter_new_sheet(parts_, main_, document_.workbook_part_.last_sheet_id() + earlier + 1, saved);
    }
    if (sheet.kind != SheetKind::kWorksheet) {
      if (saved.remains && sheet.selected != saved.remains->selected) write_tab(parts_, saved);
    } else if (differs_from_file(sheet)) {
      saved.rewritten = true;
      enter_cells(saved);
    }
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
    texts_.enter(saved.sheet->contents());
    text_cells_ -= std::min(text_cells_, saved.remains ? saved.remains->text_cells : 0);
    if (document_.has_calculation_chain_)
      formulas_moved_ |=
          formulas_of(saved.sheet->contents()) != (saved.remains ? saved.remains->formulas : 0);
  }

  void replace_sheets() {
    NotesWriter notes(parts_, book_.limits.grid);
    const pugi::xml_node workbook = document_.workbook_part_.tree().root();
    for (const SavedSheet& saved : sheets_) {
      if (!saved.rewritten) continue;
      package::XmlTree tree = saved.remains ? saved.remains->tree.copy() : new_worksheet();
      const pugi::xml_node root = tree.root();
      if (!saved.remains) take_over_namespaces(workbook, root);
      patch_worksheet(root, *saved.sheet, saved.outside, styles_);
      if (saved.sheet->contents().comments != comments_as_read(saved)) notes.write(saved, root);
      parts_.put_blocks(saved.part, {},
                        write_worksheet(std::move(tree), *saved.sheet, saved.outside,
                                        WriteContext{book_, styles_, texts_}));
    }
  }

  void replace_texts() {
    if (texts_.empty()) return;
    const std::string name =
        related_or_new(parts_, main_, "sharedStrings", "xl/sharedStrings.xml", kSharedStringsType);
    std::string stored = parts_.read(*parts_.find(name));
    parts_.put_blocks(name, {},
                      write_shared_strings(std::move(stored), name, book_.strings, texts_,
                                           text_cells_ + texts_.cells()));
  }

  void replace_workbook(const SaveOptions& options) {
    std::vector<SheetEntry> entries;
    for (const SavedSheet& saved : sheets_) entries.push_back(saved.entry);
    const WorkbookPart& part = document_.workbook_part_;
    std::string bytes = part.patched(book_, entries).serialize();
    if (is_new_ || bytes != part.tree().serialize()) parts_.put(main_, {}, std::move(bytes));
    const std::string_view type = parts_.find(main_)->type;
    if (type.empty() || is_workbook_type(type))
      parts_.set_type(main_, workbook_type(book_.has_macros, options.as_template));
  }

  const Document& document_;
  const Workbook& book_;
  Parts parts_;
  const std::string& main_;
  const bool is_new_;
  WrittenStyles styles_;
  WrittenTexts texts_;
  std::vector<SavedSheet> sheets_;
  std::size_t new_sheets_ = 0;
  std::uint64_t text_cells_;  // cells of all sheets that name a shared text
  bool formulas_moved_;
};

void Document::save(const Workbook& book, const SaveOptions& options, package::Output& output) {
  Saving(*this, book).run(options, output);
}

}  // namespace engine::xlsx
