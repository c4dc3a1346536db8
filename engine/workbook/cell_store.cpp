#include "engine/workbook/cell_store.h"

#include <cassert>

namespace engine {

namespace {

constexpr std::size_t kFirstBlock = 64 * sizeof(Cell);
constexpr std::size_t kLargestRun = 16384;
constexpr std::size_t kLeastGrowth = 4;

// The first cell from the column on. AnyCell is a cell that may be changed or one that may not.
template <class AnyCell>
AnyCell* first_from(std::span<AnyCell> cells, int column) {
  return std::ranges::lower_bound(cells, column, {}, &Cell::column).base();
}

}  // namespace

CellStore::CellStore(const CellStore& other) : used_(other.used_) {
  pages_.resize(other.pages_.size());
  for (const Row& row : other.rows()) copy_row(row).properties = row.properties;
}

Row& CellStore::copy_row(const Row& row) {
  Row& copy = row_at(static_cast<int>(row.number));
  if (copy.count != 0) {
    for (const Cell& cell : row.span()) at(copy, cell.column) = cell;
  } else if (row.count != 0) {
    end_newest();
    copy.cells = allocate(row.count);
    std::copy_n(row.cells, row.count, copy.cells);
    copy.count = copy.capacity = row.count;
    used_.enter(row.number, row.cells[0].column);
    used_.enter(row.number, row.cells[row.count - 1].column);
  }
  return copy;
}

void CellStore::take_cells(CellStore&& other,
                           const std::function<void(int row, const Cell&)>& put) {
  end_newest();
  std::ranges::move(other.blocks_, std::back_inserter(blocks_));
  used_.enter(other.used_);
  pages_.resize(std::max(pages_.size(), other.pages_.size()));
  for (std::size_t position = 0; position < other.pages_.size(); ++position) {
    std::unique_ptr<Page>& page = other.pages_[position];
    if (!page) continue;
    if (!pages_[position]) {
      pages_[position] = std::move(page);
      continue;
    }
    for (const Row& row : page->rows) {
      if (row.count == 0) continue;
      Row& mine = make_row(row.number);
      if (mine.count != 0) {
        for (const Cell& cell : row.span()) put(static_cast<int>(row.number), cell);
        continue;
      }
      mine.cells = row.cells;
      mine.count = mine.capacity = row.count;
    }
  }
  other = CellStore();
}

const Cell* CellStore::search(int row, int column) const {
  const Row* at = find_row(row);
  if (!at) return nullptr;
  const Cell* found = first_from(at->span(), column);
  if (found == at->cells + at->count || found->column != column) return nullptr;
  cursor_row_ = at;
  cursor_ = static_cast<std::uint32_t>(found - at->cells);
  return found;
}

Row& CellStore::make_row(std::uint32_t number) { return enter_row(pages_, number); }

Row& CellStore::enter_row(Pages& pages, std::uint32_t number) {
  const std::size_t position = number / kPageRows;
  if (position >= pages.size()) pages.resize(position + 1);
  if (!pages[position]) pages[position] = std::make_unique<Page>();
  Page& page = *pages[position];
  page.present |= std::uint64_t{1} << number % kPageRows;
  Row& made = page.rows[number % kPageRows];
  made.number = number;
  return made;
}

// The cell at a place of any row, there or not.
Cell& CellStore::insert(Row& row, int column) {
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
  used_.enter(row.number, place->column);
  return *place;
}

void CellStore::erase(const CellRange& range,
                      const std::function<void(const Cell&)>& leave) noexcept {
  const auto row_end = static_cast<std::uint32_t>(range.row_last) + 1;
  for (const Row& row : rows(static_cast<std::uint32_t>(range.row_first), row_end)) {
    if (row.count == 0) continue;
    Row& at = *find_row(static_cast<int>(row.number));
    Cell* const first = first_from(at.span(), range.column_first);
    Cell* const last = first_from(at.span(), range.column_last + 1);
    for (const Cell* cell = first; cell != last; ++cell) {
      if (used_.is_edge(at.number, cell->column)) used_.known = false;
      leave(*cell);
    }
    at.count = static_cast<std::uint16_t>(std::copy(last, at.cells + at.count, first) - at.cells);
  }
}

// The newest row is complete as far as its writer knows: what it did not use is free again.
void CellStore::end_newest() {
  if (!newest_) return;
  free_ -= newest_->capacity - newest_->count;
  newest_->capacity = newest_->count;
  newest_ = nullptr;
}

void CellStore::grow(Row& row) {
  std::size_t wanted = std::min(std::max(kLeastGrowth, std::size_t{row.capacity} * 2), kLargestRun);
  const bool first = row.capacity == 0;
  const bool in_place = newest_ == &row;
  if (in_place) {
    const auto room = static_cast<std::size_t>(block_end_ - free_);
    const std::size_t more = std::min(wanted - row.capacity, room);
    free_ += more;
    row.capacity = static_cast<std::uint16_t>(row.capacity + more);
    if (more != 0) return;
  } else if (newest_) {
    if (first) wanted = std::max<std::size_t>(1, newest_->count);
    end_newest();
  }
  Cell* moved = allocate(wanted);
  std::copy_n(row.cells, row.count, moved);
  row.cells = moved;
  row.capacity = static_cast<std::uint16_t>(wanted);
  // A row that others overtook grows by doubling alone: cutting it again would cost a move each.
  if (first || in_place) newest_ = &row;
}

Cell* CellStore::allocate(std::size_t count) {
  assert(count <= kLargestRun);
  if (static_cast<std::size_t>(block_end_ - free_) < count) {
    const std::size_t doubled = system::next_block(kFirstBlock, blocks_.size()) / sizeof(Cell);
    const std::size_t size = std::max(count, doubled);
    blocks_.push_back(system::make_items<Cell>(size));
    free_ = blocks_.back().get();
    block_end_ = free_ + size;
  }
  Cell* taken = free_;
  free_ += count;
  return taken;
}

// A run that is complete: nothing grows in place behind it.
Cell* CellStore::allocate_run(std::size_t count) {
  newest_ = nullptr;
  return allocate(count);
}

// Pages from the first row that moves on are made anew; the rows in them keep their runs of cells.
CellStore::RowsMove CellStore::prepare_rows(const formula::Move& move, int size,
                                            std::span<const Cell> look, std::uint32_t properties) {
  RowsMove made;
  made.kept = std::min(static_cast<std::size_t>(move.at) / kPageRows, pages_.size());
  made.pages.resize(std::max(made.kept, pages_.size()));
  for (const Row& row : rows(static_cast<std::uint32_t>(made.kept) * kPageRows)) {
    const auto number = formula::moved(static_cast<int>(row.number), move);
    if (!number || *number >= size) continue;
    Row& entered = enter_row(made.pages, static_cast<std::uint32_t>(*number));
    entered = row;
    entered.number = static_cast<std::uint32_t>(*number);
  }
  if (move.kind == formula::Move::Kind::kRemove || (look.empty() && properties == 0)) return made;
  const int end = std::min(move.count, size - move.at);
  for (int i = 0; i < end; ++i) {
    Row& row = enter_row(made.pages, static_cast<std::uint32_t>(move.at + i));
    if (properties != 0) row.properties = properties + static_cast<std::uint32_t>(i);
    if (look.empty()) continue;
    row.cells = allocate_run(look.size());
    std::ranges::copy(look, row.cells);
    row.count = row.capacity = static_cast<std::uint16_t>(look.size());
  }
  return made;
}

void CellStore::exchange(RowsMove& moved) noexcept {
  std::move(pages_.begin(), pages_.begin() + static_cast<std::ptrdiff_t>(moved.kept),
            moved.pages.begin());
  pages_.swap(moved.pages);
  newest_ = nullptr;
  cursor_row_ = nullptr;
  used_.known = false;
}

CellStore::ColumnsMove CellStore::prepare_columns(const formula::Move& move, int size,
                                                  std::span<const PlacedCell> added) {
  ColumnsMove made;
  made.move = move;
  made.size = size;
  while (!added.empty()) {
    const std::uint32_t number = added.front().row;
    const auto behind =
        std::ranges::find_if(added, [&](const PlacedCell& one) { return one.row != number; });
    const auto own = added.first(static_cast<std::size_t>(behind - added.begin()));
    added = added.subspan(own.size());
    Row& row = row_at(static_cast<int>(number));
    Cell* const first = first_from(row.span(), move.at);
    const Cell* const last = first_from(row.span(), size - move.count);
    const std::size_t kept = static_cast<std::size_t>(last - row.cells);
    Cell* const cells = allocate_run(kept + own.size());
    Cell* at = std::copy(row.cells, first, cells);
    for (const PlacedCell& one : own) *at++ = one.cell;
    for (const Cell* cell = first; cell < last; ++cell, ++at) {
      *at = *cell;
      at->column = static_cast<std::uint16_t>(cell->column + move.count);
    }
    made.runs.push_back({&row, cells, static_cast<std::uint16_t>(at - cells)});
  }
  return made;
}

void CellStore::exchange(ColumnsMove& moved) noexcept {
  const formula::Move& move = moved.move;
  const bool inserts = move.kind == formula::Move::Kind::kInsert;
  auto run = moved.runs.begin();
  for (const Row& known : rows()) {
    Row& row = *row_in_page(static_cast<int>(known.number));
    if (run != moved.runs.end() && run->row == &row) {
      row.cells = run->cells;
      row.count = row.capacity = run->count;
      ++run;
      continue;
    }
    Cell* const first = first_from(row.span(), move.at);
    Cell* end = row.cells + row.count;
    if (!inserts) end = std::copy(first_from(row.span(), move.at + move.count), end, first);
    const int distance = inserts ? move.count : -move.count;
    for (Cell* cell = first; cell < end; ++cell) {
      const int column = cell->column + distance;
      if (column >= moved.size) end = cell;
      cell->column = static_cast<std::uint16_t>(column);
    }
    row.count = static_cast<std::uint16_t>(end - row.cells);
  }
  newest_ = nullptr;
  used_.known = false;
}

bool CellStore::used_range(CellRange* range) const {
  if (!used_.known) {
    used_ = {};
    for (const Row& row : rows()) {
      if (row.count == 0) continue;
      used_.enter(row.number, row.cells[0].column);
      used_.enter(row.number, row.cells[row.count - 1].column);
    }
  }
  if (used_.row_first > used_.row_last) return false;
  *range = {static_cast<int>(used_.row_first), static_cast<int>(used_.row_last), used_.column_first,
            used_.column_last};
  return true;
}

std::size_t CellStore::cell_count() const {
  std::size_t count = 0;
  for (const Row& row : rows()) count += row.count;
  return count;
}

}  // namespace engine
