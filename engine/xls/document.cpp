#include "engine/xls/document.h"

#include <algorithm>
#include <ctime>
#include <utility>
#include <vector>

#include "engine/package/file_error.h"
#include "engine/workbook/cell_ranges.h"
#include "engine/xls/book_write.h"
#include "engine/xls/carried_moves.h"
#include "engine/xls/drawing_read.h"
#include "engine/xls/fields.h"
#include "engine/xls/older_book.h"
#include "engine/xls/pivot_sources.h"
#include "engine/xls/record_merge.h"
#include "engine/xls/record_reader.h"
#include "engine/xls/record_writer.h"
#include "engine/xls/records.h"
#include "engine/xls/sheet_reader.h"

namespace engine::xls {

namespace {

// What a book of this kind has where its file says nothing of it.
void begin_book(Workbook& book) {
  FontRecord font;
  font.name = "Arial";
  font.size = 10;
  book.styles = Styles(std::move(font));
  book.styles.limits = book.limits.styles;
  book.new_row_height = 12.75;
  PageSetup& page = book.new_page;
  page.left_margin = page.right_margin = 0.75;
  page.top_margin = page.bottom_margin = 1;
  page.header_margin = page.footer_margin = 0.5;
}

bool is_begin(const LoadedFile& file, std::uint64_t place) try {
  RecordReader reader(file.stream, place, file.globals.cipher);
  return reader.next() && reader.id() == kBof;
} catch (const package::FileError&) {
  return false;
}

// Where substreams begin behind the globals, which the reader has passed.
std::vector<std::uint32_t> find_begins(RecordReader& reader) {
  std::vector<std::uint32_t> begins;
  try {
    while (reader.next()) {
      if (reader.id() != kBof) continue;
      begins.push_back(static_cast<std::uint32_t>(reader.offset()));
      pass_substream(reader, [] {});
    }
  } catch (const package::FileError&) {
    // What is whole in front of the damage counts.
  }
  return begins;
}

// Sheets stand in their order. One that does not begin where the file says is found by that, if no
// beginning is damaged itself.
void find_lost_sheets(LoadedFile& file, RecordReader& reader) {
  std::vector<std::uint32_t>& told = file.globals.sheets;
  const auto is_lost = [&](std::uint32_t place) { return !is_begin(file, place); };
  if (std::ranges::none_of(told, is_lost)) return;
  const std::vector<std::uint32_t> begins = find_begins(reader);
  if (begins.size() != told.size()) return;
  for (std::size_t i = 0; i < told.size(); ++i)
    if (is_lost(told[i])) told[i] = begins[i];
}

// Has a copy be none of the selected tabs in any window beside the first, which is the model's.
void deselect(const LoadedFile& file, const Sheet& original, SheetPart& copy) {
  if (copy.other_windows == kNowhere) return;
  RecordReader reader(file.stream, copy.begin, file.globals.cipher, original.name());
  reader.end_at(copy.limit);
  reader.go_to(copy.other_windows);
  while (reader.next() && reader.id() != kEof && reader.id() != kUserViewBegin) {
    if (reader.id() == kBof) pass_substream(reader, [] {});
    if (reader.id() != kWindow2 || reader.data().size() < 2) continue;
    std::string data(reader.data());
    put16(data.data(), Fields(data).take16() & ~(kTabSelected | kTabActive));
    copy.edits[reader.offset()] = std::move(data);
  }
}

}  // namespace

std::unique_ptr<Document> Document::make_new(Workbook& book) {
  begin_book(book);
  std::unique_ptr<Document> made(new Document);
  made->created_ = std::time(nullptr);
  return made;
}

std::unique_ptr<Document> Document::load(std::shared_ptr<const package::Source> source,
                                         Workbook& book, LoadScope scope) {
  begin_book(book);
  std::unique_ptr<Document> made(new Document);
  made->open(std::move(source));
  if (is_older(made->file_->stream)) {
    PresentBook present = present_book(made->file_->container, *made->file_->entry);
    made->lost_ = std::move(present.lost);
    made->open(std::move(present.file));
  }
  LoadedFile& file = *made->file_;
  RecordReader reader(file.stream, 0);
  read_globals(reader, scope, book, file.globals);
  if (scope == LoadScope::kEverything) find_lost_sheets(file, reader);
  for (std::size_t i = 0; i < book.sheets().size(); ++i) {
    file.sheets[book.sheets()[i].get()].begin = file.globals.sheets[i];
    file.ends.insert(file.globals.sheets[i]);
  }
  file.globals.drawings.look_into(file.stream, file.globals.cipher);
  made->part_sheets(book);
  made->look_at_tabs(book);
  return made;
}

void Document::open(std::shared_ptr<const package::Source> source) {
  file_ = std::make_unique<LoadedFile>(package::CompoundFile(std::move(source)));
  // What lies in a folder is a document that is embedded.
  file_->entry = file_->container.find_stream(kStreams);
  if (!file_->entry) package::throw_damaged("compound file", "stream \"Workbook\" is missing");
  file_->stream = file_->container.open(*file_->entry);
}

void Document::part_sheets(const Workbook& book) {
  std::vector<SheetPart*> parts;
  std::vector<std::uint32_t> begins;
  for (const auto& sheet : book.sheets()) {
    if (sheet->kind != SheetKind::kWorksheet) continue;
    parts.push_back(&file_->sheets.at(sheet.get()));
    begins.push_back(parts.back()->begin);
  }
  const std::vector<std::uint64_t> limits = limits_of(begins, file_->stream.size());
  for (std::size_t i = 0; i < parts.size(); ++i) parts[i]->limit = limits[i];
}

// Two things that concern the book stand in its sheets: how references are written, the same in
// all, and which tabs are selected. For sheets that are read later on that comes with them.
void Document::look_at_tabs(Workbook& book) {
  bool has_mode = false;
  std::uint64_t budget = file_->stream.size() / 4;  // as many records as the stream can hold
  for (const auto& sheet : book.sheets()) {
    if (sheet->kind == SheetKind::kWorksheet && has_mode) continue;
    try {
      RecordReader reader(file_->stream, file_->sheets.at(sheet.get()).begin,
                          file_->globals.cipher);
      bool has_window = false;
      while (budget > 0 && reader.next() && reader.id() != kEof && reader.id() != kDimensions) {
        --budget;
        Fields in(reader.data());
        if (reader.id() == kReferenceMode && sheet->kind == SheetKind::kWorksheet) {
          book.r1c1 = file_->r1c1 = in.take16() == 0;
          has_mode = true;
          break;
        }
        if (reader.id() != kWindow2) continue;
        if (std::exchange(has_window, true)) {
          file_->sheets.at(sheet.get()).other_windows = reader.offset();
          break;
        }
        sheet->selected = (in.take16() & kTabSelected) != 0;
      }
    } catch (const package::FileError&) {
      continue;  // told when the sheet is read
    }
  }
}

void Document::read_sheet(Workbook& book, Sheet& sheet) {
  if (!file_ || sheet.kind != SheetKind::kWorksheet) return;
  const auto known = file_->sheets.find(&sheet);
  if (known == file_->sheets.end() || known->second.read) return;
  SheetPart& part = known->second;
  SheetContents contents = begin_contents(book);
  RowFilter filter;
  if (sheet.loading == Loading::kPartly)
    filter = {sheet.loaded_rows.row_first, sheet.loaded_rows.row_last, false, true};
  SheetFlags flags;
  RecordReader reader(file_->stream, part.begin, file_->globals.cipher, sheet.name());
  reader.end_at(part.limit);
  const SheetContext context{book, file_->globals, sheet, book.strings.count_from_file(), 0};
  xls::read_sheet(reader, context, filter, contents, flags);
  part.read = true;
  place_pictures(flags.drawing, file_->globals.drawings, file_->pictures, book.pictures, contents);
  sheet.comments_damage = sheet.drawing_damage = drawing_damage(flags.drawing, sheet);
  part.drawing = std::move(flags.drawing);
  sheet.take(std::move(contents));
  sheet.selected = flags.selected;
  part.other_windows = flags.other_windows;
  if (sheet.loading == Loading::kUnread) sheet.loading = Loading::kRead;
}

// Why nothing can be added to the drawing of a sheet; empty if it can.
std::string Document::drawing_damage(const DrawingPart& drawing, const Sheet& sheet) const {
  std::string what = drawing.damage;
  if (file_->globals.drawings.is_damaged()) what = "what all drawings share is damaged";
  return what.empty() ? what : "is damaged: Workbook, sheet \"" + sheet.name() + "\", " + what;
}

void Document::read_pictures(Workbook& book) {
  if (file_) file_->pictures.enter(file_->globals.drawings, book.pictures);
}

void Document::read_picture(Workbook& book, std::size_t index) {
  Picture& picture = book.pictures[index];
  if (!file_ || !picture.in_file) return;
  auto bytes = std::make_shared<const std::string>(
      file_->globals.drawings.picture(file_->pictures.stored_at(index) - 1));
  picture.header = read_picture_header(*bytes);
  picture.bytes = std::move(bytes);
  picture.in_file = false;
}

std::unique_ptr<OutsideRows> Document::read_outside(const Workbook& book,
                                                    const Sheet& sheet) const {
  return read_outside_rows(*file_, book, sheet);
}

std::vector<CellRange> Document::pivot_tables(const Workbook& /*book*/, const Sheet& sheet) const {
  return file_ ? pivot_ranges(*file_, sheet) : std::vector<CellRange>();
}

// A copy has the records of its original that go with cells.
std::vector<formula::TableChange> Document::copy_sheet(const Workbook& /*book*/,
                                                       const Sheet& original, Sheet& copy) {
  made_.clear();
  if (!file_) return {};
  const auto known = file_->sheets.find(&original);
  if (known == file_->sheets.end()) return {};
  SheetPart part = known->second;
  part.is_copy = true;
  part.drawing = {};
  deselect(*file_, original, part);
  made_.emplace(&copy, std::move(part));
  return {};
}

void Document::place_sheet(Sheet& sheet) noexcept {
  if (auto made = made_.extract(&sheet)) file_->sheets.insert(std::move(made));
}

// Formulas of sheets that are not read yet have lost what they say of it. A run of sheets of which
// it is an end goes on up to its neighbour.
void Document::remove_sheet(Workbook& book, Sheet& sheet, const FormulaEdit& /*edit*/) {
  if (!file_) return;
  file_->globals.drawings.drop(drawings_of(*file_, book, sheet));
  LinkTable& links = file_->globals.links;
  const auto number =
      static_cast<std::int16_t>(std::ranges::find(links.sheets, &sheet) - links.sheets.begin());
  const std::size_t position = book.position(sheet);
  const auto neighbour = [&](int step) {
    const Sheet* const next = book.sheets()[position + static_cast<std::size_t>(step)].get();
    return static_cast<std::int16_t>(std::ranges::find(links.sheets, next) - links.sheets.begin());
  };
  for (LinkedSheets& entry : links.entries) {
    const bool is_own =
        entry.book < links.books.size() && links.books[entry.book].kind == LinkedBook::Kind::kOwn;
    if (!is_own || entry.first == entry.last) continue;
    const Sheet* const other = links.sheet(entry.first == number ? entry.last : entry.first);
    if (!other || (entry.first != number && entry.last != number)) continue;
    const std::int16_t next = neighbour(book.position(*other) > position ? 1 : -1);
    if (static_cast<std::size_t>(next) >= links.sheets.size()) continue;
    (entry.first == number ? entry.first : entry.last) = next;
  }
  std::ranges::replace(links.sheets, static_cast<const Sheet*>(&sheet),
                       static_cast<const Sheet*>(nullptr));
  file_->sheets.erase(&sheet);
}

void Document::edit_formulas(Workbook& book, const FormulaEdit& edit) {
  if (!file_) return;
  if (auto edits = edited_sources(*file_, edit, book.limits.grid)) file_->edits.swap(*edits);
}

std::optional<MoveRefusal> Document::refusal_of_move(const Workbook& book, const Sheet& sheet,
                                                     const formula::Move& move) const {
  if (!file_) return std::nullopt;
  const auto part = file_->sheets.find(&sheet);
  if (part != file_->sheets.end() && move.kind == formula::Move::Kind::kInsert) {
    const Grid& grid = book.limits.grid;
    const int size = move.axis == formula::Axis::kRows ? grid.rows : grid.columns;
    MoveRefusal refusal;
    refusal.place =
        last_carried_shape(part->second.drawing, move.axis, std::max(move.at, size - move.count));
    if (refusal.place >= 0) return refusal;
  }
  for (const CellRange& range : pivot_ranges(*file_, sheet)) {
    const auto to = moved_range(range, move, book.limits.grid);
    const bool keeps_size =
        to && to->row_last - to->row_first == range.row_last - range.row_first &&
        to->column_last - to->column_first == range.column_last - range.column_first;
    if (keeps_size) continue;
    MoveRefusal refusal;
    refusal.kind = MoveRefusal::Kind::kPivotTable;
    refusal.range = range;
    return refusal;
  }
  return std::nullopt;
}

std::unique_ptr<CarriedMove> Document::prepare_move(Workbook& book, Sheet& sheet,
                                                    const formula::Move& move) {
  return file_ ? move_carried(*file_, book, sheet, move) : nullptr;
}

void Document::save(const Workbook& book, const SaveOptions& options, package::Output& output) {
  if (!lost_.empty())
    throw package::FileTargetError(
        "cannot be written: the Excel 5.0/95 workbook that was loaded has " + lost_ +
        ", which would be lost");
  if (file_) write_loaded_book(book, *file_, options, output);
  else write_new_book(book, options, created_, output);
}

}  // namespace engine::xls
