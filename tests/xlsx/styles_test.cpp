#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/package/file_error.h"
#include "engine/xlsx/styles_part.h"
#include "engine/xlsx/theme.h"

namespace engine::xlsx {
namespace {

constexpr std::string_view kDeclaration =
    "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n";

// As a spreadsheet program writes it, with one of everything that is carried.
constexpr std::string_view kSample =
    R"(<styleSheet xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main" )"
    R"(xmlns:mc="http://schemas.openxmlformats.org/markup-compatibility/2006" mc:Ignorable="x14ac" )"
    R"(xmlns:x14ac="http://schemas.microsoft.com/office/spreadsheetml/2009/9/ac">)"
    R"(<numFmts count="2"><numFmt numFmtId="170" formatCode="yyyy\-mm"/>)"
    R"(<numFmt numFmtId="14" formatCode="0.0"/></numFmts>)"
    R"(<fonts count="3" x14ac:knownFonts="1">)"
    R"(<font><sz val="11"/><color theme="1"/><name val="Calibri"/><family val="2"/><scheme val="minor"/></font>)"
    R"(<font><b/><i val="0"/><outline/><u val="doubleAccounting"/><vertAlign val="subscript"/><sz val="9.5"/>)"
    R"(<color rgb="FF12aBcD"/><name val="A_x005F_x0041_B"/></font>)"
    R"(<font><strike/><u/><sz val="8"/><color indexed="10"/><name val="Arial"/></font></fonts>)"
    R"(<fills count="4"><fill><patternFill patternType="none"/></fill>)"
    R"(<fill><patternFill patternType="gray125"/></fill>)"
    R"(<fill><patternFill patternType="solid"><fgColor theme="4" tint="0.7999816888943144"/>)"
    R"(<bgColor indexed="64"/></patternFill></fill>)"
    R"(<fill><gradientFill degree="90"><stop position="0"><color theme="0"/></stop></gradientFill></fill></fills>)"
    R"(<borders count="2"><border><left/><right/><top/><bottom/><diagonal/></border>)"
    R"(<border diagonalUp="1"><left style="thin"><color auto="1"/></left><right style="slantDashDot">)"
    R"(<color theme="5" tint="-0.249977111117893"/></right><top/><bottom/><diagonal style="hair">)"
    R"(<color indexed="64"/></diagonal><vertical/></border></borders>)"
    R"(<cellStyleXfs count="1"><xf numFmtId="0" fontId="0" fillId="0" borderId="0"/></cellStyleXfs>)"
    R"(<cellXfs count="99">)"
    R"(<xf numFmtId="0" fontId="0" fillId="0" borderId="0" xfId="0"/>)"
    R"(<xf numFmtId="170" fontId="1" fillId="2" borderId="1" xfId="0" quotePrefix="1" applyFont="1">)"
    R"(<alignment horizontal="centerContinuous" vertical="top" textRotation="135" wrapText="1" )"
    R"(indent="3" readingOrder="2"/><protection locked="0" hidden="true"/></xf>)"
    R"(<xf numFmtId="14" fontId="77" fillId="3" borderId="77" xfId="0"/>)"
    R"(</cellXfs><cellStyles count="1"><cellStyle name="Normal" xfId="0" builtinId="0"/></cellStyles>)"
    R"(<dxfs count="1"><dxf><font><b/></font></dxf></dxfs><tableStyles count="0"/>)"
    R"(<colors><indexedColors><rgbColor rgb="00000000"/><rgbColor rgb="00000001"/>)"
    R"(<rgbColor rgb="00000002"/><rgbColor rgb="00000003"/><rgbColor rgb="00000004"/>)"
    R"(<rgbColor rgb="00000005"/><rgbColor rgb="00000006"/><rgbColor rgb="00000007"/>)"
    R"(<rgbColor rgb="00000008"/><rgbColor rgb="FF123456"/></indexedColors></colors>)"
    R"(<extLst><ext uri="{EB79DEF2}"><x14ac:unknown a="1"/></ext></extLst></styleSheet>)";

struct Book {
  explicit Book(std::string_view bytes = {}) { part.read(bytes, "xl/styles.xml", {}, styles); }

