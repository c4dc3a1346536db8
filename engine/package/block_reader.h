// The bytes of a part, block by block.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace engine::package {

class BlockReader {
 public:
  // Room around every block that the caller may overwrite: in front, to put a token's beginning
  // before its end; behind, so that reading in steps of a register needs no test for the end.
  static constexpr std::size_t kHeadroom = 16 * 1024;
  static constexpr std::size_t kTailroom = 64;

  BlockReader() = default;
  BlockReader(const BlockReader&) = delete;
  BlockReader& operator=(const BlockReader&) = delete;
  virtual ~BlockReader() = default;

  // The next bytes, valid until the next call; empty at the end. Throws FileError.
  virtual std::span<char> next() = 0;
};

// Bytes that lie in memory, in blocks of a chosen size.
class MemoryReader : public BlockReader {
 public:
  explicit MemoryReader(std::string_view bytes, std::size_t block_size = 256 * 1024);
  std::span<char> next() override;

 private:
  std::string_view rest_;
  std::size_t block_size_;
  std::vector<char> buffer_;
};

}  // namespace engine::package
