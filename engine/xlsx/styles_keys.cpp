#include "engine/xlsx/styles_keys.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <span>

#include "engine/package/xml_tree.h"

namespace engine::xlsx {

namespace {

constexpr std::string_view kFontChildren[] = {"b",         "i",  "strike", "u",
                                              "vertAlign", "sz", "color",  "name"};
constexpr std::string_view kBorderChildren[] = {"left", "start",  "right",   "end",
                                                "top",  "bottom", "diagonal"};
constexpr std::string_view kBorderAttributes[] = {"diagonalUp", "diagonalDown"};
constexpr std::string_view kFormatChildren[] = {"alignment", "protection"};
constexpr std::string_view kFormatAttributes[] = {
    "numFmtId",  "fontId",    "fillId",      "borderId",       "applyNumberFormat",
    "applyFont", "applyFill", "applyBorder", "applyAlignment", "applyProtection"};
constexpr std::string_view kAlignmentAttributes[] = {"horizontal", "vertical", "textRotation",
                                                     "indent",     "wrapText", "shrinkToFit"};
constexpr std::string_view kProtectionAttributes[] = {"locked", "hidden"};

using Names = std::span<const std::string_view>;

bool is_among(std::string_view name, Names names) {
  return std::ranges::find(names, name) != names.end();
}

// 0 is what the formats' attributes mean when they are absent.
void append_attributes(std::string& rest, pugi::xml_node element, Names known) {
  for (const auto attribute : element.attributes()) {
    const std::string_view value = attribute.value();
    if (value == "0" || is_among(attribute.name(), known)) continue;
    rest.append(attribute.name()).append(1, '=').append(value).append(1, '\0');
  }
}

void append_children(std::string& rest, pugi::xml_node element, Names known) {
  for (const auto child : element.children())
    if (child.type() == pugi::node_element && !is_among(package::local_name(child), known))
      rest.append(package::serialize_xml(child)).append(1, '\0');
}

template <class... Values>
void append_values(std::string& key, const Values&... values) {
  std::array<char, (sizeof(Values) + ...)> bytes;
  char* at = bytes.data();
  ((std::memcpy(at, &values, sizeof(Values)), at += sizeof(Values)), ...);
  key.append(bytes.data(), bytes.size());
}

void append_color(std::string& key, const Color& color) {
  if (color.kind == ColorKind::kAbsent) append_values(key, color.kind);
  else append_values(key, color.kind, color.value, color.tint);
}

void append_side(std::string& key, const BorderSide& side) {
  append_values(key, side.style);
  append_color(key, side.color);
}

}  // namespace

std::string rest_of_font(pugi::xml_node font, bool is_renamed) {
  std::string rest;
  for (const auto child : font.children()) {
    const std::string_view name = package::local_name(child);
    if (child.type() != pugi::node_element || is_among(name, kFontChildren)) continue;
    if (is_renamed && (name == "scheme" || name == "family")) continue;
    rest.append(package::serialize_xml(child)).append(1, '\0');
  }
  return rest;
}

std::string rest_of_border(pugi::xml_node border) {
  std::string rest;
  append_attributes(rest, border, kBorderAttributes);
  append_children(rest, border, kBorderChildren);
  return rest;
}

std::string rest_of_format(pugi::xml_node xf) {
  using package::Family;
  std::string rest;
  append_attributes(rest, xf, kFormatAttributes);
  append_children(rest, xf, kFormatChildren);
  rest.append(1, '\0');
  append_attributes(rest, package::child(xf, Family::Main, "alignment"), kAlignmentAttributes);
  append_attributes(rest, package::child(xf, Family::Main, "protection"), kProtectionAttributes);
  return rest.size() == 1 ? std::string() : rest;
}

std::string font_key(const FontRecord& record, std::string_view rest) {
  constexpr std::size_t kRoom = 64;
  std::string key;
  key.reserve(record.name.size() + rest.size() + kRoom);
  key.append(record.name).append(1, '\0');
  append_values(key, record.size, record.script, record.underline, record.bold, record.italic,
                record.strike_out);
  // In fonts an absent colour is the automatic one.
  append_color(key, record.color.kind == ColorKind::kAutomatic ? Color() : record.color);
  return key.append(rest);
}

std::string border_key(const Border& record, std::string_view rest) {
  std::string key;
  for (const BorderSide* side :
       {&record.left, &record.right, &record.top, &record.bottom, &record.diagonal})
    append_side(key, *side);
  append_values(key, record.diagonals);
  return key.append(rest);
}

std::string fill_key(const Fill& record) {
  std::string key;
  append_values(key, record.pattern, record.carried);
  append_color(key, record.foreground);
  append_color(key, record.background);
  return key;
}

std::string format_key(const FormatRecord& record, const FormatNumbers& numbers,
                       std::string_view rest) {
  const Alignment& alignment = record.alignment;
  std::string key;
  append_values(key, numbers.font, numbers.fill, numbers.border, numbers.number_format,
                alignment.horizontal, alignment.vertical, alignment.rotation, alignment.indent,
                alignment.wrap, alignment.shrink_to_fit, record.locked, record.hidden);
  return key.append(rest);
}

}  // namespace engine::xlsx
