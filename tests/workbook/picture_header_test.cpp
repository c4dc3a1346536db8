#include "engine/workbook/picture_header.h"

#include <gtest/gtest.h>

#include "tests/support/pictures.h"

namespace engine {
namespace {

std::string described(std::string_view bytes) {
  const auto header = read_picture_header(bytes);
  if (!header) return "none";
  return std::string(name_of(header->kind)) + " " + std::to_string(header->width) + " " +
         std::to_string(header->height);
}

struct Case {
  std::string bytes;
  const char* described;
};
const Case kWhole[] = {
    {pictures::png(300, 2), "PNG 300 2"},
    {pictures::jpeg(640, 480), "JPEG 640 480"},
    {pictures::gif(9, 8), "GIF 9 8"},
    {pictures::bitmap(5, 3), "BMP 5 3"},
    {pictures::bitmap(5, -3), "BMP 5 3"},
    {pictures::tiff(70, 60), "TIFF 70 60"},
    {pictures::tiff_of_two_pages(70, 60), "TIFF 70 60"},
    {pictures::enhanced_metafile(2540, 5080), "EMF 96 192"},
    {pictures::enhanced_metafile(1, 1), "EMF 1 1"},
    {pictures::placeable_metafile(1440, 720, 1440), "WMF 96 48"},
    {pictures::placeable_metafile(1, 1, 1440), "WMF 1 1"},
};

TEST(PictureHeader, TellsKindAndSize) {
  for (const auto& [bytes, wanted] : kWhole) EXPECT_EQ(described(bytes), wanted);
  EXPECT_EQ(described(pictures::pict(33, 22)), "PICT 33 22");
  // What follows the end of a picture does not count.
  for (const auto& [bytes, wanted] : kWhole) EXPECT_EQ(described(bytes + "more"), wanted);
}

TEST(PictureHeader, WhatIsCutShortIsNone) {
  for (const auto& [bytes, wanted] : kWhole) {
    SCOPED_TRACE(wanted);
    for (std::size_t size = 0; size < bytes.size(); ++size) {
      // Of a row's filling the last bytes may be missing.
      if (std::string_view(wanted).starts_with("BMP") && size + 1 == bytes.size()) continue;
      EXPECT_EQ(described(std::string_view(bytes).substr(0, size)), "none") << size;
    }
  }
}

TEST(PictureHeader, WhatNobodyCanShowIsNone) {
  const Case kCases[] = {
      {"", "empty"},
      {"text", "text"},
      {pictures::png(0, 5), "no width"},
      {pictures::png(5, 0), "no height"},
      {pictures::png(0xFFFFFFFF, 5), "absurd width"},
      {pictures::png(5, 1000001), "absurd height"},
      {pictures::jpeg(0, 5), "no width"},
      {pictures::gif(0, 5), "no width"},
      {pictures::bitmap(-5, 3), "negative width"},
      {pictures::bitmap(5, 0), "no height"},
      {pictures::tiff(0, 5), "no width"},
      {pictures::tiff(5, 5, 12), "a directory that leads to itself"},
      {pictures::tiff(5, 5, 0xFFFFFFFF), "a directory behind the end"},
      {pictures::enhanced_metafile(0, 5), "no width"},
      {pictures::enhanced_metafile(-100, 5), "negative width"},
      {pictures::placeable_metafile(5, 5, 0), "no unit"},
      {pictures::placeable_metafile(0, 5, 96), "no width"},
      {pictures::placeable_metafile(5, 5, 96).substr(22), "a metafile without place"},
      {pictures::pict(0, 5), "no width"},
  };
  for (const auto& [bytes, what] : kCases) EXPECT_EQ(described(bytes), "none") << what;
}

// Any byte may be any other: the reader ends, and stays inside of what it was given.
TEST(PictureHeader, DamageEndsTheReading) {
  for (const auto& [bytes, wanted] : kWhole) {
    for (std::size_t at = 0; at < bytes.size(); ++at) {
      for (const char other : {'\0', '\xFF', '\x7F', '\x01'}) {
        std::string damaged = bytes;
        damaged[at] = other;
        damaged.shrink_to_fit();
        const auto header = read_picture_header(damaged);
        if (!header) continue;
        EXPECT_GE(header->width, 1);
        EXPECT_GE(header->height, 1);
      }
    }
  }
}

}  // namespace
}  // namespace engine
