#include "engine/workbook/color.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace engine {

const Palette kDefaultPalette = {
    0x000000, 0xFFFFFF, 0xFF0000, 0x00FF00, 0x0000FF, 0xFFFF00, 0xFF00FF, 0x00FFFF,
    0x800000, 0x008000, 0x000080, 0x808000, 0x800080, 0x008080, 0xC0C0C0, 0x808080,
    0x9999FF, 0x993366, 0xFFFFCC, 0xCCFFFF, 0x660066, 0xFF8080, 0x0066CC, 0xCCCCFF,
    0x000080, 0xFF00FF, 0xFFFF00, 0x00FFFF, 0x800080, 0x800000, 0x008080, 0x0000FF,
    0x00CCFF, 0xCCFFFF, 0xCCFFCC, 0xFFFF99, 0x99CCFF, 0xFF99CC, 0xCC99FF, 0xFFCC99,
    0x3366FF, 0x33CCCC, 0x99CC00, 0xFFCC00, 0xFF9900, 0xFF6600, 0x666699, 0x969696,
    0x003366, 0x339966, 0x003300, 0x333300, 0x993300, 0x993366, 0x333399, 0x333333,
};

// What a book without a theme of its own is shown with.
const ThemeColors kDefaultTheme = {
    0xFFFFFF, 0x000000, 0xEEECE1, 0x1F497D, 0x4F81BD, 0xC0504D,
    0x9BBB59, 0x8064A2, 0x4BACC6, 0xF79646, 0x0000FF, 0x800080,
};

namespace {

constexpr std::uint32_t kPaletteEnd = kPaletteFirst + kPaletteSize;

int red(std::uint32_t rgb) { return static_cast<int>(rgb >> 16 & 0xFF); }
int green(std::uint32_t rgb) { return static_cast<int>(rgb >> 8 & 0xFF); }
int blue(std::uint32_t rgb) { return static_cast<int>(rgb & 0xFF); }

// The indices 0..7 are those of 8..15 once more.
std::uint32_t usual_index(std::uint32_t index) {
  return index < kPaletteFirst ? index + kPaletteFirst : index;
}

bool is_index(int number) {
  return (number >= 0 && number <= kBackgroundNumber) || number == kTooltipNumber;
}

// Whether the system decides what the colour is: no palette entry stands behind it.
bool is_system_index(std::uint32_t index) { return index >= kPaletteEnd; }

struct Hls {
  double hue;  // 0..6, in sectors of 60 degrees
  double lightness;
  double saturation;
};

Hls to_hls(std::uint32_t rgb) {
  const double r = red(rgb) / 255.0;
  const double g = green(rgb) / 255.0;
  const double b = blue(rgb) / 255.0;
  const double high = std::max({r, g, b});
  const double low = std::min({r, g, b});
  const double range = high - low;
  Hls made{0, (high + low) / 2, 0};
  if (range == 0) return made;
  made.saturation = made.lightness <= 0.5 ? range / (high + low) : range / (2 - high - low);
  if (high == r) made.hue = (g - b) / range + (g < b ? 6 : 0);
  else if (high == g) made.hue = (b - r) / range + 2;
  else made.hue = (r - g) / range + 4;
  return made;
}

std::uint32_t component(double low, double high, double sector) {
  if (sector < 0) sector += 6;
  if (sector >= 6) sector -= 6;
  double share = 0;
  if (sector < 1) share = sector;
  else if (sector < 3) share = 1;
  else if (sector < 4) share = 4 - sector;
  return static_cast<std::uint32_t>(std::lround((low + (high - low) * share) * 255));
}

std::uint32_t to_rgb(const Hls& from) {
  const double l = from.lightness;
  const double high = l <= 0.5 ? l * (1 + from.saturation) : l + from.saturation * (1 - l);
  const double low = 2 * l - high;
  return component(low, high, from.hue + 2) << 16 | component(low, high, from.hue) << 8 |
         component(low, high, from.hue - 2);
}

}  // namespace

std::uint32_t tinted(std::uint32_t rgb, double tint) {
  if (tint == 0 || !std::isfinite(tint)) return rgb;
  tint = std::clamp(tint, -1.0, 1.0);
  Hls hls = to_hls(rgb);
  hls.lightness = tint < 0 ? hls.lightness * (1 + tint) : hls.lightness * (1 - tint) + tint;
  return to_rgb(hls);
}

std::optional<Color> color_of_number(int number, bool rgb_mode) {
  if (number == kAutomaticNumber) return Color::automatic();
  if (is_index(number)) return Color::indexed(usual_index(static_cast<std::uint32_t>(number)));
  // Negative numbers are those with the top bit set: ARGB as an unsigned number has it.
  if (number < 0 || number >= kRgbNumber || rgb_mode)
    return Color::rgb(static_cast<std::uint32_t>(number));
  return std::nullopt;
}

int number_of_color(const Color& color, int absent, bool rgb_mode, const ColorTable& table) {
  if (color.kind == ColorKind::kAbsent) return absent;
  if (color.kind == ColorKind::kAutomatic) return kAutomaticNumber;
  if (color.kind == ColorKind::kTheme && color.value >= table.theme.size()) return kAutomaticNumber;
  if (color.kind == ColorKind::kIndexed) {
    const std::uint32_t index = usual_index(color.value);
    const bool is_known = index <= kBackgroundNumber || index == kTooltipNumber;
    if (!is_known) return kAutomaticNumber;
    if (is_system_index(index) || (!rgb_mode && color.tint == 0)) return static_cast<int>(index);
  }
  const std::uint32_t rgb = rgb_of(color, table);
  return rgb_mode ? rgb_number(rgb) : nearest_index(rgb, table.palette);
}

std::uint32_t rgb_of(const Color& color, const ColorTable& table) {
  std::uint32_t rgb = 0;
  switch (color.kind) {
    case ColorKind::kAbsent:
    case ColorKind::kAutomatic:
      return 0;
    case ColorKind::kRgb:
      rgb = color.value;
      break;
    case ColorKind::kTheme:
      if (color.value >= table.theme.size()) return 0;
      rgb = table.theme[color.value];
      break;
    case ColorKind::kIndexed: {
      const std::uint32_t index = usual_index(color.value);
      if (index == kBackgroundNumber) rgb = 0xFFFFFF;
      else if (!is_system_index(index)) rgb = table.palette[index - kPaletteFirst];
      break;
    }
  }
  return tinted(rgb, color.tint);
}

int nearest_index(std::uint32_t rgb, const Palette& palette) {
  int best = std::numeric_limits<int>::max();
  std::uint32_t nearest = 0;
  for (std::uint32_t entry = 0; entry < kPaletteSize; ++entry) {
    const int r = red(palette[entry]) - red(rgb);
    const int g = green(palette[entry]) - green(rgb);
    const int b = blue(palette[entry]) - blue(rgb);
    const int distance = r * r + g * g + b * b;
    if (distance >= best) continue;
    best = distance;
    nearest = entry;
  }
  return static_cast<int>(kPaletteFirst + nearest);
}

}  // namespace engine