  StylesPart part;
  Styles styles;
};

std::string replaced(std::string text, std::string_view from, std::string_view to) {
  const std::size_t at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

TEST(StylesPart, ReadsTheLooks) {
  const Book book(kSample);
  const Styles& styles = book.styles;
  ASSERT_EQ(styles.format_count(), 3U);
  ASSERT_EQ(styles.font_count(), 3U);
  const FontRecord& font = styles.font(1);
  EXPECT_EQ(font.name, "A_x0041_B");
  EXPECT_EQ(font.size, 9.5);
  EXPECT_EQ(font.color, Color::rgb(0x12ABCD));
  EXPECT_TRUE(font.bold && !font.italic && !font.strike_out);
  EXPECT_EQ(std::pair(font.script, font.underline), std::pair(std::uint8_t{2}, std::uint8_t{34}));
  EXPECT_EQ(styles.font(2).underline, 1);
  EXPECT_TRUE(styles.font(2).strike_out);

  const FormatRecord& format = styles.format(1);
  EXPECT_EQ(format.font, 1U);
  EXPECT_TRUE(styles.is_date(1));
  EXPECT_EQ(format.alignment, (Alignment{6, 0, 135, 3, true, false}));
  EXPECT_TRUE(!format.locked && format.hidden);
  EXPECT_EQ(styles.fill_of(1),
            (Fill{1, Color::theme(4, 0.7999816888943144), Color::indexed(64), 0}));
  const Border& border = styles.border_of(1);
  EXPECT_EQ(border.left, (BorderSide{1, Color::automatic()}));
  EXPECT_EQ(border.right, (BorderSide{13, Color::theme(5, -0.249977111117893)}));
  EXPECT_EQ(border.diagonal, (BorderSide{7, Color::indexed(64)}));
  EXPECT_EQ(border.diagonals, 2);

  // Beyond the lists stands the first entry; the file may redefine a built-in number format.
  EXPECT_EQ(styles.format(2).font, 0U);
  EXPECT_EQ(styles.border_of(2), Border());
  EXPECT_FALSE(styles.is_date(2));
  EXPECT_EQ(styles.colors.palette[0], 8U);
  EXPECT_EQ(styles.colors.palette[1], 0x123456U);
  EXPECT_EQ(styles.colors.palette[2], kDefaultPalette[2]);
  EXPECT_FALSE(styles.changed());
}

// Only what was changed differs in the bytes, and the count that was wrong.
TEST(StylesPart, PatchesInPlace) {
  struct Edit {
    const char* from;
    const char* to;
  };
  struct Case {
    const char* what;
    void (*change)(Styles&);
    std::vector<Edit> edits;
  };
  const Case cases[] = {
      {"font size and name",
       [](Styles& styles) {
         FontRecord& font = styles.change_font(0, kFontSize | kFontName);
         font.size = 12;
         font.name = "A&B";
       },
       {{R"(<sz val="11"/><color theme="1"/><name val="Calibri"/><family val="2"/>)"
         R"(<scheme val="minor"/>)",
         R"(<sz val="12"/><color theme="1"/><name val="A&amp;B"/>)"}}},
      {"font switches, in the usual order",
       [](Styles& styles) {
         FontRecord& font = styles.change_font(1, kFontBold | kFontItalic | kFontStrikeOut |
                                                      kFontUnderline | kFontScript | kFontColor);
         font.bold = false;
         font.italic = font.strike_out = true;
         font.underline = 1;
         font.script = 0;
         font.color = Color::automatic();
       },
       {{R"(<b/><i val="0"/><outline/><u val="doubleAccounting"/><vertAlign val="subscript"/>)",
         R"(<i/><strike/><outline/><u/>)"},
        {R"(<color rgb="FF12aBcD"/>)", ""}}},
      {"alignment, beside what is unknown in it",
       [](Styles& styles) {
         styles.change_format(1, kFormatAlignment).alignment = {0, 2, 0, 0, false, true};
       },
       {{R"(applyFont="1"><alignment horizontal="centerContinuous" vertical="top" )"
         R"(textRotation="135" wrapText="1" indent="3" readingOrder="2"/>)",
         R"(applyFont="1" applyAlignment="1"><alignment readingOrder="2" shrinkToFit="1"/>)"}}},
      {"protection",
       [](Styles& styles) {
         FormatRecord& format = styles.change_format(1, kFormatProtection);
         format.locked = true;
         format.hidden = false;
       },
       {{R"(applyFont="1">)", R"(applyFont="1" applyProtection="1">)"},
        {R"(<protection locked="0" hidden="true"/>)", ""}}},
      {"a border, which gets an entry of its own with what is unknown in the old one",
       [](Styles& styles) {
         Border border = styles.border_of(1);
         border.left.style = 2;
         border.diagonals = 1;
         styles.set_border(1, border);
       },
       {{R"(borderId="1" xfId="0" quotePrefix="1" applyFont="1")",
         R"(borderId="2" xfId="0" quotePrefix="1" applyFont="1" applyBorder="1")"},
        {R"(<borders count="2">)", R"(<borders count="3">)"},
        {R"(</borders>)",
         R"(<border diagonalDown="1"><left style="medium"><color auto="1"/></left>)"
         R"(<right style="slantDashDot"><color theme="5" tint="-0.249977111117893"/></right><top/>)"
         R"(<bottom/><diagonal style="hair"><color indexed="64"/></diagonal><vertical/></border>)"
         R"(</borders>)"}}},
      {"a gradient replaced",
       [](Styles& styles) {
         styles.set_fill(2, {1, Color::rgb(0xFF), {}, 0});
       },
       {{R"(fillId="3" borderId="0" xfId="0")",
         R"(fillId="4" borderId="0" xfId="0" applyFill="1")"},
        {R"(<fills count="4">)", R"(<fills count="5">)"},
        {R"(</fills>)",
         R"(<fill><patternFill patternType="solid"><fgColor rgb="FF0000FF"/></patternFill></fill>)"
         R"(</fills>)"}}},
      {"a fill that the file has already",
       [](Styles& styles) { styles.set_fill(0, styles.fill_of(1)); },
       {{R"(fillId="0" borderId="0" xfId="0"/><xf numFmtId="170")",
         R"(fillId="2" borderId="0" xfId="0" applyFill="1"/><xf numFmtId="170")"}}},
      {"font and number format",
       [](Styles& styles) {
         FormatRecord& format = styles.change_format(0, kFormatFont | kFormatNumber);
         format.font = 2;
         format.number_format = *styles.add_number_format("0 \"x\"");
       },
       {{R"(<xf numFmtId="0" fontId="0" fillId="0" borderId="0" xfId="0"/><xf numFmtId="170")",
         R"(<xf numFmtId="171" fontId="2" fillId="0" borderId="0" xfId="0" applyNumberFormat="1" )"
         R"(applyFont="1"/><xf numFmtId="170")"},
        {R"(<numFmts count="2">)", R"(<numFmts count="3">)"},
        {R"(</numFmts>)", R"(<numFmt numFmtId="171" formatCode="0 &quot;x&quot;"/></numFmts>)"}}},
  };
  for (const auto& [what, change, edits] : cases) {
    SCOPED_TRACE(what);
    Book book(kSample);
    change(book.styles);
    EXPECT_TRUE(book.styles.changed());
    const WrittenStyles written = book.part.write(book.styles);
    std::string expected = std::string(kDeclaration).append(kSample);
    expected = replaced(expected, R"(<cellXfs count="99">)", R"(<cellXfs count="3">)");
    // Numbers beyond their lists are mended along the way.
    expected = replaced(expected, R"(fontId="77")", R"(fontId="0")");
    expected = replaced(expected, R"(borderId="77")", R"(borderId="0")");
    for (const auto& [from, to] : edits) expected = replaced(expected, from, to);
    EXPECT_EQ(written.bytes, expected);
    EXPECT_EQ(written.file_number(2), 2U);
    EXPECT_EQ(book.part.write(book.styles).bytes, written.bytes);
  }
}

TEST(StylesPart, FoldsWhatWasAdded) {
  Book book(kSample);
  Styles& styles = book.styles;
  const std::uint32_t like_0 = *styles.add_format();
  const std::uint32_t copy_1 = *styles.add_format(1);
  const std::uint32_t first = *styles.add_format();
  styles.change_format(first, kFormatAlignment).alignment.wrap = true;
  const std::uint32_t second = *styles.add_format(first);
  // The look of format 1 without the quote mark and reading order that the file gives it.
  const std::uint32_t plain_1 = *styles.add_format();
  styles.set_border(plain_1, styles.border_of(1));
  styles.set_fill(plain_1, styles.fill_of(1));
  FormatRecord& plain = styles.change_format(plain_1, 63);
  plain.font = styles.format(1).font;
  plain.number_format = styles.format(1).number_format;
  plain.alignment = styles.format(1).alignment;
  plain.locked = styles.format(1).locked;
  plain.hidden = styles.format(1).hidden;
  const std::uint32_t equal_font = *styles.add_font(2);
  const std::uint32_t with_font = *styles.add_format(first);
  styles.change_format(with_font, kFormatFont).font = equal_font;
  const std::uint32_t with_2 = *styles.add_format(first);
  styles.change_format(with_2, kFormatFont).font = 2;
  const std::uint32_t gradient = *styles.add_format(2);
  styles.change_format(gradient, kFormatAlignment).alignment.wrap = true;

  const WrittenStyles written = book.part.write(styles);
  EXPECT_EQ(written.file_number(like_0), 0U);
  EXPECT_EQ(written.file_number(copy_1), 1U);
  EXPECT_EQ(written.file_number(first), 3U);
  EXPECT_EQ(written.file_number(second), 3U);
  EXPECT_EQ(written.file_number(plain_1), 4U);
  EXPECT_EQ(written.file_number(with_font), 5U);
  EXPECT_EQ(written.file_number(with_2), 5U);
  EXPECT_EQ(written.file_number(gradient), 6U);

  const Book again(written.bytes);
  EXPECT_EQ(again.styles.format_count(), 7U);
  EXPECT_EQ(again.styles.font_count(), 3U);
  EXPECT_EQ(again.styles.fill_of(6).carried, 4U);
  EXPECT_NE(written.bytes.find(R"(fillId="3" borderId="0" xfId="0" applyAlignment="1")"),
            std::string::npos);
}

// What is usual need not be what the file has first.
TEST(StylesPart, ANewFormatIsPlainWhereTheFirstIsNot) {
  const std::string filled =
      replaced(std::string(kSample), R"(patternType="none")", R"(patternType="solid")");
  Book book(replaced(filled, "<border><left/>", R"(<border><left><color rgb="FF000000"/></left>)"));
  const std::uint32_t added = *book.styles.add_format();
  const WrittenStyles written = book.part.write(book.styles);
  const Book again(written.bytes);
  const FormatRecord& format = again.styles.format(written.file_number(added));
  EXPECT_EQ(format.border, FormatRecord().border);
  EXPECT_EQ(format.fill, FormatRecord().fill);
}

// Entries of the branch that is read count in their place, and go on standing for themselves alone
// when they are changed.
TEST(StylesPart, CountsEntriesOfAlternateContent) {
  constexpr std::string_view kHead =
      R"(<styleSheet xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main" )"
      R"(xmlns:mc="http://schemas.openxmlformats.org/markup-compatibility/2006" )"
      R"(xmlns:m="http://purl.oclc.org/ooxml/spreadsheetml/main" xmlns:n="urn:new">)";
  constexpr std::string_view kBefore = R"(<font><sz val="1"/></font>)";
  constexpr std::string_view kBehind = R"(<font><sz val="9"/></font>)";
  struct Case {
    const char* alternatives;
    std::vector<int> sizes;  // between the first and the last font
    const char* settled;     // once the second font is in italics
  };
  const Case cases[] = {
      {R"(<mc:AlternateContent><mc:Choice Requires="n"><font n:x="1"><sz val="2"/></font></mc:Choice>)"
       R"(<mc:Fallback xmlns:o="urn:o"><font><sz val="3"/><o:y/></font><font/></mc:Fallback>)"
       R"(</mc:AlternateContent>)",
       {3, 11},
       R"(<font><i/><sz val="3"/><o:y/></font><font/>)"},
      {R"(<mc:AlternateContent><mc:Choice Requires="n m"><font/></mc:Choice><mc:Choice Requires=" m  mc">)"
       R"(<font><sz val="4"/></font></mc:Choice><mc:Fallback><font/></mc:Fallback></mc:AlternateContent>)",
       {4},
       R"(<font><i/><sz val="4"/></font>)"},
      {R"(<mc:AlternateContent><mc:Choice Requires="n"/><mc:Fallback><mc:AlternateContent>)"
       R"(<mc:Fallback><font><sz val="5"/></font></mc:Fallback></mc:AlternateContent>)"
       R"(<font><sz val="6"/></font></mc:Fallback></mc:AlternateContent>)",
       {5, 6},
       R"(<font><i/><sz val="5"/></font><font><sz val="6"/></font>)"},
      {R"(<mc:AlternateContent><mc:Choice Requires=""><font/></mc:Choice></mc:AlternateContent>)",
       {},
       R"(<mc:AlternateContent><mc:Choice Requires=""><font/></mc:Choice></mc:AlternateContent>)"},
  };
  for (const auto& [alternatives, sizes, settled] : cases) {
    SCOPED_TRACE(alternatives);
    Book book(std::string(kHead)
                  .append("<fonts>")
                  .append(kBefore)
                  .append(alternatives)
                  .append(kBehind)
                  .append("</fonts></styleSheet>"));
    ASSERT_EQ(book.styles.font_count(), sizes.size() + 2);
    for (std::size_t i = 0; i < sizes.size(); ++i)
      EXPECT_EQ(book.styles.font(static_cast<std::uint32_t>(i) + 1).size, sizes[i]);
    const std::uint32_t last = book.styles.font_count() - 1;
    EXPECT_EQ(book.styles.font(last).size, 9);
    book.styles.change_font(1, kFontItalic).italic = true;
    const std::string written = book.part.write(book.styles).bytes;
    EXPECT_TRUE(Book(written).styles.font(1).italic);
    const std::size_t begin = written.find(kBefore) + kBefore.size();
    if (sizes.empty()) continue;
    EXPECT_EQ(written.substr(begin, written.find(kBehind) - begin), settled);
  }
  const Book fills(std::string(kHead).append(
      R"(<fills><fill/><mc:AlternateContent><mc:Fallback><fill/></mc:Fallback></mc:AlternateContent>)"
      R"(<fill><patternFill patternType="solid"/></fill></fills><borders><mc:AlternateContent>)"
      R"(<mc:Fallback><border><top style="thin"/></border></mc:Fallback></mc:AlternateContent></borders>)"
      R"(<cellXfs><mc:AlternateContent><mc:Fallback><xf fillId="2"/></mc:Fallback>)"
      R"(</mc:AlternateContent></cellXfs></styleSheet>)"));
  EXPECT_EQ(fills.styles.fill_of(0).pattern, 1);
  EXPECT_EQ(fills.styles.border_of(0).top.style, 1);
}

// A copy has the values that its model had at the moment, the carried things included.
TEST(StylesPart, CopiesStandForThemselves) {
  Book book(kSample);
  const std::uint32_t font = *book.styles.add_font(0);
  const std::uint32_t format = *book.styles.add_format(1);
  book.styles.change_font(font, kFontBold).bold = true;
  book.styles.change_font(0, kFontName).name = "Arial";
  book.styles.set_fill(1, {});
  const WrittenStyles written = book.part.write(book.styles);
  EXPECT_NE(written.bytes.find(R"(<font><b/><sz val="11"/><color theme="1"/><name val="Calibri"/>)"
                               R"(<family val="2"/><scheme val="minor"/></font></fonts>)"),
            std::string::npos);
  const Book again(written.bytes);
  EXPECT_EQ(again.styles.fill_of(1), Fill());
  EXPECT_EQ(again.styles.fill_of(written.file_number(format)), Book(kSample).styles.fill_of(1));
}

// Every value of every property of a new book comes back, and unequal formats stay apart.
TEST(StylesPart, NewBooksComeBack) {
  Book book;
  Styles& styles = book.styles;
  const auto add = [&](unsigned aspect) -> FormatRecord& {
    return styles.change_format(*styles.add_format(), aspect);
  };
  for (std::uint8_t value = 0; value < 19; ++value) {
    styles.set_fill(*styles.add_format(),
                    {value, Color::rgb(value * 0x10203U), Color::indexed(8U + value), 0});
    if (value < 14) {
      Border borders[5];
      borders[0].left = {value, Color::rgb(value)};
      borders[1].right = {value, Color::indexed(64)};
      borders[2].top = {value, {}};
      borders[3].bottom = {value, Color::automatic()};
      borders[4].diagonal = {value, Color::theme(value % 12U, 1.0 / 3)};
      borders[4].diagonals = static_cast<std::uint8_t>(value % 4);
      for (const Border& border : borders) styles.set_border(*styles.add_format(), border);
    }
    if (value < 8) add(kFormatAlignment).alignment.horizontal = value;
    if (value < 5) add(kFormatAlignment).alignment.vertical = value;
  }
  for (const int rotation : {1, 90, 91, 180, 255})
    add(kFormatAlignment).alignment.rotation = static_cast<std::uint8_t>(rotation);
  add(kFormatAlignment).alignment.indent = 250;
  add(kFormatAlignment).alignment.wrap = true;
  add(kFormatAlignment).alignment.shrink_to_fit = true;
  add(kFormatProtection).locked = false;
  add(kFormatProtection).hidden = true;
  add(kFormatNumber).number_format = *styles.add_number_format("[Red]\"<&>\"\\ü_x0041_;@");
  const FontRecord fonts[] = {
      {"Größe & \"Maß\"", 8, Color::rgb(0xABCDEF), 1, 1, true, false, false},
      {"Arial", 409, Color::indexed(12), 2, 2, false, true, false},
      {"Arial", 10, {}, 0, 33, false, false, true},
      {"_x0041_", 10, {}, 0, 34, false, false, false},
  };
  for (const FontRecord& font : fonts) {
    const std::uint32_t index = *styles.add_font();
    FontRecord& added = styles.change_font(index, 255);
    const std::uint32_t model = added.model;
    added = font;
    added.changed = 255;
    added.model = model;
    add(kFormatFont).font = index;
  }

  const WrittenStyles written = book.part.write(styles);
  const Book again(written.bytes);
  for (std::uint32_t index = 0; index < styles.format_count(); ++index) {
    SCOPED_TRACE(index);
    const FormatRecord& was = styles.format(index);
    const FormatRecord& is = again.styles.format(written.file_number(index));
    EXPECT_EQ(is.alignment, was.alignment);
    EXPECT_EQ(again.styles.border(is.border), styles.border(was.border));
    EXPECT_EQ(again.styles.fill(is.fill), styles.fill(was.fill));
    EXPECT_TRUE(is.locked == was.locked && is.hidden == was.hidden);
    EXPECT_EQ(again.styles.code_of(is.number_format), styles.code_of(was.number_format));
    const FontRecord& font = styles.font(was.font);
    const FontRecord& found = again.styles.font(is.font);
    EXPECT_TRUE(found.name == font.name && found.size == font.size && found.color == font.color &&
                found.script == font.script && found.underline == font.underline &&
                found.bold == font.bold && found.italic == font.italic &&
                found.strike_out == font.strike_out);
  }
}

TEST(StylesPart, MissingPiecesAreMade) {
  constexpr std::string_view kParts[] = {
      R"(<styleSheet xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main"/>)",
      R"(<x:styleSheet xmlns:x="http://purl.oclc.org/ooxml/spreadsheetml/main"><x:cellXfs>)"
      R"(<x:xf numFmtId="9" fontId="3" fillId="1"/></x:cellXfs><x:dxfs/></x:styleSheet>)",
      R"(<styleSheet xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main"><fonts/>)"
      R"(<fills><fill/></fills><cellXfs/><extLst/></styleSheet>)",
  };
  for (const std::string_view part : kParts) {
    SCOPED_TRACE(part);
    Book book(part);
    const std::uint32_t added = *book.styles.add_format();
    book.styles.set_fill(added, {1, Color::rgb(0xFF0000), {}, 0});
    const WrittenStyles written = book.part.write(book.styles);
    const Book again(written.bytes);
    EXPECT_EQ(again.styles.font_count(), 1U);
    EXPECT_EQ(again.styles.format_count(), 2U);
    EXPECT_EQ(again.styles.fill_of(1), book.styles.fill_of(added));
    EXPECT_EQ(again.styles.format(0).number_format, book.styles.format(0).number_format);
    // In the order of the format, with the prefix of the file.
    std::size_t at = 0;
    const std::string prefix = part.starts_with("<x:") ? "<x:" : "<";
    for (const char* list : {"fonts", "fills", "borders", "cellStyleXfs", "cellXfs"}) {
      const std::size_t found = written.bytes.find(prefix + list);
      EXPECT_TRUE(found != std::string::npos && found > at) << list;
      at = found;
    }
  }
}

