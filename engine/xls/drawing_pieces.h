// What drawings are made of.
//
// A drawing is a tree of pieces. A piece has a head of eight bytes: version (4 bits) and instance
// (12 bits), kind, and the size of what follows. Version 15 is that of containers, whose content is
// pieces. The bytes of a drawing lie in several records of a sheet: behind those of each shape
// stand records that say what it is for. What drawings share lies in one of the globals.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "engine/package/little_endian.h"

namespace engine::xls {

enum class PieceKind : std::uint16_t {
  // Containers.
  kGroup = 0xF000,  // of all drawings
  kStore = 0xF001,  // pictures
  kDrawing = 0xF002,
  kShapes = 0xF003,  // the first of them is their frame
  kShape = 0xF004,
  // Others.
  kDrawingList = 0xF006,
  kPicture = 0xF007,  // of the store
  kDrawingHead = 0xF008,
  kFrame = 0xF009,
  kShapeHead = 0xF00A,
  kProperties = 0xF00B,
  kTextPlace = 0xF00D,
  kAnchor = 0xF010,
  kObjectPlace = 0xF011,
  kFirstBlip = 0xF018,
  kLastBlip = 0xF117,
  kMenuColors = 0xF11E,
};

inline constexpr std::size_t kPieceHead = 8;
inline constexpr std::uint32_t kContainerVersion = 15;

struct Piece {
  std::uint32_t version = 0;
  std::uint32_t instance = 0;
  PieceKind kind{};
  std::uint32_t size = 0;  // of the content
  std::size_t at = 0;      // of the head, in whatever it was read from
  std::string_view content;

  std::size_t content_at() const { return at + kPieceHead; }
  std::size_t end() const { return content_at() + size; }
  bool is_container() const { return version == kContainerVersion; }
  bool is_blip() const { return kind >= PieceKind::kFirstBlip && kind <= PieceKind::kLastBlip; }
};

// What a head of eight bytes says.
inline Piece piece_of(std::string_view head, std::size_t at) {
  const std::uint16_t first = package::get16(head, 0);
  Piece piece;
  piece.version = first & 15U;
  piece.instance = static_cast<std::uint32_t>(first) >> 4;
  piece.kind = static_cast<PieceKind>(package::get16(head, 2));
  piece.size = package::get32(head, 4);
  piece.at = at;
  return piece;
}

// The pieces of a part of some bytes, one after another. One that is cut ends them.
class Pieces {
 public:
  Pieces(std::string_view bytes, std::size_t begin, std::size_t end)
      : bytes_(bytes), at_(begin), end_(end) {}
  Pieces(std::string_view bytes, const Piece& container)
      : Pieces(bytes, container.content_at(), container.end()) {}

  bool next(Piece& piece) {
    if (end_ - at_ < kPieceHead) return false;
    const Piece found = piece_of(bytes_.substr(at_), at_);
    if (found.size > end_ - found.content_at()) return false;
    piece = found;
    piece.content = bytes_.substr(piece.content_at(), piece.size);
    at_ = piece.end();
    return true;
  }
  // Whether all has been taken.
  bool at_end() const { return at_ == end_; }

 private:
  std::string_view bytes_;
  std::size_t at_;
  std::size_t end_;
};

// Heads of pieces that are written.
inline void put_head(std::string& out, std::uint32_t version, std::uint32_t instance,
                     PieceKind kind, std::uint64_t size) {
  package::put16(out, version | instance << 4);
  package::put16(out, static_cast<std::uint64_t>(kind));
  package::put32(out, size);
}
inline void put_container(std::string& out, PieceKind kind, std::uint64_t size,
                          std::uint32_t instance = 0) {
  put_head(out, kContainerVersion, instance, kind, size);
}

// A property of a shape: its number, two bits that tell how its value is meant, and that value: a
// number, or the size of bytes that stand behind all properties.
struct ShapeProperty {
  std::uint32_t number;
  std::uint32_t value;
};
inline constexpr std::uint32_t kNamesPicture = 0x4000;
inline constexpr std::uint32_t kHasBytes = 0x8000;
inline constexpr std::uint32_t kPropertyNumber = 0x3FFF;

inline constexpr std::size_t kPropertySize = 6;

// `behind` holds the bytes of those that have some.
inline void put_properties(std::string& out, std::span<const ShapeProperty> properties,
                           std::string_view behind = {}) {
  put_head(out, 3, static_cast<std::uint32_t>(properties.size()), PieceKind::kProperties,
           kPropertySize * properties.size() + behind.size());
  for (const auto& [number, value] : properties) {
    package::put16(out, number);
    package::put32(out, value);
  }
  out += behind;
}

// Properties that pictures have.
inline constexpr std::uint32_t kPictureNumber = 0x104;  // from 1
inline constexpr std::uint32_t kPictureName = 0x105;
inline constexpr std::uint32_t kPictureFlags = 0x106;

// What the name of a picture is.
inline constexpr std::uint32_t kNameIsFile = 1;
inline constexpr std::uint32_t kNotStored = 4;
inline constexpr std::uint32_t kLinked = 8;

}  // namespace engine::xls
