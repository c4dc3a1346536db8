// Cells that rules of a sheet are for: one or more ranges.
#pragma once

#include <compare>
#include <optional>
#include <set>

#include "engine/formula/interval.h"
#include "engine/formula/reference.h"

namespace engine {

// By rows, then by columns.
struct RangeLess {
  bool operator()(const CellRange& a, const CellRange& b) const;
};
using CellRanges = std::set<CellRange, RangeLess>;

// Where a range goes when rows or columns are inserted or removed; nothing when all of it goes.
std::optional<CellRange> moved_range(CellRange range, const formula::Move& move, const Grid& grid);
CellRanges moved(const CellRanges& ranges, const formula::Move& move, const Grid& grid);

// The upper left corner of ranges, which formulas that stand for all their cells are written for:
// the first row and the first column of any of them. There is at least one.
CellAddress corner_of(const CellRanges& ranges);

// The parts of a range that lie outside of another, which it meets: those above and below it are as
// wide as the range.
CellRanges outside(const CellRange& range, const CellRange& other);

}  // namespace engine
