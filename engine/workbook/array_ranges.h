// The ranges of a sheet that array formulas or data tables of many cells fill.
//
// Which range holds a cell is asked for each write and each formula that is read. The index behind
// the answer is made by the first question after a change: a tree that halves the columns again
// and again, in which a range stands at the few largest nodes that it fills across. The ranges of a
// node are sorted by their first row, each entry telling which of those so far reaches down the
// furthest, so one binary search a level finds a range if there is any. A range has at most two
// entries a level, whatever ranges a file makes up.
//
// A range that is removed stays in the index as one that holds nothing, until there are many of
// these or the others are asked for.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "engine/formula/reference.h"

namespace engine {

class ArrayRanges {
 public:
  void add(const CellRange& range);

  // A range that holds the cell; null when none does.
  const CellRange* find(CellAddress at) const;

  // A range of which a part and no more lies in a rectangle; null when there is none.
  const CellRange* cut_by(const CellRange& cells) const;

  // Removes those that lie in a rectangle.
  void remove_inside(const CellRange& cells) noexcept;

  std::span<const CellRange> all() const {
    drop_removed();
    return ranges_;
  }
  bool empty() const { return size() == 0; }
  std::size_t size() const { return ranges_.size() - removed_; }

 private:
  struct Entry {
    std::uint32_t node;
    int row_first;
    int row_last;           // of the range that reaches down the furthest
    std::uint32_t range;    // its own
    std::uint32_t deepest;  // the one that reaches down the furthest
  };

  using Start = std::pair<CellAddress, std::uint32_t>;  // the first cell of a range

  void make_index() const;
  void drop_removed() const noexcept;

  mutable std::vector<CellRange> ranges_;
  mutable std::size_t removed_ = 0;    // of them
  mutable std::vector<Entry> index_;   // by node and first row; empty until it is asked for
  mutable std::vector<Start> starts_;  // in order, made with the index
  mutable std::uint32_t levels_ = 0;   // a bit for each level of the tree that has entries
};

}  // namespace engine
