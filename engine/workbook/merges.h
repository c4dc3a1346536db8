// The merged ranges of a sheet.
//
// A cell belongs to one of them at most. Where a damaged file has ranges that overlap, the first of
// those counts; the others are kept in their place in the order and hold no cell until it is gone.
//
// Two questions have to be quick among many: which range is number i of the order, and which one
// meets a rectangle. For the first a range keeps its slot as long as it lives, and a binary indexed
// tree over the slots counts those that live. For the second stands an index, made by the first
// question after a change.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "engine/formula/interval.h"
#include "engine/formula/reference.h"
#include "engine/workbook/range_index.h"

namespace engine {

class Merges {
 public:
  std::size_t size() const { return count_; }
  bool empty() const { return count_ == 0; }

  // In the order of the file, new ones last.
  CellRange operator[](std::size_t index) const { return slots_[slot_of(index)]; }
  std::vector<CellRange> all() const;

  // The range that holds the cell, or that meets a rectangle; null when none does.
  const CellRange* find(CellAddress at) const {
    return meeting({at.row, at.row, at.column, at.column});
  }
  const CellRange* meeting(const CellRange& range) const;

  // Behind all others.
  void add(const CellRange& range);
  void remove(std::size_t index) noexcept { remove_slot(slot_of(index)); }
  // Removes the range that holds the cell; false when none does.
  bool remove_at(CellAddress at);

 private:
  static bool is_free(const CellRange& slot) { return slot.row_first < 0; }
  std::size_t slot_of(std::size_t index) const;
  void append_slot(const CellRange& range);
  void remove_slot(std::size_t slot) noexcept;
  void drop_free_slots();
  void make_index() const;

  std::vector<CellRange> slots_;
  std::vector<std::uint32_t>
      sums_;  // of living slots; place i ends at slot i and spans lowbit(i+1)
  std::size_t count_ = 0;
  mutable RangeIndex index_;         // of the first slots
  mutable std::size_t indexed_ = 0;  // so many
  mutable bool overlaps_ = false;    // some of those are not in the index as they meet another
};

// The ranges after rows or columns were inserted or removed. Those of which no cell or only one is
// left are gone.
Merges moved(const Merges& merges, const formula::Move& move, const Grid& grid);

}  // namespace engine
