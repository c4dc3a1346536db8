#include "engine/workbook/ignored_errors.h"

#include <utility>

namespace engine {

void IgnoredErrors::add(IgnoredError entry) {
  const bool is_findable = entry.cells.size() == 1;
  const CellRange range = is_findable ? *entry.cells.begin() : CellRange();
  if (entries_.size() == entries_.capacity()) entries_.reserve(2 * entries_.size() + 1);
  if (is_findable) places_.emplace(range, entries_.size());
  entries_.push_back(std::move(entry));
}

void IgnoredErrors::put(const CellRange& range, std::uint8_t kinds) {
  const auto found = places_.find(range);
  if (found == places_.end()) return add({{range}, kinds, 0});
  std::uint8_t& its = entries_[found->second].kinds;
  its = static_cast<std::uint8_t>(its | kinds);
}

IgnoredErrors moved(const IgnoredErrors& errors, const formula::Move& move, const Grid& grid) {
  IgnoredErrors made;
  for (const IgnoredError& one : errors.all()) {
    CellRanges cells = moved(one.cells, move, grid);
    if (!cells.empty()) made.add({std::move(cells), one.kinds, one.details});
  }
  return made;
}

}  // namespace engine
