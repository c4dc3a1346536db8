#include "engine/workbook/array_ranges.h"

#include <algorithm>
#include <bit>
#include <tuple>

namespace engine {

namespace {

// Nodes are numbered level by level: 1 is the root, those below node n are 2n and 2n+1, and column
// c is the leaf kFirstLeaf + c.
constexpr std::uint32_t kFirstLeaf = 1 << 16;

bool lies_in(const CellRange& range, const CellRange& cells) {
  return cells.contains(range.row_first, range.column_first) &&
         cells.contains(range.row_last, range.column_last);
}

}  // namespace

void ArrayRanges::add(const CellRange& range) {
  ranges_.push_back(range);
  index_.clear();
}

void ArrayRanges::make_index() const {
  std::vector<Entry> made;
  std::uint32_t levels = 0;
  for (std::uint32_t i = 0; i < ranges_.size(); ++i) {
    const CellRange& range = ranges_[i];
    const auto enter = [&](std::uint32_t node) {
      made.push_back({node, range.row_first, range.row_last, i});
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
    made[i].range = before.range;
  }
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
    if (behind == index_.begin()) continue;
    const Entry& entry = behind[-1];
    if (entry.node == node && entry.row_last >= at.row) return &ranges_[entry.range];
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
  const auto removed =
      std::erase_if(ranges_, [&](const CellRange& range) { return lies_in(range, cells); });
  if (removed != 0) index_.clear();
}

}  // namespace engine
