#include "engine/workbook/picture_header.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <initializer_list>
#include <iterator>

namespace engine {

namespace {

using std::size_t;
using namespace std::string_view_literals;

using Header = std::optional<PictureHeader>;

constexpr double kMaxPixels = 1'000'000;  // of a side
constexpr double kPixelsPerInch = 96;

enum class Order : std::uint8_t { kLittle, kBig };

// Numbers in bytes that may end anywhere. What lies behind the end reads as 0 and is remembered.
class Fields {
 public:
  Fields(std::string_view bytes, Order order) : bytes_(bytes), order_(order) {}

  std::uint32_t u8(size_t at) { return number(at, 1); }
  std::uint32_t u16(size_t at) { return number(at, 2); }
  std::uint32_t u32(size_t at) { return number(at, 4); }
  int i16(size_t at) { return static_cast<std::int16_t>(u16(at)); }
  int i32(size_t at) { return static_cast<std::int32_t>(u32(at)); }
  bool is(size_t at, std::string_view text) {
    return need(at, text.size()) && bytes_.substr(at, text.size()) == text;
  }
  // Whether so many bytes are there.
  bool need(size_t at, std::uint64_t count) {
    whole_ = whole_ && at <= bytes_.size() && count <= bytes_.size() - at;
    return whole_;
  }
  // Whether all that was asked for is there.
  bool whole() const { return whole_; }
  size_t size() const { return bytes_.size(); }

 private:
  std::uint32_t number(size_t at, size_t count) {
    if (!need(at, count)) return 0;
    std::uint32_t value = 0;
    for (size_t i = 0; i < count; ++i) {
      const size_t byte = order_ == Order::kBig ? i : count - 1 - i;
      value = value << 8 | static_cast<unsigned char>(bytes_[at + byte]);
    }
    return value;
  }

