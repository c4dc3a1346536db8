// What a loaded book shows: cells, texts, formulas, styles, names.
#include <gmock/gmock.h>

#include <limits>

#include "engine/package/file_error.h"
#include "tests/xls/streams.h"

namespace engine::xls {
namespace {

using namespace testing;  // NOLINT(google-build-using-namespace): records are made of its pieces
using ::testing::ElementsAre;

constexpr unsigned kRelative = 0xC000;

std::string xf(unsigned font, unsigned number, bool of_style, std::string_view rest = {}) {
  std::string data = u16(font) + u16(number) + u16(of_style ? 0xFFF5 : 1) + std::string(rest);
  data.resize(20);
  return record(0xE0, data);
}

// Fifteen formats of styles, then that of cells.
std::string usual_formats() {
  std::string records;
  for (int i = 0; i < 15; ++i) records += xf(0, 0, true);
  return records + xf(0, 0, false);
}

std::string font(std::string_view name, unsigned flags = 0, unsigned color = 0x7FFF) {
  return record(0x31, u16(200) + u16(flags) + u16(color) + u16(flags != 0 ? 700 : 400) + u16(0) +
                          u8(0) + u8(0) + u8(0) + u8(0) + narrow8(name));
}

std::string texts(std::initializer_list<std::string> items) {
  std::string data = u32(items.size()) + u32(items.size());
  for (const std::string& item : items) data += item;
  return record(0xFC, data);
}

TEST(XlsReading, ReadsEveryKindOfCell) {
  const std::string rk_tenth = u32(0x40240000 | 1);  // 10 in hundredths
  const std::string records =
      cell(0x203, 0, 0, 15, f64(1.5)) + cell(0x27E, 0, 1, 15, rk_tenth) +
      cell(0x27E, 0, 2, 15, u32(static_cast<std::uint32_t>(-7) << 2 | 2)) +
      cell(0x27E, 0, 3, 15, u32(12345U << 2 | 3)) +
      record(0xBD,
             u16(1) + u16(2) + u16(15) + u32(4 << 2 | 2) + u16(15) + u32(5 << 2 | 2) + u16(3)) +
      cell(0xFD, 2, 0, 15, u32(1)) + cell(0xFD, 2, 1, 15, u32(0)) +
      cell(0x204, 2, 2, 15, wide16("\xE2\x82\xAC")) +
      cell(0xD6, 2, 3, 15, narrow16("rich") + u16(0)) + cell(0x201, 3, 0, 15, "") +
      record(0xBE, u16(3) + u16(5) + u16(15) + u16(15) + u16(6)) +
      cell(0x205, 4, 0, 15, u8(1) + u8(0)) + cell(0x205, 4, 1, 15, u8(0x2A) + u8(1)) +
      cell(0x205, 4, 2, 15, u8(0x2B) + u8(1)) +
      // Cells may come in any order, and the later one of a place counts.
      cell(0x203, 4, 0, 15, f64(9)) + cell(0x203, 0, 9, 15, f64(-0.25));
  LoadedBook book(file_of(stream_of(
      {{"Data", records}}, usual_formats() + texts({narrow16("first"), narrow16("second")}))));
  check(book, {{0, 0, "1.500000"},
               {0, 1, "0.100000"},
               {0, 2, "-7.000000"},
               {0, 3, "123.450000"},
               {0, 9, "-0.250000"},
               {1, 2, "4.000000"},
               {1, 3, "5.000000"},
               {2, 0, "\"second\""},
               {2, 1, "\"first\""},
               {2, 2, "\"\xE2\x82\xAC\""},
               {2, 3, "\"rich\""},
               {3, 0, "blank"},
               {3, 5, "blank"},
               {3, 6, "blank"},
               {3, 7, "-"},
               {4, 0, "9.000000"},
               {4, 1, "#N/A"},
               {4, 2, "#GETTING_DATA"}});
}

// Texts may be cut anywhere, with their width changing behind the cut.
TEST(XlsReading, JoinsTextsThatGoOn) {
  const std::string rich = u16(3) + u8(8) + u16(2) + "abc" + u32(1);  // two runs
  const std::string phonetic = u16(1) + u8(5) + u32(4) + u16(0x20AC) + "pho";
  const std::string wide = u16(4) + u8(1) + u16(0xE4);
  const std::string globals =
      record(0xFC, u32(9) + u32(77) + narrow16("one") + u16(5) + u8(0) + "na") +
      record(0x3C, u8(0) + "rr") + record(0x3C, u8(1) + u16(0x20AC) + rich) +
      record(0x3C, u32(2) + phonetic) + record(0x3C, "n" + wide) +
      record(0x3C, u8(0) + "xyz" + u16(0) + u8(0) + u16(1) + u8(1) + u16(0xD83D)) +
      record(0x3C, u16(1) + u8(1) + u16(0x41)) + record(0x3C, u16(3) + u8(0)) +
      record(0x3C, u8(0) + "end");
  LoadedBook book(file_of(stream_of({{"Data", ""}}, globals)));
  std::vector<std::string> found;
  for (std::uint32_t i = 0; i < book.book.strings.size(); ++i)
    found.emplace_back(book.book.strings[i]);
  EXPECT_THAT(found, ElementsAre("one", "narr\xE2\x82\xAC", "abc", "\xE2\x82\xAC", "\xC3\xA4xyz",
                                 "", "\xEF\xBF\xBD", "A", "end"));
  // Plain text never becomes one that has a look of its own.
  EXPECT_NE(book.book.strings.add("abc"), 2U);
  EXPECT_EQ(book.book.strings.add("one"), 0U);
}

TEST(XlsReading, ReadsFormulasWithTheirValues) {
  constexpr unsigned kCalculated = 1;  // always: because of what it calls, or of what it lacks
  const auto with_value = [](int column, std::string_view value, std::uint16_t id = 0x06) {
    return cell(id, 0, column, 15,
                std::string(value) + u16(kCalculated) + u32(0) + expression(u8(0x1E) + u16(1)));
  };
  const auto special = [](unsigned kind, unsigned value) {
    return u8(kind) + u8(0) + u16(value) + u16(0) + u16(0xFFFF);
  };
  const double no_number = std::numeric_limits<double>::quiet_NaN();
  const std::string records = with_value(0, f64(2.5)) + with_value(1, special(0, 0)) +
                              record(0x207, narrow16("said")) + with_value(2, special(1, 1)) +
                              with_value(3, special(2, 0x07)) + with_value(4, special(3, 0)) +
                              with_value(5, special(3, 0xFFFF)) + with_value(6, special(0, 0)) +
                              with_value(7, f64(no_number)) + with_value(8, f64(3), 0x206) +
                              with_value(9, f64(4), 0x406) + cell(0x203, 1, 0, 15, f64(no_number));
  LoadedBook book(file_of(stream_of({{"Data", records}})));
  check(book, {{0, 0, "2.500000 =1"},
               {0, 1, "\"said\" =1"},
               {0, 2, "TRUE =1"},
               {0, 3, "#DIV/0! =1"},
               {0, 4, "\"\" =1"},
               {0, 5, "blank =1"},
               {0, 6, "\"\" =1"},
               {0, 7, "#NUM! =1"},
               {0, 8, "3.000000 =1"},
               {0, 9, "4.000000 =1"},
               {1, 0, "#NUM!"}});
  // Written anew none stays behind under its old number, and none gets another value.
  book.sheet().change().put_value(5, 5, Value::of_number(1), 0);
  LoadedBook saved(book.file());
  for (int column = 0; column < 10; ++column)
    EXPECT_EQ(shown(saved, 0, column), shown(book, 0, column));
  for (const auto& [id, data] : records_of(book.file())) EXPECT_NE(id & 0xF0F, 0x206U);
}

std::string elsewhere(int row, int column) {
  return u8(1) + u16(static_cast<unsigned>(row)) + u16(static_cast<unsigned>(column));
}
std::string range(int row_first, int row_last, int column_first, int column_last) {
  return u16(static_cast<unsigned>(row_first)) + u16(static_cast<unsigned>(row_last)) +
         u8(static_cast<unsigned>(column_first)) + u8(static_cast<unsigned>(column_last));
}

TEST(XlsReading, ExpandsSharedFormulas) {
  const auto left = u8(0x4C) + u16(0) + u16(0xFF | kRelative);     // one column to the left
  const auto above = u8(0x4C) + u16(0xFFFF) + u16(0 | kRelative);  // one row up
  const std::string records =
      // The text of a formula follows upon the record of the group.
      cell(0x06, 0, 1, 15,
           u8(0) + std::string(5, '\0') + u16(0xFFFF) + u16(0) + u32(0) +
               expression(elsewhere(0, 1))) +
      record(0x4BC, range(0, 2, 1, 1) + u16(3) + expression(left)) + record(0x207, narrow16("x")) +
      formula(1, 1, elsewhere(0, 1)) + formula(2, 1, elsewhere(0, 1)) +
      // Beyond the range it was made for.
      formula(4, 1, elsewhere(0, 1)) +
      // The first row's goes around the sheet's end.
      formula(0, 3, elsewhere(0, 3)) +
      record(0x4BC, range(0, 1, 3, 3) + u16(2) + expression(above)) +
      formula(1, 3, elsewhere(0, 3)) +
      // Its group comes later, or never.
      formula(6, 0, elsewhere(7, 0), 3) + formula(6, 1, elsewhere(99, 0), 4) +
      formula(7, 0, elsewhere(7, 0)) +
      record(0x4BC, range(6, 7, 0, 0) + u16(2) + expression(above));
  LoadedBook book(file_of(stream_of({{"Data", records}})));
  check(book, {{0, 1, "\"x\" =A1"},
               {1, 1, "0.000000 =A2"},
               {2, 1, "0.000000 =A3"},
               {4, 1, "0.000000 =A5"},
               {0, 3, "0.000000 =D65536"},
               {1, 3, "0.000000 =D1"},
               {6, 0, "3.000000 =A6"},
               {6, 1, "4.000000"},
               {7, 0, "0.000000 =A7"}});
  EXPECT_EQ(book.sheet().contents().shared_formulas.size(), 2U);
}

TEST(XlsReading, ReadsArraysAndDataTables) {
  const std::string one = u8(0x1E) + u16(1);
  const std::string records = formula(0, 0, elsewhere(0, 0), 5) +
                              record(0x221, range(0, 1, 0, 1) + u16(0) + u32(0) + expression(one)) +
                              formula(0, 1, elsewhere(0, 0), 6) +
                              formula(1, 0, elsewhere(0, 0), 7) +
                              formula(1, 1, elsewhere(0, 0), 8) + formula(3, 0, elsewhere(3, 0)) +
                              record(0x221, range(3, 3, 0, 0) + u16(0) + u32(0) + expression(one)) +
                              formula(5, 1, u8(2) + u16(5) + u16(1), 9) +
                              record(0x236, range(5, 6, 1, 1) + u16(0) + std::string(8, '\0')) +
                              formula(6, 1, u8(2) + u16(5) + u16(1), 10);
  LoadedBook book(file_of(stream_of({{"Data", records}})));
  check(book, {{0, 0, "5.000000 =1"},
               {0, 1, "6.000000"},
               {1, 0, "7.000000"},
               {1, 1, "8.000000"},
               {3, 0, "0.000000 =1"},
               {5, 1, "9.000000"},
               {6, 1, "10.000000"}});
  const SheetContents& sheet = book.sheet().contents();
  ASSERT_EQ(sheet.arrays.size(), 2U);
  EXPECT_EQ(*sheet.arrays.find({1, 1}), (CellRange{0, 1, 0, 1}));
  const CellRecord& first = *sheet.record(*sheet.cells.find(0, 0));
  EXPECT_EQ(sheet.extra(first)->form, FormulaForm::kArray);
  EXPECT_EQ(sheet.extra(*sheet.record(*sheet.cells.find(5, 1)))->form, FormulaForm::kDataTable);
}

// A formula that no text says keeps its value and its expression.
TEST(XlsReading, CarriesFormulasWithoutText) {
  const std::string label = u8(0x18) + u8(6) + u32(0);
  LoadedBook book(file_of(stream_of({{"Data", formula(0, 0, label, 5)}})));
  check(book, {{0, 0, "5.000000"}});
  const SheetContents& sheet = book.sheet().contents();
  const CellRecord* its = sheet.record(*sheet.cells.find(0, 0));
  ASSERT_TRUE(its && sheet.extra(*its));
  EXPECT_EQ(sheet.extra(*its)->formula_details, expression(label));
}

TEST(XlsReading, ReadsOnlyTheRowsThatAreAskedFor) {
  const std::string one = u8(0x1E) + u16(1);
  std::string records = formula(1, 1, elsewhere(1, 1)) +
                        record(0x221, range(1, 4, 1, 1) + u16(0) + u32(0) + expression(one)) +
                        formula(1, 2, elsewhere(1, 2)) +
                        record(0x4BC, range(1, 4, 2, 2) + u16(4) +
                                          expression(u8(0x4C) + u16(0) + u16(0xFE | kRelative)));
  for (int row = 0; row < 5; ++row) {
    records += cell(0x204, row, 0, 15, narrow16("row " + std::to_string(row)));
    if (row > 1) records += formula(row, 1, elsewhere(1, 1)) + formula(row, 2, elsewhere(1, 2));
  }
  records += record(0x208, u16(1) + u32(0) + u16(800) + u32(0) + u16(0x41) + u16(15));
  LoadedBook book(file_of(stream_of({{"Data", records}}, texts({narrow16("shared")}))));
  Sheet& sheet = *book.book.sheets()[0];
  sheet.loading = Loading::kPartly;
  sheet.loaded_rows = {3, 4, 0, 255};
  check(book, {{0, 0, "-"},
               {2, 0, "-"},
               {3, 0, "\"row 3\""},
               {4, 0, "\"row 4\""},
               {3, 1, "0.000000"},
               {3, 2, "0.000000 =A4"}});
  EXPECT_TRUE(sheet.contents().outer_arrays.contains({1, 1}));
  // Of the rest rows keep their sizes: drawings lie over them.
  const RowProperties* high = sheet.contents().properties(*sheet.contents().cells.find_row(1));
  ASSERT_NE(high, nullptr);
  EXPECT_EQ(high->height, 40);
  EXPECT_EQ(high->outline_level, 0);
  const auto outside = book.document->read_outside(book.book, sheet);
  const SheetContents& others = outside->rows.contents();
  ASSERT_NE(others.cells.find(2, 0), nullptr);
  EXPECT_EQ(others.cells.find(3, 0), nullptr);
  // Texts of its own have numbers behind those that the file shares.
  EXPECT_EQ(outside->texts.strings[others.cells.find(2, 0)->index() - 1], "row 2");
}

TEST(XlsReading, ReadsStyles) {
  std::string alignment = u8(2 | 8 | 1 << 4) + u8(90) + u8(3 | 16) + u8(0);
  const std::string look = alignment + u32(1 | 2 << 4 | 10U << 16 | 11U << 23 | 2U << 30) +
                           u32(12 | 5U << 21 | 13U << 14 | 1U << 26) + u16(22 | 23 << 7);
  const std::string globals =
      font("Arial") + font("Arial") + font("Arial") + font("Arial") + font("Used", 2 | 8, 12) +
      record(0x41E, u16(164) + narrow16("0.0\"x\"")) + record(0x41E, u16(14) + narrow16("yyyy")) +
      usual_formats() + xf(5, 164, false, look) + xf(2, 14, false) +
      record(0x92, u16(2) + u32(0x00030201) + u32(0x00060504));
  LoadedBook book(file_of(stream_of(
      {{"Data", cell(0x201, 0, 0, 16, "") + cell(0x201, 0, 1, 17, "") + cell(0x201, 0, 2, 99, "")}},
      globals)));
  const Styles& styles = book.book.styles;
  // The third of the four alike is used, the second and the fourth are not.
  ASSERT_EQ(styles.font_count(), 3U);
  ASSERT_EQ(styles.format_count(), 3U);
  const SheetContents& sheet = book.sheet().contents();
  EXPECT_EQ(sheet.cells.find(0, 0)->style, 1U);
  EXPECT_EQ(sheet.cells.find(0, 1)->style, 2U);
  EXPECT_EQ(sheet.cells.find(0, 2)->style, 0U);
  const FormatRecord& made = styles.format(1);
  EXPECT_EQ(styles.code_of(made.number_format), "0.0\"x\"");
  EXPECT_EQ(styles.code_of(styles.format(2).number_format), "yyyy");
  EXPECT_EQ(styles.format(2).font, 1U);
  const FontRecord& used = styles.font(made.font);
  EXPECT_EQ(used.name, "Used");
  EXPECT_TRUE(used.bold && used.italic && used.strike_out);
  EXPECT_EQ(used.size, 10);
  EXPECT_EQ(used.color, Color::indexed(12));
  EXPECT_EQ(made.alignment, (Alignment{2, 1, 90, 3, true, true}));
  const Border& border = styles.border_of(1);
  EXPECT_EQ(border.left, (BorderSide{1, Color::indexed(10)}));
  EXPECT_EQ(border.right, (BorderSide{2, Color::indexed(11)}));
  EXPECT_EQ(border.top, BorderSide());
  EXPECT_EQ(border.diagonal, (BorderSide{5, Color::indexed(13)}));
  EXPECT_EQ(border.diagonals, 2);
  EXPECT_EQ(styles.fill_of(1), (Fill{1, Color::indexed(22), Color::indexed(23), 0}));
  EXPECT_TRUE(made.locked);
  EXPECT_EQ(styles.colors.palette[1], 0x040506U);
  EXPECT_EQ(styles.colors.palette[2], kDefaultPalette[2]);
}

std::string name(std::string_view text, std::string_view tokens, unsigned sheet = 0,
                 unsigned flags = 0) {
  return record(0x18, u16(flags) + u8(0) + u8(text.size()) + u16(tokens.size()) + u16(0) +
                          u16(sheet) + u32(0) + u8(0) + std::string(text) + std::string(tokens));
}

TEST(XlsReading, ReadsNamesAndSettingsOfTheBook) {
  const std::string other_sheet = u8(0x3A) + u16(0) + u16(1) + u16(1);
  const std::string globals =
      record(0x60, "") + record(0x22, u16(1)) +
      record(0x3D, std::string(10, '\0') + u16(1) + std::string(6, '\0')) +
      record(0x1AE, u16(2) + u16(0x401)) + record(0x17, u16(1) + u16(0) + u16(1) + u16(1)) +
      // A definition may use names that come later.
      name("Twice", u8(0x23) + u16(2) + u16(0) + u8(0x1E) + u16(2) + u8(5)) +
      name("Rate", other_sheet, 0, 1) + name("\x06", other_sheet, 2, 0x20) +
      name("macro", "", 0, 2) + name("bad", u8(0x18), 0);
  LoadedBook book(file_of(stream_of({{"One", record(0x0F, u16(0)), 0, 0},
                                     {"Two", "", 0, 1},
                                     {"Chart", record(0x23E, u16(0x200)), 2, 2}},
                                    globals)));
  std::vector<std::string> found;
  for (const DefinedName& one : book.book.names)
    found.push_back(one.name + "=" + one.definition + (one.hidden ? " hidden" : "") +
                    (one.scope ? " on " + one.scope->name() : ""));
  EXPECT_THAT(found, ElementsAre("Twice=Rate*2", "Rate=Two!$B$2 hidden",
                                 "_xlnm.Print_Area=Two!$B$2 on Two"));
  EXPECT_TRUE(book.book.date1904 && book.book.is_template && book.book.r1c1);
  EXPECT_EQ(book.book.active_sheet, 1U);
  EXPECT_EQ(book.book.sheets()[1]->visibility, SheetVisibility::kHidden);
  EXPECT_EQ(book.book.sheets()[2]->visibility, SheetVisibility::kVeryHidden);
  EXPECT_EQ(book.book.sheets()[2]->kind, SheetKind::kChart);
  EXPECT_TRUE(book.book.sheets()[2]->selected);
}

// Formulas of a sheet that is read late name the others as they are called then.
TEST(XlsReading, FollowsSheetsUntilTheyAreRead) {
  const std::string globals =
      record(0x1AE, u16(2) + u16(0x401)) + record(0x17, u16(1) + u16(0) + u16(0) + u16(0));
  const std::string file = file_of(stream_of(
      {{"One", ""}, {"Two", formula(0, 0, u8(0x3A) + u16(0) + u16(0) + u16(0))}}, globals));
  LoadedBook renamed(file);
  renamed.book.rename_sheet(*renamed.book.sheets()[0], "First", "first");
  check(renamed, {{0, 0, "0.000000 =First!$A$1"}}, 1);
  LoadedBook removed(file);
  removed.document->remove_sheet(removed.book, *removed.book.sheets()[0], {});
  check(removed, {{0, 0, "0.000000 =#REF!$A$1"}}, 1);
}

// A sheet is long enough here for a second thread to read its end while the first one is still in
// front. What stands between, or is said twice, counts as if one thread had read all in order.
TEST(XlsReading, ReadsLongSheetsInOrder) {
  constexpr int kRows = 30000;
  constexpr int kBehind = 40000;
  const auto cells = [](int row) {
    const double number = row + 0.1;
    return cell(0x203, row, 0, 15, f64(number)) + cell(0x27E, row, 1, 15, u32(7 << 2 | 2)) +
           cell(0x203, row, 2, 15, f64(-number)) + record(0xD7, u32(0));
  };
  std::string hidden_in_view;
  for (int row = kBehind; row < 65536; ++row) hidden_in_view += cells(row);
  const auto height = [](int row, unsigned twips, unsigned flags) {
    return record(0x208, u16(static_cast<unsigned>(row)) + u16(0) + u16(3) + u16(twips) + u32(0) +
                             u16(flags) + u16(15));
  };
  constexpr unsigned kUsual = 255;
  const struct {
    const char* what;
    int at;  // the row in front of which the records stand
    std::string records;
    Shown changed;
  } kCases[] = {
      {"nothing", 0, "", {0, 0, "0.100000"}},
      {"a formula", 20000, formula(20000, 5, u8(0x1E) + u16(7)), {20000, 5, "0.000000 =7"}},
      {"a cell of the front again", 29990, cell(0x203, 5, 1, 15, f64(8)), {5, 1, "8.000000"}},
      {"a further cell of the front", 29990, cell(0x201, 5, 9, 15, ""), {5, 9, "blank"}},
      {"a cell of the end before", 100, cell(0x201, 29990, 1, 15, ""), {29990, 1, "7.000000"}},
      {"a cell of the row behind", 29000, cell(0x201, 29000, 4, 15, ""), {29000, 4, "blank"}},
      {"a row's height", 29000, height(29000, 400, 0x40), {29000, 4, "-"}},
      {"another usual height", 2000, record(0x225, u16(0) + u16(400)), {29000, 4, "-"}},
      {"a view of its own",
       15000,
       record(0x1AA, "") + hidden_in_view + record(0x1AB, ""),
       {kBehind, 0, "-"}},
  };
  for (const auto& [what, at, records, changed] : kCases) {
    SCOPED_TRACE(what);
    std::string sheet = record(0x225, u16(0) + u16(kUsual));
    for (int row = 0; row < kRows; ++row) {
      if (row == at) sheet += records;
      sheet += height(row, kUsual, 0) + cells(row);
    }
    LoadedBook book(file_of(stream_of({{"Data", sheet}})));
    check(book, {changed});
    const SheetContents& contents = book.sheet().contents();
    const bool is_more = changed.column > 2 && std::string_view(changed.text) != "-";
    EXPECT_EQ(contents.cells.cell_count(), 3U * kRows + (is_more ? 1 : 0));
    const bool differs = std::string_view(what) == "another usual height";
    for (const Row& row : contents.cells.rows()) {
      const double number = row.number + 0.1;
      ASSERT_EQ(row.cells[0].number, number);
      ASSERT_EQ(row.cells[2].number, -number);
      const bool is_own =
          differs ? row.number >= 2000 : row.number == 29000 && at == 29000 && !is_more;
      ASSERT_EQ(row.properties != 0, is_own) << row.number;
    }
  }
}

TEST(XlsReading, ReadsTheInformationAlone) {
  const std::string globals = record(0x22, u16(1)) + texts({narrow16("x")});
  LoadedBook book(file_of(stream_of({{"One", ""}, {"Two", ""}}, globals)), LoadScope::kInfo);
  EXPECT_EQ(book.book.sheets().size(), 2U);
  EXPECT_EQ(book.book.strings.size(), 0U);
}

}  // namespace
}  // namespace engine::xls
