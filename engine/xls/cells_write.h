// Writing the rows and cells of a sheet.
//
// Rows stand in blocks of 32: first what is known of each row, then the cells of all of them, then
// a record that tells where the cells of each row begin. Neighbours in a row that are short numbers
// or blank share a record. A short number has 30 bits: those of an integer or the upper ones of a
// double, either of them divided by a hundred or not.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/workbook/workbook.h"
#include "engine/xls/book_write.h"
#include "engine/xls/record_writer.h"
#include "engine/xls/stored_formulas.h"
#include "engine/xls/tokens_write.h"

namespace engine::xls {

// The short form of a number that has one.
std::optional<std::uint32_t> short_number(double value);

// Beside the cells of a sheet: rows that a partial load has left out, and formulas as the file has
// them. Either may be null.
struct StoredCells {
  const OutsideRows* outside = nullptr;
  StoredFormulas* formulas = nullptr;
};

class CellsWriter {
 public:
  CellsWriter(RecordWriter& out, const BookWriting& book, const Sheet& sheet,
              const StoredCells& stored = {});

  // The rows that are written; the last one is one past them. None when both are equal.
  std::uint32_t first_row() const { return first_row_; }
  std::uint32_t end_row() const { return end_row_; }
  std::size_t block_count() const { return block_count_; }
  // Of all cells; false when there are none.
  bool used_range(CellRange* range) const;

  // Gives the places of the blocks' last records in the output.
  std::vector<std::uint32_t> write();

 private:
  static constexpr std::uint32_t kBlockRows = 32;

  // Calls `visit` for each row that is written, with the contents that it is of.
  template <class Visit>
  void for_rows(std::uint32_t first, std::uint32_t end, const Visit& visit) const;
  static bool is_written(const SheetContents& contents, const Row& row);
  void write_row(const Row& row);
  void write_cells(const Row& row);
  std::size_t write_numbers(const Row& row, std::size_t from);
  std::size_t write_blanks(const Row& row, std::size_t from);
  void write_cell(const Row& row, const Cell& cell);
  void write_record(const Row& row, const Cell& cell);
  void write_cells_of_arrays(const Row& row);
  void write_array_cell(const Row& row, const Cell& cell, const CellRange& array);
  void write_array(const Row& row, const Cell& cell, const CellRecord& record,
                   const CellExtra& extra);
  const CellRange* array_at(CellAddress at) const;
  void write_formula(const Row& row, const Cell& cell, const CellRecord& record);
  void write_unread_formula(const Row& row, const Cell& cell, const CellRecord& record,
                            const CellExtra& extra);
  std::pair<std::string_view, std::string_view> tokens_of(std::uint32_t row, const Cell& cell,
                                                          std::string_view text, FormulaUse use);
  void put_formula(std::uint32_t row, const Cell& cell, const Value& value, std::string_view tokens,
                   std::string_view behind);
  void put_formula_text(const Value& value);
  void write_value(std::uint32_t row, const Cell& cell, const Value& value);
  std::uint32_t text_number(std::uint32_t text) const;
  std::string_view text_of(std::uint32_t text) const;
  const Workbook& book_of_texts() const;
  std::uint32_t error_number(std::uint32_t error, std::uint32_t row, const Cell& cell) const;
  char* begin_cell(char* at, std::uint16_t id, std::uint32_t size, std::uint32_t row,
                   const Cell& cell) const;
  [[noreturn]] void fail(std::uint32_t row, const Cell& cell, std::string_view what) const;

  RecordWriter& out_;
  const BookWriting& book_;
  const Sheet& sheet_;
  const StoredCells stored_;
  const SheetContents* contents_;  // of the row that is being written
  std::uint32_t first_row_ = 0;
  std::uint32_t end_row_ = 0;
  std::size_t block_count_ = 0;
  bool has_arrays_ = false;
  std::set<CellAddress> tables_;  // by their first cells, as far as they were written
  TokenWriter tokens_;
  Characters characters_;
  std::string moved_;  // a shared formula as its cell has it
};

}  // namespace engine::xls
