// Insertion and removal of rows and columns, with all that follows from them in the book.
#pragma once

#include <map>
#include <optional>
#include <utility>

#include "engine/formula/interval.h"
#include "engine/workbook/document.h"
#include "engine/workbook/workbook.h"

namespace engine {

struct CellsMove {
  formula::Move move;
  // Whether the names of the book follow. Those that say how the sheet is printed and filtered do
  // in any case.
  bool names_follow = true;
};

// Moves the cells of a sheet that has been read, in full or in part. Gives why it cannot be done;
// then, and when it throws, nothing has changed. Throws FileError when another sheet or a part that
// would have to follow is damaged.
std::optional<MoveRefusal> move_cells(Workbook& book, Document& document, Sheet& sheet,
                                      const CellsMove& move);

// Gives the entries of a map their new places, without allocating.
template <class Entry>
void move_keys(std::map<CellAddress, Entry>& entries, const formula::Move& move) noexcept {
  std::map<CellAddress, Entry> moved_entries;
  while (!entries.empty()) {
    auto entry = entries.extract(entries.begin());
    int& place = move.axis == formula::Axis::kRows ? entry.key().row : entry.key().column;
    const auto to = formula::moved(place, move);
    if (!to) continue;
    place = *to;
    moved_entries.insert(moved_entries.end(), std::move(entry));
  }
  entries.swap(moved_entries);
}

}  // namespace engine
