// End record, at the very end but for a comment of at most 65535 bytes:
//   0 PK\5\6   10 entry count (2)   12 directory size (4)   16 directory offset (4)
//   20 comment length (2)
// Where a field is all ones, the zip64 end record holds it. Its locator stands right before the end
// record: 0 PK\6\7   8 offset of the record (8). The record: 0 PK\6\6   32 entry count (8)
//   40 directory size (8)   48 directory offset (8)
// Directory entry, followed by name, extra fields and comment:
//   0 PK\1\2   8 flags (2)   10 method (2)   16 checksum (4)   20 packed size (4)   24 size (4)
//   28 name, 30 extra, 32 comment length (2 each)   42 offset of the local header (4)
#include "engine/package/archive_directory.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>

#include "engine/package/file_error.h"
#include "engine/package/zip_format.h"

namespace engine::package {
namespace {

constexpr std::size_t kMaxComment = 0xFFFF;
constexpr std::string_view kPlace = "zip directory";

// Encrypted, strongly encrypted, directory encrypted.
constexpr unsigned kEncrypted = 0x0001 | 0x0040 | 0x2000;

struct Extent {
  std::uint64_t offset = 0;
  std::uint64_t size = 0;
  std::uint64_t count = 0;
  bool exact_count = false;  // else modulo 65536, as writers without zip64 leave it
};

std::string read_bytes(const Source& source, std::uint64_t offset, std::uint64_t size) {
  std::string bytes(static_cast<std::size_t>(size), '\0');
  source.read(offset, bytes);
  return bytes;
}

// Where the end record begins in the archive's tail. A comment that fills the rest exactly is the
// sure sign; without one, bytes behind the archive are tolerated.
std::size_t find_end_record(std::string_view tail) {
  auto loose = std::string_view::npos;
  auto at = tail.rfind(kEndMark);
  for (; at != std::string_view::npos; at = at == 0 ? at : tail.rfind(kEndMark, at - 1)) {
    if (tail.size() - at >= kEndSize) {
      const auto end = at + kEndSize + get16(tail, at + 20);
      if (end == tail.size()) return at;
      if (end < tail.size() && loose == std::string_view::npos) loose = at;
    }
    if (at == 0) break;
  }
  if (loose == std::string_view::npos) throw_damaged(kPlace, "is missing");
  return loose;
}

// Nothing when there is no locator before the end record.
std::optional<Extent> find_wide_end(const Source& source, std::uint64_t end_at) {
  if (end_at < kWideLocatorSize) return {};
  const auto locator = read_bytes(source, end_at - kWideLocatorSize, kWideLocatorSize);
  if (!locator.starts_with(kWideLocatorMark)) return {};
  const auto at = get64(locator, 8);
  if (at > end_at || end_at - at < kWideEndSize) throw_damaged(kPlace, "zip64 end is out of place");
  const auto record = read_bytes(source, at, kWideEndSize);
  if (!record.starts_with(kWideEndMark)) throw_damaged(kPlace, "zip64 end is missing");
  return Extent{get64(record, 48), get64(record, 40), get64(record, 32), true};
}

Extent find_directory(const Source& source) {
  const auto tail_size = std::min<std::uint64_t>(source.size(), kEndSize + kMaxComment);
  const auto tail_at = source.size() - tail_size;
  const auto tail = read_bytes(source, tail_at, tail_size);
  const auto at = find_end_record(tail);
  const std::uint64_t end_at = tail_at + at;
  Extent extent{get32(tail, at + 16), get32(tail, at + 12), get16(tail, at + 10), false};
  if (extent.offset == kFull32 || extent.size == kFull32 || extent.count == kFull16) {
    extent = find_wide_end(source, end_at).value_or(extent);
  }
  if (extent.offset > end_at || extent.size > end_at - extent.offset) {
    throw_damaged(kPlace, "lies beyond the end of the file");
  }
  return extent;
}

std::string normal_name(std::string_view stored) {
  std::string name(stored);
  std::replace(name.begin(), name.end(), '\\', '/');
  name.erase(0, std::min(name.find_first_not_of('/'), name.size()));
  return name;
}

// The extra field with identifier 1 holds, in this order, those of the three that did not fit.
void read_wide_fields(std::string_view extra, ArchiveEntry& entry) {
  std::uint64_t* const fields[] = {&entry.size, &entry.packed_size, &entry.header_offset};
  while (extra.size() >= 4) {
    const auto size = get16(extra, 2);
    if (size > extra.size() - 4) return;
    if (get16(extra, 0) == 1) {
      auto values = extra.substr(4, size);
      for (auto* const field : fields) {
        if (*field != kFull32 || values.size() < 8) continue;
        *field = get64(values, 0);
        values.remove_prefix(8);
      }
      return;
    }
    extra.remove_prefix(4 + size);
  }
}

// `record` begins with the entry; returns the length of the whole record.
std::size_t read_entry(std::string_view record, ArchiveEntry& entry) {
  const std::size_t name_size = get16(record, 28);
  const std::size_t extra_size = get16(record, 30);
  const std::size_t size = kDirectoryEntrySize + name_size + extra_size + get16(record, 32);
  if (size > record.size()) throw_damaged(kPlace, "ends too early");
  entry.name = normal_name(record.substr(kDirectoryEntrySize, name_size));
  entry.method = get16(record, 10);
  entry.crc = get32(record, 16);
  entry.packed_size = get32(record, 20);
  entry.size = get32(record, 24);
  entry.header_offset = get32(record, 42);
  read_wide_fields(record.substr(kDirectoryEntrySize + name_size, extra_size), entry);
  if (get16(record, 8) & kEncrypted) throw FileError("is protected by a password");
  return size;
}

// An entry ends before the next one begins. Two directory entries for one and the same local header
// are the same entry twice.
void set_limits(std::vector<ArchiveEntry>& entries, std::uint64_t directory_offset) {
  std::vector<ArchiveEntry*> order;
  order.reserve(entries.size());
  for (auto& entry : entries) order.push_back(&entry);
  std::sort(order.begin(), order.end(), [](const ArchiveEntry* a, const ArchiveEntry* b) {
    return a->header_offset > b->header_offset;
  });
  const ArchiveEntry* next = nullptr;
  for (auto* const entry : order) {
    const auto begin = entry->header_offset;
    const bool again = next != nullptr && next->header_offset == begin && next->name == entry->name;
    entry->limit = next == nullptr ? directory_offset : again ? next->limit : next->header_offset;
    const bool fits = begin <= entry->limit && entry->limit - begin >= kLocalHeaderSize &&
                      entry->limit - begin - kLocalHeaderSize >= entry->packed_size;
    if (!fits) throw_damaged(entry->name, "overlaps what follows it");
    next = entry;
  }
}

}  // namespace

std::vector<ArchiveEntry> read_directory(const Source& source) {
  const auto extent = find_directory(source);
  const auto bytes = read_bytes(source, extent.offset, extent.size);
  std::vector<ArchiveEntry> entries;
  std::string_view rest = bytes;
  while (rest.size() >= kDirectoryEntrySize && rest.starts_with(kDirectoryMark)) {
    rest.remove_prefix(read_entry(rest, entries.emplace_back()));
  }
  const auto found = extent.exact_count ? entries.size() : entries.size() & kFull16;
  if (found != extent.count) {
    throw_damaged(kPlace,
                  std::to_string(entries.size()) + " entries of " + std::to_string(extent.count));
  }
  set_limits(entries, extent.offset);
  std::erase_if(entries, [](const ArchiveEntry& entry) {
    return entry.name.empty() || entry.name.ends_with('/');
  });
  return entries;
}

}  // namespace engine::package
