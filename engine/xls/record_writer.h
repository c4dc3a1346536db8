// Laying out the records of a workbook stream.
//
// A record is its number, the size of its data and the data. Data of more than 8,224 bytes goes on
// in CONTINUE records; a text that is cut has its option byte anew behind the cut. Records come
// into being in one buffer, which is handed on whenever a further one might not find room in it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "engine/formula/reference.h"
#include "engine/package/output.h"
#include "engine/xls/characters.h"
#include "engine/xls/records.h"

namespace engine::xls {

// Little-endian numbers where there is room; each returns the end.
inline char* put8(char* at, std::uint32_t value) {
  *at = static_cast<char>(value);
  return at + 1;
}
inline char* put16(char* at, std::uint32_t value) { return put8(put8(at, value), value >> 8); }
inline char* put32(char* at, std::uint32_t value) { return put16(put16(at, value), value >> 16); }
char* put_double(char* at, double value);

class RecordWriter {
 public:
  static constexpr std::size_t kMaxData = 8224;

  explicit RecordWriter(package::Output& output) : output_(output), buffer_(kBufferSize) {}
  RecordWriter(const RecordWriter&) = delete;
  RecordWriter& operator=(const RecordWriter&) = delete;
  ~RecordWriter() = default;

  // What is put until the end is the record's data.
  void begin(std::uint16_t id);
  void end();

  void put8(std::uint32_t value) { end_at(xls::put8(room(1), value)); }
  void put16(std::uint32_t value) { end_at(xls::put16(room(2), value)); }
  void put32(std::uint32_t value) { end_at(xls::put32(room(4), value)); }
  void put_double(double value) { end_at(xls::put_double(room(8), value)); }
  // Bytes that may be parted anywhere.
  void put(std::string_view bytes);
  void put_zeros(std::size_t count);

  // A text: its option byte and characters, behind their number in one byte or two.
  void put_short_text(const Characters& text);
  void put_long_text(const Characters& text);
  void put_characters(const Characters& text);

  // Goes on in a further record where so many bytes find no room any more in this one.
  void keep_together(std::size_t count);

  // A record of numbers of two bytes.
  void record(std::uint16_t id, std::initializer_list<std::uint32_t> numbers);

  // A record as it stands in a file, of any size.
  void copy(std::uint16_t id, std::string_view data);

  // Where whole records, or what is none, are put by their bytes, at most kRoom of them; end_at()
  // tells how far.
  static constexpr std::size_t kRoom = kMaxData + 4;
  char* records() {
    make_room();
    return at();
  }
  void end_at(const char* end) { used_ = static_cast<std::size_t>(end - buffer_.data()); }

  // Of the next byte in the output.
  std::uint64_t position() const { return output_.position() + used_; }
  // Bytes of the record that have been put, or its last part's.
  std::size_t size_so_far() const { return used_ - header_ - 4; }

  void patch32(std::uint64_t position, std::uint32_t value);
  // Hands on what is still in the buffer.
  void flush();

 private:
  static constexpr std::size_t kBufferSize = 64 * 1024;

  char* at() { return buffer_.data() + used_; }
  void make_room() {
    if (used_ + kRoom > buffer_.size()) flush();
  }
  // Where the next bytes of the record stand, which are not parted.
  char* room(std::size_t count) {
    keep_together(count);
    return at();
  }

  package::Output& output_;
  std::vector<char> buffer_;
  std::size_t used_ = 0;
  std::size_t header_ = 0;  // of the record that is being written
};

// Rows and columns, first and last of each.
void put_range(RecordWriter& out, const CellRange& range);

}  // namespace engine::xls
