// Pictures: those of a book, and where its sheets show them.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "engine/formula/interval.h"
#include "engine/formula/reference.h"
#include "engine/workbook/anchor.h"
#include "engine/workbook/picture_header.h"

namespace engine {

class SheetContents;

// A picture of the book: bytes, a link to a file, or both.
struct Picture {
  std::shared_ptr<const std::string> bytes;  // null for a mere link, and while the file holds them
  bool in_file = false;                      // the file holds them, and nobody has asked yet
  std::optional<PictureHeader> header;       // nothing while it is not known, or of unknown kind
  std::string link;                          // the path that it leads to; empty for none
};

// A picture on a sheet.
struct PlacedPicture {
  std::uint32_t picture = 0;  // its place in the book's list
  Anchor anchor;
  std::uint32_t number = 0;  // kept for the codec: which one of the file's it is; 0: none

  friend bool operator==(const PlacedPicture&, const PlacedPicture&) = default;
};

// From the lowest to the topmost.
using PlacedPictures = std::vector<PlacedPicture>;

// Where an object lies, in pixels.
struct PictureBox {
  int row_top = 0, column_left = 0;
  int row_bottom = 0, column_right = 0;
  int offset_x = 0, offset_y = 0;  // of the upper left corner in its cell
  int width = 0, height = 0;
};

PictureBox box_of(const SheetContents& sheet, const Anchor& anchor, const Grid& grid);
// Its width and height alone, which take no search for the cells.
std::pair<int, int> size_of(const SheetContents& sheet, const Anchor& anchor);

// The anchor of an object of so many pixels, of which the upper left corner and its size are given;
// an offset that is larger than the cell leads into the next ones.
Anchor make_anchor(const SheetContents& sheet, Anchoring anchoring, const PictureBox& box,
                   const Grid& grid);

// The last row or column from `first` on at which a picture begins that moves with its cells; -1
// without one.
int last_picture(const PlacedPictures& pictures, formula::Axis axis, int first);

// The pictures after rows or columns of their sheet were inserted or removed. Those whose cells are
// all gone go too, if they are held at both corners.
PlacedPictures moved(const PlacedPictures& pictures, const SheetContents& sheet,
                     const formula::Move& move, const Grid& grid);

}  // namespace engine
