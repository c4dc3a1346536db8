#include "engine/xls/drawing_group.h"

#include <algorithm>
#include <array>

#include "engine/package/file_error.h"
#include "engine/xls/blips.h"
#include "engine/xls/drawing_pieces.h"
#include "engine/xls/fields.h"

namespace engine::xls {

namespace {

constexpr std::size_t kEntry = 36;  // of the store, before its name and picture

}  // namespace

void ScatteredBytes::append(std::uint64_t place, std::size_t size) {
  if (size == 0) return;
  runs_.push_back({size_, place});
  size_ += size;
}

void ScatteredBytes::read(const package::CompoundStream& stream,
                          const std::optional<Cipher>& cipher, std::uint64_t at,
                          std::span<char> into) const {
  std::optional<Cipher> decrypting = cipher;
  auto run = std::ranges::upper_bound(runs_, at, {}, &Run::at) - 1;
  while (!into.empty()) {
    const auto next = run + 1;
    const std::uint64_t end = next == runs_.end() ? size_ : next->at;
    const auto part = static_cast<std::size_t>(std::min<std::uint64_t>(into.size(), end - at));
    const std::uint64_t place = run->place + (at - run->at);
    stream.read(place, into.first(part));
    if (decrypting)
      decrypting->apply(place, static_cast<std::size_t>(end - run->at), into.first(part));
    into = into.subspan(part);
    at += part;
    run = next;
  }
}

void DrawingGroup::take(RecordReader& reader) {
  do {
    bytes_.append(reader.offset() + kRecordHead, reader.data().size());
  } while (reader.next_part());
}

std::string DrawingGroup::bytes(std::uint64_t at, std::uint64_t size) const {
  std::string made(static_cast<std::size_t>(size), '\0');
  bytes_.read(*stream_, cipher_, at, made);
  return made;
}

void DrawingGroup::look_into(const package::CompoundStream& stream,
                             const std::optional<Cipher>& cipher) {
  stream_ = &stream;
  cipher_ = cipher;
  if (bytes_.size() < kPieceHead) return;
  const Piece group = piece_of(bytes(0, kPieceHead), 0);
  if (group.kind != PieceKind::kGroup || group.end() > bytes_.size()) return;
  std::uint64_t at = group.content_at();
  while (group.end() - at >= kPieceHead) {
    const Piece piece = piece_of(bytes(at, kPieceHead), at);
    if (piece.end() > group.end()) return;
    if (piece.kind == PieceKind::kDrawingList) look_at_list(at, piece.end());
    else if (piece.kind == PieceKind::kStore) look_at_store(at, piece.end());
    at = piece.end();
  }
  if (list_end_ != 0) end_ = group.end();
}

void DrawingGroup::look_at_list(std::uint64_t at, std::uint64_t end) {
  const std::string content = bytes(at + kPieceHead, end - at - kPieceHead);
  Fields in(content);
  highest_shape_ = in.take32();
  in.skip(4);
  shapes_ = in.take32();
  drawings_ = in.take32();
  if (!in.ok()) return;
  list_at_ = at;
  list_end_ = end;
  clusters_.clear();
  while (in.rest().size() >= 8) {
    ShapeCluster& one = clusters_.emplace_back();
    one.drawing = in.take32();
    one.shapes = in.take32();
  }
}

void DrawingGroup::look_at_store(std::uint64_t at, std::uint64_t end) {
  constexpr std::size_t kNameSizeAt = 33;
  constexpr std::size_t kUsesAt = 24;
  store_at_ = at;
  store_end_ = end;
  pictures_.clear();
  for (at += kPieceHead; end - at >= kPieceHead;) {
    const Piece piece = piece_of(bytes(at, kPieceHead), at);
    if (piece.end() > end) break;
    StoredPicture& one = pictures_.emplace_back();
    one.at = at;
    if (piece.is_blip()) {
      one.blip = at;
      one.blip_size = piece.end() - at;
    } else if (piece.kind == PieceKind::kPicture && piece.size >= kEntry) {
      const std::string entry = bytes(piece.content_at(), kEntry);
      one.uses = package::get32(entry, kUsesAt);
      const std::uint64_t blip =
          piece.content_at() + kEntry + static_cast<unsigned char>(entry[kNameSizeAt]);
      if (blip + kPieceHead < piece.end()) {
        one.blip = blip;
        one.blip_size = piece.end() - blip;
      }
    }
    at = piece.end();
  }
}

void DrawingGroup::drop(const GoneDrawings& gone) {
  gone_.pictures.insert(gone_.pictures.end(), gone.pictures.begin(), gone.pictures.end());
  gone_.drawings += gone.drawings;
  gone_.shapes += gone.shapes;
}

std::string DrawingGroup::picture(std::size_t index) const {
  const StoredPicture& its = pictures_[index];
  return its.blip_size == 0 ? std::string() : picture_file(bytes(its.blip, its.blip_size));
}

void LoadedPictures::enter(const DrawingGroup& group, std::vector<Picture>& pictures) {
  if (entered_) return;
  std::vector<Picture> made(group.pictures().size());
  for (std::size_t i = 0; i < made.size(); ++i) {
    made[i].in_file = group.pictures()[i].blip_size != 0;
    if (!made[i].in_file) made[i].bytes = std::make_shared<const std::string>();
  }
  stored_ = made.size();
  pictures = std::move(made);
  entered_ = true;
}

std::uint32_t LoadedPictures::place_of(std::uint32_t stored, const std::string& link,
                                       std::vector<Picture>& pictures) {
  const auto known = places_.lower_bound({stored, std::string()});
  const bool is_shown = known != places_.end() && known->first.first == stored;
  if (const auto found = places_.find({stored, link}); found != places_.end()) return found->second;
  auto place = static_cast<std::uint32_t>(stored - 1);
  if (stored == 0 || is_shown) {
    place = static_cast<std::uint32_t>(pictures.size());
    pictures.push_back(stored == 0 ? Picture() : pictures[stored - 1]);
    others_[place] = stored;
  }
  Picture& its = pictures[place];
  its.link = link;
  if (!link.empty() && its.bytes && its.bytes->empty()) its.bytes.reset();
  places_.emplace(std::pair{stored, link}, place);
  return place;
}

std::uint32_t LoadedPictures::stored_at(std::size_t place) const {
  if (place < stored_) return static_cast<std::uint32_t>(place + 1);
  const auto found = others_.find(place);
  return found == others_.end() ? 0 : found->second;
}

}  // namespace engine::xls
