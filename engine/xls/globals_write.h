// Writing what all sheets share, in front of them: of a new book, or of a loaded one with what its
// file has there.
#pragma once

#include <cstdint>
#include <vector>

#include "engine/xls/book_write.h"
#include "engine/xls/drawing_write.h"
#include "engine/xls/record_writer.h"

namespace engine::xls {

// Gives where in the output the beginnings of the sheets are named, in their order.
std::vector<std::uint64_t> write_globals(RecordWriter& out, const BookWriting& book,
                                         const Drawings& drawings);

}  // namespace engine::xls
