// Feeds arbitrary bytes to the whole codec: a file that loads must save, and what was saved must
// load again with as many sheets.
#include <cstdlib>

#include "engine/package/output.h"
#include "engine/package/source.h"
#include "engine/workbook/workbook.h"
#include "engine/xlsx/document.h"
#include "tests/fuzz/package_entry.h"

namespace {

std::unique_ptr<engine::xlsx::Document> load(std::string_view bytes, engine::Workbook& book) {
  return engine::xlsx::Document::load(
      engine::package::Source::from_bytes({bytes.begin(), bytes.end()}), book);
}

// Reads every sheet that is not damaged and has it written anew.
void read_all(engine::xlsx::Document& document, engine::Workbook& book) {
  for (const auto& sheet : book.sheets()) {
    try {
      document.read_sheet(book, *sheet);
      if (sheet->kind == engine::SheetKind::kWorksheet) sheet->change();
    } catch (const engine::package::FileError&) {
      continue;
    }
  }
}

}  // namespace

void fuzz::decode(std::string_view bytes) {
  engine::Workbook book{engine::Limits()};
  const auto document = load(bytes, book);
  read_all(*document, book);
  engine::package::MemoryOutput output;
  document->save(book, {}, output);
  engine::Workbook again{engine::Limits()};
  load(output.view(), again);
  if (again.sheets().size() != book.sheets().size()) std::abort();
}
