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

#include "engine/package/compound_copy.h"
#include "engine/package/compound_writer.h"
#include "engine/package/file_error.h"
#include "engine/text/fold.h"
#include "engine/text/utf8.h"
#include "engine/workbook/color.h"
#include "engine/xls/book_stream.h"
#include "engine/xls/book_write.h"
#include "engine/xls/codec.h"
#include "engine/xls/drawing_write.h"
#include "engine/xls/fields.h"
#include "engine/xls/older_links.h"
#include "engine/xls/older_records.h"
#include "engine/xls/older_texts.h"
#include "engine/xls/older_tokens.h"
#include "engine/xls/record_merge.h"
#include "engine/xls/record_writer.h"
#include "engine/xls/sheet_part.h"
#include "engine/xls/sheet_write.h"

namespace engine::xls {

namespace {

constexpr std::uint16_t kVersion5 = 0x500;
constexpr std::uint16_t kModuleStream = 0x06;
constexpr std::uint16_t kChartStream = 0x20;
constexpr std::uint16_t kMacroStream = 0x40;

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
  std::uint64_t limit = 0;          // where another sheet begins
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

  const BookStream& present() const { return present_; }

  void lose(std::string_view what) { lost_.emplace(what); }
  const std::set<std::string, std::less<>>& lost() const { return lost_; }

 private:
  // A text and its runs, as the present version has them.
  using Text = std::pair<std::string, std::string>;

