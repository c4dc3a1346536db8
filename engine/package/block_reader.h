// The bytes of a part, block by block.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>

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

  // Work on blocks that nobody has asked for yet, for a thread that makes blocks ahead and would
  // else wait. It is given a block and that one's place in the part; which blocks, if any, and in
  // what order is left open, but next() gives none that is still worked on. It must not throw and
  // leaves the block's bytes as they are. Without work, as at the beginning, none is done; when
  // this returns, what was said before is not done any more.
  using Work = std::function<void(std::span<char> block, std::uint64_t offset)>;
  virtual void work_ahead(Work work) { static_cast<void>(work); }
};

// Bytes that lie in memory, in blocks of a chosen size.
class MemoryReader : public BlockReader {
 public:
  explicit MemoryReader(std::string_view bytes, std::size_t block_size = 256 * 1024);
  std::span<char> next() override;

 private:
  std::string_view rest_;
  std::size_t block_size_;
  std::unique_ptr<char[]> buffer_;  // not cleared: small parts would pay for it
};

}  // namespace engine::package
