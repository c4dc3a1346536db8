#include "tests/fuzz/book_fuzz.h"

#include <cstdlib>
#include <iostream>
#include <string_view>
#include <vector>

#include "tests/api/random_changes.h"
#include "tests/api/stage.h"

namespace {

using libxl::Book;
using libxl::Sheet;

constexpr int kChanges = 24;

void demand(bool holds, const Book& book) {
  if (holds) return;
  std::cerr << book.errorMessage() << '\n';
  std::abort();
}

void look_at_cells(Sheet& sheet) {
  for (int row = 0; row < kChangedRows; ++row) {
    sheet.rowHeight(row);
    for (int column = 0; column < kChangedColumns; ++column) {
      sheet.readStr(row, column);
      sheet.readNum(row, column);
      sheet.readFormula(row, column);
      sheet.readComment(row, column);
      sheet.isDate(row, column);
      sheet.colWidth(column);
      if (libxl::Format* format = sheet.cellFormat(row, column)) format->font()->name();
    }
  }
}

void look_at_lists(Sheet& sheet) {
  int place[4] = {};
  int more[2] = {};
  int sizes[4] = {};
  bool hidden = false;
  for (int i = 0; i < sheet.mergeSize(); ++i)
    sheet.merge(i, &place[0], &place[1], &place[2], &place[3]);
  for (int i = 0; i < sheet.hyperlinkSize(); ++i)
    sheet.hyperlink(i, &place[0], &place[1], &place[2], &place[3]);
  for (int i = 0; i < sheet.namedRangeSize(); ++i)
    sheet.namedRange(i, &place[0], &place[1], &place[2], &place[3], &more[0], &hidden);
  for (int i = 0; i < sheet.tableSize(); ++i)
    sheet.table(i, &place[0], &place[1], &place[2], &place[3], &more[0], &more[1]);
  for (int i = 0; i < sheet.pictureSize(); ++i)
    sheet.getPicture(i, &place[0], &place[1], &place[2], &place[3], &sizes[0], &sizes[1], &sizes[2],
                     &sizes[3]);
}

void look_at_pictures(Book& book) {
  const char* data = nullptr;
  unsigned size = 0;
  for (int i = 0; i < book.pictureSize(); ++i) book.getPicture(i, &data, &size);
}

// Worksheets that are not damaged.
std::vector<int> look_at(Book& book) {
  std::vector<int> whole;
  for (int i = 0; i < book.sheetCount(); ++i) {
    Sheet* const sheet = book.getSheet(i);
    if (!sheet || book.sheetType(i) != libxl::SheetWorksheet) continue;
    look_at_cells(*sheet);
    look_at_lists(*sheet);
    whole.push_back(i);
  }
  look_at_pictures(book);
  return whole;
}

// Changes of the list of sheets are drawn for books whose sheets are all there.
void change(Book& book, const std::vector<int>& sheets, std::uint32_t seed) {
  Lot lot(seed);
  const bool all = static_cast<int>(sheets.size()) == book.sheetCount();
  for (int i = 0; i < kChanges; ++i) {
    if (all) change_book(book, lot);
    else change_sheet(book, sheets[static_cast<std::size_t>(i) % sheets.size()], lot);
  }
}

}  // namespace

void fuzz::change_and_save(MakeBook make, const std::string& file, std::uint32_t seed) {
  const OwnedBook book(make());
  if (!book->loadRaw(file.data(), static_cast<unsigned>(file.size()))) {
    demand(std::string_view(book->errorMessage()) != "ok", *book);
    return;
  }
  const std::vector<int> sheets = look_at(*book);
  if (!sheets.empty() && seed != 0) change(*book, sheets, seed);
  const char* data = nullptr;
  unsigned size = 0;
  if (!book->saveRaw(&data, &size)) {
    demand(std::string_view(book->errorMessage()) != "ok", *book);
    return;
  }
  const OwnedBook again(make());
  demand(again->loadRaw(data, size), *again);
  demand(again->sheetCount() == book->sheetCount(), *again);
  for (const int sheet : sheets)
    if (sheet < book->sheetCount() && book->sheetType(sheet) == libxl::SheetWorksheet)
      demand(!book->getSheet(sheet) || again->getSheet(sheet), *again);
}
