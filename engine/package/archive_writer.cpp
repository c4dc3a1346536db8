#include "engine/package/archive_writer.h"

#include <algorithm>

#include "engine/package/block_packer.h"
#include "engine/package/zip_format.h"

namespace engine::package {
namespace {

constexpr unsigned kVersion = 20;
constexpr unsigned kWideVersion = 45;
constexpr unsigned kUtf8Name = 0x0800;
constexpr unsigned kDate = 1 << 5 | 1;  // 1980-01-01, midnight
constexpr unsigned kWideField = 1;

unsigned flags_of(std::string_view name) {
  const bool ascii = std::all_of(name.begin(), name.end(), [](char c) { return c >= 0; });
  return ascii ? 0 : kUtf8Name;
}

std::uint64_t narrow(std::uint64_t value) { return std::min<std::uint64_t>(value, kFull32); }

// What a local header and a directory entry have in common: version needed up to the name length.
void put_common(std::string& out, unsigned version, std::uint16_t method, std::string_view name) {
  put16(out, version);
  put16(out, flags_of(name));
  put16(out, method);
  put16(out, 0);
  put16(out, kDate);
}

}  // namespace

// Pictures are packed already: to pack them again takes as much memory as they have, for nothing. A
// piece out of the middle tells.
bool ArchiveWriter::gets_smaller(std::string_view bytes) {
  constexpr std::size_t kPiece = std::size_t{1} << 16;
  if (bytes.size() < 4 * kPiece) return !bytes.empty();
  packed_.clear();
  deflater_.pack(bytes.substr(bytes.size() / 2, kPiece), Deflater::Ending::Final, packed_);
  return packed_.size() < kPiece - kPiece / 64;
}

void ArchiveWriter::add(std::string_view name, std::string_view bytes) {
  if (bytes.size() > UINT32_MAX) throw SizeError(UINT32_MAX);
  const bool is_tried = gets_smaller(bytes);
  packed_.clear();
  if (is_tried) deflater_.pack(bytes, Deflater::Ending::Final, packed_);
  const bool smaller = is_tried && packed_.size() < bytes.size();
  const std::string_view data = smaller ? packed_ : bytes;
  write_local_header({std::string(name), data.size(), bytes.size(), output_.position(),
                      crc32_of(bytes), smaller ? kDeflated : kStored, false});
  write_text(data);
}

void ArchiveWriter::add_blocks(std::string_view name, std::size_t block_count,
                               const MakeBlock& make) {
  if (block_count <= 1) {
    std::string text;
    if (block_count == 1) make(0, text);
    add(name, text);
    return;
  }
  const auto offset = output_.position();
  write_local_header({std::string(name), 0, 0, offset, 0, kDeflated, false});
  const auto part = pack_blocks(block_count, make, deflater_,
                                [this](std::string_view packed) { write_text(packed); });
  auto& entry = entries_.back();
  entry.crc = part.crc;
  entry.packed_size = part.packed_size;
  entry.size = part.size;
  std::string sizes;
  put32(sizes, entry.crc);
  put32(sizes, entry.packed_size);
  put32(sizes, entry.size);
  output_.patch(offset + 14, sizes);
}

void ArchiveWriter::copy(const Archive& archive, const ArchiveEntry& entry, std::string_view name) {
  const auto reader = archive.open_packed(entry);
  const bool wide = entry.packed_size >= kFull32 || entry.size >= kFull32;
  write_local_header({std::string(name), entry.packed_size, entry.size, output_.position(),
                      entry.crc, entry.method, wide});
  for (auto block = reader->next(); !block.empty(); block = reader->next()) output_.write(block);
}

void ArchiveWriter::write_local_header(const Written& entry) {
  const bool wide = entry.wide || entry.offset >= kFull32;
  std::string out(kLocalMark);
  put_common(out, wide ? kWideVersion : kVersion, entry.method, entry.name);
  put32(out, entry.crc);
  put32(out, entry.wide ? kFull32 : entry.packed_size);
  put32(out, entry.wide ? kFull32 : entry.size);
  put16(out, entry.name.size());
  put16(out, entry.wide ? 20 : 0);
  out += entry.name;
  if (entry.wide) {
    put16(out, kWideField);
    put16(out, 16);
    put64(out, entry.size);
    put64(out, entry.packed_size);
  }
  entries_.push_back(entry);
  write_text(out);
}

// The zip64 field holds, in this order, what does not fit into 32 bits.
void ArchiveWriter::write_directory_entry(const Written& entry) {
  std::string wide;
  for (const auto value : {entry.size, entry.packed_size, entry.offset}) {
    if (value >= kFull32) put64(wide, value);
  }
  const auto version = wide.empty() ? kVersion : kWideVersion;
  std::string out(kDirectoryMark);
  put16(out, version);
  put_common(out, version, entry.method, entry.name);
  put32(out, entry.crc);
  put32(out, narrow(entry.packed_size));
  put32(out, narrow(entry.size));
  put16(out, entry.name.size());
  put16(out, wide.empty() ? 0 : wide.size() + 4);
  put_number(out, 0, 10);  // comment, disk, attributes
  put32(out, narrow(entry.offset));
  out += entry.name;
  if (!wide.empty()) {
    put16(out, kWideField);
    put16(out, wide.size());
    out += wide;
  }
  write_text(out);
}

void ArchiveWriter::write_end(std::uint64_t directory_offset, std::uint64_t directory_size) {
  std::string out;
  const auto count = entries_.size();
  if (count >= kFull16 || directory_offset >= kFull32 || directory_size >= kFull32) {
    const auto wide_offset = output_.position();
    out += kWideEndMark;
    put64(out, kWideEndSize - 12);
    put16(out, kWideVersion);
    put16(out, kWideVersion);
    put64(out, 0);  // disks
    put64(out, count);
    put64(out, count);
    put64(out, directory_size);
    put64(out, directory_offset);
    out += kWideLocatorMark;
    put32(out, 0);
    put64(out, wide_offset);
    put32(out, 1);
  }
  out += kEndMark;
  put32(out, 0);
  put16(out, std::min<std::size_t>(count, kFull16));
  put16(out, std::min<std::size_t>(count, kFull16));
  put32(out, narrow(directory_size));
  put32(out, narrow(directory_offset));
  put16(out, 0);
  write_text(out);
}

void ArchiveWriter::finish() {
  const auto offset = output_.position();
  for (const auto& entry : entries_) write_directory_entry(entry);
  write_end(offset, output_.position() - offset);
}

}  // namespace engine::package