// Format 2 names a font and a border that the file lacks: what is appended there is not for it.
TEST(StylesPart, NumbersBeyondTheirListsStayTheFirst) {
  Book book(replaced(std::string(kSample), R"(fontId="77" fillId="3" borderId="77" xfId="0")",
                     R"(fontId="3" fillId="4" borderId="2" xfId="1")"));
  const Border border = book.styles.border_of(2);
  const Fill fill = book.styles.fill_of(2);
  const std::uint32_t font = *book.styles.add_font();
  book.styles.change_font(font, kFontSize).size = 40;
  const std::uint32_t added = *book.styles.add_format();
  book.styles.change_format(added, ~0U).font = font;
  Border thick;
  thick.left.style = 5;
  book.styles.set_border(added, thick);
  book.styles.set_fill(added, {1, Color::rgb(0xFF0000), {}, 0});
  const Book again(book.part.write(book.styles).bytes);
  EXPECT_EQ(again.styles.format(2).font, 0U);
  EXPECT_EQ(again.styles.border_of(2), border);
  EXPECT_EQ(again.styles.fill_of(2), fill);
  EXPECT_EQ(again.styles.font(again.styles.format(3).font).size, 40);
}

TEST(StylesPart, RefusesWhatIsNoStyleSheet) {
  constexpr std::string_view kParts[] = {
      "<styleSheet/>", "x", "<a:styleSheet xmlns:a=\"urn:a\"/>",
      "<styleSheet xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\"><fonts>"};
  for (const std::string_view part : kParts) {
    SCOPED_TRACE(part);
    EXPECT_THROW(Book{part}, package::FileError);
  }
  for (std::size_t size = 1; size < kSample.size(); size += 7)
    EXPECT_THROW(Book{kSample.substr(0, size)}, package::FileError);
}

