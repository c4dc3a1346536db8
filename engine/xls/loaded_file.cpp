#include "engine/xls/loaded_file.h"

#include <algorithm>

#include "engine/package/file_error.h"
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
