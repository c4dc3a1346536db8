#include "engine/workbook/merges.h"

#include <algorithm>
#include <bit>
#include <functional>
#include <iterator>
#include <optional>
#include <utility>

namespace engine {

namespace {

constexpr int kWidthBits = 4;
constexpr CellRange kFree{-1, -1, -1, -1};
constexpr std::size_t kFewSlots = 64;

int bits_of(int count) { return std::bit_width(static_cast<unsigned>(count - 1)); }

// The place of the tree that spans what lies before the span of this one.
std::size_t before(std::size_t place) { return place & (place - 1); }
std::size_t lowest_bit(std::size_t place) { return place & ~(place - 1); }

}  // namespace

std::vector<CellRange> Merges::all() const {
  std::vector<CellRange> ranges;
  ranges.reserve(count_);
  std::ranges::copy_if(slots_, std::back_inserter(ranges), std::not_fn(is_free));
  return ranges;
}

// Goes down the tree, from its widest span to the narrowest.
std::size_t Merges::slot_of(std::size_t index) const {
  std::size_t slot = 0;
  for (std::size_t span = std::bit_floor(sums_.size()); span != 0; span /= 2) {
    if (slot + span > sums_.size() || sums_[slot + span - 1] > index) continue;
    index -= sums_[slot + span - 1];
    slot += span;
  }
  return slot;
}

void Merges::add(const CellRange& range) {
  if (slots_.size() > 2 * count_ + kFewSlots) drop_free_slots();
  append_slot(range);
}

void Merges::append_slot(const CellRange& range) {
  if (slots_.size() == slots_.capacity()) slots_.reserve(2 * slots_.size() + 1);
  const std::size_t place = slots_.size() + 1;
  std::uint32_t sum = 1;
  for (std::size_t one = place - 1; one > before(place); one = before(one)) sum += sums_[one - 1];
  sums_.push_back(sum);
  slots_.push_back(range);
  ++count_;
}

bool Merges::remove_at(CellAddress at) {
  make_index();
  const Entry* found = search({at.row, at.row, at.column, at.column});
  if (found) remove_slot(found->slot);
  return found != nullptr;
}

void Merges::remove_slot(std::size_t slot) noexcept {
  if (slot < indexed_) index_.erase(entry_of(slots_[slot], slot));
  if (overlaps_) {
    // Another one may hold its cells now.
    index_.clear();
    indexed_ = 0;
    overlaps_ = false;
  }
  for (std::size_t place = slot + 1; place <= sums_.size(); place += lowest_bit(place))
    --sums_[place - 1];
  slots_[slot] = kFree;
  --count_;
}

void Merges::drop_free_slots() {
  Merges kept;
  kept.slots_.reserve(slots_.size());
  for (const CellRange& range : slots_)
    if (!is_free(range)) kept.append_slot(range);
  *this = std::move(kept);
}

Merges::Entry Merges::entry_of(const CellRange& range, std::size_t slot) {
  const int height = bits_of(range.row_last - range.row_first + 1);
  const int width = bits_of(range.column_last - range.column_first + 1);
  return {static_cast<std::uint16_t>((height << kWidthBits) | width),
          static_cast<std::uint16_t>(range.column_first >> width), range.row_first,
          static_cast<std::uint32_t>(slot)};
}

void Merges::make_index() const {
  for (; indexed_ < slots_.size(); ++indexed_) {
    const CellRange& range = slots_[indexed_];
    if (is_free(range)) continue;
    if (search(range)) overlaps_ = true;
    else index_.insert(entry_of(range, indexed_));
  }
}

const CellRange* Merges::meeting(const CellRange& range) const {
  make_index();
  const Entry* found = search(range);
  return found ? &slots_[found->slot] : nullptr;
}

// What meets the rectangle begins at most its own size before it.
const Merges::Entry* Merges::search(const CellRange& range) const {
  auto at = index_.begin();
  while (at != index_.end()) {
    const std::uint16_t size = at->size;
    const int height = 1 << (size >> kWidthBits);
    const int width_bits = size & ((1 << kWidthBits) - 1);
    const int row_first = range.row_first - height + 1;
    const int column_first = std::max(range.column_first - (1 << width_bits) + 1, 0);
    const auto band_last = static_cast<std::uint16_t>(range.column_last >> width_bits);
    auto band = static_cast<std::uint16_t>(column_first >> width_bits);
    at = index_.lower_bound({size, band, row_first, 0});
    while (at != index_.end() && at->size == size && at->band <= band_last) {
      band = at->band;
      if (at->row < row_first) {
        at = index_.lower_bound({size, band, row_first, 0});
      } else if (at->row > range.row_last) {
        ++band;
        at = index_.lower_bound({size, band, row_first, 0});
      } else if (slots_[at->slot].overlaps(range)) {
        return &*at;
      } else {
        ++at;
      }
    }
    at = index_.lower_bound({static_cast<std::uint16_t>(size + 1), 0, 0, 0});
  }
  return nullptr;
}

Merges moved(const Merges& merges, const formula::Move& move, const Grid& grid) {
  const bool rows = move.axis == formula::Axis::kRows;
  Merges made;
  for (CellRange range : merges.all()) {
    int& first = rows ? range.row_first : range.column_first;
    int& last = rows ? range.row_last : range.column_last;
    const auto kept = formula::moved({first, last}, move, rows ? grid.rows : grid.columns);
    if (!kept) continue;
    const bool is_smaller = kept->last - kept->first < last - first;
    first = kept->first;
    last = kept->last;
    const bool is_cell =
        range.row_first == range.row_last && range.column_first == range.column_last;
    if (!is_cell || !is_smaller) made.add(range);
  }
  return made;
}

}  // namespace engine
