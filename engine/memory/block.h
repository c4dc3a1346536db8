// Blocks of memory, in big pages where the system has them: making small pages takes as long as
// filling them.
//
// A block of a big page's size or more begins at one and ends at one; only what is touched of it
// is taken from the system, a page at a time. Smaller blocks are ordinary memory. Nothing in a
// block is initialised.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <type_traits>

namespace engine::memory {

inline constexpr std::size_t kBigPage = std::size_t{2} << 20;

// For std::free(). Throws std::bad_alloc.
void* allocate_block(std::size_t size);

struct FreeBlock {
  void operator()(void* block) const { std::free(block); }
};

// Values that need no constructor.
template <class T>
using Block = std::unique_ptr<T[], FreeBlock>;

template <class T>
Block<T> make_block(std::size_t count) {
  static_assert(std::is_trivially_copyable_v<T>);
  return Block<T>(static_cast<T*>(allocate_block(count * sizeof(T))));
}

}  // namespace engine::memory
