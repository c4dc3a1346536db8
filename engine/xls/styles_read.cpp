#include "engine/xls/styles_read.h"

#include <algorithm>
#include <utility>

#include "engine/xls/fields.h"

namespace engine::xls {

namespace {

constexpr std::uint16_t kNoFont = 4;
constexpr std::size_t kAlikeFonts = 4;
constexpr unsigned kBoldWeight = 600;
constexpr std::uint32_t kAutomaticColor = 0x7FFF;
constexpr std::uint32_t kLastColor = 65;
constexpr unsigned kStyleFlag = 4;  // of a named style's format

// An entry of the palette or one of the system's colours; anything else is as good as none.
Color color_of(std::uint32_t number, std::uint32_t absent) {
  if (number == absent || number == kAutomaticColor || number > kLastColor) return {};
  return Color::indexed(number);
}

FontRecord read_font(std::string_view record) {
  Fields in(record);
  FontRecord made;
  made.size = std::clamp(in.take16() / 20.0, 1.0, static_cast<double>(kMaxFontSize));
  const unsigned flags = in.take16();
  made.italic = (flags & 2) != 0;
  made.strike_out = (flags & 8) != 0;
  made.color = color_of(in.take16(), kAutomaticColor);
  made.bold = in.take16() >= kBoldWeight;
  const unsigned script = in.take16();
  made.script = static_cast<std::uint8_t>(script <= 2 ? script : 0);
  const unsigned underline = in.take8();
  const bool known = underline <= 2 || underline == 33 || underline == 34;
  made.underline = static_cast<std::uint8_t>(known ? underline : 0);
  in.skip(3);
  made.name = in.take_short_text();
  return made;
}

// A side without a line has no colour, whatever stands there.
BorderSide read_side(std::uint32_t style, std::uint32_t color) {
  BorderSide side;
  if (style == 0 || style > 13) return side;
  side.style = static_cast<std::uint8_t>(style);
  side.color = color_of(color, kAutomaticColor);
  return side;
}

Alignment read_alignment(Fields& in) {
  constexpr unsigned kMaxRotation = 180;
  constexpr unsigned kStacked = 255;
  Alignment made;
  const unsigned align = in.take8();
  made.horizontal = align & 7;
  made.wrap = (align & 8) != 0;
  const unsigned vertical = align >> 4 & 7;
  if (vertical <= 4) made.vertical = static_cast<std::uint8_t>(vertical);
  const unsigned rotation = in.take8();
  if (rotation <= kMaxRotation || rotation == kStacked)
    made.rotation = static_cast<std::uint8_t>(rotation);
  const unsigned more = in.take8();
  made.indent = more & 15;
  made.shrink_to_fit = (more & 16) != 0;
  return made;
}

struct Look {
  FormatRecord format;
  Border border;
  Fill fill;
};

Look read_format(std::string_view record, const std::vector<std::uint32_t>& fonts) {
  Fields in(record);
  Look look;
  FormatRecord& made = look.format;
  const std::size_t font = in.take16();
  made.font = font < fonts.size() ? fonts[font] : 0;
  made.number_format = in.take16();
  const unsigned flags = in.take16();
  made.locked = (flags & 1) != 0;
  made.hidden = (flags & 2) != 0;
  made.alignment = read_alignment(in);
  in.skip(1);
  const std::uint32_t lines = in.take32();
  const std::uint32_t colors = in.take32();
  Border& border = look.border;
  border.left = read_side(lines & 15, lines >> 16 & 0x7F);
  border.right = read_side(lines >> 4 & 15, lines >> 23 & 0x7F);
  border.top = read_side(lines >> 8 & 15, colors & 0x7F);
  border.bottom = read_side(lines >> 12 & 15, colors >> 7 & 0x7F);
  border.diagonal = read_side(colors >> 21 & 15, colors >> 14 & 0x7F);
  border.diagonals = static_cast<std::uint8_t>(lines >> 30);
  const std::uint32_t pattern = colors >> 26;
  const std::uint32_t fill = in.take16();
  if (pattern <= 18) look.fill.pattern = static_cast<std::uint8_t>(pattern);
  look.fill.foreground = color_of(fill & 0x7F, 64);
  look.fill.background = color_of(fill >> 7 & 0x7F, 65);
  return look;
}

std::size_t font_of(std::string_view format) { return Fields(format).take16(); }

}  // namespace

std::uint32_t number_of_font(std::size_t place) {
  return static_cast<std::uint32_t>(place < kNoFont ? place : place + 1);
}

bool is_of_style(std::string_view format) {
  Fields in(format);
  in.skip(4);
  return (in.take16() & kStyleFlag) != 0;
}

std::vector<std::uint32_t> StylesReader::append_fonts(Styles& styles) {
  const std::vector<std::string>& fonts = file_.fonts;
  std::vector<bool> used(number_of_font(fonts.size()) + 1);
  for (const std::string& format : file_.formats)
    if (!is_of_style(format) && font_of(format) < used.size()) used[font_of(format)] = true;
  std::vector<std::uint32_t> numbers(used.size());
  for (std::size_t place = 0; place < fonts.size(); ++place) {
    const bool spare = place > 0 && place < kAlikeFonts && fonts[place] == fonts[0] && !used[place];
    file_.font_models.push_back(spare ? FileStyles::kNone : styles.font_count());
    if (spare) continue;
    numbers[number_of_font(place)] = styles.font_count();
    styles.append_font(read_font(fonts[place]));
  }
  return numbers;
}

FileStyles StylesReader::finish(Styles& styles) {
  styles.begin_file_entries();
  Fields palette(palette_);
  const std::size_t colors = std::min<std::size_t>(palette.take16(), kPaletteSize);
  for (std::size_t i = 0; i < colors && !palette.at_end(); ++i) {
    const std::uint32_t red = palette.take8();
    const std::uint32_t green = palette.take8();
    const std::uint32_t blue = palette.take8();
    palette.skip(1);
    if (palette.ok()) styles.colors.palette[i] = red << 16 | green << 8 | blue;
  }
  for (const std::string& format : number_formats_) {
    Fields in(format);
    const std::uint16_t id = in.take16();
    const std::string code = in.take_long_text();
    if (!in.ok()) continue;
    styles.define_number_format(id, code);
    file_.number_formats.push_back(id);
  }
  const std::vector<std::uint32_t> fonts = append_fonts(styles);
  std::uint32_t count = 0;
  for (const std::string& format : file_.formats) {
    const bool of_cells = !is_of_style(format);
    file_.format_models.push_back(of_cells ? count : FileStyles::kNone);
    if (!of_cells) continue;
    const Look look = read_format(format, fonts);
    styles.append_format(look.format, look.border, look.fill);
    ++count;
  }
  styles.end_of_file_entries();
  return std::move(file_);
}

}  // namespace engine::xls
