// Writing worksheets: one pass from the cell store, in blocks of rows.
//
// Blocks are made independently of one another, so two threads can each make and pack every other
// one. What stands around the rows comes from the sheet's tree, patched where the model differs.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "engine/workbook/document.h"
#include "engine/workbook/workbook.h"
#include "engine/xlsx/parts.h"
#include "engine/xlsx/shared_strings.h"
#include "engine/xlsx/sheet_part.h"
#include "engine/xlsx/styles_part.h"

namespace engine::xlsx {

// What a sheet is written with. All of it must outlive the blocks.
struct WriteContext {
  const Workbook& workbook;
  const WrittenStyles& styles;
  const WrittenTexts& texts;
  std::span<const Table> tables;  // of the sheet, where formulas may leave a table's name out
};

// The part of a sheet whose tree is patched. `outside` are the rows that a partial load left out;
// null without. Sheet and outside rows must outlive the blocks.
PartBlocks write_worksheet(package::XmlTree tree, const Sheet& sheet, const OutsideRows* outside,
                           const WriteContext& context);

}  // namespace engine::xlsx
