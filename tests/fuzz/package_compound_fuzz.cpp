// Compound files: every stream is read whole and in pieces, written, and read again.
#include <algorithm>
#include <cstdlib>
#include <set>
#include <string>

#include "engine/package/compound_file.h"
#include "engine/package/compound_writer.h"
#include "engine/package/output.h"
#include "engine/text/fold.h"
#include "tests/fuzz/package_entry.h"

using namespace engine::package;  // NOLINT(google-build-using-namespace): a target of one file

namespace {

constexpr std::size_t kMaxWritten = 1 << 22;

std::shared_ptr<const Source> source_of(std::string_view bytes) {
  return Source::from_bytes({bytes.begin(), bytes.end()});
}

std::string read(const CompoundFile& file, const CompoundEntry& entry) {
  const CompoundStream stream = file.open(entry);
  std::string text(static_cast<std::size_t>(stream.size()), '\0');
  stream.read(0, text);
  for (std::size_t at = 0; at < text.size();) {
    const std::string_view piece = stream.view_at(at);
    if (piece.empty() || text.compare(at, piece.size(), piece) != 0) std::abort();
    at += piece.size();
  }
  return text;
}

}  // namespace

void fuzz::decode(std::string_view bytes) {
  const CompoundFile file(source_of(bytes));
  MemoryOutput output;
  CompoundWriter writer(output);
  std::size_t written = 0;
  for (const CompoundEntry& entry : file.entries()) {
    if (!entry.is_stream || written > kMaxWritten) continue;
    const std::string text = read(file, entry);
    if (text.size() > bytes.size()) std::abort();
    CompoundItem item;
    item.name = std::to_string(written);
    writer.begin_stream(0, item);
    writer.write(text);
    written += text.size() + 1;
  }
  writer.finish();
  const CompoundFile again(source_of(output.view()));
  for (const CompoundEntry& entry : again.entries())
    if (entry.is_stream && read(again, entry).size() != entry.size) std::abort();
}
