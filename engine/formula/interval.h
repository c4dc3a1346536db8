// How positions and intervals of rows or columns follow when others are inserted or removed.
//
// The same two rules serve cell references, merges, links, tables and drawings.
#pragma once

#include <optional>

namespace engine::formula {

enum class Axis { kRows, kColumns };

struct Interval {
  int first = 0;
  int last = 0;

  friend bool operator==(const Interval&, const Interval&) = default;
};

// Rows or columns inserted before `at`, or removed from `at` on.
struct Move {
  enum class Kind { kInsert, kRemove };

  Axis axis = Axis::kRows;
  Kind kind = Kind::kInsert;
  int at = 0;
  int count = 1;
};

// Where position `x` goes; nothing when it is removed. Insertion may give a position past the end
// of the sheet.
std::optional<int> moved(int x, const Move& move);

// Where an interval goes on a sheet of `size` rows or columns. Nothing when it is removed whole or
// its start passes the end; an end past the end is cut to it.
std::optional<Interval> moved(Interval interval, const Move& move, int size);

}  // namespace engine::formula
