// Makes and packs the blocks of a part on two threads.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "engine/package/deflate.h"

namespace engine::package {

// Appends the text of one block.
using MakeBlock = std::function<void(std::size_t block, std::string& out)>;

struct PackedPart {
  std::uint64_t packed_size = 0;
  std::uint64_t size = 0;
  std::uint32_t crc = 0;
};

// Hands the packed bytes to `write` in order, on the calling thread, and ends the stream. Throws
// what `make` or `write` throws, and SizeError when the part grows beyond 4 GiB.
PackedPart pack_blocks(std::size_t count, const MakeBlock& make, Deflater& deflater,
                       const std::function<void(std::string_view)>& write);

}  // namespace engine::package
