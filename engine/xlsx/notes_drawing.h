// The legacy drawing of a sheet: the boxes of its notes.
//
// The part is VML, and not always well-formed XML, so it is never parsed as a whole: shapes of
// notes are found as stretches of text, taken out and put in, and everything else stays as it
// stands.
//
// Every shape of a book has an id of its own: cluster x 1024 + n. A drawing says in its idmap which
// clusters it uses, and no other drawing of the book may use those.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "engine/formula/interval.h"
#include "engine/workbook/cell.h"
#include "engine/workbook/document.h"
#include "engine/workbook/sheet.h"

namespace engine::xlsx {

// The clusters of shape ids that the book's drawings use.
class ShapeClusters {
 public:
  // Notes what a drawing of the book uses.
  void enter(std::string_view drawing);
  // A cluster that no drawing uses yet; it counts as used from now on.
  int take();

 private:
  std::set<int> used_;
  int free_ = 1;  // everything below is used
};

// Gives the notes of a sheet the sizes of their boxes, as far as the drawing tells them.
void read_note_sizes(std::string_view drawing, Comments& comments);

// The drawing with one box for each note of the sheet: boxes of notes that went or were replaced
// are taken out, those of new ones put in behind. `stored` is empty when the sheet had no drawing.
std::string write_notes_drawing(std::string_view stored, const SheetContents& sheet,
                                const Comments& as_read, const Grid& grid, ShapeClusters& clusters);

// The drawing after rows or columns were inserted or removed: the boxes of notes keep to their
// cells and go with them, other shapes keep to the cell of their upper left corner. Nothing
// when all stay.
std::optional<std::string> move_notes_drawing(std::string_view stored, const formula::Move& move,
                                              const Grid& grid);

// The drawing with the formulas of its form controls edited; nothing when they stay.
std::optional<std::string> edit_controls(std::string_view stored, const Sheet* sheet,
                                         const FormulaEdit& edit);

}  // namespace engine::xlsx
