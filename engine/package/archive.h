// Reading zip archives.
//
// The central directory at the end of the archive tells names, sizes and places, and it alone is
// believed: local headers may hold zeros, and the data descriptors behind the data need not carry a
// signature, so they are never looked at. Of a local header only the lengths of its two variable
// fields count, which tell where the data begins.
//
//   local header (30 bytes, name, extra)  data  …  central directory  [zip64 end]  end record
//
// Every entry ends before the next one begins, so the work a directory can demand is bounded by
// the archive's size times what deflate can expand.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "engine/package/block_reader.h"
#include "engine/package/source.h"

namespace engine::package {

struct ArchiveEntry {
  std::string name;  // forward slashes, no leading slash
  std::uint64_t packed_size = 0;
  std::uint64_t size = 0;
  std::uint64_t header_offset = 0;
  std::uint64_t limit = 0;  // where the next entry or the directory begins
  std::uint32_t crc = 0;
  std::uint16_t method = 0;  // 0 stored, 8 deflate
};

class Archive {
 public:
  // Reads the directory. Throws FileError: "is damaged: …", or "is protected by a password" when
  // an entry is encrypted. Whether the file is an archive at all tells file_kind().
  explicit Archive(std::shared_ptr<const Source> source);

  // In the directory's order, without folders; two entries of one name and content are one.
  const std::vector<ArchiveEntry>& entries() const { return entries_; }

  // Letters A to Z compare without case; a leading slash is skipped. Null when there is none.
  const ArchiveEntry* find(std::string_view name) const;

  // The whole part, sizes and checksum verified.
  std::string read(const ArchiveEntry& entry) const;

  // The part in blocks. Big ones are unpacked ahead on a second thread; dropping the reader early
  // ends it. The reader keeps the source alive, not the archive.
  std::unique_ptr<BlockReader> open(const ArchiveEntry& entry) const;

  // The part in blocks as it lies in the archive, `packed_size` bytes in all, unverified.
  std::unique_ptr<BlockReader> open_packed(const ArchiveEntry& entry) const;

 private:
  std::uint64_t data_offset(const ArchiveEntry& entry) const;
  std::unique_ptr<BlockReader> open_here(const ArchiveEntry& entry) const;
  void join_duplicates(std::vector<ArchiveEntry> all);
  bool same_content(const ArchiveEntry& a, const ArchiveEntry& b) const;

  std::shared_ptr<const Source> source_;
  std::vector<ArchiveEntry> entries_;
  std::unordered_map<std::string, std::size_t> by_name_;  // lower case
};

}  // namespace engine::package
