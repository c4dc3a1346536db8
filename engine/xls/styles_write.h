// Writing fonts, number formats, cell formats and the palette.
//
// The format has 56 colours, which are the book's palette. A colour that is none of them takes the
// place of one that nothing uses, and where there is none the nearest stands in for it.
#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <vector>

#include "engine/workbook/workbook.h"
#include "engine/xls/record_writer.h"

namespace engine::xls {

// The book's colours as the file has them.
class PaletteWriter {
 public:
  // `used` are all colours of the book in their order.
  PaletteWriter(const ColorTable& colors, std::span<const Color> used);

  // The number of a colour, `absent` where there is none or it is automatic.
  std::uint32_t number(const Color& color, std::uint32_t absent) const;
  const Palette& palette() const { return palette_; }

 private:
  ColorTable colors_;
  Palette palette_;
  std::map<std::uint32_t, std::uint32_t> numbers_;  // by red, green and blue
};

// The entries of a book as the file numbers them: equal ones are one.
class StyleNumbers {
 public:
  // Throws LimitError.
  explicit StyleNumbers(const Workbook& book);

  std::uint32_t format(std::uint32_t index) const {
    return index < formats_.size() ? formats_[index] : formats_[0];
  }
  std::uint32_t color(const Color& color, std::uint32_t absent) const {
    return palette_.number(color, absent);
  }

  // FONT, FORMAT, XF and STYLE records, and PALETTE where it is not the usual one.
  void write(RecordWriter& out) const;

 private:
  const Styles& styles_;
  PaletteWriter palette_;
  std::vector<std::uint32_t> fonts_;          // numbers by index
  std::vector<std::uint32_t> written_fonts_;  // indices, in the file's order
  std::vector<std::uint32_t> formats_;
  std::vector<std::uint32_t> written_formats_;
};

}  // namespace engine::xls
