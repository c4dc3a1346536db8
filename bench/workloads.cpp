// The workloads that the engine is measured by, each a whole process: see README.md beside this.
//
// It uses the engine as any program would, through platform/libxl/libxl.h, and takes the arguments
// that the programs it is compared with take.
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

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
  // Texts of the workloads stay inside two UTF-8 bytes a character.
  std::wstring text;
  for (std::size_t i = 0; i < utf8.size(); ++i) {
    const auto byte = static_cast<unsigned char>(utf8[i]);
    if (byte < 0x80) text.push_back(byte);
    else text.push_back(static_cast<wchar_t>((byte & 0x1F) << 6 | (utf8[++i] & 0x3F)));
  }
  return text;
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

std::vector<std::wstring> repeated_texts() {
  std::vector<std::wstring> texts;
  for (const std::string& text : bench::repeated_texts()) texts.push_back(wide(text));
  return texts;
}

void write_mixed(const char* path) {
  const BookPointer book = new_book();
  Sheet* sheet = book->addSheet(L"Sheet1");
  Format* date_format = book->addFormat();
  date_format->setNumFormat(book->addCustomNumFormat(L"yyyy-mm-dd"));
  const std::vector<std::wstring> texts = repeated_texts();
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

// Touches every cell and prints what a right reading adds up to.
void read_cells(const char* path) {
  const BookPointer book = new_book();
  if (!book->load(wide_path(path).c_str())) fail(*book);
  std::uint64_t numbers = 0;
  std::uint64_t strings = 0;
  std::uint64_t characters = 0;
  double sum = 0;
  for (int index = 0; index < book->sheetCount(); ++index) {
    Sheet* sheet = book->getSheet(index);
    if (!sheet) fail(*book);
    const int last_row = sheet->lastRow();
    const int last_column = sheet->lastCol();
    for (int row = sheet->firstRow(); row < last_row; ++row)
      for (int column = 0; column < last_column; ++column) {
        const libxl::CellType type = sheet->cellType(row, column);
        if (type == libxl::CellNumber) {
          ++numbers;
          sum += sheet->readNum(row, column);
        } else if (type == libxl::CellText) {
          ++strings;
          characters += std::wcslen(sheet->readStr(row, column));
        }
      }
  }
  std::printf("numbers %llu sum %.2f strings %llu characters %llu\n",
              static_cast<unsigned long long>(numbers), sum,
              static_cast<unsigned long long>(strings),
              static_cast<unsigned long long>(characters));
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
  const std::vector<std::wstring> texts = repeated_texts();
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

}  // namespace

int main(int argc, char** argv) {
  const std::string workload = argc > 1 ? argv[1] : "";
  if (workload == "w1" && argc == 3) write_numbers(argv[2]);
  else if (workload == "w2" && argc == 3) write_mixed(argv[2]);
  else if (workload == "w3" && argc == 3) read_cells(argv[2]);
  else if (workload == "w4" && argc == 4) change_cells(argv[2], argv[3]);
  else if (workload == "w6" && argc == 3) write_small_books(argv[2]);
  else if (workload == "w6raw" && argc == 2) write_small_books(nullptr);
  else if (workload == "w7" && argc == 3) write_formats(argv[2]);
  else {
    std::fputs(
        "usage: workloads w1|w2|w7 OUT   write a book\n"
        "       workloads w3 IN          read every cell of a book\n"
        "       workloads w4 IN OUT      change a hundred cells of a book\n"
        "       workloads w6 FOLDER      write two hundred small books\n"
        "       workloads w6raw          the same into memory\n",
        stderr);
    return 2;
  }
  return 0;
}
