// The drawing of a worksheet: pictures, charts and shapes.
#pragma once

#include "engine/workbook/metrics.h"
#include "engine/xlsx/worksheet_elements.h"

namespace engine::xlsx {

void copy_drawing(pugi::xml_node element, const SheetCopying& to);

// How a drawing lies on a sheet while rows or columns are inserted or removed: where these begin
// before and after, in pixels.
struct DrawingMove {
  formula::Move move;
  int size = 0;  // rows or columns of the sheet
  Edges before;
  Edges after;

  DrawingMove(const SheetContents& sheet, const formula::Move& its, const Grid& grid);
};

// Moves the objects of a drawing. One whose cells are all removed goes.
void move_drawing(pugi::xml_node root, const DrawingMove& moving);
// The last row or column from `first` on at which an object begins that moves with its cells; -1
// without one.
int last_anchor(pugi::xml_node root, formula::Axis axis, int first);

// The formulas of a drawing: cells whose text shapes show, ranges that pictures are taken of.
void collect_drawing(pugi::xml_node root, TextEdits& edits);
// Those of controls that stand in the worksheet.
void collect_controls(pugi::xml_node element, TextEdits& edits);

// Controls and embedded objects, which have their anchors in the worksheet. They never go.
void move_controls(pugi::xml_node element, const SheetMoving& moving);

}  // namespace engine::xlsx
