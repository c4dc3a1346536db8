#include "engine/xls/older_book.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/package/compound_writer.h"
#include "engine/package/file_error.h"
#include "engine/text/fold.h"
#include "engine/text/utf8.h"
#include "engine/workbook/color.h"
#include "engine/xls/book_write.h"
#include "engine/xls/codec.h"
#include "engine/xls/drawing_write.h"
#include "engine/xls/fields.h"
#include "engine/xls/older_links.h"
#include "engine/xls/older_texts.h"
#include "engine/xls/older_tokens.h"
#include "engine/xls/record_merge.h"
#include "engine/xls/record_writer.h"
#include "engine/xls/sheet_write.h"

namespace engine::xls {

namespace {

constexpr std::uint16_t kVersion5 = 0x500;
constexpr std::uint16_t kModuleStream = 0x06;
constexpr std::uint16_t kChartStream = 0x20;
constexpr std::uint16_t kMacroStream = 0x40;
constexpr std::uint32_t kUnicode = 1200;
constexpr std::uint64_t kMaxStream = 0x7FFFFFFF;

// Records that only this version has, or that nobody else here knows.
enum OlderRecord : std::uint16_t {
  kOldestDimensions = 0x00,
  kExternCount = 0x16,
  kPrinter = 0x4D,
  kConsolidation = 0x50,
  kConsolidationSource = 0x51,
  kConsolidationName = 0x52,
  kFormatCount = 0x56,
  kFileSharing = 0x5B,
  kNotCalculated = 0x5E,
  kImage = 0x7F,
  kSortDialog = 0x90,
  kColumnsChanged = 0xAB,
  kScenarios = 0xAE,
  kScenario = 0xAF,
  kToolbarsBegin = 0xBF,
  kToolbarsEnd = 0xC0,
  kMacros = 0xD3,
  kTabsChanged = 0xEA,
  kVersionMark = 0x162,
};

// The colours of a book that lists none, which are not those of today.
constexpr Palette kColors = {
    0x000000, 0xFFFFFF, 0xFF0000, 0x00FF00, 0x0000FF, 0xFFFF00, 0xFF00FF, 0x00FFFF,
    0x800000, 0x008000, 0x000080, 0x808000, 0x800080, 0x008080, 0xC0C0C0, 0x808080,
    0x8080FF, 0x802060, 0xFFFFC0, 0xA0E0E0, 0x600080, 0xFF8080, 0x0080C0, 0xC0C0FF,
    0x000080, 0xFF00FF, 0xFFFF00, 0x00FFFF, 0x800080, 0x800000, 0x008080, 0x0000FF,
    0x00CFFF, 0x69FFFF, 0xE0FFE0, 0xFFFF80, 0xA6CAF0, 0xDD9CB3, 0xB38FEE, 0xE3E3E3,
    0x2A6FF9, 0x3FB8CD, 0x488436, 0x958C41, 0x8E5E42, 0xA0627A, 0x624FAC, 0x969696,
    0x1D2FBE, 0x286676, 0x004500, 0x453E01, 0x6A2813, 0x85396A, 0x4A3285, 0x424242,
};
// A colour has red first, or last where it is one number.
constexpr std::uint32_t turned(std::uint32_t color) {
  return (color >> 16 & 0xFF) | (color & 0xFF00) | (color & 0xFF) << 16;
}

struct OlderSheet {
  std::string name;
  std::uint32_t begin = 0;
  std::uint16_t state_and_kind = 0;
  std::uint64_t limit = 0;          // where another sheet begins; 0 where it shares its place
  std::uint64_t named_at = 0;       // place of the present beginning, in the globals
  std::uint64_t present = 0;        // beginning among the present sheets
  std::optional<CellRange> filter;  // that its name says

  unsigned kind() const { return state_and_kind >> 8; }
};

class OlderBook {
 public:
  explicit OlderBook(const package::CompoundStream& stream) : stream_(stream) {}

  void read() {
    find_sheets();
    links_.emplace(texts_, names_of_sheets());
    tokens_.emplace(texts_, *links_);
    take_globals();
    for (std::size_t i = 0; i < sheets_.size(); ++i) take_sheet(i);
    finish();
  }

  const package::MemoryOutput& globals() const { return globals_; }
  const package::MemoryOutput& sheets() const { return sheets_output_; }

