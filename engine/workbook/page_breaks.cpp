#include "engine/workbook/page_breaks.h"

#include <algorithm>

namespace engine {

namespace {

// Moves the breaks that lie across the axis of the move. Their order stays.
void shift(PageBreakList& list, const formula::Move& move, int size) {
  std::erase_if(list, [&](PageBreak& one) {
    const auto at = formula::moved(one.at, move);
    if (!at || *at == 0 || *at >= size) return true;
    one.at = *at;
    return false;
  });
}

// Moves the ends of those that lie along it. A file may leave them out: such a break is as long as
// the page.
void stretch(PageBreakList& list, const formula::Move& move, int size) {
  std::erase_if(list, [&](PageBreak& one) {
    if (one.last == 0) return false;
    const auto ends = formula::moved({one.first, one.last}, move, size);
    if (!ends) return true;
    one.first = ends->first;
    one.last = one.last == size - 1 ? size - 1 : ends->last;
    return false;
  });
}

}  // namespace

bool has_break(const PageBreakList& list, int at) {
  return std::ranges::binary_search(list, at, {}, &PageBreak::at);
}

void put_break(PageBreakList& list, const PageBreak& one) {
  const auto place = std::ranges::lower_bound(list, one.at, {}, &PageBreak::at);
  if (place == list.end() || place->at != one.at) list.insert(place, one);
}

void remove_break(PageBreakList& list, int at) noexcept {
  const auto found = std::ranges::equal_range(list, at, {}, &PageBreak::at);
  list.erase(found.begin(), found.end());
}

PageBreaks moved(PageBreaks breaks, const formula::Move& move, const Grid& grid) {
  const bool rows = move.axis == formula::Axis::kRows;
  shift(rows ? breaks.rows : breaks.columns, move, rows ? grid.rows : grid.columns);
  stretch(rows ? breaks.columns : breaks.rows, move, rows ? grid.rows : grid.columns);
  return breaks;
}

}  // namespace engine
