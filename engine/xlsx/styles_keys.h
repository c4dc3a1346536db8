// What makes two entries of the styles part equal.
//
// A key is a row of bytes that holds all an entry says: the values of its record and what the
// file's element says beyond them. Entries with the same key are written once.
#pragma once

#include <cstdint>
#include <pugixml.hpp>
#include <string>
#include <string_view>

#include "engine/workbook/styles.h"

namespace engine::xlsx {

// What elements say that the workbook has no model of; empty for most and for null elements. A font
// that got another name loses what would contradict the name.
std::string rest_of_font(pugi::xml_node font, bool is_renamed);
std::string rest_of_border(pugi::xml_node border);
std::string rest_of_format(pugi::xml_node xf);

// What a format's parts are called in the file: the id of its number format, the places of the
// others in their lists.
struct FormatNumbers {
  std::uint32_t number_format = 0;
  std::uint32_t font = 0;
  std::uint32_t fill = 0;
  std::uint32_t border = 0;
};

std::string font_key(const FontRecord& record, std::string_view rest);
std::string border_key(const Border& record, std::string_view rest);
std::string fill_key(const Fill& record);
std::string format_key(const FormatRecord& record, const FormatNumbers& numbers,
                       std::string_view rest);

}  // namespace engine::xlsx
