// Operations of a book that load and save it.
#include <algorithm>

#include "engine/api/book_object.h"
#include "engine/api/messages.h"
#include "engine/package/source.h"
#include "engine/text/fold.h"
#include "engine/text/wide.h"

namespace engine::api {

namespace {

// What the path's end promises; null when the codec knows no such end.
const FileEnding* ending_of(std::string_view path, const Codec& codec) {
  const std::string folded = fold_case(path);
  const auto found = std::ranges::find_if(
      codec.endings, [&](const FileEnding& one) { return folded.ends_with(one.text); });
  return found == codec.endings.end() ? nullptr : &*found;
}

// A sheet that is not in memory whole may hold any.
bool may_hold_formula(const Sheet& sheet) {
  if (sheet.kind != SheetKind::kWorksheet || sheet.loading == Loading::kMissing) return false;
  if (sheet.loading != Loading::kRead) return true;
  for (const Row& row : sheet.contents().cells.rows())
    for (const Cell& cell : row.span())
      if (sheet.contents().is_formula(cell)) return true;
  return false;
}

}  // namespace

bool BookObject::take_paths(const wchar_t* path, const wchar_t* temp_path,
                            LoadRequest* request) const {
  request->path = to_utf8(path);
  request->temp_path = to_utf8(temp_path);
  return !request->path.empty() || book_.refuse(false, messages::empty("file name"));
}

bool BookObject::take_rows(int first, int last, std::optional<CellRange>* rows) const {
  const Grid& grid = book_.workbook().limits.grid;
  if (first < 0 || first >= grid.rows) return book_.refuse(false, messages::row(first, grid));
  if (last < -1) return book_.refuse(false, messages::row(last, grid));
  const int end = last == -1 ? grid.rows - 1 : std::min(last, grid.rows - 1);
  if (first > end) return book_.refuse(false, messages::row_order(first, last));
  *rows = CellRange{first, end, 0, grid.columns - 1};
  return true;
}

bool BookObject::load_with(const LoadRequest& request) {
  BookContents contents;
  try {
    contents = load_contents(book_.codec(), request);
    if (!choose_sheet(request, contents)) return false;
  } catch (const package::FileTargetError& error) {
    return book_.refuse(false, messages::file(request.temp_path) + error.what());
  } catch (const package::FileError& error) {
    return book_.refuse(false, source_name(request) + error.what());
  }
  saved_.reset();
  book_.exchange(std::move(contents));
  return true;
}

bool BookObject::choose_sheet(const LoadRequest& request, BookContents& contents) {
  if (!request.sheet) return true;
  const auto& sheets = contents.workbook->sheets();
  if (!book_.check_index("sheet", *request.sheet, sheets.size())) return false;
  Sheet& chosen = *sheets[static_cast<std::size_t>(*request.sheet)];
  if (chosen.kind != SheetKind::kWorksheet)
    return book_.refuse(false, messages::not_worksheet(*request.sheet));
  for (const auto& sheet : sheets)
    if (sheet->kind == SheetKind::kWorksheet && sheet->loading == Loading::kUnread)
      sheet->loading = Loading::kExcluded;
  chosen.loading = Loading::kUnread;
  if (request.rows) {
    chosen.loading = Loading::kPartly;
    chosen.loaded_rows = *request.rows;
  }
  contents.document->read_sheet(*contents.workbook, chosen);
  return true;
}

bool BookObject::load(const wchar_t* path, const wchar_t* tempFile) {
  return book_.run_always(false, [&] {
    LoadRequest request;
    return take_paths(path, tempFile, &request) && load_with(request);
  });
}

bool BookObject::loadRaw(const char* data, unsigned size, int sheetIndex, int firstRow,
                         int lastRow) {
  return book_.run_always(false, [&] {
    if (!data || size == 0) return book_.refuse(false, messages::empty("workbook data"));
    LoadRequest request;
    request.bytes = {data, size};
    if (sheetIndex != -1) {
      request.sheet = sheetIndex;
      if (firstRow >= 0 && !take_rows(firstRow, lastRow, &request.rows)) return false;
    }
    return load_with(request);
  });
}

bool BookObject::loadSheet(const wchar_t* path, int sheetIndex, const wchar_t* tempFile) {
  return book_.run_always(false, [&] {
    LoadRequest request;
    request.sheet = sheetIndex;
    return take_paths(path, tempFile, &request) && load_with(request);
  });
}

bool BookObject::loadPartially(const wchar_t* path, int sheetIndex, int firstRow, int lastRow,
                               const wchar_t* tempFile) {
  return book_.run_always(false, [&] {
    LoadRequest request;
    request.sheet = sheetIndex;
    return take_paths(path, tempFile, &request) && take_rows(firstRow, lastRow, &request.rows) &&
           load_with(request);
  });
}

bool BookObject::loadInfo(const wchar_t* path) {
  return book_.run_always(false, [&] {
    LoadRequest request;
    request.info_only = true;
    return take_paths(path, nullptr, &request) && load_with(request);
  });
}

// Saving.

bool BookObject::check_savable() const {
  const auto& sheets = book_.workbook().sheets();
  if (sheets.empty()) return book_.refuse(false, messages::no_sheets());
  const bool any_visible = std::ranges::any_of(
      sheets, [](const auto& sheet) { return sheet->visibility == SheetVisibility::kVisible; });
  return any_visible || book_.refuse(false, messages::every_sheet_hidden());
}

// Cells that were written, and sheets that a 3-D reference has lost or won, may feed formulas, also
// ones of sheets that nobody has read: their cached values may be old. Whoever opens the file
// calculates them.
bool BookObject::values_may_be_old() const {
  const BookContents& contents = book_.contents();
  return contents.values_changed && contents.formulas_possible &&
         std::ranges::any_of(book_.workbook().sheets(),
                             [](const auto& sheet) { return may_hold_formula(*sheet); });
}

bool BookObject::save(const wchar_t* path, bool) {
  return run(false, [&] {
    const std::string target = to_utf8(path);
    if (target.empty()) return book_.refuse(false, messages::empty("file name"));
    if (!check_savable()) return false;
    // A file that was filled from a template and is saved as a workbook is one.
    const FileEnding* ending = ending_of(target, book_.codec());
    const bool dropped = book_.contents().template_from_file && ending && !ending->is_template;
    SaveOptions options;
    if (ending) options.with_macros = ending->with_macros;
    options.as_template = book_.workbook().is_template && !dropped;
    options.calculate = values_may_be_old();
    try {
      book_.document().settle_tables(book_.workbook());
      package::FileOutput output(target);
      book_.document().save(book_.workbook(), options, output);
      output.commit();
      return true;
    } catch (const package::FileTargetError& error) {
      return book_.refuse(false, messages::file(target) + error.what());
    }
  });
}

bool BookObject::saveRaw(const char** data, unsigned* size) {
  return run(false, [&] {
    if (!check_savable()) return false;
    SaveOptions options;
    options.as_template = book_.workbook().is_template;
    options.calculate = values_may_be_old();
    saved_.reset();
    book_.document().settle_tables(book_.workbook());
    auto output = std::make_unique<package::MemoryOutput>();
    book_.document().save(book_.workbook(), options, *output);
    saved_ = std::move(output);
    if (data) *data = saved_->view().data();
    if (size) *size = static_cast<unsigned>(saved_->view().size());
    return true;
  });
}

}  // namespace engine::api
