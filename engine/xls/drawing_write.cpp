#include "engine/xls/drawing_write.h"

#include <algorithm>
#include <set>
#include <utility>

#include "engine/package/file_error.h"
#include "engine/package/output.h"
#include "engine/xls/drawing_anchor.h"
#include "engine/xls/drawing_pieces.h"
#include "engine/xls/drawing_shapes.h"

namespace engine::xls {

namespace {

using ShapeKind = DrawnShape::Kind;

constexpr std::uint32_t kMaxObjects = 0xFFFF;  // of a sheet
constexpr std::uint32_t kMaxDrawings = 0xFFE;  // as their number stands in the instance of a piece
constexpr std::size_t kEntrySize = 36;
constexpr std::size_t kUsesAt = 24;  // in an entry

// The bytes of a drawing, which become a record wherever one of another kind is to follow.
class DrawingRecords {
 public:
  explicit DrawingRecords(RecordWriter& out) : out_(out) {}

  std::string& bytes() { return bytes_; }
  void flush() {
    if (bytes_.empty()) return;
    out_.begin(kDrawing);
    out_.put(bytes_);
    out_.end();
    bytes_.clear();
  }

 private:
  RecordWriter& out_;
  std::string bytes_;
};

bool is_as_read(const Comment& comment, const Comment& read) {
  return comment.text == read.text && comment.author == read.author && comment.width == 0 &&
         comment.height == 0;
}

}  // namespace

// What becomes of the drawing of one sheet.
class SheetDrawing {
 public:
  SheetDrawing(const Drawings& drawings, const Sheet& sheet, const DrawingPart& part)
      : grid_(drawings.book_.limits.grid),
        sheet_(sheet),
        contents_(sheet.contents()),
        part_(part),
        stays_(part.shapes.size(), false) {
    sort_carried();
    sort_pictures(drawings);
    sort_notes();
    sort_buttons();
  }

  bool differs() const {
    if (!new_.empty() || note_moved_) return true;
    for (std::size_t i = 0; i < stays_.size(); ++i)
      if (!stays_[i] || anchors_[i] != part_.shapes[i].as_read) return true;
    return false;
  }

  void write(Drawings& drawings, RecordWriter& out, const CarryRecords& carry) {
    if (!part_.exists() && new_.empty()) return;
    if (!part_.damage.empty() || drawings.group_.is_damaged()) refuse();
    number_shapes(drawings);
    DrawingRecords records(out);
    put_head_of(records.bytes());
    auto next = part_.records.begin();
    const auto put_records = [&](std::uint32_t end, bool kept) {
      for (; next != part_.records.end() && next->at <= end; ++next) {
        if (!kept) continue;
        copy_bytes(records.bytes(), next->at);
        records.flush();
        carry(next->begin, next->end);
      }
      if (kept) copy_bytes(records.bytes(), end);
    };
    if (part_.exists()) {
      bytes_ = part_.bytes;
      copied_ = part_.shapes_begin;
      put_records(part_.shapes_begin, true);
    }
    for (std::size_t i = 0; i < part_.shapes.size(); ++i) {
      const DrawnShape& shape = part_.shapes[i];
      copied_ = shape.begin;
      if (stays_[i] && shape.anchor_at != 0)
        change_anchor(bytes_, shape.anchor_at, shape.as_read, anchors_[i], contents_);
      put_records(shape.end, stays_[i]);
    }
    for (const Made& made : new_) {
      records.bytes() += made.bytes;
      records.flush();
      write_object(out, made.shape);
      if (made.shape.kind != NewShape::Kind::kNote) continue;
      put_behind_object(records.bytes(), made.shape);
      records.flush();
      write_text(out, made.shape);
    }
    copied_ = part_.shapes_end;
    put_records(static_cast<std::uint32_t>(part_.bytes.size()), true);
    records.flush();
    write_notes(out);
  }

 private:
  struct Made {
    NewShape shape;
    std::string bytes;
  };

