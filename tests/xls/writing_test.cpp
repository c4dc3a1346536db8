// What is written is read again as it was, and stands in the file as the format wants it.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <map>

#include "engine/workbook/filter_operations.h"
#include "engine/workbook/print_names.h"
#include "engine/workbook/sheet_operations.h"
#include "engine/xls/cells_write.h"
#include "engine/xls/record_reader.h"
#include "engine/xls/tokens_write.h"
#include "tests/xls/streams.h"

namespace engine::xls {
namespace {

using namespace testing;  // NOLINT(google-build-using-namespace): files are looked at by its pieces

// A new book with sheets "One" and "Two 2".
struct NewBook {
  NewBook() : book(kCodec.limits), document(kCodec.begin(book)) {
    add("One");
    add("Two 2");
  }

  Sheet& add(std::string name) {
    NewSheet made = make_sheet(book, *document, std::move(name));
    make_room(book, made);
    place_sheet(book, *document, book.sheets().size(), std::move(made));
    return *book.sheets().back();
  }
  SheetContents& sheet(std::size_t index = 0) { return book.sheets()[index]->change(); }
  void put(int row, int column, Value value, std::uint32_t style = 0) {
    sheet().put_value(row, column, value, style);
  }
  Value text(std::string_view utf8) { return Value::of_text(book.strings.add(utf8)); }
  void put_formula(int row, int column, std::string_view formula, Value value = {}) {
    CellRecord record;
    record.formula = formula;
    record.value = value;
    sheet().put_record(row, column, record, 0);
  }

  std::string file(const SaveOptions& options = {}) {
    package::MemoryOutput output;
    document->save(book, options, output);
    return std::string(output.view());
  }

