// The notes of a sheet: the element legacyDrawing and the parts with their texts and boxes.
#pragma once

#include "engine/xlsx/notes_drawing.h"
#include "engine/xlsx/worksheet_elements.h"

namespace engine::xlsx {

// Writes the parts of the notes of one sheet after the other, in one save.
class NotesWriter {
 public:
  explicit NotesWriter(Parts& parts) : parts_(parts) {}

  // `root` is the sheet's tree.
  void write(const SheetPatching& from, pugi::xml_node root);

 private:
  void write_texts(const SheetPatching& from, const Ids& mentioned);
  void write_threads_of(const SheetPatching& from);
  void write_boxes(const SheetPatching& from, pugi::xml_node root, const Ids& mentioned);
  void enter_drawings();

  Parts& parts_;
  ShapeClusters clusters_;
  bool entered_ = false;
};

void patch_notes(pugi::xml_node root, const SheetPatching& from);

}  // namespace engine::xlsx
