#include "engine/workbook/font_metrics.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <string_view>

#include "engine/text/fold.h"
#include "engine/text/letters.h"
#include "engine/text/utf8.h"
#include "engine/workbook/metrics.h"

namespace engine {

namespace {

constexpr double kUnitsPerEm = 2048;
constexpr int kCalibriDigit = 1038;

// The advance widths of the characters from U+0020 to U+007E, in units of the em.
constexpr std::uint32_t kFirst = 0x20;
constexpr std::uint32_t kLast = 0x7E;
using Advances = std::array<std::uint16_t, kLast - kFirst + 1>;

constexpr Advances kHumanistAdvances = {
    463,  667,  821,  1020, 1038, 1464, 1397, 452,  621,  621,  1020, 1020, 511,  627,  517,  791,
    1038, 1038, 1038, 1038, 1038, 1038, 1038, 1038, 1038, 1038, 548,  548,  1020, 1020, 1020, 949,
    1831, 1185, 1114, 1092, 1260, 1000, 941,  1292, 1276, 516,  653,  1064, 861,  1751, 1322, 1356,
    1058, 1378, 1112, 941,  998,  1314, 1162, 1822, 1063, 998,  959,  628,  791,  628,  1020, 1020,
    596,  981,  1076, 866,  1076, 1019, 625,  964,  1076, 470,  490,  931,  470,  1636, 1076, 1080,
    1076, 1076, 714,  801,  686,  1076, 925,  1464, 887,  927,  809,  644,  943,  644,  1020,
};
constexpr Advances kSansAdvances = {
    569,  569,  727,  1139, 1139, 1821, 1366, 391,  682,  682,  797,  1196, 569,  682,  569,  569,
    1139, 1139, 1139, 1139, 1139, 1139, 1139, 1139, 1139, 1139, 569,  569,  1196, 1196, 1196, 1139,
    2079, 1366, 1366, 1479, 1479, 1366, 1251, 1593, 1479, 569,  1024, 1366, 1139, 1706, 1479, 1593,
    1366, 1593, 1479, 1366, 1251, 1479, 1366, 1933, 1366, 1366, 1251, 569,  569,  569,  961,  1139,
    682,  1139, 1139, 1024, 1139, 1139, 569,  1139, 1139, 455,  455,  1024, 455,  1706, 1139, 1139,
    1139, 1139, 682,  1024, 569,  1139, 1024, 1479, 1024, 1024, 1024, 684,  532,  684,  1196,
};
constexpr Advances kSerifAdvances = {
    512,  682,  836,  1024, 1024, 1706, 1593, 369,  682,  682,  1024, 1155, 512,  682,  512,  569,
    1024, 1024, 1024, 1024, 1024, 1024, 1024, 1024, 1024, 1024, 569,  569,  1155, 1155, 1155, 909,
    1886, 1479, 1366, 1366, 1479, 1251, 1139, 1479, 1479, 682,  797,  1479, 1251, 1821, 1479, 1479,
    1139, 1479, 1366, 1139, 1251, 1479, 1479, 1933, 1479, 1479, 1251, 682,  569,  682,  961,  1024,
    682,  909,  1024, 909,  1024, 909,  682,  1024, 1024, 569,  569,  1024, 569,  1593, 1024, 1024,
    1024, 1024, 682,  797,  569,  1024, 1024, 1479, 1024, 1024, 909,  983,  410,  983,  1108,
};

// Fonts of one shape differ by little but their scale, which their digits tell.
enum class Shape : std::uint8_t { kHumanist, kSans, kSerif, kMono };

// Names in lower case and the advance width of their digits. The East Asian fonts with bitmaps for
// screens are wider there than their outlines of half an em.
struct Font {
  std::string_view name;
  int digit;
  Shape shape;
};
constexpr Font kFonts[] = {
    {"arial", 1139, Shape::kSans},
    {"arial black", 1366, Shape::kSans},
    {"arial narrow", 934, Shape::kSans},
    {"arial unicode ms", 1139, Shape::kSans},
    {"book antiqua", 1024, Shape::kSerif},
    {"bookman old style", 1270, Shape::kSerif},
    {"calibri", kCalibriDigit, Shape::kHumanist},
    {"cambria", 1135, Shape::kSerif},
    {"century gothic", 1134, Shape::kSans},
    {"century schoolbook", 1139, Shape::kSerif},
    {"comic sans ms", 1250, Shape::kSans},
    {"consolas", 1126, Shape::kMono},
    {"courier", 1229, Shape::kMono},
    {"courier new", 1229, Shape::kMono},
    {"dejavu sans", 1303, Shape::kSans},
    {"dejavu sans mono", 1233, Shape::kMono},
    {"dejavu serif", 1303, Shape::kSerif},
    {"franklin gothic book", 1133, Shape::kSans},
    {"garamond", 961, Shape::kSerif},
    {"georgia", 1257, Shape::kSerif},
    {"gill sans mt", 1024, Shape::kHumanist},
    {"helvetica", 1139, Shape::kSans},
    {"liberation mono", 1229, Shape::kMono},
    {"liberation sans", 1139, Shape::kSans},
    {"liberation sans narrow", 934, Shape::kSans},
    {"liberation serif", 1024, Shape::kSerif},
    {"lucida console", 1234, Shape::kMono},
    {"lucida sans unicode", 1294, Shape::kSans},
    {"malgun gothic", 1127, Shape::kSans},
    {"microsoft sans serif", 1139, Shape::kSans},
    {"microsoft yahei", 1104, Shape::kSans},
    {"ms gothic", 1085, Shape::kMono},
    {"ms mincho", 1085, Shape::kMono},
    {"ms sans serif", 1139, Shape::kSans},
    {"noto sans", 1171, Shape::kSans},
    {"noto sans cjk jp", 1137, Shape::kSans},
    {"noto sans cjk kr", 1137, Shape::kSans},
    {"noto sans cjk sc", 1137, Shape::kSans},
    {"noto sans cjk tc", 1137, Shape::kSans},
    {"open sans", 1171, Shape::kSans},
    {"palatino linotype", 1024, Shape::kSerif},
    {"roboto", 1150, Shape::kSans},
    {"segoe ui", 1104, Shape::kSans},
    {"simsun", 1085, Shape::kMono},
    {"tahoma", 1118, Shape::kSans},
    {"times", 1024, Shape::kSerif},
    {"times new roman", 1024, Shape::kSerif},
    {"trebuchet ms", 1074, Shape::kSans},
    {"verdana", 1302, Shape::kSans},
    {"yu gothic", 1138, Shape::kSans},
    {"宋体", 1085, Shape::kMono},
    {"微软雅黑", 1104, Shape::kSans},
    {"游ゴシック", 1138, Shape::kSans},
    {"맑은 고딕", 1127, Shape::kSans},
    {"ｍｓ ゴシック", 1085, Shape::kMono},
};

constexpr Font kUnknown{{}, kCalibriDigit, Shape::kHumanist};
constexpr double kBold = 1.08;  // how much wider bold letters are

const Font& font_of(std::string_view name) {
  for (const Font& known : kFonts)
    if (std::ranges::equal(name, known.name, {}, [](char c) { return lower_ascii(c); }))
      return known;
  return kUnknown;
}

const Advances* advances_of(Shape shape) {
  switch (shape) {
    case Shape::kHumanist:
      return &kHumanistAdvances;
    case Shape::kSans:
      return &kSansAdvances;
    case Shape::kSerif:
      return &kSerifAdvances;
    case Shape::kMono:
      break;
  }
  return nullptr;
}

double pixels_of_units(double units, const FontRecord& font) {
  return units / kUnitsPerEm * font.size * kPixelsPerPoint;
}

}  // namespace

int digit_pixels(const FontRecord& font) {
  return std::max(1,
                  static_cast<int>(std::lround(pixels_of_units(font_of(font.name).digit, font))));
}

double text_pixels(std::string_view line, const FontRecord& font) {
  const Font& its = font_of(font.name);
  const Advances* const advances = advances_of(its.shape);
  const auto advance = [&](char character) {
    return (*advances)[static_cast<unsigned char>(character) - kFirst];
  };
  const double scale = advances ? static_cast<double>(its.digit) / advance('0') : 0;
  double units = 0;
  while (!line.empty()) {
    const std::uint32_t character = take_character(line);
    const int cells = cells_of(character);
    const std::uint32_t letter = base_letter(character);
    if (cells != 1 || !advances) units += its.digit * cells;
    else if (letter >= kFirst && letter <= kLast)
      units += scale * advance(static_cast<char>(letter));
    else units += scale * advance('o');
  }
  return pixels_of_units(units, font) * (font.bold ? kBold : 1);
}

}  // namespace engine