  void lose(std::string_view what) { lost_.emplace(what); }
  const std::set<std::string, std::less<>>& lost() const { return lost_; }

 private:
  enum Where : unsigned { kInGlobals = 1, kInSheets = 2, kAnywhere = 3 };

  struct Rule {
    std::uint16_t id;
    Where where;  // elsewhere it means nothing
    void (OlderBook::*take)(Fields in);
  };
  static const Rule kRules[];

  struct Text {
    std::string text;
    std::string runs;  // as the present version has them

    auto operator<=>(const Text&) const = default;
  };

  // The sheets, the code page and the password come first, as all else needs them.
  void find_sheets() {
    RecordReader reader(stream_, 0);
    if (!reader.next()) reader.fail("ends too early");
    constexpr unsigned kPageOfMost = 1252;
    unsigned page = kPageOfMost;
    while (reader.next() && reader.id() != kEof) {
      Fields in(reader.data());
      if (reader.id() == kFilePass) {
        cipher_ = default_cipher(std::string(2, '\0').append(reader.data()));
        reader.decrypt_with(*cipher_);
      } else if (reader.id() == kCodePage) {
        page = in.take16();
      } else if (reader.id() == kPalette) {
        has_palette_ = true;
        in.skip(2);
        for (std::uint32_t& color : colors_) color = turned(in.take32());
      } else if (reader.id() == kBoundSheet) {
        OlderSheet& sheet = sheets_.emplace_back();
        sheet.begin = in.take32();
        sheet.state_and_kind = in.take16();
        sheet.name = in.take(in.take8());
        if (!in.ok()) reader.fail("ends too early");
      }
    }
    texts_.use_code_page(page);
    for (OlderSheet& sheet : sheets_) sheet.name = texts_.utf8(sheet.name);
    part_sheets();
  }

  // Sheets share no record: of those that a file lets begin at one place the first has it.
  void part_sheets() {
    std::map<std::uint32_t, OlderSheet*> begins;
    for (OlderSheet& sheet : sheets_) begins.try_emplace(sheet.begin, &sheet);
    std::uint64_t limit = stream_.size();
    for (auto sheet = begins.rbegin(); sheet != begins.rend(); ++sheet) {
      sheet->second->limit = limit;
      limit = sheet->first;
    }
  }

  std::vector<std::string> names_of_sheets() const {
    std::vector<std::string> names;
    for (const OlderSheet& sheet : sheets_) names.push_back(sheet.name);
    return names;
  }

  void take_globals() {
    RecordReader reader(stream_, 0, cipher_);
    where_ = kInGlobals;
    reader_ = &reader;
    list_ = &names_list_;
    out_ = &globals_out_;
    write_beginning(*out_, kGlobalsStream);
    reader.next();
    while (true) {
      if (!reader.next()) reader.fail("ends too early");
      if (reader.id() == kEof) break;
      take_record();
    }
  }

  void take_sheet(std::size_t number) {
    OlderSheet& sheet = sheets_[number];
    sheet.present = sheets_out_.position();
    where_ = kInSheets;
    out_ = &sheets_out_;
    constexpr std::uint16_t kStreams[] = {kSheetStream, kMacroStream, kChartStream};
    const bool is_sheet = sheet.kind() == 0;
    write_beginning(*out_,
                    sheet.kind() < std::size(kStreams) ? kStreams[sheet.kind()] : kModuleStream);
    if (!is_sheet) {
      lose(sheet.kind() == 2 ? "charts" : "macros");
      return out_->record(kEof, {});
    }
    OlderList list;
    list.sheet = static_cast<std::int16_t>(std::min<std::size_t>(number, INT16_MAX));
    list.of_all = &names_list_;
    list_ = &list;
    drawn_ = {};
    has_filter_ = false;
    is_behind_cells_ = false;
    RecordReader reader(stream_, sheet.begin, cipher_, sheet.name);
    reader.end_at(sheet.limit);
    reader_ = &reader;
    try {
      if (!reader.next() || reader.id() != kBof) reader.fail("no sheet begins here");
      while (true) {
        if (!reader.next()) reader.fail("ends too early");
        if (reader.id() == kEof) break;
        take_record();
      }
    } catch (const package::FileError&) {
      // It ends here as it does there, and who reads it is told.
      lose("damaged sheets");
      behind_.clear();
      return;
    }
    write_drawing(sheet);
    for (const auto& [id, data] : behind_) out_->copy(id, data);
    behind_.clear();
    out_->record(kEof, {});
  }

