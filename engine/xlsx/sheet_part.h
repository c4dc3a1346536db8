// What is kept with a sheet: its part without the cells, and how the file names it.
//
// Once a sheet is read, `tree` is its whole part but for the rows: everything in front of and
// behind `sheetData`, as it was read, and an empty `sheetData` between. The writer patches what the
// model knows into a copy.
#pragma once

#include <cstdint>
#include <memory>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "engine/package/xml_tree.h"
#include "engine/workbook/sheet.h"
#include "engine/workbook/workbook.h"
#include "engine/xlsx/relationships.h"

namespace engine::xlsx {

// What a row's details consist of: its attributes, and behind this character, which no part can
// hold, its children that are no cells.
inline constexpr char kDetailsEnd = '\x01';

// Begins the details of a cell whose value is a date in ISO notation; its children hold that value.
inline constexpr std::string_view kDateKind = " t=\"d\"";

// A part that belongs to a sheet which no file has yet. It gets its name when the book is saved.
struct AddedPart {
  std::string relationship;  // id at the sheet
  std::string kind;          // of that relationship
  std::string pattern;       // of the name: "xl/tables/table#.xml"
  std::string type;
  std::string bytes;
  std::vector<Relationship> links;  // its own, their targets told from the package's root
};

class SheetPart : public SheetRemains {
 public:
  std::string part;          // its name; empty for a sheet that no file has
  std::string relationship;  // its id at the workbook; empty for a new sheet
  std::uint32_t id = 0;      // sheetId

  bool read = false;
  package::XmlTree tree;
  std::vector<std::string> row_details;  // RowProperties::details is an index into this, plus one
  std::uint64_t text_cells = 0;          // cells that name a shared text in the file
  std::uint64_t formulas = 0;            // what formulas_of() gave when the sheet was read
  bool selected = false;                 // the tab, in the file

  // As they were read: those that the sheet still has are written as the file has them.
  Comments comments;

  // Of a sheet that no file has yet: what it refers to.
  std::vector<AddedPart> added;
  std::vector<Relationship> links;
};

// What the codec keeps with the sheet; null for a new one.
SheetPart* part_of(Sheet& sheet);
const SheetPart* part_of(const Sheet& sheet);

// Whether the cell's element holds an f element: then a text beside it is the cell's own.
bool has_formula_element(const CellRecord& record);

// A number that tells the sheet's formulas with their places from others; 0 without formulas.
std::uint64_t formulas_of(const SheetContents& sheet);

// The tree of a new worksheet.
package::XmlTree new_worksheet();

// The child of that name, made at its place in the order of a worksheet's or workbook's children.
pugi::xml_node worksheet_child(pugi::xml_node root, std::string_view local);
pugi::xml_node workbook_child(pugi::xml_node root, std::string_view local);

}  // namespace engine::xlsx
