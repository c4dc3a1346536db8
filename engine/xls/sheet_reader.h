// Reading the substream of a worksheet in one pass.
#pragma once

#include "engine/workbook/sheet.h"
#include "engine/workbook/workbook.h"
#include "engine/xls/globals.h"
#include "engine/xls/record_reader.h"
#include "engine/xls/sheet_part.h"

namespace engine::xls {

// What a sheet refers to.
struct SheetContext {
  Workbook& workbook;  // receives texts and errors
  const Globals& globals;
  const Sheet& sheet;        // that is read
  std::uint32_t texts;       // that the file shares
  std::uint32_t first_text;  // number of the first text that the workbook receives
};

// What a sheet says beyond its contents.
struct SheetFlags {
  bool selected = false;
  bool r1c1 = false;
  std::uint64_t other_windows = kNowhere;  // as the part of the sheet has it
  DrawingPart drawing;
};

// Fills the empty contents of a sheet. The reader stands in front of the
// substream. Throws FileError.
void read_sheet(RecordReader& reader, const SheetContext& context, const RowFilter& filter,
                SheetContents& contents, SheetFlags& flags);

}  // namespace engine::xls
