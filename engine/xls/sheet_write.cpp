#include "engine/xls/sheet_write.h"

#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <utility>

#include "engine/package/file_error.h"
#include "engine/xls/loaded_file.h"
#include "engine/xls/sheet_reader.h"
#include "engine/xls/sheet_records.h"

namespace engine::xls {

namespace {

// Groups of a sheet's records that are written from the model.
class SheetGroups : public GroupWriter {
 public:
  explicit SheetGroups(SheetWriting& to, const SheetPart& part = {})
      : to_(to), is_copy_(part.is_copy), other_windows_(part.other_windows) {}

  std::size_t count() const override { return kSheetGroups; }

  std::optional<std::size_t> group_of(const RecordReader& record) const override {
    const auto group = group_of_record(record.id(), record.data());
    const bool is_carried = is_of_other_window(group, record.offset(), other_windows_);
    return group && !is_carried ? std::optional(static_cast<std::size_t>(*group)) : std::nullopt;
  }

  Mode mode(std::size_t group) const override {
    const auto its = static_cast<SheetGroup>(group);
    const bool is_new = is_copy_ && its == SheetGroup::kDrawing;
    return is_new || entry_of(its).changed(to_) ? Mode::kReplace : Mode::kCopy;
  }

  void write(std::size_t group, RecordReader* old) override {
    entry_of(static_cast<SheetGroup>(group)).write(to_, old);
  }

  bool takes(const RecordReader& record) override {
    if (record.id() == kDefaultColumnWidth) note_columns(to_);
    // What begins inside is a chart.
    if (record.id() == kBof && std::exchange(began_, true)) return !is_copy_;
    return !is_copy_ || is_copied(record);
  }

 private:
  // What comes along with a copy of the sheet beside what the model has.
  static bool is_copied(const RecordReader& record) {
    constexpr std::uint16_t kCopied[] = {kConditions, kCondition, kLaterConditions, kLaterCondition,
                                         kConditionExtension};
    if (record.id() == kCodeName || record.id() == kTableHeader) return false;
    return find_sheet_record(record.id(), record.data()) || record.id() == kBof ||
           std::ranges::find(kCopied, record.id()) != std::end(kCopied);
  }

  SheetWriting& to_;
  const bool is_copy_;
  const std::uint64_t other_windows_;
  bool began_ = false;
};

// The same of a sheet that goes out as it is: places in the stream, and what is said in each sheet
// though it is the book's.
class StoredGroups : public GroupWriter {
 public:
  // `shift` is how much further behind the sheet begins than in the file, less where the output of
  // sheets begins.
  StoredGroups(SheetWriting& to, const SheetPart& part, std::int64_t shift)
      : to_(to), other_windows_(part.other_windows), shift_(shift) {}

  std::size_t count() const override { return kSheetGroups; }

  std::optional<std::size_t> group_of(const RecordReader& record) const override {
    switch (record.id()) {
      case kIndex:
        return static_cast<std::size_t>(SheetGroup::kIndex);
      case kReferenceMode:
        return static_cast<std::size_t>(SheetGroup::kReferenceMode);
      case kWindow2:
        if (record.offset() >= other_windows_) return std::nullopt;
        return static_cast<std::size_t>(SheetGroup::kWindow);
      default:
        return std::nullopt;
    }
  }

  // Of a sheet that nobody has read, nobody has changed which tabs are selected.
  Mode mode(std::size_t group) const override {
    const BookWriting& book = to_.book;
    bool writes = false;
    switch (static_cast<SheetGroup>(group)) {
      case SheetGroup::kIndex:
        writes = true;
        break;
      case SheetGroup::kReferenceMode:
        writes = book.book.r1c1 != book.file->r1c1 && to_.sheet.kind == SheetKind::kWorksheet;
        break;
      case SheetGroup::kWindow:
        writes = to_.sheet.loading == Loading::kRead || to_.sheet.loading == Loading::kPartly;
        break;
      default:
        break;
    }
    return writes ? Mode::kReplace : Mode::kCopy;
  }

  void write(std::size_t group, RecordReader* old) override {
    if (!old) return;
    const auto its = static_cast<SheetGroup>(group);
    if (its == SheetGroup::kIndex) write_index(*old);
    else entry_of(its).write(to_, old);
  }

 private:
  void write_index(RecordReader& old) {
    const std::string_view data = old.data();
    const std::uint64_t begin = to_.out.position() + 4;
    for (std::size_t at = 12; at + 4 <= data.size(); at += 4)
      if (const std::uint32_t place = package::get32(data, at); place != 0)
        to_.places.push_back(
            {begin + at, static_cast<std::uint64_t>(std::int64_t{place} + shift_)});
    to_.out.copy(kIndex, data);
  }

  SheetWriting& to_;
  const std::uint64_t other_windows_;
  const std::int64_t shift_;
};

class SheetsWriter {
 public:
  SheetsWriter(RecordWriter& out, const BookWriting& book, Drawings& drawings,
               std::vector<NamedPlace>& places)
      : out_(out), book_(book), drawings_(drawings), places_(places) {}

  std::uint64_t write(const Sheet& sheet) {
    const std::uint64_t begin = out_.position();
    const SheetPart* const part = part_of(sheet);
    if (!part) {
      write_new(sheet);
    } else if (part->is_copy || sheet.changed()) {
      write_changed(sheet, *part);
    } else {
      // Sheets that the file lets begin at one place go on to do so.
      const auto [known, is_first] = stored_.try_emplace(part->begin, begin);
      if (!is_first) return known->second;
      if (part->begin >= book_.file->stream.size()) return known->second = kNowhere;
      write_stored(sheet, *part);
    }
    return begin;
  }

