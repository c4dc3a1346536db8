#include "engine/xls/notes_write.h"

#include <algorithm>
#include <array>
#include <string>

#include "engine/package/little_endian.h"
#include "engine/package/output.h"
#include "engine/workbook/metrics.h"

namespace engine::xls {

namespace {

using package::put16;
using package::put32;

constexpr std::uint32_t kShapesInCluster = 1024;
constexpr std::uint32_t kMaxObjects = 0xFFFF;  // of a sheet

enum Container : std::uint32_t {
  kBookDrawings = 0xF000,
  kDrawingContainer = 0xF002,
  kShapeGroup = 0xF003,
  kShapeContainer = 0xF004,
};
enum Atom : std::uint32_t {
  kDrawingList = 0xF006,
  kDrawingHead = 0xF008,
  kGroupFrame = 0xF009,
  kShape = 0xF00A,
  kProperties = 0xF00B,
  kTextPlace = 0xF00D,
  kAnchor = 0xF010,
  kObjectPlace = 0xF011,
  kMenuColors = 0xF11E,
};

constexpr std::size_t kHead = 8;  // of a container or atom

// The head of a piece of a drawing; containers are of version 15.
void put_head(std::string& out, std::uint32_t version, std::uint32_t instance, std::uint32_t kind,
              std::size_t size) {
  put16(out, version | instance << 4);
  put16(out, kind);
  put32(out, size);
}
void put_container(std::string& out, Container kind, std::size_t size) {
  put_head(out, 15, 0, kind, size);
}

struct Property {
  std::uint32_t number;
  std::uint32_t value;
};
void put_properties(std::string& out, std::span<const Property> properties) {
  put_head(out, 3, static_cast<std::uint32_t>(properties.size()), kProperties,
           6 * properties.size());
  for (const auto& [number, value] : properties) {
    put16(out, number);
    put32(out, value);
  }
}

// The look of a box: the colour of tool tips, a shadow, hidden until pointed at.
constexpr Property kBoxProperties[] = {
    {0x0080, 0},          {0x008B, 2},          {0x00BF, 0x00080008}, {0x0158, 0},
    {0x0181, 0x08000050}, {0x0183, 0x08000050}, {0x01BF, 0x00100010}, {0x0203, 0},
    {0x023F, 0x00030003}, {0x03BF, 0x00020002},
};

constexpr std::size_t kAnchorSize = 18;
constexpr std::size_t kBoxSize = kHead + 8 + kHead + 6 * std::size(kBoxProperties) + kHead +
                                 kAnchorSize + kHead + kHead;  // without the container's head

// Where boxes stand beside their cells: one column to the right, one row up, a little inside.
class Boxes {
 public:
  Boxes(const SheetContents& sheet, const Grid& grid)
      : sheet_(sheet),
        grid_(grid),
        columns_(Edges::of_columns(sheet, grid.columns)),
        rows_(Edges::of_rows(sheet, grid.rows)) {}

  void put_anchor(std::string& out, CellAddress cell, const Comment& note) const {
    constexpr int kInsetX = 15;
    constexpr int kInsetY = 10;
    constexpr int kInsetYInFirstRow = 2;
    constexpr int kUsualWidth = 129;
    constexpr int kUsualHeight = 75;
    constexpr std::uint32_t kStaysInPlace = 3;
    const Corner left{std::min(cell.column + 1, grid_.columns - 1), kInsetX};
    const Corner top{std::max(cell.row - 1, 0), cell.row == 0 ? kInsetYInFirstRow : kInsetY};
    const Corner right = columns_.walk(left, note.width > 0 ? note.width : kUsualWidth);
    const Corner bottom = rows_.walk(top, note.height > 0 ? note.height : kUsualHeight);
    put_head(out, 0, 0, kAnchor, kAnchorSize);
    put16(out, kStaysInPlace);
    put_column(out, left);
    put_row(out, top);
    put_column(out, right);
    put_row(out, bottom);
  }

 private:
  // Places inside a cell are in parts of its width or height.
  void put_column(std::string& out, const Corner& corner) const {
    put_place(out, corner, column_pixels(sheet_, corner.index), 1024);
  }
  void put_row(std::string& out, const Corner& corner) const {
    put_place(out, corner, row_pixels(sheet_, corner.index), 256);
  }
  static void put_place(std::string& out, const Corner& corner, int pixels, int parts) {
    put16(out, static_cast<std::uint64_t>(corner.index));
    const int part = pixels == 0 ? 0 : (corner.offset * parts + pixels / 2) / pixels;
    put16(out, static_cast<std::uint64_t>(std::clamp(part, 0, parts - 1)));
  }

