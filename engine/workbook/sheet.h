// One sheet of a book: its name and kind, and what it holds.
//
// A sheet of a loaded book is read when it is first needed. Until then it has a name, a kind and a
// place in the book and nothing else, and it is saved as the file stored it.
//
// What a sheet holds is one value, SheetContents: to copy a sheet is to copy that. It is changed
// through Sheet::change() alone, which is how a save knows which sheets differ from their file.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/workbook/array_ranges.h"
#include "engine/workbook/auto_filter.h"
#include "engine/workbook/block_list.h"
#include "engine/workbook/cell.h"
#include "engine/workbook/cell_store.h"
#include "engine/workbook/color.h"
#include "engine/workbook/columns.h"
#include "engine/workbook/ignored_errors.h"
#include "engine/workbook/links.h"
#include "engine/workbook/merges.h"
#include "engine/workbook/page_breaks.h"
#include "engine/workbook/page_setup.h"
#include "engine/workbook/pictures.h"
#include "engine/workbook/protection.h"
#include "engine/workbook/sheet_view.h"
#include "engine/workbook/text_arena.h"
#include "engine/workbook/validations.h"

namespace engine {

// What a row has besides its cells. Heights are in points.
struct RowProperties {
  std::optional<double> height;
  std::optional<std::uint32_t> style;
  bool custom_height = false;
  bool hidden = false;
  bool collapsed = false;
  std::uint8_t outline_level = 0;
  std::uint32_t details = 0;  // kept for the codec: number of what else the file says of the row

  friend bool operator==(const RowProperties&, const RowProperties&) = default;
};

// A note at a cell. Sizes are in pixels at 96 per inch; 0 stands for the size the file has.
struct Comment {
  std::string text;
  std::string author;
  int width = 0;
  int height = 0;

  friend bool operator==(const Comment&, const Comment&) = default;
};

using Comments = std::map<CellAddress, Comment>;

// Cells whose columns are as wide as what they show. The last row or column may be -1, the end of
// the used range at the time of measuring.
struct FitArea {
  int row_first = 0;
  int column_first = 0;
  int row_last = -1;
  int column_last = -1;
};

enum class SheetKind : std::uint8_t { kWorksheet, kChart, kOther };
enum class SheetVisibility : std::uint8_t { kVisible, kHidden, kVeryHidden };

enum class Loading : std::uint8_t {
  kUnread,    // stands in the file and is read when needed
  kRead,      // complete in memory
  kPartly,    // complete but for the rows outside `loaded_rows`, which have at most their sizes
  kExcluded,  // left out by the caller of a partial load
  kMissing,   // listed in the file, which has no such sheet
};

// Where every 64th row begins, in pixels, as far down as somebody has asked since a row changed its
// size. Objects that lie free on a sheet are placed by that.
class RowBegins {
 public:
  static constexpr int kStep = 64;

  // What a row is to change its size for: those below it begin elsewhere then.
  void forget_below(int row) noexcept {
    const auto kept = static_cast<std::size_t>(row / kStep) + 1;
    if (kept < known.size()) known.resize(kept);
  }

  std::vector<long long> known;
};

// Everything that a caller can set or ask for in a sheet.
class SheetContents {
 public:
  CellStore cells;
  std::deque<RowProperties> row_properties;
  std::vector<std::string> row_details;  // kept for the codec: what RowProperties number
  Columns columns;
  std::optional<FitArea> fit_area;
  int digit_pixels = 7;                        // of the default font, the unit of column widths
  std::optional<double> default_column_width;  // as the file stores widths
  int base_column_width = 8;  // characters, which count where there is no default width
  double default_row_height = 15;
  bool hides_rows = false;  // those that `cells` does not have
  Merges merges;
  bool summary_below = true;  // of a group of rows
  bool summary_right = true;  // of a group of columns
  ArrayRanges arrays;
  // The records that hold the formulas of arrays whose first cell is none of the loaded ones, by
  // that cell.
  std::map<CellAddress, std::uint32_t> outer_arrays;
  Comments comments;
  Links links;
  std::deque<SharedFormula> shared_formulas;  // by number
  SheetView view;
  Color tab_color;  // absent for the colour that all tabs have
  Protection protection;
  PageSetup page;
  PageBreaks breaks;
  AutoFilter filter;
  std::vector<std::string> filter_details;  // kept for the codec: what columns and keys number
  bool filtered = false;  // a filter hides rows: this one, or one that only the file knows
  Validations validations;
  IgnoredErrors ignored_errors;
  PlacedPictures pictures;

  // What the cell shows, through its record if it has one.
  Value value(const Cell& cell) const {
    return cell.kind == CellKind::kRecord ? records_[cell.index()].value : value_of(cell);
  }
  const CellRecord* record(const Cell& cell) const;
  CellRecord* record(const Cell& cell);
  bool is_formula(const Cell& cell) const;
  // What few records have; null without.
  const CellExtra* extra(const CellRecord& record) const {
    return record.extra == 0 ? nullptr : &extras_[record.extra - 1];
  }
  CellExtra* extra(const CellRecord& record) {
    return record.extra == 0 ? nullptr : &extras_[record.extra - 1];
  }
  // Whether there is a record that has such, or was one.
  bool has_extras() const { return !extras_.empty(); }
  // The text of the formula of the cell at a place, which may be a shared one; `moved` holds it
  // then.
  std::string_view formula(const CellRecord& record, CellAddress at, const Grid& grid,
                           std::string& moved) const;

