// Writing the groups of a sheet's records from the model.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "engine/package/little_endian.h"
#include "engine/xls/book_write.h"
#include "engine/xls/cells_write.h"
#include "engine/xls/drawing_write.h"
#include "engine/xls/fields.h"
#include "engine/xls/record_merge.h"
#include "engine/xls/record_writer.h"
#include "engine/xls/sheet_part.h"

namespace engine::xls {

// Where in the output a place in the stream is named. Both count from the first sheet's beginning.
struct NamedPlace {
  std::uint64_t at;
  std::uint64_t place;
};

// What the groups of a sheet are written from, and to.
struct SheetWriting {
  RecordWriter& out;
  const BookWriting& book;
  const Sheet& sheet;
  const SheetContents& contents;
  const SheetContents* base;  // as the file has it, without its cells; null for a new sheet
  CellsWriter& cells;
  Drawings& drawings;
  std::vector<NamedPlace>& places;
  const DrawingPart* drawing = nullptr;  // that the file has; null for a new sheet
  const RecordEdits* edits = nullptr;    // of carried records; likewise
  std::uint64_t index = 0;               // where the record of that name stands, once it is written
};

struct SheetGroupEntry {
  // Whether it differs from what the file has.
  bool (*changed)(const SheetWriting& to);
  // `old` stands at the first record that the file has of it, or is null.
  void (*write)(SheetWriting& to, RecordReader* old);
};

const SheetGroupEntry& entry_of(SheetGroup group);

// Tells the index of a sheet where its columns begin.
void note_columns(SheetWriting& to);

// The data of a record, with fields that are set: what the file has beside these stays.
class PatchedData {
 public:
  // `size` is what a new one has at least.
  PatchedData(RecordReader* old, std::size_t size)
      : data_(old ? std::string(old->whole_data()) : std::string()), is_new_(!old) {
    if (data_.size() < size) data_.resize(size);
  }

  bool is_new() const { return is_new_; }
  const std::string& data() const { return data_; }
  std::uint32_t get16(std::size_t at) const { return package::get16(data_, at); }
  void set8(std::size_t at, std::uint32_t value) { put8(&data_[at], value); }
  void set16(std::size_t at, std::uint32_t value) { put16(&data_[at], value); }
  void set_double(std::size_t at, double value) { put_double(&data_[at], value); }
  void set_bits16(std::size_t at, std::uint32_t mask, std::uint32_t bits) {
    set16(at, (get16(at) & ~mask) | (bits & mask));
  }

 private:
  std::string data_;
  bool is_new_;
};

}  // namespace engine::xls