  // Takes over what no list of the model holds.
  void sort_carried() {
    for (std::size_t i = 0; i < stays_.size(); ++i) {
      stays_[i] = part_.shapes[i].kind == ShapeKind::kCarried && !part_.shapes[i].gone;
      anchors_.push_back(part_.shapes[i].now);
    }
  }

  void sort_pictures(const Drawings& drawings) {
    for (const PlacedPicture& placed : contents_.pictures) {
      const std::size_t i = placed.number - std::size_t{1};
      if (placed.number != 0 && i < stays_.size() && !stays_[i] &&
          part_.shapes[i].kind == ShapeKind::kPicture) {
        stays_[i] = true;
        anchors_[i] = placed.anchor;
        continue;
      }
      const Picture& picture = drawings.book_.pictures[placed.picture];
      NewShape shape;
      shape.kind = NewShape::Kind::kPicture;
      shape.anchor = at_two_cells(placed.anchor, contents_, grid_);
      shape.picture = drawings.stored_[placed.picture];
      shape.link = picture.link;
      shape.has_bytes = picture.bytes || picture.in_file;
      new_.push_back({std::move(shape), {}});
    }
  }

  void sort_notes() {
    for (const auto& [cell, comment] : contents_.comments) {
      const auto known = part_.notes.find(cell);
      if (known != part_.notes.end() && is_as_read(comment, known->second.comment)) {
        stays_[known->second.shape] = true;
        note_moved_ = note_moved_ || known->second.at != cell;
        continue;
      }
      NewShape shape;
      shape.kind = NewShape::Kind::kNote;
      shape.anchor = note_anchor(contents_, cell, comment, grid_);
      shape.text = comment.text;
      new_notes_.emplace(cell, new_.size());
      new_.push_back({std::move(shape), {}});
    }
  }

  // Each cell of a filter's header has a button.
  void sort_buttons() {
    const auto& range = contents_.filter.range;
    std::set<int> columns;
    for (std::size_t i = 0; i < stays_.size(); ++i) {
      const DrawnShape& shape = part_.shapes[i];
      if (shape.kind != ShapeKind::kFilterButton || shape.gone) continue;
      const int column = shape.now.left.index;
      const bool is_on_filter = range && shape.now.top.index == range->row_first &&
                                column >= range->column_first && column <= range->column_last;
      stays_[i] = is_on_filter ? columns.insert(column).second : !range && !part_.has_filter;
    }
    if (!range) return;
    for (int column = range->column_first; column <= range->column_last; ++column) {
      if (columns.contains(column)) continue;
      NewShape shape;
      shape.kind = NewShape::Kind::kFilterButton;
      shape.anchor.anchoring = Anchoring::kStays;
      shape.anchor.left.index = column;
      shape.anchor.right.index = std::min(column + 1, grid_.columns - 1);
      shape.anchor.top.index = range->row_first;
      shape.anchor.bottom.index = std::min(range->row_first + 1, grid_.rows - 1);
      new_.push_back({std::move(shape), {}});
    }
  }

  [[noreturn]] void refuse() const {
    throw package::FileTargetError(
        "cannot be written: sheet \"" + sheet_.name() + "\", " +
        (part_.damage.empty() ? "what all drawings share is damaged" : part_.damage));
  }

  void number_shapes(Drawings& drawings) {
    drawing_ = part_.exists() ? part_.drawing : drawings.take_drawing();
    if (!part_.exists()) frame_ = drawings.take_shape(drawing_, {});
    else if (!drawings.group_.exists()) drawings.enter_drawing(part_);
    if (part_.highest_object + new_.size() > kMaxObjects)
      throw package::LimitError("drawing objects", kMaxObjects);
    std::uint32_t object = part_.highest_object;
    for (auto& [shape, bytes] : new_) {
      shape.number = drawings.take_shape(drawing_, part_.clusters);
      shape.object = ++object;
      put_shape(bytes, shape, contents_);
      added_ += bytes.size() + size_behind_object(shape);
      if (shape.kind == NewShape::Kind::kPicture) drawings.use(shape.picture, 1);
    }
    for (std::size_t i = 0; i < stays_.size(); ++i) {
      if (stays_[i]) continue;
      removed_ += part_.shapes[i].end - part_.shapes[i].begin;
      removed_count_ += part_.shapes[i].count;
    }
    for (const DrawnPicture& picture : part_.pictures)
      if (!stays_[picture.shape]) drawings.use(picture.stored, -1);
    drawings.count_shapes(static_cast<std::int64_t>(new_.size() + (part_.exists() ? 0 : 1)) -
                          removed_count_);
  }

