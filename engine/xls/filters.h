// The filter of a sheet: whether it hides rows, how many columns it has, then a record for each
// column with a criterion. Its range is what a hidden name of the sheet stands for.
//
// A column's record has two conditions. Each is ten bytes (the kind of its value, the comparison,
// the value) but for the characters of texts, which stand behind both. What a column shows beyond
// two values, by dates or by looks is in records of later programs, as is the sort.
#pragma once

#include <string_view>

#include "engine/xls/record_writer.h"
#include "engine/xls/sheet_records.h"

namespace engine::xls {

void read_filtered(Fields& in, SheetReading& to);
void read_filter_info(Fields& in, SheetReading& to);
void read_filter_column(Fields& in, SheetReading& to);

// Records of later programs are looked at when all have come; tables may have such, too.
bool is_of_sheet_filter(std::string_view data);
bool is_sort_of_sheet_filter(std::string_view data);
void read_future_filter(Fields& in, SheetReading& to);
void continue_filter(std::string_view data, SheetReading& to);
void finish_filter(SheetReading& reading);

void write_filter(RecordWriter& out, const Sheet& sheet);

}  // namespace engine::xls
