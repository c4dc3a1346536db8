#include "engine/xls/drawing_shapes.h"

#include <algorithm>
#include <iterator>
#include <vector>

#include "engine/text/utf16.h"
#include "engine/workbook/metrics.h"
#include "engine/xls/drawing_anchor.h"
#include "engine/xls/drawing_pieces.h"

namespace engine::xls {

namespace {

using Kind = NewShape::Kind;

// The look of a note's box: the colour of tool tips, a shadow, hidden until pointed at.
constexpr ShapeProperty kNoteLook[] = {
    {0x0080, 0},          {0x008B, 2},          {0x00BF, 0x00080008}, {0x0158, 0},
    {0x0181, 0x08000050}, {0x0183, 0x08000050}, {0x01BF, 0x00100010}, {0x0203, 0},
    {0x023F, 0x00030003}, {0x03BF, 0x00020002},
};
// Of a button: it cannot be moved or changed, has no lines, and is not printed.
constexpr ShapeProperty kButtonLook[] = {{0x007F, 0x01040104},
                                         {0x00BF, 0x00080008},
                                         {0x01BF, 0x00010000},
                                         {0x01FF, 0x00080000},
                                         {0x03BF, 0x000A0000}};

// How the kinds of shapes differ.
struct KindOfShape {
  std::uint32_t type;
  std::uint32_t object;
  std::uint32_t object_flags;  // locked, printed and more
};
constexpr KindOfShape kKinds[] = {{75, 0x08, 0x6011}, {202, 0x19, 0x4011}, {201, 0x14, 0x2101}};

const KindOfShape& kind_of(const NewShape& shape) {
  return kKinds[static_cast<std::size_t>(shape.kind)];
}

constexpr std::uint32_t kBehaviour = 0x03BF;

void put_shape_head(std::string& out, std::uint32_t type, std::uint32_t number,
                    std::uint32_t flags) {
  put_head(out, 2, type, PieceKind::kShapeHead, 8);
  package::put32(out, number);
  package::put32(out, flags);
}

// Its sides keep their ratio, and it has no lines.
void put_picture_look(std::string& out, const NewShape& shape) {
  std::vector<ShapeProperty> look = {{0x007F, 0x00800080}};
  std::string name;
  if (shape.picture != 0) look.push_back({kPictureNumber | kNamesPicture, shape.picture});
  if (!shape.link.empty()) {
    name = utf16_bytes(shape.link);
    name.append(2, '\0');
    const std::uint32_t flags = kNameIsFile | kLinked | (shape.has_bytes ? 0U : kNotStored);
    look.push_back(
        {kPictureName | kNamesPicture | kHasBytes, static_cast<std::uint32_t>(name.size())});
    look.push_back({kPictureFlags, flags});
  }
  look.push_back({0x01BF, 0x00100000});
  look.push_back({0x01FF, 0x00080000});
  look.push_back({kBehaviour, 0x00080000});
  put_properties(out, look, name);
}

void put_look(std::string& out, const NewShape& shape) {
  switch (shape.kind) {
    case Kind::kPicture:
      return put_picture_look(out, shape);
    case Kind::kNote:
      return put_properties(out, kNoteLook);
    case Kind::kFilterButton:
      return put_properties(out, kButtonLook);
  }
}

// Without the container's head.
void put_content(std::string& out, const NewShape& shape, const SheetContents& sheet) {
  constexpr std::uint32_t kHasAnchorAndType = 0xA00;
  put_shape_head(out, kind_of(shape).type, shape.number, kHasAnchorAndType);
  put_look(out, shape);
  put_head(out, 0, 0, PieceKind::kAnchor, kAnchorSize);
  put_anchor(out, shape.anchor, sheet);
  put_head(out, 0, 0, PieceKind::kObjectPlace, 0);
}

}  // namespace

void put_frame(std::string& out, std::uint32_t number) {
  constexpr std::size_t kFrameSize = 16;
  constexpr std::size_t kSize = kPieceHead + kFrameSize + kPieceHead + 8;
  constexpr std::uint32_t kIsFrame = 5;
  put_container(out, PieceKind::kShape, kSize);
  put_head(out, 1, 0, PieceKind::kFrame, kFrameSize);
  out.append(kFrameSize, '\0');
  put_shape_head(out, 0, number, kIsFrame);
}

void put_shape(std::string& out, const NewShape& shape, const SheetContents& sheet) {
  std::string content;
  put_content(content, shape, sheet);
  put_container(out, PieceKind::kShape, content.size() + size_behind_object(shape));
  out += content;
}

std::size_t size_behind_object(const NewShape& shape) {
  return shape.kind == Kind::kNote ? kPieceHead : 0;
}

void put_behind_object(std::string& out, const NewShape& shape) {
  if (shape.kind == Kind::kNote) put_head(out, 0, 0, PieceKind::kTextPlace, 0);
}

void write_object(RecordWriter& out, const NewShape& shape) {
  enum Part : std::uint32_t {
    kEnd = 0x00,
    kClipboard = 0x07,
    kPictureOptions = 0x08,
    kScrollBar = 0x0C,
    kNoteData = 0x0D,
    kList = 0x13,
    kCommon = 0x15,
  };
  out.begin(kObject);
  for (const std::uint32_t field : {std::uint32_t{kCommon}, 18U, kind_of(shape).object,
                                    shape.object, kind_of(shape).object_flags})
    out.put16(field);
  out.put_zeros(12);
  switch (shape.kind) {
    case Kind::kPicture:
      for (const std::uint32_t field :
           {std::uint32_t{kClipboard}, 2U, 0xFFFFU, std::uint32_t{kPictureOptions}, 2U, 1U})
        out.put16(field);
      break;
    case Kind::kNote:
      out.put16(kNoteData);
      out.put16(22);
      out.put_zeros(22);
      break;
    case Kind::kFilterButton:
      out.put16(kScrollBar);
      out.put16(20);
      out.put_zeros(8);
      for (const std::uint32_t field : {100U, 1U, 10U, 0U, 16U, 1U}) out.put16(field);
      // The list of a filter states no size of its own, and nothing ends it.
      for (const std::uint32_t field :
           {std::uint32_t{kList}, 0x1FEEU, 0U, 0U, 0U, 0x0301U, 0U, 2U, 8U, 0x57U, 0U, 0U})
        out.put16(field);
      out.end();
      return;
  }
  out.put16(kEnd);
  out.put16(0);
  out.end();
}

// The text follows in records that continue this one, and behind it where its look changes: from
// its beginning, and at its end.
void write_text(RecordWriter& out, const NewShape& shape) {
  constexpr std::uint32_t kUpperLeftLocked = 0x212;
  const Characters characters(shape.text);
  const bool empty = shape.text.empty();
  out.begin(kTextBox);
  out.put16(kUpperLeftLocked);
  out.put_zeros(8);
  out.put16(static_cast<std::uint32_t>(characters.count()));
  out.put16(empty ? 0 : 16);
  out.put32(0);
  out.end();
  if (empty) return;
  out.begin(kContinue);
  out.put_characters(characters);
  out.end();
  out.begin(kContinue);
  out.put_zeros(8);
  out.put16(static_cast<std::uint32_t>(characters.count()));
  out.put_zeros(6);
  out.end();
}

void write_note(RecordWriter& out, CellAddress cell, std::string_view author, std::uint32_t flags,
                std::uint32_t object) {
  // No author is a blank: a text without characters is none that may stand here.
  const Characters characters(author.empty() ? std::string_view(" ") : author);
  out.begin(kNote);
  out.put16(static_cast<std::uint32_t>(cell.row));
  out.put16(static_cast<std::uint32_t>(cell.column));
  out.put16(flags);
  out.put16(object);
  out.put_long_text(characters);
  out.put8(0);
  out.end();
}

Anchor note_anchor(const SheetContents& sheet, CellAddress cell, const Comment& note,
                   const Grid& grid) {
  constexpr int kInsetX = 15;
  constexpr int kInsetY = 10;
  constexpr int kInsetYInFirstRow = 2;
  constexpr int kUsualWidth = 129;
  constexpr int kUsualHeight = 75;
  const auto edge_at = [](const Corner& corner) {
    return AnchorEdge{corner.index, corner.offset * kEmuPerPixel};
  };
  const Corner left{std::min(cell.column + 1, grid.columns - 1), kInsetX};
  const Corner top{std::max(cell.row - 1, 0), cell.row == 0 ? kInsetYInFirstRow : kInsetY};
  Anchor made;
  made.anchoring = Anchoring::kStays;
  made.left = edge_at(left);
  made.top = edge_at(top);
  made.right =
      edge_at(walk_columns(sheet, left, note.width > 0 ? note.width : kUsualWidth, grid.columns));
  made.bottom =
      edge_at(walk_rows(sheet, top, note.height > 0 ? note.height : kUsualHeight, grid.rows));
  return made;
}

}  // namespace engine::xls