  // All up to the first shape. Containers have the size of all that is in them.
  void put_head_of(std::string& out) const {
    const std::uint32_t last = new_.empty() ? frame_ : new_.back().shape.number;
    if (part_.exists()) {
      std::string head = part_.bytes.substr(0, part_.shapes_begin);
      const auto change = [&](std::size_t at, std::int64_t by) {
        put32(&head[at], static_cast<std::uint32_t>(package::get32(head, at) + by));
      };
      const std::int64_t growth =
          static_cast<std::int64_t>(added_) - static_cast<std::int64_t>(removed_);
      change(4, growth);
      change(part_.shapes_at + std::size_t{4}, growth);
      change(part_.head_at, static_cast<std::int64_t>(new_.size()) - removed_count_);
      if (!new_.empty()) put32(&head[part_.head_at + std::size_t{4}], last);
      out += head;
      return;
    }
    std::string frame;
    put_frame(frame, frame_);
    const std::size_t shapes = frame.size() + added_;
    put_container(out, PieceKind::kDrawing, kPieceHead + 8 + kPieceHead + shapes);
    put_head(out, 0, drawing_, PieceKind::kDrawingHead, 8);
    package::put32(out, new_.size() + 1);
    package::put32(out, last);
    put_container(out, PieceKind::kShapes, shapes);
    out += frame;
  }

  // Appends the file's bytes from where copying has come to.
  void copy_bytes(std::string& to, std::uint32_t end) {
    if (end <= copied_) return;
    to.append(bytes_, copied_, end - copied_);
    copied_ = end;
  }

  void write_notes(RecordWriter& out) const {
    for (const auto& [cell, comment] : contents_.comments) {
      if (const auto made = new_notes_.find(cell); made != new_notes_.end()) {
        write_note(out, cell, comment.author, 0, new_[made->second].shape.object);
      } else {
        const DrawnNote& known = part_.notes.at(cell);
        write_note(out, cell, comment.author, known.flags, part_.shapes[known.shape].object);
      }
    }
  }

  const Grid& grid_;
  const Sheet& sheet_;
  const SheetContents& contents_;
  const DrawingPart& part_;
  std::vector<bool> stays_;      // of the part's shapes
  std::vector<Anchor> anchors_;  // of those, now
  std::vector<Made> new_;
  std::map<CellAddress, std::size_t> new_notes_;  // among them
  bool note_moved_ = false;

