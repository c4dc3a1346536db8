// One sheet of a book: cells, rows, columns, comments, and where they came from.
//
// A sheet of a loaded book is read when it is first needed. Until then it has a name, a kind and a
// place in the book and nothing else, and it is saved as the file stored it.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/workbook/cell.h"
#include "engine/workbook/cell_store.h"

namespace engine {

// What a codec keeps with a sheet: everything the engine carries through without a model of it.
class SheetRemains {
 public:
  virtual ~SheetRemains() = default;
};

// What a row has besides its cells. Heights are in points.
struct RowProperties {
  std::optional<double> height;
  std::optional<std::uint32_t> style;
  bool custom_height = false;
  bool hidden = false;
  bool collapsed = false;
  std::uint8_t outline_level = 0;
  std::uint32_t details = 0;  // kept for the codec: number of what else the file says of the row
};

// A run of columns that share everything. Widths are in characters as the file stores them,
// padding included.
struct ColumnProperties {
  int first = 0;
  int last = 0;
  std::optional<double> width;
  std::uint32_t style = 0;
  bool custom_width = false;
  bool hidden = false;
  bool best_fit = false;
  bool collapsed = false;
  std::uint8_t outline_level = 0;
};

// A note at a cell. Sizes are in pixels at 96 per inch; 0 stands for the size the file has.
struct Comment {
  std::string text;
  std::string author;
  int width = 0;
  int height = 0;
  bool changed = false;  // made or replaced since the sheet was read
};

enum class SheetKind : std::uint8_t { kWorksheet, kChart, kOther };
enum class SheetVisibility : std::uint8_t { kVisible, kHidden, kVeryHidden };

enum class Loading : std::uint8_t {
  kUnread,    // stands in the file and is read when needed
  kRead,      // complete in memory
  kPartly,    // complete but for the cells and rows outside `loaded_rows`
  kExcluded,  // left out by the caller of a partial load
};

class Sheet {
 public:
  std::string name;
  SheetKind kind = SheetKind::kWorksheet;
  SheetVisibility visibility = SheetVisibility::kVisible;
  Loading loading = Loading::kRead;
  CellRange loaded_rows;  // rows only; for kPartly

  CellStore cells;
  std::deque<RowProperties> row_properties;
  std::vector<ColumnProperties> columns;       // ascending, without overlap
  int digit_pixels = 7;                        // of the default font, the unit of column widths
  std::optional<double> default_column_width;  // as the file stores widths
  int base_column_width = 8;  // characters, which count where there is no default width
  int default_row_pixels = 20;
  std::vector<CellRange> arrays;  // filled by array formulas or data tables of many cells
  std::map<CellAddress, Comment> comments;
  std::string comments_damage;  // why the file's comments cannot be read or rewritten; else empty
  bool selected = false;        // one of the tabs that are selected together

  bool changed = false;  // anything below the name differs from the file
  bool comments_changed = false;
  bool selection_changed = false;
  std::unique_ptr<SheetRemains> remains;

  // What the cell shows, through its record if it has one.
  Value value(const Cell& cell) const;
  const CellRecord* record(const Cell& cell) const;
  CellRecord* record(const Cell& cell);
  bool is_formula(const Cell& cell) const;

  // The format of the place: the cell's, else its row's, else its column's, else 0.
  std::uint32_t style_at(int row, int column) const;

  // Puts something into a cell in place of what it holds. Without a style the cell keeps its own,
  // and a new one takes that of the place.
  void put_value(int row, int column, Value value, std::optional<std::uint32_t> style);
  void put_record(int row, int column, CellRecord record, std::optional<std::uint32_t> style);
  // Blank cells show nothing but their format.
  void put_blank(int row, int column, std::optional<std::uint32_t> style) {
    put_value(row, column, Value(), style);
  }
  // Gives a cell a format and leaves its value; an empty place becomes a blank cell.
  void put_style(int row, int column, std::uint32_t style);

  // Makes a cell of the value or record, for a codec that reads a sheet.
  static Cell make_cell(int column, Value value, std::uint32_t style);
  std::uint32_t keep_record(CellRecord record);

  const RowProperties* properties(const Row& row) const;
  RowProperties& properties_at(int row);

  // The array formula or data table of several cells that the cell belongs to; else null.
  const CellRange* array_at(CellAddress at) const;

 private:
  Cell& place(int row, int column, std::optional<std::uint32_t> style);
  void forget_record(const Cell& cell);

  std::deque<CellRecord> records_;
  std::vector<std::uint32_t> free_records_;
};

}  // namespace engine
