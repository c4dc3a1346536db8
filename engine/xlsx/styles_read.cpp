#include "engine/xlsx/styles_read.h"

#include <algorithm>
#include <charconv>
#include <string>

#include "engine/package/file_error.h"
#include "engine/package/xml_tree.h"
#include "engine/text/number_text.h"
#include "engine/xlsx/escapes.h"
#include "engine/xlsx/styles_tokens.h"

namespace engine::xlsx {

namespace {

using package::child;
using package::Family;

// Spreadsheet programs hold 65,430 formats; a list far beyond that is made to exhaust memory.
constexpr std::size_t kMaxEntries = 1000000;
constexpr std::string_view kBlanks = " \t\r\n";
constexpr unsigned kMaxRotation = 180;
constexpr unsigned kStacked = 255;
constexpr unsigned kMaxIndent = 250;

std::optional<double> number_of(pugi::xml_attribute attribute) {
  return parse_number(attribute.value());
}

// An element that switches something on by being there: <b/>.
bool read_switch(pugi::xml_node element) {
  return element && element.attribute("val").as_bool(true);
}

std::uint8_t read_underline(pugi::xml_node element) {
  if (!element) return 0;
  const std::string_view token = element.attribute("val").as_string("single");
  for (const auto& [value, known] : kUnderlineTokens)
    if (known == token) return value;
  return 0;
}

BorderSide read_side(pugi::xml_node side) {
  BorderSide made;
  made.style = value_of(kBorderTokens, side.attribute("style").value(), 0);
  made.color = read_color(child(side, Family::Main, "color"));
  return made;
}

// The entry that a format names; beyond the list it means the first one.
template <class T>
T named_by(pugi::xml_node xf, const char* attribute, const std::vector<T>& list) {
  const std::uint32_t number = xf.attribute(attribute).as_uint();
  if (list.empty()) return {};
  return list[number < list.size() ? number : 0];
}

FormatRecord read_format(pugi::xml_node xf) {
  FormatRecord made;
  made.font = xf.attribute("fontId").as_uint();
  made.number_format = xf.attribute("numFmtId").as_uint();
  made.alignment = read_alignment(child(xf, Family::Main, "alignment"));
  const auto protection = child(xf, Family::Main, "protection");
  made.locked = protection.attribute("locked").as_bool(true);
  made.hidden = protection.attribute("hidden").as_bool(false);
  return made;
}

void read_palette(pugi::xml_node sheet, Palette& palette) {
  const auto colors = child(sheet, Family::Main, "colors");
  const auto indexed = child(colors, Family::Main, "indexedColors");
  std::uint32_t index = 0;
  for (const auto entry : package::children(indexed, Family::Main, "rgbColor")) {
    if (index >= kPaletteFirst + kPaletteSize) return;
    const auto rgb = parse_rgb(entry.attribute("rgb").value());
    if (rgb && index >= kPaletteFirst) palette[index - kPaletteFirst] = *rgb;
    ++index;
  }
}

// Whether everything that a choice requires is markup that the engine reads. Extensions are not,
// also those that it may ignore.
bool is_readable(pugi::xml_node choice) {
  std::string_view prefixes = choice.attribute("Requires").value();
  bool any = false;
  while (!prefixes.empty()) {
    const std::string_view prefix = prefixes.substr(0, prefixes.find_first_of(kBlanks));
    prefixes.remove_prefix(std::min(prefix.size() + 1, prefixes.size()));
    if (prefix.empty()) continue;
    if (package::family_of_prefix(choice, prefix) == Family::Unknown) return false;
    any = true;
  }
  return any;
}

// The branch of alternate content that counts; null when there is none.
pugi::xml_node chosen_branch(pugi::xml_node alternatives) {
  for (const auto branch : alternatives.children()) {
    if (package::is(branch, Family::MarkupCompatibility, "Fallback")) return branch;
    if (package::is(branch, Family::MarkupCompatibility, "Choice") && is_readable(branch))
      return branch;
  }
  return {};
}

bool is_alternative(pugi::xml_node node) {
  return package::is(node, Family::MarkupCompatibility, "AlternateContent");
}

// Takes prefixes that an element declares to another, unless they mean something there.
void declare_in(pugi::xml_node target, pugi::xml_node element) {
  for (const auto attribute : element.attributes()) {
    if (!std::string_view(attribute.name()).starts_with("xmlns:")) continue;
    pugi::xml_node scope = target;
    while (scope && !scope.attribute(attribute.name())) scope = scope.parent();
    if (!scope) target.append_copy(attribute);
  }
}

void collect_entries(pugi::xml_node list, std::string_view entry,
                     std::vector<pugi::xml_node>& entries) {
  for (const auto node : list.children()) {
    if (package::is(node, Family::Main, entry)) entries.push_back(node);
    else if (is_alternative(node)) collect_entries(chosen_branch(node), entry, entries);
  }
}

}  // namespace

std::optional<std::uint32_t> parse_rgb(std::string_view text) {
  if (text.size() != 6 && text.size() != 8) return std::nullopt;
  std::uint32_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, 16);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value & 0xFFFFFF;
}

