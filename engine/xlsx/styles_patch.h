// Records of the workbook written into elements of the styles part.
//
// Elements keep what they say beyond the record: attributes and children that the workbook has no
// model of stay where they stand, and new children take their place in the format's order.
#pragma once

#include <pugixml.hpp>
#include <span>
#include <string_view>

#include "engine/workbook/styles.h"
#include "engine/xlsx/attributes.h"

namespace engine::xlsx {

// All aspects of a record, for an element that is new.
inline constexpr unsigned kAllAspects = ~0U;

// The colour as the child of that name, at its place in the order of the parent's children.
void patch_color(pugi::xml_node parent, std::string_view name, const Color& color,
                 std::span<const std::string_view> order);

// Only the aspects named.
void patch_font(pugi::xml_node font, const FontRecord& record, unsigned aspects);
// Only what the element says otherwise.
void patch_alignment(pugi::xml_node xf, const Alignment& alignment);
void patch_protection(pugi::xml_node xf, bool locked, bool hidden);
void patch_border(pugi::xml_node border, const Border& record);

// Makes the content of an empty element.
void write_fill(pugi::xml_node fill, const Fill& record);

}  // namespace engine::xlsx
