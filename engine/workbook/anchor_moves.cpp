#include "engine/workbook/anchor_moves.h"

#include <algorithm>

namespace engine {

namespace {

// Files may say anything.
int anchor_pixels(const AnchorEdge& edge) {
  constexpr std::int64_t kMost = 1 << 20;
  return static_cast<int>(std::clamp<std::int64_t>(edge.offset / kEmuPerPixel, 0, kMost));
}

bool is_removed(const AnchorEdge& from, const AnchorEdge& to, const formula::Move& move) {
  if (move.kind == formula::Move::Kind::kInsert) return false;
  const int end = move.at + move.count;
  return from.index >= move.at && from.index < end &&
         (to.index < end || (to.index == end && to.offset == 0));
}

// Puts it to a place, at the edge of which it stands if its own is gone.
void move_edge(AnchorEdge& edge, const AnchorMove& moving) {
  const auto to = formula::moved(edge.index, moving.move);
  edge.index = std::min(to.value_or(moving.move.at), moving.size - 1);
  if (!to) edge.offset = 0;
}

// What the model's inserted rows and columns look like.
int inserted_pixels(const SheetContents& sheet, const formula::Move& move) {
  if (move.axis == formula::Axis::kColumns)
    return move.at == 0 ? default_column_pixels(sheet) : unhidden_column_pixels(sheet, move.at - 1);
  const Row* before = move.at == 0 ? nullptr : sheet.cells.find_row(move.at - 1);
  const RowProperties* its = before ? sheet.properties(*before) : nullptr;
  return pixels_of_points(its && its->custom_height && its->height ? *its->height
                                                                   : sheet.default_row_height);
}

Edges edges_of(const SheetContents& sheet, formula::Axis axis, const Grid& grid) {
  return axis == formula::Axis::kRows ? Edges::of_rows(sheet, grid.rows)
                                      : Edges::of_columns(sheet, grid.columns);
}

}  // namespace

AnchorMove::AnchorMove(const SheetContents& sheet, const formula::Move& its, const Grid& grid)
    : move(its),
      size(its.axis == formula::Axis::kRows ? grid.rows : grid.columns),
      before(edges_of(sheet, its.axis, grid)),
      after(before.moved(its, inserted_pixels(sheet, its))) {}

bool move_edges(Anchoring anchoring, AnchorEdge& from, AnchorEdge* to, const AnchorMove& moving) {
  if (anchoring == Anchoring::kStays) return true;
  const bool sizes = anchoring == Anchoring::kMovesAndSizes;
  const bool goes = to && sizes && is_removed(from, *to, moving.move);
  const long long length = to ? moving.before.position(to->index) + anchor_pixels(*to) -
                                    moving.before.position(from.index) - anchor_pixels(from)
                              : 0;
  move_edge(from, moving);
  if (!to) return true;
  if (sizes) {
    move_edge(*to, moving);
    return !goes;
  }
  const Corner end =
      moving.after.walk({from.index, anchor_pixels(from)}, static_cast<int>(std::max(length, 0LL)));
  to->index = end.index;
  if (end.offset != anchor_pixels(*to)) to->offset = end.offset * kEmuPerPixel;
  return true;
}

}  // namespace engine