// Formats for every cell of a sheet become one, and not by comparing each with each.
TEST(StylesPart, FoldsManyEqualFormats) {
  Book book;
  for (int i = 0; i < 20000; ++i) {
    const std::uint32_t index = *book.styles.add_format();
    book.styles.change_font(*book.styles.add_font(), kFontBold).bold = true;
    book.styles.change_format(index, kFormatFont).font = book.styles.font_count() - 1;
    book.styles.set_fill(index, {1, Color::rgb(0xFF0000), {}, 0});
  }
  const WrittenStyles written = book.part.write(book.styles);
  EXPECT_EQ(written.file_number(20000), 1U);
  const Book again(written.bytes);
  EXPECT_EQ(again.styles.format_count(), 2U);
  EXPECT_EQ(again.styles.font_count(), 2U);
}

TEST(Theme, ColorsByNumber) {
  constexpr std::string_view kTheme =
      R"(<a:theme xmlns:a="http://schemas.openxmlformats.org/drawingml/2006/main"><a:themeElements>)"
      R"(<a:clrScheme name="X"><a:dk1><a:sysClr val="windowText" lastClr="010203"/></a:dk1>)"
      R"(<a:lt1><a:sysClr val="window"/></a:lt1><a:dk2><a:srgbClr val="0A0B0C"/></a:dk2>)"
      R"(<a:accent1><a:srgbClr val="nonsense"/></a:accent1>)"
      R"(<a:folHlink><a:srgbClr val="FEDCBA"/></a:folHlink>)"
      R"(</a:clrScheme></a:themeElements></a:theme>)";
  const ThemeColors colors = read_theme(kTheme);
  EXPECT_EQ(colors[0], kDefaultTheme[0]);
  EXPECT_EQ(colors[1], 0x010203U);
  EXPECT_EQ(colors[3], 0x0A0B0CU);
  EXPECT_EQ(colors[4], kDefaultTheme[4]);
  EXPECT_EQ(colors[11], 0xFEDCBAU);
  EXPECT_EQ(read_theme(kTheme.substr(0, 300)), kDefaultTheme);
}

}  // namespace
}  // namespace engine::xlsx
