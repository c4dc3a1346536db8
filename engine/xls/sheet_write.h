// Writing the substream of a sheet, whose records stand in an order that the format fixes.
#pragma once

#include <cstdint>
#include <vector>

#include "engine/xls/book_write.h"
#include "engine/xls/notes_write.h"
#include "engine/xls/record_writer.h"

namespace engine::xls {

// Where in the output a place in the stream is named. Both count from the first sheet's beginning.
struct NamedPlace {
  std::uint64_t at;
  std::uint32_t place;
};

void write_sheet(RecordWriter& out, const BookWriting& book, const Sheet& sheet, Drawings& drawings,
                 std::vector<NamedPlace>& places);

// The first record of a substream.
void write_beginning(RecordWriter& out, std::uint16_t kind);

}  // namespace engine::xls
