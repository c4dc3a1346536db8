#include "engine/xlsx/styles_patch.h"

#include <algorithm>
#include <string>

#include "engine/package/xml_tree.h"
#include "engine/text/number_text.h"
#include "engine/xlsx/escapes.h"
#include "engine/xlsx/styles_read.h"
#include "engine/xlsx/styles_tokens.h"

namespace engine::xlsx {

namespace {

using package::child;
using package::Family;

constexpr std::string_view kFontOrder[] = {"b",       "i",      "strike", "condense",  "extend",
                                           "outline", "shadow", "u",      "vertAlign", "sz",
                                           "color",   "name",   "family", "charset",   "scheme"};
constexpr std::string_view kSideOrder[] = {"color"};
constexpr std::string_view kPatternOrder[] = {"fgColor", "bgColor"};
constexpr std::string_view kFormatOrder[] = {"alignment", "protection", "extLst"};
constexpr std::string_view kBorderOrder[] = {"start",  "left",     "end",      "right",     "top",
                                             "bottom", "diagonal", "vertical", "horizontal"};

void set_number(pugi::xml_node element, const char* name, double value) {
  set_attribute(element, name, number_text(value));
}

void set_flag(pugi::xml_node element, const char* name, bool value, bool usual) {
  settle_attribute(element, name, value ? "1" : "0", value == usual);
}

void set_color(pugi::xml_node element, const Color& color) {
  for (const char* name : {"auto", "indexed", "rgb", "theme", "tint"})
    element.remove_attribute(name);
  switch (color.kind) {
    case ColorKind::kAbsent:
      return;
    case ColorKind::kAutomatic:
      set_attribute(element, "auto", "1");
      break;
    case ColorKind::kIndexed:
      set_attribute(element, "indexed", std::to_string(color.value));
      break;
    case ColorKind::kTheme:
      set_attribute(element, "theme", std::to_string(color.value));
      break;
    case ColorKind::kRgb: {
      constexpr char kDigits[] = "0123456789ABCDEF";
      std::string text = "FF";
      for (int shift = 20; shift >= 0; shift -= 4) text += kDigits[color.value >> shift & 15];
      set_attribute(element, "rgb", text);
      break;
    }
  }
  if (color.tint != 0) set_number(element, "tint", color.tint);
}

void patch_font_switch(pugi::xml_node font, std::string_view name, bool on) {
  if (on) ordered_child(font, name, kFontOrder).remove_attribute("val");
  else font.remove_child(child(font, Family::Main, name));
}

void patch_font_name(pugi::xml_node font, std::string_view name) {
  set_attribute(ordered_child(font, "name", kFontOrder), "val", escape(name));
  // Both would make a program take another font than the one named.
  for (const std::string_view rival : {"scheme", "family"})
    font.remove_child(child(font, Family::Main, rival));
}

void patch_underline(pugi::xml_node font, std::uint8_t underline) {
  if (underline == 0) {
    font.remove_child(child(font, Family::Main, "u"));
    return;
  }
  const auto element = ordered_child(font, "u", kFontOrder);
  const auto* const known = std::ranges::find(kUnderlineTokens, underline, &UnderlineToken::value);
  if (known != kUnderlineTokens.end())
    settle_attribute(element, "val", known->token, known->token == "single");
}

void patch_script(pugi::xml_node font, std::uint8_t script) {
  if (script == 0) font.remove_child(child(font, Family::Main, "vertAlign"));
  else set_attribute(ordered_child(font, "vertAlign", kFontOrder), "val", kScriptTokens[script]);
}

void patch_side(pugi::xml_node border, std::string_view name, const BorderSide& side,
                const BorderSide& stored) {
  auto element = border_side(border, name);
  if (element && side == stored) return;
  if (!element) element = ordered_child(border, name, kBorderOrder);
  settle_attribute(element, "style", kBorderTokens[side.style], side.style == 0);
  patch_color(element, "color", side.color, kSideOrder);
}

bool is_empty(pugi::xml_node element) {
  return !element.first_attribute() && !element.first_child();
}

}  // namespace

void patch_color(pugi::xml_node parent, std::string_view name, const Color& color,
                 std::span<const std::string_view> order) {
  const auto found = child(parent, Family::Main, name);
  if (read_color(found) == color) return;
  if (color.kind == ColorKind::kAbsent) parent.remove_child(found);
  else set_color(ordered_child(parent, name, order), color);
}

void patch_font(pugi::xml_node font, const FontRecord& record, unsigned aspects) {
  if (aspects & kFontBold) patch_font_switch(font, "b", record.bold);
  if (aspects & kFontItalic) patch_font_switch(font, "i", record.italic);
  if (aspects & kFontStrikeOut) patch_font_switch(font, "strike", record.strike_out);
  if (aspects & kFontUnderline) patch_underline(font, record.underline);
  if (aspects & kFontScript) patch_script(font, record.script);
  if (aspects & kFontSize) set_number(ordered_child(font, "sz", kFontOrder), "val", record.size);
  if (aspects & kFontColor) {
    const bool is_automatic = record.color.kind == ColorKind::kAutomatic;
    patch_color(font, "color", is_automatic ? Color() : record.color, kFontOrder);
  }
  if (aspects & kFontName) patch_font_name(font, record.name);
}

void patch_alignment(pugi::xml_node xf, const Alignment& alignment) {
  const auto found = child(xf, Family::Main, "alignment");
  const Alignment stored = read_alignment(found);
  if (stored == alignment) return;
  const auto element = ordered_child(xf, "alignment", kFormatOrder);
  if (alignment.horizontal != stored.horizontal)
    settle_attribute(element, "horizontal", kHorizontalTokens[alignment.horizontal],
                     alignment.horizontal == 0);
  if (alignment.vertical != stored.vertical)
    settle_attribute(element, "vertical", kVerticalTokens[alignment.vertical],
                     alignment.vertical == 2);
  if (alignment.rotation != stored.rotation)
    settle_attribute(element, "textRotation", std::to_string(alignment.rotation),
                     alignment.rotation == 0);
  if (alignment.indent != stored.indent)
    settle_attribute(element, "indent", std::to_string(alignment.indent), alignment.indent == 0);
  if (alignment.wrap != stored.wrap) set_flag(element, "wrapText", alignment.wrap, false);
  if (alignment.shrink_to_fit != stored.shrink_to_fit)
    set_flag(element, "shrinkToFit", alignment.shrink_to_fit, false);
  if (is_empty(element)) xf.remove_child(element);
}

void patch_protection(pugi::xml_node xf, bool locked, bool hidden) {
  const auto found = child(xf, Family::Main, "protection");
  const bool is_locked = found.attribute("locked").as_bool(true);
  const bool is_hidden = found.attribute("hidden").as_bool(false);
  if (is_locked == locked && is_hidden == hidden) return;
  const auto element = ordered_child(xf, "protection", kFormatOrder);
  if (is_locked != locked) set_flag(element, "locked", locked, true);
  if (is_hidden != hidden) set_flag(element, "hidden", hidden, false);
  if (is_empty(element)) xf.remove_child(element);
}

void patch_border(pugi::xml_node border, const Border& record) {
  const Border stored = read_border(border);
  patch_side(border, "left", record.left, stored.left);
  patch_side(border, "right", record.right, stored.right);
  patch_side(border, "top", record.top, stored.top);
  patch_side(border, "bottom", record.bottom, stored.bottom);
  patch_side(border, "diagonal", record.diagonal, stored.diagonal);
  if (record.diagonals == stored.diagonals) return;
  set_flag(border, "diagonalDown", (record.diagonals & 1) != 0, false);
  set_flag(border, "diagonalUp", (record.diagonals & 2) != 0, false);
}

void write_fill(pugi::xml_node fill, const Fill& record) {
  const auto pattern = package::append_child(fill, "patternFill");
  set_attribute(pattern, "patternType", kPatternTokens[record.pattern]);
  patch_color(pattern, "fgColor", record.foreground, kPatternOrder);
  patch_color(pattern, "bgColor", record.background, kPatternOrder);
}

}  // namespace engine::xlsx
