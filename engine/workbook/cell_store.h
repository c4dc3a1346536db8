// The cells of one sheet: rows by number, each a run of cells in column order.
//
// Rows lie in pages of 64, found by the row's number, so that a row is made and found in constant
// time wherever it stands, and stays where it is. Pages hold at most 24 MiB, whatever the sheet.
//
// Cells lie in blocks that a row takes its run from; a run that grows moves to twice the room. The
// newest run grows and shrinks in place, and a new one begins as wide as the one before, so that a
// table filled row by row, in either direction, wastes nothing. Appending to a row is constant
// time, any other access a binary search in it.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iterator>
#include <limits>
#include <memory>
#include <span>
#include <vector>

#include "engine/formula/interval.h"
#include "engine/system/large_pages.h"
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
  static constexpr std::uint32_t kPageRows = 64;
  struct Page {
    std::uint64_t present = 0;  // a bit for each row that is there
    std::array<Row, kPageRows> rows;
  };
  using Pages = std::vector<std::unique_ptr<Page>>;

 public:
  // Goes through rows that are there, ascending. Rows must not be made meanwhile.
  class RowIterator {
   public:
    using value_type = Row;
    using difference_type = std::ptrdiff_t;

    RowIterator() = default;
    // At the first row from `row` on.
    RowIterator(const Pages& pages, std::uint32_t row)
        : pages_(&pages), page_(row / kPageRows), left_(~std::uint64_t{0} << row % kPageRows) {
      if (page_ < pages.size() && pages[page_]) left_ &= pages[page_]->present;
      else left_ = 0;
      leave_empty_pages();
    }

    const Row& operator*() const {
      return (*pages_)[page_]->rows[static_cast<std::size_t>(std::countr_zero(left_))];
    }
    const Row* operator->() const { return &**this; }
    RowIterator& operator++() {
      left_ &= left_ - 1;
      leave_empty_pages();
      return *this;
    }
    RowIterator operator++(int) {
      RowIterator before = *this;
      ++*this;
      return before;
    }
    bool operator==(const RowIterator&) const = default;

   private:
    void leave_empty_pages() {
      while (left_ == 0 && ++page_ < pages_->size())
        if (const Page* page = (*pages_)[page_].get()) left_ = page->present;
      if (left_ == 0) page_ = pages_->size();
    }

    const Pages* pages_ = nullptr;
    std::size_t page_ = 0;
    std::uint64_t left_ = 0;  // bits of the page's rows from here on
  };
  struct Rows {
    RowIterator first;
    RowIterator last;
    RowIterator begin() const { return first; }
    RowIterator end() const { return last; }
    bool empty() const { return first == last; }
  };

  CellStore() = default;
  ~CellStore() = default;
  CellStore(CellStore&&) noexcept = default;
  CellStore& operator=(CellStore&&) noexcept = default;
  // Each row of a copy has room for its cells and no more.
  CellStore(const CellStore& other);
  CellStore& operator=(const CellStore& other) { return *this = CellStore(other); }

  // The rows that hold cells or have properties, from `first` up to but not including `end`. Some
  // may hold no cell.
  Rows rows(std::uint32_t first = 0,
            std::uint32_t end = std::numeric_limits<std::uint32_t>::max()) const {
    return {RowIterator(pages_, first), RowIterator(pages_, end)};
  }

  const Row* find_row(int row) const { return row_in_page(row); }
  Row* find_row(int row) { return row_in_page(row); }
  const Cell* find(int row, int column) const {
    const Cell* next = near_cursor(row, column);
    return next ? next : search(row, column);
  }
  Cell* find(int row, int column) {
    return const_cast<Cell*>(static_cast<const CellStore*>(this)->find(row, column));
  }

  // The row or cell at the place; made, empty or blank with format 0, when there is none yet.
  Row& row_at(int row) {
    Row* found = row_in_page(row);
    return found ? *found : make_row(static_cast<std::uint32_t>(row));
  }
  Cell& at(int row, int column) { return at(row_at(row), column); }
  Cell& at(Row& row, int column) {
    if (!belongs_behind(row, column) || row.count == row.capacity) return insert(row, column);
    Cell made;
    made.column = static_cast<std::uint16_t>(column);
    return put_behind(row, made);
  }

  // Puts a cell behind the others of its row; false when it does not belong there.
  bool append(Row& row, const Cell& cell) {
    if (!belongs_behind(row, cell.column)) return false;
    if (row.count == row.capacity) grow(row);
    put_behind(row, cell);
    return true;
  }

  // Puts the cells of another store's row into the row of that number, which is made if need be.
  Row& copy_row(const Row& row);

  // Takes the cells of another store, which stay where they lie. Those of a row that has cells here
  // already come to `put` one by one. Of rows the other knows nothing else.
  void take_cells(CellStore&& other, const std::function<void(int row, const Cell&)>& put);

  // Erases the cells of a range; `leave` is told of each before. Needs no memory.
  void erase(const CellRange& range, const std::function<void(const Cell&)>& leave) noexcept;

  // Rows or columns that are inserted or removed. What allocates is done first and gives what the
  // exchange takes; until that nothing can be read differently, and afterwards a prepared move of
  // an earlier state is void. Cells that are removed, or pushed off the sheet, are dropped.
  struct PlacedCell {
    std::uint32_t row = 0;
    Cell cell;
  };
  class RowsMove {
    friend class CellStore;
    std::size_t kept = 0;  // pages in front, which stay
    Pages pages;
  };
  class ColumnsMove {
    friend class CellStore;
    struct Run {
      Row* row = nullptr;
      Cell* cells = nullptr;
      std::uint16_t count = 0;
    };
    formula::Move move;
    int size = 0;
    std::vector<Run> runs;  // of the rows that need a new one, ascending
  };
  // Inserted rows hold the cells of `look` and have properties from the number `properties` on, if
  // that is not 0.
  RowsMove prepare_rows(const formula::Move& move, int size, std::span<const Cell> look,
                        std::uint32_t properties);
  void exchange(RowsMove& moved) noexcept;
  // Inserted columns hold the cells of `added`, which come by row and column.
  ColumnsMove prepare_columns(const formula::Move& move, int size,
                              std::span<const PlacedCell> added);
  void exchange(ColumnsMove& moved) noexcept;

  // The smallest rectangle around all cells; false when there is none.
  bool used_range(CellRange* range) const;

  std::size_t cell_count() const;

 private:
  // The used range; the first row stands behind the last when there is no cell.
  struct Bounds {
    std::uint32_t row_first = std::numeric_limits<std::uint32_t>::max();
    std::uint32_t row_last = 0;
    std::uint16_t column_first = std::numeric_limits<std::uint16_t>::max();
    std::uint16_t column_last = 0;
    bool known = true;  // false once a cell at an edge was erased

    void enter(std::uint32_t row, std::uint16_t column) {
      row_first = std::min(row_first, row);
      row_last = std::max(row_last, row);
      column_first = std::min(column_first, column);
      column_last = std::max(column_last, column);
    }
    void enter(const Bounds& other) {
      row_first = std::min(row_first, other.row_first);
      row_last = std::max(row_last, other.row_last);
      column_first = std::min(column_first, other.column_first);
      column_last = std::max(column_last, other.column_last);
      known = known && other.known;
    }
    bool is_edge(std::uint32_t row, std::uint16_t column) const {
      return row == row_first || row == row_last || column == column_first || column == column_last;
    }
  };

  Row* row_in_page(int row) const {
    const auto number = static_cast<std::uint32_t>(row);
    const std::size_t page = number / kPageRows;
    if (page >= pages_.size() || !pages_[page]) return nullptr;
    const std::uint32_t place = number % kPageRows;
    return pages_[page]->present >> place & 1 ? &pages_[page]->rows[place] : nullptr;
  }
  // The cell if it is the one found last or the next of its row.
  const Cell* near_cursor(int row, int column) const {
    const Row* last = cursor_row_;
    if (!last || last->number != static_cast<std::uint32_t>(row)) return nullptr;
    const std::uint32_t near = cursor_;
    if (near < last->count && last->cells[near].column == column) return &last->cells[near];
    if (near + 1 >= last->count || last->cells[near + 1].column != column) return nullptr;
    return &last->cells[cursor_ = near + 1];
  }
  const Cell* search(int row, int column) const;
  static bool belongs_behind(const Row& row, int column) {
    return row.count == 0 || row.cells[row.count - 1].column < column;
  }
  // There is room. The other cells of the row are in the used range.
  Cell& put_behind(Row& row, const Cell& cell) {
    if (row.count == 0) used_.enter(row.number, cell.column);
    else if (used_.column_last < cell.column) used_.column_last = cell.column;
    return row.cells[row.count++] = cell;
  }
  Cell& insert(Row& row, int column);
  Row& make_row(std::uint32_t number);
  static Row& enter_row(Pages& pages, std::uint32_t number);
  Cell* allocate_run(std::size_t count);
  Cell* allocate(std::size_t count);
  void end_newest();
  void grow(Row& row);

  Pages pages_;
  std::vector<system::Items<Cell>> blocks_;
  Cell* free_ = nullptr;  // first unused cell of the newest block
  Cell* block_end_ = nullptr;
  Row* newest_ = nullptr;  // whose run ends at free_ and may change its size in place; or null
  mutable Bounds used_;
  // The row of the cell found last, or null, and the cell's place in it.
  mutable const Row* cursor_row_ = nullptr;
  mutable std::uint32_t cursor_ = 0;
};

}  // namespace engine
