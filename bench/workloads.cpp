// The workloads that the engine is measured by, each a whole process: see README.md beside this.
//
// It uses the engine as any program would, through platform/libxl/libxl.h, and takes the arguments
// that the programs it is compared with take.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "bench/stopwatch.h"
#include "bench/workload_data.h"
#include "platform/libxl/libxl.h"

namespace {

using libxl::Book;
using libxl::Format;
using libxl::Sheet;

struct Release {
  void operator()(Book* book) const { book->release(); }
};
using BookPointer = std::unique_ptr<Book, Release>;

BookPointer new_book() { return BookPointer(xlCreateXMLBookW()); }

std::wstring wide(const std::string& utf8) {
  // Texts of the workloads stay inside three UTF-8 bytes a character.
  std::wstring text;
  text.reserve(utf8.size());
  for (std::size_t i = 0; i < utf8.size(); ++i) {
    const auto byte = static_cast<unsigned char>(utf8[i]);
    const int more = byte >= 0xE0 ? 2 : byte >= 0xC0 ? 1 : 0;
    int character = more == 0 ? byte : byte & (0x3F >> more);
    for (int next = 0; next < more; ++next) character = character << 6 | (utf8[++i] & 0x3F);
    text.push_back(static_cast<wchar_t>(character));
  }
  return text;
}

std::vector<std::wstring> wide(const std::vector<std::string>& utf8) {
  std::vector<std::wstring> texts;
  texts.reserve(utf8.size());
  for (const std::string& text : utf8) texts.push_back(wide(text));
  return texts;
}

std::wstring wide_path(const char* path) { return std::filesystem::path(path).wstring(); }

[[noreturn]] void fail(const Book& book) {
  std::fprintf(stderr, "workloads: %s\n", book.errorMessage());
  std::exit(1);
}

void save(Book& book, const char* path) {
  if (!book.save(wide_path(path).c_str())) fail(book);
}

void write_numbers(const char* path) {
  const BookPointer book = new_book();
  Sheet* sheet = book->addSheet(L"Sheet1");
  for (int row = 0; row < 100000; ++row)
    for (int column = 0; column < 20; ++column) {
      const auto k = static_cast<std::uint64_t>(row) * 20 + static_cast<std::uint64_t>(column);
      sheet->writeNum(row, column, bench::number(k, column));
    }
  save(*book, path);
}

void write_mixed(const char* path) {
  const BookPointer book = new_book();
  Sheet* sheet = book->addSheet(L"Sheet1");
  Format* date_format = book->addFormat();
  date_format->setNumFormat(book->addCustomNumFormat(L"yyyy-mm-dd"));
  const std::vector<std::wstring> texts = wide(bench::repeated_texts());
  for (int row = 0; row < 100000; ++row)
    for (int column = 0; column < 10; ++column) {
      const auto k = static_cast<std::uint64_t>(row) * 10 + static_cast<std::uint64_t>(column);
      if (column < 4) {
        sheet->writeNum(row, column, bench::number(k, column));
      } else if (column < 7) {
        const auto entry = static_cast<std::size_t>(bench::repeated_entry(k));
        sheet->writeStr(row, column, texts[entry].c_str());
      } else if (column < 9) {
        sheet->writeStr(row, column, wide(bench::unique_text(row, column, k)).c_str());
      } else {
        sheet->writeNum(row, column, bench::date(k), date_format);
      }
    }
  save(*book, path);
}

// What the cells add up to when they are read right.
struct Totals {
  std::uint64_t numbers = 0;
  std::uint64_t strings = 0;
  std::uint64_t characters = 0;
  double sum = 0;

  // Touches every cell of a sheet.
  void add(Sheet& sheet) {
    const int last_row = sheet.lastRow();
    const int last_column = sheet.lastCol();
    for (int row = sheet.firstRow(); row < last_row; ++row)
      for (int column = 0; column < last_column; ++column) {
        const libxl::CellType type = sheet.cellType(row, column);
        if (type == libxl::CellNumber) {
          ++numbers;
          sum += sheet.readNum(row, column);
        } else if (type == libxl::CellText) {
          ++strings;
          characters += std::wcslen(sheet.readStr(row, column));
        }
      }
  }