Color read_color(pugi::xml_node element) {
  Color made;
  const auto theme = element.attribute("theme");
  const auto indexed = element.attribute("indexed");
  if (theme) made = Color::theme(theme.as_uint(), 0);
  else if (const auto rgb = parse_rgb(element.attribute("rgb").value())) made = Color::rgb(*rgb);
  else if (indexed) made = Color::indexed(indexed.as_uint());
  else if (element.attribute("auto").as_bool()) made = Color::automatic();
  else return made;
  made.tint = number_of(element.attribute("tint")).value_or(0);
  return made;
}

FontRecord read_font(pugi::xml_node font) {
  FontRecord made;
  for (const auto element : font.children()) {
    const std::string_view name = package::local_name(element);
    const auto value = element.attribute("val");
    if (name == "b") made.bold = read_switch(element);
    else if (name == "i") made.italic = read_switch(element);
    else if (name == "strike") made.strike_out = read_switch(element);
    else if (name == "u") made.underline = read_underline(element);
    else if (name == "vertAlign") made.script = value_of(kScriptTokens, value.value(), 0);
    else if (name == "sz")
      made.size = std::clamp<double>(number_of(value).value_or(made.size), 1, kMaxFontSize);
    else if (name == "color") made.color = read_color(element);
    else if (name == "name") made.name = unescape(value.value());
  }
  return made;
}

Alignment read_alignment(pugi::xml_node alignment) {
  Alignment made;
  if (!alignment) return made;
  made.horizontal = value_of(kHorizontalTokens, alignment.attribute("horizontal").value(), 0);
  made.vertical = value_of(kVerticalTokens, alignment.attribute("vertical").value(), 2);
  const unsigned rotation = alignment.attribute("textRotation").as_uint();
  if (rotation <= kMaxRotation || rotation == kStacked)
    made.rotation = static_cast<std::uint8_t>(rotation);
  made.indent =
      static_cast<std::uint8_t>(std::min(alignment.attribute("indent").as_uint(), kMaxIndent));
  made.wrap = alignment.attribute("wrapText").as_bool();
  made.shrink_to_fit = alignment.attribute("shrinkToFit").as_bool();
  return made;
}

pugi::xml_node border_side(pugi::xml_node border, std::string_view side) {
  const auto found = child(border, Family::Main, side);
  if (found) return found;
  if (side == "left") return child(border, Family::Main, "start");
  if (side == "right") return child(border, Family::Main, "end");
  return {};
}

Border read_border(pugi::xml_node border) {
  Border made;
  made.left = read_side(border_side(border, "left"));
  made.right = read_side(border_side(border, "right"));
  made.top = read_side(border_side(border, "top"));
  made.bottom = read_side(border_side(border, "bottom"));
  made.diagonal = read_side(border_side(border, "diagonal"));
  if (border.attribute("diagonalDown").as_bool()) made.diagonals |= 1;
  if (border.attribute("diagonalUp").as_bool()) made.diagonals |= 2;
  return made;
}

Fill read_fill(pugi::xml_node fill, std::uint32_t number) {
  Fill made;
  const auto pattern = child(fill, Family::Main, "patternFill");
  if (!pattern && child(fill, Family::Main, "gradientFill")) {
    made.carried = number + 1;
    return made;
  }
  made.pattern = value_of(kPatternTokens, pattern.attribute("patternType").value(), 0);
  made.foreground = read_color(child(pattern, Family::Main, "fgColor"));
  made.background = read_color(child(pattern, Family::Main, "bgColor"));
  return made;
}

std::vector<pugi::xml_node> style_entries(pugi::xml_node sheet, std::string_view list,
                                          std::string_view entry, std::string_view part) {
  std::vector<pugi::xml_node> entries;
  collect_entries(child(sheet, Family::Main, list), entry, entries);
  if (entries.size() > kMaxEntries)
    package::throw_damaged(std::string(part) + ", " + std::string(list),
                           std::to_string(entries.size()) + " entries");
  return entries;
}

void settle_alternatives(pugi::xml_node entry) {
  for (pugi::xml_node branch = entry.parent(); is_alternative(branch.parent());) {
    const pugi::xml_node alternatives = branch.parent();
    pugi::xml_node list = alternatives.parent();
    declare_in(list, alternatives);
    declare_in(list, branch);
    while (const auto one = branch.first_child()) list.insert_move_before(one, alternatives);
    list.remove_child(alternatives);
    branch = list;
  }
}

void read_style_sheet(pugi::xml_node sheet, std::string_view part, Styles& styles) {
  styles.begin_file_entries();
  read_palette(sheet, styles.colors.palette);
  for (const auto number : style_entries(sheet, "numFmts", "numFmt", part)) {
    const auto id = number.attribute("numFmtId");
    const auto code = number.attribute("formatCode");
    if (id && code) styles.define_number_format(id.as_uint(), unescape(code.value()));
  }
  for (const auto font : style_entries(sheet, "fonts", "font", part))
    styles.append_font(read_font(font));
  std::vector<Fill> fills;
  for (const auto fill : style_entries(sheet, "fills", "fill", part))
    fills.push_back(read_fill(fill, static_cast<std::uint32_t>(fills.size())));
  std::vector<Border> borders;
  for (const auto border : style_entries(sheet, "borders", "border", part))
    borders.push_back(read_border(border));
  for (const auto xf : style_entries(sheet, "cellXfs", "xf", part))
    styles.append_format(read_format(xf), named_by(xf, "borderId", borders),
                         named_by(xf, "fillId", fills));
  styles.end_of_file_entries();
}

}  // namespace engine::xlsx
