#include "engine/xls/blips.h"

#include <zlib.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <new>

#include "engine/package/little_endian.h"
#include "engine/system/digest.h"
#include "engine/xls/drawing_pieces.h"
#include "engine/xls/fields.h"

namespace engine::xls {

namespace {

using package::get16;
using package::get32;
using package::put16;
using package::put32;

constexpr std::size_t kDigest = 16;
constexpr std::size_t kBitmapHead = 14;
constexpr std::size_t kPlaceableHead = 22;
constexpr std::size_t kPictPreamble = 512;
constexpr std::uint32_t kPlaceableKey = 0x9AC6CDD7;
constexpr double kEmuPerInch = 914400;

// How a kind of picture is stored.
struct BlipKind {
  PictureKind picture;
  std::uint32_t kind;      // of the piece
  std::uint32_t instance;  // with one digest; with two of them one more
  std::uint32_t type;
  std::uint32_t type_elsewhere;
  bool metafile;
};
constexpr BlipKind kBlipKinds[] = {
    {PictureKind::kEmf, 0xF01A, 0x3D4, 2, 4, true},
    {PictureKind::kWmf, 0xF01B, 0x216, 3, 4, true},
    {PictureKind::kPict, 0xF01C, 0x542, 4, 4, true},
    {PictureKind::kJpeg, 0xF01D, 0x46A, 5, 5, false},
    {PictureKind::kPng, 0xF01E, 0x6E0, 6, 6, false},
    {PictureKind::kDib, 0xF01F, 0x7A8, 7, 7, false},
    {PictureKind::kTiff, 0xF029, 0x6E4, 0x11, 0x11, false},
    {PictureKind::kJpeg, 0xF02A, 0x46A, 5, 5, false},
};
// Of a JPEG in colours of printers.
constexpr std::uint32_t kPrinterJpeg = 0x6E2;

struct Box {
  std::int32_t left = 0, top = 0, right = 0, bottom = 0;
};

// What stands in front of a metafile: its size, where it draws, how big it is shown in EMU, its
// size when packed, and how it is packed.
struct MetafileHead {
  static constexpr std::uint32_t kPlain = 0xFE;
  static constexpr std::uint32_t kNoFilter = 0xFE;