  void take_record();

  void put(std::uint16_t id, std::string_view data) {
    // What is drawn stands between the cells and how they are looked at.
    if (is_behind_cells_) {
      behind_.emplace_back(id, data);
    } else {
      out_->begin(id);
      out_->put(data);
      out_->end();
    }
  }
  void keep(Fields in) { put(reader_->id(), in.rest()); }
  void drop(Fields /*in*/) {}
  void need(const Fields& in) {
    if (in.ok()) return;
    // Whoever reads the sheet comes across it.
    if (where_ == kInSheets) put(reader_->id(), {});
    reader_->fail("ends too early");
  }

  // What all sheets share.

  void take_code_page(Fields /*in*/) { out_->record(kCodePage, {kUnicode}); }
  void take_interface(Fields /*in*/) { out_->record(kInterfaceHeader, {kUnicode}); }

  void take_file_sharing(Fields in) {
    std::string data(in.take(4));
    put(kFileSharing, data + texts_.long_text(in.take(in.take8())));
  }

  void take_font(Fields in) {
    std::string data(in.take(14));
    data += texts_.short_text(in.take(in.take8()));
    need(in);
    put(kFont, data);
  }

  void take_number_format(Fields in) {
    std::string data(in.take(2));
    data += texts_.long_text(in.take(in.take8()));
    if (in.ok()) put(kNumberFormat, data);
  }

  // Font, number format and flags are as they were.
  void take_format(Fields in) {
    constexpr unsigned kRotations[] = {0, 255, 90, 180};
    std::string data(in.take(6));
    const unsigned alignment = in.take8();
    const unsigned more = in.take8();
    const std::uint32_t fill = in.take32();
    const std::uint32_t lines = in.take32();
    need(in);
    const std::uint32_t bottom = fill >> 22;
    const auto put8 = [&](unsigned value) { data += static_cast<char>(value); };
    put8(alignment);
    put8(kRotations[more & 3]);
    put8(0);
    put8(more & 0xFC);
    const std::uint32_t left_color = lines >> 16 & 0x7F;
    const std::uint32_t right_color = lines >> 23 & 0x7F;
    package::put32(data, (lines >> 3 & 7) | (lines >> 6 & 7) << 4 | (lines & 7) << 8 |
                             (bottom & 7) << 12 | left_color << 16 | right_color << 23);
    package::put32(data,
                   (lines >> 9 & 0x7F) | (bottom >> 3 & 0x7F) << 7 | (fill >> 16 & 0x3F) << 26);
    package::put16(data, fill & 0x3FFF);
    put(kFormat, data);
  }

  void take_style(Fields in) {
    constexpr unsigned kBuiltIn = 0x80;
    std::string data(in.take(2));
    if (!in.ok()) return;
    if ((static_cast<unsigned char>(data[1]) & kBuiltIn) != 0) data += in.rest();
    else data += texts_.long_text(in.take(in.take8()));
    put(kStyle, data);
  }

  void put_colors() {
    std::string data;
    package::put16(data, std::size(kColors));
    for (const std::uint32_t color : kColors) package::put32(data, turned(color));
    put(kPalette, data);
  }

  void take_bound_sheet(Fields /*in*/) {
    if (listed_ == 0 && !has_palette_) put_colors();
    OlderSheet& sheet = sheets_[listed_++];
    sheet.named_at = out_->position() + 4;
    out_->begin(kBoundSheet);
    out_->put32(0);
    out_->put16(sheet.state_and_kind);
    out_->put_short_text(Characters(sheet.name));
    out_->end();
  }

  void take_extern_sheet(Fields in) {
    if (!links_->take_sheet(in.rest(), *list_)) lose("links to other programs");
  }
  void take_extern_name(Fields in) {
    if (!links_->take_name(in.rest(), *list_)) lose("links to other programs");
  }

