#include "engine/workbook/sheet_view.h"

#include <algorithm>

namespace engine {

namespace {

// A view in one direction.
struct Direction {
  int& from;    // the first frozen one
  int& frozen;  // how many
  int& top;     // the first visible one that scrolls

  int end() const { return frozen == 0 ? 0 : from + frozen; }
  bool is_scrolled() const { return top > end(); }
};

Direction rows_of(SheetView& view) {
  return {view.frozen_from.row, view.frozen_rows, view.top_left.row};
}
Direction columns_of(SheetView& view) {
  return {view.frozen_from.column, view.frozen_columns, view.top_left.column};
}

void freeze(Direction view, int count) {
  const bool scrolled = view.is_scrolled();
  view.from = 0;
  view.frozen = count;
  view.top = scrolled ? std::max(view.top, count) : count;
}

// A frozen part whose end would pass the last row is cut, so that one is left to scroll.
void shift(Direction view, const formula::Move& move, int size) {
  const bool scrolled = view.is_scrolled();
  const auto place = [&](int x) {
    return std::clamp(formula::moved(x, move).value_or(move.at), 0, size - 1);
  };
  if (view.frozen != 0) {
    // What is inserted before the first frozen one joins them.
    const int end = std::min(move.at < view.end() ? place(view.end()) : view.end(), size - 1);
    if (move.kind == formula::Move::Kind::kRemove || move.at < view.from)
      view.from = place(view.from);
    view.frozen = std::max(end - view.from, 0);
    if (view.frozen == 0) view.from = 0;
  }
  view.top = scrolled ? std::max(place(view.top), view.end()) : view.end();
}

}  // namespace

SheetView freeze(SheetView view, int rows, int columns) {
  freeze(rows_of(view), rows);
  freeze(columns_of(view), columns);
  return view;
}

SheetView scroll(SheetView view, CellAddress cell) {
  view.top_left = {std::max(cell.row, rows_of(view).end()),
                   std::max(cell.column, columns_of(view).end())};
  return view;
}

SheetView moved(SheetView view, const formula::Move& move, const Grid& grid) {
  if (move.axis == formula::Axis::kRows) shift(rows_of(view), move, grid.rows);
  else shift(columns_of(view), move, grid.columns);
  return view;
}

}  // namespace engine
