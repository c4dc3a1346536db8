// What kind of picture some bytes are, and how big it is.
//
// Nothing is decoded. A picture is known by its first bytes, its size stands in a header, and
// enough of its structure is walked to tell one that was cut short: the chunks of PNG, the segments
// of JPEG, the blocks of GIF, the strips of TIFF, the records of metafiles. Every step stays inside
// of the bytes and goes forward, so the work is bounded by their number.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace engine {

enum class PictureKind : std::uint8_t { kPng, kJpeg, kGif, kWmf, kDib, kEmf, kPict, kTiff };

// The size in pixels: that of the raster, whatever resolution it states, and at 96 per inch the
// frame of a metafile.
struct PictureHeader {
  PictureKind kind = PictureKind::kPng;
  int width = 0;
  int height = 0;

  friend bool operator==(const PictureHeader&, const PictureHeader&) = default;
};

// Nothing for bytes that are no picture of these kinds, not a whole one, or one without a size that
// any screen or printer could have use for. A Windows metafile without the header that gives it a
// place and a size is none.
std::optional<PictureHeader> read_picture_header(std::string_view bytes);

// As people call it: "PNG".
std::string_view name_of(PictureKind kind);

}  // namespace engine
