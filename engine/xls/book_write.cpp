#include "engine/xls/book_write.h"

#include <algorithm>
#include <array>
#include <string>

#include "engine/package/compound_writer.h"
#include "engine/text/fold.h"
#include "engine/text/utf8.h"
#include "engine/xls/drawing_write.h"
#include "engine/xls/sheet_write.h"
#include "engine/xls/summary_write.h"
#include "engine/xls/tokens_write.h"

namespace engine::xls {

namespace {

constexpr std::uint64_t kMaxStream = 0x7FFFFFFF;

constexpr std::array<char, 16> kWorkbookClass = {0x20,   0x08, 0x02, 0, 0, 0, 0, 0,
                                                 '\xC0', 0,    0,    0, 0, 0, 0, 0x46};

// Names that the format knows by a number.
constexpr std::string_view kBuiltInPrefix = "_xlnm.";
constexpr std::string_view kBuiltInNames[] = {
    "Consolidate_Area", "Auto_Open",       "Auto_Close",   "Extract",         "Database",
    "Criteria",         "Print_Area",      "Print_Titles", "Recorder",        "Data_Form",
    "Auto_Activate",    "Auto_Deactivate", "Sheet_Title",  "_FilterDatabase",
};

// The part of the stream that all sheets share.
class GlobalsWriter {
 public:
  GlobalsWriter(RecordWriter& out, const BookWriting& book)
      : out_(out), book_(book.book), shared_(book) {}

  void write(const Drawings& drawings, std::string_view names) {
    write_head();
    shared_.styles.write(out_);
    out_.record(kNaturalLanguage, {0});
    write_sheets();
    out_.record(kCountry, {1, 1});
    shared_.links.write(out_);
    out_.flush();
    append_records(names);
    drawings.write_list(out_);
    shared_.texts.write(out_);
    out_.record(kEof, {});
    out_.flush();
  }

  // Where the beginnings of sheets are named.
  const std::vector<std::uint64_t>& sheet_places() const { return sheet_places_; }

 private:
  void append_records(std::string_view records) {
    while (!records.empty()) {
      char* at = out_.records();
      const std::size_t part = std::min(records.size(), RecordWriter::kRoom);
      out_.end_at(std::copy_n(records.data(), part, at));
      records.remove_prefix(part);
    }
  }

  void write_head() {
    constexpr std::uint32_t kUtf16 = 1200;
    constexpr std::uint32_t kFunctionGroupCount = 14;
    constexpr std::size_t kMaxTabIds = RecordWriter::kMaxData / 2;
    write_beginning(out_, kGlobalsStream);
    if (shared_.options.as_template) out_.record(kTemplate, {});
    out_.record(kInterfaceHeader, {kUtf16});
    out_.record(kMenus, {0});
    out_.record(kInterfaceEnd, {});
    write_user();
    out_.record(kCodePage, {kUtf16});
    out_.record(kDoubleStream, {0});
    const std::size_t count = book_.sheets().size();
    if (count <= kMaxTabIds) {
      out_.begin(kTabIds);
      for (std::size_t i = 1; i <= count; ++i) out_.put16(static_cast<std::uint32_t>(i));
      out_.end();
    }
    out_.record(kFunctionGroups, {kFunctionGroupCount});
    for (const std::uint16_t id :
         {kWindowProtect, kProtect, kPassword, kProtectRevisions, kRevisionsPassword})
      out_.record(id, {0});
    write_window();
    out_.record(kBackup, {0});
    out_.record(kHideObjects, {0});
    out_.record(kDateMode, {book_.date1904 ? 1U : 0U});
    out_.record(kPrecision, {1});
    out_.record(kRefreshAll, {0});
    out_.record(kBookOptions, {0});
  }

  // Who has the file open; blanks fill the record up.
  void write_user() {
    constexpr std::string_view kName = "Vornelix";
    constexpr std::size_t kSize = 112;
    const Characters name(kName);
    out_.begin(kUserName);
    out_.put_long_text(name);
    out_.put(std::string(kSize - out_.size_so_far(), ' '));
    out_.end();
  }

  void write_window() {
    constexpr std::uint32_t kTabsAndScrollBars = 0x38;
    constexpr std::uint32_t kTabsShare = 600;  // of the width, in thousandths
    const auto selected = static_cast<std::uint32_t>(
        std::ranges::count_if(book_.sheets(), [](const auto& sheet) { return sheet->selected; }));
    out_.record(kWindow1, {0x0168, 0x010E, 0x5C3A, 0x3A3B, kTabsAndScrollBars,
                           static_cast<std::uint32_t>(book_.active_sheet), 0,
                           std::max(selected, 1U), kTabsShare});
  }

  void write_sheets() {
    Characters name;
    for (const auto& sheet : book_.sheets()) {
      name.take(sheet->name());
      out_.begin(kBoundSheet);
      sheet_places_.push_back(out_.position());
      out_.put32(0);
      out_.put8(static_cast<std::uint32_t>(sheet->visibility));
      out_.put8(0);
      out_.put_short_text(name);
      out_.end();
    }
  }

  RecordWriter& out_;
  const Workbook& book_;
  const BookWriting& shared_;
  std::vector<std::uint64_t> sheet_places_;
};

// Names in their order, and behind them those that formulas have and nobody has defined.
class NamesWriter {
 public:
  NamesWriter(RecordWriter& out, const BookWriting& book)
      : out_(out), book_(book), tokens_(book.links, book.book.limits.grid) {}

