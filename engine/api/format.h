// Cell formats as the interface gives them out: live views of the book's list.
#pragma once

#include <cstdint>

#include "engine/api/book_context.h"
#include "platform/libxl/libxl.h"

namespace engine::api {

class FormatObject final : public libxl::Format, public BookPart {
 public:
  FormatObject(BookContext& book, std::uint32_t index) : BookPart(book, "format"), index_(index) {}

  std::uint32_t index() const { return index_; }

  libxl::Font* font() const override;
  bool setFont(libxl::Font* font) override;
  int numFormat() const override;
  void setNumFormat(int numFormat) override;
  libxl::AlignH alignH() const override;
  void setAlignH(libxl::AlignH align) override;
  libxl::AlignV alignV() const override;
  void setAlignV(libxl::AlignV align) override;
  bool wrap() const override;
  void setWrap(bool wrap) override;
  int rotation() const override;
  bool setRotation(int rotation) override;
  int indent() const override;
  void setIndent(int indent) override;
  bool shrinkToFit() const override;
  void setShrinkToFit(bool shrinkToFit) override;
  void setBorder(libxl::BorderStyle style) override;
  void setBorderColor(libxl::Color color) override;
  libxl::BorderStyle borderLeft() const override;
  void setBorderLeft(libxl::BorderStyle style) override;
  libxl::BorderStyle borderRight() const override;
  void setBorderRight(libxl::BorderStyle style) override;
  libxl::BorderStyle borderTop() const override;
  void setBorderTop(libxl::BorderStyle style) override;
  libxl::BorderStyle borderBottom() const override;
  void setBorderBottom(libxl::BorderStyle style) override;
  libxl::Color borderLeftColor() const override;
  void setBorderLeftColor(libxl::Color color) override;
  libxl::Color borderRightColor() const override;
  void setBorderRightColor(libxl::Color color) override;
  libxl::Color borderTopColor() const override;
  void setBorderTopColor(libxl::Color color) override;
  libxl::Color borderBottomColor() const override;
  void setBorderBottomColor(libxl::Color color) override;
  libxl::BorderDiagonal borderDiagonal() const override;
  void setBorderDiagonal(libxl::BorderDiagonal diagonals) override;
  libxl::BorderStyle borderDiagonalStyle() const override;
  void setBorderDiagonalStyle(libxl::BorderStyle style) override;
  libxl::Color borderDiagonalColor() const override;
  void setBorderDiagonalColor(libxl::Color color) override;
  libxl::FillPattern fillPattern() const override;
  void setFillPattern(libxl::FillPattern pattern) override;
  libxl::Color patternForegroundColor() const override;
  void setPatternForegroundColor(libxl::Color color) override;
  libxl::Color patternBackgroundColor() const override;
  void setPatternBackgroundColor(libxl::Color color) override;
  bool locked() const override;
  void setLocked(bool locked) override;
  bool hidden() const override;
  void setHidden(bool hidden) override;

 private:
  using Side = BorderSide Border::*;

  Styles& styles() const { return book_.workbook().styles; }
  const FormatRecord& record() const { return styles().format(index_); }
  FormatRecord& change(unsigned aspects) { return styles().change_format(index_, aspects); }
  const Border& border() const { return styles().border_of(index_); }
  const Fill& fill() const { return styles().fill_of(index_); }
  void set_fill(Fill fill);

  bool check(std::string_view property, int value, int last) const;
  bool check_color(libxl::Color color, Color* stored) const;
  libxl::Color number(const Color& color, int absent) const;

  libxl::BorderStyle side_style(Side side) const;
  void set_side_style(Side side, libxl::BorderStyle style);
  libxl::Color side_color(Side side) const;
  void set_side_color(Side side, libxl::Color color);

  const std::uint32_t index_;
};

}  // namespace engine::api
