#include "engine/xls/record_writer.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

namespace engine::xls {

namespace {

// By the higher byte of a unit. Readers take each part of a text by itself, so no pair is cut.
bool begins_pair(char high_byte) { return (static_cast<unsigned char>(high_byte) & 0xFC) == 0xD8; }

}  // namespace

char* put_double(char* at, double value) {
  const auto bits = std::bit_cast<std::uint64_t>(value);
  at = put32(at, static_cast<std::uint32_t>(bits));
  return put32(at, static_cast<std::uint32_t>(bits >> 32));
}

void RecordWriter::begin(std::uint16_t id) {
  make_room();
  header_ = used_;
  end_at(xls::put32(at(), id));
}

void RecordWriter::end() {
  xls::put16(&buffer_[header_ + 2], static_cast<std::uint32_t>(size_so_far()));
}

void RecordWriter::keep_together(std::size_t count) {
  if (size_so_far() + count <= kMaxData) return;
  end();
  begin(kContinue);
}

void RecordWriter::put(std::string_view bytes) {
  while (!bytes.empty()) {
    keep_together(1);
    const std::size_t part = std::min(bytes.size(), kMaxData - size_so_far());
    std::memcpy(at(), bytes.data(), part);
    used_ += part;
    bytes.remove_prefix(part);
  }
}

void RecordWriter::put_zeros(std::size_t count) {
  for (; count > 0; --count) put8(0);
}

void RecordWriter::put_short_text(const Characters& text) {
  keep_together(2 + text.room_for_one());
  put8(static_cast<std::uint32_t>(text.count()));
  put_characters(text);
}

void RecordWriter::put_long_text(const Characters& text) {
  keep_together(3 + text.room_for_one());
  put16(static_cast<std::uint32_t>(text.count()));
  put_characters(text);
}

void RecordWriter::put_characters(const Characters& text) {
  std::string_view rest = text.bytes();
  while (true) {
    put8(text.wide() ? 1 : 0);
    std::size_t part = std::min(rest.size(), kMaxData - size_so_far());
    part -= part % text.size_of_one();
    if (text.wide() && part < rest.size() && begins_pair(rest[part - 1])) part -= 2;
    put(rest.substr(0, part));
    rest.remove_prefix(part);
    if (rest.empty()) return;
    keep_together(kMaxData);
  }
}

void RecordWriter::record(std::uint16_t id, std::initializer_list<std::uint32_t> numbers) {
  begin(id);
  for (const std::uint32_t number : numbers) put16(number);
  end();
}

void RecordWriter::copy(std::uint16_t id, std::string_view data) {
  make_room();
  char* const begin = xls::put32(at(), id | static_cast<std::uint32_t>(data.size()) << 16);
  if (data.size() <= kMaxData) return end_at(std::ranges::copy(data, begin).out);
  end_at(begin);
  flush();
  output_.write({data.data(), data.size()});
}

void RecordWriter::patch32(std::uint64_t position, std::uint32_t value) {
  flush();
  std::array<char, 4> bytes{};
  xls::put32(bytes.data(), value);
  output_.patch(position, bytes);
}

void RecordWriter::flush() {
  output_.write({buffer_.data(), used_});
  used_ = 0;
}

void put_range(RecordWriter& out, const CellRange& range) {
  for (const int place : {range.row_first, range.row_last, range.column_first, range.column_last})
    out.put16(static_cast<std::uint32_t>(place));
}

}  // namespace engine::xls
