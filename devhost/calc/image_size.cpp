#include "devhost/calc/image_size.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <string_view>

namespace devhost {
namespace {

using File = std::span<const unsigned char>;

bool starts_with(File file, std::string_view mark) {
  return file.size() >= mark.size() &&
         std::equal(mark.begin(), mark.end(), file.begin(), [](char expected, unsigned char found) {
           return static_cast<unsigned char>(expected) == found;
         });
}

int big_endian(File file, std::size_t at, int bytes) {
  unsigned value = 0;
  for (int i = 0; i < bytes; ++i) value = (value << 8) | file[at + static_cast<std::size_t>(i)];
  return static_cast<int>(value);
}

int little_endian(File file, std::size_t at, int bytes) {
  unsigned value = 0;
  for (int i = bytes; i-- > 0;) value = (value << 8) | file[at + static_cast<std::size_t>(i)];
  return static_cast<int>(value);
}

// The first chunk is the header, which begins with width and height.
std::optional<ImageKind> png(File file) {
  if (file.size() < 24) return std::nullopt;
  return ImageKind{{'P', 'N', 'G', 'f'}, big_endian(file, 16, 4), big_endian(file, 20, 4)};
}

std::optional<ImageKind> gif(File file) {
  if (file.size() < 10) return std::nullopt;
  return ImageKind{{'G', 'I', 'F', 'f'}, little_endian(file, 6, 2), little_endian(file, 8, 2)};
}

// A negative height means rows from top to bottom.
std::optional<ImageKind> bmp(File file) {
  if (file.size() < 26) return std::nullopt;
  const long height = little_endian(file, 22, 4);
  return ImageKind{{'B', 'M', 'P', 'f'}, little_endian(file, 18, 4), std::abs(height)};
}

// Frame headers are the segments C0 to CF except C4, C8 and CC.
bool is_frame_header(unsigned char marker) {
  return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

// Segments: FF, a marker, a length that counts its own two bytes, content. A frame's content is its
// precision, height and width.
std::optional<ImageKind> jpeg(File file) {
  std::size_t at = 2;
  while (at + 9 <= file.size() && file[at] == 0xFF) {
    if (file[at + 1] == 0xFF) {
      ++at;
      continue;
    }
    if (is_frame_header(file[at + 1])) {
      return ImageKind{
          {'J', 'P', 'E', 'G'}, big_endian(file, at + 7, 2), big_endian(file, at + 5, 2)};
    }
    at += 2 + static_cast<std::size_t>(std::max(big_endian(file, at + 2, 2), 2));
  }
  return std::nullopt;
}

}  // namespace

std::optional<ImageKind> image_kind(std::span<const unsigned char> file) {
  if (starts_with(file, "\x89PNG\r\n\x1A\n")) return png(file);
  if (starts_with(file, "\xFF\xD8\xFF")) return jpeg(file);
  if (starts_with(file, "GIF87a") || starts_with(file, "GIF89a")) return gif(file);
  if (starts_with(file, "BM")) return bmp(file);
  return std::nullopt;
}

}  // namespace devhost
