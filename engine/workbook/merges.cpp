#include "engine/workbook/merges.h"

#include <algorithm>
#include <bit>
#include <functional>
#include <iterator>
#include <optional>
#include <utility>

#include "engine/workbook/cell_ranges.h"

namespace engine {

namespace {

constexpr CellRange kFree{-1, -1, -1, -1};
constexpr std::size_t kFewSlots = 64;

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
  const RangeIndex::Entry* found = index_.find({at.row, at.row, at.column, at.column});
  if (found) remove_slot(found->number);
  return found != nullptr;
}

void Merges::remove_slot(std::size_t slot) noexcept {
  if (slot < indexed_) index_.erase(slots_[slot], static_cast<std::uint32_t>(slot));
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

void Merges::make_index() const {
  for (; indexed_ < slots_.size(); ++indexed_) {
    const CellRange& range = slots_[indexed_];
    if (is_free(range)) continue;
    if (index_.find(range)) overlaps_ = true;
    else index_.insert(range, static_cast<std::uint32_t>(indexed_));
  }
}

const CellRange* Merges::meeting(const CellRange& range) const {
  make_index();
  const RangeIndex::Entry* found = index_.find(range);
  return found ? &slots_[found->number] : nullptr;
}

Merges moved(const Merges& merges, const formula::Move& move, const Grid& grid) {
  const auto is_cell = [](const CellRange& range) {
    return range.row_first == range.row_last && range.column_first == range.column_last;
  };
  Merges made;
  for (const CellRange& range : merges.all())
    if (const auto to = moved_range(range, move, grid); to && (!is_cell(*to) || is_cell(range)))
      made.add(*to);
  return made;
}

}  // namespace engine
