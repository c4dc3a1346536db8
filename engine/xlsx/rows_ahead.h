// Rows of a worksheet that a second thread reads while the first is still in front of them.
//
// A block of the part that nobody has asked for yet is searched for whole rows, which are read by a
// reader of their own as if they were all that the sheet holds. Where they begin and end is a guess
// from the text. It counts only when the sheet's reader comes to stand between two rows right where
// they begin: then reading them itself would go the same way, and it takes the piece instead.
//
// There is no piece of rows that depend on others, as with formulas that cells share, and none of
// damaged ones: the sheet's reader reads these itself and tells what is wrong with them.
#pragma once

#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <string_view>

#include "engine/package/block_reader.h"
#include "engine/workbook/sheet.h"
#include "engine/workbook/workbook.h"
#include "engine/xlsx/row_reader.h"
#include "engine/xlsx/sheet_part.h"

namespace engine::xlsx {

// Whole rows. Everything that is numbered counts from the piece's beginning: texts, behind those
// that the file shares, records and properties.
struct RowPiece {
  explicit RowPiece(const Limits& limits) : texts(limits) {}

  std::size_t size = 0;  // bytes of the part
  int last_row = 0;
  Workbook texts;
  SheetContents sheet;
  SheetPart remains;
};

// Reads ahead as long as it lives, which is while the sheet's rows are read.
class RowsAhead {
 public:
  static constexpr std::uint64_t kNone = std::numeric_limits<std::uint64_t>::max();

  RowsAhead(package::BlockReader& reader, std::string_view part, const SheetContext& context);
  RowsAhead(const RowsAhead&) = delete;
  RowsAhead& operator=(const RowsAhead&) = delete;
  ~RowsAhead() { reader_.work_ahead({}); }

  // Where the first piece begins that begins at the offset in the part or behind; kNone without.
  // Those in front of it are dropped.
  std::uint64_t first_from(std::uint64_t offset);
  // The piece that begins there.
  std::unique_ptr<RowPiece> take(std::uint64_t begin);

 private:
  void read(std::span<char> block, std::uint64_t offset) noexcept;
  std::unique_ptr<RowPiece> read_piece(std::span<char> rows) const;

  package::BlockReader& reader_;
  const std::string part_;
  const SheetContext& context_;
  int failures_ = 0;  // blocks in a row that gave no piece; the second thread's
  std::mutex mutex_;
  std::map<std::uint64_t, std::unique_ptr<RowPiece>> pieces_;  // by where they begin
};

}  // namespace engine::xlsx
