#include "engine/xls/globals_write.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "engine/xls/built_in_names.h"
#include "engine/xls/fields.h"
#include "engine/xls/loaded_file.h"
#include "engine/xls/record_merge.h"
#include "engine/xls/sheet_groups.h"
#include "engine/xls/sheet_write.h"
#include "engine/xls/tokens_read.h"
#include "engine/xls/tokens_write.h"

namespace engine::xls {

namespace {

// In the order in which they stand. Those of new books are what a loaded one carries.
enum class Group : std::uint8_t {
  kTemplate,
  kInterface,  // of a new book
  kTabs,
  kProtection,  // of a new book
  kWindows,
  kBackup,  // of a new book
  kDates,
  kOptions,  // of a new book
  kFonts,
  kNumberFormats,
  kFormats,
  kExtensions,  // what later programs know of formats
  kNamedStyles,
  kColors,
  kLanguage,  // of a new book
  kSheets,
  kCountry,  // of a new book
  kBooks,
  kEntries,
  kNames,
  kDrawings,
  kTexts,
  kTextIndex,
};
constexpr std::size_t kGroups = static_cast<std::size_t>(Group::kTextIndex) + 1;

std::optional<Group> group_of_id(std::uint16_t id) {
  switch (id) {
    case kTemplate:
      return Group::kTemplate;
    case kInterfaceHeader:
    case kUserName:
    case kCodePage:
    case kDoubleStream:
      return Group::kInterface;
    case kTabIds:
      return Group::kTabs;
    case kWindow1:
      return Group::kWindows;
    case kBackup:
      return Group::kBackup;
    case kDateMode:
      return Group::kDates;
    case kPrecision:
      return Group::kOptions;
    case kFont:
      return Group::kFonts;
    case kNumberFormat:
      return Group::kNumberFormats;
    case kFormat:
      return Group::kFormats;
    case kFormatsCheck:
    case kFormatExtension:
      return Group::kExtensions;
    case kStyle:
      return Group::kNamedStyles;
    case kPalette:
      return Group::kColors;
    case kBoundSheet:
      return Group::kSheets;
    case kCountry:
      return Group::kCountry;
    case kSupBook:
    case kExternName:
    case kForeignSheet:
    case kForeignCells:
      return Group::kBooks;
    case kExternSheet:
      return Group::kEntries;
    case kName:
    case kNamePublished:
    case kNameComment:
    case kNameCategory:
      return Group::kNames;
    case kDrawingGroup:
      return Group::kDrawings;
    case kTexts:
      return Group::kTexts;
    case kTextIndex:
      return Group::kTextIndex;
    default:
      return std::nullopt;
  }
}

class GlobalsGroups : public GroupWriter {
 public:
  GlobalsGroups(RecordWriter& out, const BookWriting& book, const Drawings& drawings)
      : out_(out),
        shared_(book),
        book_(book.book),
        file_(book.file),
        drawings_(drawings),
        tokens_(book.links, book.book.limits.grid),
        stored_tokens_(book.links.file(), book.book.limits.grid) {}

  // Lets the definitions of names add what they refer to, which stands in front of them.
  void settle_names() {
    const std::vector<LinkWriter::Name>& names = shared_.links.names();
    for (std::size_t i = 0; i < names.size(); ++i)
      if (const DefinedName* name = names[i].defined)
        tokens_.write(name->definition, {name->scope, FormulaUse::kName});
  }

  std::size_t count() const override { return kGroups; }

  std::optional<std::size_t> group_of(const RecordReader& record) const override {
    const auto group = group_of_id(record.id());
    return group ? std::optional(static_cast<std::size_t>(*group)) : std::nullopt;
  }

  Mode mode(std::size_t group) const override;
  void write(std::size_t group, RecordReader* old) override;
  bool write_one(std::size_t group, std::size_t place, RecordReader& old) override;

  // What nobody needs any more goes: how the stream is encrypted, and which program has calculated
  // it, so that the next one does.
  bool takes(const RecordReader& record) override {
    return record.id() != kFilePass && (record.id() != kCalculatedBy || !shared_.options.calculate);
  }

