// What is known of a sheet's substream beside its contents.
//
// A substream is records in an order that means something: what is written back has to stand where
// it stood. So the part keeps the substream's outline: which group of records begins where. Records
// of a group that the model has are made from it; those that it does not have, with charts that lie
// inside, are the file's own bytes, which the stream still has.
#pragma once

#include <cstdint>
#include <limits>
#include <map>
#include <vector>

#include "engine/workbook/sheet.h"

namespace engine::xls {

// Records that belong together and are written as one.
enum class RecordGroup : std::uint8_t {
  kCarried,
  kCells,  // with rows and the blocks that these are in
  kSizes,
  kOutline,
  kPage,
  kBreaks,
  kProtection,
  kView,
  kMerges,
  kLinks,
  kNotes,
  kDrawing,
  kTab,
};

struct OutlinedRecords {
  std::uint32_t offset = 0;  // in the stream; they end where the next ones begin
  RecordGroup group = RecordGroup::kCarried;
};

struct SheetPart {
  std::uint32_t begin = 0;  // of the substream in the stream
  std::uint64_t limit = std::numeric_limits<std::uint64_t>::max();  // where another sheet begins
  std::uint32_t end = 0;  // of its last record, once it is read
  std::vector<OutlinedRecords> outline;
  bool read = false;
};

using SheetParts = std::map<const Sheet*, SheetPart>;

// Rows that are read; others are those outside of them.
struct RowFilter {
  int first = 0;
  int last = std::numeric_limits<int>::max();
  bool others = false;

  bool keeps(int row) const { return (row >= first && row <= last) != others; }
};

}  // namespace engine::xls
