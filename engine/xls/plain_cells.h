// Records of plain cells, read in one go as they lie in memory.
//
// Nearly all records of a sheet are numbers, texts that the book shares, truth values and blank
// cells that come in order, and rows of which nothing is said. They need nothing but themselves,
// so a loop reads them without looking left or right. It stops in front of what it cannot put
// behind the other cells of its row and of whatever else is special or damaged, which is left to
// the sheet's reader.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "engine/workbook/sheet.h"
#include "engine/xls/records.h"
#include "engine/xls/sheet_reader.h"

namespace engine::xls {

// Whether records of that kind are read here as a rule.
inline bool is_plain_cell(std::uint16_t id) {
  switch (id) {
    case kNumber:
    case kRk:
    case kMulRk:
    case kTextCell:
    case kBlank:
    case kMulBlank:
    case kBooleanOrError:
    case kRow:
    case kDbCell:
      return true;
    default:
      return false;
  }
}

class PlainCells {
 public:
  // Cells go into the sheet, whose usual row height counts.
  PlainCells(const SheetContext& context, const RowFilter& filter, SheetContents& sheet);

  // As many bytes must lie from a record on as the longest has of those that have one size.
  static constexpr std::size_t kRoom = 20;

  // Reads records from the front that begin before `end`; gives how many bytes they are.
  std::size_t read(std::string_view records, std::size_t end);

  // Where the last record began that was read.
  std::size_t last() const { return last_; }

 private:
  bool read_other(std::string_view records);
  bool says_nothing(std::string_view row) const;
  bool read_numbers(std::string_view record);
  bool read_blanks(std::string_view record);
  bool put(std::size_t row, std::size_t column, std::size_t style, const Value& value);

  const SheetContext& context_;
  const std::size_t columns_;
  const RowFilter filter_;
  const bool keeps_all_;
  SheetContents& sheet_;
  Row* row_ = nullptr;  // met last
  std::size_t last_ = 0;
};

}  // namespace engine::xls
