#include "engine/xls/globals.h"

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include "engine/package/file_error.h"
#include "engine/xls/built_in_names.h"
#include "engine/xls/fields.h"
#include "engine/xls/record_merge.h"
#include "engine/xls/records.h"
#include "engine/xls/styles_read.h"
#include "engine/xls/tokens_read.h"

namespace engine::xls {

namespace {

class GlobalsReader {
 public:
  GlobalsReader(RecordReader& reader, LoadScope scope, Workbook& book, Globals& globals)
      : reader_(reader),
        everything_(scope == LoadScope::kEverything),
        book_(book),
        globals_(globals) {}

  void read() {
    const bool begins = reader_.next() && reader_.id() == kBof;
    Fields in(begins ? reader_.data() : std::string_view());
    if (in.take16() != kVersion8 || in.take16() != kGlobalsStream)
      package::throw_damaged("Workbook", "the stream does not begin with a workbook");
    while (true) {
      if (!reader_.next()) package::throw_damaged("Workbook", "ends too early");
      // The sheets are the last thing that a book's information consists of.
      const bool listed = !globals_.sheets.empty() && reader_.id() != kBoundSheet;
      if (reader_.id() == kEof || (!everything_ && listed)) break;
      read_record();
    }
    finish();
  }

 private:
  // A name whose definition is read when all that it may refer to is known.
  struct WaitingName {
    std::string tokens;
    std::string behind;
    std::size_t number;  // in the table, from 0
    bool hidden;
  };

  void read_record() {
    Fields in(reader_.data());
    switch (reader_.id()) {
      case kBof:
        // What begins in here is carried as a whole, whatever it lists.
        pass_substream(reader_, [] {});
        break;
      case kFilePass:
        globals_.cipher = default_cipher(reader_.data());
        reader_.decrypt_with(*globals_.cipher);
        break;
      case kTemplate:
        book_.is_template = true;
        break;
      case kDateMode:
        book_.date1904 = globals_.date1904 = in.take16() == 1;
        break;
      case kWindow1:  // there may be several windows
        in.skip(10);
        if (!std::exchange(has_window_, true)) book_.active_sheet = in.take16();
        break;
      case kBoundSheet:
        read_sheet(in);
        break;
      case kFont:
        styles_.take_font(reader_.data());
        break;
      case kNumberFormat:
        styles_.take_number_format(reader_.data());
        break;
      case kFormat:
        styles_.take_format(reader_.data());
        break;
      case kPalette:
        styles_.take_palette(reader_.data());
        break;
      case kSupBook:
        read_book();
        break;
      case kExternName:
        read_foreign_name(in);
        break;
      case kExternSheet:
        read_entries();
        break;
      case kName:
        read_name();
        break;
      case kPivotSource:
        globals_.pivot_sources.push_back(reader_.offset());
        break;
      case kDrawingGroup:
        globals_.drawings.take(reader_);
        break;
      case kTexts:
        if (everything_) read_texts();
        break;
      default:
        break;
    }
  }

  void read_sheet(Fields in) {
    const std::uint32_t begin = in.take32();
    const unsigned state = in.take8() & 3;
    const unsigned kind = in.take8();
    std::string name = in.take_short_text();
    if (!in.ok()) reader_.fail("ends too early");
    if (book_.sheets().size() >= book_.limits.sheets) reader_.fail("there are too many sheets");
    auto sheet = std::make_unique<Sheet>(std::move(name));
    if (kind == 2) sheet->kind = SheetKind::kChart;
    else if (kind != 0) sheet->kind = SheetKind::kOther;
    if (state == 1) sheet->visibility = SheetVisibility::kHidden;
    else if (state >= 2) sheet->visibility = SheetVisibility::kVeryHidden;
    sheet->loading = kind == 0 ? Loading::kUnread : Loading::kRead;
    globals_.sheets.push_back(begin);
    globals_.links.sheets.push_back(sheet.get());
    book_.add_sheet(std::move(sheet));
  }

  void read_book() {
    constexpr std::uint16_t kOwn = 0x0401;
    constexpr std::uint16_t kAddIn = 0x3A01;
    Fields in(reader_.whole_data());
    LinkedBook& made = globals_.links.books.emplace_back();
    const std::size_t count = in.take16();
    const std::uint16_t length = in.take16();
    if (length == kOwn || length == kAddIn) {
      made.kind = length == kOwn ? LinkedBook::Kind::kOwn : LinkedBook::Kind::kAddIn;
      return;
    }
    made.number = ++other_books_;
    in.take_text(length);
    for (std::size_t i = 0; i < count && !in.at_end(); ++i)
      made.sheets.push_back(in.take_long_text());
  }

