// Compound files: a file system inside one file.
//
// A compound file is a row of equal sectors, of 512 or 4096 bytes. A table holds for every sector
// the next one of its chain, and a chain is what a stream, the directory or the table's own list
// lies in. Streams shorter than 4096 bytes lie in a finer set of sectors, of 64 bytes, with a table
// of its own; that set is the stream of the directory's root.
//
// Reading believes nothing: a chain has no more sectors than the file, one that leads nowhere ends
// there, and the directory is taken as a plain list where its tree is broken.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "engine/package/source.h"

namespace engine::package {

// What a folder or stream has besides its place and bytes. Files keep it for programs that embed
// one another's documents; names are UTF-8.
struct CompoundItem {
  std::string name;
  std::array<char, 16> class_id{};
  std::uint32_t state = 0;
  std::uint64_t created = 0;
  std::uint64_t changed = 0;
};

struct CompoundEntry {
  CompoundItem item;
  bool is_stream = false;
  std::size_t folder = 0;  // number of the entry that holds this one; the root holds itself
  std::uint32_t first_sector = 0;
  std::uint64_t size = 0;  // of a stream, as the directory says; its chain may be shorter
};

// The bytes of a stream, which stay where they lie in the file.
class CompoundStream {
 public:
  std::uint64_t size() const { return size_; }

  // Fills `into` from `offset`; the bytes must lie in the stream.
  void read(std::uint64_t offset, std::span<char> into) const;

  // The bytes from `offset` to where the stream is cut; empty when they lie in a file.
  std::string_view view_at(std::uint64_t offset) const;

 private:
  friend class CompoundFile;

  // Bytes that lie side by side in the file, up to the next run.
  struct Run {
    std::uint64_t offset;  // in the stream
    std::uint64_t place;   // in the file
  };

  void append(std::uint64_t place, std::uint64_t length);
  std::size_t run_at(std::uint64_t offset) const;
  std::uint64_t end_of(std::size_t run) const {
    return run + 1 < runs_.size() ? runs_[run + 1].offset : size_;
  }

  std::shared_ptr<const Source> source_;
  std::vector<Run> runs_;
  std::uint64_t size_ = 0;
};

// One open compound file.
class CompoundFile {
 public:
  // Throws FileError when there is no header or no directory.
  explicit CompoundFile(std::shared_ptr<const Source> source);

  // In the order of the directory; the first one is the root.
  const std::vector<CompoundEntry>& entries() const { return entries_; }

  // The stream in the root that has the first of these names to be found there. Without one there,
  // the same in any folder; null without one at all. Case does not matter.
  const CompoundEntry* find_stream(std::span<const std::string_view> names) const;
  const CompoundEntry* find_stream(std::string_view name) const { return find_stream({&name, 1}); }

  CompoundStream open(const CompoundEntry& entry) const;

  // Bytes of the whole file.
  std::uint64_t size() const { return source_->size(); }

 private:
  using Table = std::vector<std::uint32_t>;

  std::uint64_t place_of(std::uint32_t sector) const {
    return (std::uint64_t{sector} + 1) << sector_shift_;
  }
  void read_table(std::string_view header);
  CompoundStream chain(std::uint32_t first, std::uint64_t size) const;
  CompoundStream mini_chain(std::uint32_t first, std::uint64_t size) const;
  void read_directory(const CompoundStream& directory);

  std::shared_ptr<const Source> source_;
  unsigned sector_shift_ = 0;
  std::uint64_t sectors_ = 0;  // in the file; the last one may be short
  Table table_;
  Table mini_table_;
  CompoundStream mini_stream_;
  std::vector<CompoundEntry> entries_;
};

// Whether a compound file has a stream of one of the names, which are ASCII. A file whose directory
// is damaged has one if an entry of the name lies anywhere.
bool has_stream(const std::shared_ptr<const Source>& source,
                std::span<const std::string_view> names);

}  // namespace engine::package
