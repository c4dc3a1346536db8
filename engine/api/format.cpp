#include "engine/api/format.h"

#include "engine/api/font.h"
#include "engine/api/messages.h"

namespace engine::api {

namespace {

constexpr BorderSide Border::*kSides[] = {&Border::left, &Border::right, &Border::top,
                                          &Border::bottom};
constexpr int kRightAngle = 90;

}  // namespace

bool FormatObject::check(std::string_view property, int value, int last) const {
  if (value >= 0 && value <= last) return true;
  return book_.refuse(false, messages::out_of_range(property, value, 0, last));
}

bool FormatObject::check_color(libxl::Color color, Color* stored) const {
  const auto known = color_of_number(color, book_.rgb_mode());
  if (!known) return book_.refuse(false, messages::unknown("colour", color));
  *stored = *known;
  return true;
}

libxl::Color FormatObject::number(const Color& color, int absent) const {
  return static_cast<libxl::Color>(
      number_of_color(color, absent, book_.rgb_mode(), styles().colors));
}

// Font and number format.

libxl::Font* FormatObject::font() const {
  return run(nullptr, [&] { return book_.font_object(styles().font_of(index_)); });
}

bool FormatObject::setFont(libxl::Font* font) {
  return run(false, [&] {
    std::uint32_t chosen = 0;
    if (font) {
      const auto& object = static_cast<const FontObject&>(*font);
      if (&object.book() != &book_) return book_.refuse(false, messages::foreign("font"));
      if (object.detached()) return book_.refuse(false, messages::gone("font"));
      chosen = object.index();
    }
    change(kFormatFont).font = chosen;
    return true;
  });
}

int FormatObject::numFormat() const {
  return run(0, [&] { return static_cast<int>(record().number_format); });
}

void FormatObject::setNumFormat(int numFormat) {
  run([&] {
    if (numFormat < 0 || !styles().is_number_format(static_cast<std::uint32_t>(numFormat)))
      return book_.refuse(messages::unknown("number format", numFormat));
    change(kFormatNumber).number_format = static_cast<std::uint32_t>(numFormat);
  });
}

// Alignment.

libxl::AlignH FormatObject::alignH() const {
  return run(libxl::AlignHGeneral,
             [&] { return static_cast<libxl::AlignH>(record().alignment.horizontal); });
}

void FormatObject::setAlignH(libxl::AlignH align) {
  run([&] {
    if (!check("horizontal alignment", align, libxl::AlignHDistributed)) return;
    change(kFormatAlignment).alignment.horizontal = static_cast<std::uint8_t>(align);
  });
}

libxl::AlignV FormatObject::alignV() const {
  return run(libxl::AlignVBottom,
             [&] { return static_cast<libxl::AlignV>(record().alignment.vertical); });
}

void FormatObject::setAlignV(libxl::AlignV align) {
  run([&] {
    if (!check("vertical alignment", align, libxl::AlignVDistributed)) return;
    change(kFormatAlignment).alignment.vertical = static_cast<std::uint8_t>(align);
  });
}

bool FormatObject::wrap() const {
  return run(false, [&] { return record().alignment.wrap; });
}

void FormatObject::setWrap(bool wrap) {
  run([&] { change(kFormatAlignment).alignment.wrap = wrap; });
}

int FormatObject::rotation() const {
  return run(0, [&] { return static_cast<int>(record().alignment.rotation); });
}

// Angles that cannot be are an answer, not a refusal: the caller gets false and no message.
bool FormatObject::setRotation(int rotation) {
  return run(false, [&] {
    if (rotation < 0 && rotation >= -kRightAngle) rotation = kRightAngle - rotation;
    constexpr int kStacked = 255;
    if (rotation != kStacked && (rotation < 0 || rotation > 2 * kRightAngle)) return false;
    change(kFormatAlignment).alignment.rotation = static_cast<std::uint8_t>(rotation);
    return true;
  });
}

int FormatObject::indent() const {
  return run(0, [&] { return static_cast<int>(record().alignment.indent); });
}

void FormatObject::setIndent(int indent) {
  run([&] {
    if (!check("indent", indent, styles().limits.indent)) return;
    change(kFormatAlignment).alignment.indent = static_cast<std::uint8_t>(indent);
  });
}

bool FormatObject::shrinkToFit() const {
  return run(false, [&] { return record().alignment.shrink_to_fit; });
}

void FormatObject::setShrinkToFit(bool shrinkToFit) {
  run([&] { change(kFormatAlignment).alignment.shrink_to_fit = shrinkToFit; });
}

// Borders.

libxl::BorderStyle FormatObject::side_style(Side side) const {
  return run(libxl::BorderNone,
             [&] { return static_cast<libxl::BorderStyle>((border().*side).style); });
}

void FormatObject::set_side_style(Side side, libxl::BorderStyle style) {
  run([&] {
    if (!check("border style", style, libxl::BorderSlantDashDot)) return;
    Border changed = border();
    (changed.*side).style = static_cast<std::uint8_t>(style);
    styles().set_border(index_, changed);
  });
}

libxl::Color FormatObject::side_color(Side side) const {
  return run(libxl::ColorDefaultForeground,
             [&] { return number((border().*side).color, kForegroundNumber); });
}

void FormatObject::set_side_color(Side side, libxl::Color color) {
  run([&] {
    Color stored;
    if (!check_color(color, &stored)) return;
    Border changed = border();
    (changed.*side).color = stored;
    styles().set_border(index_, changed);
  });
}

void FormatObject::setBorder(libxl::BorderStyle style) {
  run([&] {
    if (!check("border style", style, libxl::BorderSlantDashDot)) return;
    Border changed = border();
    for (const Side side : kSides) (changed.*side).style = static_cast<std::uint8_t>(style);
    styles().set_border(index_, changed);
  });
}

void FormatObject::setBorderColor(libxl::Color color) {
  run([&] {
    Color stored;
    if (!check_color(color, &stored)) return;
    Border changed = border();
    for (const Side side : kSides) (changed.*side).color = stored;
    styles().set_border(index_, changed);
  });
}

libxl::BorderStyle FormatObject::borderLeft() const { return side_style(&Border::left); }
libxl::BorderStyle FormatObject::borderRight() const { return side_style(&Border::right); }
libxl::BorderStyle FormatObject::borderTop() const { return side_style(&Border::top); }
libxl::BorderStyle FormatObject::borderBottom() const { return side_style(&Border::bottom); }
libxl::BorderStyle FormatObject::borderDiagonalStyle() const {
  return side_style(&Border::diagonal);
}

void FormatObject::setBorderLeft(libxl::BorderStyle style) { set_side_style(&Border::left, style); }
void FormatObject::setBorderRight(libxl::BorderStyle style) {
  set_side_style(&Border::right, style);
}
void FormatObject::setBorderTop(libxl::BorderStyle style) { set_side_style(&Border::top, style); }
void FormatObject::setBorderBottom(libxl::BorderStyle style) {
  set_side_style(&Border::bottom, style);
}
void FormatObject::setBorderDiagonalStyle(libxl::BorderStyle style) {
  set_side_style(&Border::diagonal, style);
}

libxl::Color FormatObject::borderLeftColor() const { return side_color(&Border::left); }
libxl::Color FormatObject::borderRightColor() const { return side_color(&Border::right); }
libxl::Color FormatObject::borderTopColor() const { return side_color(&Border::top); }
libxl::Color FormatObject::borderBottomColor() const { return side_color(&Border::bottom); }
libxl::Color FormatObject::borderDiagonalColor() const { return side_color(&Border::diagonal); }

void FormatObject::setBorderLeftColor(libxl::Color color) { set_side_color(&Border::left, color); }
void FormatObject::setBorderRightColor(libxl::Color color) {
  set_side_color(&Border::right, color);
}
void FormatObject::setBorderTopColor(libxl::Color color) { set_side_color(&Border::top, color); }
void FormatObject::setBorderBottomColor(libxl::Color color) {
  set_side_color(&Border::bottom, color);
}
void FormatObject::setBorderDiagonalColor(libxl::Color color) {
  set_side_color(&Border::diagonal, color);
}

libxl::BorderDiagonal FormatObject::borderDiagonal() const {
  return run(libxl::DiagonalNone,
             [&] { return static_cast<libxl::BorderDiagonal>(border().diagonals); });
}

// A diagonal without a style would not show.
void FormatObject::setBorderDiagonal(libxl::BorderDiagonal diagonals) {
  run([&] {
    if (!check("diagonal border", diagonals, libxl::DiagonalBoth)) return;
    Border changed = border();
    changed.diagonals = static_cast<std::uint8_t>(diagonals);
    if (changed.diagonals != 0 && changed.diagonal.style == libxl::BorderNone)
      changed.diagonal.style = libxl::BorderThin;
    styles().set_border(index_, changed);
  });
}

// Fill and protection.

// A gradient gives way to whatever is set of a fill.
void FormatObject::set_fill(Fill fill) {
  fill.carried = 0;
  styles().set_fill(index_, fill);
}

libxl::FillPattern FormatObject::fillPattern() const {
  return run(libxl::FillNone, [&] { return static_cast<libxl::FillPattern>(fill().pattern); });
}

void FormatObject::setFillPattern(libxl::FillPattern pattern) {
  run([&] {
    if (!check("fill pattern", pattern, libxl::FillGray6)) return;
    Fill changed = fill();
    changed.pattern = static_cast<std::uint8_t>(pattern);
    set_fill(changed);
  });
}

libxl::Color FormatObject::patternForegroundColor() const {
  return run(libxl::ColorDefaultForeground,
             [&] { return number(fill().foreground, kForegroundNumber); });
}

void FormatObject::setPatternForegroundColor(libxl::Color color) {
  run([&] {
    Color stored;
    if (!check_color(color, &stored)) return;
    Fill changed = fill();
    changed.foreground = stored;
    set_fill(changed);
  });
}

libxl::Color FormatObject::patternBackgroundColor() const {
  return run(libxl::ColorDefaultBackground,
             [&] { return number(fill().background, kBackgroundNumber); });
}

void FormatObject::setPatternBackgroundColor(libxl::Color color) {
  run([&] {
    Color stored;
    if (!check_color(color, &stored)) return;
    Fill changed = fill();
    changed.background = stored;
    set_fill(changed);
  });
}

bool FormatObject::locked() const {
  return run(false, [&] { return record().locked; });
}

void FormatObject::setLocked(bool locked) {
  run([&] { change(kFormatProtection).locked = locked; });
}

bool FormatObject::hidden() const {
  return run(false, [&] { return record().hidden; });
}

void FormatObject::setHidden(bool hidden) {
  run([&] { change(kFormatProtection).hidden = hidden; });
}

}  // namespace engine::api