  void write() {
    for (const DefinedName& name : book_.book.names) write_name(name);
    // A definition may name another one that is not defined.
    const auto& undefined = book_.links.undefined();
    for (std::size_t i = 0; i < undefined.size(); ++i) put_name(undefined[i], 0, 0, "", "");
    out_.flush();
  }

 private:
  void write_name(const DefinedName& name) {
    constexpr std::uint32_t kHidden = 0x01;
    constexpr std::uint32_t kBuiltIn = 0x20;
    if (!tokens_.write(name.definition, {name.scope, FormulaUse::kName}))
      throw package::FileTargetError("cannot be written: name \"" + name.name + "\", " +
                                     tokens_.why_not());
    std::uint32_t flags = name.hidden ? kHidden : 0;
    std::string stored = name.name;
    if (stored.starts_with(kBuiltInPrefix)) {
      const auto* const found = std::ranges::find_if(kBuiltInNames, [&](std::string_view one) {
        return equal_ignoring_case(one, std::string_view(stored).substr(kBuiltInPrefix.size()));
      });
      if (found != std::end(kBuiltInNames)) {
        stored = std::string(1, static_cast<char>(found - std::begin(kBuiltInNames)));
        flags |= kBuiltIn;
      }
    }
    const std::size_t scope = name.scope ? book_.book.position(*name.scope) + 1 : 0;
    put_name(stored, flags, scope, tokens_.tokens(), tokens_.behind());
  }

  void put_name(std::string_view name, std::uint32_t flags, std::size_t scope,
                std::string_view tokens, std::string_view behind) {
    const Characters characters(name);
    out_.begin(kName);
    out_.put16(flags);
    out_.put8(0);
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

  RecordWriter& out_;
  const BookWriting& book_;
  TokenWriter tokens_;
};

// What the model holds and these files are not given yet is refused, never lost.
void refuse_unwritten(const Workbook& book) {
  constexpr std::string_view kNotYet = " are not written to .xls files yet";
  for (const auto& sheet : book.sheets()) {
    const SheetContents& its = sheet->contents();
    std::string_view things;
    if (its.filter.range) things = "filters";
    else if (!its.validations.empty()) things = "data validations";
    else if (!its.ignored_errors.all().empty()) things = "ignored errors";
    if (things.empty()) continue;
    std::string text = "cannot be written: sheet \"";
    text.append(sheet->name()).append("\": ").append(things).append(kNotYet);
    throw package::FileTargetError(text);
  }
}

void write_stream(package::CompoundWriter& file, std::string name, std::string_view bytes) {
  package::CompoundItem item;
  item.name = std::move(name);
  file.begin_stream(0, std::move(item));
  file.write({bytes.data(), bytes.size()});
}

}  // namespace

void throw_unwritable(const Sheet& sheet, std::string_view place, std::string_view what) {
  std::string text = "cannot be written: sheet \"";
  text.append(sheet.name()).append("\", cell ").append(place).append(", ").append(what);
  throw package::FileTargetError(text);
}

void write_book(const Workbook& book, const SaveOptions& options, std::int64_t created,
                package::Output& output) {
  refuse_unwritten(book);
  const StyleNumbers styles(book);
  TextNumbers texts(book.strings);
  LinkWriter links(book);
  const BookWriting shared{book, options, styles, texts, links};
  const DrawingGroup no_group;
  const LoadedPictures no_pictures;
  Drawings drawings(book, no_group, no_pictures);
  package::MemoryOutput sheets(kMaxStream);
  RecordWriter sheets_out(sheets);
  std::vector<std::uint64_t> beginnings;
  std::vector<NamedPlace> places;
  for (const auto& sheet : book.sheets()) {
    beginnings.push_back(sheets_out.position());
    write_new_sheet(sheets_out, shared, *sheet, drawings, places);
  }
  sheets_out.flush();
  package::MemoryOutput names(kMaxStream);
  RecordWriter names_out(names);
  NamesWriter(names_out, shared).write();
  package::MemoryOutput globals(kMaxStream);
  RecordWriter globals_out(globals);
  GlobalsWriter writer(globals_out, shared);
  writer.write(drawings, names.view());
  const std::uint64_t size = globals.position();
  if (size + sheets.position() > kMaxStream) throw package::SizeError(kMaxStream);
  const auto settled = [size](std::uint64_t place) {
    return static_cast<std::uint32_t>(size + place);
  };
  for (std::size_t i = 0; i < beginnings.size(); ++i)
    globals_out.patch32(writer.sheet_places()[i], settled(beginnings[i]));
  for (const auto& [at, place] : places) sheets_out.patch32(at, settled(place));

  package::CompoundItem root;
  root.class_id = kWorkbookClass;
  package::CompoundWriter file(output, root);
  file.begin_stream(0, {.name = "Workbook"});
  file.write({globals.view().data(), globals.view().size()});
  file.write({sheets.view().data(), sheets.view().size()});
  write_stream(file, "\x05SummaryInformation", summary(created));
  write_stream(file,
               "\x05"
               "DocumentSummaryInformation",
               document_summary());
  file.finish();
}

}  // namespace engine::xls