  std::uint32_t size = 0;
  Box box;
  std::int32_t width = 0, height = 0;
  std::uint32_t stored_size = 0;
  std::uint32_t packing = 0;
};

MetafileHead take_metafile_head(Fields& in) {
  const auto take_signed = [&] { return static_cast<std::int32_t>(in.take32()); };
  MetafileHead head;
  head.size = in.take32();
  head.box.left = take_signed();
  head.box.top = take_signed();
  head.box.right = take_signed();
  head.box.bottom = take_signed();
  head.width = take_signed();
  head.height = take_signed();
  head.stored_size = in.take32();
  head.packing = in.take8();
  in.skip(1);
  return head;
}

void put_metafile_head(std::string& out, const MetafileHead& head) {
  const auto put_signed = [&](std::int32_t value) {
    put32(out, static_cast<std::uint32_t>(value));
  };
  put32(out, head.size);
  for (const std::int32_t side : {head.box.left, head.box.top, head.box.right, head.box.bottom})
    put_signed(side);
  put_signed(head.width);
  put_signed(head.height);
  put32(out, head.stored_size);
  out += static_cast<char>(head.packing);
  out += static_cast<char>(MetafileHead::kNoFilter);
}

// Nothing when it is not packed as it should be.
std::string unpacked(const MetafileHead& head, std::string_view bytes) {
  constexpr std::uint64_t kBestRatio = 1032;
  bytes = bytes.substr(0, head.stored_size);
  if (head.packing == MetafileHead::kPlain) return std::string(bytes);
  if (head.size > bytes.size() * kBestRatio) return {};
  std::string out(head.size, '\0');
  uLongf size = head.size;
  const int result =
      ::uncompress(reinterpret_cast<Bytef*>(out.data()), &size,
                   reinterpret_cast<const Bytef*>(bytes.data()), static_cast<uLong>(bytes.size()));
  if (result == Z_MEM_ERROR) throw std::bad_alloc();
  if (result != Z_OK) return {};
  out.resize(size);
  return out;
}

std::string packed(std::string_view bytes) {
  uLongf size = ::compressBound(static_cast<uLong>(bytes.size()));
  std::string out(size, '\0');
  const int result =
      ::compress(reinterpret_cast<Bytef*>(out.data()), &size,
                 reinterpret_cast<const Bytef*>(bytes.data()), static_cast<uLong>(bytes.size()));
  if (result != Z_OK) throw std::bad_alloc();
  out.resize(size);
  return out;
}

// The header of a Windows metafile's file, with a checksum over its words. Its box has 16 bits a
// side: a larger one is shrunk to the size that is shown.
std::string placeable_head(const MetafileHead& head) {
  constexpr double kMost = std::numeric_limits<std::int16_t>::max();
  constexpr double kTwipsPerInch = 1440;
  const Box& box = head.box;
  const auto fits = [](std::int32_t side) { return std::abs(double{1} * side) <= kMost; };
  double sides[] = {double(box.left), double(box.top), double(box.right), double(box.bottom)};
  const double width = std::abs(sides[2] - sides[0]);
  const double shown = std::abs(double{1} * head.width) / kEmuPerInch;
  double per_inch = width > 0 && shown > 0 ? width / shown : 0;
  if (!fits(box.left) || !fits(box.top) || !fits(box.right) || !fits(box.bottom) || per_inch < 1 ||
      per_inch > 0xFFFF) {
    const double tall = std::abs(double{1} * head.height) / kEmuPerInch;
    per_inch = std::min(kTwipsPerInch, kMost / std::max({shown, tall, 1.0}));
    sides[0] = sides[1] = 0;
    sides[2] = shown * per_inch;
    sides[3] = tall * per_inch;
  }
  std::string out;
  put32(out, kPlaceableKey);
  put16(out, 0);
  for (const double side : sides)
    put16(out, static_cast<std::uint16_t>(static_cast<std::int16_t>(std::lround(side))));
  put16(out, static_cast<std::uint16_t>(std::max(std::lround(per_inch), 1L)));
  put32(out, 0);
  unsigned sum = 0;
  for (std::size_t at = 0; at < out.size(); at += 2) sum ^= get16(out, at);
  put16(out, sum);
  return out;
}

std::string metafile_file(PictureKind kind, Fields& in) {
  const MetafileHead head = take_metafile_head(in);
  const std::string bytes = unpacked(head, in.rest());
  if (!in.ok() || bytes.empty()) return {};
  std::string front;
  if (kind == PictureKind::kWmf && !bytes.starts_with("\xD7\xCD\xC6\x9A"))
    front = placeable_head(head);
  if (kind == PictureKind::kPict) front.assign(kPictPreamble, '\0');
  return front + bytes;
}

// Where the rows of a bitmap begin that follow its header at once: behind the masks or the table of
// its colours.
std::uint64_t rows_at(std::string_view bitmap) {
  constexpr std::uint32_t kCoreSize = 12;
  constexpr std::uint32_t kInfoSize = 40;
  constexpr std::uint32_t kMasks = 3;
  constexpr std::uint32_t kMasksWithAlpha = 6;
  Fields in(bitmap);
  const std::uint32_t size = in.take32();
  const bool is_core = size == kCoreSize;
  in.skip(is_core ? 6 : 10);
  const unsigned bits = in.take16();
  const std::uint32_t packing = is_core ? 0 : in.take32();
  in.skip(12);
  std::uint64_t colors = is_core ? 0 : in.take32();
  if (colors == 0 && bits <= 8) colors = std::uint64_t{1} << bits;
  const std::uint64_t masks = size != kInfoSize            ? 0
                              : packing == kMasks          ? 12
                              : packing == kMasksWithAlpha ? 16
                                                           : 0;
  return size + masks + colors * (is_core ? 3 : 4);
}

std::string bitmap_file(std::string_view bitmap) {
  std::string out = "BM";
  put32(out, kBitmapHead + bitmap.size());
  put32(out, 0);
  put32(out, kBitmapHead + rows_at(bitmap));
  out += bitmap;
  return out;
}

const BlipKind& kind_of(PictureKind picture) {
  return *std::ranges::find(kBlipKinds, picture, &BlipKind::picture);
}

// The frame of an enhanced metafile is in hundredths of a millimetre.
MetafileHead head_of_enhanced(std::string_view file) {
  constexpr std::int64_t kEmuPerFrameUnit = 360;
  const auto number = [&](std::size_t at) { return static_cast<std::int32_t>(get32(file, at)); };
  const auto size = [&](std::size_t from, std::size_t to) {
    return static_cast<std::int32_t>(
        std::clamp<std::int64_t>((std::int64_t{number(to)} - number(from)) * kEmuPerFrameUnit, 0,
                                 std::numeric_limits<std::int32_t>::max()));
  };
  MetafileHead head;
  head.box = {number(8), number(12), number(16), number(20)};
  head.width = size(24, 32);
  head.height = size(28, 36);
  return head;
}

MetafileHead head_of_placeable(std::string_view file) {
  const auto number = [&](std::size_t at) { return static_cast<std::int16_t>(get16(file, at)); };
  const double per_inch = std::max<double>(get16(file, 14), 1);
  const auto size = [&](std::size_t from, std::size_t to) {
    const double emu = std::abs(number(to) - number(from)) * kEmuPerInch / per_inch;
    return static_cast<std::int32_t>(std::min<double>(emu, std::numeric_limits<int>::max()));
  };
  MetafileHead head;
  head.box = {number(6), number(8), number(10), number(12)};
  head.width = size(6, 10);
  head.height = size(8, 12);
  return head;
}

// The frame, in points, has the highest byte of its numbers first.
MetafileHead head_of_pict(std::string_view file) {
  constexpr std::int32_t kEmuPerPoint = 12700;
  const auto number = [&](std::size_t at) {
    const auto high = static_cast<unsigned char>(file[kPictPreamble + at]);
    const auto low = static_cast<unsigned char>(file[kPictPreamble + at + 1]);
    return static_cast<std::int16_t>(high << 8 | low);
  };
  MetafileHead head;
  head.box = {number(4), number(2), number(8), number(6)};
  head.width = std::abs(head.box.right - head.box.left) * kEmuPerPoint;
  head.height = std::abs(head.box.bottom - head.box.top) * kEmuPerPoint;
  return head;
}

// A bitmap whose rows do not follow its header at once is closed up, as their place gets lost.
void take_bitmap(std::string_view file, Blip& blip) {
  const std::string_view bitmap = file.substr(kBitmapHead);
  const std::uint64_t rows = rows_at(bitmap);
  const std::uint64_t stored_at = get32(file, 10) - std::uint64_t{kBitmapHead};
  if (rows == stored_at || rows > bitmap.size()) {
    blip.file_data = bitmap;
  } else {
    blip.made_data = bitmap.substr(0, static_cast<std::size_t>(rows));
    blip.file_data = bitmap.substr(std::min<std::size_t>(stored_at, bitmap.size()));
  }
}

}  // namespace

std::string picture_file(std::string_view blip) {
  Piece piece;
  if (!Pieces(blip, 0, blip.size()).next(piece)) return {};
  const auto* const known =
      std::ranges::find(kBlipKinds, static_cast<std::uint32_t>(piece.kind), &BlipKind::kind);
  if (known == std::end(kBlipKinds)) return {};
  Fields in(piece.content);
  const bool has_two = piece.instance == known->instance + 1 || piece.instance == kPrinterJpeg + 1;
  in.skip(has_two ? 2 * kDigest : kDigest);
  if (known->metafile) return metafile_file(known->picture, in);
  in.skip(1);
  if (known->picture == PictureKind::kDib && in.ok()) return bitmap_file(in.rest());
  return std::string(in.rest());
}

Blip make_blip(PictureKind kind, std::string_view file) {
  constexpr char kTag = '\xFF';
  const BlipKind& stored = kind_of(kind);
  Blip made;
  made.type = stored.type;
  made.type_elsewhere = stored.type_elsewhere;
  made.digest = picture_digest(file);
  std::string behind;
  if (stored.metafile) {
    MetafileHead head = kind == PictureKind::kEmf   ? head_of_enhanced(file)
                        : kind == PictureKind::kWmf ? head_of_placeable(file)
                                                    : head_of_pict(file);
    const std::size_t front = kind == PictureKind::kEmf   ? 0
                              : kind == PictureKind::kWmf ? kPlaceableHead
                                                          : kPictPreamble;
    made.made_data = packed(file.substr(front));
    head.size = static_cast<std::uint32_t>(file.size() - front);
    head.stored_size = static_cast<std::uint32_t>(made.made_data.size());
    put_metafile_head(behind, head);
  } else {
    behind = kTag;
    if (kind == PictureKind::kDib) take_bitmap(file, made);
    else made.file_data = file;
  }
  put_head(made.front, 0, stored.instance, static_cast<PieceKind>(stored.kind),
           made.digest.size() + behind.size() + made.made_data.size() + made.file_data.size());
  made.front += made.digest;
  made.front += behind;
  return made;
}

std::string picture_digest(std::string_view file) {
  return std::string(system::view_of(system::md5(file)));
}

}  // namespace engine::xls
