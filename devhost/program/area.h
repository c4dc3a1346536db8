// Ranges of cells as people write them.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace devhost {

// Counted from 0, both ends included.
struct Area {
  int row_first = 0;
  int row_last = 0;
  int column_first = 0;
  int column_last = 0;
  // Whether somebody named the rows; else they are all there are.
  bool names_rows = false;

  int rows() const { return row_last - row_first + 1; }
  int columns() const { return column_last - column_first + 1; }
};

// B2, B2:D20, B:D or 2:20, in either case, with or without $; none for anything else.
std::optional<Area> parse_area(std::string_view text);

// What two areas share, if anything.
std::optional<Area> overlap(const Area& left, const Area& right);

std::string column_text(int column);
std::string cell_text(int row, int column);
std::string area_text(const Area& area);

}  // namespace devhost
