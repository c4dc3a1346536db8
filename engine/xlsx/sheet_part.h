// What is kept with a sheet: its part without the cells, and how the file names it.
//
// Once a sheet is read, `tree` is its whole part but for the rows: everything in front of and
// behind `sheetData`, as it was read, and an empty `sheetData` between. The writer patches what the
// model knows into a copy. New sheets share one tree until an edit gives a sheet its own.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "engine/package/xml_tree.h"
#include "engine/workbook/sheet.h"
#include "engine/workbook/workbook.h"
#include "engine/xlsx/parts.h"
#include "engine/xlsx/table_part.h"

namespace engine::xlsx {

// What a row's details consist of: its attributes, and behind this character, which no part can
// hold, its children that are no cells.
inline constexpr char kDetailsEnd = '\x01';

// Begins the details of a cell whose value is a date in ISO notation; its children hold that value.
inline constexpr std::string_view kDateKind = " t=\"d\"";

struct SheetPart {
  std::string part;          // its name; empty for a sheet that is listed without one
  std::string relationship;  // its id at the workbook
  std::uint32_t id = 0;      // sheetId
  std::uint32_t listed = 0;  // place in the file's list of sheets, plus one; 0 for a new sheet

  bool read = false;
  std::shared_ptr<const package::XmlTree> tree;  // once it is read
  std::uint64_t text_cells = 0;                  // cells that name a shared text in the file
  std::uint64_t formulas = 0;                    // what formulas_of() gave when the sheet was read
  bool selected = false;                         // the tab, in the file
  std::string links_damage;  // why its links cannot be read or rewritten; else empty

  // Whether it may refer to other sheets, once somebody asked before it was read.
  mutable std::optional<bool> may_refer;

  // Its tables that can be read, once somebody asked for them.
  mutable std::optional<std::vector<TablePart>> tables;
  // The ranges of its pivot tables, likewise.
  mutable std::optional<std::vector<CellRange>> pivot_tables;

  // Cells may stand elsewhere than in the file, as rows or columns were inserted or removed.
  bool moved = false;

  // Of a sheet that is a copy, or whose cells have moved since: what header cells of tables showed
  // then, where that is not the name of the column.
  std::map<CellAddress, Header> copied_headers;

  // As they were read: those that the sheet still has are written as the file has them.
  Comments comments;
  PlacedPictures pictures;
};

// Those of all sheets of a book.
using SheetParts = std::map<const Sheet*, SheetPart>;

// The parts of its tables, those first that the sheet lists once it is read, and in its order.
std::vector<NamedPart> table_parts(const Parts& parts, const SheetPart& sheet);

// Whether the cell's element holds an f element: then a text beside it is the cell's own.
bool has_formula_element(const SheetContents& sheet, const CellRecord& record);

// A number that tells the sheet's formulas with their places from others; 0 without formulas.
std::uint64_t formulas_of(const SheetContents& sheet);

// The tree of a new worksheet.
package::XmlTree new_worksheet();

}  // namespace engine::xlsx
