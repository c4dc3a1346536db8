// Feeds arbitrary bytes to the codec, as a file or as the stream in one: whatever loads can be read
// sheet by sheet, whole and in part.
#include <string>

#include "engine/package/source.h"
#include "engine/workbook/workbook.h"
#include "engine/xls/codec.h"
#include "tests/fuzz/package_entry.h"
#include "tests/fuzz/xls_file.h"

namespace {

using namespace engine;  // NOLINT(google-build-using-namespace): a target of one file

// Every text that a cell shows, so that a wrong number of one is found.
std::size_t look_at(const Workbook& book, const SheetContents& sheet) {
  std::size_t size = 0;
  std::string moved;
  std::size_t budget = 1000;
  for (const Row& row : sheet.cells.rows()) {
    for (const Cell& cell : row.span()) {
      const Value value = sheet.value(cell);
      if (value.kind == ValueKind::kText) size += book.strings[value.text()].size();
      const CellRecord* record = sheet.record(cell);
      if (!record || !record->has_formula() || budget == 0) continue;
      --budget;
      const CellAddress at{static_cast<int>(row.number), cell.column};
      size += sheet.formula(*record, at, book.limits.grid, moved).size();
    }
  }
  return size;
}

}  // namespace

void fuzz::decode(std::string_view bytes) {
  const std::string file = xls_file(bytes);
  for (const bool in_part : {false, true}) {
    Workbook book(xls::kCodec.limits);
    const auto document = xls::kCodec.load(package::Source::from_bytes({file.begin(), file.end()}),
                                           book, LoadScope::kEverything);
    for (const auto& sheet : book.sheets()) {
      try {
        if (in_part && sheet->kind == SheetKind::kWorksheet) {
          sheet->loading = Loading::kPartly;
          sheet->loaded_rows = {1, 3, 0, 255};
        }
        document->read_sheet(book, *sheet);
        look_at(book, sheet->contents());
        if (in_part && sheet->kind == SheetKind::kWorksheet) document->read_outside(book, *sheet);
      } catch (const package::FileError&) {
        continue;
      }
    }
  }
}
