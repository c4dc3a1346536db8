// What a sheet has beside its cells.
#include <gmock/gmock.h>

#include <algorithm>

#include "tests/xls/streams.h"

namespace engine::xls {
namespace {

using namespace testing;  // NOLINT(google-build-using-namespace): records are made of its pieces

LoadedBook load(const std::string& records) {
  return LoadedBook(file_of(stream_of({{"Data", records}})));
}

TEST(XlsSheets, ReadsRowsAndColumns) {
  const auto row = [](unsigned number, unsigned height, unsigned flags) {
    return record(0x208,
                  u16(number) + u16(0) + u16(1) + u16(height) + u32(0) + u16(flags) + u16(0));
  };
  const auto columns = [](unsigned first, unsigned last, unsigned width, unsigned flags) {
    return record(0x7D, u16(first) + u16(last) + u16(width) + u16(15) + u16(flags) + u16(0));
  };
  LoadedBook book =
      load(record(0x225, u16(0) + u16(300)) + record(0x55, u16(12)) + record(0x99, u16(2560)) +
           columns(5, 256, 512, 1) + columns(0, 1, 2560, 2 | 4 | 0x1200) + columns(1, 2, 100, 0) +
           record(0x81, u16(0x40 | 0x100)) + row(0, 300, 0) + row(1, 400, 0) +
           row(2, 300, 0x40 | 0x20) + row(3, 300 | 0x8000, 0x13));
  const SheetContents& sheet = book.sheet().contents();
  EXPECT_EQ(sheet.default_row_height, 15);
  EXPECT_EQ(sheet.base_column_width, 12);
  EXPECT_EQ(sheet.default_column_width, 10);
  EXPECT_EQ(sheet.properties(0), nullptr);
  EXPECT_EQ(sheet.properties(1)->height, 20);
  EXPECT_TRUE(sheet.properties(2)->custom_height && sheet.properties(2)->hidden);
  EXPECT_EQ(sheet.properties(2)->height, 15);
  EXPECT_EQ(sheet.properties(3)->height, std::nullopt);
  EXPECT_EQ(sheet.properties(3)->outline_level, 3);
  EXPECT_TRUE(sheet.properties(3)->collapsed);
  ASSERT_EQ(sheet.columns.size(), 3U);
  const ColumnProperties& first = *sheet.columns.find(1);
  EXPECT_EQ(first.width, 10);
  EXPECT_TRUE(first.custom_width && first.best_fit && first.collapsed);
  EXPECT_EQ(first.outline_level, 2);
  EXPECT_EQ(sheet.columns.find(2)->first, 2);
  EXPECT_EQ(sheet.columns.find(255)->last, 255);
  EXPECT_TRUE(sheet.columns.find(255)->hidden);
  EXPECT_TRUE(sheet.summary_below && !sheet.summary_right && sheet.page.fitted);
}

TEST(XlsSheets, ReadsThePage) {
  const auto setup = [](unsigned flags) {
    return record(0xA1, u16(9) + u16(80) + u16(1) + u16(2) + u16(3) + u16(flags) + u32(0) +
                            f64(0.25) + f64(0.75) + u16(1));
  };
  LoadedBook book = load(record(0x2A, u16(1)) + record(0x2B, u16(1)) + record(0x83, u16(1)) +
                         record(0x84, u16(1)) + record(0x26, f64(1.25)) + record(0x28, f64(2)) +
                         record(0x27, f64(99)) + record(0x29, u16(1)) +
                         record(0x14, wide16("&C\xC3\xA4")) + record(0x15, "") + setup(0) +
                         record(0x1B, u16(3) + u16(7) + u16(0) + u16(255) + u16(4) + u16(0) +
                                          u16(16383) + u16(0) + u16(0) + u16(9)) +
                         record(0x1A, u16(9) + u16(2) + u16(0) + u16(65535)));
  const SheetContents& sheet = book.sheet().contents();
  const PageSetup& page = sheet.page;
  EXPECT_TRUE(page.headings && page.gridlines && page.centered_across && page.centered_down);
  EXPECT_EQ(page.left_margin, 1.25);
  EXPECT_EQ(page.top_margin, 2);
  EXPECT_EQ(page.right_margin, 0.75);
  EXPECT_EQ(page.bottom_margin, 1);
  EXPECT_EQ(page.header_margin, 0.25);
  EXPECT_EQ(page.footer_margin, 0.75);
  EXPECT_EQ(page.header, "&C\xC3\xA4");
  EXPECT_EQ(page.footer, "");
  EXPECT_EQ(page.paper, 9);
  EXPECT_EQ(page.zoom, 80);
  EXPECT_EQ(page.pages_wide, 2);
  EXPECT_EQ(page.pages_tall, 3);
  EXPECT_TRUE(page.landscape);
  EXPECT_EQ(sheet.breaks.rows, (PageBreakList{{4, 0, 255, false}, {7, 0, 255, false}}));
  EXPECT_EQ(sheet.breaks.columns, (PageBreakList{{2, 0, 65535, false}}));
  // Without a printer neither paper nor orientation nor scale mean anything.
  LoadedBook other = load(setup(4));
  EXPECT_EQ(other.sheet().contents().page.paper, 0);
  EXPECT_EQ(other.sheet().contents().page.zoom, 100);
  EXPECT_FALSE(other.sheet().contents().page.landscape);
}

TEST(XlsSheets, ReadsTheView) {
  const auto window = [](unsigned flags) {
    return record(0x23E, u16(flags) + u16(3) + u16(1) + u32(64) + u16(0) + u16(60) + u32(0));
  };
  const std::string pane = record(0x41, u16(1) + u16(2) + u16(9) + u16(5) + u8(0));
  const std::string zoom = record(0xA0, u16(3) + u16(4));
  struct Case {
    const char* what;
    std::string records;
    SheetView view;
  };
  const Case cases[] = {
      {"plain", window(0), {false, false, 100, 0, 0, {}, {3, 1}}},
      {"frozen", window(0x42 | 0x08) + zoom + pane, {true, true, 75, 2, 1, {3, 1}, {9, 5}}},
      {"movable panes", window(2) + pane, {true, false, 100, 0, 0, {}, {3, 1}}},
      {"pages shown", window(0x802) + zoom, {true, false, 60, 0, 0, {}, {3, 1}}},
      {"no zoom", window(2) + record(0xA0, u16(1) + u16(0)), {true, false, 100, 0, 0, {}, {3, 1}}},
  };
  for (const auto& [what, records, view] : cases) {
    SCOPED_TRACE(what);
    LoadedBook book = load(records);
    EXPECT_EQ(book.sheet().contents().view, view);
    EXPECT_FALSE(book.sheet().selected);
  }
  LoadedBook selected = load(window(0x200));
  EXPECT_TRUE(selected.sheet().selected);
}

TEST(XlsSheets, ReadsProtection) {
  const auto features = [](std::uint32_t allowed) {
    return record(0x867, u16(0x867) + std::string(10, '\0') + u16(2) + u8(1) + u32(0xFFFFFFFF) +
                             u32(allowed));
  };
  const std::string on = record(0x12, u16(1));
  struct Case {
    const char* what;
    std::string records;
    bool on;
    std::uint32_t allowed;
    std::uint16_t hash;
  };
  const Case cases[] = {
      {"none", features(0x4403), false, kAllowUsual, 0},
      {"old", on + record(0x13, u16(0x83AF)) + record(0x63, u16(1)) + record(0xDD, u16(1)), true,
       kAllowUsual, 0x83AF},
      {"old with objects", on, true, kAllowUsual | kAllowObjects | kAllowScenarios, 0},
      {"fine", on + record(0x63, u16(1)) + features(0x4404), true, kAllowUsual | kAllowFormatCells,
       0},
  };
  for (const auto& [what, records, is_on, allowed, hash] : cases) {
    SCOPED_TRACE(what);
    LoadedBook book = load(records);
    const Protection& found = book.sheet().contents().protection;
    EXPECT_EQ(found.on, is_on);
    EXPECT_EQ(found.allowed, allowed);
    EXPECT_EQ(found.password.short_hash, hash);
  }
}

TEST(XlsSheets, ReadsMergesTabAndNotes) {
  const auto box = [](unsigned number, unsigned kind) {
    return record(0x5D, u16(0x15) + u16(0x12) + u16(kind) + u16(number) + std::string(14, '\0'));
  };
  const auto text = [](unsigned length) {
    return record(0x1B6, std::string(10, '\0') + u16(length) + u16(16) + u32(0));
  };
  const std::string runs = record(0x3C, std::string(16, '\0'));
  LoadedBook book =
      load(record(0xE5, u16(4) + u16(0) + u16(1) + u16(0) + u16(2) + u16(5) + u16(5) + u16(5) +
                            u16(5) + u16(7) + u16(8) + u16(0) + u16(300)) +
           record(0x862, u16(0x862) + std::string(10, '\0') + u32(20) + u32(12)) + box(1, 0x19) +
           record(0xEC, "x") + text(5) + record(0x3C, u8(0) + "no") +
           record(0x3C, u8(1) + u16('t') + u16(0x20AC) + u16('!')) + runs + box(2, 2) + text(3) +
           record(0x3C, u8(0) + "box") + runs + box(3, 0x19) + text(0) +
           record(0x1C, u16(4) + u16(1) + u16(0) + u16(1) + narrow16("me") + u8(0)) +
           record(0x1C, u16(5) + u16(0) + u16(0) + u16(3) + narrow16("") + u8(0)) +
           record(0x1C, u16(6) + u16(999) + u16(0) + u16(3) + narrow16("")));
  const SheetContents& sheet = book.sheet().contents();
  ASSERT_EQ(sheet.merges.size(), 1U);
  EXPECT_EQ(sheet.merges[0], (CellRange{0, 1, 0, 2}));
  EXPECT_EQ(sheet.tab_color, Color::indexed(12));
  ASSERT_EQ(sheet.comments.size(), 2U);
  EXPECT_EQ(sheet.comments.at({4, 1}).text, "not\xE2\x82\xAC!");
  EXPECT_EQ(sheet.comments.at({4, 1}).author, "me");
  EXPECT_EQ(sheet.comments.at({5, 0}).text, "");
}

std::string link_text(std::string_view utf8) {
  const std::string bytes = utf16_bytes(utf8) + u16(0);
  return u32(bytes.size() / 2) + bytes;
}

TEST(XlsSheets, ReadsLinks) {
  const std::string url_class = u32(0x79EAC9E0) + std::string(12, '\x11');
  const std::string file_class = u32(0x303) + std::string(12, '\x22');
  const auto url = [&](std::string_view text) {
    const std::string bytes = utf16_bytes(text) + u16(0);
    return url_class + u32(bytes.size()) + bytes;
  };
  const auto file = [&](unsigned up, std::string_view narrow, std::string_view wide) {
    const std::string bytes = utf16_bytes(wide);
    return file_class + u16(up) + u32(narrow.size() + 1) + std::string(narrow) + u8(0) +
           std::string(24, '\0') +
           (wide.empty() ? u32(0) : u32(bytes.size() + 6) + u32(bytes.size()) + u16(3) + bytes);
  };
  struct Case {
    std::uint32_t flags;
    std::string rest;
    const char* text;
  };
  const Case cases[] = {
      {0x08, link_text("Sheet1!A1"), "#Sheet1!A1"},
      {0x03, url("http://a.example/"), "http://a.example/"},
      {0x1B, link_text("shown") + url("http://a.example/") + link_text("part"),
       "http://a.example/#part"},
      {0x81, link_text("frame") + file(2, "a.xls", ""), "..\\..\\a.xls"},
      {0x01, file(0, "?.xls", "\xE2\x82\xAC.xls"), "\xE2\x82\xAC.xls"},
      {0x101, link_text("\\\\server\\a"), "\\\\server\\a"},
  };
  std::string records;
  const std::string head = u16(1) + u16(2) + u16(3) + u16(4) + std::string(16, '\0') + u32(2);
  for (const auto& [flags, rest, text] : cases) records += record(0x1B8, head + u32(flags) + rest);
  records += record(0x1B8, head + u32(3) + url_class + u32(900) + "x");  // is cut
  LoadedBook book = load(records);
  const Links& links = book.sheet().contents().links;
  ASSERT_EQ(links.size(), std::size(cases));
  for (std::size_t i = 0; i < links.size(); ++i) EXPECT_EQ(links[i].text, cases[i].text);
  EXPECT_EQ(links[0].cells, (CellRange{1, 2, 3, 4}));
}

// As other programs write them.
TEST(XlsSheets, ReadsRulesOfOtherPrograms) {
  const auto future = [](std::uint16_t id, std::string_view data) {
    return record(id, u16(id) + std::string(10, '\0') + std::string(data));
  };
  const auto range = [](unsigned row_first, unsigned row_last, unsigned first, unsigned last) {
    return u16(row_first) + u16(row_last) + u16(first) + u16(last);
  };
  const std::string none = narrow16(std::string(1, '\0'));
  const std::string elsewhere = u8(1) + u32(0);
  const auto rule = [&](std::uint32_t flags, std::string_view tokens, unsigned ranges,
                        std::string_view cells) {
    return record(0x1BE, u32(flags) + none + none + none + none + u16(tokens.size()) + u16(0xABCD) +
                             std::string(tokens) + u16(0) + u16(0) + u16(ranges) +
                             std::string(cells));
  };
  const std::string entries = u8(0x17) + narrow8(std::string("Long\0Short", 10));
  const std::string cell_above = u8(0x4C) + u16(0xFFFF) + u16(0xC000);
  const std::string area = u8(0x25) + u16(28) + u16(32) + u16(15) + u16(15);
  const std::string filtered =
      record(0x9B, "") + record(0x9D, u16(3)) +
      record(0x9E, u16(1) + u16(5) + u8(6) + u8(2) + u32(0x0324B980) + u8(3) + u8(1) + u16(3) +
                       std::string(10, '\0') + u8(0) + "abc") +
      record(0x9E, u16(2) + u16(0) + u8(2) + u8(4) + u32(0x00F00002) + u32(0) + u8(8) + u8(5) +
                       u8(1) + u8(0) + std::string(6, '\0')) +
      record(0x9E, u16(3) + u16(5) + std::string(20, '\0'));
  const std::string name =
      record(0x18, u16(0x21) + u8(0) + u8(1) + u16(11) + u16(0) + u16(1) + u32(0) + u8(0) +
                       u8(0x0D) + u8(0x3B) + u16(0) + u16(4) + u16(9) + u16(2) + u16(4));
  const std::string links =
      record(0x1AE, u16(1) + u16(0x0401)) + record(0x17, u16(1) + u16(0) + u16(0) + u16(0)) + name;
  const std::string records =
      filtered + record(0x1B2, u16(4) + std::string(8, '\0') + u32(0xFFFFFFFF) + u32(9)) +
      rule(0x0C0183, entries, 1, range(1, 5, 2, 2)) + rule(0x0C0103, area, 1, range(0, 0, 0, 0)) +
      rule(0x07, cell_above, 2, range(9, 9, 4, 4) + range(4, 4, 6, 6)) +
      rule(0x0F, cell_above, 1, range(0, 0, 0, 0)) + rule(0x07, elsewhere, 1, range(0, 0, 0, 0)) +
      rule(0x07, cell_above, 1, range(5, 0, 0, 0)) + rule(0x07, cell_above, 900, "") +
      future(0x867, u16(3) + u8(1) + u32(0)) +
      future(0x868,
             u16(3) + u8(0) + u32(0) + u16(1) + u32(4) + u16(0) + range(1, 2, 3, 4) + u32(0x14)) +
      future(0x868,
             u16(2) + u8(0) + u32(0) + u16(1) + u32(4) + u16(0) + range(1, 2, 3, 4) + u32(0x14)) +
      future(0x868, u16(3) + u8(0) + u32(0) + u16(900) + u32(4) + u16(0));
  LoadedBook book(file_of(stream_of({{"Data", records}}, links)));
  const SheetContents& sheet = book.sheet().contents();
  const std::vector<Validation>& rules = sheet.validations.slots();
  ASSERT_EQ(rules.size(), 3U);
  EXPECT_EQ(rules[0].formulas[0], "\"Long,Short\"");
  EXPECT_TRUE(rules[0].allow_blank && rules[0].show_error && !rules[0].hide_drop_down);
  EXPECT_EQ(rules[1].formulas[0], "$P$29:$P$33");
  EXPECT_EQ(rules[2].formulas[0], "E4");
  EXPECT_TRUE(sheet.filtered);
  EXPECT_EQ(sheet.filter.range, (CellRange{4, 9, 2, 4}));
  ASSERT_EQ(sheet.filter.columns.size(), 2U);
  EXPECT_EQ(sheet.filter.columns[0].criterion.kind, FilterKind::kValues);
  EXPECT_THAT(sheet.filter.columns[0].criterion.texts.all(), ::testing::ElementsAre("abc"));
  const FilterCriterion& custom = sheet.filter.columns[1].criterion;
  ASSERT_EQ(custom.conditions.size(), 2U);
  EXPECT_EQ(custom.conditions[0], (FilterCondition{FilterOperator::kGreater, "3932160"}));
  EXPECT_EQ(custom.conditions[1], (FilterCondition{FilterOperator::kNotEqual, "TRUE"}));
  EXPECT_TRUE(custom.both);
  ASSERT_EQ(sheet.ignored_errors.all().size(), 1U);
  EXPECT_EQ(sheet.ignored_errors.all()[0].kinds, kNumberAsTextFault | kFormulaFault);
}

}  // namespace
}  // namespace engine::xls
