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

// What a file has of fonts and formats, in its order and by its numbers.
struct FileStyles {
  static constexpr std::uint32_t kNone = 0xFFFFFFFF;

  // The data of the records.
  std::vector<std::string> fonts;
  std::vector<std::string> formats;
  // Places in those and numbers in the model. A font that only repeats the first one has none, and
  // a format of a named style has none.
  std::vector<std::uint32_t> font_models;
  std::vector<std::uint32_t> format_models;
  std::vector<std::uint32_t> number_formats;  // ids that the file defines

  // The number in the model of a format that cells name.
  std::uint32_t format(std::size_t number) const {
    return number < format_models.size() && format_models[number] != kNone ? format_models[number]
                                                                           : 0;
  }
};

// The number that formats call the font record of a place by.
std::uint32_t number_of_font(std::size_t place);

// Whether the data of a format's record is that of a named style.
bool is_of_style(std::string_view format);

class StylesReader {
 public:
  void take_font(std::string_view record) { file_.fonts.emplace_back(record); }
  void take_number_format(std::string_view record) { number_formats_.emplace_back(record); }
  void take_format(std::string_view record) { file_.formats.emplace_back(record); }
  void take_palette(std::string_view record) { palette_ = record; }

  // Fills the model's styles.
  FileStyles finish(Styles& styles);

 private:
  // Gives the fonts' numbers in the model by those of the file.
  std::vector<std::uint32_t> append_fonts(Styles& styles);

  FileStyles file_;
  std::vector<std::string> number_formats_;
  std::string palette_;
};

}  // namespace engine::xls
