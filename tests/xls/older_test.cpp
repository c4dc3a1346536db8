// Books of Excel 5.0 and 95: what they hold is read, and saved as a book of the present version
// unless something would be lost.
#include <gmock/gmock.h>

#include "engine/package/file_error.h"
#include "engine/xls/older_tokens.h"
#include "engine/xls/tokens_write.h"
#include "tests/xls/streams.h"

namespace engine::xls {
namespace {

using namespace testing;  // NOLINT(google-build-using-namespace): records are made of its pieces
using ::testing::HasSubstr;

std::string text8(std::string_view bytes) { return u8(bytes.size()) + std::string(bytes); }
std::string text16(std::string_view bytes) { return u16(bytes.size()) + std::string(bytes); }

std::string older_bof(unsigned kind) { return record(0x809, u16(0x500) + u16(kind) + u32(0)); }

std::string older_stream(const std::vector<SheetStream>& sheets, std::string_view globals = {}) {
  return stream_of(sheets, globals, older_bof, text8);
}

std::string older_file(const std::vector<SheetStream>& sheets, std::string_view globals = {}) {
  return file_of(older_stream(sheets, globals), "Book");
}

// The fields that a reference to another sheet begins with.
std::string sheets(int number, unsigned first, unsigned last) {
  return u16(static_cast<std::uint16_t>(number)) + std::string(8, '\0') + u16(first) + u16(last);
}
std::string reference(unsigned row, unsigned column) { return u8(0x44) + u16(row) + u8(column); }
std::string whole(unsigned value) { return u8(0x1E) + u16(value); }

// As it is read, and as it is after a save that writes the sheet anew.
template <class Check>
void check_twice(const std::string& file, const Check& check_book) {
  LoadedBook read(file);
  check_book(read);
  read.sheet().change([](SheetContents& contents) { contents.cells.row_at(9999); });
  LoadedBook saved(read.file());
  check_book(saved);
}

TEST(XlsOlder, ReadsCellsWithTextsOfTheirCodePage) {
  const std::string text_value = u8(0) + std::string(5, '\0') + u16(0xFFFF);
  const std::string records =
      record(0x200, u16(0) + u16(2) + u16(0) + u16(9) + u16(0)) + cell(0x203, 0, 0, 15, f64(1.5)) +
      cell(0x27E, 0, 1, 15, u32(7 << 2 | 2)) +
      record(0xBD,
             u16(0) + u16(2) + u16(15) + u32(4 << 2 | 2) + u16(15) + u32(8 << 2 | 2) + u16(3)) +
      cell(0x204, 0, 4, 15, text16("\xC4\xE0")) + cell(0x205, 0, 5, 15, u8(7) + u8(1)) +
      // Bold from the second letter on.
      cell(0xD6, 0, 6, 15, text16("\xC4\xE0!") + u8(1) + u8(1) + u8(1)) +
      cell(0x06, 0, 7, 15, text_value + u16(0) + u32(0) + expression(u8(0x17) + text8("\xE0"))) +
      record(0x207, text16("\xE0")) + cell(0x201, 0, 8, 15, "") +
      cell(0x204, 1, 0, 15, text16("\xC4\xE0"));
  const auto with_page = [&](unsigned page) {
    return older_file({{"\xC4", records}}, record(0x42, u16(page)));
  };
  check_twice(with_page(1251), [](LoadedBook& book) {
    EXPECT_EQ(book.sheet().name(), "\xD0\x94");
    check(book, {{0, 0, "1.500000"},
                 {0, 1, "7.000000"},
                 {0, 2, "4.000000"},
                 {0, 3, "8.000000"},
                 {0, 4, "\"\xD0\x94\xD0\xB0\""},
                 {0, 5, "#DIV/0!"},
                 {0, 6, "\"\xD0\x94\xD0\xB0!\""},
                 {0, 7, "\"\xD0\xB0\" =\"\xD0\xB0\""},
                 {0, 8, "blank"},
                 {1, 0, "\"\xD0\x94\xD0\xB0\""}});
    // A text that has looks of its own is one of its own.
    EXPECT_EQ(book.book.strings.count_from_file(), 2U);
    EXPECT_NE(book.file().find(std::string("\3\0\x9\1\0\x14\4\x30\4!\0\1\0\1\0", 15)),
              std::string::npos);
  });
  const struct {
    unsigned page;
    const char* shown;
  } kPages[] = {{1252, "\"\xC3\x84\xC3\xA0\""},      {0x8001, "\"\xC3\x84\xC3\xA0\""},
                {10000, "\"\xC6\x92\xE2\x80\xA1\""}, {1200, "\"\xEE\x83\x84\""},
                {1255, "\"\xD6\xB4\xD7\x90\""},      {1251, "\"\xD0\x94\xD0\xB0\""}};
  for (const auto& [page, text] : kPages) {
    LoadedBook book(with_page(page));
    EXPECT_EQ(shown(book, 0, 4), text) << page;
  }
  EXPECT_THROW(LoadedBook(with_page(4711)), package::FileError);
}

TEST(XlsOlder, ReadsFormulas) {
  constexpr unsigned kRelative = 0xC000;
  const std::string a1 = reference(kRelative, 0);
  const std::string branch = u8(0x24) + u16(kRelative) + u8(0);
  const std::string area = u8(0x25) + u16(0) + u16(1 | kRelative) + u8(0) + u8(1);
  const std::string three = whole(1) + whole(2) + whole(3);
  struct Case {
    const char* text;
    std::string tokens;
    std::string behind = {};
    bool is_ours = true;  // what is written for the text is the same
  };
  const std::vector<Case> kCases = {
      {"A1", a1},
      {"$IV$16384", reference(0x3FFF, 255)},
      {"SUM($A$1:B2)", area + u8(0x19) + u8(0x10) + u16(0)},
      {"SUM($C:$D)",
       u8(0x25) + u16(0) + u16(0x3FFF) + u8(2) + u8(3) + u8(0x19) + u8(0x10) + u16(0)},
      {"\"\xC3\xA4\"&TRUE", u8(0x17) + text8("\xE4") + u8(0x1D) + u8(1) + u8(0x08)},
      {"Two!A1", u8(0x5A) + sheets(-1, 1, 1) + u16(kRelative) + u8(0), {}, false},
      {"SUM(One:Two!$B$2:$C$3)",
       u8(0x3B) + sheets(-1, 0, 1) + u16(1) + u16(2) + u8(1) + u8(2) + u8(0x19) + u8(0x10) + u16(0),
       {},
       false},
      {"#REF!$B$2", u8(0x5A) + sheets(-1, 0xFFFF, 0xFFFF) + u16(1) + u8(1), {}, false},
      {"Two!$B$2", u8(0x5A) + sheets(1, 0, 0) + u16(1) + u8(1), {}, false},
      {"One!$B$2", u8(0x5A) + sheets(2, 0, 0) + u16(1) + u8(1), {}, false},
      {"[1]Far!$B$2", u8(0x5A) + sheets(3, 0, 0) + u16(1) + u8(1), {}, false},
      {"#REF!$B$2", u8(0x5A) + sheets(9, 0, 0) + u16(1) + u8(1), {}, false},
      {"Net", u8(0x43) + u16(1) + std::string(12, '\0'), {}, false},
      {"[1]!Rate",
       u8(0x59) + u16(3) + std::string(8, '\0') + u16(1) + std::string(12, '\0'),
       {},
       false},
      {"EDATE(A1)",
       u8(0x39) + u16(4) + std::string(8, '\0') + u16(1) + std::string(12, '\0') + a1 + u8(0x42) +
           u8(2) + u16(255),
       {},
       false},
      {"{1,\"\xC3\xA4\";#N/A,TRUE}", u8(0x40) + std::string(7, '\0'),
       u8(2) + u16(2) + u8(1) + f64(1) + u8(2) + text8("\xE4") + u8(16) + u8(0x2A) +
           std::string(7, '\0') + u8(4) + u8(1) + std::string(7, '\0')},
      // What is jumped over is longer than it was.
      {"IF(A1,A1,A1)", a1 + u8(0x19) + u8(2) + u16(8) + branch + u8(0x19) + u8(8) + u16(11) +
                           branch + u8(0x19) + u8(8) + u16(3) + u8(0x42) + u8(3) + u16(1)},
      {"CHOOSE(A1,A1,A1)", a1 + u8(0x19) + u8(4) + u16(2) + u16(6) + u16(14) + u16(22) + branch +
                               u8(0x19) + u8(8) + u16(11) + branch + u8(0x19) + u8(8) + u16(3) +
                               u8(0x42) + u8(3) + u16(100)},
      {"1+2*3", three + u8(0x05) + u8(0x03)},
      // The result of a union, remembered: both areas and how long their tokens are.
      {"SUM(($A$1:B2,$A$1:B2))",
       u8(0x26) + u32(0) + u16(15) + area + area + u8(0x10) + u8(0x15) + u8(0x19) + u8(0x10) +
           u16(0),
       u16(1) + u16(0) + u16(1) + u8(0) + u8(1), false},
      {"", u8(0x18) + u8(1), {}, false},
  };
  std::string records = record(0x17, u8(3) + u8(3) + "Two") + record(0x17, u8(1) + u8(2)) +
                        record(0x17, text8("\1C\3[b.xls]Far")) +
                        record(0x23, u16(0) + u32(0) + text8("Rate")) + record(0x17, text8(":")) +
                        record(0x23, u16(0) + u32(0) + text8("EDATE"));
  int row = 0;
  for (const Case& one : kCases)
    records +=
        cell(0x06, row++, 0, 15, f64(1) + u16(0) + u32(0) + expression(one.tokens) + one.behind);
  // Cells that share one: each the one above it.
  records +=
      cell(0x06, 200, 1, 15, f64(1) + u16(0) + u32(0) + expression(u8(1) + u16(200) + u16(1))) +
      record(0x4BC, u16(200) + u16(201) + u8(1) + u8(1) + u16(2) +
                        expression(u8(0x4C) + u16(0xFFFF) + u8(0xFF))) +
      cell(0x06, 201, 1, 15, f64(1) + u16(0) + u32(0) + expression(u8(1) + u16(200) + u16(1)));
  const std::string name =
      record(0x18, u16(0) + u8(0) + u8(3) + u16(18) + u16(0) + u16(0) + u32(0) + "Net" + u8(0x3A) +
                       sheets(-1, 1, 1) + u16(2) + u8(2));
  LoadedBook book(older_file({{"One", records}, {"Two", ""}}, name));
  book.sheet();
  const DefinedName* net = book.book.names.find("Net", nullptr);
  ASSERT_NE(net, nullptr);
  EXPECT_EQ(net->definition, "Two!$C$3");
  EXPECT_EQ(shown(book, 200, 1), "1.000000 =A200");
  EXPECT_EQ(shown(book, 201, 1), "1.000000 =A201");
  row = 0;
  for (const Case& one : kCases) {
    SCOPED_TRACE(one.text);
    EXPECT_EQ(shown(book, row++, 0),
              std::string("1.000000") + (*one.text != '\0' ? " =" : "") + one.text);
  }
  // Those that mean no other sheet have the tokens that are written for their text.
  OlderTexts texts;
  texts.use_code_page(1252);
  OlderLinks older_links(texts, {});
  OlderTokens older(texts, older_links);
  const OlderList of_all;
  OlderList list;
  list.of_all = &of_all;
  Workbook scratch(kCodec.limits);
  const LinkTable no_links;
  LinkWriter links(scratch, no_links);
  TokenWriter writer(links, scratch.limits.grid);
  for (const auto& [text, tokens, behind, is_ours] : kCases) {
    if (!is_ours) continue;
    SCOPED_TRACE(text);
    EXPECT_TRUE(older.take(tokens, behind, list));
    ASSERT_TRUE(writer.write(text, {})) << writer.why_not();
    EXPECT_EQ(older.expression(), expression(writer.tokens()) + writer.behind());
  }
}

// A format's record: font, number format, flags, then the rest.
std::string older_format(unsigned number, unsigned flags, std::string_view rest) {
  return record(0xE0, u16(0) + u16(number) + u16(flags) + std::string(rest));
}

TEST(XlsOlder, ReadsStyles) {
  const std::string font = record(0x31, u16(240) + u16(2) + u16(10) + u16(700) + u16(1) + u8(33) +
                                            u32(0).substr(0, 3) + text8("Mod\xE8le"));
  const std::string plain = u32(0xC0 << 8) + u32(0) + u32(0);
  // Red on yellow in stripes; thick below in green, thin above in blue, dashed left, dotted right.
  const std::string rich = u8(0x1A) + u8(2) + u32(10 | 13 << 7 | 5 << 16 | 5 << 22 | 11U << 25) +
                           u32(1 | 3 << 3 | 4 << 6 | 12 << 9 | 14 << 16 | 15 << 23);
  std::string globals = font + record(0x41E, u16(164) + text8("0.0 \xA4"));
  for (int i = 0; i < 15; ++i) globals += older_format(0, 0xFFF5, plain);
  globals += older_format(0, 1, plain) + older_format(164, 3, rich) +
             record(0x293, u16(0x8000) + u8(0) + u8(0xFF)) +
             record(0x293, u16(0) + text8("Ma\xF1"));
  check_twice(older_file({{"Data", cell(0x201, 0, 0, 16, "")}}, globals), [](LoadedBook& book) {
    const Cell* cell = book.sheet().contents().cells.find(0, 0);
    ASSERT_NE(cell, nullptr);
    const Styles& styles = book.book.styles;
    const FormatRecord& format = styles.format(cell->style);
    EXPECT_EQ(styles.code_of(format.number_format), "0.0 \xC2\xA4");
    EXPECT_TRUE(format.locked && format.hidden && format.alignment.wrap);
    EXPECT_EQ(format.alignment.horizontal, 2);
    EXPECT_EQ(format.alignment.vertical, 1);
    EXPECT_EQ(format.alignment.rotation, 90);
    const Border& border = styles.border(format.border);
    const auto side = [](int style, std::uint32_t color) {
      return BorderSide{static_cast<std::uint8_t>(style), Color::indexed(color)};
    };
    EXPECT_EQ(border.top, side(1, 12));
    EXPECT_EQ(border.left, side(3, 14));
    EXPECT_EQ(border.right, side(4, 15));
    EXPECT_EQ(border.bottom, side(5, 11));
    const Fill& fill = styles.fill(format.fill);
    EXPECT_EQ(fill.pattern, 5);
    EXPECT_EQ(fill.foreground, Color::indexed(10));
    EXPECT_EQ(fill.background, Color::indexed(13));
    const FontRecord& its = styles.font(format.font);
    EXPECT_EQ(its.name, "Mod\xC3\xA8le");
    EXPECT_EQ(its.size, 12);
    EXPECT_TRUE(its.bold && its.italic);
    EXPECT_EQ(its.underline, 33);
  });
}

TEST(XlsOlder, ReadsWhatSheetsHaveBesideCells) {
  const std::string condition = u8(6) + u8(2) + u32(0) + u8(2) + std::string(3, '\0');
  const std::string records =
      record(0x14, text8("&L\xC4")) + record(0x15, "") + record(0x1B, u16(2) + u16(3) + u16(9)) +
      record(0x1A, u16(1) + u16(4)) + record(0x7D, u16(1) + u16(2) + u16(512) + u16(15) + u16(1)) +
      record(0x9B, "") + record(0x9D, u16(2)) +
      record(0x9E, u16(1) + u16(5) + condition + std::string(10, '\0') + "\xC4x") +
      record(0x208, u16(5) + u16(0) + u16(1) + u16(600) + u32(0) + u16(0x60) + u16(15)) +
      cell(0x203, 5, 0, 15, f64(1)) + record(0x5D, u32(1) + u16(0x14) + u16(1) + u16(0)) +
      record(0x1C, u16(5) + u16(0) + u16(6) + "ab\r") +
      record(0x1C, u16(0xFFFF) + u16(0) + u16(3) +
                       "\xC4"
                       "c") +
      record(0x23E, u16(0x6BE) + u16(2) + u16(1) + u32(0)) +
      record(0x41, u16(0) + u16(2) + u16(2) + u16(0) + u16(2));
  const std::string filter = record(0x18, u16(1) + u8(0) + u8(15) + u16(21) + u16(1) + u16(1) +
                                              u32(0) + "_FilterDatabase" + u8(0x3B) +
                                              sheets(-1, 0, 0) + u16(1) + u16(5) + u8(0) + u8(1));
  const std::string titles =
      record(0x18, u16(0x20) + u8(0) + u8(1) + u16(21) + u16(1) + u16(1) + u32(0) + u8(7) +
                       u8(0x3B) + sheets(-1, 0, 0) + u16(0) + u16(0x3FFF) + u8(0) + u8(1));
  const std::string file = older_file({{"Data", records}, {"Gone", "", 0, 2}}, filter + titles);
  check_twice(file, [](LoadedBook& book) {
    const SheetContents& sheet = book.sheet().contents();
    EXPECT_EQ(sheet.page.header, "&L\xC3\x84");
    EXPECT_EQ(sheet.breaks.rows.size(), 2U);
    EXPECT_EQ(sheet.breaks.columns.size(), 1U);
    EXPECT_TRUE(sheet.columns.find(1)->hidden);
    EXPECT_EQ(sheet.columns.find(2)->width, 2);
    EXPECT_TRUE(sheet.row_properties.at(0).hidden);
    EXPECT_EQ(sheet.row_properties.at(0).height, 30);
    EXPECT_EQ(sheet.view.frozen_rows, 2);
    ASSERT_EQ(sheet.comments.size(), 1U);
    EXPECT_EQ(sheet.comments.at({5, 0}).text,
              "ab\n\xC3\x84"
              "c");
    EXPECT_EQ(sheet.filter.range, (CellRange{1, 5, 0, 1}));
    ASSERT_EQ(sheet.filter.columns.size(), 1U);
    EXPECT_THAT(sheet.filter.columns[0].criterion.texts.all(), ::testing::ElementsAre("\xC3\x84x"));
    EXPECT_EQ(book.book.sheets()[1]->visibility, SheetVisibility::kVeryHidden);
    const DefinedName* name =
        book.book.names.find("_xlnm.Print_Titles", book.book.sheets()[0].get());
    ASSERT_NE(name, nullptr);
    EXPECT_EQ(name->definition, "Data!$A:$B");
  });
}

TEST(XlsOlder, PutsTextsTogetherThatAreInPieces) {
  const std::string inner = older_bof(0x20) + record(0x85, u32(0) + u16(0) + text8("Not")) + eof();
  const std::string note = record(0x1C, u16(5) + u16(0) + u16(4) + "a\x82") +
                           record(0x1C, u16(0xFFFF) + u16(0) + u16(2) + "\xA0z");
  LoadedBook book(older_file({{"Data", note}}, inner + record(0x42, u16(932))));
  ASSERT_EQ(book.book.sheets().size(), 1U);
  EXPECT_ANY_THROW(book.file());  // for what begins within
  EXPECT_EQ(book.sheet().contents().comments.at({5, 0}).text,
            "a\xE3\x81\x82"
            "z");
}

// What a save would lose is told, and nothing is written.
TEST(XlsOlder, RefusesToSaveWhatItCannotKeep) {
  const std::string shape = record(0x5D, u32(1) + u16(2) + std::string(30, '\0'));
  const struct {
    std::string file;
    const char* lost;
  } kCases[] = {
      {older_file({{"Data", shape}}), "drawings"},
      {older_file({{"Data", shape + older_bof(0x20) + shape + eof()}}), "charts, drawings"},
      {older_file({{"Data", ""}, {"Chart", "", 2}, {"Module", "", 6}}), "charts, macros"},
      {older_file({{"Data", record(0xAE, u16(0))}}), "scenarios"},
      {older_file({{"Data", record(0x777, "x")}}), "records of number 1911"},
      {older_file({{"Data", formula(0, 0, u8(0x18) + u8(1))}}), "formulas"},
      {older_file({{"Data", ""}}, record(0x17, text8("app\3topic"))), "links to other programs"},
  };
  for (const auto& [file, lost] : kCases) {
    SCOPED_TRACE(lost);
    LoadedBook book(file);
    book.sheet();
    try {
      book.file();
      ADD_FAILURE() << "is saved";
    } catch (const package::FileError& error) {
      EXPECT_EQ(error.what(),
                std::string("cannot be written: the Excel 5.0/95 workbook that was loaded has ") +
                    lost + ", which would be lost");
    }
  }
}

// Every beginning of a stream, and sheets that lie in one another: refused or read.
TEST(XlsOlder, EndsForEveryDamage) {
  const std::string records =
      cell(0x204, 0, 0, 15, text16("label")) + formula(0, 1, whole(1)) +
      record(0x4BC, u16(0) + u16(0) + u8(1) + u8(1) + u16(1) + expression(whole(1))) +
      record(0x1C, u16(0) + u16(0) + u16(1) + "x") + record(0x207, text16("x"));
  const std::string stream = older_stream({{"One", records}, {"Two", records}},
                                          record(0x31, std::string(14, '\0') + text8("F")));
  const auto refusal = [](const std::string& bytes) -> std::string {
    try {
      LoadedBook book(file_of(bytes, "Book"));
      book.sheet(0);
      book.sheet(1);
      book.file();
    } catch (const package::FileError& error) {
      return error.what();
    }
    return "none";
  };
  EXPECT_EQ(refusal(stream), "none");
  for (std::size_t size = 4; size < stream.size(); ++size)
    EXPECT_NE(refusal(stream.substr(0, size)), "none") << size;
  std::string shared = stream;
  shared.replace(older_bof(5).size() + 4 + 6 + text8("One").size() + 4, 4,
                 shared.substr(older_bof(5).size() + 4, 4));
  EXPECT_THAT(refusal(shared), HasSubstr("sheet \"Two\""));
  EXPECT_THAT(
      refusal(older_stream({{"One", cell(0x204, 0, 0, 15, u16(9) + "short")}, {"Two", ""}})),
      HasSubstr("sheet \"One\", record 204"));
  EXPECT_THAT(refusal(older_bof(0x10) + records + eof()), HasSubstr("not begin with a workbook"));
  EXPECT_EQ(refusal(record(0x409, u16(0x400) + u16(5) + u32(0))), "is an Excel 4.0 workbook");
  EXPECT_EQ(refusal(older_bof(5) + record(0x2F, u16(1) + u16(2)) + eof()),
            "is protected by a password");
}

}  // namespace
}  // namespace engine::xls
