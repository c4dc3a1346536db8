#include "engine/workbook/array_ranges.h"

#include <algorithm>
#include <bit>
#include <tuple>

namespace engine {

namespace {

// Nodes are numbered level by level: 1 is the root, those below node n are 2n and 2n+1, and column
// c is the leaf kFirstLeaf + c.
constexpr std::uint32_t kFirstLeaf = 1 << 16;

// What a range is once it is removed: it holds no cell and overlaps nothing.
constexpr CellRange kRemoved{-1, -2, -1, -2};

bool lies_in(const CellRange& range, const CellRange& cells) {
  return cells.contains(range.row_first, range.column_first) &&
         cells.contains(range.row_last, range.column_last);
}

}  // namespace

void ArrayRanges::add(const CellRange& range) {
  ranges_.push_back(range);
  index_.clear();
}

void ArrayRanges::drop_removed() const noexcept {
  if (removed_ == 0) return;
  std::erase(ranges_, kRemoved);
  removed_ = 0;
  index_.clear();
}

void ArrayRanges::make_index() const {
  drop_removed();
  std::vector<Entry> made;
  std::vector<Start> starts;
  std::uint32_t levels = 0;
  for (std::uint32_t i = 0; i < ranges_.size(); ++i) {
    const CellRange& range = ranges_[i];
    starts.emplace_back(CellAddress{range.row_first, range.column_first}, i);
    const auto enter = [&](std::uint32_t node) {
      made.push_back({node, range.row_first, range.row_last, i, i});
      levels |= std::bit_floor(node);
    };
    std::uint32_t first = kFirstLeaf + static_cast<std::uint32_t>(range.column_first);
    std::uint32_t end = kFirstLeaf + static_cast<std::uint32_t>(range.column_last) + 1;
    for (; first < end; first /= 2, end /= 2) {
      if (first % 2 == 1) enter(first++);
      if (end % 2 == 1) enter(--end);
    }
  }
  std::ranges::sort(made, {}, [](const Entry& entry) {
    return std::tuple(entry.node, entry.row_first, entry.range);
  });
  for (std::size_t i = 1; i < made.size(); ++i) {
    const Entry& before = made[i - 1];
    if (made[i].node != before.node || made[i].row_last > before.row_last) continue;
    made[i].row_last = before.row_last;
    made[i].deepest = before.deepest;
  }
  std::ranges::sort(starts);
  starts_ = std::move(starts);
  index_ = std::move(made);
  levels_ = levels;
}

const CellRange* ArrayRanges::find(CellAddress at) const {
  if (ranges_.empty()) return nullptr;
  if (index_.empty()) make_index();
  const std::uint32_t leaf = kFirstLeaf + static_cast<std::uint32_t>(at.column);
  for (std::uint32_t node = leaf; node != 0; node /= 2) {
    if ((levels_ & std::bit_floor(node)) == 0) continue;
    const auto behind = std::ranges::upper_bound(
        index_, std::pair(node, at.row), {},
        [](const Entry& entry) { return std::pair(entry.node, entry.row_first); });
    for (auto entry = behind; entry != index_.begin();) {
      --entry;
      if (entry->node != node || entry->row_last < at.row) break;
      for (const std::uint32_t range : {entry->deepest, entry->range})
        if (ranges_[range].contains(at.row, at.column)) return &ranges_[range];
    }
  }
  return nullptr;
}

// A range that is cut holds cells at an edge of the rectangle. Where the edges are longer than the
// list, that is looked through.
const CellRange* ArrayRanges::cut_by(const CellRange& cells) const {
  const auto& [row_first, row_last, column_first, column_last] = cells;
  const auto edges =
      2 * static_cast<std::size_t>(row_last - row_first + column_last - column_first);
  const auto is_cut = [&](const CellRange& range) {
    return range.overlaps(cells) && !lies_in(range, cells);
  };
  if (edges > ranges_.size()) {
    const auto found = std::ranges::find_if(ranges_, is_cut);
    return found == ranges_.end() ? nullptr : &*found;
  }
  const auto cut_at = [&](int row, int column) {
    const CellRange* found = find({row, column});
    return found && is_cut(*found) ? found : nullptr;
  };
  for (const int row : {row_first, row_last})
    for (int column = column_first; column <= column_last; ++column)
      if (const CellRange* found = cut_at(row, column)) return found;
  for (const int column : {column_first, column_last})
    for (int row = row_first; row <= row_last; ++row)
      if (const CellRange* found = cut_at(row, column)) return found;
  return nullptr;
}

void ArrayRanges::remove_inside(const CellRange& cells) noexcept {
  const auto remove = [&](CellRange& range) {
    if (!lies_in(range, cells)) return;
    range = kRemoved;
    ++removed_;
  };
  const auto rows = static_cast<std::size_t>(cells.row_last - cells.row_first);
  if (index_.empty() || rows >= ranges_.size()) {
    for (CellRange& range : ranges_) remove(range);
  } else {
    for (int row = cells.row_first; row <= cells.row_last; ++row) {
      const CellAddress first{row, cells.column_first};
      const CellAddress last{row, cells.column_last};
      auto start = std::ranges::lower_bound(starts_, first, {}, &Start::first);
      for (; start != starts_.end() && start->first <= last; ++start)
        remove(ranges_[start->second]);
    }
  }
  if (removed_ > ranges_.size() / 2) drop_removed();
}

}  // namespace engine
