// Archives: every entry is read whole and in blocks, copied, and read again from the copy.
#include <cstdlib>

#include "engine/package/archive.h"
#include "engine/package/archive_writer.h"
#include "engine/package/output.h"
#include "tests/fuzz/package_entry.h"

using namespace engine::package;  // NOLINT(google-build-using-namespace): a target of one file

namespace {

// What deflate can make of a small input still takes long to read.
constexpr std::uint64_t kMaxSize = 1 << 20;

Archive archive_of(std::string_view bytes) {
  return Archive(Source::from_bytes({bytes.begin(), bytes.end()}));
}

std::string in_blocks(const Archive& archive, const ArchiveEntry& entry) {
  std::string text;
  const auto reader = archive.open(entry);
  for (auto block = reader->next(); !block.empty(); block = reader->next()) {
    text.append(block.data(), block.size());
  }
  return text;
}

void check_copy(const Archive& archive, const ArchiveEntry& entry, const std::string& text) {
  MemoryOutput output;
  ArchiveWriter writer(output);
  writer.copy(archive, entry, "copy");
  writer.finish();
  const auto copied = archive_of(output.view());
  if (copied.read(*copied.find("copy")) != text) std::abort();
}

}  // namespace

void fuzz::decode(std::string_view bytes) {
  const auto archive = archive_of(bytes);
  for (const auto& entry : archive.entries()) {
    if (entry.size > kMaxSize) continue;
    try {
      const auto text = archive.read(entry);
      if (text != in_blocks(archive, entry)) std::abort();
      check_copy(archive, entry, text);
    } catch (const FileError&) {
      continue;
    }
  }
}
