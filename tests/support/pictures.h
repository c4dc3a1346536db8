// Small pictures of every kind: whole for whoever looks at their structure and decodes nothing.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace pictures {

// Numbers as bytes: the lowest first, or the highest.
inline std::string little(std::uint64_t value, int bytes) {
  std::string text;
  for (; bytes > 0; --bytes, value >>= 8) text.push_back(static_cast<char>(value & 0xFF));
  return text;
}
inline std::string big(std::uint64_t value, int bytes) {
  const std::string text = little(value, bytes);
  return {text.rbegin(), text.rend()};
}

inline std::string png_chunk(const std::string& type, const std::string& data) {
  return big(data.size(), 4) + type + data + "sum ";
}
inline std::string png(std::uint32_t width, std::uint32_t height,
                       const std::string& data = "data") {
  return "\x89PNG\r\n\x1A\n" +
         png_chunk("IHDR", big(width, 4) + big(height, 4) + big(0x0802000000, 5)) +
         png_chunk("IDAT", data) + png_chunk("IEND", "");
}

// A restart marker and an escaped FF stand in the data.
inline std::string jpeg(unsigned width, unsigned height) {
  return big(0xFFD8FFE0, 4) + big(6, 2) + "JFIF" + big(0xFFC2, 2) + big(8, 2) + big(8, 1) +
         big(height, 2) + big(width, 2) + big(0, 1) + big(0xFFDA, 2) + big(2, 2) + "ab\xFF\xD0" +
         big(0xFF00, 2) + "cd" + big(0xFFFFD9, 3);
}

inline std::string gif(unsigned width, unsigned height) {
  return "GIF89a" + little(width, 2) + little(height, 2) + little(0x80, 3) + "colors" +
         little(0x21, 1) + little(0xF9, 1) + little(1, 1) + "x" + little(0, 1) + ",atpl" +
         little(width, 2) + little(height, 2) + little(0x0200, 2) + "\x3lzw" + little(0, 1) + ";";
}

inline std::string bitmap(int width, int height) {
  const unsigned rows = static_cast<unsigned>(height < 0 ? -height : height);
  const unsigned row = (static_cast<unsigned>(width) * 24 + 31) / 32 * 4;
  return "BM" + little(54 + row * rows, 4) + little(0, 4) + little(54, 4) + little(40, 4) +
         little(static_cast<unsigned>(width), 4) + little(static_cast<unsigned>(height), 4) +
         little(1, 2) + little(24, 2) + little(0, 24) + std::string(row * rows, 'p');
}

inline std::string tiff_entry(unsigned tag, unsigned type, unsigned count, unsigned value) {
  return little(tag, 2) + little(type, 2) + little(count, 4) + little(value, 4);
}
// One directory at byte 12 and a text behind it; `next` is where it says that another one is.
inline std::string tiff(unsigned width, unsigned height, unsigned next = 0) {
  return "II*" + little(0, 1) + little(12, 4) + "data" + little(5, 2) +
         tiff_entry(256, 3, 1, width) + tiff_entry(257, 4, 1, height) + tiff_entry(273, 4, 1, 8) +
         tiff_entry(279, 4, 1, 4) + tiff_entry(305, 2, 8, 78) + little(next, 4) + "software";
}
// A second directory, with its piece behind it.
inline std::string tiff_of_two_pages(unsigned width, unsigned height) {
  const std::string first = tiff(width, height, 86);
  return first + little(2, 2) + tiff_entry(273, 4, 1, 116) + tiff_entry(279, 4, 1, 4) +
         little(0, 4) + "data";
}

// Frames in hundredths of a millimetre.
inline std::string enhanced_metafile(int width, int height) {
  return little(1, 4) + little(88, 4) + little(0, 16) + little(0, 8) +
         little(static_cast<unsigned>(width), 4) + little(static_cast<unsigned>(height), 4) +
         " EMF" + std::string(44, 'h') + little(14, 4) + little(20, 4) + little(0, 12);
}

inline std::string placeable_metafile(unsigned width, unsigned height, unsigned per_inch) {
  return little(0x9AC6CDD7, 4) + little(0, 6) + little(width, 2) + little(height, 2) +
         little(per_inch, 2) + little(0, 6) + little(1, 2) + little(9, 2) + little(0x300, 2) +
         little(0, 12) + little(4, 4) + little(0x0301, 2) + "ab" + little(3, 4) + little(0, 2);
}

inline std::string pict(unsigned width, unsigned height) {
  return std::string(512, '\0') + big(0, 6) + big(height, 2) + big(width, 2) + big(0x001102FF, 4);
}

}  // namespace pictures