  void print() const {
    std::printf("numbers %llu sum %.2f strings %llu characters %llu\n",
                static_cast<unsigned long long>(numbers), sum,
                static_cast<unsigned long long>(strings),
                static_cast<unsigned long long>(characters));
  }
};

void read_cells(const char* path, BookPointer book) {
  if (!book->load(wide_path(path).c_str())) fail(*book);
  Totals totals;
  for (int index = 0; index < book->sheetCount(); ++index) {
    Sheet* sheet = book->getSheet(index);
    if (!sheet) fail(*book);
    totals.add(*sheet);
  }
  totals.print();
}

void change_cells(const char* from, const char* to) {
  const BookPointer book = new_book();
  if (!book->load(wide_path(from).c_str())) fail(*book);
  Sheet* sheet = book->getSheet(0);
  if (!sheet) fail(*book);
  for (int i = 0; i < 100; ++i) {
    const int row = 997 * i;
    const int column = i % 9;
    if (column < 4) sheet->writeNum(row, column, i + 0.5);
    else sheet->writeStr(row, column, wide("changed " + std::to_string(i)).c_str());
  }
  save(*book, to);
}

// Two hundred small books: into files of a folder, or into memory when there is none.
void write_small_books(const char* folder) {
  const std::vector<std::wstring> texts = wide(bench::repeated_texts());
  for (int file = 0; file < 200; ++file) {
    const BookPointer book = new_book();
    Sheet* sheet = book->addSheet(L"Sheet1");
    for (int row = 0; row < 10; ++row)
      for (int column = 0; column < 5; ++column) {
        const auto k = static_cast<unsigned>(file * 50 + row * 5 + column);
        if (column < 3) sheet->writeNum(row, column, bench::number(k, column));
        else
          sheet->writeStr(row, column,
                          texts[static_cast<std::size_t>(bench::repeated_entry(k))].c_str());
      }
    if (folder) {
      char name[16];
      std::snprintf(name, sizeof name, "/%03d.xlsx", file);
      save(*book, (std::string(folder) + name).c_str());
    } else {
      const char* data = nullptr;
      unsigned size = 0;
      if (!book->saveRaw(&data, &size)) fail(*book);
    }
  }
}

void write_formats(const char* path) {
  const BookPointer book = new_book();
  Sheet* sheet = book->addSheet(L"Sheet1");
  book->setRgbMode(true);
  std::vector<Format*> formats;
  for (int i = 0; i < 1000; ++i) {
    libxl::Font* font = book->addFont();
    font->setSize(8 + i % 10);
    font->setBold(i / 10 % 2 == 1);
    font->setItalic(i / 20 % 2 == 1);
    Format* format = book->addFormat();
    format->setFont(font);
    format->setFillPattern(libxl::FillSolid);
    const int step = i / 40 % 25;
    format->setPatternForegroundColor(
        book->colorPack(0x10 + 8 * step, 0x10 + 4 * step, 0x10 + 2 * step));
    formats.push_back(format);
  }
  for (int row = 0; row < 1000; ++row)
    for (int column = 0; column < 10; ++column) {
      const auto k = static_cast<unsigned>(row * 10 + column);
      sheet->writeNum(row, column, bench::number(k, column), formats[k % 1000]);
    }
  save(*book, path);
}

void write_formulas(const char* path) {
  const BookPointer book = new_book();
  Sheet* sheet = book->addSheet(L"Sheet1");
  // The formulas refer to these.
  book->addSheet(L"Sheet2");
  book->addSheet(L"Data");
  const std::vector<std::wstring> texts = wide(bench::repeated_texts());
  wchar_t formula[bench::kFormulaSize];
  for (int row = 0; row < 50000; ++row)
    for (int column = 0; column < 10; ++column) {
      const auto k = static_cast<std::uint64_t>(row) * 10 + static_cast<std::uint64_t>(column);
      bench::write_formula(row, column, formula);
      const auto entry = static_cast<std::size_t>(bench::repeated_entry(k));
      const bool written =
          column < 6 ? sheet->writeFormulaNum(row, column, formula, bench::number(k, column))
                     : sheet->writeFormulaStr(row, column, formula, texts[entry].c_str());
      if (!written) fail(*book);
    }
  save(*book, path);
}

// Reads the text of every formula of the first sheet.
void read_formulas(const char* path) {
  const BookPointer book = new_book();
  if (!book->load(wide_path(path).c_str())) fail(*book);
  Sheet* sheet = book->getSheet(0);
  if (!sheet) fail(*book);
  std::uint64_t formulas = 0;
  std::uint64_t characters = 0;
  const int last_row = sheet->lastRow();
  const int last_column = sheet->lastCol();
  for (int row = sheet->firstRow(); row < last_row; ++row)
    for (int column = 0; column < last_column; ++column)
      if (const wchar_t* formula = sheet->readFormula(row, column)) {
        ++formulas;
        characters += std::wcslen(formula);
      }
  std::printf("formulas %llu characters %llu\n", static_cast<unsigned long long>(formulas),
              static_cast<unsigned long long>(characters));
}

// A fill ends with reading a cell, so that work which is put off until then counts as well.

void fill_at_random(Sheet& sheet, const std::vector<std::uint32_t>& cells) {
  for (const std::uint32_t k : cells) {
    const int column = static_cast<int>(k % 20);
    sheet.writeNum(static_cast<int>(k / 20), column, bench::number(k, column));
  }
  sheet.readNum(0, 0);
}

enum class Direction { kDownwards, kUpwards };

void fill_rows(Sheet& sheet, Direction direction) {
  constexpr int kRows = 100000;
  for (int i = 0; i < kRows; ++i) {
    const int row = direction == Direction::kDownwards ? i : kRows - 1 - i;
    for (int column = 0; column < 5; ++column)
      sheet.writeNum(row, column, bench::number(static_cast<unsigned>(row * 5 + column), column));
  }
  sheet.readNum(0, 0);
}

void write_in_any_order(const char* path) {
  const std::vector<std::uint32_t> cells = bench::shuffled_cells(500000, 100000 * 20);
  const BookPointer book = new_book();
  Sheet* shuffled = book->addSheet(L"Sheet1");
  Sheet* from_last_row = book->addSheet(L"Sheet2");
  bench::Stopwatch stopwatch;
  fill_at_random(*shuffled, cells);
  const double random = stopwatch.lap();
  fill_rows(*from_last_row, Direction::kUpwards);
  const double upwards = stopwatch.lap();
  save(*book, path);
  std::printf("random %.1f ms, upwards %.1f ms, saving %.1f ms\n", random, upwards,
              stopwatch.lap());
}

// The same rows downwards and upwards, by turns in books of their own; the best of five each.
void compare_directions() {
  double best[] = {1e9, 1e9};
  for (int round = 0; round < 5; ++round)
    for (const Direction direction : {Direction::kDownwards, Direction::kUpwards}) {
      const BookPointer book = new_book();
      Sheet* sheet = book->addSheet(L"Sheet1");
      bench::Stopwatch stopwatch;
      fill_rows(*sheet, direction);
      double& time = best[direction == Direction::kUpwards];
      time = std::min(time, stopwatch.lap());
    }
  std::printf("downwards %.1f ms, upwards %.1f ms\n", best[0], best[1]);
}

void write_long_texts(const char* path) {
  const BookPointer book = new_book();
  Sheet* sheet = book->addSheet(L"Sheet1");
  const std::vector<std::wstring> phrases = wide(bench::phrases());
  std::wstring text;
  for (int row = 0; row < 100000; ++row) {
    bench::make_long_text(row, phrases, text);
    sheet->writeStr(row, 0, text.c_str());
  }
  save(*book, path);
}

void read_first_rows(const char* path) {
  bench::Stopwatch stopwatch;
  const BookPointer book = new_book();
  if (!book->loadInfo(wide_path(path).c_str())) fail(*book);
  const double info = stopwatch.lap();
  if (!book->loadPartially(wide_path(path).c_str(), 0, 0, 99)) fail(*book);
  const double partial = stopwatch.lap();
  Totals totals;
  totals.add(*book->getSheet(0));
  totals.print();
  std::printf("info %.1f ms, partial %.1f ms\n", info, partial);
}

// A thousand small sheets; on the first one also merged ranges, links and notes.
void write_many_things(const char* path) {
  const BookPointer book = new_book();
  for (int number = 0; number < 1000; ++number) {
    Sheet* sheet = book->addSheet((L"Sheet" + std::to_wstring(number + 1)).c_str());
    for (int row = 0; row < 10; ++row)
      for (int column = 0; column < 10; ++column)
        sheet->writeNum(
            row, column,
            bench::number(static_cast<std::uint64_t>(number * 100 + row * 10 + column), column));
  }
  Sheet* sheet = book->getSheet(0);
  for (int row = 0; row < 10000; ++row) {
    const std::wstring number = std::to_wstring(row);
    if (!sheet->setMerge(row + 20, row + 20, 0, 1)) fail(*book);
    sheet->addHyperlink((L"https://example.org/" + number).c_str(), row + 20, row + 20, 2, 2);
    if (row % 2 == 0) sheet->writeComment(row + 20, 3, (L"note " + number).c_str(), L"", 0, 0);
  }
  save(*book, path);
}

// Rows of numbers with a formula each that refers to the row below. Then rows and columns come in
// the middle; what that takes is to be held against reading such a sheet.
void insert_into_a_big_sheet(const char* path) {
  constexpr int kRows = 100000;
  constexpr int kColumns = 10;
  const BookPointer book = new_book();
  Sheet* sheet = book->addSheet(L"Sheet1");
  for (int row = 0; row < kRows; ++row) {
    for (int column = 0; column < kColumns; ++column)
      sheet->writeNum(row, column,
                      bench::number(static_cast<std::uint64_t>(row) * kColumns +
                                        static_cast<std::uint64_t>(column),
                                    column));
    const std::wstring below = std::to_wstring(row + 2);
    sheet->writeFormulaNum(row, kColumns, (L"SUM(A" + below + L":J" + below + L")").c_str(), 1);
  }
  bench::Stopwatch stopwatch;
  if (!sheet->insertRow(50000, 50999)) fail(*book);
  const double rows = stopwatch.lap();
  if (!sheet->insertCol(3, 12)) fail(*book);
  const double columns = stopwatch.lap();
  save(*book, path);
  stopwatch.lap();
  const BookPointer again = new_book();
  if (!again->load(wide_path(path).c_str()) || !again->getSheet(0)) fail(*again);
  const double loading = stopwatch.lap();
  std::printf("rows %.1f ms, columns %.1f ms, loading %.1f ms\n", rows, columns, loading);
}

// A book of the binary format, which has fewer rows.
void write_binary(const char* path) {
  constexpr int kColumns = 20;
  const BookPointer book(xlCreateBookW());
  Sheet* sheet = book->addSheet(L"Sheet1");
  const std::vector<std::wstring> texts = wide(bench::repeated_texts());
  for (int row = 0; row < 60000; ++row)
    for (int column = 0; column < kColumns; ++column) {
      const auto k =
          static_cast<std::uint64_t>(row) * kColumns + static_cast<std::uint64_t>(column);
      if (column < 14) {
        sheet->writeNum(row, column, bench::number(k, column));
      } else if (column < 19) {
        const auto entry = static_cast<std::size_t>(bench::repeated_entry(k));
        sheet->writeStr(row, column, texts[entry].c_str());
      } else {
        sheet->writeStr(row, column, wide(bench::unique_text(row, column, k)).c_str());
      }
    }
  save(*book, path);
}

}  // namespace

