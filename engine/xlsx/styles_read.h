// Elements of the styles part as records of the workbook.
//
// A null element reads as the defaults that a missing one stands for. The same readers tell the
// writer what an element says already, so that only what differs is written.
#pragma once

#include <cstdint>
#include <optional>
#include <pugixml.hpp>
#include <string_view>
#include <vector>

#include "engine/workbook/styles.h"

namespace engine::xlsx {

// RRGGBB, or AARRGGBB, whose alpha means nothing in a workbook.
std::optional<std::uint32_t> parse_rgb(std::string_view text);

Color read_color(pugi::xml_node element);
FontRecord read_font(pugi::xml_node font);
Alignment read_alignment(pugi::xml_node alignment);
Border read_border(pugi::xml_node border);
// `number` is the fill's place in its list, by which a gradient is carried.
Fill read_fill(pugi::xml_node fill, std::uint32_t number);

// The side of a border, which strict files may name by the direction of reading.
pugi::xml_node border_side(pugi::xml_node border, std::string_view side);

// The entries of a list of the style sheet: of `fonts` each `font`, and so on. Of alternate content
// those of one branch count. Throws FileError when they are more than any workbook has.
std::vector<pugi::xml_node> style_entries(pugi::xml_node sheet, std::string_view list,
                                          std::string_view entry, std::string_view part);

// Puts the branch that the entry stands in in place of its alternate content, before the entry is
// changed: programs that choose another branch would show the others as they were.
void settle_alternatives(pugi::xml_node entry);

// Everything of a style sheet that the workbook has a model of.
void read_style_sheet(pugi::xml_node sheet, std::string_view part, Styles& styles);

}  // namespace engine::xlsx
