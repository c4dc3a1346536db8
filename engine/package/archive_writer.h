// Writing zip archives.
//
// Entries follow one another: local header, packed bytes; the directory comes last. Entries carry
// a fixed date, sizes in the local header and no data descriptor; zip64 fields appear only where a
// size, an offset or the count needs them. Equal input gives equal bytes, whatever the threads do.
//
// A big part is made in blocks. Each block is packed on its own and ends on a byte boundary, so
// packed blocks just follow one another, and two threads can each make and pack every other block.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "engine/package/archive.h"
#include "engine/package/block_packer.h"
#include "engine/package/deflate.h"
#include "engine/package/output.h"

namespace engine::package {

class ArchiveWriter {
 public:
  // Appends the text of one block. Called once for every block, from two threads at a time, not
  // in order; what it reads must not change meanwhile.
  using MakeBlock = package::MakeBlock;

  explicit ArchiveWriter(Output& output) : output_(output) {}

  // Names use forward slashes and no leading one; entries stand in the order of the calls.
  void add(std::string_view name, std::string_view bytes);
  void add_blocks(std::string_view name, std::size_t block_count, const MakeBlock& make);

  // The entry's packed bytes as they are stored, under its own name or another.
  void copy(const Archive& archive, const ArchiveEntry& entry) { copy(archive, entry, entry.name); }
  void copy(const Archive& archive, const ArchiveEntry& entry, std::string_view name);

  // Writes the directory; nothing may be added afterwards.
  void finish();

 private:
  struct Written {
    std::string name;
    std::uint64_t packed_size = 0;
    std::uint64_t size = 0;
    std::uint64_t offset = 0;
    std::uint32_t crc = 0;
    std::uint16_t method = 0;
    bool wide = false;  // the local header has zip64 sizes
  };

  bool gets_smaller(std::string_view bytes);
  void write_local_header(const Written& entry);
  void write_directory_entry(const Written& entry);
  void write_end(std::uint64_t directory_offset, std::uint64_t directory_size);
  void write_text(std::string_view bytes) { output_.write({bytes.data(), bytes.size()}); }

  Output& output_;
  Deflater deflater_;
  std::string packed_;
  std::vector<Written> entries_;
};

}  // namespace engine::package
