#include "engine/api/messages.h"

#include <algorithm>
#include <concepts>
#include <cstdlib>

#include "engine/formula/reference.h"
#include "engine/text/number_text.h"
#include "engine/text/utf8.h"

namespace engine::api::messages {

namespace {

std::string shown(double value) {
  std::string text;
  append_number(text, value);
  return text;
}
std::string shown(std::integral auto value) { return std::to_string(value); }
std::string_view shown(std::string_view text) { return text; }

constexpr std::string_view kForbidden = " holds a character that is not allowed: ";

// A text of the caller or of a file.
std::string quoted(std::string_view text) {
  constexpr std::size_t kShown = 64;
  const std::string_view shown = first_characters(text, kShown);
  std::string quoted = "\"";
  quoted.append(shown).append(shown.size() < text.size() ? "...\"" : "\"");
  return quoted;
}

std::string join(const auto&... parts) {
  std::string text;
  (text.append(shown(parts)), ...);
  return text;
}

std::string cell_text(CellAddress cell) { return formula::print_cell(cell.row, cell.column); }

std::string last_cell(const Grid& grid) {
  return formula::print_cell(grid.rows - 1, grid.columns - 1);
}

std::string padded(int value, std::size_t width) {
  std::string digits = std::to_string(std::abs(static_cast<long long>(value)));
  digits.insert(0, width - std::min(width, digits.size()), '0');
  return value < 0 ? "-" + digits : digits;
}

std::string range_text(std::string_view property, const auto& value, const auto& low,
                       const auto& high) {
  return join(property, " ", value, " is out of range ", low, "..", high);
}

// A control character is told by its number.
std::string character_text(std::string_view character) {
  const auto code = static_cast<unsigned char>(character.front());
  if (code >= 0x20 && code != 0x7F) return std::string(character);
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  return std::string("U+00") + kDigits[code >> 4] + kDigits[code & 15];
}

std::string name_text(std::string_view name, std::string_view predicate) {
  return join("name ", quoted(name), predicate);
}

std::string sheet_name(std::string_view name, std::string_view predicate) {
  return join("sheet name ", quoted(name), predicate);
}

}  // namespace

std::string row(int row, const Grid& grid) { return range_text("row", row, 0, grid.rows - 1); }

std::string column(int column, const Grid& grid) {
  return range_text("column", column, 0, grid.columns - 1);
}

std::string row_order(int first, int last) {
  return join("first row ", first, " is after last row ", last);
}

std::string column_order(int first, int last) {
  return join("first column ", first, " is after last column ", last);
}

std::string index(std::string_view thing, long long index, std::size_t count) {
  if (count == 0) return join(thing, " ", index, " is out of range: there are none");
  return range_text(thing, index, 0, count - 1);
}

std::string out_of_range(std::string_view property, int value, int low, int high) {
  return range_text(property, value, low, high);
}

std::string out_of_range(std::string_view property, double value, double low, double high) {
  return range_text(property, value, low, high);
}

std::string too_small(std::string_view property, int value, int low) {
  return join(property, " ", value, " is out of range: it must be at least ", low);
}

std::string not_positive(std::string_view property, double value) {
  return join(property, " ", value, " is out of range: it must be more than 0");
}

std::string not_finite(std::string_view property) {
  return join(property, " is not a finite number");
}

std::string not_whole(std::string_view property, double value) {
  return join(property, " ", value, " is not a whole number");
}

std::string unknown(std::string_view property, long long value) {
  return join(property, " ", value, " is not known");
}

std::string empty(std::string_view what) { return join(what, " is empty"); }

std::string too_long(std::string_view what, std::size_t length, std::size_t limit) {
  return join(what, " is ", length, " characters long, the limit is ", limit);
}

std::string too_many(std::string_view things, std::size_t limit) {
  return join("too many ", things, ": the limit is ", limit);
}

std::string invalid_number_format(std::string_view code) {
  return join("number format ", quoted(code), " is not valid");
}

std::string invalid_date(int year, int month, int day) {
  return join("date ", year, "-", padded(month, 2), "-", padded(day, 2), " is not a valid date");
}

std::string invalid_address(std::string_view address) {
  return join("address ", quoted(address), " is not a cell address");
}

std::string address_beyond_grid(std::string_view address, const Grid& grid) {
  return join("address ", quoted(address), " is beyond the last cell ", last_cell(grid));
}

std::string gone(std::string_view thing) {
  return join("the ", thing, " is no longer in the book");
}

std::string foreign(std::string_view thing) {
  return join("the ", thing, " belongs to another book");
}

std::string only_information() { return "only the book information was loaded"; }

std::string sheet_not_loaded(std::string_view sheet) {
  return join("sheet ", quoted(sheet), " is not loaded");
}

std::string row_not_loaded(int row, std::string_view sheet) {
  return join("row ", row, " of sheet ", quoted(sheet), " is not loaded");
}

std::string sheet_partly_loaded(std::string_view sheet) {
  return join("sheet ", quoted(sheet), " is only partly loaded");
}

std::string not_worksheet(int index) { return join("sheet ", index, " is not a worksheet"); }

std::string sheet_name_character(std::string_view name, std::string_view character) {
  return join(sheet_name(name, kForbidden), character_text(character));
}

std::string sheet_name_used(std::string_view name) { return sheet_name(name, " is already used"); }

std::string sheet_name_reserved(std::string_view name) { return sheet_name(name, " is reserved"); }

std::string sheet_name_apostrophe(std::string_view name) {
  return sheet_name(name, " begins or ends with an apostrophe");
}

std::string name_character(std::string_view name, std::string_view character) {
  return join(name_text(name, kForbidden), character_text(character));
}

std::string name_like_address(std::string_view name) {
  return name_text(name, " looks like a cell address");
}

std::string name_of_table(std::string_view name) {
  return name_text(name, " is already used by a table");
}

std::string name_reserved(std::string_view name) { return name_text(name, " is reserved"); }

std::string no_sheets() { return "the book has no sheets"; }

std::string every_sheet_hidden() { return "every sheet is hidden"; }

std::string sheet_hidden(int index) { return join("sheet ", index, " is hidden"); }

std::string only_visible_sheet(std::string_view sheet) {
  return join("sheet ", quoted(sheet), " is the only visible sheet");
}

std::string wrong_kind(CellAddress cell, std::string_view holds, std::string_view wanted) {
  return join("cell ", cell_text(cell), " holds ", holds, ", not ", wanted);
}

std::string part_of_array(CellAddress cell, const CellRange& array) {
  return join("cell ", cell_text(cell), " is part of the array formula in ",
              formula::print_range(array));
}

std::string bound_formula(CellAddress cell) {
  return join("cell ", cell_text(cell),
              " holds the formula of other cells too, which is not understood");
}

std::string merge_of_one_cell(CellAddress cell) {
  return join("merged range ", cell_text(cell), " is a single cell");
}

std::string overlaps_merge(const CellRange& range, const CellRange& merge) {
  return join("range ", formula::print_range(range), " overlaps merged range ",
              formula::print_range(merge));
}

std::string overlaps_table(const CellRange& range, std::string_view table) {
  return join("range ", formula::print_range(range), " overlaps table ", quoted(table));
}

std::string push(formula::Axis axis, int count, int used) {
  const bool rows = axis == formula::Axis::kRows;
  return join("inserting ", count, rows ? " rows" : " columns", " would push used ",
              rows ? "row " : "column ", used, " off the sheet");
}

std::string splits_array(formula::Axis axis, int first, int last, const CellRange& array) {
  return join(axis == formula::Axis::kRows ? "rows " : "columns ", first, "..", last,
              " would split the array formula in ", formula::print_range(array));
}

std::string overlaps_pivot_table(const CellRange& range) {
  return join("range ", formula::print_range(range), " overlaps a pivot table");
}

std::string table_header(int first, int last, std::string_view table) {
  return join("rows ", first, "..", last, " hold the header of table ", quoted(table));
}

std::string table_rows(int first, int last, std::string_view table) {
  return join("rows ", first, "..", last, " hold all data rows of table ", quoted(table));
}

std::string no_filter() { return "the sheet has no auto-filter range"; }
std::string not_picture() { return "the picture data is not a known picture format"; }

std::string not_picture_file(std::string_view path) {
  return file(path).append("is not a known picture format");
}

std::string picture_empty(int index) { return join("picture ", index, " is empty"); }

std::string picture_without_data(int index) {
  return join("picture ", index, " is a link without data");
}

std::string picture_not_possible(std::string_view kind, std::string_view book) {
  return join("picture format ", kind, " is not possible in an ", book, " workbook");
}

std::string formula_error(std::string_view formula, const formula::ParseError& error,
                          const Grid& grid) {
  using Kind = formula::ParseError::Kind;
  if (error.kind == Kind::kTooLong)
    return join("formula is ", error.length, " characters long, the limit is ",
                formula::kMaxFormulaLength);
  if (error.kind == Kind::kBeyondGrid)
    return join("formula refers to ", error.address, ", beyond the last cell ", last_cell(grid));
  return join("formula ", quoted(formula), " is not valid at position ", error.position);
}

std::string formula_unknown_sheet(std::string_view formula, std::string_view sheet) {
  return join("formula ", quoted(formula), " refers to unknown sheet ", quoted(sheet));
}

std::string array_braces() { return "array formula braces are not accepted"; }

std::string file(std::string_view path) { return join("file ", quoted(path), " "); }

std::string unexpected(std::string_view fault) { return join("the operation failed: ", fault); }

}  // namespace engine::api::messages
