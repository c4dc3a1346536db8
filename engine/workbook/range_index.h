// Rectangles of cells that are found by the cells they meet, be they many.
//
// They are sorted by their size, to powers of two in both directions, then by columns and rows: of
// one size few of those that begin near a rectangle do not meet it, as long as few overlap.
#pragma once

#include <compare>
#include <cstdint>
#include <set>

#include "engine/formula/reference.h"

namespace engine {

class RangeIndex {
 public:
  // A rectangle with a number that its owner gave it.
  struct Entry {
    std::uint16_t size = 0;  // bits of its height, then four of its width
    std::uint16_t band = 0;  // of columns, as wide as the width's power of two
    std::int32_t row = 0;    // its first
    std::int32_t row_last = 0;
    std::int32_t column = 0;
    std::int32_t column_last = 0;
    std::uint32_t number = 0;

    CellRange range() const { return {row, row_last, column, column_last}; }
    friend auto operator<=>(const Entry&, const Entry&) = default;
  };
  using Entries = std::set<Entry>;

  void insert(const CellRange& range, std::uint32_t number) {
    entries_.insert(entry_of(range, number));
  }
  void erase(const CellRange& range, std::uint32_t number) noexcept {
    entries_.erase(entry_of(range, number));
  }
  void clear() noexcept { entries_.clear(); }
  // Takes all of another index over.
  void merge(RangeIndex& other) noexcept { entries_.merge(other.entries_); }

  // One that meets the rectangle; null when none does.
  const Entry* find(const CellRange& range) const {
    const auto at = next(range, entries_.begin());
    return at == entries_.end() ? nullptr : &*at;
  }

  // Calls back with each that meets the rectangle.
  template <class Visit>
  void visit(const CellRange& range, const Visit& use) const {
    for (auto at = next(range, entries_.begin()); at != entries_.end(); at = next(range, ++at))
      use(*at);
  }

 private:
  static Entry entry_of(const CellRange& range, std::uint32_t number);
  // The first from `at` on that meets the rectangle.
  Entries::const_iterator next(const CellRange& range, Entries::const_iterator at) const;

  Entries entries_;
};

}  // namespace engine