  void take_name(Fields in) {
    constexpr unsigned kBuiltIn = 0x20;
    unsigned flags = in.take16();
    const unsigned key = in.take8();
    const std::size_t length = in.take8();
    const std::size_t size = in.take16();
    in.skip(2);
    const unsigned sheet = in.take16();
    in.skip(4);
    std::string_view name = in.take(length);
    const std::string_view expression = in.take(size);
    need(in);
    if (name == "_FilterDatabase" && sheet != 0) {
      name = "\x0D";
      flags |= kBuiltIn;
    }
    take_expression(expression, in.rest());
    const std::string text = texts_.short_text(name);
    std::string data;
    package::put16(data, flags);
    data += static_cast<char>(key);
    data += text[0];
    package::put16(data, tokens_->size());
    package::put16(data, 0);
    package::put16(data, sheet);
    package::put32(data, 0);
    data.append(text, 1);
    data.append(tokens_->expression(), 2);
    const bool is_filter = name == "\x0D" && (flags & kBuiltIn) != 0;
    if (is_filter && sheet != 0 && sheet <= sheets_.size()) sheets_[sheet - 1].filter = area();
    names_.push_back(std::move(data));
  }

  // The expression that was read last as an area; nothing for another one.
  std::optional<CellRange> area() const {
    constexpr std::size_t kSize = 11;
    if (tokens_->size() != kSize) return std::nullopt;
    Fields in(std::string_view(tokens_->expression()).substr(5));
    CellRange range;
    range.row_first = in.take16();
    range.row_last = in.take16();
    range.column_first = in.take16() & 0xFF;
    range.column_last = in.take16() & 0xFF;
    const bool in_order =
        range.row_first <= range.row_last && range.column_first <= range.column_last;
    return in_order ? std::optional(range) : std::nullopt;
  }

  // Sheets.

  void take_dimensions(Fields in) {
    std::string data;
    package::put32(data, in.take16());
    package::put32(data, in.take16());
    data += in.rest().substr(0, 4);
    package::put16(data, 0);
    if (in.ok()) put(kDimensions, data);
  }

  void take_page_text(Fields in) {
    put(reader_->id(), in.at_end() ? std::string() : texts_.long_text(in.take(in.take8())));
  }

  template <unsigned Last>
  void take_breaks(Fields in) {
    std::string data;
    const unsigned count = in.take16();
    package::put16(data, count);
    for (unsigned left = count; left > 0 && !in.at_end(); --left) {
      package::put16(data, in.take16());
      package::put16(data, 0);
      package::put16(data, Last);
    }
    if (in.ok()) put(reader_->id(), data);
  }

  void take_window(Fields in) {
    constexpr unsigned kAutomaticLines = 0x20;
    constexpr int kAutomatic = 64;
    std::string data(in.take(6));
    const std::uint32_t color = in.take32();
    if (!in.ok()) return;
    is_behind_cells_ = true;
    const bool is_automatic = (static_cast<unsigned char>(data[0]) & kAutomaticLines) != 0;
    package::put32(data, static_cast<std::uint32_t>(
                             is_automatic ? kAutomatic : nearest_index(turned(color), colors_)));
    package::put32(data, 0);
    package::put32(data, 0);
    put(kWindow2, data);
  }

  void take_filter_info(Fields in) {
    has_filter_ = true;
    keep(in);
  }

  // Two conditions, then the texts of those that compare with one.
  void take_filter_column(Fields in) {
    constexpr std::size_t kFirst = 4;
    constexpr std::size_t kSize = 10;
    constexpr std::size_t kLength = 6;
    constexpr char kIsText = 6;
    std::string data(in.take(kFirst + 2 * kSize));
    if (!in.ok()) return;
    for (const std::size_t at : {kFirst, kFirst + kSize}) {
      if (data[at] != kIsText) continue;
      const auto length = static_cast<unsigned char>(data[at + kLength]);
      const std::string text = texts_.short_text(in.take(length));
      data[at + kLength] = text[0];
      data.append(text, 1);
    }
    if (in.ok()) put(kFilterColumn, data);
  }

  // A long one goes on in records without a cell.
  void take_note(Fields in) {
    constexpr unsigned kGoesOn = 0xFFFF;
    const int row = in.take16();
    const int column = in.take16();
    in.skip(2);
    if (!in.ok()) return;
    if (row != kGoesOn) noted_ = drawn_.comments.try_emplace({row, column}).first;
    else if (drawn_.comments.empty()) return;
    noted_->second.text += texts_.utf8(in.rest());
  }

  void take_object(Fields in) {
    constexpr unsigned kDropDown = 0x14;
    in.skip(4);
    if (!has_filter_ || in.take16() != kDropDown) lose("drawings");
  }

