// Reading worksheets: one pass over the part, straight into the cell store.
//
// What stands in front of and behind the rows becomes a tree, whole; rows and cells never do. A
// cell as programs usually write it, <c r="B7" s="3"><v>12.5</v></c>, is recognised as one piece;
// everything else goes token by token, and what is not understood is kept with its row or cell.
#pragma once

#include <cstdint>
#include <limits>
#include <string_view>

#include "engine/package/block_reader.h"
#include "engine/workbook/sheet.h"
#include "engine/workbook/workbook.h"
#include "engine/xlsx/sheet_part.h"

namespace engine::xlsx {

// The rows that a reading keeps: first..last, or all others.
struct RowFilter {
  int first = 0;
  int last = std::numeric_limits<int>::max();
  bool others = false;

  bool keeps(int row) const { return (row >= first && row <= last) != others; }
};

// What a worksheet refers to.
struct SheetContext {
  Workbook& workbook;          // receives texts and errors
  std::uint32_t shared_texts;  // number of entries in the book's list of shared texts
  std::uint32_t first_text;    // what the index of a text in the workbook's pool is counted from
  std::uint32_t formats;       // number of cell formats of the book
  bool date1904 = false;
};

// Fills the empty contents of a sheet, and its remains. Throws FileError.
void read_worksheet(package::BlockReader& reader, std::string_view part,
                    const SheetContext& context, const RowFilter& filter, SheetContents& sheet,
                    SheetPart& remains);

}  // namespace engine::xlsx
