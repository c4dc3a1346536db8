// Reading worksheets in one pass over the part.
//
// What stands in front of and behind the rows becomes a tree, whole; rows and cells never do.
#pragma once

#include <string_view>

#include "engine/package/block_reader.h"
#include "engine/workbook/sheet.h"
#include "engine/xlsx/row_reader.h"
#include "engine/xlsx/sheet_part.h"

namespace engine::xlsx {

// Fills the empty contents of a sheet, and its remains. Throws FileError.
void read_worksheet(package::BlockReader& reader, std::string_view part,
                    const SheetContext& context, const RowFilter& filter, SheetContents& sheet,
                    SheetPart& remains);

}  // namespace engine::xlsx
