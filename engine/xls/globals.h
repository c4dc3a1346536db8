// The first substream of a workbook: what all sheets share.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "engine/workbook/codec.h"
#include "engine/workbook/workbook.h"
#include "engine/xls/drawing_group.h"
#include "engine/xls/link_table.h"
#include "engine/xls/record_reader.h"
#include "engine/xls/styles_read.h"

namespace engine::xls {

struct Globals {
  std::optional<Cipher> cipher;  // of an encrypted stream
  LinkTable links;
  DrawingGroup drawings;
  std::vector<std::uint32_t> sheets;         // where their substreams begin, in the file's order
  std::vector<std::uint64_t> pivot_sources;  // records of cells that pivot tables show data of
  FileStyles styles;
  bool date1904 = false;

  // The number in the model of a format.
  std::uint32_t format(std::size_t number) const { return styles.format(number); }
};

// Reads from the stream's beginning into an empty workbook, of which the sheets stay unread. Throws
// FileError.
void read_globals(RecordReader& reader, LoadScope scope, Workbook& book, Globals& globals);

}  // namespace engine::xls
