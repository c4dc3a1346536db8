// Colours as files store them and as the interface's numbers speak of them.
//
// A file names a colour by its place in a palette, by red, green and blue, or by its role in a
// theme that is then made lighter or darker by a tint. What is stored stays as it is: it is
// resolved to red, green and blue only to tell somebody what it looks like.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

namespace engine {

enum class ColorKind : std::uint8_t { kAbsent, kAutomatic, kIndexed, kRgb, kTheme };

struct Color {
  ColorKind kind = ColorKind::kAbsent;
  std::uint32_t value = 0;  // palette index, 0xRRGGBB or theme number
  double tint = 0;          // -1 black .. 1 white, as the file has it

  static Color automatic() { return {ColorKind::kAutomatic, 0, 0}; }
  static Color indexed(std::uint32_t index) { return {ColorKind::kIndexed, index, 0}; }
  static Color rgb(std::uint32_t value) { return {ColorKind::kRgb, value & 0xFFFFFF, 0}; }
  static Color theme(std::uint32_t number, double tint) {
    return {ColorKind::kTheme, number, tint};
  }
  friend bool operator==(const Color&, const Color&) = default;
};

inline constexpr std::uint32_t kPaletteFirst = 8;
inline constexpr std::uint32_t kPaletteSize = 56;

using Palette = std::array<std::uint32_t, kPaletteSize>;  // 0xRRGGBB of the indices 8..63
using ThemeColors = std::array<std::uint32_t, 12>;  // by theme number: lt1, dk1, lt2, dk2, …

extern const Palette kDefaultPalette;
extern const ThemeColors kDefaultTheme;

// What a book's colours look like.
struct ColorTable {
  Palette palette = kDefaultPalette;
  ThemeColors theme = kDefaultTheme;

  friend bool operator==(const ColorTable&, const ColorTable&) = default;
};

// Numbers of the interface beside the palette's. From kRgbNumber on, the low 24 bits count.
inline constexpr int kForegroundNumber = 64;  // the system's text
inline constexpr int kBackgroundNumber = 65;  // the system's window
inline constexpr int kTooltipNumber = 81;
inline constexpr int kAutomaticNumber = 32767;
inline constexpr int kRgbNumber = 0x01000000;

constexpr int rgb_number(std::uint32_t rgb) { return kRgbNumber + static_cast<int>(rgb); }

// The colour that a number means to a setter; nothing when it means none. In RGB mode a plain
// 24-bit number that is no index is a colour too.
std::optional<Color> color_of_number(int number, bool rgb_mode);

// The number that a getter gives for a colour, `absent` where the file has none. In palette mode
// RGB and theme colours become the nearest palette index.
int number_of_color(const Color& color, int absent, bool rgb_mode, const ColorTable& table);

// The red, green and blue of a colour; black where the system decides and the colour is text.
std::uint32_t rgb_of(const Color& color, const ColorTable& table);

// The entry with the smallest sum of squared differences, the first one of equals.
int nearest_index(std::uint32_t rgb, const Palette& palette);

// Lightens (tint above 0) or darkens (below 0) by the lightness of hue, lightness, saturation.
std::uint32_t tinted(std::uint32_t rgb, double tint);

}  // namespace engine
