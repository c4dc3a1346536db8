#include "engine/xls/drawing_part.h"

#include <algorithm>
#include <optional>

#include "engine/workbook/anchor_moves.h"

namespace engine::xls {

namespace {

// Buttons of filters stay where they are, the file says, as whoever moves the filter moves them.
Anchoring anchoring_of(const DrawnShape& shape) {
  return shape.kind == DrawnShape::Kind::kFilterButton ? Anchoring::kMovesAndSizes
                                                       : shape.now.anchoring;
}

// Notes go where their cells go.
void move_note(DrawnShape& box, CellAddress from, CellAddress to, const Grid& grid) {
  const auto shift = [](AnchorEdge& edge, int by, int count) {
    edge.index = std::clamp(edge.index + by, 0, count - 1);
  };
  for (AnchorEdge* edge : {&box.now.top, &box.now.bottom})
    shift(*edge, to.row - from.row, grid.rows);
  for (AnchorEdge* edge : {&box.now.left, &box.now.right})
    shift(*edge, to.column - from.column, grid.columns);
}

}  // namespace

MovedDrawing moved(const DrawingPart& part, const SheetContents& sheet, const formula::Move& move,
                   const Grid& grid) {
  const bool rows = move.axis == formula::Axis::kRows;
  MovedDrawing made{part.shapes, {}};
  std::optional<AnchorMove> moving;
  for (DrawnShape& shape : made.shapes) {
    const bool in_model =
        shape.kind == DrawnShape::Kind::kPicture || shape.kind == DrawnShape::Kind::kNote;
    if (in_model || shape.gone || shape.anchor_at == 0) continue;
    if (!moving) moving.emplace(sheet, move, grid);
    Anchor& its = shape.now;
    shape.gone = !move_edges(anchoring_of(shape), rows ? its.top : its.left,
                             rows ? &its.bottom : &its.right, *moving);
  }
  for (const auto& [cell, note] : part.notes) {
    const auto to = formula::moved(rows ? cell.row : cell.column, move);
    DrawnShape& box = made.shapes[note.shape];
    box.gone = box.gone || !to;
    if (!to) continue;
    CellAddress now = cell;
    (rows ? now.row : now.column) = *to;
    move_note(box, cell, now, grid);
    made.notes.emplace(now, note);
  }
  return made;
}

int last_carried_shape(const DrawingPart& part, formula::Axis axis, int first) {
  int last = -1;
  for (const DrawnShape& shape : part.shapes) {
    if (shape.kind != DrawnShape::Kind::kCarried || shape.gone || shape.anchor_at == 0) continue;
    if (shape.now.anchoring == Anchoring::kStays) continue;
    const int begin = axis == formula::Axis::kRows ? shape.now.top.index : shape.now.left.index;
    if (begin >= first) last = std::max(last, begin);
  }
  return last;
}

}  // namespace engine::xls