int main(int argc, char** argv) {
  const std::string workload = argc > 1 ? argv[1] : "";
  if (workload == "w1" && argc == 3) write_numbers(argv[2]);
  else if (workload == "w2" && argc == 3) write_mixed(argv[2]);
  else if ((workload == "w3" || workload == "w10r") && argc == 3) read_cells(argv[2], new_book());
  else if (workload == "w4" && argc == 4) change_cells(argv[2], argv[3]);
  else if (workload == "w5w" && argc == 3) write_binary(argv[2]);
  else if (workload == "w5r" && argc == 3) read_cells(argv[2], BookPointer(xlCreateBookW()));
  else if (workload == "w6" && argc == 3) write_small_books(argv[2]);
  else if (workload == "w6raw" && argc == 2) write_small_books(nullptr);
  else if (workload == "w7" && argc == 3) write_formats(argv[2]);
  else if (workload == "w8" && argc == 3) write_formulas(argv[2]);
  else if (workload == "w8r" && argc == 3) read_formulas(argv[2]);
  else if (workload == "w9" && argc == 3) write_in_any_order(argv[2]);
  else if (workload == "w9rows" && argc == 2) compare_directions();
  else if (workload == "w10" && argc == 3) write_long_texts(argv[2]);
  else if (workload == "w11" && argc == 3) read_first_rows(argv[2]);
  else if (workload == "w12" && argc == 3) write_many_things(argv[2]);
  else if (workload == "w13" && argc == 3) insert_into_a_big_sheet(argv[2]);
  else {
    std::fputs(
        "usage: workloads w1|w2|w7|w8|w9|w10|w12|w13 OUT   write a book\n"
        "       workloads w3|w5r|w10r IN           read every cell of a book\n"
        "       workloads w4 IN OUT                change a hundred cells of a book\n"
        "       workloads w5w OUT                  write a book of the binary format\n"
        "       workloads w6 FOLDER                write two hundred small books\n"
        "       workloads w6raw                    the same into memory\n"
        "       workloads w8r IN                   read every formula of a book\n"
        "       workloads w9rows                   fill rows downwards and upwards\n"
        "       workloads w11 IN                   read the first hundred rows of a book\n",
        stderr);
    return 2;
  }
  return 0;
}