  // The format of the place: the cell's, else its row's, else its column's, else 0.
  std::uint32_t style_at(int row, int column) const;

  // Puts something into a cell in place of what it holds. Without a style the cell keeps its own,
  // and a new one takes that of the place. The formula of a record is copied.
  void put_value(int row, int column, Value value, std::optional<std::uint32_t> style);
  void put_record(int row, int column, const CellRecord& record,
                  std::optional<std::uint32_t> style);
  // Blank cells show nothing but their format.
  void put_blank(int row, int column, std::optional<std::uint32_t> style) {
    put_value(row, column, Value(), style);
  }
  // Gives a cell a format and leaves its value; an empty place becomes a blank cell.
  void put_style(int row, int column, std::uint32_t style);

  // Empties the cells of a range, which cuts no array; with their comments or without. Neither
  // needs memory.
  void clear(const CellRange& range) noexcept;
  void erase_cells(const CellRange& range) noexcept;

  // Makes a cell of the value or record, for a codec that reads a sheet. The formula of a record
  // has been kept, and so has its extra.
  static Cell make_cell(int column, Value value, std::uint32_t style) {
    Cell cell;
    cell.bits = value.bits;
    cell.style = style;
    cell.column = static_cast<std::uint16_t>(column);
    cell.kind = kind_of(value);
    return cell;
  }
  std::uint32_t keep_record(const CellRecord& record);
  std::uint32_t keep_extra(CellExtra extra);

  // Keeps a text that a record can be given as its formula, which cannot fail then.
  std::string_view keep_text(std::string_view text);
  void set_formula(CellRecord& record, std::string_view kept) noexcept;
  // Frees texts that no record has any more, once they are many. Those that were kept and not given
  // to a record yet are among them.
  void drop_unused_texts();

  // The record of a cell that goes, if it has one. Never allocates.
  void forget_record(const Cell& cell) noexcept;
  // What few records have, to be changed by what cannot fail.
  std::deque<CellExtra>& extras() { return extras_; }

  // By number. Those that nothing names any more are empty.
  BlockList<CellRecord>& records() { return records_; }
  const BlockList<CellRecord>& records() const { return records_; }

  const RowProperties* properties(const Row& row) const;
  // What is known of a row; null when that is nothing.
  const RowProperties* properties(int row) const;
  RowProperties& properties_at(int row);
  bool is_hidden(int row) const;
  // Kept beside the rows by those who measure them.
  RowBegins& row_begins() const { return row_begins_; }

 private:
  static constexpr std::uint32_t kNoRecord = 0xFFFFFFFF;

  // A row that is made stays as hidden as it was.
  Row& row_at(int row) { return hides_rows ? hidden_row_at(row) : cells.row_at(row); }
  Row& hidden_row_at(int row);
  Cell& place(int row, int column, std::optional<std::uint32_t> style);
  void provide_record();
  std::uint32_t take_record() noexcept;
  void replace(CellRecord& record, const CellRecord& by) noexcept;

  BlockList<CellRecord> records_;
  std::deque<CellExtra> extras_;  // those that no record has any more are empty
  TextArena texts_;               // of the records
  std::size_t unused_text_ = 0;   // bytes in texts_ that no record has
  mutable RowBegins row_begins_;
  std::uint32_t free_record_ = kNoRecord;  // the first of a chain; its value's word names the next
};

struct OutsideRows;

class Sheet {
 public:
  explicit Sheet(std::string its_name = {});
  Sheet(const Sheet&) = delete;
  Sheet& operator=(const Sheet&) = delete;
  ~Sheet();

  const std::string& name() const { return name_; }
  // By which the book finds it: equal names of different case have the same.
  const std::string& folded_name() const { return folded_name_; }

  SheetKind kind = SheetKind::kWorksheet;
  SheetVisibility visibility = SheetVisibility::kVisible;
  Loading loading = Loading::kRead;
  CellRange loaded_rows;        // rows only; for kPartly
  bool selected = false;        // one of the tabs that are selected together
  std::string comments_damage;  // why the file's comments cannot be read or rewritten; else empty
  std::string links_damage;     // the same of its links
  std::string drawing_damage;   // the same of the drawing with its pictures

  // For kPartly: the other rows, while an operation needs them and once it has changed one.
  std::unique_ptr<OutsideRows> outside;

  const SheetContents& contents() const { return contents_; }
  // The contents, to be changed by what cannot fail.
  SheetContents& change() noexcept {
    changed_ = true;
    return contents_;
  }
  // The contents, for what makes room in them and changes nothing that can be read.
  SheetContents& spare() noexcept { return contents_; }
  // Changes the contents. An edit that throws has changed nothing.
  template <class Edit>
  void change(const Edit& edit) {
    edit(contents_);
    changed_ = true;
  }
  // Restates the unit of column widths in a sheet that states none, which changes nothing in it.
  void set_digit_pixels(int digit) noexcept { contents_.digit_pixels = digit; }
  // Keeps a text for a formula of an edit that is not made yet, which changes nothing either.
  std::string_view keep_text(std::string_view text) { return contents_.keep_text(text); }
  void drop_unused_texts() { contents_.drop_unused_texts(); }
  // Takes what a file holds, which is no change.
  void take(SheetContents&& contents) noexcept;

  // Whether the contents, or the rows outside of those that are loaded, were changed.
  bool changed() const;

 private:
  friend class Workbook;  // which renames sheets

  std::string name_;
  std::string folded_name_;
  SheetContents contents_;
  bool changed_ = false;
};

}  // namespace engine
