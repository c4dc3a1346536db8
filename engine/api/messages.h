// The texts of refusals: lower case, no final stop, cause and offending value named.
//
// Whole numbers stand in decimal, other numbers in their shortest form, texts of the caller in
// double quotes and cut to 64 characters, cells as A1. Ranges include both ends.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "engine/formula/formula.h"
#include "engine/workbook/cell.h"

namespace engine::api::messages {

// Places.
std::string row(int row, const Grid& grid);
std::string column(int column, const Grid& grid);
std::string row_order(int first, int last);
std::string column_order(int first, int last);
// `thing` is what is counted ("sheet", "font"), `count` how many there are.
std::string index(std::string_view thing, long long index, std::size_t count);

// Arguments. `property` is what the value stands for ("zoom", "font size", "colour").
std::string out_of_range(std::string_view property, int value, int low, int high);
std::string out_of_range(std::string_view property, double value, double low, double high);
// Without an upper end.
std::string too_small(std::string_view property, int value, int low);
std::string not_positive(std::string_view property, double value);
std::string not_finite(std::string_view property);
std::string not_whole(std::string_view property, double value);
std::string unknown(std::string_view property, long long value);
std::string empty(std::string_view what);
std::string too_long(std::string_view what, std::size_t length, std::size_t limit);
std::string too_many(std::string_view things, std::size_t limit);
std::string invalid_number_format(std::string_view code);
std::string invalid_date(int year, int month, int day);
std::string invalid_address(std::string_view address);
std::string address_beyond_grid(std::string_view address, const Grid& grid);

// Objects: "sheet", "format", "font", "auto-filter", "filter column".
std::string gone(std::string_view thing);
std::string foreign(std::string_view thing);

// What is not in memory.
std::string only_information();
std::string sheet_not_loaded(std::string_view sheet);
std::string row_not_loaded(int row, std::string_view sheet);
std::string sheet_partly_loaded(std::string_view sheet);
std::string not_worksheet(int index);

// Sheets. A character is given as it stands in the name.
std::string sheet_name_character(std::string_view name, std::string_view character);
std::string sheet_name_used(std::string_view name);
std::string sheet_name_reserved(std::string_view name);
std::string sheet_name_apostrophe(std::string_view name);

// Defined names.
std::string name_character(std::string_view name, std::string_view character);
std::string name_like_address(std::string_view name);
std::string name_of_table(std::string_view name);
std::string name_reserved(std::string_view name);
std::string no_sheets();
std::string every_sheet_hidden();
std::string sheet_hidden(int index);
std::string only_visible_sheet(std::string_view sheet);

// Cells. `holds` and `wanted` as "text", "a number".
std::string wrong_kind(CellAddress cell, std::string_view holds, std::string_view wanted);
std::string part_of_array(CellAddress cell, const CellRange& array);
std::string bound_formula(CellAddress cell);

// Ranges that must not meet others.
std::string merge_of_one_cell(CellAddress cell);
std::string overlaps_merge(const CellRange& range, const CellRange& merge);
std::string overlaps_table(const CellRange& range, std::string_view table);
std::string overlaps_pivot_table(const CellRange& range);

// Rows and columns that are inserted or removed, `first` to `last`.
std::string push(formula::Axis axis, int count, int used);
std::string splits_array(formula::Axis axis, int first, int last, const CellRange& array);
std::string overlaps_pivot_table(const CellRange& range);
std::string table_header(int first, int last, std::string_view table);
std::string table_rows(int first, int last, std::string_view table);

std::string no_filter();
// Pictures. `kind` as "GIF", `book` as ".xls".
std::string not_picture();
std::string not_picture_file(std::string_view path);
std::string picture_empty(int index);
std::string picture_without_data(int index);
std::string picture_not_possible(std::string_view kind, std::string_view book);

// Formulas.
std::string formula_error(std::string_view formula, const formula::ParseError& error,
                          const Grid& grid);
std::string formula_unknown_sheet(std::string_view formula, std::string_view sheet);
std::string array_braces();

// The subject of a sentence about a file; its predicate is a FileError's text.
std::string file(std::string_view path);

// A fault that nobody foresaw, by what the C++ library says of it.
std::string unexpected(std::string_view fault);

}  // namespace engine::api::messages
