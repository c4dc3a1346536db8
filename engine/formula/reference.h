// Cells, ranges and their A1 addresses.
//
// Rows and columns count from 0, ranges include both ends. Addresses are read in either case and
// printed in upper case; `$` marks the absolute parts.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace engine::formula {

// The size of a sheet.
struct Grid {
  int rows = 1048576;
  int cols = 16384;

  bool holds(int row, int col) const { return row >= 0 && row < rows && col >= 0 && col < cols; }
};

inline constexpr Grid kXlsxGrid{};
inline constexpr Grid kXlsGrid{65536, 256};

struct Cell {
  int row = 0;
  int col = 0;

  friend bool operator==(const Cell&, const Cell&) = default;
};

struct Range {
  int row_first = 0;
  int row_last = 0;
  int col_first = 0;
  int col_last = 0;

  bool contains(int row, int col) const {
    return row >= row_first && row <= row_last && col >= col_first && col <= col_last;
  }
  bool overlaps(const Range& other) const {
    return row_first <= other.row_last && other.row_first <= row_last &&
           col_first <= other.col_last && other.col_first <= col_last;
  }
  friend bool operator==(const Range&, const Range&) = default;
};

// A cell as an address names it.
struct CellAddress {
  int row = 0;
  int col = 0;
  bool row_absolute = false;
  bool col_absolute = false;

  friend bool operator==(const CellAddress&, const CellAddress&) = default;
};

// Number of the column with these letters ("A" is 0, "XFD" 16383); nothing for anything but one to
// four letters.
std::optional<int> parse_column(std::string_view letters);

// The whole text as one address such as C5 or $C$5. An address past the end of every grid is given
// as it reads (XFE1, A1048577), so that the caller can tell it from what is no address: up to four
// letters and nine digits.
std::optional<CellAddress> parse_cell(std::string_view text);

// The whole text as C5, A1:B2, A:C or 2:7, with or without `$`, as a range inside the grid with its
// ends in order. Whole columns and rows get the grid's ends.
std::optional<Range> parse_range(std::string_view text, const Grid& grid = kXlsxGrid);

void append_column(std::string& out, int col);
void append_cell(std::string& out, int row, int col);
void append_cell(std::string& out, const CellAddress& address);
// One cell is printed as C5, everything else with both corners.
void append_range(std::string& out, const Range& range);

std::string print_column(int col);
std::string print_cell(int row, int col);
std::string print_range(const Range& range);

}  // namespace engine::formula
