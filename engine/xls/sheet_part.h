// What is known of a sheet's substream beside its contents.
//
// A substream is records in an order that means something: what is written back has to stand where
// it stood. Records that the model has nothing of, with charts that lie inside, stay the file's own
// bytes, which the stream still has; what operations change in them is kept beside it.
#pragma once

#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <span>
#include <vector>

#include "engine/workbook/sheet.h"
#include "engine/xls/drawing_part.h"
#include "engine/xls/record_merge.h"

namespace engine::xls {

// Records that are written together, in the order in which they stand in a sheet.
enum class SheetGroup : std::uint8_t {
  kIndex,
  kCalculation,  // of a new sheet
  kReferenceMode,
  kIteration,  // of a new sheet
  kPrintHeadings,
  kPrintGridlines,
  kGridSet,  // of a new sheet
  kOutline,
  kRowHeight,
  kOptions,
  kRowBreaks,
  kColumnBreaks,
  kHeader,
  kFooter,
  kCenterAcross,
  kCenterDown,
  kLeftMargin,
  kRightMargin,
  kTopMargin,
  kBottomMargin,
  kPageSetup,
  kProtection,
  kColumnWidth,
  kColumns,
  kFilter,
  kCells,
  kDrawing,
  kWindow,
  kZoom,
  kPanes,
  kSelection,
  kStandardWidth,
  kMerges,
  kLinks,
  kValidations,
  kCodeName,  // never written, as are tables
  kTab,
  kPermissions,
  kIgnoredErrors,
  kTables,
};
inline constexpr std::size_t kSheetGroups = static_cast<std::size_t>(SheetGroup::kTables) + 1;

// Behind every place of a stream.
inline constexpr std::uint64_t kNowhere = std::numeric_limits<std::uint64_t>::max();

struct SheetPart {
  std::uint32_t begin = 0;         // of the substream in the stream
  std::uint64_t limit = kNowhere;  // where another sheet begins
  // Where the stream tells what windows beside the first one show, which is carried.
  std::uint64_t other_windows = kNowhere;
  bool read = false;
  bool is_moved = false;  // rows or columns were inserted or removed
  bool is_copy = false;   // made of another sheet's substream, of which it has a part
  RecordEdits edits;
  DrawingPart drawing;
};

// Whether a record is of a window beside the first, by its group and its place in the stream.
inline bool is_of_other_window(std::optional<SheetGroup> group, std::uint64_t place,
                               std::uint64_t other_windows) {
  return place >= other_windows && group && *group >= SheetGroup::kWindow &&
         *group <= SheetGroup::kSelection;
}

// Where the sheets that begin at these places of a stream have to end: where another one begins, or
// at the stream's end. Sheets share no record: of those that a file lets begin at one place the
// first has it, and the others end there.
std::vector<std::uint64_t> limits_of(std::span<const std::uint32_t> begins, std::uint64_t size);

using SheetParts = std::map<const Sheet*, SheetPart>;

// Rows that are read; others are those outside of them.
struct RowFilter {
  int first = 0;
  int last = std::numeric_limits<int>::max();
  bool others = false;
  bool sizes = false;  // those of the rest are kept: objects on the sheet lie over them

  bool keeps(int row) const { return (row >= first && row <= last) != others; }
  bool keeps_all() const {
    return first == 0 && last == std::numeric_limits<int>::max() && !others;
  }
};

}  // namespace engine::xls
