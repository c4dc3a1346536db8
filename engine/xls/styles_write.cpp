#include "engine/xls/styles_write.h"

#include <algorithm>
#include <array>
#include <bitset>
#include <cmath>
#include <string>
#include <unordered_map>

#include "engine/package/output.h"
#include "engine/workbook/number_format.h"
#include "engine/xls/fields.h"

namespace engine::xls {

namespace {

constexpr std::uint32_t kAlikeFonts = 4;     // the default font stands there four times
constexpr std::size_t kMaxFonts = 510;       // records
constexpr std::uint32_t kStyleFormats = 15;  // of named styles, in front of those of cells
constexpr std::size_t kMaxFormats = 4050;    // records
constexpr std::size_t kToldFormats = 4000;   // as programs state the limit
constexpr std::uint32_t kAutomaticColor = 0x7FFF;
constexpr std::uint32_t kForeground = 64;
constexpr std::uint32_t kBackground = 65;
constexpr std::uint32_t kWrittenBuiltIns[] = {5, 6, 7, 8, 41, 42, 43, 44};

std::array<const BorderSide*, 5> sides_of(const Border& border) {
  return {&border.left, &border.right, &border.top, &border.bottom, &border.diagonal};
}

// The colours in the data of a format's record.
void append_colors(std::string_view format, std::vector<Color>& colors) {
  Fields in(format);
  in.skip(10);
  const std::uint32_t lines = in.take32();
  const std::uint32_t more = in.take32();
  const std::uint32_t fill = in.take16();
  for (const std::uint32_t color :
       {lines >> 16, lines >> 23, more, more >> 7, more >> 14, fill, fill >> 7})
    colors.push_back(Color::indexed(color & 0x7F));
}

// Every colour of a book, in the order in which they may claim an entry of the palette.
std::vector<Color> colors_of(const Workbook& book, const FileStyles& file) {
  std::vector<Color> colors;
  for (const std::string& format : file.formats)
    if (is_of_style(format)) append_colors(format, colors);
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

PaletteWriter::PaletteWriter(const ColorTable& colors, std::span<const Color> used, bool is_fixed)
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
  std::uint32_t free = is_fixed ? 0 : kPaletteSize;
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

constexpr unsigned kEverything = 0xFFFF;

void set8(std::string& data, std::size_t at, std::uint32_t value) { put8(&data[at], value); }
void set16(std::string& data, std::size_t at, std::uint32_t value) { put16(&data[at], value); }
void set32(std::string& data, std::size_t at, std::uint32_t value) { put32(&data[at], value); }
void set_bits8(std::string& data, std::size_t at, std::uint32_t mask, std::uint32_t bits) {
  set8(data, at, (static_cast<unsigned char>(data[at]) & ~mask) | bits);
}
void set_bits16(std::string& data, std::size_t at, std::uint32_t mask, std::uint32_t bits) {
  set16(data, at, (package::get16(data, at) & ~mask) | bits);
}
void set_bits32(std::string& data, std::size_t at, std::uint32_t mask, std::uint32_t bits) {
  set32(data, at, (package::get32(data, at) & ~mask) | bits);
}

// Sets aspects of a font's record.
void set_font(std::string& data, const FontRecord& font, unsigned aspects,
              const PaletteWriter& palette) {
  constexpr std::size_t kFixed = 14;
  constexpr std::uint32_t kItalic = 2;
  constexpr std::uint32_t kStrikeOut = 8;
  if (data.size() <= kFixed) {
    data.resize(kFixed);
    aspects = kEverything;
  }
  if ((aspects & kFontSize) != 0)
    set16(data, 0, static_cast<std::uint32_t>(std::lround(font.size * 20)));
  if ((aspects & kFontItalic) != 0) set_bits16(data, 2, kItalic, font.italic ? kItalic : 0);
  if ((aspects & kFontStrikeOut) != 0)
    set_bits16(data, 2, kStrikeOut, font.strike_out ? kStrikeOut : 0);
  if ((aspects & kFontColor) != 0) set16(data, 4, palette.number(font.color, kAutomaticColor));
  if ((aspects & kFontBold) != 0) set16(data, 6, font.bold ? 700 : 400);
  if ((aspects & kFontScript) != 0) set16(data, 8, font.script);
  if ((aspects & kFontUnderline) != 0) set8(data, 10, font.underline);
  if ((aspects & kFontName) == 0) return;
  const Characters name(font.name);
  data.resize(kFixed + 2);
  set8(data, kFixed, static_cast<std::uint32_t>(name.count()));
  set8(data, kFixed + 1, name.wide() ? 1 : 0);
  data += name.bytes();
}

// Sets aspects of a cell format's record, whose font is told by its number.
void set_format(std::string& data, const Styles& styles, const FormatRecord& format,
                std::uint32_t font, unsigned aspects, const PaletteWriter& palette) {
  constexpr std::size_t kSize = 20;
  constexpr std::uint32_t kLocked = 1;
  constexpr std::uint32_t kHidden = 2;
  const bool is_new = data.size() < kSize;
  if (is_new) {
    data.assign(kSize, '\0');
    aspects = kEverything;
  }
  // Aspects that differ from the style's.
  std::uint32_t own = static_cast<unsigned char>(data[9]);
  const auto sets = [&](unsigned aspect, bool differs, std::uint32_t bit) {
    if ((aspects & aspect) == 0) return false;
    if (differs || !is_new) own |= bit;
    return true;
  };
  if (sets(kFormatNumber, format.number_format != 0, 0x04)) set16(data, 2, format.number_format);
  if (sets(kFormatFont, font != 0, 0x08)) set16(data, 0, font);
  const Alignment& alignment = format.alignment;
  if (sets(kFormatAlignment, alignment != Alignment(), 0x10)) {
    set8(data, 6, alignment.horizontal | (alignment.wrap ? 8U : 0U) | alignment.vertical << 4U);
    set8(data, 7, alignment.rotation);
    set_bits8(data, 8, 0x1F, (alignment.indent & 15U) | (alignment.shrink_to_fit ? 16U : 0U));
  }
  const Border& border = styles.border(format.border);
  if (sets(kFormatBorder, border != Border(), 0x20)) {
    const auto color_of = [&](const BorderSide& side) {
      return palette.number(side.color, kForeground);
    };
    set32(data, 10,
          border.left.style | border.right.style << 4U | border.top.style << 8U |
              border.bottom.style << 12U | color_of(border.left) << 16 |
              color_of(border.right) << 23 | static_cast<std::uint32_t>(border.diagonals) << 30);
    set_bits32(data, 14, 0x01FFFFFF,
               color_of(border.top) | color_of(border.bottom) << 7 |
                   color_of(border.diagonal) << 14 |
                   static_cast<std::uint32_t>(border.diagonal.style) << 21);
  }
  const Fill& fill = styles.fill(format.fill);
  if (sets(kFormatFill, fill != Fill(), 0x40)) {
    set_bits32(data, 14, 0xFC000000, static_cast<std::uint32_t>(fill.pattern) << 26);
    set_bits16(data, 18, 0x3FFF,
               palette.number(fill.foreground, kForeground) |
                   palette.number(fill.background, kBackground) << 7);
  }
  if (sets(kFormatProtection, !format.locked || format.hidden, 0x80))
    set_bits16(data, 4, kLocked | kHidden,
               (format.locked ? kLocked : 0) | (format.hidden ? kHidden : 0));
  set8(data, 9, own);
}

// Gives new entries their places behind the `records` that are there; equal ones have the same.
class Folding {
 public:
  explicit Folding(std::vector<std::string>& records) : records_(records) {}

  // The same record several times, which go by the first one's place.
  void append(const std::string& data, std::size_t times) {
    known_.emplace(data, records_.size());
    records_.insert(records_.end(), times, data);
  }

  std::size_t place(std::string data) {
    const auto [found, is_new] = known_.try_emplace(data, records_.size());
    if (is_new) records_.push_back(std::move(data));
    return found->second;
  }

 private:
  std::vector<std::string>& records_;
  std::unordered_map<std::string, std::size_t> known_;
};

// The places that file has for entries of the model.
std::vector<std::size_t> places_of(const std::vector<std::uint32_t>& models, std::uint32_t count) {
  std::vector<std::size_t> places(count, models.size());
  for (std::size_t place = 0; place < models.size(); ++place)
    if (models[place] < count) places[models[place]] = place;
  return places;
}

}  // namespace

StyleNumbers::StyleNumbers(const Workbook& book, const FileStyles& file, bool palette_is_fixed)
    : styles_(book.styles),
      file_(file),
      palette_(book.styles.colors, colors_of(book, file), palette_is_fixed) {
  number_fonts();
  number_formats();
}

void StyleNumbers::number_fonts() {
  const std::vector<std::size_t> places = places_of(file_.font_models, styles_.font_count());
  font_records_ = file_.fonts;
  Folding added(font_records_);
  for (std::uint32_t index = 0; index < styles_.font_count(); ++index) {
    const FontRecord& font = styles_.font(index);
    std::size_t place = places[index];
    if (place < file_.fonts.size()) {
      set_font(font_records_[place], font, font.changed, palette_);
    } else {
      const bool has_model = font.model < places.size() && places[font.model] < file_.fonts.size();
      std::string data = has_model ? file_.fonts[places[font.model]] : std::string();
      set_font(data, font, has_model ? font.changed : kEverything, palette_);
      if (font_records_.empty()) added.append(data, kAlikeFonts);
      place = added.place(std::move(data));
    }
    fonts_.push_back(number_of_font(place));
  }
  // Those that repeat the first one go on to do so.
  for (std::size_t place = 0; place < file_.fonts.size(); ++place)
    if (file_.font_models[place] == FileStyles::kNone) font_records_[place] = font_records_[0];
  if (font_records_.size() > kMaxFonts) throw package::LimitError("fonts", kMaxFonts);
}

void StyleNumbers::number_formats() {
  constexpr std::uint32_t kHasExtension = 1U << 25;
  constexpr unsigned kLooks = kFormatFont | kFormatBorder | kFormatFill;
  const std::vector<std::size_t> places = places_of(file_.format_models, styles_.format_count());
  format_records_ = file_.formats;
  if (file_.formats.empty()) append_style_formats();
  restyled_.resize(file_.formats.size());
  Folding added(format_records_);
  for (std::uint32_t index = 0; index < styles_.format_count(); ++index) {
    const FormatRecord& format = styles_.format(index);
    const std::uint32_t font = fonts_[styles_.font_of(index)];
    std::size_t place = places[index];
    if (place < file_.formats.size()) {
      std::string& data = format_records_[place];
      const bool recolored = (styles_.font(styles_.font_of(index)).changed & kFontColor) != 0;
      restyled_[place] = (format.changed & kLooks) != 0 || recolored;
      set_format(data, styles_, format, font, format.changed, palette_);
      if (restyled_[place]) set_bits32(data, 14, kHasExtension, 0);
    } else {
      const bool has_model =
          format.model < places.size() && places[format.model] < file_.formats.size();
      std::string data = has_model ? file_.formats[places[format.model]] : std::string();
      set_format(data, styles_, format, font, has_model ? format.changed : kEverything, palette_);
      set_bits32(data, 14, kHasExtension, 0);
      place = added.place(std::move(data));
    }
    formats_.push_back(static_cast<std::uint32_t>(place));
  }
  if (format_records_.size() > kMaxFormats) throw package::LimitError("formats", kToldFormats);
}

// The format of the style "Normal", of levels of rows and columns, which look like it.
void StyleNumbers::append_style_formats() {
  constexpr std::uint32_t kLockedStyle = 0xFFF5;
  constexpr std::uint32_t kBottom = 0x20;
  constexpr std::uint32_t kUsualFill = kForeground | kBackground << 7;
  for (std::uint32_t style = 0; style < kStyleFormats; ++style) {
    std::string data(20, '\0');
    set16(data, 4, kLockedStyle);
    set16(data, 6, kBottom);
    set16(data, 8, style == 0 ? 0 : 0xF400);
    set16(data, 18, kUsualFill);
    format_records_.push_back(std::move(data));
  }
}

void StyleNumbers::write_fonts(RecordWriter& out) const {
  for (std::size_t place = file_.fonts.size(); place < font_records_.size(); ++place)
    out.copy(kFont, font_records_[place]);
}

void StyleNumbers::write_number_formats(RecordWriter& out) const {
  std::vector<std::uint32_t> ids = styles_.number_formats();
  if (file_.formats.empty())
    ids.insert(ids.end(), std::begin(kWrittenBuiltIns), std::end(kWrittenBuiltIns));
  std::ranges::sort(ids);
  ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
  Characters code;
  for (const std::uint32_t id : ids) {
    if (std::ranges::find(file_.number_formats, id) != file_.number_formats.end()) continue;
    const std::string_view text = styles_.code_of(id);
    code.take(text);
    out.begin(kNumberFormat);
    out.put16(id);
    out.put_long_text(code);
    out.end();
  }
}

void StyleNumbers::write_formats(RecordWriter& out) const {
  for (std::size_t place = file_.formats.size(); place < format_records_.size(); ++place)
    out.copy(kFormat, format_records_[place]);
}

void StyleNumbers::write_named_style(RecordWriter& out) { out.record(kStyle, {0x8000, 0xFF00}); }

void StyleNumbers::write_palette(RecordWriter& out) const {
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

// The remainder of a division by a polynomial, of which the lower half of each step is kept.
std::uint32_t check_sum_of(std::span<const std::string> records) {
  constexpr std::uint32_t kPolynomial = 0xAF;
  constexpr std::uint32_t kTop = 0x80000000;
  std::array<std::uint32_t, 256> steps{};
  for (std::uint32_t i = 0; i < steps.size(); ++i) {
    std::uint32_t step = i << 24;
    for (int bit = 0; bit < 8; ++bit)
      step = (step & kTop) != 0 ? step << 1 ^ kPolynomial : step << 1;
    steps[i] = step & 0xFFFF;
  }
  std::uint32_t sum = 0;
  for (const std::string& record : records)
    for (const char byte : record)
      sum = sum << 8 ^ steps[sum >> 24 ^ static_cast<unsigned char>(byte)];
  return sum;
}

}  // namespace engine::xls
