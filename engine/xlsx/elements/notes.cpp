#include "engine/xlsx/elements/notes.h"

#include <utility>

#include "engine/package/file_error.h"
#include "engine/package/xml_tree.h"
#include "engine/xlsx/comments.h"
#include "engine/xlsx/new_parts.h"

namespace engine::xlsx {

using package::Family;

void patch_notes(pugi::xml_node root, const SheetPatching& from) {
  if (from.sheet.contents().comments != from.remains.comments) from.notes.write(from, root);
}

void NotesWriter::write(const SheetPatching& from, pugi::xml_node root) {
  // What was made since the sheet was read is among its relationships.
  const Ids mentioned = mentioned_ids(from.remains.tree->root());
  write_texts(from, mentioned);
  write_threads_of(from);
  write_boxes(from, root, mentioned);
}

void NotesWriter::write_texts(const SheetPatching& from, const Ids& mentioned) {
  const std::string& sheet = from.remains.part;
  const Comments& comments = from.sheet.contents().comments;
  const Part* stored = parts_.related(sheet, "comments");
  if (!stored && comments.empty()) return;
  const std::string name = stored ? stored->name : parts_.free_name("xl/comments#.xml");
  const std::string bytes = stored ? parts_.read(*stored) : std::string();
  parts_.put(name, kCommentsType, write_comments(bytes, name, comments, from.remains.comments));
  if (!stored) parts_.relate(sheet, mentioned, "comments", name);
}

void NotesWriter::write_threads_of(const SheetPatching& from) {
  const Part* stored = parts_.related(from.remains.part, "threadedComment");
  if (!stored) return;
  const std::string name = stored->name;
  parts_.put(name, stored->type,
             write_threads(parts_.read(*stored), name, from.sheet.contents().comments,
                           from.remains.comments));
}

void NotesWriter::write_boxes(const SheetPatching& from, pugi::xml_node root,
                              const Ids& mentioned) {
  enter_drawings();
  const std::string& sheet = from.remains.part;
  pugi::xml_node link = package::child(root, Family::Main, "legacyDrawing");
  const Part* stored = parts_.named_by(link, sheet).part;
  if (!stored && from.sheet.contents().comments.empty()) return;
  const std::string name = stored ? stored->name : parts_.free_name("xl/drawings/vmlDrawing#.vml");
  const std::string bytes = stored ? parts_.read_text(*stored) : std::string();
  parts_.put(name, kNotesDrawingType,
             write_notes_drawing(bytes, from.sheet.contents(), from.remains.comments,
                                 from.book.limits.grid, clusters_));
  if (stored) return;
  if (!link) link = worksheet_child(root, "legacyDrawing");
  package::set_attribute(link, Family::Relationships, "id",
                         parts_.relate(sheet, mentioned, "vmlDrawing", name));
}

// A drawing that cannot be read shows no shapes that a new one could get in the way of.
void NotesWriter::enter_drawings() {
  if (std::exchange(entered_, true)) return;
  for (const auto& [key, part] : parts_.all()) {
    if (!key.ends_with(".vml")) continue;
    try {
      clusters_.enter(parts_.read_text(part));
    } catch (const package::FileError&) {
      continue;
    }
  }
}

}  // namespace engine::xlsx
