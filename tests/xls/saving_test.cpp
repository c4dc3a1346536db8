// A loaded book is saved with what was changed in it, and with everything else as its file has it.
#include <gmock/gmock.h>

#include <functional>

#include "engine/workbook/move_cells.h"
#include "engine/workbook/sheet_operations.h"
#include "engine/xls/fields.h"
#include "tests/xls/streams.h"

namespace engine::xls {
namespace {

using namespace testing;  // NOLINT(google-build-using-namespace): files are made of its pieces
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

std::string number(int row, int column, double value) {
  return cell(0x203, row, column, 15, f64(value));
}
std::string font(std::string_view name, unsigned family) {
  return record(0x31, u16(200) + u16(0) + u16(0x7FFF) + u16(400) + u16(0) + u8(0) + u8(family) +
                          u8(0) + u8(0) + narrow8(name));
}
std::string format(unsigned its_font, unsigned flags) {
  return record(0xE0, u16(its_font) + u16(0) + u16(flags) + std::string(14, '\x11'));
}
std::string styles() {
  std::string all = font("Arial", 2) + font("Arial", 2) + font("Other", 7);
  for (int i = 0; i < 15; ++i) all += format(0, 0xFFF5);
  return all + format(0, 1) + format(2, 1);
}

// A record that nobody knows.
std::string unknown(std::string_view data) { return record(0xFEE, data); }

// Of a sheet in a stream: its records, each as its number and its data.
using Records = std::vector<std::pair<unsigned, std::string>>;
Records sheet_of(const std::string& file, std::size_t number) {
  Records sheet;
  std::size_t depth = 0;
  std::size_t begun = 0;
  for (auto& [id, data] : records_of(file)) {
    if (id == kBof && depth++ == 0) ++begun;
    if (begun == number + 2) sheet.emplace_back(id, data);
    if (id == kEof) --depth;
  }
  return sheet;
}
std::vector<unsigned> ids_of(const Records& records) {
  std::vector<unsigned> ids;
  for (const auto& [id, data] : records) ids.push_back(id);
  return ids;
}
std::string data_of(const Records& records, unsigned id) {
  for (const auto& [its, data] : records)
    if (its == id) return data;
  return "none";
}

TEST(XlsSaving, LeavesRecordsInTheirPlaces) {
  const std::string chart = bof(0x20) + record(0x1001, "c") + record(0x14, "") + eof();
  const std::string view = record(0x1AA, "v") + record(0x14, "mine") + record(0x1AB, "");
  const std::string first = unknown("a") + record(0x81, u16(0x04C1)) + unknown("b") +
                            record(0x200, std::string(14, '\0')) + number(0, 0, 1.5) +
                            unknown("c") + record(0xEC, "d") + record(0x3C, "d2") + chart +
                            record(0x23E, u16(0x6B6) + std::string(16, '\0')) + unknown("e") +
                            view + record(0x862, std::string(20, '\0'));
  const std::string second = record(0x20B, std::string(12, '\0') + u32(0)) + number(0, 0, 2);
  const std::string globals = styles() + unknown("g") + record(0x18, std::string(14, '\0')) +
                              record(0x894, "of the name") + record(0x1C1, "calculated") +
                              unknown("h");
  const std::string file = file_of(stream_of({{"One", first}, {"Two", second}}, globals));
  struct Case {
    const char* what;
    std::function<void(SheetContents&)> change;
    std::vector<unsigned> ids;
  };
  // Around cells stand their rows and blocks.
  const std::vector<unsigned> kSame = {0x809, 0xFEE, 0x81, 0xFEE, 0x200,  0x208, 0x27E, 0xD7,
                                       0xFEE, 0xEC,  0x3C, 0x809, 0x1001, 0x14,  0x0A,  0x23E,
                                       0xFEE, 0x1AA, 0x14, 0x1AB, 0x862,  0x0A};
  auto header = kSame;
  header.insert(header.begin() + 4, 0x14);
  auto merges = kSame;
  merges.insert(merges.begin() + 20, 0xE5);
  const Case kCases[] = {
      {"nothing is left out", [](SheetContents&) {}, kSame},
      {"a record in front of the next that comes later",
       [](SheetContents& its) { its.page.header = "h"; }, header},
      {"one behind the view",
       [](SheetContents& its) {
         its.merges.add({0, 1, 0, 1});
       },
       merges},
  };
  const Records before = sheet_of(file, 1);
  for (const auto& [what, change, ids] : kCases) {
    SCOPED_TRACE(what);
    LoadedBook book(file);
    change(book.sheet().change());
    const std::string saved = book.file();
    EXPECT_EQ(book.file(), saved);
    const Records after = sheet_of(saved, 0);
    EXPECT_EQ(ids_of(after), ids);
    EXPECT_EQ(data_of(after, 0x81), u16(0x04C1));
    EXPECT_EQ(sheet_of(saved, 1), before);
  }
  // What is said of a name stays behind it.
  LoadedBook book(file);
  DefinedName added;
  added.name = "Added";
  added.definition = "1";
  book.book.names.add(added);
  auto ids = ids_of(records_of(book.file()));
  std::erase_if(ids, [](unsigned id) { return id != 0x18 && id != 0x894; });
  EXPECT_THAT(ids, ElementsAre(0x18, 0x894, 0x18));
  // Programs calculate what may be old.
  SaveOptions options;
  EXPECT_NE(data_of(records_of(book.file(options)), 0x1C1), "none");
  options.calculate = true;
  EXPECT_EQ(data_of(records_of(book.file(options)), 0x1C1), "none");
}

// Tokens of references to $A$1:$B$2 and A1 of the entry of that number.
std::string area_of(unsigned entry) {
  return "\x3B" + u16(entry) + u16(0) + u16(1) + u16(0) + u16(1);
}

TEST(XlsSaving, MovesWhatIsCarriedWithItsCells) {
  // The condition of B3:C5 is A3 > 1, told from B3.
  const std::string rule = u8(2) + u8(0) + u16(9) + u16(0) + std::string(6, '\0') + "\x4C" +
                           u16(0) + u16(0xC0FF) + "\x1E" + u16(1) + "\x0D";
  const std::string range = u16(2) + u16(4) + u16(1) + u16(2);
  // One of the later kind is about B6, and has icons from 5 and from B8 on.
  const auto head = [](unsigned id, const std::string& cells) { return u16(id) + u16(1) + cells; };
  const std::string icons = head(0x87A, range) + u8(6) + u8(0) + u16(0) + u16(0) + u32(4) + "look" +
                            expression("\x4C" + u16(3) + u16(0xC000)) + u8(0) + u16(1) + u16(0) +
                            u8(2) + "xx" + std::string(3, '\0') + u8(2) + u8(0) + u8(0) + u8(1) +
                            u16(0) + f64(5) + std::string(5, '\0') + u8(7) +
                            expression("\x44" + u16(7) + u16(1)) + std::string(5, '\0');
  const std::string own =
      record(0x1B0, u16(1) + u16(6) + range + u16(1) + range) + record(0x1B1, rule) +
      record(0x879, head(0x879, range) + u16(1) + u16(8) + range + u16(1) + range) +
      record(0x87A, icons) + record(0x87B, head(0x87B, range) + u32(1) + u16(3)) +
      record(0x87A, icons) +
      record(0x1D, u8(3) + u16(3) + u16(1) + u16(0) + u16(1) + u16(3) + u16(3) + u8(1) + u8(1));
  // A table of D12:D13 that puts its values into B4 and B8.
  const std::string table =
      formula(11, 3, u8(2) + u16(11) + u16(3)) +
      record(0x236, u16(11) + u16(12) + u8(3) + u8(3) + u16(8) + u16(3) + u16(1) + u16(7) + u16(1));
  // A pivot table's data: B4:C8.
  const std::string source =
      record(0x51, u16(3) + u16(7) + u8(1) + u8(2) + narrow16("\x02One") + u16(0));
  const std::string chart =
      record(0x1051, u8(1) + u8(2) + u16(0) + u16(0) + u16(11) + std::string("\x3B", 1) + u16(0) +
                         u16(2) + u16(4) + u16(1) + u16(1));
  const std::string links =
      record(0x1AE, u16(2) + u16(0x401)) + record(0x17, u16(1) + u16(0) + u16(0) + u16(0));
  const std::string file = file_of(
      stream_of({{"One", number(9, 0, 1) + table + own}, {"Chart", chart, 2}}, links + source));
  struct Case {
    const char* what;
    formula::Move move;
    std::string conditions;  // rows of their range; empty when they are gone
    unsigned offset;         // of the row that the condition is about
    std::string later;       // the same of the later one, and the row that icons begin at
    std::string selected;    // rows
    std::string charted;
    std::string inputs;   // flags of the table, then its cells
    std::string sources;  // rows
  };
  using formula::Axis;
  const auto insert = [](int at, int count) {
    return formula::Move{Axis::kRows, formula::Move::Kind::kInsert, at, count};
  };
  const auto remove = [](int at, int count) {
    return formula::Move{Axis::kRows, formula::Move::Kind::kRemove, at, count};
  };
  const Case kCases[] = {
      {"in front", insert(0, 2), u16(4) + u16(6), 0, u16(3) + u16(9), u16(5) + u16(5),
       u16(4) + u16(6), u16(8) + u16(5) + u16(1) + u16(9) + u16(1), u16(5) + u16(9)},
      {"inside", insert(4, 1), u16(2) + u16(5), 0, u16(4) + u16(8), u16(3) + u16(3),
       u16(2) + u16(5), u16(8) + u16(3) + u16(1) + u16(8) + u16(1), u16(3) + u16(8)},
      {"the first row goes", remove(2, 1), u16(2) + u16(3), 0, u16(3) + u16(6), u16(2) + u16(2),
       u16(2) + u16(3), u16(8) + u16(2) + u16(1) + u16(6) + u16(1), u16(2) + u16(6)},
      {"all goes", remove(1, 5), "", 0, "", u16(1) + u16(1), "lost",
       u16(0x18) + u32(0xFFFFFFFF) + u16(2) + u16(1), u16(1) + u16(2)},
  };
  for (const auto& [what, move, conditions, offset, later, selected, charted, inputs, sources] :
       kCases) {
    SCOPED_TRACE(what);
    LoadedBook book(file);
    ASSERT_FALSE(move_cells(book.book, *book.document, book.sheet(), {move, true}));
    const std::string saved = book.file();
    const Records sheet = sheet_of(saved, 0);
    const std::string condition = data_of(sheet, 0x1B0);
    if (conditions.empty()) {
      EXPECT_EQ(condition, "none");
      for (const unsigned id : {0x1B1U, 0x879U, 0x87AU, 0x87BU})
        EXPECT_EQ(data_of(sheet, id), "none");
    } else {
      EXPECT_EQ(condition.substr(4, 4), conditions);
      EXPECT_EQ(condition.substr(14, 4), conditions);
      EXPECT_EQ(data_of(sheet, 0x1B1).substr(13, 2), u16(offset));
      for (const unsigned id : {0x879U, 0x87BU})
        EXPECT_EQ(data_of(sheet, id).substr(4, 4), conditions);
      for (const auto& [id, data] : sheet) {
        if (id == 0x87A) {
          EXPECT_EQ(data.substr(29, 2) + data.substr(67, 2), later);
        }
      }
    }
    EXPECT_EQ(data_of(sheet, 0x236).substr(6), inputs);
    EXPECT_EQ(data_of(records_of(saved), 0x51).substr(0, 4), sources);
    EXPECT_EQ(data_of(sheet, 0x1D).substr(9, 4), selected);
    const std::string link = data_of(sheet_of(saved, 1), 0x1051);
    EXPECT_EQ(link[8] == '\x3D' ? "lost" : link.substr(11, 4), charted);
  }
  LoadedBook book(file);
  rename_sheet(book.book, *book.document, book.sheet(), "A b");
  EXPECT_EQ(data_of(records_of(book.file()), 0x51), u16(3) + u16(7) + u8(1) + u8(2) +
                                                        narrow16("\x02"
                                                                 "A b") +
                                                        u16(0));
}

// A book that is shown in several windows: the first one is that of the model, and as many as the
// book says stay in each sheet.
TEST(XlsSaving, KeepsFurtherWindows) {
  const auto window = [](unsigned active) {
    return record(0x3D, std::string(10, '\0') + u16(active) + u16(0) + u16(1) + u16(600));
  };
  const auto view = [](unsigned flags, unsigned row, unsigned zoom) {
    return record(0x23E, u16(flags) + u16(row) + std::string(14, '\0')) +
           record(0xA0, u16(zoom) + u16(100)) + record(0x1D, std::string(15, '\0'));
  };
  const std::string of_second = view(0x600, 7, 50);
  const std::string file =
      file_of(stream_of({{"One", number(0, 0, 1) + view(0x600, 3, 90) + view(0, 5, 60)},
                         {"Two", number(0, 0, 1) + view(0, 4, 80) + of_second},
                         {"Chart", view(0, 0, 70) + of_second, 2}},
                        window(0) + window(1)));
  const auto windows_of = [](const Records& records) {
    std::string all;
    for (const auto& [id, data] : records)
      if (id == 0x3D || id == 0x23E || id == 0xA0 || id == 0x1D)
        all += record(static_cast<std::uint16_t>(id), data);
    return all;
  };
  for (const bool changes : {false, true}) {
    SCOPED_TRACE(changes);
    LoadedBook book(file);
    EXPECT_EQ(book.book.active_sheet, 0U);
    for (std::size_t i = 0; i < 2; ++i) {
      Sheet& sheet = book.sheet(i);
      EXPECT_EQ(sheet.contents().view.top_left.row, 3 + static_cast<int>(i));
      EXPECT_EQ(sheet.contents().view.zoom, 90 - 10 * static_cast<int>(i));
      if (changes) sheet.change().view.zoom = 200;
    }
    const std::string saved = book.file();
    const Records records = records_of(saved);
    EXPECT_TRUE(windows_of(records).starts_with(window(0) + window(1)));
    for (unsigned i = 0; i < 3; ++i) {
      const std::string first =
          view(i == 0 ? 0x600 : 0, i == 2 ? 0 : 3 + i, changes && i != 2 ? 200 : 90 - 10 * i);
      EXPECT_EQ(windows_of(sheet_of(saved, i)), first + (i == 0 ? view(0, 5, 60) : of_second));
    }
  }
  // A copy is selected in none.
  LoadedBook book(file);
  NewSheet copy = make_copy(book.book, *book.document, book.sheet(1), "Copy");
  make_room(book.book, copy);
  place_sheet(book.book, *book.document, 3, std::move(copy));
  EXPECT_EQ(windows_of(sheet_of(book.file(), 3)), view(0, 4, 80) + view(0, 7, 50));
}

TEST(XlsSaving, LeadsFormulasOfUnreadSheetsToTheSheetsTheyMean) {
  // Of the third sheet: Two!$A$1:$B$2, the name that Two has, and One:Two!$A$1:$B$2.
  const std::string formulas =
      formula(0, 0, "\x25" + area_of(1).substr(3)) + formula(1, 0, area_of(0)) +
      formula(2, 0, "\x39" + u16(0) + u16(1) + u16(0)) + formula(3, 0, area_of(1));
  const std::string links =
      record(0x1AE, u16(3) + u16(0x401)) +
      record(0x17, u16(2) + u16(0) + u16(1) + u16(1) + u16(0) + u16(0) + u16(1)) +
      record(0x18, u16(0) + u8(0) + u8(4) + u16(3) + u16(0) + u16(2) + u32(0) + u8(0) + "mine" +
                       "\x1E" + u16(7)) +
      record(0x13D, u16(1) + u16(2) + u16(3));
  const std::string file = file_of(
      stream_of({{"One", number(0, 0, 1)}, {"Two", number(0, 0, 2)}, {"Three", formulas}}, links));
  struct Case {
    const char* what;
    std::function<void(LoadedBook&)> change;
    std::size_t at;  // where the third sheet is then
    std::vector<std::string> shown;
    std::string tabs;
  };
  const Case kCases[] = {
      {"as it is",
       [](LoadedBook&) {},
       2,
       {"=$A$1:$B$2", "=Two!$A$1:$B$2", "=Two!mine", "=One:Two!$A$1:$B$2"},
       u16(1) + u16(2) + u16(3)},
      {"moved",
       [](LoadedBook& book) { move_sheet(book.book, 2, 0); },
       0,
       {"=$A$1:$B$2", "=Two!$A$1:$B$2", "=Two!mine", "=One:Two!$A$1:$B$2"},
       u16(3) + u16(1) + u16(2)},
      {"renamed",
       [](LoadedBook& book) { rename_sheet(book.book, *book.document, book.sheet(1), "A b"); },
       2,
       {"=$A$1:$B$2", "='A b'!$A$1:$B$2", "='A b'!mine", "='One:A b'!$A$1:$B$2"},
       u16(1) + u16(2) + u16(3)},
      {"another deleted",
       [](LoadedBook& book) { delete_sheet(book.book, *book.document, 0); },
       1,
       {"=$A$1:$B$2", "=Two!$A$1:$B$2", "=Two!mine", "=Two!$A$1:$B$2"},
       u16(2) + u16(3)},
      {"deleted",
       [](LoadedBook& book) { delete_sheet(book.book, *book.document, 1); },
       1,
       {"=$A$1:$B$2", "=#REF!$A$1:$B$2", "=#REF!", "=One!$A$1:$B$2"},
       u16(1) + u16(3)},
      {"one in front",
       [](LoadedBook& book) {
         NewSheet made = make_sheet(book.book, *book.document, "New");
         make_room(book.book, made);
         place_sheet(book.book, *book.document, 0, std::move(made));
       },
       3,
       {"=$A$1:$B$2", "=Two!$A$1:$B$2", "=Two!mine", "=One:Two!$A$1:$B$2"},
       u16(4) + u16(1) + u16(2) + u16(3)},
  };
  for (const auto& [what, change, at, texts, tabs] : kCases) {
    SCOPED_TRACE(what);
    LoadedBook book(file);
    change(book);
    const std::string saved = book.file();
    EXPECT_EQ(data_of(records_of(saved), 0x13D), tabs);
    LoadedBook again(saved);
    std::vector<std::string> formulas_shown;
    for (int row = 0; row < 4; ++row) {
      const std::string text = shown(again, row, 0, at);
      formulas_shown.push_back(text.substr(text.find('=')));
    }
    EXPECT_THAT(formulas_shown, ElementsAreArray(texts));
  }
}

TEST(XlsSaving, AppendsToStylesAndTexts) {
  const std::string rich = u16(3) + u8(8) + u16(1) + "abc" + u16(1) + u16(0);
  const std::string texts = record(0xFC, u32(2) + u32(2) + rich + narrow16("two"));
  const std::string index = record(0xFF, u16(8) + u32(0) + u16(12) + u16(0));
  const std::string file = file_of(
      stream_of({{"One", cell(0xFD, 0, 0, 15, u32(0))}, {"Two", cell(0xFD, 0, 0, 16, u32(1))}},
                styles() + texts + index));
  LoadedBook book(file);
  Styles& its = book.book.styles;
  its.change_font(1, kFontBold).bold = true;
  its.change_format(1, kFormatAlignment).alignment.wrap = true;
  const std::uint32_t added = *its.add_format(1);
  its.add_format(1);  // the same once more
  for (int row = 1; row < 20; ++row)
    book.sheet().change().put_value(
        row, 0, Value::of_text(book.book.strings.add("text " + std::to_string(row))), added);
  const std::string saved = book.file();
  std::vector<std::string> fonts;
  std::vector<std::string> formats;
  for (const auto& [id, data] : records_of(saved)) {
    if (id == 0x31) fonts.push_back(data);
    if (id == 0xE0) formats.push_back(data);
  }
  ASSERT_EQ(fonts.size(), 3U);
  EXPECT_EQ(fonts[2].substr(6, 2) + fonts[2][11], u16(700) + "\x07");
  ASSERT_EQ(formats.size(), 18U);
  EXPECT_EQ(formats[16][6], '\x19');
  EXPECT_EQ(formats[17], formats[16]);
  const Records globals = records_of(saved);
  EXPECT_EQ(data_of(globals, 0xFC).substr(8, rich.size()), rich);
  EXPECT_EQ(package::get32(data_of(globals, 0xFC), 4), 21U);
  const std::string places = data_of(globals, 0xFF);
  ASSERT_EQ(places.size(), 2U + 8 * 3);
  std::size_t begin = 0;
  std::string stream;
  for (const auto& [id, data] : globals) {
    if (id == 0xFC) begin = stream.size();
    stream += record(static_cast<std::uint16_t>(id), data);
  }
  EXPECT_EQ(package::get32(places, 2 + 16), begin + package::get16(places, 2 + 20));
  EXPECT_EQ(stream.substr(package::get32(places, 2 + 16), 10), narrow16("text 15"));
  LoadedBook again(saved);
  EXPECT_EQ(shown(again, 0, 0), "\"abc\"");
  EXPECT_EQ(shown(again, 19, 0), "\"text 19\"");
  EXPECT_EQ(shown(again, 0, 0, 1), "\"two\"");
  EXPECT_TRUE(again.book.styles.font(again.book.styles.font_of(2)).bold);
}

}  // namespace
}  // namespace engine::xls
