// A part's bytes as they come out of an archive, unpacked and verified.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "engine/package/archive.h"
#include "engine/package/block_reader.h"
#include "engine/package/deflate.h"
#include "engine/package/source.h"

namespace engine::package {

// Fills whatever memory it is given. Throws FileError, also when size or checksum at the end are
// not those of the directory.
class PartStream {
 public:
  // Stored and Packed take the bytes as they lie; Packed does not verify them.
  enum class Form { Stored, Deflated, Packed };

  PartStream(std::shared_ptr<const Source> source, const ArchiveEntry& entry,
             std::uint64_t data_offset, Form form);

  // The number of bytes filled in: less than asked for only at the end.
  std::size_t fill(std::span<char> out);

 private:
  std::size_t fill_plain(std::span<char> out);
  std::size_t inflate(std::span<char> out);
  void expect_end();
  std::span<const char> input();
  void verify();

  std::shared_ptr<const Source> source_;
  std::string name_;
  Form form_;
  std::uint32_t expected_crc_;
  std::uint64_t in_at_;
  std::uint64_t in_left_;  // not yet taken from the source
  std::uint64_t out_left_;
  std::uint32_t crc_ = 0;
  bool ended_ = false;
  std::unique_ptr<Inflater> inflater_;
  std::vector<char> buffer_;  // packed bytes of a source that lies in a file
  std::span<const char> packed_;
};

// Blocks made when they are asked for.
std::unique_ptr<BlockReader> read_blocks(PartStream stream);

// Blocks made ahead on a second thread; on the caller's where no thread can be had.
std::unique_ptr<BlockReader> read_blocks_ahead(PartStream stream);

}  // namespace engine::package
