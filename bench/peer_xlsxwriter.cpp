// The writing workloads as libxlsxwriter does them in its default mode, for comparison.
#include <xlsxwriter.h>

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "bench/stopwatch.h"
#include "bench/workload_data.h"

namespace {

lxw_row_t row_of(int row) { return static_cast<lxw_row_t>(row); }
lxw_col_t column_of(int column) { return static_cast<lxw_col_t>(column); }

void write_numbers(const char* path) {
  lxw_workbook* book = workbook_new(path);
  lxw_worksheet* sheet = workbook_add_worksheet(book, nullptr);
  for (int row = 0; row < 100000; ++row)
    for (int column = 0; column < 20; ++column) {
      const auto k = static_cast<std::uint64_t>(row) * 20 + static_cast<std::uint64_t>(column);
      worksheet_write_number(sheet, row_of(row), column_of(column), bench::number(k, column),
                             nullptr);
    }
  workbook_close(book);
}

void write_mixed(const char* path) {
  lxw_workbook* book = workbook_new(path);
  lxw_worksheet* sheet = workbook_add_worksheet(book, nullptr);
  lxw_format* date_format = workbook_add_format(book);
  format_set_num_format(date_format, "yyyy-mm-dd");
  const std::vector<std::string> texts = bench::repeated_texts();
  for (int row = 0; row < 100000; ++row)
    for (int column = 0; column < 10; ++column) {
      const auto k = static_cast<std::uint64_t>(row) * 10 + static_cast<std::uint64_t>(column);
      const lxw_row_t r = row_of(row);
      const lxw_col_t c = column_of(column);
      if (column < 4) {
        worksheet_write_number(sheet, r, c, bench::number(k, column), nullptr);
      } else if (column < 7) {
        const auto entry = static_cast<std::size_t>(bench::repeated_entry(k));
        worksheet_write_string(sheet, r, c, texts[entry].c_str(), nullptr);
      } else if (column < 9) {
        worksheet_write_string(sheet, r, c, bench::unique_text(row, column, k).c_str(), nullptr);
      } else {
        worksheet_write_number(sheet, r, c, bench::date(k), date_format);
      }
    }
  workbook_close(book);
}

void write_small_books(const std::string& folder) {
  const std::vector<std::string> texts = bench::repeated_texts();
  for (int file = 0; file < 200; ++file) {
    char name[16];
    std::snprintf(name, sizeof name, "/%03d.xlsx", file);
    lxw_workbook* book = workbook_new((folder + name).c_str());
    lxw_worksheet* sheet = workbook_add_worksheet(book, nullptr);
    for (int row = 0; row < 10; ++row)
      for (int column = 0; column < 5; ++column) {
        const auto k = static_cast<unsigned>(file * 50 + row * 5 + column);
        const auto entry = static_cast<std::size_t>(bench::repeated_entry(k));
        if (column < 3)
          worksheet_write_number(sheet, row_of(row), column_of(column), bench::number(k, column),
                                 nullptr);
        else
          worksheet_write_string(sheet, row_of(row), column_of(column), texts[entry].c_str(),
                                 nullptr);
      }
    workbook_close(book);
  }
}

void write_formats(const char* path) {
  lxw_workbook* book = workbook_new(path);
  lxw_worksheet* sheet = workbook_add_worksheet(book, nullptr);
  std::vector<lxw_format*> formats;
  for (int i = 0; i < 1000; ++i) {
    lxw_format* format = workbook_add_format(book);
    format_set_font_size(format, 8 + i % 10);
    if (i / 10 % 2 == 1) format_set_bold(format);
    if (i / 20 % 2 == 1) format_set_italic(format);
    format_set_pattern(format, LXW_PATTERN_SOLID);
    format_set_fg_color(format, 0x101010 + 0x080402 * static_cast<lxw_color_t>(i / 40 % 25));
    formats.push_back(format);
  }
  for (int row = 0; row < 1000; ++row)
    for (int column = 0; column < 10; ++column) {
      const auto k = static_cast<unsigned>(row * 10 + column);
      worksheet_write_number(sheet, row_of(row), column_of(column), bench::number(k, column),
                             formats[k % 1000]);
    }
  workbook_close(book);
}

void write_formulas(const char* path) {
  lxw_workbook* book = workbook_new(path);
  lxw_worksheet* sheet = workbook_add_worksheet(book, nullptr);
  workbook_add_worksheet(book, "Sheet2");
  workbook_add_worksheet(book, "Data");
  const std::vector<std::string> texts = bench::repeated_texts();
  char formula[bench::kFormulaSize];
  for (int row = 0; row < 50000; ++row)
    for (int column = 0; column < 10; ++column) {
      const auto k = static_cast<std::uint64_t>(row) * 10 + static_cast<std::uint64_t>(column);
      bench::write_formula(row, column, formula);
      const auto entry = static_cast<std::size_t>(bench::repeated_entry(k));
      if (column < 6)
        worksheet_write_formula_num(sheet, row_of(row), column_of(column), formula, nullptr,
                                    bench::number(k, column));
      else
        worksheet_write_formula_str(sheet, row_of(row), column_of(column), formula, nullptr,
                                    texts[entry].c_str());
    }
  workbook_close(book);
}

void write_in_any_order(const char* path) {
  const std::vector<std::uint32_t> cells = bench::shuffled_cells(500000, 100000 * 20);
  lxw_workbook* book = workbook_new(path);
  lxw_worksheet* shuffled = workbook_add_worksheet(book, nullptr);
  lxw_worksheet* from_last_row = workbook_add_worksheet(book, nullptr);
  bench::Stopwatch stopwatch;
  for (const std::uint32_t k : cells) {
    const int column = static_cast<int>(k % 20);
    worksheet_write_number(shuffled, k / 20, column_of(column), bench::number(k, column), nullptr);
  }
  const double random = stopwatch.lap();
  for (int row = 99999; row >= 0; --row)
    for (int column = 0; column < 5; ++column)
      worksheet_write_number(from_last_row, row_of(row), column_of(column),
                             bench::number(static_cast<unsigned>(row * 5 + column), column),
                             nullptr);
  const double upwards = stopwatch.lap();
  workbook_close(book);
  std::printf("random %.1f ms, upwards %.1f ms, saving %.1f ms\n", random, upwards,
              stopwatch.lap());
}

void write_long_texts(const char* path) {
  lxw_workbook* book = workbook_new(path);
  lxw_worksheet* sheet = workbook_add_worksheet(book, nullptr);
  const std::vector<std::string> phrases = bench::phrases();
  std::string text;
  for (int row = 0; row < 100000; ++row) {
    bench::make_long_text(row, phrases, text);
    worksheet_write_string(sheet, row_of(row), 0, text.c_str(), nullptr);
  }
  workbook_close(book);
}

void write_many_things(const char* path) {
  lxw_workbook* book = workbook_new(path);
  lxw_worksheet* first = nullptr;
  for (int number = 0; number < 1000; ++number) {
    lxw_worksheet* sheet = workbook_add_worksheet(book, nullptr);
    if (!first) first = sheet;
    for (int row = 0; row < 10; ++row)
      for (int column = 0; column < 10; ++column)
        worksheet_write_number(
            sheet, row_of(row), column_of(column),
            bench::number(static_cast<std::uint64_t>(number * 100 + row * 10 + column), column),
            nullptr);
  }
  for (int row = 0; row < 10000; ++row) {
    const std::string number = std::to_string(row);
    worksheet_merge_range(first, row_of(row + 20), 0, row_of(row + 20), 1, "", nullptr);
    worksheet_write_url(first, row_of(row + 20), 2, ("https://example.org/" + number).c_str(),
                        nullptr);
    if (row % 2 == 0)
      worksheet_write_comment(first, row_of(row + 20), 3, ("note " + number).c_str());
  }
  workbook_close(book);
}

}  // namespace

int main(int argc, char** argv) {
  const std::string workload = argc == 3 ? argv[1] : "";
  if (workload == "w1") write_numbers(argv[2]);
  else if (workload == "w2") write_mixed(argv[2]);
  else if (workload == "w6") write_small_books(argv[2]);
  else if (workload == "w7") write_formats(argv[2]);
  else if (workload == "w8") write_formulas(argv[2]);
  else if (workload == "w9") write_in_any_order(argv[2]);
  else if (workload == "w10") write_long_texts(argv[2]);
  else if (workload == "w12") write_many_things(argv[2]);
  else {
    std::fputs("usage: peer_xlsxwriter w1|w2|w7|w8|w9|w10|w12 OUT | w6 FOLDER\n", stderr);
    return 2;
  }
  return 0;
}
