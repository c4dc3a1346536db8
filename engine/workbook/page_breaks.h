// Breaks between printed pages, set by hand.
//
// Those that a program makes where a page is full are none of these.
#pragma once

#include <vector>

#include "engine/formula/interval.h"
#include "engine/formula/reference.h"

namespace engine {

// Lies above a row or left of a column, along some of the columns or rows.
struct PageBreak {
  int at = 0;
  int first = 0;
  int last = 0;
  bool by_pivot_table = false;

  friend bool operator==(const PageBreak&, const PageBreak&) = default;
};

// Ascending, at most one at a place.
using PageBreakList = std::vector<PageBreak>;

struct PageBreaks {
  PageBreakList rows;
  PageBreakList columns;

  friend bool operator==(const PageBreaks&, const PageBreaks&) = default;
};

bool has_break(const PageBreakList& list, int at);
// A break that is there already stays as it is.
void put_break(PageBreakList& list, const PageBreak& one);
void remove_break(PageBreakList& list, int at) noexcept;

// The breaks after rows or columns of their sheet were inserted or removed. A break goes with the
// row that it lies above, and where that has become the first one.
PageBreaks moved(PageBreaks breaks, const formula::Move& move, const Grid& grid);

}  // namespace engine
