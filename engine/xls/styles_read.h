// Fonts, number formats, cell formats and the palette of the globals.
//
// Files number what the model counts otherwise: there is no font 4, programs write the first four
// fonts alike whether anything uses them, and formats of cells and of named styles share one list.
// So records are gathered first.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "engine/workbook/styles.h"

namespace engine::xls {

class StylesReader {
 public:
  void take_font(std::string_view record) { fonts_.emplace_back(record); }
  void take_number_format(std::string_view record) { number_formats_.emplace_back(record); }
  void take_format(std::string_view record) { formats_.emplace_back(record); }
  void take_palette(std::string_view record) { palette_ = record; }

  // Fills the model's styles. Gives the numbers of formats there by those of the file.
  std::vector<std::uint32_t> finish(Styles& styles) const;

 private:
  std::vector<std::uint32_t> append_fonts(Styles& styles) const;

  std::vector<std::string> fonts_;
  std::vector<std::string> number_formats_;
  std::vector<std::string> formats_;
  std::string palette_;
};

}  // namespace engine::xls
