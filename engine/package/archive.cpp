#include "engine/package/archive.h"

#include <algorithm>
#include <cstring>

#include "engine/package/archive_directory.h"
#include "engine/package/file_error.h"
#include "engine/package/part_stream.h"
#include "engine/package/zip_format.h"
#include "engine/text/fold.h"

namespace engine::package {
namespace {

// A part may unpack to 4 GiB, and beyond 64 MiB to a thousand times its packed size. No stream can
// expand further than a match of 258 bytes for every two bits, so a size beyond that is a lie and
// nothing is allocated for it.
constexpr std::uint64_t kMaxSize = std::uint64_t{1} << 32;
constexpr std::uint64_t kFreeSize = 64 * 1024 * 1024;
constexpr std::uint64_t kMaxExpansion = 1000;
constexpr std::uint64_t kDeflateExpansion = 1032;

// From this size on a second thread pays for its start.
constexpr std::uint64_t kAheadSize = 1024 * 1024;

void check_sizes(const ArchiveEntry& entry) {
  const auto packed = entry.packed_size;
  if (entry.method != kStored && entry.method != kDeflated) {
    throw_damaged(entry.name, "is packed with unknown method " + std::to_string(entry.method));
  }
  if (entry.method == kStored && entry.size != packed) {
    throw_damaged(entry.name, "is stored with two different sizes");
  }
  const bool too_big = entry.size > kMaxSize ||
                       (entry.size > kFreeSize && entry.size / kMaxExpansion > packed) ||
                       entry.size / kDeflateExpansion > packed;
  if (too_big) {
    throw_damaged(entry.name, "unpacks from " + std::to_string(packed) + " to " +
                                  std::to_string(entry.size) + " bytes, beyond the limit");
  }
}

PartStream::Form form_of(const ArchiveEntry& entry) {
  return entry.method == kStored ? PartStream::Form::Stored : PartStream::Form::Deflated;
}

// Blocks of two parts end at the same places, as both are filled to the same size.
bool equal_blocks(BlockReader& a, BlockReader& b) {
  for (;;) {
    const auto left = a.next();
    const auto right = b.next();
    if (!std::equal(left.begin(), left.end(), right.begin(), right.end())) return false;
    if (left.empty()) return true;
  }
}

}  // namespace

Archive::Archive(std::shared_ptr<const Source> source) : source_(std::move(source)) {
  join_duplicates(read_directory(*source_));
}

void Archive::join_duplicates(std::vector<ArchiveEntry> all) {
  entries_.reserve(all.size());
  for (auto& entry : all) {
    const auto [known, is_new] = by_name_.try_emplace(lower_ascii(entry.name), entries_.size());
    if (is_new) {
      entries_.push_back(std::move(entry));
    } else if (!same_content(entries_[known->second], entry)) {
      throw_damaged(entry.name, "stands in the archive twice with different content");
    }
  }
}

bool Archive::same_content(const ArchiveEntry& a, const ArchiveEntry& b) const {
  if (a.size != b.size || a.crc != b.crc) return false;
  const bool one_entry =
      a.header_offset == b.header_offset && a.packed_size == b.packed_size && a.method == b.method;
  return one_entry || equal_blocks(*open_here(a), *open_here(b));
}

const ArchiveEntry* Archive::find(std::string_view name) const {
  if (name.starts_with('/')) name.remove_prefix(1);
  const auto found = by_name_.find(lower_ascii(name));
  return found == by_name_.end() ? nullptr : &entries_[found->second];
}

std::uint64_t Archive::data_offset(const ArchiveEntry& entry) const {
  std::string header(kLocalHeaderSize, '\0');
  source_->read(entry.header_offset, header);
  if (!header.starts_with(kLocalMark)) throw_damaged(entry.name, "local header is missing");
  const std::uint64_t skipped = kLocalHeaderSize + get16(header, 26) + get16(header, 28);
  if (skipped + entry.packed_size > entry.limit - entry.header_offset) {
    throw_damaged(entry.name, "overlaps what follows it");
  }
  return entry.header_offset + skipped;
}

std::string Archive::read(const ArchiveEntry& entry) const {
  check_sizes(entry);
  PartStream stream(source_, entry, data_offset(entry), form_of(entry));
  std::string text(static_cast<std::size_t>(entry.size), '\0');
  stream.fill(text);
  return text;
}

std::unique_ptr<BlockReader> Archive::open(const ArchiveEntry& entry) const {
  if (entry.size < kAheadSize || entry.method == kStored) return open_here(entry);
  check_sizes(entry);
  return read_blocks_ahead(PartStream(source_, entry, data_offset(entry), form_of(entry)));
}

std::unique_ptr<BlockReader> Archive::open_here(const ArchiveEntry& entry) const {
  check_sizes(entry);
  return read_blocks(PartStream(source_, entry, data_offset(entry), form_of(entry)));
}

std::unique_ptr<BlockReader> Archive::open_packed(const ArchiveEntry& entry) const {
  return read_blocks(PartStream(source_, entry, data_offset(entry), PartStream::Form::Packed));
}

}  // namespace engine::package
