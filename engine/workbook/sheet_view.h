// How a sheet is shown on the screen.
#pragma once

#include "engine/formula/interval.h"
#include "engine/formula/reference.h"

namespace engine {

struct SheetView {
  bool gridlines = true;
  bool right_to_left = false;
  int zoom = 100;  // percent

  // Rows and columns that stay in place while the others scroll; 0 in a direction where none do.
  int frozen_rows = 0;
  int frozen_columns = 0;
  // The first of those: rows that were scrolled away when the panes were frozen cannot be reached.
  // Counts in the directions that are frozen.
  CellAddress frozen_from;
  // The first visible cell, of the part that scrolls.
  CellAddress top_left;

  friend bool operator==(const SheetView&, const SheetView&) = default;
};

// The view with that many rows and columns frozen, from the first ones on. It stays scrolled in the
// directions in which it was.
SheetView freeze(SheetView view, int rows, int columns);

// The view that shows the cell first, or the end of the frozen part where the cell lies inside.
SheetView scroll(SheetView view, CellAddress cell);

// The view after rows or columns of its sheet were inserted or removed. What is inserted among the
// frozen ones is frozen too. A view that is not scrolled stays so.
SheetView moved(SheetView view, const formula::Move& move, const Grid& grid);

}  // namespace engine
