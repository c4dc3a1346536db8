#include "engine/xls/book_write.h"

#include <algorithm>
#include <string>

#include "engine/package/compound_copy.h"
#include "engine/package/compound_writer.h"
#include "engine/text/fold.h"
#include "engine/xls/book_stream.h"
#include "engine/xls/drawing_write.h"
#include "engine/xls/globals_write.h"
#include "engine/xls/loaded_file.h"
#include "engine/xls/sheet_write.h"
#include "engine/xls/summary_write.h"

namespace engine::xls {

namespace {

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

namespace {

// Whether there are things that use colours of the palette and that nobody has looked into.
bool has_other_colors(const Workbook& book, const LoadedFile& file) {
  if (file.globals.drawings.exists() || file.globals.drawings.is_damaged()) return true;
  for (const auto& sheet : book.sheets())
    if (sheet->kind != SheetKind::kWorksheet) return true;
  const auto is_condition = [](const CarriedRecord& record) {
    return record.id == kCondition || record.id == kLaterCondition ||
           record.id == kConditionExtension;
  };
  return std::ranges::any_of(file.carried(), [&](const auto& substream) {
    return std::ranges::any_of(substream.second, is_condition);
  });
}

void lay_out(const Workbook& book, const LoadedFile* file, const SaveOptions& options,
             BookStream& stream) {
  static const FileStyles kNoStyles;
  static const LinkTable kNoLinks;
  const StyleNumbers styles(book, file ? file->globals.styles : kNoStyles,
                            file && has_other_colors(book, *file));
  TextNumbers texts(book.strings);
  LinkWriter links(book, file ? file->globals.links : kNoLinks);
  const BookWriting shared{book, file, options, styles, texts, links};
  const DrawingGroup no_group;
  const LoadedPictures no_pictures;
  Drawings drawings(book, file ? file->globals.drawings : no_group,
                    file ? file->pictures : no_pictures);
  RecordWriter sheets_out(stream.sheets);
  std::vector<NamedPlace> places;
  const std::vector<std::uint64_t> beginnings = write_sheets(sheets_out, shared, drawings, places);
  sheets_out.flush();
  RecordWriter globals_out(stream.globals);
  const std::vector<std::uint64_t> sheet_places = write_globals(globals_out, shared, drawings);
  globals_out.flush();
  for (std::size_t i = 0; i < beginnings.size() && i < sheet_places.size(); ++i)
    globals_out.patch32(sheet_places[i], beginnings[i] == kNowhere
                                             ? static_cast<std::uint32_t>(BookStream::kMax)
                                             : stream.place_of(beginnings[i]));
  for (const auto& [at, place] : places) sheets_out.patch32(at, stream.place_of(place));
}

}  // namespace

void write_new_book(const Workbook& book, const SaveOptions& options, std::int64_t created,
                    package::Output& output) {
  BookStream stream;
  lay_out(book, nullptr, options, stream);
  package::CompoundItem root;
  root.class_id = kWorkbookClass;
  package::CompoundWriter file(output, root);
  file.begin_stream(0, {.name = "Workbook"});
  stream.write(file);
  write_stream(file, "\x05SummaryInformation", summary(created));
  write_stream(file,
               "\x05"
               "DocumentSummaryInformation",
               document_summary());
  file.finish();
}

void write_loaded_book(const Workbook& book, const LoadedFile& file, const SaveOptions& options,
                       package::Output& output) {
  BookStream stream;
  lay_out(book, &file, options, stream);
  // A workbook of an older format beside this one, and signatures, which hold no longer.
  const auto leaves_out = [&](const package::CompoundEntry& entry) {
    constexpr std::string_view kLeftOut[] = {"Book", "_signatures", "_xmlsignatures"};
    return entry.folder == file.entry->folder &&
           std::ranges::any_of(kLeftOut, [&](std::string_view name) {
             return equal_ignoring_case(entry.item.name, name);
           });
  };
  package::copy_compound(file.container, *file.entry, output, leaves_out,
                         [&](package::CompoundWriter& made) { stream.write(made); });
}

}  // namespace engine::xls
