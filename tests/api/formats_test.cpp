// Formats and fonts as callers see them.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/api/stage.h"

namespace {

using libxl::Color;
using libxl::Font;
using libxl::Format;

// One property of an object: whether a value is taken, and what is told when it is not.
template <class Object>
struct Property {
  const char* name = nullptr;
  void (*set)(Object&, int) = nullptr;
  int (*get)(const Object&) = nullptr;
  int usual = 0;
  std::vector<int> taken;
  std::vector<int> refused;
  const char* refusal = nullptr;  // of the first of them
};

// A setter and getter of one enumeration or number.
template <auto Set, auto Get, class Object>
constexpr Property<Object> property(const char* name, int usual, std::vector<int> taken,
                                    std::vector<int> refused, const char* refusal) {
  return {name,
          [](Object& object, int value) {
            const auto set = [&]<class Result, class Value>(Result (Object::*)(Value)) {
              (object.*Set)(static_cast<Value>(value));
            };
            set(Set);
          },
          [](const Object& object) { return static_cast<int>((object.*Get)()); },
          usual,
          std::move(taken),
          std::move(refused),
          refusal};
}

const std::vector<int> kColors = {8, 63, 64, 65, 81, 32767};
const std::vector<int> kNoColors = {66, 80, 82, 0xFFFFFF};

const Property<Format> kFormatProperties[] = {
    property<&Format::setAlignH, &Format::alignH, Format>(
        "alignH", 0, {1, 7, 0}, {8, -1}, "horizontal alignment 8 is out of range 0..7"),
    property<&Format::setAlignV, &Format::alignV, Format>(
        "alignV", 2, {0, 4, 2}, {5, -1}, "vertical alignment 5 is out of range 0..4"),
    property<&Format::setWrap, &Format::wrap, Format>("wrap", 0, {1, 0}, {}, ""),
    property<&Format::setRotation, &Format::rotation, Format>(
        "rotation", 0, {1, 90, 91, 180, 255, 0}, {181, -91, 254, 256, 99999}, "ok"),
    property<&Format::setIndent, &Format::indent, Format>("indent", 0, {1, 250}, {251, -1},
                                                          "indent 251 is out of range 0..250"),
    property<&Format::setShrinkToFit, &Format::shrinkToFit, Format>("shrink", 0, {1, 0}, {}, ""),
    property<&Format::setNumFormat, &Format::numFormat, Format>(
        "numFormat", 0, {14, 49}, {50, -1, 164}, "number format 50 is not known"),
    property<&Format::setBorderLeft, &Format::borderLeft, Format>(
        "left", 0, {1, 13}, {14, -1}, "border style 14 is out of range 0..13"),
    property<&Format::setBorderRight, &Format::borderRight, Format>(
        "right", 0, {2, 13}, {14, -1}, "border style 14 is out of range 0..13"),
    property<&Format::setBorderTop, &Format::borderTop, Format>(
        "top", 0, {3, 13}, {14, -1}, "border style 14 is out of range 0..13"),
    property<&Format::setBorderBottom, &Format::borderBottom, Format>(
        "bottom", 0, {4, 13}, {14, -1}, "border style 14 is out of range 0..13"),
    property<&Format::setBorderDiagonalStyle, &Format::borderDiagonalStyle, Format>(
        "diagonal style", 0, {5, 13}, {14, -1}, "border style 14 is out of range 0..13"),
    property<&Format::setBorderDiagonal, &Format::borderDiagonal, Format>(
        "diagonal", 0, {1, 2, 3}, {4, -1}, "diagonal border 4 is out of range 0..3"),
    property<&Format::setBorderLeftColor, &Format::borderLeftColor, Format>(
        "left colour", 64, kColors, kNoColors, "colour 66 is not known"),
    property<&Format::setBorderRightColor, &Format::borderRightColor, Format>(
        "right colour", 64, kColors, kNoColors, "colour 66 is not known"),
    property<&Format::setBorderTopColor, &Format::borderTopColor, Format>(
        "top colour", 64, kColors, kNoColors, "colour 66 is not known"),
    property<&Format::setBorderBottomColor, &Format::borderBottomColor, Format>(
        "bottom colour", 64, kColors, kNoColors, "colour 66 is not known"),
    property<&Format::setBorderDiagonalColor, &Format::borderDiagonalColor, Format>(
        "diagonal colour", 64, kColors, kNoColors, "colour 66 is not known"),
    property<&Format::setFillPattern, &Format::fillPattern, Format>(
        "pattern", 0, {1, 18}, {19, -1}, "fill pattern 19 is out of range 0..18"),
    property<&Format::setPatternForegroundColor, &Format::patternForegroundColor, Format>(
        "foreground", 64, kColors, kNoColors, "colour 66 is not known"),
    property<&Format::setPatternBackgroundColor, &Format::patternBackgroundColor, Format>(
        "background", 65, kColors, kNoColors, "colour 66 is not known"),
    property<&Format::setLocked, &Format::locked, Format>("locked", 1, {0}, {}, ""),
    property<&Format::setHidden, &Format::hidden, Format>("hidden", 0, {1}, {}, ""),
};

const Property<Font> kFontProperties[] = {
    property<&Font::setSize, &Font::size, Font>("size", 11, {1, 409}, {0, 410, -1},
                                                "font size 0 is out of range 1..409"),
    property<&Font::setItalic, &Font::italic, Font>("italic", 0, {1, 0}, {}, ""),
    property<&Font::setStrikeOut, &Font::strikeOut, Font>("strike out", 0, {1, 0}, {}, ""),
    property<&Font::setColor, &Font::color, Font>("colour", 32767, kColors, kNoColors,
                                                  "colour 66 is not known"),
    property<&Font::setBold, &Font::bold, Font>("bold", 0, {1, 0}, {}, ""),
    property<&Font::setScript, &Font::script, Font>("script", 0, {1, 2}, {3, -1},
                                                    "script 3 is out of range 0..2"),
    property<&Font::setUnderline, &Font::underline, Font>("underline", 0, {1, 2, 33, 34},
                                                          {3, -1, 32}, "underline 3 is not known"),
};

// Every value comes back, also from the file; what is refused changes nothing.
template <class Object, class Add, class Find>
void check(const Property<Object>& of, Add add, Find find) {
  SCOPED_TRACE(of.name);
  Stage stage;
  EXPECT_EQ(of.get(*add(stage, 0)), of.usual);
  std::vector<int> kept;
  for (const int value : of.taken) {
    SCOPED_TRACE(value);
    Object* object = add(stage, static_cast<int>(kept.size()) + 1);
    of.set(*object, value);
    EXPECT_EQ(stage.message(), "ok");
    EXPECT_EQ(of.get(*object), value);
    for (std::size_t at = 0; at < of.refused.size(); ++at) {
      of.set(*object, of.refused[at]);
      EXPECT_TRUE(at > 0 || stage.message() == of.refusal) << stage.message();
      EXPECT_EQ(of.get(*object), value) << "after " << of.refused[at];
    }
    kept.push_back(value);
  }
  ASSERT_TRUE(stage.reload()) << stage.message();
  for (std::size_t at = 0; at < kept.size(); ++at)
    EXPECT_EQ(of.get(*find(stage, static_cast<int>(at) + 1)), kept[at]);
}

// Each format stands in a cell of its own, as equal ones are one after loading.
Format* format_in(Stage& stage, int row) {
  Format* format = stage.book->addFormat();
  stage.sheet->writeNum(row, 0, row, format);
  return format;
}

TEST(Formats, Properties) {
  for (const auto& of : kFormatProperties)
    check(of, format_in, [](Stage& stage, int row) { return stage.sheet->cellFormat(row, 0); });
}

TEST(Fonts, Properties) {
  const auto add = [](Stage& stage, int row) {
    Font* font = stage.book->addFont();
    format_in(stage, row)->setFont(font);
    return font;
  };
  for (const auto& of : kFontProperties)
    check(of, add, [](Stage& stage, int row) { return stage.sheet->cellFormat(row, 0)->font(); });
}

TEST(Formats, AllSidesAtOnce) {
  Stage stage;
  Format* format = stage.book->addFormat();
  format->setBorder(libxl::BorderDashed);
  format->setBorderColor(libxl::ColorRed);
  EXPECT_EQ(format->borderLeft(), libxl::BorderDashed);
  EXPECT_EQ(format->borderBottom(), libxl::BorderDashed);
  EXPECT_EQ(format->borderTopColor(), libxl::ColorRed);
  EXPECT_EQ(format->borderDiagonalStyle(), libxl::BorderNone);
  EXPECT_EQ(format->borderDiagonalColor(), libxl::ColorDefaultForeground);
  format->setBorderDiagonal(libxl::DiagonalUp);
  EXPECT_EQ(format->borderDiagonalStyle(), libxl::BorderThin);
  format->setBorderDiagonalStyle(libxl::BorderHair);
  format->setBorderDiagonal(libxl::DiagonalBoth);
  EXPECT_EQ(format->borderDiagonalStyle(), libxl::BorderHair);
  EXPECT_TRUE(format->setRotation(-90));
  EXPECT_EQ(format->rotation(), 180);
  EXPECT_FALSE(format->setRotation(-91));
  EXPECT_EQ(stage.message(), "ok");
}

TEST(Formats, ColorsInBothModes) {
  Stage stage;
  Font* font = stage.book->addFont();
  Format* format = stage.book->addFormat();
  format->setFont(font);
  stage.sheet->writeNum(0, 0, 1, format);
  font->setColor(static_cast<Color>(0x01FE0102));
  EXPECT_EQ(font->color(), libxl::ColorRed);
  stage.book->setRgbMode();
  EXPECT_EQ(font->color(), 0x01FE0102);
  format->setPatternForegroundColor(static_cast<Color>(0x123456));
  EXPECT_EQ(format->patternForegroundColor(), 0x01123456);
  format->setPatternBackgroundColor(libxl::ColorRed);
  EXPECT_EQ(format->patternBackgroundColor(), 0x01FF0000);
  EXPECT_EQ(format->borderLeftColor(), 64);
  ASSERT_TRUE(stage.reload());
  EXPECT_EQ(stage.sheet->cellFormat(0, 0)->font()->color(), 0x01FE0102);
  EXPECT_EQ(stage.sheet->cellFormat(0, 0)->patternForegroundColor(), 0x01123456);
  EXPECT_EQ(stage.sheet->cellFormat(0, 0)->patternBackgroundColor(), 0x01FF0000);
}

TEST(Fonts, Names) {
  Stage stage;
  Font* font = stage.book->addFont();
  EXPECT_STREQ(font->name(), L"Calibri");
  EXPECT_TRUE(font->setName(L"Größe"));
  EXPECT_STREQ(font->name(), L"Größe");
  EXPECT_TRUE(font->setName(std::wstring(31, L'x').c_str()));
  for (const wchar_t* none :
       {L"", static_cast<const wchar_t*>(nullptr), L"A name of thirty-two characters."}) {
    EXPECT_FALSE(font->setName(none));
    EXPECT_EQ(stage.message(), "ok");
  }
  EXPECT_EQ(std::wstring(font->name()), std::wstring(31, L'x'));
}

TEST(Formats, FontsAreShared) {
  Stage stage;
  Format* format = stage.book->addFormat();
  Font* font = stage.book->addFont();
  EXPECT_EQ(format->font(), stage.book->font(0));
  EXPECT_TRUE(format->setFont(font));
  Format* copy = stage.book->addFormat(format);
  EXPECT_EQ(copy->font(), font);
  font->setBold();
  EXPECT_TRUE(copy->font()->bold());
  EXPECT_TRUE(copy->setFont(nullptr));
  EXPECT_EQ(copy->font(), stage.book->font(0));

  Stage other;
  EXPECT_FALSE(format->setFont(other.book->font(0)));
  EXPECT_EQ(stage.message(), "the font belongs to another book");
  EXPECT_EQ(format->font(), font);
}

TEST(Formats, AfterALoadTheFormerOnesRefuse) {
  Stage stage;
  Format* format = stage.book->addFormat();
  Font* font = stage.book->addFont();
  ASSERT_TRUE(stage.reload());
  EXPECT_EQ(font->name(), nullptr);
  EXPECT_EQ(stage.message(), "the font is no longer in the book");
  EXPECT_EQ(font->size(), 0);
  EXPECT_EQ(font->color(), libxl::ColorAuto);
  font->setSize(9);
  EXPECT_EQ(stage.message(), "the font is no longer in the book");
  EXPECT_EQ(format->font(), nullptr);
  EXPECT_EQ(stage.message(), "the format is no longer in the book");
  EXPECT_EQ(format->alignV(), libxl::AlignVBottom);
  EXPECT_EQ(format->patternBackgroundColor(), libxl::ColorDefaultBackground);
  EXPECT_FALSE(format->setRotation(1));
  EXPECT_EQ(stage.message(), "the format is no longer in the book");
  EXPECT_FALSE(stage.book->format(0)->setFont(font));
  EXPECT_EQ(stage.message(), "the font is no longer in the book");
}

}  // namespace
