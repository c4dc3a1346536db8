#include "engine/workbook/pictures.h"

#include <algorithm>
#include <limits>
#include <tuple>

#include "engine/workbook/anchor_moves.h"

namespace engine {

namespace {

constexpr std::int64_t kMostPixels = std::numeric_limits<int>::max();

int pixels_of(std::int64_t emu) {
  const std::int64_t pixels = (emu + (emu < 0 ? -kEmuPerPixel : kEmuPerPixel) / 2) / kEmuPerPixel;
  return static_cast<int>(std::clamp<std::int64_t>(pixels, 0, kMostPixels));
}

AnchorEdge edge_at(const Corner& corner) { return {corner.index, corner.offset * kEmuPerPixel}; }

// Between two edges, of which the distance of their rows or columns is known.
int length_between(const AnchorEdge& from, const AnchorEdge& to, long long distance) {
  return pixels_of(distance * kEmuPerPixel + to.offset - from.offset);
}

// Where an offset into a row or column ends; one without stays even where that is hidden.
template <class Step>
Corner start_of(const SheetContents& sheet, int index, int offset, int count, const Step& walk) {
  return offset == 0 ? Corner{index, 0} : walk(sheet, {index, 0}, offset, count);
}

bool moves_with_cells(const Anchor& anchor) {
  return anchor.form != Anchor::Form::kAbsolute && anchor.anchoring != Anchoring::kStays;
}

}  // namespace

std::pair<int, int> size_of(const SheetContents& sheet, const Anchor& anchor) {
  if (anchor.form != Anchor::Form::kTwoCells)
    return {pixels_of(anchor.width), pixels_of(anchor.height)};
  const AnchorEdge& left = anchor.left;
  const AnchorEdge& top = anchor.top;
  const AnchorEdge& right = anchor.right;
  const AnchorEdge& bottom = anchor.bottom;
  return {length_between(left, right, column_distance(sheet, left.index, right.index)),
          length_between(top, bottom, row_distance(sheet, top.index, bottom.index))};
}

PictureBox box_of(const SheetContents& sheet, const Anchor& anchor, const Grid& grid) {
  using Form = Anchor::Form;
  AnchorEdge left = anchor.left;
  AnchorEdge top = anchor.top;
  if (anchor.form == Form::kAbsolute) {
    left = edge_at(walk_columns(sheet, {}, pixels_of(anchor.x), grid.columns));
    top = edge_at(row_at_position(sheet, pixels_of(anchor.y), grid.rows));
  }
  PictureBox box;
  box.column_left = left.index;
  box.row_top = top.index;
  box.offset_x = pixels_of(left.offset);
  box.offset_y = pixels_of(top.offset);
  std::tie(box.width, box.height) = size_of(sheet, anchor);
  if (anchor.form == Form::kTwoCells) {
    box.column_right = anchor.right.index;
    box.row_bottom = anchor.bottom.index;
    return box;
  }
  box.column_right = walk_columns(sheet, {left.index, box.offset_x}, box.width, grid.columns).index;
  box.row_bottom = walk_rows(sheet, {top.index, box.offset_y}, box.height, grid.rows).index;
  return box;
}

Anchor make_anchor(const SheetContents& sheet, Anchoring anchoring, const PictureBox& box,
                   const Grid& grid) {
  using Form = Anchor::Form;
  Anchor made;
  made.anchoring = anchoring;
  if (anchoring == Anchoring::kStays) {
    made.form = Form::kAbsolute;
    made.x = (column_distance(sheet, 0, box.column_left) + box.offset_x) * kEmuPerPixel;
    made.y = (row_position(sheet, box.row_top) + box.offset_y) * kEmuPerPixel;
  } else {
    const Corner left = start_of(sheet, box.column_left, box.offset_x, grid.columns, walk_columns);
    const Corner top = start_of(sheet, box.row_top, box.offset_y, grid.rows, walk_rows);
    made.left = edge_at(left);
    made.top = edge_at(top);
    if (anchoring == Anchoring::kMovesAndSizes) {
      made.right = edge_at(walk_columns(sheet, left, box.width, grid.columns));
      made.bottom = edge_at(walk_rows(sheet, top, box.height, grid.rows));
      return made;
    }
    made.form = Form::kOneCell;
  }
  made.width = box.width * kEmuPerPixel;
  made.height = box.height * kEmuPerPixel;
  return made;
}

int last_picture(const PlacedPictures& pictures, formula::Axis axis, int first) {
  int last = -1;
  for (const PlacedPicture& one : pictures) {
    const int begin = axis == formula::Axis::kRows ? one.anchor.top.index : one.anchor.left.index;
    if (moves_with_cells(one.anchor) && begin >= first) last = std::max(last, begin);
  }
  return last;
}

PlacedPictures moved(const PlacedPictures& pictures, const SheetContents& sheet,
                     const formula::Move& move, const Grid& grid) {
  PlacedPictures made;
  made.reserve(pictures.size());
  std::optional<AnchorMove> moving;
  for (PlacedPicture one : pictures) {
    Anchor& its = one.anchor;
    const bool rows = move.axis == formula::Axis::kRows;
    AnchorEdge* const to = its.form != Anchor::Form::kTwoCells ? nullptr
                           : rows                              ? &its.bottom
                                                               : &its.right;
    if (moves_with_cells(its)) {
      if (!moving) moving.emplace(sheet, move, grid);
      if (!move_edges(its.anchoring, rows ? its.top : its.left, to, *moving)) continue;
    }
    made.push_back(one);
  }
  return made;
}

}  // namespace engine
