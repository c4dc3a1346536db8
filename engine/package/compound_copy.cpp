#include "engine/package/compound_copy.h"

#include <algorithm>
#include <cstddef>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "engine/text/fold.h"

namespace engine::package {

void copy_stream(const CompoundStream& stream, CompoundWriter& writer) {
  constexpr std::uint64_t kBlock = std::uint64_t{1} << 16;
  std::vector<char> block;
  for (std::uint64_t at = 0; at < stream.size(); at += block.size()) {
    block.resize(static_cast<std::size_t>(std::min(kBlock, stream.size() - at)));
    stream.read(at, block);
    writer.write(block);
  }
}

void copy_compound(const CompoundFile& file, const CompoundEntry& replaced, Output& output,
                   const std::function<bool(const CompoundEntry&)>& leaves_out,
                   const std::function<void(CompoundWriter&)>& write) {
  const std::vector<CompoundEntry>& entries = file.entries();
  std::vector<std::vector<std::size_t>> children(entries.size());
  for (std::size_t i = 1; i < entries.size(); ++i) children[entries[i].folder].push_back(i);
  CompoundWriter writer(output, entries.front().item);
  // Folders whose content is copied, with their numbers in the new file.
  std::vector<std::pair<std::size_t, std::size_t>> waiting{{0, 0}};
  while (!waiting.empty()) {
    const auto [folder, number] = waiting.back();
    waiting.pop_back();
    std::set<std::string> names;
    for (const std::size_t i : children[folder]) {
      const CompoundEntry& entry = entries[i];
      const bool is_replaced = &entry == &replaced;
      if (!is_replaced && leaves_out(entry)) continue;
      if (!names.insert(upper_case(entry.item.name)).second) continue;
      if (!entry.is_stream) {
        waiting.emplace_back(i, writer.add_folder(number, entry.item));
        continue;
      }
      writer.begin_stream(number, entry.item);
      if (is_replaced) write(writer);
      else copy_stream(file.open(entry), writer);
    }
  }
  writer.finish();
}

}  // namespace engine::package
