// What is known of a sheet's drawing beside its contents.
//
// The bytes of a drawing lie in several records, and behind those of each shape stand records of
// other kinds: an object, which tells what the shape is for, the text in it, a whole chart. So the
// part keeps the drawing's bytes in one piece, and where in them which records of the stream stand.
// The model has the pictures and notes among the shapes; the other ones are the file's own bytes.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "engine/formula/interval.h"
#include "engine/formula/reference.h"
#include "engine/workbook/anchor.h"
#include "engine/workbook/sheet.h"

namespace engine::xls {

// A shape that lies on the sheet itself, or a whole group of shapes.
struct DrawnShape {
  enum class Kind : std::uint8_t { kCarried, kPicture, kNote, kFilterButton };

  std::uint32_t begin = 0;  // in the drawing's bytes
  std::uint32_t end = 0;
  std::uint32_t anchor_at = 0;  // of what its anchor says; 0: it has none
  std::uint32_t count = 0;      // of shapes in it, itself included
  std::uint32_t object = 0;     // the number of its object; 0 without one
  Kind kind = Kind::kCarried;
  bool gone = false;  // with its cells
  Anchor as_read;     // at two cells
  Anchor now;
};

// A picture shape: which one of the book's store it shows, from 1, or 0, and which file it is
// linked to.
struct DrawnPicture {
  std::size_t shape = 0;
  std::uint32_t stored = 0;
  std::string link;
};

// A note and its box.
struct DrawnNote {
  std::size_t shape = 0;
  std::uint32_t flags = 0;
  CellAddress at;  // as read
  Comment comment;
};

struct DrawingPart {
  // Records of the stream that stand behind so many of the bytes.
  struct Records {
    std::uint32_t at = 0;
    std::uint32_t begin = 0;
    std::uint32_t end = 0;
  };

  bool exists() const { return !bytes.empty(); }

  std::string bytes;
  std::vector<Records> records;
  std::string damage;  // why the bytes make no drawing; empty when they do

  std::uint32_t drawing = 0;       // its number
  std::uint32_t head_at = 0;       // of counts: shapes, and the highest number of one
  std::uint32_t shapes_at = 0;     // of the container of shapes
  std::uint32_t shapes_begin = 0;  // behind their frame
  std::uint32_t shapes_end = 0;
  std::vector<DrawnShape> shapes;
  std::map<std::uint32_t, std::uint32_t> clusters;  // the highest number of a shape in each
  std::uint32_t highest_object = 0;
  std::vector<DrawnPicture> pictures;
  std::map<CellAddress, DrawnNote> notes;  // by where they are now
  bool has_filter = false;                 // the sheet had one, to which the buttons belong
};

// What an insertion or removal changes in a drawing.
struct MovedDrawing {
  std::vector<DrawnShape> shapes;
  std::map<CellAddress, DrawnNote> notes;
};

// The shapes and notes after rows or columns of their sheet, whose contents are those before, were
// inserted or removed.
MovedDrawing moved(const DrawingPart& part, const SheetContents& sheet, const formula::Move& move,
                   const Grid& grid);

// The last row or column from `first` on at which something begins that the model does not have
// and that moves with its cells; -1 without one.
int last_carried_shape(const DrawingPart& part, formula::Axis axis, int first);

}  // namespace engine::xls
