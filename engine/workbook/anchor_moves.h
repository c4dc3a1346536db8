// What becomes of the objects over the cells of a sheet when rows or columns come and go.
#pragma once

#include "engine/formula/interval.h"
#include "engine/workbook/anchor.h"
#include "engine/workbook/metrics.h"
#include "engine/workbook/sheet.h"

namespace engine {

// How objects lie on a sheet while rows or columns are inserted or removed: where these begin
// before and after, in pixels.
struct AnchorMove {
  formula::Move move;
  int size = 0;  // rows or columns of the sheet
  Edges before;
  Edges after;

  AnchorMove(const SheetContents& sheet, const formula::Move& its, const Grid& grid);
};

// Moves the edges of an object in the direction of a move. `to` is null for one that has a size
// instead. False when the object goes, as all its cells do.
bool move_edges(Anchoring anchoring, AnchorEdge& from, AnchorEdge* to, const AnchorMove& moving);

}  // namespace engine
