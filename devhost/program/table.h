// A table of cells in a terminal: letters above, row numbers at the left.
#pragma once

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace devhost {

class Table {
 public:
  explicit Table(std::vector<std::u16string> headings);

  void begin_row(std::u16string label);
  // The next cell of the row that was begun last; empty ones at its end may be left out.
  void add(std::u16string_view text, bool is_number);

  // With a width, columns are made narrower to fit in there and, when that does not do, left out at
  // the right; 0 leaves nothing out. Returns how many columns are printed.
  std::size_t print(std::ostream& out, int width) const;

 private:
  struct Cell {
    std::u16string text;
    bool is_number = false;
  };
  struct Row {
    std::u16string label;
    std::vector<Cell> cells;
  };
  struct Column {
    std::u16string heading;
    int width = 0;
    std::size_t texts = 0;
    std::size_t numbers = 0;

    bool is_numeric() const { return numbers > texts; }
  };

  std::vector<int> widths_within(int width) const;

  std::vector<Column> columns_;
  std::vector<Row> rows_;
  int label_width_ = 0;
};

}  // namespace devhost
