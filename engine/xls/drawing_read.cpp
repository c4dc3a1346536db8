#include "engine/xls/drawing_read.h"

#include <algorithm>
#include <utility>

#include "engine/text/utf16.h"
#include "engine/xls/drawing_anchor.h"
#include "engine/xls/drawing_pieces.h"
#include "engine/xls/record_merge.h"

namespace engine::xls {

namespace {

using Kind = DrawnShape::Kind;

enum ObjectKind : std::uint32_t { kPictureObject = 0x08, kListObject = 0x14, kNoteObject = 0x19 };
enum ShapeType : std::uint32_t { kPictureFrame = 75 };
constexpr std::uint32_t kIsForeign = 0x10;  // a flag of a shape: another program's object

std::uint64_t end_of(const RecordReader& reader) {
  return reader.offset() + kRecordHead + reader.data().size();
}

// Whether some bytes begin with a piece that may stand behind an object.
bool goes_on(std::string_view bytes) {
  if (bytes.size() < kPieceHead) return false;
  const PieceKind kind = piece_of(bytes, 0).kind;
  return kind == PieceKind::kShapes || kind == PieceKind::kShape || kind == PieceKind::kTextPlace ||
         static_cast<std::uint32_t>(kind) == 0xF005;
}

// Characters in records that continue one, each of which tells first whether they are wide.
void take_characters(RecordReader& reader, std::size_t count, std::string& utf16) {
  while (count > 0 && reader.next_part()) {
    Fields in(reader.data());
    const std::size_t width = (in.take8() & 1) != 0 ? 2 : 1;
    const std::string_view bytes = in.take(std::min(count, in.rest().size() / width) * width);
    if (width == 2) utf16 += bytes;
    else
      for (const char c : bytes) utf16.append({c, '\0'});
    count -= bytes.size() / width;
  }
}

// The properties of a shape that make it a picture.
struct PictureLook {
  std::uint32_t stored = 0;
  std::uint32_t flags = 0;
  std::string name;
};

PictureLook look_of(const Piece& properties) {
  PictureLook look;
  Fields in(properties.content);
  Fields behind(properties.content);
  behind.skip(properties.instance * kPropertySize);
  for (std::uint32_t i = 0; i < properties.instance; ++i) {
    const std::uint32_t number = in.take16();
    const std::uint32_t value = in.take32();
    if (!in.ok() || !behind.ok()) return look;
    const std::string_view bytes =
        (number & kHasBytes) != 0 ? behind.take(value) : std::string_view();
    switch (number & kPropertyNumber) {
      case kPictureNumber:
        if ((number & kHasBytes) == 0 && (number & kNamesPicture) != 0) look.stored = value;
        break;
      case kPictureName:
        look.name.clear();
        append_utf16(look.name, bytes.substr(0, bytes.size() / 2 * 2));
        look.name.resize(std::min(look.name.find('\0'), look.name.size()));
        break;
      case kPictureFlags:
        look.flags = value;
        break;
      default:
        break;
    }
  }
  return look;
}

}  // namespace

// Records that follow one another stand at one place.
void DrawingReader::attach(std::uint64_t begin, std::uint64_t end) {
  const auto at = static_cast<std::uint32_t>(part_.bytes.size());
  end_ = end;
  auto& records = part_.records;
  if (!records.empty() && records.back().at == at && records.back().end == begin)
    records.back().end = static_cast<std::uint32_t>(end);
  else records.push_back({at, static_cast<std::uint32_t>(begin), static_cast<std::uint32_t>(end)});
}

void DrawingReader::take_drawing(RecordReader& reader) {
  do {
    part_.bytes += reader.data();
    end_ = end_of(reader);
  } while (reader.next_part());
}

// An object is parts, each behind its kind and size; the first one tells the most.
void DrawingReader::take_object(RecordReader& reader) {
  constexpr std::uint32_t kCommon = 0x15;
  constexpr std::uint32_t kFormulaOfPicture = 0x09;
  constexpr std::uint32_t kList = 0x13;
  constexpr std::uint32_t kFilterList = 3;
  attach(reader.offset(), end_of(reader));
  Fields in(reader.data());
  Object made;
  made.at = static_cast<std::uint32_t>(part_.bytes.size());
  for (std::uint32_t kind = in.take16(); in.ok() && kind != 0; kind = in.take16()) {
    const std::size_t size = in.take16();
    if (kind == kCommon) {
      Fields common(in.take(size));
      made.kind = common.take16();
      made.number = common.take16();
    } else if (kind == kList) {  // its size is none
      in.skip(in.take16());
      in.skip(5);
      made.is_filter_button = in.take8() == kFilterList && in.ok();
      break;
    } else {
      made.is_foreign = made.is_foreign || kind == kFormulaOfPicture;
      in.skip(size);
    }
  }
  part_.highest_object = std::max(part_.highest_object, made.number);
  objects_.push_back(made);
}

// The text of a box stands in the records that continue it, behind them what it looks like.
void DrawingReader::take_text(RecordReader& reader) {
  constexpr std::size_t kSize = 18;
  const std::uint64_t begin = reader.offset();
  Fields in(reader.data());
  in.skip(10);
  const std::size_t length = in.take16();
  std::size_t look = in.take16();
  const bool is_whole = in.ok() && reader.data().size() >= kSize;
  std::string utf16;
  if (is_whole) take_characters(reader, length, utf16);
  while (is_whole && length != 0 && look > 0 && reader.next_part())
    look -= std::min(look, reader.data().size());
  const std::uint64_t end = end_of(reader);
  if (!objects_.empty() && objects_.back().kind == kNoteObject) {
    std::string& text = texts_[objects_.back().number];
    text.clear();
    append_utf16(text, utf16);
  }
  attach(begin, end);
}

void DrawingReader::take_substream(RecordReader& reader) {
  const std::uint64_t begin = reader.offset();
  pass_substream(reader, [] {});
  if (part_.exists()) attach(begin, end_of(reader));
}

void DrawingReader::take_continued(RecordReader& reader) {
  if (reader.offset() != end_ || part_.bytes.empty()) return;
  if (goes_on(reader.data())) take_drawing(reader);
  else attach(reader.offset(), end_of(reader));
}

void DrawingReader::take_note(Fields& in, const Grid& grid) {
  Note made;
  made.cell.row = in.take16();
  made.cell.column = in.take16();
  made.flags = in.take16();
  made.object = in.take16();
  if (!in.ok() || !grid.holds(made.cell.row, made.cell.column)) return;
  made.author = in.take_long_text();
  if (!in.ok()) made.author.clear();
  notes_.push_back(std::move(made));
}

void DrawingReader::finish(SheetContents& sheet, const Grid& grid) {
  part_.has_filter = sheet.filter.range.has_value();
  if (part_.exists()) {
    read_tree();
    if (part_.damage.empty()) {
      Pieces shapes(part_.bytes, part_.shapes_begin, part_.shapes_end);
      for (Piece piece; shapes.next(piece);) look_at_shape(piece, sheet, grid);
    }
  }
  read_notes(sheet);
}

// Finds the parts of the tree, and the numbers of all shapes.
void DrawingReader::read_tree() {
  const std::string_view bytes = part_.bytes;
  const auto place = [](std::size_t at) { return static_cast<std::uint32_t>(at); };
  Piece drawing;
  if (!Pieces(bytes, 0, bytes.size()).next(drawing) || drawing.kind != PieceKind::kDrawing)
    return fail("the drawing is none");
  Pieces parts(bytes, drawing);
  for (Piece piece; parts.next(piece);) {
    if (piece.kind == PieceKind::kDrawingHead && piece.size >= 8) {
      part_.drawing = piece.instance;
      part_.head_at = place(piece.content_at());
    } else if (piece.kind == PieceKind::kShapes && part_.shapes_at == 0) {
      part_.shapes_at = place(piece.at);
      part_.shapes_end = place(piece.end());
      Pieces shapes(bytes, piece);
      Piece frame;
      if (!shapes.next(frame) || frame.kind != PieceKind::kShape)
        return fail("the drawing has no frame");
      part_.shapes_begin = place(frame.end());
      Piece shape;
      while (shapes.next(shape)) continue;
      if (!shapes.at_end()) return fail("a shape of the drawing is cut");
    }
  }
  if (!parts.at_end() || part_.head_at == 0 || part_.shapes_at == 0)
    return fail("the drawing is incomplete");
  // Containers are entered, so this sees the shapes of all groups.
  for (std::size_t at = drawing.content_at(); drawing.end() - at >= kPieceHead;) {
    const Piece piece = piece_of(bytes.substr(at), at);
    if (piece.end() > drawing.end()) break;
    at = piece.is_container() ? piece.content_at() : piece.end();
    if (piece.kind != PieceKind::kShapeHead || piece.size < 8) continue;
    const std::uint32_t number = package::get32(bytes, piece.content_at());
    std::uint32_t& highest = part_.clusters[number / kShapesInCluster];
    highest = std::max(highest, number % kShapesInCluster);
  }
}

// The first one that stands behind bytes of a shape.
const DrawingReader::Object* DrawingReader::object_of(const DrawnShape& shape) const {
  const auto found = std::ranges::upper_bound(objects_, shape.begin, {}, &Object::at);
  return found != objects_.end() && found->at <= shape.end ? &*found : nullptr;
}

void DrawingReader::look_at_shape(const Piece& piece, const SheetContents& sheet,
                                  const Grid& grid) {
  const std::string_view bytes = part_.bytes;
  DrawnShape made;
  made.begin = static_cast<std::uint32_t>(piece.at);
  made.end = static_cast<std::uint32_t>(piece.end());
  for (std::size_t at = piece.at; made.end - at >= kPieceHead;) {
    const Piece inner = piece_of(bytes.substr(at), at);
    if (inner.end() > made.end) break;
    at = inner.is_container() ? inner.content_at() : inner.end();
    if (inner.kind == PieceKind::kShapeHead) ++made.count;
  }
  // What a group says of itself stands in its first shape.
  Piece own = piece;
  if (piece.kind == PieceKind::kShapes && !Pieces(bytes, piece).next(own)) return;
  std::uint32_t type = 0;
  std::uint32_t flags = 0;
  PictureLook look;
  Pieces parts(bytes, own);
  for (Piece part; parts.next(part);) {
    if (part.kind == PieceKind::kShapeHead && part.size >= 8) {
      type = part.instance;
      flags = package::get32(part.content, 4);
    } else if (part.kind == PieceKind::kProperties) {
      look = look_of(part);
    } else if (part.kind == PieceKind::kAnchor && part.size >= kAnchorSize) {
      made.anchor_at = static_cast<std::uint32_t>(part.content_at());
      made.as_read = made.now = read_anchor(part.content, sheet, grid);
    }
  }
  if (const Object* object = object_of(made)) {
    made.object = object->number;
    const bool is_plain = piece.kind == PieceKind::kShape && made.anchor_at != 0;
    const bool is_linked = (look.flags & kLinked) != 0 && !look.name.empty();
    if (object->kind == kListObject && object->is_filter_button && is_plain) {
      made.kind = Kind::kFilterButton;
    } else if (object->kind == kPictureObject && !object->is_foreign && type == kPictureFrame &&
               (flags & kIsForeign) == 0 && is_plain && (look.stored != 0 || is_linked)) {
      made.kind = Kind::kPicture;
      part_.pictures.push_back(
          {part_.shapes.size(), look.stored, is_linked ? std::move(look.name) : std::string()});
    }
  }
  part_.shapes.push_back(made);
}

void DrawingReader::read_notes(SheetContents& sheet) {
  std::map<std::uint32_t, std::size_t> boxes;
  for (std::size_t i = 0; i < part_.shapes.size(); ++i)
    if (const Object* object = object_of(part_.shapes[i]); object && object->kind == kNoteObject)
      boxes.emplace(object->number, i);
  for (Note& note : notes_) {
    Comment made;
    if (const auto text = texts_.find(note.object); text != texts_.end()) made.text = text->second;
    made.author = std::move(note.author);
    if (const auto box = boxes.extract(note.object); !box.empty()) {
      part_.shapes[box.mapped()].kind = Kind::kNote;
      part_.notes.insert_or_assign(note.cell, DrawnNote{box.mapped(), note.flags, note.cell, made});
    }
    sheet.comments.insert_or_assign(note.cell, std::move(made));
  }
}

void place_pictures(DrawingPart& part, const DrawingGroup& group, LoadedPictures& loaded,
                    std::vector<Picture>& pictures, SheetContents& sheet) {
  if (part.pictures.empty()) return;
  loaded.enter(group, pictures);
  const auto& stored = group.pictures();
  for (DrawnPicture& one : part.pictures) {
    DrawnShape& shape = part.shapes[one.shape];
    const bool has_bytes =
        one.stored != 0 && one.stored <= stored.size() && stored[one.stored - 1].blip_size != 0;
    if (one.stored > stored.size()) one.stored = 0;
    if (!has_bytes && one.link.empty()) {
      shape.kind = Kind::kCarried;
      continue;
    }
    sheet.pictures.push_back({loaded.place_of(one.stored, one.link, pictures), shape.now,
                              static_cast<std::uint32_t>(one.shape + 1)});
  }
}

}  // namespace engine::xls
