// Ranges of cells that follow what is inserted and removed.
#pragma once

#include <optional>

#include "engine/formula/interval.h"
#include "engine/formula/reference.h"

namespace engine {

// Where a range goes when rows or columns are inserted or removed; nothing when all of it goes.
std::optional<CellRange> moved_range(CellRange range, const formula::Move& move, const Grid& grid);

}  // namespace engine