  // Names belong to the book in front of them.
  void read_foreign_name(Fields in) {
    if (globals_.links.books.empty()) return;
    in.skip(2);
    const int sheet = in.take16();
    in.skip(2);
    globals_.links.books.back().names.push_back({in.take_short_text(), sheet});
  }

  void read_entries() {
    Fields in(reader_.whole_data());
    const std::size_t count = in.take16();
    for (std::size_t i = 0; i < count && !in.at_end(); ++i) {
      LinkedSheets entry;
      entry.book = in.take16();
      entry.first = static_cast<std::int16_t>(in.take16());
      entry.last = static_cast<std::int16_t>(in.take16());
      globals_.links.entries.push_back(entry);
    }
  }

  void read_name() {
    constexpr unsigned kHidden = 0x01;
    constexpr unsigned kBuiltIn = 0x20;
    Fields in(reader_.whole_data());
    const unsigned flags = in.take16();
    in.skip(1);
    const std::size_t length = in.take8();
    const std::size_t tokens = in.take16();
    in.skip(2);
    NumberedName& made = globals_.links.names.emplace_back();
    made.sheet = in.take16();
    in.skip(4);
    made.name = in.take_text(length);
    if ((flags & kBuiltIn) != 0) made.name = built_in_name(made.name);
    const std::string_view expression = in.take(tokens);
    if (!in.ok() || expression.empty()) return;
    names_.push_back({std::string(expression), std::string(in.rest()),
                      globals_.links.names.size() - 1, (flags & kHidden) != 0});
  }

  void read_texts() {
    constexpr unsigned kPhonetic = 4;
    constexpr unsigned kRich = 8;
    ContinuedData in(reader_);
    in.skip(8);  // how often texts are used, and how many there are
    StringPool& pool = book_.strings;
    std::string text;
    // The count may be wrong in either direction: what is there counts.
    while (!in.at_end()) {
      const std::size_t length = in.take16();
      const unsigned flags = in.take8();
      const std::uint32_t runs = (flags & kRich) != 0 ? in.take16() : 0;
      const std::uint32_t phonetic = (flags & kPhonetic) != 0 ? in.take32() : 0;
      const bool wide = (flags & 1) != 0;
      const std::string_view plain = wide ? std::string_view() : in.take_plain(length);
      if (plain.empty() && length != 0) {
        text.clear();
        in.take_characters(length, wide, text);
        pool.append(text);
      } else {
        pool.append(plain);
      }
      if (runs != 0) pool.mark_rich(pool.size() - 1);
      in.skip(std::uint64_t{runs} * 4 + phonetic);
    }
  }

  void finish() {
    if (book_.active_sheet >= book_.sheets().size()) book_.active_sheet = 0;
    if (!everything_) return;
    book_.strings.end_of_file_entries();
    globals_.styles = styles_.finish(book_.styles);
    TokenReader tokens(globals_.links, book_.limits.grid);
    for (const WaitingName& waiting : names_) {
      NumberedName& numbered = globals_.links.names[waiting.number];
      DefinedName made;
      const auto sheet = static_cast<std::size_t>(numbered.sheet);
      if (sheet > globals_.links.sheets.size()) continue;
      made.scope = sheet == 0 ? nullptr : globals_.links.sheets[sheet - 1];
      if (!tokens.read(waiting.tokens, waiting.behind, {made.scope, {}})) continue;
      made.name = numbered.name;
      made.definition = tokens.text();
      made.hidden = waiting.hidden;
      made.details = std::to_string(waiting.number);
      numbered.is_defined = true;
      book_.names.add(std::move(made));
    }
  }

  RecordReader& reader_;
  const bool everything_;
  Workbook& book_;
  Globals& globals_;
  StylesReader styles_;
  std::vector<WaitingName> names_;
  int other_books_ = 0;
  bool has_window_ = false;
};

}  // namespace

void read_globals(RecordReader& reader, LoadScope scope, Workbook& book, Globals& globals) {
  GlobalsReader(reader, scope, book, globals).read();
}

}  // namespace engine::xls