  // The sheets, the code page and the password come first, as all else needs them.
  void find_sheets() {
    RecordReader reader(stream_, 0);
    reader.next();
    Fields beginning(reader.data());
    beginning.skip(2);
    if (beginning.take16() != kGlobalsStream)
      package::throw_damaged("Book", "the stream does not begin with a workbook");
    constexpr unsigned kPageOfMost = 1252;
    unsigned page = kPageOfMost;
    while (reader.next() && reader.id() != kEof) {
      Fields in(reader.data());
      if (reader.id() == kBof) {
        pass_substream(reader, [] {});
      } else if (reader.id() == kFilePass) {
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
    std::vector<std::uint32_t> begins;
    for (const OlderSheet& sheet : sheets_) begins.push_back(sheet.begin);
    const std::vector<std::uint64_t> limits = limits_of(begins, stream_.size());
    for (std::size_t i = 0; i < sheets_.size(); ++i) sheets_[i].limit = limits[i];
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

  void take_record() {
    using Fate = OlderRecord::Fate;
    const std::uint16_t id = reader_->id();
    if (id == kBof) return take_inner();
    const OlderRecord* record = find_older_record(id);
    if (!record) return lose("records of number " + std::to_string(id));
    if ((record->where & where_) == 0) return;
    const Fields in(reader_->whole_data());
    switch (record->fate) {
      case Fate::kKept:
        return put(id, in.rest());
      case Fate::kDropped:
        return;
      case Fate::kChanged:
        if (const auto data = record->change(in, texts_))
          put(id == 0 ? std::uint16_t{kDimensions} : id, *data);
        else if (where_ == kInGlobals) reader_->fail("ends too early");
        return;
      case Fate::kOwn:
        return take_own(in);
      case Fate::kLost:
        return lose(record->what);
    }
  }

  void take_own(Fields in) {
    switch (reader_->id()) {
      case kFormula:
      case kFormulaOf3:
      case kFormulaOf4:
        return take_formula(in, 20);
      case kArray:
        return take_formula(in, 12);
      case kShared:
        return take_formula(in, 8);
      case kString:
        return take_formula_text(in);
      case kLabel:
      case kRichText:
        return take_text(in);
      case kExternSheet:
        return take_extern_sheet(in);
      case kExternName:
        return take_extern_name(in);
      case kName:
        return take_name(in);
      case kBoundSheet:
        return take_bound_sheet();
      case kWindow2:
        return take_window(in);
      case kFilterInfo:
        has_filter_ = true;
        return put(kFilterInfo, in.rest());
      case kNote:
        return take_note(in);
      case kObject:
        return take_object(in);
      default:
        break;
    }
  }

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
  void need(const Fields& in) {
    if (in.ok()) return;
    // Whoever reads the sheet comes across it.
    if (where_ == kInSheets) put(reader_->id(), {});
    reader_->fail("ends too early");
  }

  // What all sheets share.

  void put_colors() {
    std::string data;
    package::put16(data, std::size(kColors));
    for (const std::uint32_t color : kColors) package::put32(data, turned(color));
    put(kPalette, data);
  }

  void take_bound_sheet() {
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

  void take_window(Fields in) {
    constexpr unsigned kAutomaticLines = 0x20;
    constexpr int kAutomatic = 64;
    std::string data(in.take(6));
    if (!in.ok()) return;
    is_behind_cells_ = true;
    const bool is_automatic = (static_cast<unsigned char>(data[0]) & kAutomaticLines) != 0;
    const int color = is_automatic ? kAutomatic : nearest_index(turned(in.take32()), colors_);
    package::put32(data, static_cast<std::uint32_t>(color));
    package::put32(data, 0);
    package::put32(data, 0);
    put(kWindow2, data);
  }

  // A long one goes on in records without a cell, if need be within a character.
  void take_note(Fields in) {
    constexpr unsigned kGoesOn = 0xFFFF;
    const int row = in.take16();
    const int column = in.take16();
    in.skip(2);
    if (!in.ok()) return;
    if (row != kGoesOn) noted_ = drawn_.comments.try_emplace({row, column}).first;
    else if (drawn_.comments.empty()) return;
    noted_->second.text += in.rest();
  }

  void take_object(Fields in) {
    constexpr unsigned kDropDown = 0x14;
    in.skip(4);
    if (!has_filter_ || in.take16() != kDropDown) lose("drawings");
  }

  void write_drawing(const OlderSheet& sheet) {
    if (has_filter_) drawn_.filter.range = sheet.filter;
    for (auto& [cell, comment] : drawn_.comments) {
      comment.text = texts_.utf8(comment.text);
      normalize_line_ends(comment.text);
    }
    Sheet scratch(sheet.name);
    scratch.take(std::move(drawn_));
    drawings_.write_sheet(*out_, scratch, {}, [](std::uint64_t, std::uint64_t) {});
  }

  // Cells.

  void take_text(Fields in) {
    constexpr std::size_t kMostRich = 2048;  // so that it stays in one record with its runs
    std::string data(in.take(6));
    const std::string_view bytes = in.take(in.take16());
    need(in);
    std::string runs;
    if (reader_->id() == kRichText) {
      for (unsigned left = in.take8(); left > 0 && !in.at_end(); --left) {
        const std::string begin = texts_.utf8(bytes.substr(0, in.take8()));
        package::put16(runs, Characters(begin).count());
        package::put16(runs, in.take8());
      }
    }
    std::string text = texts_.utf8(bytes);
    if (!runs.empty() && text.size() > kMostRich) {
      runs.clear();
      lose("looks within long texts");
    }
    const auto number = static_cast<std::uint32_t>(listed_texts_.size());
    const auto [known, is_new] =
        text_numbers_.try_emplace({std::move(text), std::move(runs)}, number);
    if (is_new) listed_texts_.push_back(&known->first);
    ++text_cells_;
    package::put32(data, known->second);
    put(kTextCell, data);
  }

  void take_expression(std::string_view expression, std::string_view behind) {
    if (!tokens_->take(expression, behind, *list_)) lose("formulas");
  }

  // An expression behind so many bytes that are as they were.
  void take_formula(Fields in, std::size_t head) {
    std::string data(in.take(head));
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

  // What begins inside a sheet is a chart that is drawn on it.
  void take_inner() {
    lose(where_ == kInSheets ? "charts" : "embedded objects");
    pass_substream(*reader_, [] {});
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
    for (const OlderSheet& sheet : sheets_)
      globals_out_.patch32(sheet.named_at, present_.place_of(sheet.present));
  }

  void write_texts() {
    constexpr unsigned kRich = 8;
    RecordWriter& out = globals_out_;
    out.begin(kTexts);
    out.put32(text_cells_);
    out.put32(static_cast<std::uint32_t>(listed_texts_.size()));
    for (const Text* one : listed_texts_) {
      const auto& [text, runs] = *one;
      const Characters characters(text);
      if (runs.empty()) {
        out.put_long_text(characters);
        continue;
      }
      out.keep_together(5 + characters.bytes().size() + runs.size());
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
  BookStream present_;
  RecordWriter globals_out_{present_.globals};
  RecordWriter sheets_out_{present_.sheets};
  const Workbook scratch_{kCodec.limits};
  const DrawingGroup no_group_;
  const LoadedPictures no_pictures_;
  Drawings drawings_{scratch_, no_group_, no_pictures_};

  // Of the substream that is read.
  OlderPlace where_ = kInGlobals;
  RecordReader* reader_ = nullptr;
  OlderList* list_ = nullptr;
  RecordWriter* out_ = nullptr;
  bool has_filter_ = false;
  bool is_behind_cells_ = false;
  std::vector<std::pair<std::uint16_t, std::string>> behind_;  // records behind the drawing
  SheetContents drawn_;                                        // what it is made of
  Comments::iterator noted_;                                   // the last one
};

// A folder of the file that does not come along holds what the book has of other programs.
std::string_view content_of(const package::CompoundEntry& folder) {
  const std::string name = upper_case(folder.item.name);
  if (name.starts_with("_VBA_PROJECT")) return "macros";
  return name.starts_with("_SX_DB") ? "pivot tables" : "embedded objects";
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
  book.present().write(writer);
  // What an older program said of the file as such holds no longer.
  std::set<std::string> names{"WORKBOOK", "BOOK", "\1COMPOBJ"};
  std::uint64_t copied = 0;
  for (std::size_t i = 1; i < file.entries().size(); ++i) {
    const package::CompoundEntry& other = file.entries()[i];
    if (other.folder != 0 || !names.insert(upper_case(other.item.name)).second) continue;
    if (!other.is_stream) {
      book.lose(content_of(other));
      continue;
    }
    const package::CompoundStream bytes = file.open(other);
    copied += bytes.size();
    if (copied > file.size()) package::throw_damaged("compound file", "streams share sectors");
    writer.begin_stream(0, other.item);
    package::copy_stream(bytes, writer);
  }
  writer.finish();
  const std::string_view made = output.view();
  return {package::Source::from_bytes({made.begin(), made.end()}), joined(book.lost())};
}

}  // namespace engine::xls