 private:
  const SheetPart* part_of(const Sheet& sheet) const {
    if (!book_.file) return nullptr;
    const auto found = book_.file->sheets.find(&sheet);
    return found == book_.file->sheets.end() ? nullptr : &found->second;
  }

  RecordReader reader_of(const Sheet& sheet, const SheetPart& part) const {
    const LoadedFile& file = *book_.file;
    RecordReader reader(file.stream, part.begin, file.globals.cipher, sheet.name());
    reader.end_at(file.end_of(part.begin));
    return reader;
  }

  void write_new(const Sheet& sheet) {
    CellsWriter cells(out_, book_, sheet);
    SheetWriting to{out_, book_, sheet, sheet.contents(), nullptr, cells, drawings_, places_};
    SheetGroups groups(to);
    write_beginning(out_, kSheetStream);
    write_groups(groups);
    out_.record(kEof, {});
  }

  void write_changed(const Sheet& sheet, const SheetPart& part) {
    const LoadedFile& file = *book_.file;
    const RecordReader reader = reader_of(sheet, part);
    const std::uint32_t texts = book_.book.strings.count_from_file();
    // Rows that a partial load has left out, unless they have been read again meanwhile.
    std::unique_ptr<OutsideRows> outside;
    StoredCells stored;
    if (sheet.loading == Loading::kPartly) {
      if (!sheet.outside) outside = read_outside_rows(file, book_.book, sheet);
      stored.outside = sheet.outside ? sheet.outside.get() : outside.get();
    }
    StoredFormulas formulas(reader, file.globals.links, book_.book.limits.grid, sheet);
    stored.formulas = &formulas;
    CellsWriter cells(out_, book_, sheet, stored);

    constexpr RowFilter kNoRows{1, 0};
    Workbook scratch(book_.book.limits);
    // The filter's range, which only its columns follow from.
    if (!part.is_moved && !part.is_copy)
      for (const DefinedName* name : book_.book.names.of_scope(sheet)) scratch.names.add(*name);
    SheetContents base = begin_contents(book_.book);
    SheetFlags flags;
    RecordReader records(reader);
    read_sheet(records, {scratch, file.globals, sheet, texts, texts}, kNoRows, base, flags);
    SheetWriting to{out_,  book_,     sheet,   sheet.contents(), &base,
                    cells, drawings_, places_, &part.drawing,    &part.edits};
    SheetGroups groups(to, part);
    merge_records(reader, part.edits, out_, groups);
  }

  void write_stored(const Sheet& sheet, const SheetPart& part) {
    const std::uint64_t begin = out_.position();
    const std::int64_t shift =
        static_cast<std::int64_t>(begin) - static_cast<std::int64_t>(part.begin);
    CellsWriter cells(out_, book_, sheet);
    SheetWriting to{out_,  book_,     sheet,  sheet.contents(), &sheet.contents(),
                    cells, drawings_, places_};
    StoredGroups groups(to, part, shift);
    const RecordReader reader = reader_of(sheet, part);
    if (is_whole(reader)) merge_records(reader, part.edits, out_, groups);
    else copy_damaged(reader, part.begin, book_.file->end_of(part.begin));
  }

  static bool is_whole(RecordReader reader) try {
    if (!reader.next()) return false;
    pass_substream(reader, [] {});
    return true;
  } catch (const package::FileError&) {
    return false;
  }

  // What cannot be read goes out as records as far as it is some, and what follows as it is.
  void copy_damaged(RecordReader reader, std::uint64_t begin, std::uint64_t end) {
    try {
      while (reader.next()) {
        out_.copy(reader.id(), reader.data());
        begin = reader.offset() + kRecordHead + reader.data().size();
      }
    } catch (const package::FileError&) {
      // That is known already.
    }
    while (begin < end) {
      const auto size =
          static_cast<std::size_t>(std::min<std::uint64_t>(end - begin, RecordWriter::kRoom));
      char* const at = out_.records();
      book_.file->stream.read(begin, {at, size});
      out_.end_at(at + size);
      begin += size;
    }
  }

  RecordWriter& out_;
  const BookWriting& book_;
  Drawings& drawings_;
  std::vector<NamedPlace>& places_;
  std::map<std::uint64_t, std::uint64_t> stored_;  // where those went that are as they were
};

}  // namespace

void write_beginning(RecordWriter& out, std::uint16_t kind) {
  constexpr std::uint32_t kBuild = 0x0DBB;
  constexpr std::uint32_t kYear = 0x07CC;
  constexpr std::uint32_t kHistory = 0x41;
  constexpr std::uint32_t kOldestReader = 0x06;
  out.record(kBof, {kVersion8, kind, kBuild, kYear, kHistory, 0, kOldestReader, 0});
}

std::vector<std::uint64_t> write_sheets(RecordWriter& out, const BookWriting& book,
                                        Drawings& drawings, std::vector<NamedPlace>& places) {
  SheetsWriter writer(out, book, drawings, places);
  std::vector<std::uint64_t> beginnings;
  for (const auto& sheet : book.book.sheets()) beginnings.push_back(writer.write(*sheet));
  return beginnings;
}

}  // namespace engine::xls