  Workbook book;
  std::unique_ptr<engine::Document> document;
};

std::size_t count_of(const std::string& file, unsigned id) {
  std::size_t count = 0;
  for (const auto& [its, data] : records_of(file)) count += its == id ? 1 : 0;
  return count;
}

TEST(XlsWriting, ShortensNumbersThatStayTheSame) {
  struct Case {
    double number;
    bool is_short;
  };
  const Case kCases[] = {
      {0, true},
      {1, true},
      {-1, true},
      {536870910, true},
      {-536870911, true},
      {1.25, true},
      {0.01, true},
      {12.34, true},
      {-99999.99, true},
      {1e300, false},
      {0.1 + 0.2, false},
      {1.0 / 3, false},
      {12345678.9, false},
      {1e10, false},
      {536870912, true},
      {0.001, false},
      {4294967297.0, false},
      {std::ldexp(1, -1070), false},
  };
  for (const auto& [number, is_short] : kCases) {
    SCOPED_TRACE(number);
    EXPECT_EQ(short_number(number).has_value(), is_short);
    NewBook made;
    made.put(0, 0, Value::of_number(number));
    LoadedBook loaded(made.file());
    const Cell* cell = loaded.sheet().contents().cells.find(0, 0);
    ASSERT_TRUE(cell);
    EXPECT_EQ(cell->number, number);
  }
}

TEST(XlsWriting, KeepsCellsOfEveryKind) {
  NewBook made;
  made.book.styles.add_format(0);
  for (int column = 0; column < 5; ++column) made.put(0, column, Value::of_number(column));
  made.put(0, 6, Value::of_number(1.0 / 3));
  made.put(0, 7, Value::of_number(7));
  made.put(1, 0, made.text("plain"));
  made.put(1, 1,
           made.text("Gr\xC3\xB6\xC3\x9F"
                     "e"));
  made.put(1, 2, made.text("\xE6\x97\xA5\xF0\x9F\x98\x80"));
  made.put(1, 3, Value::of_boolean(true));
  made.put(1, 4, Value::of_error(7));
  for (int column = 0; column < 3; ++column) made.sheet().put_blank(2, column, 0);
  made.sheet().put_blank(2, 4, 0);
  made.put(65535, 255, made.text("last"));
  made.put_formula(3, 0, "A1+1", Value::of_number(2.5));
  made.put_formula(3, 1, "\"a\"", made.text("a"));
  made.put_formula(3, 2, "\"\"", made.text(""));
  made.put_formula(3, 3, "1=1", Value::of_boolean(true));
  made.put_formula(3, 4, "1/0", Value::of_error(7));
  made.put_formula(3, 5, "NOW()");
  const std::string file = made.file();
  LoadedBook loaded(file);
  const std::map<std::pair<int, int>, std::string> kShown = {
      {{0, 0}, "0.000000"},
      {{0, 4}, "4.000000"},
      {{0, 5}, "-"},
      {{0, 6}, "0.333333"},
      {{0, 7}, "7.000000"},
      {{1, 0}, "\"plain\""},
      {{1, 1},
       "\"Gr\xC3\xB6\xC3\x9F"
       "e\""},
      {{1, 2}, "\"\xE6\x97\xA5\xF0\x9F\x98\x80\""},
      {{1, 3}, "TRUE"},
      {{1, 4}, "#DIV/0!"},
      {{2, 2}, "blank"},
      {{2, 3}, "-"},
      {{2, 4}, "blank"},
      {{65535, 255}, "\"last\""},
      {{3, 0}, "2.500000 =A1+1"},
      {{3, 1}, "\"a\" =\"a\""},
      {{3, 2}, "\"\" =\"\""},
      {{3, 3}, "TRUE =1=1"},
      {{3, 4}, "#DIV/0! =1/0"},
      {{3, 5}, "blank =NOW()"},
  };
  for (const auto& [place, text] : kShown) {
    SCOPED_TRACE(place.first);
    SCOPED_TRACE(place.second);
    EXPECT_EQ(shown(loaded, place.first, place.second), text);
  }
  // Neighbours share records.
  EXPECT_EQ(count_of(file, kMulRk), 1U);
  EXPECT_EQ(count_of(file, kRk), 1U);
  EXPECT_EQ(count_of(file, kMulBlank), 1U);
  EXPECT_EQ(count_of(file, kBlank), 1U);
}

// Texts around the size of a record, so that each way to cut them occurs.
TEST(XlsWriting, CutsTextsWhereRecordsEnd) {
  NewBook made;
  std::vector<std::string> texts;
  for (int i = 0; i < 60; ++i) {
    std::string text = std::to_string(i);
    const int length = i % 3 == 0 ? 8190 + i : 401 * (i % 7);
    constexpr std::array<std::string_view, 4> kCharacters{"x", "\xE2\x82\xAC", "x",
                                                          "\xF0\x9F\x98\x80"};
    for (int at = 0; at < length; ++at) text += kCharacters.at(i % 4);
    texts.push_back(text);
    made.put(i, 0, made.text(text));
  }
  made.put_formula(60, 0, "A1", made.text(texts[3]));
  const std::string file = made.file();
  LoadedBook loaded(file);
  for (std::size_t i = 0; i < texts.size(); ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(shown(loaded, static_cast<int>(i), 0), "\"" + texts[i] + "\"");
  }
  EXPECT_EQ(shown(loaded, 60, 0), "\"" + texts[3] + "\" =A1");
  for (const auto& [id, data] : records_of(file)) {
    EXPECT_LE(data.size(), RecordWriter::kMaxData);
    // The first half of a pair at the end of a part; readers take each part by itself.
    if (id == kContinue || id == kTexts) {
      EXPECT_NE(data.back() & 0xFC, 0xD8);
    }
  }
}

// The index names the last record of each block, and that the first row and the cells.
TEST(XlsWriting, TellsWhereRowsStand) {
  NewBook made;
  for (const int row : {5, 6, 36, 37, 200}) made.put(row, 1, Value::of_number(row));
  const std::string file = made.file();
  const package::CompoundFile compound(package::Source::from_bytes({file.begin(), file.end()}));
  const package::CompoundStream stream = compound.open(*compound.find_stream("Workbook"));
  std::string bytes(stream.size(), '\0');
  stream.read(0, bytes);
  std::vector<std::size_t> blocks;
  std::string index;
  RecordReader reader(stream, 0);
  while (reader.next() && index.empty())
    if (reader.id() == kIndex) index = reader.data();
  ASSERT_EQ(index.size(), 16U + 3 * 4);
  EXPECT_EQ(package::get32(index, 4), 5U);
  EXPECT_EQ(package::get32(index, 8), 201U);
  EXPECT_EQ(package::get16(bytes, package::get32(index, 12)), kDefaultColumnWidth);
  const unsigned kFirstRows[] = {5, 37, 200};
  for (std::size_t block = 0; block < 3; ++block) {
    const std::size_t place = package::get32(index, 16 + 4 * block);
    ASSERT_EQ(package::get16(bytes, place), kDbCell);
    const std::size_t row = place - package::get32(bytes, place + 4);
    EXPECT_EQ(package::get16(bytes, row), kRow);
    EXPECT_EQ(package::get16(bytes, row + 4), kFirstRows[block]);
    const std::size_t cell = row + 20 + package::get16(bytes, place + 8);
    EXPECT_EQ(package::get16(bytes, cell), kRk);
    EXPECT_EQ(package::get16(bytes, cell + 4), kFirstRows[block]);
  }
}

TEST(XlsWriting, KeepsStyles) {
  NewBook made;
  Styles& styles = made.book.styles;
  const std::uint32_t font = *styles.add_font(0);
  FontRecord& bold = styles.change_font(font, kFontBold);
  bold.name =
      "Gr\xC3\xBC\xC3\x9F"
      "e";
  bold.size = 14.5;
  bold.bold = bold.italic = bold.strike_out = true;
  bold.script = 2;
  bold.underline = 34;
  bold.color = Color::rgb(0x123456);
  const std::uint32_t index = *styles.add_format();
  FormatRecord& format = styles.change_format(index, kFormatFont);
  format.font = font;
  format.number_format = *styles.add_number_format("yyyy-mm-dd");
  format.alignment = {2, 1, 135, 5, true, false};
  Border border;
  border.left = {1, Color::indexed(10)};
  border.right = {13, Color::rgb(0xFF0000)};
  border.top = {2, {}};
  border.bottom = {5, Color::indexed(63)};
  border.diagonal = {6, Color::indexed(12)};
  border.diagonals = 3;
  styles.set_border(index, border);
  styles.set_fill(index, {18, Color::rgb(0x010203), Color::indexed(22), 0});
  format.locked = false;
  format.hidden = true;
  const std::uint32_t same = *styles.add_format(index);
  made.put(0, 0, Value::of_number(1), index);
  made.put(0, 1, Value::of_number(1), same);
  LoadedBook loaded(made.file());
  const CellStore& cells = loaded.sheet().contents().cells;
  const Styles& read = loaded.book.styles;
  EXPECT_EQ(read.format_count(), 2U);
  EXPECT_EQ(read.font_count(), 2U);
  EXPECT_EQ(cells.find(0, 0)->style, cells.find(0, 1)->style);
  const FormatRecord& its = read.format(cells.find(0, 0)->style);
  EXPECT_EQ(read.code_of(its.number_format), "yyyy-mm-dd");
  EXPECT_EQ(its.alignment, styles.format(index).alignment);
  const Border& sides = read.border(its.border);
  const Fill& fill = read.fill(its.fill);
  EXPECT_EQ(sides.left, border.left);
  EXPECT_EQ(sides.right, (BorderSide{13, Color::indexed(10)}));
  EXPECT_EQ(sides.top.style, 2);
  EXPECT_EQ(sides.bottom, border.bottom);
  EXPECT_EQ(sides.diagonal, border.diagonal);
  EXPECT_EQ(sides.diagonals, 3);
  EXPECT_EQ(fill.pattern, 18);
  EXPECT_EQ(fill.background, Color::indexed(22));
  EXPECT_TRUE(!its.locked && its.hidden);
  const FontRecord& other = read.font(its.font);
  EXPECT_EQ(other.name, bold.name);
  EXPECT_EQ(other.size, 14.5);
  EXPECT_TRUE(other.bold && other.italic && other.strike_out);
  EXPECT_EQ(other.script, 2);
  EXPECT_EQ(other.underline, 34);
  // Colours that no palette has take the last entries that nothing else uses.
  EXPECT_EQ(other.color, Color::indexed(62));
  EXPECT_EQ(fill.foreground, Color::indexed(61));
  EXPECT_EQ(rgb_of(other.color, read.colors), 0x123456U);
  EXPECT_EQ(rgb_of(fill.foreground, read.colors), 0x010203U);
}

TEST(XlsWriting, TellsWhatTheFormatCannotHold) {
  const auto message = [](const auto& fill) {
    NewBook made;
    fill(made);
    try {
      made.file();
    } catch (const std::runtime_error& error) {
      return std::string(error.what());
    }
    return std::string("written");
  };
  const auto formula = [&](const char* text) {
    return message([text](NewBook& made) { made.put_formula(1, 1, text); });
  };
  EXPECT_EQ(message([](NewBook& made) {
              for (int i = 0; i < 4050; ++i) {
                const std::uint32_t index = *made.book.styles.add_format();
                FormatRecord& format = made.book.styles.change_format(index, kFormatAlignment);
                format.alignment.rotation = static_cast<std::uint8_t>(i % 181);
                format.alignment.indent = static_cast<std::uint8_t>(i / 181 % 16);
                format.alignment.wrap = i >= 181 * 16;
              }
            }),
            "too many formats: the limit is 4000");
  EXPECT_EQ(message([](NewBook& made) {
              for (int i = 0; i < 510; ++i) {
                const std::uint32_t index = *made.book.styles.add_font(0);
                made.book.styles.change_font(index, kFontSize).size = 20 + i / 4.0;
              }
            }),
            "too many fonts: the limit is 510");
  const auto sheet = [&](const auto& set) {
    return message([&](NewBook& made) { set(made.book.sheets().front()->change()); });
  };
  EXPECT_EQ(sheet([](SheetContents& contents) {
              Validation rule;
              rule.type = ValidationType::kCustom;
              rule.formulas[0] = "SUM({1,2})>A1";
              rule.cells = {{3, 9, 1, 2}};
              contents.validations.add(rule);
            }),
            "cannot be written: sheet \"One\", cell B4, data validation: the formula has an array, "
            "which .xls files do not have there");
  EXPECT_EQ(formula("Table1[Net]"),
            "cannot be written: sheet \"One\", cell B2, the formula refers to a table, which .xls "
            "files do not have");
  EXPECT_EQ(
      formula("[1]Sheet1!A1"),
      "cannot be written: sheet \"One\", cell B2, the formula refers to another workbook that "
      "the file has no link to");
  std::string sums = "1";
  for (int i = 0; i < 700; ++i) sums += "+A1";
  EXPECT_EQ(formula(sums.c_str()),
            "cannot be written: sheet \"One\", cell B2, the formula is too long for .xls files");
}

TEST(XlsWriting, KeepsWhatSheetsHaveBesidesCells) {
  NewBook made;
  SheetContents& sheet = made.sheet();
  for (int i = 0; i < 1100; ++i) sheet.merges.add({i, i, 0, 1});
  sheet.comments[{0, 0}] = {"first\nline", "Me", 0, 0};
  sheet.comments[{7, 255}] = {std::string(9000, 'c') + "\xE2\x82\xAC", "", 300, 20};
  sheet.comments[{9, 1}] = {"", "Other", 0, 0};
  const char* const kLinks[] = {"#One!A1",
                                "https://example.com/a?b=\xC3\xA4#place",
                                "mailto:a@b.example",
                                "..\\..\\other\\file \xC3\xA9.xls#Sheet1!B2",
                                "C:\\dir\\a.txt",
                                "\\\\server\\share\\dir\\b.txt"};
  for (int i = 0; i < 6; ++i) sheet.links.add({{i, i, 2, 3}, kLinks[i]});
  sheet.columns.change({{1, 3, [](ColumnProperties& run) {
                           run.width = 12.5;
                           run.custom_width = true;
                           run.outline_level = 2;
                         }}});
  sheet.properties_at(4) = {30.0, std::nullopt, true, true, true, 3, 0};
  sheet.page.landscape = sheet.page.gridlines = sheet.page.fitted = true;
  sheet.page.paper = 9;
  sheet.page.pages_tall = 0;
  sheet.page.header = "&C\xC3\xA4";
  sheet.page.left_margin = 1.25;
  sheet.page.header_margin = 0.1;
  put_break(sheet.breaks.rows, {8, 0, 255, false});
  put_break(sheet.breaks.columns, {3, 0, 65535, false});
  sheet.protection = {true, kAllowUsual | kAllowSort, {}};
  sheet.protection.password.short_hash = 0x83AF;
  sheet.view = freeze({}, 3, 2);
  sheet.view.zoom = 75;
  sheet.view.gridlines = false;
  sheet.view.top_left = {10, 5};
  sheet.tab_color = Color::indexed(12);
  sheet.summary_below = false;
  SheetContents& other = made.sheet(1);
  other.comments[{1, 1}] = {"elsewhere", "Me", 0, 0};
  other.view.right_to_left = true;
  LoadedBook loaded(made.file());
  const SheetContents& read = loaded.sheet().contents();
  EXPECT_EQ(read.merges.all(), sheet.merges.all());
  ASSERT_EQ(read.comments.size(), 3U);
  for (const auto& [cell, note] : sheet.comments) EXPECT_EQ(read.comments.at(cell).text, note.text);
  EXPECT_EQ(read.comments.at({0, 0}).author, "Me");
  ASSERT_EQ(read.links.size(), 6U);
  for (std::size_t i = 0; i < 6; ++i) {
    EXPECT_EQ(read.links[i].text, kLinks[i]);
    EXPECT_EQ(read.links[i].cells, sheet.links[i].cells);
  }
  const ColumnProperties& columns = *read.columns.find(2);
  EXPECT_EQ(columns.first, 1);
  EXPECT_EQ(columns.width, 12.5);
  EXPECT_EQ(columns.outline_level, 2);
  EXPECT_EQ(*read.properties(4), *sheet.properties(4));
  EXPECT_EQ(read.page, sheet.page);
  EXPECT_EQ(read.breaks, sheet.breaks);
  EXPECT_EQ(read.protection, sheet.protection);
  EXPECT_EQ(read.view, sheet.view);
  EXPECT_EQ(read.tab_color, Color::indexed(12));
  EXPECT_EQ(read.default_row_height, 12.75);
  EXPECT_FALSE(read.summary_below);
  EXPECT_EQ(loaded.sheet(1).contents().comments.at({1, 1}).text, "elsewhere");
  EXPECT_TRUE(loaded.sheet(1).contents().view.right_to_left);
}

TEST(XlsWriting, KeepsTheBooksOwnThings) {
  NewBook made;
  const Sheet& one = *made.book.sheets()[0];
  const Sheet& two = *made.book.sheets()[1];
  made.book.names.add({"Rate", "'Two 2'!$B$4", nullptr, false, ""});
  made.book.names.add({"rate", "One!$A$1:$B$2", &one, true, ""});
  set_print_titles(made.book, two, {formula::Interval{0, 1}, formula::Interval{2, 3}});
  set_print_area(made.book, two, CellRange{0, 9, 0, 4});
  made.put_formula(0, 0, "Rate*'Two 2'!Rate+Unknown+SUM('One:Two 2'!A1)");
  made.book.active_sheet = 1;
  made.book.date1904 = true;
  made.book.r1c1 = true;
  made.book.sheets()[0]->visibility = SheetVisibility::kVeryHidden;
  SaveOptions options;
  options.as_template = true;
  const std::string file = made.file(options);
  EXPECT_EQ(file, made.file(options));
  LoadedBook loaded(file);
  EXPECT_EQ(loaded.book.active_sheet, 1U);
  EXPECT_TRUE(loaded.book.date1904 && loaded.book.r1c1 && loaded.book.is_template);
  EXPECT_EQ(loaded.book.sheets()[0]->visibility, SheetVisibility::kVeryHidden);
  ASSERT_EQ(loaded.book.names.size(), 4U);
  const DefinedName* local = loaded.book.names.find("RATE", loaded.book.sheets()[0].get());
  ASSERT_TRUE(local);
  EXPECT_TRUE(local->hidden);
  EXPECT_EQ(local->definition, "One!$A$1:$B$2");
  EXPECT_EQ(loaded.book.names.find("Rate", nullptr)->definition, "'Two 2'!$B$4");
  const PrintTitles titles = print_titles(loaded.book, *loaded.book.sheets()[1]);
  EXPECT_EQ(titles.rows, (formula::Interval{0, 1}));
  EXPECT_EQ(titles.columns, (formula::Interval{2, 3}));
  EXPECT_EQ(print_area(loaded.book, *loaded.book.sheets()[1]), (CellRange{0, 9, 0, 4}));
}

TEST(XlsWriting, KeepsValidations) {
  using Type = ValidationType;
  using Comparison = ValidationOperator;
  struct Case {
    Type type;
    Comparison comparison;
    std::array<std::string, 2> formulas;
    const char* first_read = nullptr;  // where that is another one
  };
  const Case kCases[] = {
      {Type::kNone, Comparison::kBetween, {}},
      {Type::kWhole, Comparison::kNotBetween, {"1", "B3*2"}},
      {Type::kDecimal, Comparison::kLess, {"-1.5", ""}},
      {Type::kDate, Comparison::kGreaterOrEqual, {"46082", ""}},
      {Type::kTime, Comparison::kLessOrEqual, {"0.5", ""}},
      {Type::kTextLength, Comparison::kGreater, {"IF(A$1=\"\",3,$A1)", ""}},
      {Type::kTextLength, Comparison::kEqual, {"3", ""}},
      {Type::kTextLength, Comparison::kNotEqual, {"3", ""}},
      {Type::kList,
       Comparison::kBetween,
       {"\"yes, no,\"\"\xE2\x82\xAC\"\"\"", ""},
       "\"yes,no,\"\"\xE2\x82\xAC\"\"\""},
      {Type::kList, Comparison::kBetween, {"$A$1:$A$5", ""}},
      {Type::kList, Comparison::kBetween, {"OFFSET('Two 2'!$A$1,0,0,COUNTA('Two 2'!$A:$A),1)", ""}},
      {Type::kCustom, Comparison::kBetween, {"AND(A1>0,IV65536<>\"a,b\")", ""}},
  };
  NewBook made;
  Validations& rules = made.sheet().validations;
  int row = 3;
  for (const auto& [type, comparison, formulas, first_read] : kCases) {
    Validation rule{type, comparison, ValidationErrorStyle::kWarning};
    rule.formulas = formulas;
    rule.cells = {{row, row, 2, 3}, {row + 40, row + 41, 1, 1}};
    rule.details = 3;
    rules.add(rule);
    ++row;
  }
  Validation texts{.error_style = ValidationErrorStyle::kInformation,
                   .allow_blank = true,
                   .hide_drop_down = true,
                   .show_prompt = true,
                   .show_error = true};
  texts.prompt_title = std::string(32, 't');
  texts.prompt = std::string(255, 'p') + "\xE2\x82\xAC";
  texts.error_title = "\xC3\xA4";
  texts.error = std::string(224, 'e');
  texts.type = ValidationType::kCustom;
  texts.formulas[0] = "A1>A2";
  for (int i = 0; i < 1000; ++i) texts.cells.insert({100 + 2 * i, 100 + 2 * i, 7, 7});
  rules.add(texts);
  LoadedBook loaded(made.file());
  const std::vector<Validation>& read = loaded.sheet().contents().validations.slots();
  ASSERT_EQ(read.size(), std::size(kCases) + 3);
  for (std::size_t i = 0; i < std::size(kCases); ++i) {
    SCOPED_TRACE(i);
    const auto& [type, comparison, formulas, first_read] = kCases[i];
    EXPECT_EQ(read[i].type, type);
    EXPECT_EQ(read[i].comparison, comparison);
    EXPECT_EQ(read[i].error_style, ValidationErrorStyle::kWarning);
    EXPECT_EQ(read[i].formulas[0], first_read ? first_read : formulas[0]);
    EXPECT_EQ(read[i].formulas[1], formulas[1]);
    EXPECT_EQ(read[i].cells, rules.slots()[i].cells);
    EXPECT_EQ(read[i].details, 3U);
    EXPECT_FALSE(read[i].allow_blank || read[i].hide_drop_down || read[i].show_prompt ||
                 read[i].show_error);
  }
  // A record has room for some of the ranges, and the formula is stated for each part.
  const Validation& part = read[std::size(kCases) + 1];
  EXPECT_EQ(part.cells.begin()->row_first, 964);
  EXPECT_EQ(part.formulas[0], "A865>A866");
  EXPECT_EQ(part.prompt_title, texts.prompt_title);
  EXPECT_EQ(part.prompt, texts.prompt);
  EXPECT_EQ(part.error_title, texts.error_title);
  EXPECT_EQ(part.error, texts.error);
  EXPECT_TRUE(part.allow_blank && part.hide_drop_down && part.show_prompt && part.show_error);
}

TEST(XlsWriting, KeepsFiltersAndIgnoredErrors) {
  struct Case {
    const char* what;
    FilterCriterion criterion;
    unsigned record;
  };
  const auto values = [](std::initializer_list<const char*> texts, bool blanks) {
    FilterCriterion made;
    made.kind = FilterKind::kValues;
    for (const char* const text : texts) made.texts.add(text);
    made.blanks = blanks;
    return made;
  };
  const auto conditions = [](std::vector<FilterCondition> all, bool both) {
    FilterCriterion made;
    made.kind = FilterKind::kCustom;
    made.conditions = std::move(all);
    made.both = both;
    return made;
  };
  const auto top = [](double count, bool largest, bool percent) {
    FilterCriterion made;
    made.kind = FilterKind::kTop10;
    made.count = count;
    made.largest = largest;
    made.percent = percent;
    return made;
  };
  FilterCriterion dates = values({"a*", "\xE2\x82\xAC"}, true);
  dates.dates = {{{2026, 3, 0, 0, 0, 0, 0}, DatePart::kMonth},
                 {{2026, 3, 1, 14, 5, 59, 0}, DatePart::kSecond}};
  const Case kCases[] = {
      {"a value", values({"\xE2\x82\xAC 12"}, false), kFilterColumn},
      {"numbers", values({"12", "1.50"}, false), kFilterColumn},
      {"a value or none", values({"a"}, true), kFilterColumn},
      {"values", values({"a", "2", "c"}, false), kFutureFilterColumn},
      {"values and dates", dates, kFutureFilterColumn},
      {"largest", top(500, true, false), kFilterColumn},
      {"smallest percent", top(1, false, true), kFilterColumn},
      {"a condition", conditions({{FilterOperator::kEqual, "p*"}}, false), kFilterColumn},
      {"both",
       conditions({{FilterOperator::kGreater, "-1.5"}, {FilterOperator::kLessOrEqual, "m"}}, true),
       kFilterColumn},
      {"either",
       conditions({{FilterOperator::kLess, "1E3"}, {FilterOperator::kNotEqual, "\xC3\xA4"}}, false),
       kFilterColumn},
      {"empty ones", conditions({{FilterOperator::kEqual, ""}}, false), kFilterColumn},
      {"others",
       conditions({{FilterOperator::kNotEqual, ""}, {FilterOperator::kGreaterOrEqual, "0"}}, true),
       kFilterColumn},
  };
  NewBook made;
  AutoFilter filter;
  filter.range = {2, 40, 3, 20};
  for (const auto& [what, criterion, record] : kCases)
    filter.columns.push_back({4 + static_cast<int>(filter.columns.size()), criterion});
  filter.sort = {{3, 40, 3, 20}, {{{3, 40, 5, 5}, true}, {{3, 40, 3, 3}, false}}};
  Sheet& sheet = *made.book.sheets()[1];
  set_filter_range(made.book, sheet, *filter.range);
  sheet.change().filter = filter;
  sheet.change().filtered = true;
  IgnoredErrors& errors = sheet.change().ignored_errors;
  IgnoredError scattered;
  scattered.kinds = 0xFF;
  for (int i = 0; i < 1500; ++i) scattered.cells.insert({2 * i, 2 * i, 1, 1});
  errors.add(scattered);
  errors.put({0, 9, 4, 5}, kNumberAsTextFault | kFormulaFault);
  const std::string file = made.file();
  LoadedBook loaded(file);
  const SheetContents& read = loaded.sheet(1).contents();
  EXPECT_TRUE(read.filtered);
  EXPECT_EQ(read.filter.range, filter.range);
  ASSERT_EQ(read.filter.columns.size(), std::size(kCases));
  for (std::size_t i = 0; i < std::size(kCases); ++i) {
    SCOPED_TRACE(kCases[i].what);
    EXPECT_EQ(read.filter.columns[i].column, filter.columns[i].column);
    EXPECT_TRUE(read.filter.columns[i].criterion == kCases[i].criterion);
    EXPECT_TRUE(read.filter.columns[i].shows_button);
  }
  ASSERT_TRUE(read.filter.sort);
  EXPECT_EQ(read.filter.sort->range, filter.sort->range);
  ASSERT_EQ(read.filter.sort->keys.size(), 2U);
  EXPECT_EQ(read.filter.sort->keys[0].cells, filter.sort->keys[0].cells);
  EXPECT_TRUE(read.filter.sort->keys[0].descending && !read.filter.sort->keys[1].descending);
  ASSERT_EQ(read.ignored_errors.all().size(), 3U);
  EXPECT_EQ(read.ignored_errors.all()[1].cells.size(), 500U);
  EXPECT_EQ(read.ignored_errors.all()[1].kinds, 0xFF);
  EXPECT_EQ(read.ignored_errors.all()[2], errors.all()[1]);
  std::vector<unsigned> columns;
  for (const auto& [id, data] : records_of(file))
    if (id == kFilterColumn || id == kFutureFilterColumn) columns.push_back(id);
  ASSERT_EQ(columns.size(), std::size(kCases));
  for (std::size_t i = 0; i < columns.size(); ++i) EXPECT_EQ(columns[i], kCases[i].record);
}

}  // namespace
}  // namespace engine::xls