  std::string_view bytes_;
  Order order_;
  bool whole_ = true;
};

Header header(PictureKind kind, double width, double height) {
  const auto sane = [](double side) { return side >= 0.5 && side <= kMaxPixels; };
  if (!sane(width) || !sane(height)) return std::nullopt;
  return PictureHeader{kind, static_cast<int>(std::lround(width)),
                       static_cast<int>(std::lround(height))};
}

// Chunks: length, type, so many bytes, a checksum. The first is IHDR, the last IEND.
Header read_png(std::string_view bytes) {
  constexpr size_t kFirst = 8;
  constexpr size_t kAround = 12;  // length, type and checksum
  Fields in(bytes, Order::kBig);
  if (!in.is(kFirst + 4, "IHDR")) return std::nullopt;
  const std::uint32_t width = in.u32(kFirst + 8);
  const std::uint32_t height = in.u32(kFirst + 12);
  for (size_t at = kFirst;;) {
    const size_t size = kAround + in.u32(at);
    if (!in.need(at, size)) return std::nullopt;
    if (in.is(at + 4, "IEND")) return header(PictureKind::kPng, width, height);
    at += size;
  }
}

// The place of the next marker's code at or behind `at`; the entropy-coded data in between holds
// none, but zeros behind FF and restart markers. The end of the bytes without one.
size_t next_marker(std::string_view bytes, size_t at) {
  for (at = bytes.find('\xFF', at); at != std::string_view::npos; at = bytes.find('\xFF', at)) {
    at = std::min(bytes.find_first_not_of('\xFF', at), bytes.size());
    if (at == bytes.size()) break;
    const auto code = static_cast<unsigned char>(bytes[at]);
    if (code != 0 && (code < 0xD0 || code > 0xD7)) return at;
  }
  return bytes.size();
}

// Segments: FF, a code, and but for a few a length and so much data less the length's own bytes.
Header read_jpeg(std::string_view bytes) {
  Fields in(bytes, Order::kBig);
  Header found;
  for (size_t at = next_marker(bytes, 2); at < bytes.size();) {
    const std::uint32_t code = in.u8(at);
    if (code == 0xD9) return found;
    if (code == 0x01) {  // stands alone
      at = next_marker(bytes, at + 1);
      continue;
    }
    const std::uint32_t length = in.u16(at + 1);
    if (length < 2 || !in.need(at + 1, length)) return std::nullopt;
    // C4, C8 and CC are tables between the codes of frames.
    const bool is_frame =
        code >= 0xC0 && code <= 0xCF && code != 0xC4 && code != 0xC8 && code != 0xCC;
    if (is_frame && !found) {
      if (length < 8) return std::nullopt;
      found = header(PictureKind::kJpeg, in.u16(at + 6), in.u16(at + 4));
      if (!found) return std::nullopt;
    }
    at = next_marker(bytes, at + 1 + length);
  }
  return std::nullopt;
}

// Bytes of a table of colours, when the flags say that there is one.
size_t color_table(std::uint32_t flags) {
  return (flags & 0x80) != 0 ? size_t{3} << ((flags & 7) + 1) : 0;
}

// Behind the screen's description stand blocks: extensions, images, and the trailer. Their data
// are pieces of up to 255 bytes, each behind its length, up to one of length 0.
Header read_gif(std::string_view bytes) {
  Fields in(bytes, Order::kLittle);
  std::uint32_t width = in.u16(6);
  std::uint32_t height = in.u16(8);
  bool has_image = false;
  const auto skip_data = [&](size_t at) {
    while (const std::uint32_t length = in.u8(at)) at += 1 + length;
    return at + 1;
  };
  size_t at = 13 + color_table(in.u8(10));
  while (in.whole()) {
    switch (in.u8(at)) {
      case 0x21:
        at = skip_data(at + 2);
        break;
      case 0x2C:
        if (width == 0 || height == 0) {
          width = in.u16(at + 5);
          height = in.u16(at + 7);
        }
        has_image = true;
        at = skip_data(at + 11 + color_table(in.u8(at + 9)));
        break;
      case 0x3B:
        return has_image && in.whole() ? header(PictureKind::kGif, width, height) : std::nullopt;
      default:
        return std::nullopt;
    }
  }
  return std::nullopt;
}

// A file header of 14 bytes, then that of the bitmap, whose length tells its version. A negative
// height means that the rows run downwards.
Header read_bitmap(std::string_view bytes) {
  constexpr size_t kInfo = 14;
  constexpr std::uint32_t kCoreSize = 12;
  Fields in(bytes, Order::kLittle);
  const std::uint32_t pixels = in.u32(10);
  const std::uint32_t size = in.u32(kInfo);
  const bool is_core = size == kCoreSize;
  if (!is_core && size < 40) return std::nullopt;
  const std::int64_t width = is_core ? in.u16(kInfo + 4) : in.i32(kInfo + 4);
  const std::int64_t height =
      is_core ? std::int64_t{in.u16(kInfo + 6)} : std::abs(std::int64_t{in.i32(kInfo + 8)});
  const std::int64_t bits = in.u16(is_core ? kInfo + 10 : kInfo + 14);
  const std::uint32_t compression = is_core ? 0 : in.u32(kInfo + 16);
  const auto found =
      header(PictureKind::kDib, static_cast<double>(width), static_cast<double>(height));
  if (!found) return std::nullopt;
  // Rows fill up to four bytes; behind the last one that may be missing. What is compressed states
  // its size, but for the bit masks (3, 6) that come before plain rows.
  const bool is_plain = compression == 0 || compression == 3 || compression == 6;
  const std::int64_t row = (width * bits + 31) / 32 * 4;
  const auto needed = is_plain
                          ? static_cast<std::uint64_t>(row * (height - 1) + (width * bits + 7) / 8)
                          : std::uint64_t{in.u32(kInfo + 20)};
  return in.need(pixels, needed) ? found : std::nullopt;
}

// One entry of a TIFF directory: 12 bytes with a tag, a type, a count, and the values or, when they
// take more than four bytes, their place.
class TiffValues {
 public:
  TiffValues() = default;
  TiffValues(Fields& in, size_t entry)
      : in_(&in), type_(in.u16(entry + 2)), size_(size_of(type_)), count_(in.u32(entry + 4)) {
    const std::uint64_t bytes = std::uint64_t{count_} * size_;
    at_ = bytes <= 4 ? entry + 8 : in.u32(entry + 8);
    in.need(at_, bytes);
    if (!is_whole_number()) count_ = 0;
  }

