// Builds zip archives byte by byte, right or wrong in any field.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "engine/package/archive.h"
#include "engine/package/deflate.h"
#include "engine/package/file_error.h"
#include "engine/package/zip_format.h"

namespace engine::package::testing {

struct RawEntry {
  std::string name;
  std::string packed;
  std::uint64_t size = 0;
  std::uint32_t crc = 0;
  std::uint16_t method = kStored;
  std::uint16_t flags = 0;
  std::string local_extra{};
  std::string descriptor{};         // follows the data; the local header then holds zeros
  bool wide = false;                // sizes and offset in a zip64 field
  std::int64_t shifted_offset = 0;  // added to the offset in the directory
  std::int64_t shifted_size = 0;    // added to the packed size in the directory
};

inline RawEntry stored(std::string name, std::string text) {
  const auto size = text.size();
  const auto crc = crc32_of(text);
  return {std::move(name), std::move(text), size, crc};
}

inline RawEntry deflated(std::string name, std::string_view text) {
  RawEntry entry{std::move(name), {}, text.size(), crc32_of(text), kDeflated};
  Deflater().pack(text, Deflater::Ending::Final, entry.packed);
  return entry;
}

inline void put_local(std::string& out, const RawEntry& entry) {
  const bool later = !entry.descriptor.empty();
  out += kLocalMark;
  put16(out, 20);
  put16(out, entry.flags);
  put16(out, entry.method);
  put32(out, 0);
  put32(out, later ? 0 : entry.crc);
  put32(out, later ? 0 : entry.packed.size());
  put32(out, later ? 0 : entry.size);
  put16(out, entry.name.size());
  put16(out, entry.local_extra.size());
  out += entry.name + entry.local_extra + entry.packed + entry.descriptor;
}

inline void put_directory_entry(std::string& out, const RawEntry& entry, std::uint64_t offset) {
  const auto packed_size = entry.packed.size() + static_cast<std::uint64_t>(entry.shifted_size);
  offset += static_cast<std::uint64_t>(entry.shifted_offset);
  out += kDirectoryMark;
  put32(out, 20 | 20 << 16);
  put16(out, entry.flags);
  put16(out, entry.method);
  put32(out, 0);
  put32(out, entry.crc);
  put32(out, entry.wide ? kFull32 : packed_size);
  put32(out, entry.wide ? kFull32 : entry.size);
  put16(out, entry.name.size());
  put16(out, entry.wide ? 28 : 0);
  put_number(out, 0, 10);
  put32(out, entry.wide ? kFull32 : offset);
  out += entry.name;
  if (!entry.wide) return;
  put16(out, 1);
  put16(out, 24);
  put64(out, entry.size);
  put64(out, packed_size);
  put64(out, offset);
}

inline void put_end(std::string& out, std::uint64_t count, std::uint64_t directory, bool wide) {
  const auto directory_size = out.size() - directory;
  if (wide) {
    const auto at = out.size();
    out += kWideEndMark;
    put64(out, 44);
    put32(out, 45 | 45 << 16);
    put64(out, 0);
    put64(out, count);
    put64(out, count);
    put64(out, directory_size);
    put64(out, directory);
    out += kWideLocatorMark;
    put32(out, 0);
    put64(out, at);
    put32(out, 1);
  }
  out += kEndMark;
  put32(out, 0);
  put16(out, wide ? kFull16 : count);
  put16(out, wide ? kFull16 : count);
  put32(out, wide ? kFull32 : directory_size);
  put32(out, wide ? kFull32 : directory);
  put16(out, 0);
}

inline std::string build_zip(const std::vector<RawEntry>& entries, bool wide_end = false) {
  std::string out;
  std::vector<std::uint64_t> offsets;
  for (const auto& entry : entries) {
    offsets.push_back(out.size());
    put_local(out, entry);
  }
  const auto directory = out.size();
  for (std::size_t i = 0; i < entries.size(); ++i) put_directory_entry(out, entries[i], offsets[i]);
  put_end(out, entries.size(), directory, wide_end);
  return out;
}

inline Archive open_zip(std::string_view bytes) {
  return Archive(Source::from_bytes({bytes.begin(), bytes.end()}));
}

// What goes wrong when all parts of an archive are read, empty when nothing does.
inline std::string failure_of(std::string_view bytes) {
  try {
    const auto archive = open_zip(bytes);
    for (const auto& entry : archive.entries()) archive.read(entry);
  } catch (const FileError& error) {
    return error.what();
  }
  return {};
}

}  // namespace engine::package::testing
