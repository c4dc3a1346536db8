// Cells whose faults are not marked: a record that says so, then one for each list of ranges.
#pragma once

#include <string_view>

#include "engine/workbook/ignored_errors.h"
#include "engine/xls/record_writer.h"
#include "engine/xls/sheet_records.h"

namespace engine::xls {

// Of a feature's record.
bool is_of_ignored_errors(std::string_view data);

void read_ignored_errors(Fields& in, SheetReading& to);
void write_ignored_errors(RecordWriter& out, const IgnoredErrors& errors);

}  // namespace engine::xls
