// The drawing of a worksheet: pictures, charts and shapes.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "engine/workbook/anchor_moves.h"
#include "engine/xlsx/drawing_part.h"
#include "engine/xlsx/worksheet_elements.h"

namespace engine::xlsx {

// Of a drawing the pictures are copied.
void copy_drawing(pugi::xml_node element, const SheetCopying& to);

// Writes the drawings of one sheet after the other, in one save.
class PicturesWriter {
 public:
  PicturesWriter(Parts& parts, const Workbook& book, const StoredPictures& stored)
      : parts_(parts), book_(book), stored_(stored) {}

  // `root` is the sheet's tree.
  void write(const SheetPatching& from, pugi::xml_node root);

 private:
  std::string media_of(std::uint32_t picture);

  Parts& parts_;
  const Workbook& book_;
  const StoredPictures& stored_;
  std::map<std::string_view, std::string> media_;  // parts made in this save, by their bytes
};

void patch_drawing(pugi::xml_node root, const SheetPatching& from);

// Moves the objects of a drawing but the pictures that the model has, those of `as_read`. One whose
// cells are all removed goes.
void move_carried(pugi::xml_node root, const PlacedPictures& as_read, const AnchorMove& moving);
// The last row or column from `first` on at which one of these begins that moves with its cells; -1
// without one.
int last_carried(pugi::xml_node root, const PlacedPictures& as_read, formula::Axis axis, int first);

// The formulas of a drawing: cells whose text shapes show, ranges that pictures are taken of.
void collect_drawing(pugi::xml_node root, TextEdits& edits);
// Those of controls that stand in the worksheet.
void collect_controls(pugi::xml_node element, TextEdits& edits);

// Controls and embedded objects, which have their anchors in the worksheet. They never go.
void move_controls(pugi::xml_node element, const SheetMoving& moving);

}  // namespace engine::xlsx
