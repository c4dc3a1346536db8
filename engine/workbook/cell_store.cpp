#include "engine/workbook/cell_store.h"

#include <algorithm>
#include <cassert>
#include <cstring>

namespace engine {

namespace {

constexpr std::size_t kFirstBlock = 64;
constexpr std::size_t kLargestBlock = std::size_t{1} << 16;
constexpr std::size_t kLargestRun = 16384;

// AnyCell is a cell that may be changed or one that may not.
template <class AnyCell>
AnyCell* first_from(std::span<AnyCell> cells, int column) {
  return std::ranges::lower_bound(cells, column, {}, &Cell::column).base();
}

}  // namespace

CellStore::CellStore(const CellStore& other) {
  for (const Row& row : other.rows_) {
    Row& made = row_at(static_cast<int>(row.number));
    made.properties = row.properties;
    for (const Cell& cell : row.span()) at(made, cell.column) = cell;
  }
}

std::size_t CellStore::lower_bound(std::uint32_t row) const {
  if (rows_.empty() || rows_.back().number < row) return rows_.size();
  for (std::size_t near = cursor_; near < std::min(cursor_ + 2, rows_.size()); ++near)
    if (rows_[near].number == row) return cursor_ = near;
  const auto found = std::ranges::lower_bound(rows_, row, {}, &Row::number);
  return cursor_ = static_cast<std::size_t>(found - rows_.begin());
}

const Row* CellStore::find_row(int row) const {
  const std::size_t position = lower_bound(static_cast<std::uint32_t>(row));
  const bool found =
      position < rows_.size() && rows_[position].number == static_cast<std::uint32_t>(row);
  return found ? &rows_[position] : nullptr;
}

Row* CellStore::find_row(int row) {
  return const_cast<Row*>(static_cast<const CellStore*>(this)->find_row(row));
}

const Cell* CellStore::search(int row, int column) const {
  const Row* at = find_row(row);
  if (!at) return nullptr;
  const Cell* found = first_from(at->span(), column);
  if (found == at->cells + at->count || found->column != column) return nullptr;
  cell_cursor_ = static_cast<std::size_t>(found - at->cells);
  return found;
}

Row& CellStore::row_at(int row) {
  const auto number = static_cast<std::uint32_t>(row);
  const std::size_t position = lower_bound(number);
  if (position < rows_.size() && rows_[position].number == number) return rows_[position];
  // The row before is complete as far as its writer knows: what it did not use is free again.
  if (position == rows_.size() && !rows_.empty() && is_newest(rows_.back())) {
    free_ -= rows_.back().capacity - rows_.back().count;
    rows_.back().capacity = rows_.back().count;
  }
  Row made;
  made.number = number;
  cursor_ = position;
  return *rows_.insert(rows_.begin() + static_cast<std::ptrdiff_t>(position), made);
}

Cell& CellStore::at(int row, int column) { return at(row_at(row), column); }

Cell& CellStore::at(Row& row, int column) {
  Cell* place = row.cells + row.count;
  if (row.count != 0 && row.cells[row.count - 1].column >= column) {
    place = first_from(row.span(), column);
    if (place->column == column) return *place;
  }
  if (row.count == row.capacity) {
    const std::ptrdiff_t offset = place - row.cells;
    grow(row);
    place = row.cells + offset;
  }
  std::copy_backward(place, row.cells + row.count, row.cells + row.count + 1);
  *place = Cell();
  place->column = static_cast<std::uint16_t>(column);
  ++row.count;
  return *place;
}

void CellStore::erase(int row, int column) {
  Row* at = find_row(row);
  if (!at) return;
  Cell* end = at->cells + at->count;
  Cell* cell = first_from(at->span(), column);
  if (cell == end || cell->column != column) return;
  std::copy(cell + 1, end, cell);
  --at->count;
}

void CellStore::grow(Row& row) {
  std::size_t wanted = std::max<std::size_t>(4, std::size_t{row.capacity} * 2);
  const auto position = static_cast<std::size_t>(&row - rows_.data());
  if (row.capacity == 0 && position > 0)
    wanted = std::max<std::size_t>(1, rows_[position - 1].count);
  wanted = std::min(wanted, kLargestRun);
  if (row.capacity != 0 && is_newest(row)) {
    const auto room = static_cast<std::size_t>(block_end_ - free_);
    const std::size_t more = std::min(wanted - row.capacity, room);
    free_ += more;
    row.capacity = static_cast<std::uint16_t>(row.capacity + more);
    if (more != 0) return;
  }
  Cell* moved = allocate(wanted);
  std::copy_n(row.cells, row.count, moved);
  row.cells = moved;
  row.capacity = static_cast<std::uint16_t>(wanted);
}

Cell* CellStore::allocate(std::size_t count) {
  assert(count <= kLargestRun);
  if (static_cast<std::size_t>(block_end_ - free_) < count) {
    const std::size_t doubled = kFirstBlock << std::min<std::size_t>(blocks_.size(), 10);
    const std::size_t size = std::max(count, std::min(doubled, kLargestBlock));
    blocks_.reserve(blocks_.size() + 1);
    blocks_.push_back(std::make_unique_for_overwrite<Cell[]>(size));
    free_ = blocks_.back().get();
    block_end_ = free_ + size;
  }
  Cell* taken = free_;
  free_ += count;
  return taken;
}

bool CellStore::used_range(CellRange* range) const {
  bool any = false;
  for (const Row& row : rows_) {
    if (row.count == 0) continue;
    const int number = static_cast<int>(row.number);
    const int first = row.cells[0].column;
    const int last = row.cells[row.count - 1].column;
    if (!any) *range = {number, number, first, last};
    range->row_last = number;
    range->column_first = std::min(range->column_first, first);
    range->column_last = std::max(range->column_last, last);
    any = true;
  }
  return any;
}

std::size_t CellStore::cell_count() const {
  std::size_t count = 0;
  for (const Row& row : rows_) count += row.count;
  return count;
}

}  // namespace engine
