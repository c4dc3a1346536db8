// Formula tokens become text or are refused. Half of the bytes are constants behind them.
#include <cstdlib>

#include "engine/workbook/sheet.h"
#include "engine/xls/tokens_read.h"
#include "tests/fuzz/package_entry.h"

void fuzz::decode(std::string_view bytes) {
  using namespace engine;  // NOLINT(google-build-using-namespace): a target of one file
  const Sheet sheet("It's");
  xls::LinkTable links;
  links.sheets = {&sheet, nullptr};
  links.books.resize(3);
  links.books[0].kind = xls::LinkedBook::Kind::kOwn;
  links.books[1].number = 1;
  links.books[1].sheets = {"Far away"};
  links.books[1].names = {{"Rate", 1}};
  links.books[2].kind = xls::LinkedBook::Kind::kAddIn;
  links.books[2].names = {{"EDATE", 0}};
  links.entries = {{0, 0, 0}, {0, 0, 1}, {1, 0, 0}, {1, -2, -2}, {2, -2, -2}, {9, 9, 9}};
  links.names = {{"Net", 0}, {"Local", 1}};
  const std::size_t half = bytes.size() / 2;
  xls::TokenReader reader(links, {65536, 256});
  for (const std::size_t cut : {half, bytes.size()}) {
    if (!reader.read(bytes.substr(0, cut), bytes.substr(cut), {&sheet, {100, 7}})) continue;
    if (reader.text().size() > 65535) std::abort();
    if (!Grid{65536, 256}.holds(reader.furthest().row, reader.furthest().column)) std::abort();
  }
}
