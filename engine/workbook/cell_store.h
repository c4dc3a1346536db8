// The cells of one sheet: rows in order, each a run of cells in column order.
//
// Cells lie in blocks that a row takes its run from; a run that grows moves to twice the room. Rows
// written one after the other get the width of the row before, and the newest run grows and
// shrinks in place, so that a table filled row by row wastes nothing. Appending is constant time,
// any other access is a binary search over rows and one over the row's cells.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "engine/workbook/cell.h"

namespace engine {

// One row. `properties` is the number of its entry in the sheet's row properties, plus one.
struct Row {
  Cell* cells = nullptr;
  std::uint32_t number = 0;
  std::uint32_t properties = 0;
  std::uint16_t count = 0;
  std::uint16_t capacity = 0;

  std::span<Cell> span() { return {cells, count}; }
  std::span<const Cell> span() const { return {cells, count}; }
};

class CellStore {
 public:
  CellStore() = default;
  CellStore(CellStore&&) noexcept = default;
  CellStore& operator=(CellStore&&) noexcept = default;
  CellStore(const CellStore& other);
  CellStore& operator=(const CellStore& other) { return *this = CellStore(other); }
  ~CellStore() = default;

  // The rows that hold cells or have properties, ascending. Some may hold no cell.
  std::span<const Row> rows() const { return rows_; }
  std::span<Row> rows() { return rows_; }

  const Row* find_row(int row) const;
  Row* find_row(int row);
  const Cell* find(int row, int column) const {
    const Cell* next = near_cursor(row, column);
    return next ? next : search(row, column);
  }
  Cell* find(int row, int column) {
    return const_cast<Cell*>(static_cast<const CellStore*>(this)->find(row, column));
  }

  // The row or cell at the place; made, empty or blank with format 0, when there is none yet.
  Row& row_at(int row);
  Cell& at(int row, int column);
  Cell& at(Row& row, int column);

  void erase(int row, int column);

  // The smallest rectangle around all cells; false when there is none.
  bool used_range(CellRange* range) const;

  std::size_t cell_count() const;

 private:
  // The cell if it is the one found last or the next of its row.
  const Cell* near_cursor(int row, int column) const {
    if (cursor_ >= rows_.size()) return nullptr;
    const Row& last = rows_[cursor_];
    if (last.number != static_cast<std::uint32_t>(row)) return nullptr;
    for (std::size_t near = cell_cursor_; near < cell_cursor_ + 2 && near < last.count; ++near)
      if (last.cells[near].column == column) return &last.cells[cell_cursor_ = near];
    return nullptr;
  }
  const Cell* search(int row, int column) const;
  std::size_t lower_bound(std::uint32_t row) const;
  Cell* allocate(std::size_t count);
  void grow(Row& row);
  bool is_newest(const Row& row) const { return row.cells + row.capacity == free_; }

  std::vector<Row> rows_;
  std::vector<std::unique_ptr<Cell[]>> blocks_;
  Cell* free_ = nullptr;  // first unused cell of the newest block
  Cell* block_end_ = nullptr;
  // The row and its cell found last: most calls ask for them or the next.
  mutable std::size_t cursor_ = 0;
  mutable std::size_t cell_cursor_ = 0;
};

}  // namespace engine
