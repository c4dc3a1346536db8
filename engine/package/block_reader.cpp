#include "engine/package/block_reader.h"

#include <algorithm>
#include <cstring>

namespace engine::package {

MemoryReader::MemoryReader(std::string_view bytes, std::size_t block_size)
    : rest_(bytes),
      block_size_(std::min(block_size, bytes.size())),
      buffer_(std::make_unique_for_overwrite<char[]>(kHeadroom + block_size_ + kTailroom)) {}

std::span<char> MemoryReader::next() {
  const auto block = rest_.substr(0, block_size_);
  char* const begin = buffer_.get() + kHeadroom;
  if (!block.empty()) std::memcpy(begin, block.data(), block.size());
  rest_.remove_prefix(block.size());
  return {begin, block.size()};
}

}  // namespace engine::package
