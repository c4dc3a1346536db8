#include "engine/workbook/font_metrics.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace engine {

namespace {

constexpr double kUnitsPerEm = 2048;
constexpr double kPixelsPerPoint = 96.0 / 72;
constexpr int kCalibriDigit = 1038;

// Names in lower case and the advance width of their digits. The East Asian fonts with bitmaps for
// screens are wider there than their outlines of half an em.
struct FontDigit {
  std::string_view name;
  int advance;
};
constexpr FontDigit kFonts[] = {
    {"arial", 1139},
    {"arial black", 1366},
    {"arial narrow", 934},
    {"arial unicode ms", 1139},
    {"book antiqua", 1024},
    {"bookman old style", 1270},
    {"calibri", kCalibriDigit},
    {"cambria", 1135},
    {"century gothic", 1134},
    {"century schoolbook", 1139},
    {"comic sans ms", 1250},
    {"consolas", 1126},
    {"courier", 1229},
    {"courier new", 1229},
    {"dejavu sans", 1303},
    {"dejavu sans mono", 1233},
    {"dejavu serif", 1303},
    {"franklin gothic book", 1133},
    {"garamond", 961},
    {"georgia", 1257},
    {"gill sans mt", 1024},
    {"helvetica", 1139},
    {"liberation mono", 1229},
    {"liberation sans", 1139},
    {"liberation sans narrow", 934},
    {"liberation serif", 1024},
    {"lucida console", 1234},
    {"lucida sans unicode", 1294},
    {"malgun gothic", 1127},
    {"microsoft sans serif", 1139},
    {"microsoft yahei", 1104},
    {"ms gothic", 1085},
    {"ms mincho", 1085},
    {"ms sans serif", 1139},
    {"noto sans", 1171},
    {"noto sans cjk jp", 1137},
    {"noto sans cjk kr", 1137},
    {"noto sans cjk sc", 1137},
    {"noto sans cjk tc", 1137},
    {"open sans", 1171},
    {"palatino linotype", 1024},
    {"roboto", 1150},
    {"segoe ui", 1104},
    {"simsun", 1085},
    {"tahoma", 1118},
    {"times", 1024},
    {"times new roman", 1024},
    {"trebuchet ms", 1074},
    {"verdana", 1302},
    {"yu gothic", 1138},
    {"宋体", 1085},
    {"微软雅黑", 1104},
    {"游ゴシック", 1138},
    {"맑은 고딕", 1127},
    {"ｍｓ ゴシック", 1085},
};

char lower(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

int digit_advance(std::string_view name) {
  for (const auto& [known, advance] : kFonts)
    if (std::ranges::equal(name, known, {}, lower)) return advance;
  return kCalibriDigit;
}

}  // namespace

int digit_pixels(const FontRecord& font) {
  const double pixels = digit_advance(font.name) / kUnitsPerEm * font.size * kPixelsPerPoint;
  return std::max(1, static_cast<int>(std::lround(pixels)));
}

}  // namespace engine
