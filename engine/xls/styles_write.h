// Writing fonts, number formats, cell formats and the palette.
//
// The format has 56 colours, which are the book's palette. A colour that is none of them takes the
// place of one that nothing uses, and where there is none the nearest stands in for it.
#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "engine/workbook/workbook.h"
#include "engine/xls/record_writer.h"
#include "engine/xls/styles_read.h"

namespace engine::xls {

// The book's colours as the file has them.
class PaletteWriter {
 public:
  // `used` are all colours of the book in their order. A palette that is fixed may be used by
  // others, whom nobody knows.
  PaletteWriter(const ColorTable& colors, std::span<const Color> used, bool is_fixed);

  // The number of a colour, `absent` where there is none or it is automatic.
  std::uint32_t number(const Color& color, std::uint32_t absent) const;
  const Palette& palette() const { return palette_; }

 private:
  ColorTable colors_;
  Palette palette_;
  std::map<std::uint32_t, std::uint32_t> numbers_;  // by red, green and blue
};

// The entries of a book as the file numbers them. Those of a loaded file stay where they are, with
// what only the file knows of them; of the others equal ones are one.
class StyleNumbers {
 public:
  // `file` is empty for a new book and outlives this. Throws LimitError.
  StyleNumbers(const Workbook& book, const FileStyles& file, bool palette_is_fixed);

  std::uint32_t format(std::uint32_t index) const {
    return index < formats_.size() ? formats_[index] : formats_[0];
  }
  std::uint32_t color(const Color& color, std::uint32_t absent) const {
    return palette_.number(color, absent);
  }

  // The records of entries that the file does not have.
  void write_fonts(RecordWriter& out) const;
  void write_number_formats(RecordWriter& out) const;
  void write_formats(RecordWriter& out) const;
  // The named style that every new book has.
  static void write_named_style(RecordWriter& out);
  void write_palette(RecordWriter& out) const;
  bool palette_differs() const { return palette_.palette() != styles_.colors.palette; }

  // The data of the file's records by their places, as they are now.
  const std::string& font_record(std::size_t place) const { return font_records_[place]; }
  const std::string& format_record(std::size_t place) const { return format_records_[place]; }
  // Whether the look of a format is no longer what later programs have noted of it.
  bool drops_extension(std::size_t place) const { return restyled_[place]; }
  // All of them, with new ones behind.
  std::span<const std::string> format_records() const { return format_records_; }

 private:
  void number_fonts();
  void number_formats();
  void append_style_formats();

  const Styles& styles_;
  const FileStyles& file_;
  PaletteWriter palette_;
  std::vector<std::uint32_t> fonts_;  // numbers by index
  std::vector<std::uint32_t> formats_;
  std::vector<std::string> font_records_;  // the file's, then new ones
  std::vector<std::string> format_records_;
  std::vector<bool> restyled_;  // of the file's formats
};

// The sum over the records of all formats by which later programs know that nobody has changed
// what they have noted of these.
std::uint32_t check_sum_of(std::span<const std::string> format_records);

}  // namespace engine::xls
