// Data validations: a record that counts them, then one for each.
//
// The formulas of a rule are tokens whose references count from the corner of its cells. The
// entries of a list that stands in the rule itself are one text, parted by zeros.
#pragma once

#include "engine/xls/book_write.h"
#include "engine/xls/record_writer.h"
#include "engine/xls/sheet_records.h"

namespace engine::xls {

void read_validation(Fields& in, SheetReading& to);

// Throws FileTargetError for what the format cannot hold.
void write_validations(RecordWriter& out, const BookWriting& book, const Sheet& sheet);

}  // namespace engine::xls
