#include "engine/xls/loaded_file.h"

#include <algorithm>

#include "engine/package/file_error.h"
#include "engine/xls/drawing_pieces.h"
#include "engine/xls/sheet_reader.h"

namespace engine::xls {

namespace {

std::vector<CarriedRecord> find_carried(RecordReader reader) {
  constexpr std::uint16_t kFollow[] = {kSelection,          kPivotView,       kConditions,
                                       kCondition,          kLaterConditions, kLaterCondition,
                                       kConditionExtension, kChartLink};
  std::vector<CarriedRecord> found;
  try {
    if (!reader.next()) return found;
    pass_substream(reader, [&] {
      if (std::ranges::find(kFollow, reader.id()) != std::end(kFollow))
        found.push_back({reader.offset(), reader.id()});
    });
  } catch (const package::FileError&) {
    found.clear();  // a damaged sheet goes out as it is
  }
  return found;
}

}  // namespace

const std::map<std::uint64_t, std::vector<CarriedRecord>>& LoadedFile::carried() const {
  if (carried_) return *carried_;
  std::map<std::uint64_t, std::vector<CarriedRecord>> all;
  for (const std::uint64_t begin : ends) {
    RecordReader reader(stream, begin, globals.cipher);
    reader.end_at(end_of(begin));
    all.emplace(begin, find_carried(std::move(reader)));
  }
  return carried_.emplace(std::move(all));
}

SheetContents begin_contents(const Workbook& book) {
  SheetContents contents;
  contents.default_row_height = book.new_row_height;
  contents.page = book.new_page;
  return contents;
}

GoneDrawings drawings_of(const LoadedFile& file, const Workbook& book, const Sheet& sheet) try {
  constexpr std::size_t kShapesAt = 2 * kPieceHead;
  constexpr RowFilter kNoRows{1, 0};
  GoneDrawings gone;
  const auto part = file.sheets.find(&sheet);
  if (part == file.sheets.end() || part->second.is_copy || !file.globals.drawings.exists())
    return gone;
  RecordReader reader(file.stream, part->second.begin, file.globals.cipher);
  reader.end_at(std::min(part->second.limit, file.end_of(part->second.begin)));
  RecordReader records(reader);
  if (!records.next()) return gone;
  pass_substream(records, [&] {
    const std::string_view data = records.data();
    if (records.id() != kDrawing || data.size() < kShapesAt + 4) return;
    if (piece_of(data, 0).kind != PieceKind::kDrawing ||
        piece_of(data.substr(kPieceHead), kPieceHead).kind != PieceKind::kDrawingHead)
      return;
    ++gone.drawings;
    gone.shapes += package::get32(data, kShapesAt);
  });
  SheetFlags flags;
  const DrawingPart* drawing = &part->second.drawing;
  if (gone.drawings != 0 && !part->second.read && sheet.kind == SheetKind::kWorksheet) {
    Workbook scratch(book.limits);
    SheetContents contents = begin_contents(book);
    const std::uint32_t texts = book.strings.count_from_file();
    read_sheet(reader, {scratch, file.globals, sheet, texts, texts}, kNoRows, contents, flags);
    drawing = &flags.drawing;
  }
  const std::vector<StoredPicture>& stored = file.globals.drawings.pictures();
  for (const DrawnPicture& picture : drawing->pictures) {
    const std::size_t number = picture.stored;
    if (number != 0 && number <= stored.size() && stored[number - 1].blip_size != 0)
      gone.pictures.push_back(picture.stored);
  }
  return gone;
} catch (const package::FileError&) {
  return {};
}

std::unique_ptr<OutsideRows> read_outside_rows(const LoadedFile& file, const Workbook& book,
                                               const Sheet& sheet) {
  auto outside = std::make_unique<OutsideRows>(book);
  SheetContents contents = begin_contents(book);
  SheetFlags flags;
  const RowFilter filter{sheet.loaded_rows.row_first, sheet.loaded_rows.row_last, true};
  const SheetPart& known = file.sheets.at(&sheet);
  RecordReader reader(file.stream, known.begin, file.globals.cipher, sheet.name());
  reader.end_at(known.limit);
  const std::uint32_t texts = book.strings.count_from_file();
  read_sheet(reader, {outside->texts, file.globals, sheet, texts, texts}, filter, contents, flags);
  outside->rows.take(std::move(contents));
  return outside;
}

}  // namespace engine::xls
