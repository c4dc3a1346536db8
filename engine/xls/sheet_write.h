// Writing the substreams of sheets: of new ones, of loaded ones that have changed, and of those
// that go out as the file has them.
#pragma once

#include <cstdint>
#include <vector>

#include "engine/xls/book_write.h"
#include "engine/xls/drawing_write.h"
#include "engine/xls/record_writer.h"
#include "engine/xls/sheet_groups.h"

namespace engine::xls {

// Writes all sheets in their order and gives where they begin: kNowhere for one that the file does
// not have.
std::vector<std::uint64_t> write_sheets(RecordWriter& out, const BookWriting& book,
                                        Drawings& drawings, std::vector<NamedPlace>& places);

// The first record of a substream.
void write_beginning(RecordWriter& out, std::uint16_t kind);

}  // namespace engine::xls