  void write_drawing(const OlderSheet& sheet) {
    if (has_filter_) drawn_.filter.range = sheet.filter;
    for (auto& [cell, comment] : drawn_.comments) normalize_line_ends(comment.text);
    Sheet scratch(sheet.name);
    scratch.take(std::move(drawn_));
    drawings_.write_sheet(*out_, scratch, {}, [](std::uint64_t, std::uint64_t) {});
  }

  // Cells.

  void take_text(Fields in) {
    std::string data(in.take(6));
    const std::string_view bytes = in.take(in.take16());
    need(in);
    Text made{texts_.utf8(bytes), {}};
    if (reader_->id() == kRichText) {
      for (unsigned left = in.take8(); left > 0 && !in.at_end(); --left) {
        const std::string begin = texts_.utf8(bytes.substr(0, in.take8()));
        package::put16(made.runs, Characters(begin).count());
        package::put16(made.runs, in.take8());
      }
    }
    const auto number = static_cast<std::uint32_t>(listed_texts_.size());
    const auto [known, is_new] = text_numbers_.try_emplace(std::move(made), number);
    if (is_new) listed_texts_.push_back(&known->first);
    ++text_cells_;
    package::put32(data, known->second);
    put(kTextCell, data);
  }

  void take_expression(std::string_view expression, std::string_view behind) {
    if (!tokens_->take(expression, behind, *list_)) lose("formulas");
  }

  // An expression behind so many bytes that are as they were.
  template <std::size_t Head>
  void take_formula(Fields in) {
    std::string data(in.take(Head));
    const std::string_view expression = in.take(in.take16());
    need(in);
    take_expression(expression, in.rest());
    put(reader_->id(), data + tokens_->expression());
  }

  void take_formula_text(Fields in) {
    const std::string_view bytes = in.take(in.take16());
    need(in);
    put(kString, texts_.long_text(bytes));
  }

  void take_drawn_chart(Fields /*in*/) {
    lose("charts");
    pass_substream(*reader_, [] {});
  }

  template <const auto& What>
  void lose_it(Fields /*in*/) {
    lose(What);
  }

  // The end.

  void finish() {
    sheets_out_.flush();
    links_->write(globals_out_);
    for (const std::string& name : names_) {
      globals_out_.begin(kName);
      globals_out_.put(name);
      globals_out_.end();
    }
    if (drawings_.list_differs()) drawings_.write_list(globals_out_);
    write_texts();
    globals_out_.record(kEof, {});
    globals_out_.flush();
    const std::uint64_t size = globals_.position();
    if (size + sheets_output_.position() > kMaxStream) throw package::SizeError(kMaxStream);
    for (const OlderSheet& sheet : sheets_)
      globals_out_.patch32(sheet.named_at, static_cast<std::uint32_t>(size + sheet.present));
  }

  void write_texts() {
    constexpr unsigned kRich = 8;
    RecordWriter& out = globals_out_;
    out.begin(kTexts);
    out.put32(text_cells_);
    out.put32(static_cast<std::uint32_t>(listed_texts_.size()));
    for (const Text* one : listed_texts_) {
      const Characters characters(one->text);
      const auto& [text, runs] = *one;
      const std::size_t size = 5 + characters.bytes().size() + runs.size();
      if (runs.empty() || size > RecordWriter::kMaxData) {
        out.put_long_text(characters);
        continue;
      }
      out.keep_together(size);
      out.put16(static_cast<std::uint32_t>(characters.count()));
      out.put8(kRich | (characters.wide() ? 1U : 0U));
      out.put16(static_cast<std::uint32_t>(runs.size() / 4));
      out.put(characters.bytes());
      out.put(runs);
    }
    out.end();
  }

  const package::CompoundStream& stream_;
  std::optional<Cipher> cipher_;
  OlderTexts texts_;
  std::vector<OlderSheet> sheets_;
  std::size_t listed_ = 0;  // of the sheets
  bool has_palette_ = false;
  Palette colors_ = kColors;
  std::optional<OlderLinks> links_;
  std::optional<OlderTokens> tokens_;
  OlderList names_list_;
  std::vector<std::string> names_;  // data of present records
  std::map<Text, std::uint32_t> text_numbers_;
  std::vector<const Text*> listed_texts_;  // in the order of their numbers
  std::uint32_t text_cells_ = 0;
  std::set<std::string, std::less<>> lost_;