  const SheetContents& sheet_;
  const Grid& grid_;
  Edges columns_;
  Edges rows_;
};

void write_drawing(RecordWriter& out, std::string_view bytes) {
  out.begin(kDrawing);
  out.put(bytes);
  out.end();
}

void write_object(RecordWriter& out, std::uint32_t number) {
  constexpr std::uint32_t kNoteObject = 0x19;
  constexpr std::uint32_t kLockedAndPrinted = 0x4011;
  enum Part : std::uint32_t { kEnd = 0x00, kNoteData = 0x0D, kCommon = 0x15 };
  out.begin(kObject);
  for (const std::uint32_t field :
       {std::uint32_t{kCommon}, 18U, kNoteObject, number, kLockedAndPrinted})
    out.put16(field);
  out.put_zeros(12);
  out.put16(kNoteData);
  out.put16(22);
  out.put_zeros(22);
  out.put16(kEnd);
  out.put16(0);
  out.end();
}

// The text follows in records that continue this one, and behind it where its look changes: from
// its beginning, and at its end.
void write_box_text(RecordWriter& out, std::string_view text) {
  constexpr std::uint32_t kUpperLeftLocked = 0x212;
  const Characters characters(text);
  const bool empty = text.empty();
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

void write_note(RecordWriter& out, CellAddress cell, const Comment& note, std::uint32_t number) {
  // No author is a blank: a text without characters is none that may stand here.
  const Characters author(note.author.empty() ? std::string_view(" ") : note.author);
  out.begin(kNote);
  out.put16(static_cast<std::uint32_t>(cell.row));
  out.put16(static_cast<std::uint32_t>(cell.column));
  out.put16(0);
  out.put16(number);
  out.put_long_text(author);
  out.put8(0);
  out.end();
}

}  // namespace

std::uint32_t Drawings::take_shape(std::uint32_t drawing) {
  const bool fits = !clusters_.empty() && clusters_.back().drawing == drawing &&
                    clusters_.back().shapes < kShapesInCluster;
  if (!fits) clusters_.push_back({drawing, 0});
  ++shapes_;
  return static_cast<std::uint32_t>(clusters_.size()) * kShapesInCluster +
         clusters_.back().shapes++;
}

void Drawings::write_notes(RecordWriter& out, const Sheet& sheet) {
  const SheetContents& contents = sheet.contents();
  const Comments& comments = contents.comments;
  if (comments.empty()) return;
  if (comments.size() > kMaxObjects) throw package::LimitError("comments", kMaxObjects);
  const std::uint32_t drawing = ++drawings_;
  constexpr std::uint32_t kGroup = 5;
  constexpr std::uint32_t kBox = 0xA00;
  constexpr std::uint32_t kTextBoxShape = 202;
  constexpr std::size_t kGroupSize = kHead + 16 + kHead + 8;
  const std::size_t boxes = comments.size() * (kHead + kBoxSize);
  const std::size_t group = kHead + kGroupSize + boxes;
  std::string bytes;
  const auto put_shape = [&](std::uint32_t instance, std::uint32_t shape, std::uint32_t flags) {
    put_head(bytes, 2, instance, kShape, 8);
    put32(bytes, shape);
    put32(bytes, flags);
  };
  const std::uint32_t first = take_shape(drawing);
  std::vector<std::uint32_t> shapes;
  for (std::size_t i = 0; i < comments.size(); ++i) shapes.push_back(take_shape(drawing));
  put_container(bytes, kDrawingContainer, kHead + 8 + kHead + group);
  put_head(bytes, 0, drawing, kDrawingHead, 8);
  put32(bytes, comments.size() + 1);
  put32(bytes, shapes.back());
  put_container(bytes, kShapeGroup, group);
  put_container(bytes, kShapeContainer, kGroupSize);
  put_head(bytes, 1, 0, kGroupFrame, 16);
  bytes.append(16, '\0');
  put_shape(0, first, kGroup);
  const Boxes places(contents, grid_);
  std::uint32_t number = 0;
  for (const auto& [cell, note] : comments) {
    put_container(bytes, kShapeContainer, kBoxSize);
    put_shape(kTextBoxShape, shapes[number], kBox);
    put_properties(bytes, kBoxProperties);
    places.put_anchor(bytes, cell, note);
    put_head(bytes, 0, 0, kObjectPlace, 0);
    write_drawing(out, bytes);
    write_object(out, ++number);
    bytes.clear();
    put_head(bytes, 0, 0, kTextPlace, 0);
    write_drawing(out, bytes);
    bytes.clear();
    write_box_text(out, note.text);
  }
  number = 0;
  for (const auto& [cell, note] : comments) write_note(out, cell, note, ++number);
}

void Drawings::write_list(RecordWriter& out) const {
  if (drawings_ == 0) return;
  constexpr Property kUsual[] = {{0x00BF, 0x00080008}, {0x0181, 0x08000041}, {0x01C0, 0x08000040}};
  constexpr std::uint32_t kColors[] = {0x0800000D, 0x0800000C, 0x08000017, 0x100000F7};
  std::string list;
  put32(list, clusters_.size() * kShapesInCluster + clusters_.back().shapes);
  put32(list, clusters_.size() + 1);
  put32(list, shapes_);
  put32(list, drawings_);
  for (const auto& [drawing, shapes] : clusters_) {
    put32(list, drawing);
    put32(list, shapes);
  }
  std::string content;
  put_head(content, 0, 0, kDrawingList, list.size());
  content += list;
  put_properties(content, kUsual);
  put_head(content, 0, 4, kMenuColors, 16);
  for (const std::uint32_t color : kColors) put32(content, color);
  std::string bytes;
  put_container(bytes, kBookDrawings, content.size());
  bytes += content;
  out.begin(kDrawingGroup);
  out.put(bytes);
  out.end();
}

}  // namespace engine::xls
