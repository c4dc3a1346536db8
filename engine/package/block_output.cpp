#include <algorithm>

#include "engine/package/output.h"

namespace engine::package {

void BlockOutput::write(std::span<const char> bytes) {
  constexpr std::size_t kFirstBlock = 4096;
  if (bytes.size() > limit_ - size_) throw SizeError(limit_);
  while (!bytes.empty()) {
    if (free_.empty()) {
      const std::size_t size = system::next_block(kFirstBlock, blocks_.size());
      blocks_.push_back({system::make_items<char>(size), size_});
      free_ = {blocks_.back().bytes.get(), size};
    }
    const auto part = bytes.first(std::min(bytes.size(), free_.size()));
    std::ranges::copy(part, free_.begin());
    free_ = free_.subspan(part.size());
    bytes = bytes.subspan(part.size());
    size_ += part.size();
  }
}

void BlockOutput::patch(std::uint64_t offset, std::span<const char> bytes) {
  auto block = std::ranges::upper_bound(blocks_, offset, {}, &Block::begin);
  for (const char byte : bytes) {
    if (block != blocks_.end() && block->begin == offset) ++block;
    const Block& its = *(block - 1);
    its.bytes[offset++ - its.begin] = byte;
  }
}

std::vector<std::span<const char>> BlockOutput::pieces() const {
  std::vector<std::span<const char>> all;
  for (std::size_t i = 0; i < blocks_.size(); ++i) {
    const std::uint64_t end = i + 1 < blocks_.size() ? blocks_[i + 1].begin : size_;
    all.emplace_back(blocks_[i].bytes.get(), static_cast<std::size_t>(end - blocks_[i].begin));
  }
  return all;
}

}  // namespace engine::package