  std::uint32_t count() const { return count_; }
  std::uint32_t operator[](std::uint32_t index) const {
    const size_t at = at_ + size_t{index} * size_;
    return size_ == 1 ? in_->u8(at) : size_ == 2 ? in_->u16(at) : in_->u32(at);
  }
  // Of the one value of a tag; 0 without it.
  std::uint32_t first() const { return count_ == 0 ? 0 : (*this)[0]; }

 private:
  // Of types up to the last that is in use; others have no size that anybody knows.
  static std::uint32_t size_of(std::uint32_t type) {
    constexpr std::uint8_t kSizes[] = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4};
    return type < std::size(kSizes) ? kSizes[type] : 0;
  }
  // Of one, two and four bytes, without a sign.
  bool is_whole_number() const { return type_ == 1 || type_ == 3 || type_ == 4; }

  Fields* in_ = nullptr;
  std::uint32_t type_ = 0;
  std::uint32_t size_ = 0;
  std::uint32_t count_ = 0;
  size_t at_ = 0;
};

// What a directory says of its picture.
struct TiffDirectory {
  TiffValues width, height;
  TiffValues places, sizes;  // of the pieces that the pixels lie in
};

// Reads a directory with all that it leads to. `left` is what the file can pay for: a directory is
// too much when it takes up bytes that others have.
bool read_directory(Fields& in, size_t at, size_t& left, TiffDirectory& made) {
  constexpr size_t kEntry = 12;
  const auto pay = [&left](size_t count) {
    const bool can = count <= left;
    left -= can ? count : 0;
    return can;
  };
  const size_t entries = in.u16(at);
  if (!in.need(at, 2 + entries * kEntry + 4) || !pay(1 + entries)) return false;
  for (size_t i = 0; i < entries; ++i) {
    const size_t entry = at + 2 + i * kEntry;
    const TiffValues values(in, entry);
    switch (in.u16(entry)) {
      case 256:
        made.width = values;
        break;
      case 257:
        made.height = values;
        break;
      case 273:  // strips
      case 324:  // tiles
        made.places = values;
        break;
      case 279:
      case 325:
        made.sizes = values;
        break;
      default:
        break;
    }
  }
  if (made.places.count() != made.sizes.count() || !pay(made.places.count())) return false;
  for (std::uint32_t i = 0; i < made.places.count(); ++i) in.need(made.places[i], made.sizes[i]);
  return in.whole();
}

// Directories, each with the place of the next one, 0 behind the last. The first picture counts.
Header read_tiff(std::string_view bytes) {
  constexpr size_t kEntry = 12;
  Fields in(bytes, bytes.front() == 'M' ? Order::kBig : Order::kLittle);
  size_t left = bytes.size();
  std::optional<TiffDirectory> first;
  for (size_t next = in.u32(4); next != 0;) {
    TiffDirectory made;
    if (!read_directory(in, next, left, made)) return std::nullopt;
    if (!first) first = made;
    next = in.u32(next + 2 + in.u16(next) * kEntry);
  }
  if (!first || first->places.count() == 0) return std::nullopt;
  return header(PictureKind::kTiff, first->width.first(), first->height.first());
}

// Records: type, size, data; the last is of type 14. The first is the header with the frame in
// hundredths of a millimetre.
Header read_enhanced_metafile(std::string_view bytes) {
  constexpr double kFramePerInch = 2540;
  constexpr std::uint32_t kEnd = 14;
  Fields in(bytes, Order::kLittle);
  const double width = double{1} * in.i32(32) - in.i32(24);
  const double height = double{1} * in.i32(36) - in.i32(28);
  for (size_t at = 0; in.whole();) {
    const std::uint32_t size = in.u32(at + 4);
    if (size < 8 || !in.need(at, size)) return std::nullopt;
    if (in.u32(at) == kEnd)
      return header(PictureKind::kEmf,
                    std::max(width * kPixelsPerInch / kFramePerInch, width > 0 ? 1.0 : 0.0),
                    std::max(height * kPixelsPerInch / kFramePerInch, height > 0 ? 1.0 : 0.0));
    at += size;
  }
  return std::nullopt;
}

// A header of 22 bytes with the box and its units per inch, then the metafile: 18 bytes of header
// and records, which begin with their size in words. The last one has no function.
Header read_placeable_metafile(std::string_view bytes) {
  constexpr size_t kMetafile = 22;
  Fields in(bytes, Order::kLittle);
  const double per_inch = in.u16(14);
  const double width = std::abs(in.i16(10) - in.i16(6));
  const double height = std::abs(in.i16(12) - in.i16(8));
  if (per_inch == 0 || width == 0 || height == 0) return std::nullopt;
  for (size_t at = kMetafile + 18; in.whole();) {
    const std::uint64_t size = std::uint64_t{2} * in.u32(at);
    if (size < 6 || !in.need(at, size)) return std::nullopt;
    if (in.u16(at + 4) == 0)
      return header(PictureKind::kWmf, std::max(width * kPixelsPerInch / per_inch, 1.0),
                    std::max(height * kPixelsPerInch / per_inch, 1.0));
    at += static_cast<size_t>(size);
  }
  return std::nullopt;
}

// 512 bytes of anything, a size nobody trusts, the frame, and the version's opcodes.
constexpr size_t kPictPreamble = 512;
bool is_pict(Fields in) {
  constexpr size_t kVersion = kPictPreamble + 10;
  return in.is(kVersion, "\0\x11\x02\xFF"sv) || in.is(kVersion, "\x11\x01"sv);
}
Header read_pict(std::string_view bytes) {
  Fields in(bytes, Order::kBig);
  const int height = in.i16(kPictPreamble + 6) - in.i16(kPictPreamble + 2);
  const int width = in.i16(kPictPreamble + 8) - in.i16(kPictPreamble + 4);
  return header(PictureKind::kPict, width, height);
}

}  // namespace

std::optional<PictureHeader> read_picture_header(std::string_view bytes) {
  if (bytes.starts_with("\x89PNG\r\n\x1A\n")) return read_png(bytes);
  if (bytes.starts_with("\xFF\xD8\xFF")) return read_jpeg(bytes);
  if (bytes.starts_with("GIF87a") || bytes.starts_with("GIF89a")) return read_gif(bytes);
  if (bytes.starts_with("BM")) return read_bitmap(bytes);
  if (bytes.starts_with("II*\0"sv) || bytes.starts_with("MM\0*"sv)) return read_tiff(bytes);
  if (bytes.starts_with("\xD7\xCD\xC6\x9A")) return read_placeable_metafile(bytes);
  if (bytes.starts_with("\1\0\0\0"sv) && Fields(bytes, Order::kLittle).is(40, " EMF"))
    return read_enhanced_metafile(bytes);
  if (is_pict(Fields(bytes, Order::kBig))) return read_pict(bytes);
  return std::nullopt;
}

std::string_view name_of(PictureKind kind) {
  constexpr std::string_view kNames[] = {"PNG", "JPEG", "GIF", "WMF", "BMP", "EMF", "PICT", "TIFF"};
  return kNames[static_cast<size_t>(kind)];
}

}  // namespace engine
