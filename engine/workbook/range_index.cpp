#include "engine/workbook/range_index.h"

#include <algorithm>
#include <bit>
#include <limits>

namespace engine {

namespace {

constexpr int kWidthBits = 4;

int bits_of(int count) { return std::bit_width(static_cast<unsigned>(count - 1)); }

// Stands before every entry of a size, of a band of it and of a row there.
RangeIndex::Entry begin_of(int size, int band, int row) {
  constexpr int kLowest = std::numeric_limits<int>::min();
  return {
      static_cast<std::uint16_t>(size), static_cast<std::uint16_t>(band), row, kLowest, 0, 0, 0};
}

}  // namespace

RangeIndex::Entry RangeIndex::entry_of(const CellRange& range, std::uint32_t number) {
  const int height = bits_of(range.row_last - range.row_first + 1);
  const int width = bits_of(range.column_last - range.column_first + 1);
  return {static_cast<std::uint16_t>((height << kWidthBits) | width),
          static_cast<std::uint16_t>(range.column_first >> width),
          range.row_first,
          range.row_last,
          range.column_first,
          range.column_last,
          number};
}

// What meets the rectangle begins at most its own size before it.
RangeIndex::Entries::const_iterator RangeIndex::next(const CellRange& range,
                                                     Entries::const_iterator at) const {
  while (at != entries_.end()) {
    const int size = at->size;
    const int band = at->band;
    const int width_bits = size & ((1 << kWidthBits) - 1);
    const int row_first = range.row_first - (1 << (size >> kWidthBits)) + 1;
    const int column_first = std::max(range.column_first - (1 << width_bits) + 1, 0);
    const int band_first = column_first >> width_bits;
    const int band_last = range.column_last >> width_bits;
    if (band < band_first) at = entries_.lower_bound(begin_of(size, band_first, row_first));
    else if (band > band_last) at = entries_.lower_bound(begin_of(size + 1, 0, 0));
    else if (at->row < row_first) at = entries_.lower_bound(begin_of(size, band, row_first));
    else if (at->row > range.row_last)
      at = entries_.lower_bound(begin_of(size, band + 1, row_first));
    else if (at->range().overlaps(range)) return at;
    else ++at;
  }
  return at;
}

}  // namespace engine
