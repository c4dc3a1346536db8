#include "engine/xls/document.h"

#include <algorithm>
#include <ctime>
#include <map>
#include <utility>

#include "engine/package/file_error.h"
#include "engine/xls/book_write.h"
#include "engine/xls/drawing_read.h"
#include "engine/xls/fields.h"
#include "engine/xls/record_reader.h"
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

SheetContents begin_contents(const Workbook& book) {
  SheetContents contents;
  contents.default_row_height = book.new_row_height;
  contents.page = book.new_page;
  return contents;
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
  const package::CompoundFile file(std::move(source));
  const package::CompoundEntry* entry = file.find_stream("Workbook");
  if (!entry) package::throw_damaged("compound file", "stream \"Workbook\" is missing");
  std::unique_ptr<Document> made(new Document);
  made->stream_ = file.open(*entry);
  RecordReader reader(made->stream_, 0);
  read_globals(reader, scope, book, made->globals_);
  for (std::size_t i = 0; i < book.sheets().size(); ++i)
    made->sheets_[book.sheets()[i].get()].begin = made->globals_.sheets[i];
  made->globals_.drawings.look_into(made->stream_, made->globals_.cipher);
  made->part_sheets(book);
  made->look_at_tabs(book);
  return made;
}

// Sheets share no record: of those that a file lets begin at one place the first has it.
void Document::part_sheets(const Workbook& book) {
  std::map<std::uint32_t, SheetPart*> begins;
  for (const auto& sheet : book.sheets()) {
    if (sheet->kind != SheetKind::kWorksheet) continue;
    SheetPart& part = sheets_.at(sheet.get());
    if (!begins.try_emplace(part.begin, &part).second) part.limit = part.begin;
  }
  std::uint64_t limit = stream_.size();
  for (auto sheet = begins.rbegin(); sheet != begins.rend(); ++sheet) {
    sheet->second->limit = limit;
    limit = sheet->first;
  }
}

// Two things that concern the book stand in its sheets: how references are written, the same in
// all, and which tabs are selected. For sheets that are read later on that comes with them.
void Document::look_at_tabs(Workbook& book) {
  bool has_mode = false;
  std::uint64_t budget = stream_.size() / 4;  // as many records as the stream can hold
  for (const auto& sheet : book.sheets()) {
    if (sheet->kind == SheetKind::kWorksheet && has_mode) continue;
    try {
      RecordReader reader(stream_, sheets_.at(sheet.get()).begin, globals_.cipher);
      while (budget > 0 && reader.next() && reader.id() != kEof && reader.id() != kDimensions) {
        --budget;
        Fields in(reader.data());
        if (reader.id() == kReferenceMode && sheet->kind == SheetKind::kWorksheet) {
          book.r1c1 = in.take16() == 0;
          has_mode = true;
          break;
        }
        if (reader.id() == kWindow2) sheet->selected = (in.take16() & 0x200) != 0;
      }
    } catch (const package::FileError&) {
      continue;  // told when the sheet is read
    }
  }
}

void Document::read_sheet(Workbook& book, Sheet& sheet) {
  const auto known = sheets_.find(&sheet);
  if (known == sheets_.end() || known->second.read || sheet.kind != SheetKind::kWorksheet) return;
  SheetContents contents = begin_contents(book);
  SheetPart& part = known->second;
  RowFilter filter;
  if (sheet.loading == Loading::kPartly)
    filter = {sheet.loaded_rows.row_first, sheet.loaded_rows.row_last, false};
  SheetFlags flags;
  RecordReader reader(stream_, part.begin, globals_.cipher, sheet.name());
  reader.end_at(part.limit);
  const SheetContext context{book, globals_, sheet, book.strings.count_from_file(), 0};
  xls::read_sheet(reader, context, filter, contents, flags);
  part.read = true;
  place_pictures(flags.drawing, globals_.drawings, pictures_, book.pictures, contents);
  sheet.comments_damage = sheet.drawing_damage = drawing_damage(flags.drawing, sheet);
  part.drawing = std::move(flags.drawing);
  sheet.take(std::move(contents));
  sheet.selected = flags.selected;
  if (sheet.loading == Loading::kUnread) sheet.loading = Loading::kRead;
}

// Why nothing can be added to the drawing of a sheet; empty if it can.
std::string Document::drawing_damage(const DrawingPart& drawing, const Sheet& sheet) const {
  std::string what = drawing.damage;
  if (globals_.drawings.is_damaged()) what = "what all drawings share is damaged";
  return what.empty() ? what : "is damaged: Workbook, sheet \"" + sheet.name() + "\", " + what;
}

void Document::read_pictures(Workbook& book) { pictures_.enter(globals_.drawings, book.pictures); }

void Document::read_picture(Workbook& book, std::size_t index) {
  Picture& picture = book.pictures[index];
  if (!picture.in_file) return;
  auto bytes = std::make_shared<const std::string>(
      globals_.drawings.picture(pictures_.stored_at(index) - 1));
  picture.header = read_picture_header(*bytes);
  picture.bytes = std::move(bytes);
  picture.in_file = false;
}

std::unique_ptr<OutsideRows> Document::read_outside(const Workbook& book,
                                                    const Sheet& sheet) const {
  auto outside = std::make_unique<OutsideRows>(book);
  SheetContents contents = begin_contents(book);
  SheetFlags flags;
  const RowFilter filter{sheet.loaded_rows.row_first, sheet.loaded_rows.row_last, true};
  const SheetPart& known = sheets_.at(&sheet);
  RecordReader reader(stream_, known.begin, globals_.cipher, sheet.name());
  reader.end_at(known.limit);
  const std::uint32_t texts = book.strings.count_from_file();
  xls::read_sheet(reader, {outside->texts, globals_, sheet, texts, texts}, filter, contents, flags);
  outside->rows.take(std::move(contents));
  return outside;
}

// Formulas of sheets that are not read yet have lost what they say of it.
void Document::remove_sheet(Workbook& /*book*/, Sheet& sheet, const FormulaEdit& /*edit*/) {
  std::ranges::replace(globals_.links.sheets, static_cast<const Sheet*>(&sheet),
                       static_cast<const Sheet*>(nullptr));
  sheets_.erase(&sheet);
}

void Document::save(const Workbook& book, const SaveOptions& options, package::Output& output) {
  write_book(book, options, created_.value_or(0), output);
}

}  // namespace engine::xls
