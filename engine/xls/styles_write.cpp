#include "engine/xls/styles_write.h"

#include <algorithm>
#include <array>
#include <bitset>
#include <cmath>
#include <string>
#include <unordered_map>

#include "engine/package/output.h"
#include "engine/workbook/number_format.h"

namespace engine::xls {

namespace {

constexpr std::uint32_t kNoFont = 4;         // a number that no font has
constexpr std::uint32_t kAlikeFonts = 4;     // the default font stands there four times
constexpr std::size_t kMaxFonts = 510;       // records
constexpr std::uint32_t kStyleFormats = 15;  // of named styles, in front of those of cells
constexpr std::size_t kMaxFormats = 4050 - kStyleFormats;
constexpr std::size_t kToldFormats = 4000;  // as programs state the limit
constexpr std::uint32_t kAutomaticColor = 0x7FFF;
constexpr std::uint32_t kForeground = 64;
constexpr std::uint32_t kBackground = 65;
constexpr std::uint32_t kWrittenBuiltIns[] = {5, 6, 7, 8, 41, 42, 43, 44};

std::array<const BorderSide*, 5> sides_of(const Border& border) {
  return {&border.left, &border.right, &border.top, &border.bottom, &border.diagonal};
}

// Every colour of a book, in the order in which they may claim an entry of the palette.
std::vector<Color> colors_of(const Workbook& book) {
  std::vector<Color> colors;
  for (std::uint32_t i = 0; i < book.styles.font_count(); ++i)
    colors.push_back(book.styles.font(i).color);
  for (std::uint32_t i = 0; i < book.styles.format_count(); ++i) {
    for (const BorderSide* side : sides_of(book.styles.border_of(i))) colors.push_back(side->color);
    colors.push_back(book.styles.fill_of(i).foreground);
    colors.push_back(book.styles.fill_of(i).background);
  }
  for (const auto& sheet : book.sheets()) colors.push_back(sheet->contents().tab_color);
  return colors;
}

bool has_rgb(const Color& color) {
  return color.kind == ColorKind::kRgb || color.kind == ColorKind::kTheme;
}

}  // namespace

PaletteWriter::PaletteWriter(const ColorTable& colors, std::span<const Color> used)
    : colors_(colors), palette_(colors.palette) {
  std::bitset<kPaletteSize> taken;
  for (const Color& color : used)
    if (color.kind == ColorKind::kIndexed && color.value < kPaletteFirst + kPaletteSize)
      taken.set(color.value < kPaletteFirst ? color.value : color.value - kPaletteFirst);
  std::vector<std::uint32_t> missing;
  for (const Color& color : used) {
    if (!has_rgb(color)) continue;
    const std::uint32_t rgb = rgb_of(color, colors_);
    const auto* const exact = std::ranges::find(palette_, rgb);
    if (exact == palette_.end()) {
      missing.push_back(rgb);
      continue;
    }
    const auto place = static_cast<std::uint32_t>(exact - palette_.begin());
    taken.set(place);
    numbers_.try_emplace(rgb, place + kPaletteFirst);
  }
  std::uint32_t free = kPaletteSize;
  for (const std::uint32_t rgb : missing) {
    if (numbers_.contains(rgb)) continue;
    while (free > 0 && taken[free - 1]) --free;
    if (free == 0) break;
    --free;
    palette_[free] = rgb;
    numbers_.emplace(rgb, free + kPaletteFirst);
  }
}

std::uint32_t PaletteWriter::number(const Color& color, std::uint32_t absent) const {
  switch (color.kind) {
    case ColorKind::kIndexed:
      return color.value < kPaletteFirst ? color.value + kPaletteFirst : color.value;
    case ColorKind::kRgb:
    case ColorKind::kTheme: {
      const std::uint32_t rgb = rgb_of(color, colors_);
      const auto found = numbers_.find(rgb);
      return found != numbers_.end() ? found->second
                                     : static_cast<std::uint32_t>(nearest_index(rgb, palette_));
    }
    default:
      return absent;
  }
}

namespace {

// The data of a font's record.
std::string font_data(const FontRecord& font, const PaletteWriter& palette) {
  constexpr std::uint32_t kItalic = 2;
  constexpr std::uint32_t kStrikeOut = 8;
  std::string data(14, '\0');
  char* at = put16(data.data(), static_cast<std::uint32_t>(std::lround(font.size * 20)));
  at = put16(at, (font.italic ? kItalic : 0) | (font.strike_out ? kStrikeOut : 0));
  at = put16(at, palette.number(font.color, kAutomaticColor));
  at = put16(at, font.bold ? 700 : 400);
  at = put16(at, font.script);
  put8(at, font.underline);
  return data.append(font.name);
}

// The data of a cell format's record.
std::array<char, 20> format_data(const Styles& styles, const FormatRecord& format,
                                 std::uint32_t font, const PaletteWriter& palette) {
  constexpr std::uint32_t kLocked = 1;
  constexpr std::uint32_t kHidden = 2;
  const FormatRecord usual;
  // Aspects that differ from the style's.
  std::uint32_t own = 0;
  const auto note = [&](bool differs, std::uint32_t bit) { own |= differs ? bit : 0; };
  note(format.number_format != 0, 0x04);
  note(font != 0, 0x08);
  note(format.alignment != usual.alignment, 0x10);
  const Border& border = styles.border(format.border);
  const Fill& fill = styles.fill(format.fill);
  note(border != Border(), 0x20);
  note(fill != Fill(), 0x40);
  note(!format.locked || format.hidden, 0x80);
  const Alignment& alignment = format.alignment;
  const auto color_of = [&](const BorderSide& side) {
    return palette.number(side.color, kForeground);
  };
  std::array<char, 20> data{};
  char* at = put16(data.data(), font);
  at = put16(at, format.number_format);
  at = put16(at, (format.locked ? kLocked : 0) | (format.hidden ? kHidden : 0));
  at = put8(at, alignment.horizontal | (alignment.wrap ? 8U : 0U) | alignment.vertical << 4U);
  at = put8(at, alignment.rotation);
  at = put8(at, (alignment.indent & 15U) | (alignment.shrink_to_fit ? 16U : 0U));
  at = put8(at, own);
  at = put32(at, border.left.style | border.right.style << 4U | border.top.style << 8U |
                     border.bottom.style << 12U | color_of(border.left) << 16 |
                     color_of(border.right) << 23 |
                     static_cast<std::uint32_t>(border.diagonals) << 30);
  at = put32(at, color_of(border.top) | color_of(border.bottom) << 7 |
                     color_of(border.diagonal) << 14 |
                     static_cast<std::uint32_t>(border.diagonal.style) << 21 |
                     static_cast<std::uint32_t>(fill.pattern) << 26);
  put16(at, palette.number(fill.foreground, kForeground) |
                palette.number(fill.background, kBackground) << 7);
  return data;
}

// Numbers entries by what their records say; equal ones have the same number.
template <class DataOf, class NumberOf>
void fold(std::uint32_t count, DataOf data_of, NumberOf number_of,
          std::vector<std::uint32_t>& numbers, std::vector<std::uint32_t>& written) {
  std::unordered_map<std::string, std::uint32_t> known;
  for (std::uint32_t index = 0; index < count; ++index) {
    const auto data = data_of(index);
    const auto next = number_of(static_cast<std::uint32_t>(written.size()));
    const auto [found, is_new] = known.try_emplace(std::string(data.begin(), data.end()), next);
    numbers.push_back(found->second);
    if (is_new) written.push_back(index);
  }
}

}  // namespace

StyleNumbers::StyleNumbers(const Workbook& book)
    : styles_(book.styles), palette_(book.styles.colors, colors_of(book)) {
  fold(
      styles_.font_count(),
      [&](std::uint32_t index) { return font_data(styles_.font(index), palette_); },
      [](std::uint32_t place) { return place == 0 ? 0 : place + kNoFont; }, fonts_, written_fonts_);
  if (written_fonts_.size() - 1 + kAlikeFonts > kMaxFonts)
    throw package::LimitError("fonts", kMaxFonts);
  fold(
      styles_.format_count(),
      [&](std::uint32_t index) {
        return format_data(styles_, styles_.format(index), fonts_[styles_.font_of(index)],
                           palette_);
      },
      [](std::uint32_t place) { return place + kStyleFormats; }, formats_, written_formats_);
  if (written_formats_.size() > kMaxFormats) throw package::LimitError("formats", kToldFormats);
}

void StyleNumbers::write(RecordWriter& out) const {
  Characters characters;
  const auto write_font = [&](std::uint32_t index) {
    constexpr std::size_t kFixed = 14;
    const std::string data = font_data(styles_.font(index), palette_);
    characters.take(styles_.font(index).name);
    out.begin(kFont);
    out.put(std::string_view(data).substr(0, kFixed));
    out.put_short_text(characters);
    out.end();
  };
  for (std::uint32_t i = 1; i < kAlikeFonts; ++i) write_font(0);
  for (const std::uint32_t index : written_fonts_) write_font(index);

  const auto write_number_format = [&](std::uint32_t id, std::string_view code) {
    characters.take(code);
    out.begin(kNumberFormat);
    out.put16(id);
    out.put_long_text(characters);
    out.end();
  };
  std::vector<std::uint32_t> ids(std::begin(kWrittenBuiltIns), std::end(kWrittenBuiltIns));
  for (const std::uint32_t id : styles_.number_formats()) ids.push_back(id);
  std::ranges::sort(ids);
  ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
  for (const std::uint32_t id : ids) write_number_format(id, styles_.code_of(id));

  // The format of the style "Normal", of levels of rows and columns, which look like it, and of the
  // cells.
  constexpr std::uint32_t kLockedStyle = 0xFFF5;
  constexpr std::uint32_t kBottom = 0x20;
  constexpr std::uint32_t kUsualFill = kForeground | kBackground << 7;
  for (std::uint32_t style = 0; style < kStyleFormats; ++style) {
    out.begin(kFormat);
    out.put16(0);
    out.put16(0);
    out.put16(kLockedStyle);
    out.put16(kBottom);
    out.put16(style == 0 ? 0 : 0xF400);
    out.put_zeros(8);
    out.put16(kUsualFill);
    out.end();
  }
  for (const std::uint32_t index : written_formats_) {
    const auto data =
        format_data(styles_, styles_.format(index), fonts_[styles_.font_of(index)], palette_);
    out.begin(kFormat);
    out.put({data.data(), data.size()});
    out.end();
  }
  out.record(kStyle, {0x8000, 0xFF00});
  if (palette_.palette() == kDefaultPalette) return;
  out.begin(kPalette);
  out.put16(kPaletteSize);
  for (const std::uint32_t rgb : palette_.palette()) {
    out.put8(rgb >> 16);
    out.put8(rgb >> 8);
    out.put8(rgb);
    out.put8(0);
  }
  out.end();
}

}  // namespace engine::xls
