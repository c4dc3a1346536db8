// Cells, ranges and their A1 addresses.
//
// Rows and columns count from 0, ranges include both ends. Addresses are read in either case and
// printed in upper case; `$` marks the absolute parts.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace engine {

// The size of a sheet.
struct Grid {
  int rows = 0;
  int columns = 0;

  bool holds(int row, int column) const {
    return row >= 0 && row < rows && column >= 0 && column < columns;
  }
};

// A cell's place.
struct CellAddress {
  int row = 0;
  int column = 0;

  friend auto operator<=>(const CellAddress&, const CellAddress&) = default;
};

// A rectangle of cells.
struct CellRange {
  int row_first = 0;
  int row_last = 0;
  int column_first = 0;
  int column_last = 0;

  bool contains(int row, int column) const {
    return row >= row_first && row <= row_last && column >= column_first && column <= column_last;
  }
  bool overlaps(const CellRange& other) const {
    return row_first <= other.row_last && other.row_first <= row_last &&
           column_first <= other.column_last && other.column_first <= column_last;
  }
  friend bool operator==(const CellRange&, const CellRange&) = default;
};

namespace formula {

// A cell as an address names it.
struct CellReference {
  int row = 0;
  int column = 0;
  bool row_absolute = false;
  bool column_absolute = false;

  friend bool operator==(const CellReference&, const CellReference&) = default;
};

// Number of the column with these letters ("A" is 0, "XFD" 16383); nothing for anything but one to
// four letters.
std::optional<int> parse_column(std::string_view letters);

// The whole text as one address such as C5 or $C$5. An address past the end of every grid is given
// as it reads (XFE1, A1048577), so that the caller can tell it from what is no address: up to four
// letters and nine digits.
std::optional<CellReference> parse_cell(std::string_view text);

// The whole text as C5, A1:B2, A:C or 2:7, with or without `$`, as a range inside the grid with its
// ends in order. Whole columns and rows get the grid's ends.
std::optional<CellRange> parse_range(std::string_view text, const Grid& grid);

void append_column(std::string& out, int column);
void append_cell(std::string& out, int row, int column);
void append_cell(std::string& out, const CellReference& address);
// One cell is printed as C5, everything else with both corners.
void append_range(std::string& out, const CellRange& range);

std::string print_column(int column);
std::string print_cell(int row, int column);
std::string print_range(const CellRange& range);

}  // namespace formula
}  // namespace engine
