// Tables: the part that says which cells are one, and the names of its columns.
//
// A column's name stands twice in a file, in this part and as the text of its header cell, and
// programs take a file in which the two differ for damaged. Formulas call columns by these names.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/formula/formula.h"
#include "engine/formula/interval.h"
#include "engine/formula/reference.h"
#include "engine/workbook/document.h"
#include "engine/workbook/sheet.h"

namespace engine::xlsx {

struct TablePart : Table {
  std::string part;  // its name
  std::vector<std::string> columns;

  bool has_header() const { return header_rows != 0; }
};

// What a header cell shows, and whether it is a text as header cells have to be.
struct Header {
  std::string text;
  bool is_text = false;

  friend bool operator==(const Header&, const Header&) = default;
};

// Nothing when the part tells no range. Throws FileError when it is damaged.
std::optional<TablePart> read_table(std::string_view bytes, std::string_view part,
                                    const Grid& grid);

// The names that columns get from their header cells: nothing for a header that was left alone,
// whose column keeps its name. As spreadsheet programs do, an empty header makes Column1 or the
// next number that is free, and one that is taken gets a number behind: Net, Net2, Net3.
std::vector<std::string> column_names(const std::vector<std::string>& present,
                                      const std::vector<std::optional<std::string>>& headers);

// The part with other names for its columns. Throws FileError when it is damaged.
std::string rename_columns(std::string_view bytes, std::string_view part,
                           const std::vector<std::string>& names);

// The part after rows or columns of its sheet were inserted or removed; the table becomes what it
// says then. The cells of the table must not all go. Formulas stay as they are. Throws FileError
// when the part is damaged.
std::string move_table(std::string_view bytes, TablePart& table, const formula::Move& move,
                       const Grid& grid);

// New texts for the formulas inside of a table that leave its name out, by their cells.
std::vector<std::pair<CellAddress, std::string>> own_formulas(const SheetContents& sheet,
                                                              const CellRange& cells,
                                                              const formula::ColumnChanges& own,
                                                              const Grid& grid);

}  // namespace engine::xlsx