  std::uint32_t drawing_ = 0;
  std::uint32_t frame_ = 0;
  std::size_t added_ = 0;  // bytes
  std::size_t removed_ = 0;
  std::int64_t removed_count_ = 0;
  std::string bytes_;  // of the part, with the anchors as they are now
  std::uint32_t copied_ = 0;
};

Drawings::Drawings(const Workbook& book, const DrawingGroup& group, const LoadedPictures& loaded)
    : book_(book),
      group_(group),
      loaded_(loaded),
      clusters_(group.clusters()),
      drawings_(group.drawings() - std::min(group.drawings(), group.gone().drawings)),
      shapes_(group.shapes() - std::min(group.shapes(), group.gone().shapes)),
      highest_shape_(group.highest_shape()) {
  last_drawing_ = group.drawings();
  for (const ShapeCluster& one : clusters_) last_drawing_ = std::max(last_drawing_, one.drawing);
  add_pictures();
  changed_ = changed_ || group.gone().drawings != 0;
  for (const std::uint32_t picture : group.gone().pictures) use(picture, -1);
}

// Pictures of equal bytes are stored once.
void Drawings::add_pictures() {
  const auto first = static_cast<std::uint32_t>(group_.pictures().size());
  std::map<std::string, std::uint32_t> known;
  for (std::size_t i = 0; i < book_.pictures.size(); ++i) {
    const Picture& picture = book_.pictures[i];
    std::uint32_t number = loaded_.stored_at(i);
    if (number == 0 && picture.bytes && picture.header) {
      std::uint32_t& place = known[picture_digest(*picture.bytes)];
      if (place == 0) {
        added_.push_back({make_blip(picture.header->kind, *picture.bytes), 0});
        place = first + static_cast<std::uint32_t>(added_.size());
      }
      number = place;
    }
    stored_.push_back(number);
  }
  changed_ = !added_.empty();
}

bool Drawings::differs(const Sheet& sheet, const DrawingPart& part) const {
  return SheetDrawing(*this, sheet, part).differs();
}

void Drawings::write_sheet(RecordWriter& out, const Sheet& sheet, const DrawingPart& part,
                           const CarryRecords& carry) {
  SheetDrawing(*this, sheet, part).write(*this, out, carry);
}

std::uint32_t Drawings::take_drawing() {
  if (last_drawing_ >= kMaxDrawings) throw package::LimitError("drawings", kMaxDrawings);
  ++drawings_;
  changed_ = true;
  return ++last_drawing_;
}

void Drawings::enter_drawing(const DrawingPart& part) {
  ++drawings_;
  last_drawing_ = std::max(last_drawing_, part.drawing);
  count_shapes(package::get32(part.bytes, part.head_at));
}

std::uint32_t Drawings::take_shape(std::uint32_t drawing,
                                   const std::map<std::uint32_t, std::uint32_t>& used) {
  const auto has_room = [&](ShapeCluster& one) {
    if (one.drawing != drawing) return false;
    const auto number = static_cast<std::uint32_t>(&one - clusters_.data()) + 1;
    if (const auto known = used.find(number); known != used.end())
      one.shapes = std::max(one.shapes, known->second + 1);
    return one.shapes < kShapesInCluster;
  };
  // The last one is where the shape before this one came from.
  auto found = clusters_.end();
  if (!clusters_.empty() && has_room(clusters_.back())) found = clusters_.end() - 1;
  else if (!used.empty()) found = std::ranges::find_if(clusters_, has_room);
  if (found == clusters_.end()) {
    do clusters_.push_back({drawing, 0});
    while (!has_room(clusters_.back()));
    found = clusters_.end() - 1;
  }
  changed_ = true;
  const auto cluster = static_cast<std::uint32_t>(found - clusters_.begin()) + 1;
  const std::uint32_t number = cluster * kShapesInCluster + found->shapes++;
  highest_shape_ = std::max(highest_shape_, number + 1);
  return number;
}

void Drawings::count_shapes(std::int64_t by) {
  shapes_ = static_cast<std::uint32_t>(std::max<std::int64_t>(shapes_ + by, 0));
  changed_ = changed_ || by != 0;
}

void Drawings::use(std::uint32_t stored, int by) {
  if (stored == 0) return;
  changed_ = true;
  const std::size_t first = group_.pictures().size();
  if (stored > first) added_[stored - first - 1].uses += static_cast<std::uint32_t>(by);
  else uses_[stored] += by;
}

std::string Drawings::list_bytes() const {
  std::string content;
  package::put32(content, highest_shape_);
  package::put32(content, clusters_.size() + 1);
  package::put32(content, shapes_);
  package::put32(content, drawings_);
  for (const auto& [drawing, shapes] : clusters_) {
    package::put32(content, drawing);
    package::put32(content, shapes);
  }
  std::string list;
  put_head(list, 0, 0, PieceKind::kDrawingList, content.size());
  return list + content;
}

std::uint64_t Drawings::added_size() const {
  std::uint64_t size = 0;
  for (const Added& one : added_) size += kPieceHead + kEntrySize + one.blip.size();
  return size;
}

void Drawings::put_added(RecordWriter& out) const {
  constexpr std::uint32_t kTag = 0xFF;
  for (const auto& [blip, uses] : added_) {
    std::string entry;
    put_head(entry, 2, blip.type, PieceKind::kPicture, kEntrySize + blip.size());
    entry += static_cast<char>(blip.type);
    entry += static_cast<char>(blip.type_elsewhere);
    entry += blip.digest;
    package::put16(entry, kTag);
    package::put32(entry, blip.size());
    package::put32(entry, uses);
    entry.append(8, '\0');
    out.put(entry);
    out.put(blip.front);
    out.put(blip.made_data);
    out.put(blip.file_data);
  }
}

void Drawings::write_list(RecordWriter& out) const {
  if (!group_.exists()) return write_new_list(out);
  const auto [list, list_end] = group_.list();
  const auto [store, store_end] = group_.store();
  const bool has_store = store_end != 0;
  const std::string now = list_bytes();
  const std::uint64_t added = added_size();
  const std::uint64_t new_head = has_store || added_.empty() ? 0 : kPieceHead;
  std::string head;
  put_container(head, PieceKind::kGroup,
                group_.end() - kPieceHead - (list_end - list) + now.size() + added + new_head);
  out.begin(kDrawingGroup);
  out.put(head);
  const auto put_list = [&] {
    out.put(now);
    if (new_head != 0) put_store_head(out, 0);
    if (!has_store) put_added(out);
  };
  if (!has_store || list < store) {
    copy(out, kPieceHead, list);
    put_list();
    copy(out, list_end, has_store ? store : group_.end());
    if (has_store) copy_store(out);
    if (has_store) copy(out, store_end, group_.end());
  } else {
    copy(out, kPieceHead, store);
    copy_store(out);
    copy(out, store_end, list);
    put_list();
    copy(out, list_end, group_.end());
  }
  out.end();
}

void Drawings::put_store_head(RecordWriter& out, std::uint64_t stored) const {
  std::string head;
  put_container(head, PieceKind::kStore, stored + added_size(),
                static_cast<std::uint32_t>(group_.pictures().size() + added_.size()));
  out.put(head);
}

void Drawings::copy(RecordWriter& out, std::uint64_t at, std::uint64_t end) const {
  constexpr std::uint64_t kAtOnce = std::uint64_t{1} << 16;
  while (at < end) {
    const std::uint64_t part = std::min(kAtOnce, end - at);
    out.put(group_.bytes(at, part));
    at += part;
  }
}

// The entries as they are, but for how often they are used.
void Drawings::copy_store(RecordWriter& out) const {
  const auto [store, end] = group_.store();
  put_store_head(out, end - store - kPieceHead);
  std::uint64_t at = store + kPieceHead;
  for (const auto& [number, by] : uses_) {
    const StoredPicture& picture = group_.pictures()[number - 1];
    if (by == 0 || picture.at == picture.blip) continue;
    const std::uint64_t place = picture.at + kPieceHead + kUsesAt;
    copy(out, at, place);
    std::string uses;
    package::put32(uses, static_cast<std::uint64_t>(std::max<std::int64_t>(picture.uses + by, 0)));
    out.put(uses);
    at = place + uses.size();
  }
  copy(out, at, end);
  put_added(out);
}

void Drawings::write_new_list(RecordWriter& out) const {
  if (!changed_) return;
  constexpr ShapeProperty kUsual[] = {
      {0x00BF, 0x00080008}, {0x0181, 0x08000041}, {0x01C0, 0x08000040}};
  constexpr std::uint32_t kColors[] = {0x0800000D, 0x0800000C, 0x08000017, 0x100000F7};
  const std::string list = list_bytes();
  std::string behind;
  put_properties(behind, kUsual);
  put_head(behind, 0, 4, PieceKind::kMenuColors, 16);
  for (const std::uint32_t color : kColors) package::put32(behind, color);
  const std::uint64_t store = added_.empty() ? 0 : kPieceHead + added_size();
  std::string head;
  put_container(head, PieceKind::kGroup, list.size() + store + behind.size());
  out.begin(kDrawingGroup);
  out.put(head + list);
  if (store != 0) put_store_head(out, 0);
  put_added(out);
  out.put(behind);
  out.end();
}

}  // namespace engine::xls
