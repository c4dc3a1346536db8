// Reading the rows of a worksheet: one pass over sheetData, straight into the cell store.
//
// A cell as programs usually write it, <c r="B7" s="3"><v>12.5</v></c>, is recognised as one piece;
// everything else goes token by token, and what is not understood is kept with its row or cell.
#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <string_view>

#include "engine/package/xml_scanner.h"
#include "engine/workbook/iso_date.h"
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
  bool keeps_all() const {
    return first == 0 && last == std::numeric_limits<int>::max() && !others;
  }
};

// What a worksheet refers to.
struct SheetContext {
  Workbook& workbook;          // receives texts and errors
  const Parts& parts;          // among them those that relationships of the sheet lead to
  std::uint32_t shared_texts;  // number of entries in the book's list of shared texts
  std::uint32_t first_text;    // what the index of a text in the workbook's pool is counted from
  std::uint32_t formats;       // number of cell formats of the book
  DateBase dates = DateBase::k1900;

  // A format that the book does not have is the first.
  std::uint32_t format(std::uint32_t style) const { return style < formats ? style : 0; }
};

class RowsAhead;

// Reads the rows of one worksheet into a sheet, and what the model does not know of them into its
// remains.
class RowReader {
 public:
  RowReader(package::XmlScanner& scanner, std::string_view part, const SheetContext& context,
            const RowFilter& filter, SheetContents& sheet, SheetPart& remains);
  RowReader(const RowReader&) = delete;
  RowReader& operator=(const RowReader&) = delete;
  ~RowReader();

  // Called at the Start of sheetData; ends at its End. Pieces that were read ahead are taken.
  // Throws FileError.
  void read(RowsAhead* ahead = nullptr);

  // The row that was read last.
  int last_row() const;

 private:
  class Machine;

  std::unique_ptr<Machine> machine_;
};

}  // namespace engine::xlsx