  // Where the beginnings of sheets are named.
  std::vector<std::uint64_t> take_sheet_places() { return std::move(sheet_places_); }

 private:
  void write_interface();
  void write_user();
  void write_tabs(RecordReader* old);
  void write_window();
  void write_sheets(RecordReader* old);
  bool write_old_window(RecordReader& old, std::size_t place);
  bool write_old_extension(RecordReader& old);
  bool write_old_book(RecordReader& old);
  bool write_old_name(RecordReader& old);
  void write_names();
  void write_name(const LinkWriter::Name& name, std::string_view old);
  bool is_as_stored(const DefinedName& name, std::string_view old);
  void put_name(std::string_view name, std::uint32_t flags, std::size_t scope,
                std::string_view tokens, std::string_view behind, std::string_view old = {});
  std::size_t scope_of(const Sheet* sheet) const { return sheet ? book_.position(*sheet) + 1 : 0; }

  RecordWriter& out_;
  const BookWriting& shared_;
  const Workbook& book_;
  const LoadedFile* file_;  // null for a new book
  const Drawings& drawings_;
  TokenWriter tokens_;
  TokenReader stored_tokens_;
  std::vector<std::uint64_t> sheet_places_;
  std::size_t books_ = 0;  // of other files, and this one, that were passed
  std::size_t names_ = 0;  // likewise
};

GroupWriter::Mode GlobalsGroups::mode(std::size_t group) const {
  switch (static_cast<Group>(group)) {
    case Group::kWindows:
    case Group::kFonts:
    case Group::kNumberFormats:
    case Group::kFormats:
    case Group::kExtensions:
    case Group::kBooks:
    case Group::kNames:
      return Mode::kExtend;
    case Group::kTemplate:
    case Group::kTabs:
    case Group::kSheets:
    case Group::kEntries:
    case Group::kTexts:
    case Group::kTextIndex:
      return Mode::kReplace;
    case Group::kDates:
      return book_.date1904 != file_->globals.date1904 ? Mode::kReplace : Mode::kCopy;
    case Group::kColors:
      return shared_.styles.palette_differs() ? Mode::kReplace : Mode::kCopy;
    case Group::kDrawings:
      return drawings_.list_differs() ? Mode::kReplace : Mode::kCopy;
    default:
      return Mode::kCopy;
  }
}

void GlobalsGroups::write(std::size_t group, RecordReader* old) {
  constexpr std::uint32_t kFunctionGroupCount = 14;
  switch (static_cast<Group>(group)) {
    case Group::kTemplate:
      if (shared_.options.as_template) out_.record(kTemplate, {});
      break;
    case Group::kInterface:
      return write_interface();
    case Group::kTabs:
      return write_tabs(old);
    case Group::kProtection:
      out_.record(kFunctionGroups, {kFunctionGroupCount});
      for (const std::uint16_t id :
           {kWindowProtect, kProtect, kPassword, kProtectRevisions, kRevisionsPassword})
        out_.record(id, {0});
      break;
    case Group::kWindows:
      if (!file_) write_window();
      break;
    case Group::kBackup:
      out_.record(kBackup, {0});
      out_.record(kHideObjects, {0});
      break;
    case Group::kDates:
      out_.record(kDateMode, {book_.date1904 ? 1U : 0U});
      break;
    case Group::kOptions:
      out_.record(kPrecision, {1});
      out_.record(kRefreshAll, {0});
      out_.record(kBookOptions, {0});
      break;
    case Group::kFonts:
      return shared_.styles.write_fonts(out_);
    case Group::kNumberFormats:
      return shared_.styles.write_number_formats(out_);
    case Group::kFormats:
      return shared_.styles.write_formats(out_);
    case Group::kExtensions:
      break;
    case Group::kNamedStyles:
      return StyleNumbers::write_named_style(out_);
    case Group::kColors:
      return shared_.styles.write_palette(out_);
    case Group::kLanguage:
      out_.record(kNaturalLanguage, {0});
      break;
    case Group::kSheets:
      return write_sheets(old);
    case Group::kCountry:
      out_.record(kCountry, {1, 1});
      break;
    case Group::kBooks:
      if (books_ > 0 && shared_.links.has_functions(books_ - 1))
        shared_.links.write_new_functions(out_);
      return shared_.links.write_new_books(out_);
    case Group::kEntries:
      return shared_.links.write_entries(out_);
    case Group::kNames:
      return write_names();
    case Group::kDrawings:
      return drawings_.write_list(out_);
    case Group::kTexts:
      if (!file_ || old || shared_.texts.any_new()) shared_.texts.write(out_, old);
      break;
    case Group::kTextIndex:
      if (!file_ || old) shared_.texts.write_index(out_, old);
      break;
  }
}

bool GlobalsGroups::write_one(std::size_t group, std::size_t place, RecordReader& old) {
  switch (static_cast<Group>(group)) {
    case Group::kWindows:
      return write_old_window(old, place);
    case Group::kFonts:
      out_.copy(kFont, shared_.styles.font_record(place));
      return true;
    case Group::kFormats:
      out_.copy(kFormat, shared_.styles.format_record(place));
      return true;
    case Group::kExtensions:
      return write_old_extension(old);
    case Group::kBooks:
      return write_old_book(old);
    case Group::kNames:
      return write_old_name(old);
    default:
      return false;
  }
}

void GlobalsGroups::write_interface() {
  constexpr std::uint32_t kUtf16 = 1200;
  out_.record(kInterfaceHeader, {kUtf16});
  out_.record(kMenus, {0});
  out_.record(kInterfaceEnd, {});
  write_user();
  out_.record(kCodePage, {kUtf16});
  out_.record(kDoubleStream, {0});
}

// Who has the file open; blanks fill the record up.
void GlobalsGroups::write_user() {
  constexpr std::string_view kName = "Vornelix";
  constexpr std::size_t kSize = 112;
  const Characters name(kName);
  out_.begin(kUserName);
  out_.put_long_text(name);
  out_.put(std::string(kSize - out_.size_so_far(), ' '));
  out_.end();
}

// Numbers of sheets that stay with them wherever they are moved.
void GlobalsGroups::write_tabs(RecordReader* old) {
  constexpr std::size_t kMaxTabs = RecordWriter::kMaxData / 2;
  if (book_.sheets().size() > kMaxTabs || (file_ && !old)) return;
  std::map<const Sheet*, std::uint32_t> numbers;
  std::uint32_t last = 0;
  if (old) {
    Fields in(old->whole_data());
    for (const Sheet* sheet : file_->globals.links.sheets) {
      const std::uint32_t number = in.take16();
      if (!in.ok()) break;
      numbers.emplace(sheet, number);
      last = std::max(last, number);
    }
  }
  out_.begin(kTabIds);
  for (const auto& sheet : book_.sheets()) {
    const auto known = numbers.find(sheet.get());
    out_.put16(known == numbers.end() ? ++last : known->second);
  }
  out_.end();
}

std::uint32_t selected_tabs(const Workbook& book) {
  const auto is_selected = [](const auto& sheet) { return sheet->selected; };
  return std::max(1U,
                  static_cast<std::uint32_t>(std::ranges::count_if(book.sheets(), is_selected)));
}

void GlobalsGroups::write_window() {
  constexpr std::uint32_t kTabsAndScrollBars = 0x38;
  constexpr std::uint32_t kTabsShare = 600;  // of the width, in thousandths
  out_.record(kWindow1, {0x0168, 0x010E, 0x5C3A, 0x3A3B, kTabsAndScrollBars,
                         static_cast<std::uint32_t>(book_.active_sheet), 0, selected_tabs(book_),
                         kTabsShare});
}

// The model has what the first window shows; that of another one stays a sheet of the book.
bool GlobalsGroups::write_old_window(RecordReader& old, std::size_t place) {
  constexpr std::size_t kActive = 10;
  constexpr std::size_t kFirst = 12;
  constexpr std::size_t kSelected = 14;
  PatchedData data(&old, 18);
  const auto count = static_cast<std::uint32_t>(book_.sheets().size());
  const bool all_read = std::ranges::all_of(book_.sheets(), [](const auto& sheet) {
    return sheet->loading == Loading::kRead || sheet->loading == Loading::kPartly;
  });
  if (place == 0) data.set16(kActive, static_cast<std::uint32_t>(book_.active_sheet));
  else if (data.get16(kActive) >= count) data.set16(kActive, 0);
  if (data.get16(kFirst) >= count) data.set16(kFirst, 0);
  data.set16(kSelected, all_read && place == 0 ? selected_tabs(book_)
                                               : std::min(data.get16(kSelected), count));
  out_.copy(kWindow1, data.data());
  return true;
}

void GlobalsGroups::write_sheets(RecordReader* old) {
  constexpr std::size_t kName = 6;
  std::map<const Sheet*, std::string> stored;
  if (old && file_) {
    RecordReader records(*old);
    const std::vector<const Sheet*>& sheets = file_->globals.links.sheets;
    for (auto sheet = sheets.begin(); sheet != sheets.end() && records.id() != kEof;) {
      if (records.id() == kBoundSheet) stored.emplace(*sheet++, records.data());
      if (sheet != sheets.end() && !records.next()) break;
    }
  }
  for (const auto& sheet : book_.sheets()) {
    const Characters name(sheet->name());
    std::string data(kName, '\0');
    const auto found = stored.find(sheet.get());
    const bool known = found != stored.end() && found->second.size() >= kName;
    if (known) data = found->second;
    Fields in(std::string_view(data).substr(kName));
    if (!known || in.take_short_text() != sheet->name()) {
      data.resize(kName);
      package::put_number(data, name.count(), 1);
      package::put_number(data, name.wide() ? 1 : 0, 1);
      data += name.bytes();
    }
    const auto state = static_cast<unsigned char>(data[4]);
    data[4] = static_cast<char>((state & ~3U) | static_cast<unsigned>(sheet->visibility));
    sheet_places_.push_back(out_.position() + 4);
    out_.copy(kBoundSheet, data);
  }
}

bool GlobalsGroups::write_old_extension(RecordReader& old) {
  constexpr std::size_t kSize = 20;
  const StyleNumbers& styles = shared_.styles;
  if (old.id() == kFormatsCheck) {
    const std::string_view data = old.data();
    if (data.size() < kSize ||
        package::get32(data, 16) != check_sum_of(file_->globals.styles.formats))
      return false;
    std::string made(data);
    put16(&made[14], static_cast<std::uint32_t>(styles.format_records().size()));
    put32(&made[16], check_sum_of(styles.format_records()));
    out_.copy(kFormatsCheck, made);
    return true;
  }
  const std::string_view data = old.data();
  const std::size_t format = data.size() < 16 ? 0 : package::get16(data, 14);
  return format < file_->globals.styles.formats.size() && styles.drops_extension(format);
}

bool GlobalsGroups::write_old_book(RecordReader& old) {
  constexpr std::uint32_t kOwnMark = 0x0401;
  if (old.id() != kSupBook) return false;
  if (books_ > 0 && shared_.links.has_functions(books_ - 1))
    shared_.links.write_new_functions(out_);
  ++books_;
  const std::string_view data = old.data();
  if (data.size() != 4 || package::get16(data, 2) != kOwnMark) return false;
  out_.record(kSupBook, {static_cast<std::uint32_t>(book_.sheets().size()), kOwnMark});
  return true;
}

// What later programs know of a name stands behind it, and goes with it.
bool GlobalsGroups::write_old_name(RecordReader& old) {
  constexpr std::size_t kScope = 8;
  constexpr std::size_t kLeast = 14;
  const std::vector<LinkWriter::Name>& names = shared_.links.names();
  if (old.id() != kName) return names_ > 0 && names_ <= names.size() && names[names_ - 1].is_spare;
  const std::size_t place = names_++;
  std::string data(old.whole_data());
  if (data.size() < kLeast || place >= names.size()) {
    out_.copy(kName, data);
    return true;
  }
  const LinkWriter::Name& name = names[place];
  const bool was_defined = shared_.links.file().names[place].is_defined;
  const bool is_same = name.defined ? is_as_stored(*name.defined, data) : !was_defined;
  if (!is_same) {
    write_name(name, data);
    return true;
  }
  put16(&data[kScope], static_cast<std::uint32_t>(scope_of(name.scope)));
  out_.begin(kName);
  out_.put(data);
  out_.end();
  return true;
}

// Whether a name means what the file says of it.
bool GlobalsGroups::is_as_stored(const DefinedName& name, std::string_view old) {
  Fields in(old);
  in.skip(3);
  const std::size_t length = in.take8();
  const std::size_t size = in.take16();
  in.skip(8);
  in.take_text(length);
  const std::string_view tokens = in.take(size);
  return in.ok() && stored_tokens_.read(tokens, in.rest(), {name.scope, {}}) &&
         stored_tokens_.text() == name.definition;
}

// Names behind those of the file. A definition may name another one that is not defined.
void GlobalsGroups::write_names() {
  for (std::size_t i = shared_.links.file().names.size(); i < shared_.links.names().size(); ++i)
    write_name(LinkWriter::Name(shared_.links.names()[i]), {});
}

void GlobalsGroups::write_name(const LinkWriter::Name& name, std::string_view old) {
  constexpr std::uint32_t kHidden = 0x01;
  constexpr std::uint32_t kBuiltIn = 0x20;
  constexpr std::string_view kNoReference{"\x1C\x17", 2};
  if (name.is_spare) return put_name(name.text, kHidden, 0, kNoReference, "");
  if (!name.defined) return put_name(name.text, 0, scope_of(name.scope), "", "");
  const DefinedName& defined = *name.defined;
  if (!tokens_.write(defined.definition, {defined.scope, FormulaUse::kName}))
    throw package::FileTargetError("cannot be written: name \"" + defined.name + "\", " +
                                   tokens_.why_not());
  std::uint32_t flags = defined.hidden ? kHidden : 0;
  std::string stored = defined.name;
  if (stored.starts_with(kBuiltInPrefix)) {
    const auto number = built_in_number(std::string_view(stored).substr(kBuiltInPrefix.size()));
    if (number) {
      stored = std::string(1, static_cast<char>(*number));
      flags |= kBuiltIn;
    }
  }
  put_name(stored, flags, scope_of(name.scope), tokens_.tokens(), tokens_.behind(), old);
}

// Of a name that the file has what else it says of it stays, texts behind the definition excepted.
void GlobalsGroups::put_name(std::string_view name, std::uint32_t flags, std::size_t scope,
                             std::string_view tokens, std::string_view behind,
                             std::string_view old) {
  constexpr std::uint32_t kKept = 0xFFDE;  // flags that the model does not have
  const Characters characters(name);
  out_.begin(kName);
  out_.put16(flags | (old.empty() ? 0U : package::get16(old, 0) & kKept));
  out_.put8(old.empty() ? 0U : static_cast<unsigned char>(old[2]));
  out_.put8(static_cast<std::uint32_t>(characters.count()));
  out_.put16(static_cast<std::uint32_t>(tokens.size()));
  out_.put16(0);
  out_.put16(static_cast<std::uint32_t>(scope));
  out_.put32(0);
  out_.put_characters(characters);
  out_.put(tokens);
  out_.put(behind);
  out_.end();
}

}  // namespace

std::vector<std::uint64_t> write_globals(RecordWriter& out, const BookWriting& book,
                                         const Drawings& drawings) {
  GlobalsGroups groups(out, book, drawings);
  groups.settle_names();
  if (book.file) {
    merge_records(RecordReader(book.file->stream, 0, book.file->globals.cipher), book.file->edits,
                  out, groups);
  } else {
    write_beginning(out, kGlobalsStream);
    write_groups(groups);
    out.record(kEof, {});
  }
  return groups.take_sheet_places();
}

}  // namespace engine::xls