  // What is written.
  package::MemoryOutput globals_{kMaxStream};
  package::MemoryOutput sheets_output_{kMaxStream};
  RecordWriter globals_out_{globals_};
  RecordWriter sheets_out_{sheets_output_};
  const Workbook scratch_{kCodec.limits};
  const DrawingGroup no_group_;
  const LoadedPictures no_pictures_;
  Drawings drawings_{scratch_, no_group_, no_pictures_};

  // Of the substream that is read.
  Where where_ = kInGlobals;
  RecordReader* reader_ = nullptr;
  OlderList* list_ = nullptr;
  RecordWriter* out_ = nullptr;
  bool has_filter_ = false;
  bool is_behind_cells_ = false;
  std::vector<std::pair<std::uint16_t, std::string>> behind_;  // records behind the drawing
  SheetContents drawn_;                                        // what it is made of
  Comments::iterator noted_;                                   // the last one
};

constexpr char kDrawings[] = "drawings";
constexpr char kPivotTables[] = "pivot tables";
constexpr char kMacroCode[] = "macros";
constexpr char kScenarioList[] = "scenarios";
constexpr char kConsolidations[] = "consolidations";
constexpr char kConditionList[] = "conditional formats";
constexpr char kValidationList[] = "validations";
constexpr char kFetchedValues[] = "values of other workbooks";

// Ascending.
constexpr OlderBook::Rule OlderBook::kRules[] = {
    {kOldestDimensions, kInSheets, &OlderBook::take_dimensions},
    {kFormula, kInSheets, &OlderBook::take_formula<20>},
    {kCalculationCount, kInSheets, &OlderBook::keep},
    {kCalculationMode, kInSheets, &OlderBook::keep},
    {kPrecision, kInGlobals, &OlderBook::keep},
    {kReferenceMode, kInSheets, &OlderBook::keep},
    {kDelta, kInSheets, &OlderBook::keep},
    {kIteration, kInSheets, &OlderBook::keep},
    {kProtect, kAnywhere, &OlderBook::keep},
    {kPassword, kAnywhere, &OlderBook::keep},
    {kHeader, kInSheets, &OlderBook::take_page_text},
    {kFooter, kInSheets, &OlderBook::take_page_text},
    {kExternCount, kAnywhere, &OlderBook::drop},
    {kExternSheet, kAnywhere, &OlderBook::take_extern_sheet},
    {kName, kInGlobals, &OlderBook::take_name},
    {kWindowProtect, kInGlobals, &OlderBook::keep},
    {kVerticalBreaks, kInSheets, &OlderBook::take_breaks<65535>},
    {kHorizontalBreaks, kInSheets, &OlderBook::take_breaks<255>},
    {kNote, kInSheets, &OlderBook::take_note},
    {kSelection, kInSheets, &OlderBook::keep},
    {kDateMode, kInGlobals, &OlderBook::keep},
    {kExternName, kAnywhere, &OlderBook::take_extern_name},
    {kLeftMargin, kInSheets, &OlderBook::keep},
    {kRightMargin, kInSheets, &OlderBook::keep},
    {kTopMargin, kInSheets, &OlderBook::keep},
    {kBottomMargin, kInSheets, &OlderBook::keep},
    {kPrintHeadings, kInSheets, &OlderBook::keep},
    {kPrintGridlines, kInSheets, &OlderBook::keep},
    {kFilePass, kInGlobals, &OlderBook::drop},
    {kFont, kInGlobals, &OlderBook::take_font},
    {kContinue, kAnywhere, &OlderBook::drop},
    {kWindow1, kInGlobals, &OlderBook::keep},
    {kBackup, kInGlobals, &OlderBook::keep},
    {kPane, kInSheets, &OlderBook::keep},
    {kCodePage, kInGlobals, &OlderBook::take_code_page},
    {kPrinter, kAnywhere, &OlderBook::drop},
    {kConsolidation, kInSheets, &OlderBook::lose_it<kConsolidations>},
    {kConsolidationSource, kInSheets, &OlderBook::lose_it<kConsolidations>},
    {kConsolidationName, kInSheets, &OlderBook::lose_it<kConsolidations>},
    {kDefaultColumnWidth, kInSheets, &OlderBook::keep},
    {kFormatCount, kAnywhere, &OlderBook::drop},
    {kForeignSheet, kAnywhere, &OlderBook::lose_it<kFetchedValues>},
    {kForeignCells, kAnywhere, &OlderBook::lose_it<kFetchedValues>},
    {kFileSharing, kInGlobals, &OlderBook::take_file_sharing},
    {kUserName, kInGlobals, &OlderBook::drop},
    {kObject, kInSheets, &OlderBook::take_object},
    {kNotCalculated, kInSheets, &OlderBook::keep},
    {kSaveRecalculated, kInSheets, &OlderBook::keep},
    {kTemplate, kInGlobals, &OlderBook::keep},
    {kObjectProtect, kInSheets, &OlderBook::keep},
    {kColumns, kInSheets, &OlderBook::keep},
    {kImage, kAnywhere, &OlderBook::lose_it<kDrawings>},
    {kGuts, kInSheets, &OlderBook::keep},
    {kSheetOptions, kInSheets, &OlderBook::keep},
    {kGridSet, kInSheets, &OlderBook::keep},
    {kCenterAcross, kInSheets, &OlderBook::keep},
    {kCenterDown, kInSheets, &OlderBook::keep},
    {kBoundSheet, kInGlobals, &OlderBook::take_bound_sheet},
    {kWriteProtect, kInGlobals, &OlderBook::keep},
    {kCountry, kInGlobals, &OlderBook::keep},
    {kHideObjects, kInGlobals, &OlderBook::keep},
    {kSortDialog, kInSheets, &OlderBook::drop},
    {kPalette, kInGlobals, &OlderBook::keep},
    {kStandardWidth, kInSheets, &OlderBook::keep},
    {kFiltered, kInSheets, &OlderBook::keep},
    {kFunctionGroups, kInGlobals, &OlderBook::keep},
    {kFilterInfo, kInSheets, &OlderBook::take_filter_info},
    {kFilterColumn, kInSheets, &OlderBook::take_filter_column},
    {kZoom, kInSheets, &OlderBook::keep},
    {kPageSetup, kInSheets, &OlderBook::keep},
    {kColumnsChanged, kInSheets, &OlderBook::drop},
    {kScenarios, kInSheets, &OlderBook::lose_it<kScenarioList>},
    {kScenario, kInSheets, &OlderBook::lose_it<kScenarioList>},
    {kPivotView, kInSheets, &OlderBook::lose_it<kPivotTables>},
    {kMulRk, kInSheets, &OlderBook::keep},
    {kMulBlank, kInSheets, &OlderBook::keep},
    {kToolbarsBegin, kInGlobals, &OlderBook::drop},
    {kToolbarsEnd, kInGlobals, &OlderBook::drop},
    {kMenus, kInGlobals, &OlderBook::keep},
    {kMacros, kInGlobals, &OlderBook::lose_it<kMacroCode>},
    {kRichText, kInSheets, &OlderBook::take_text},
    {kDbCell, kInSheets, &OlderBook::drop},
    {kBookOptions, kInGlobals, &OlderBook::keep},
    {kScenarioProtect, kInSheets, &OlderBook::keep},
    {kFormat, kInGlobals, &OlderBook::take_format},
    {kInterfaceHeader, kInGlobals, &OlderBook::take_interface},
    {kInterfaceEnd, kInGlobals, &OlderBook::keep},
    {kMerges, kInSheets, &OlderBook::keep},
    {kTabsChanged, kInGlobals, &OlderBook::drop},
    {kTabIds, kInGlobals, &OlderBook::drop},
    {kDoubleStream, kInGlobals, &OlderBook::drop},
    {kVersionMark, kInGlobals, &OlderBook::drop},
    {kConditions, kInSheets, &OlderBook::lose_it<kConditionList>},
    {kCondition, kInSheets, &OlderBook::lose_it<kConditionList>},
    {kValidations, kInSheets, &OlderBook::lose_it<kValidationList>},
    {kRefreshAll, kInGlobals, &OlderBook::keep},
    {kValidation, kInSheets, &OlderBook::lose_it<kValidationList>},
    {kDimensions, kInSheets, &OlderBook::take_dimensions},
    {kBlank, kInSheets, &OlderBook::keep},
    {kNumber, kInSheets, &OlderBook::keep},
    {kLabel, kInSheets, &OlderBook::take_text},
    {kBooleanOrError, kInSheets, &OlderBook::keep},
    {kString, kInSheets, &OlderBook::take_formula_text},
    {kRow, kInSheets, &OlderBook::keep},
    {kIndex, kInSheets, &OlderBook::drop},
    {kArray, kInSheets, &OlderBook::take_formula<12>},
    {kDefaultRowHeight, kInSheets, &OlderBook::keep},
    {kDataTable, kInSheets, &OlderBook::keep},
    {kWindow2, kInSheets, &OlderBook::take_window},
    {kRk, kInSheets, &OlderBook::keep},
    {kStyle, kInGlobals, &OlderBook::take_style},
    {kNumberFormat, kInGlobals, &OlderBook::take_number_format},
    {kShared, kInSheets, &OlderBook::take_formula<8>},
    {kBof, kInSheets, &OlderBook::take_drawn_chart},
    {kSheetExtension, kInSheets, &OlderBook::keep},
    {kFeatureHeader, kInSheets, &OlderBook::keep},
};

void OlderBook::take_record() {
  static_assert(std::ranges::is_sorted(kRules, {}, &Rule::id));
  // What programs since have added is about looks that were not known then.
  constexpr std::uint16_t kFirstFuture = 0x850;
  constexpr std::uint16_t kLastFuture = 0x8FF;
  const std::uint16_t id = reader_->id();
  const auto* rule = std::ranges::lower_bound(kRules, id, {}, &Rule::id);
  if (rule != std::end(kRules) && rule->id == id) {
    if ((rule->where & where_) != 0) (this->*rule->take)(Fields(reader_->whole_data()));
  } else if (id < kFirstFuture || id > kLastFuture) {
    lose("records of number " + std::to_string(id));
  }
}

// A folder of the file that does not come along holds what the book has of other programs.
std::string_view content_of(const package::CompoundEntry& folder) {
  const std::string name = upper_case(folder.item.name);
  if (name.starts_with("_VBA_PROJECT")) return kMacroCode;
  return name.starts_with("_SX_DB") ? kPivotTables : "embedded objects";
}

void write(package::CompoundWriter& to, std::string_view bytes) {
  to.write({bytes.data(), bytes.size()});
}

std::string joined(const std::set<std::string, std::less<>>& words) {
  std::string text;
  for (const std::string& word : words) text.append(text.empty() ? "" : ", ").append(word);
  return text;
}

}  // namespace

bool is_older(const package::CompoundStream& stream) {
  RecordReader reader(stream, 0);
  if (!reader.next()) return false;
  const char* name = nullptr;
  switch (reader.id()) {
    case 0x009:
      name = "2";
      break;
    case 0x209:
      name = "3.0";
      break;
    case 0x409:
      name = "4.0";
      break;
    default:
      return reader.id() == kBof && Fields(reader.data()).take16() == kVersion5;
  }
  throw package::FileError(std::string("is an Excel ").append(name).append(" workbook"));
}

PresentBook present_book(const package::CompoundFile& file, const package::CompoundEntry& entry) {
  const package::CompoundStream stream = file.open(entry);
  OlderBook book(stream);
  book.read();
  package::MemoryOutput output;
  package::CompoundItem root = file.entries().front().item;
  root.class_id = kWorkbookClass;
  package::CompoundWriter writer(output, root);
  writer.begin_stream(0, {.name = "Workbook"});
  write(writer, book.globals().view());
  write(writer, book.sheets().view());
  // What an older program said of the file as such holds no longer.
  std::set<std::string> names{"WORKBOOK", "BOOK", "\1COMPOBJ"};
  for (std::size_t i = 1; i < file.entries().size(); ++i) {
    const package::CompoundEntry& other = file.entries()[i];
    if (other.folder != 0 || !names.insert(upper_case(other.item.name)).second) continue;
    if (!other.is_stream) {
      book.lose(content_of(other));
      continue;
    }
    const package::CompoundStream bytes = file.open(other);
    std::vector<char> copy(static_cast<std::size_t>(bytes.size()));
    bytes.read(0, copy);
    writer.begin_stream(0, other.item);
    writer.write(copy);
  }
  writer.finish();
  const std::string_view made = output.view();
  return {package::Source::from_bytes({made.begin(), made.end()}), joined(book.lost())};
}

}  // namespace engine::xls
