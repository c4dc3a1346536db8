#include <sys/mman.h>

#include <chrono>

#include "engine/system/large_pages.h"

namespace engine::system {
namespace {

constexpr std::align_val_t kAlignment{kLargePage};

#ifdef MADV_HUGEPAGE

// The host of a virtual machine may have taken back what was free. Then a large page takes
// milliseconds, as long as all the ordinary ones in its place, and those are rather had from what
// was used a moment ago. So the first page of a block is tried: when it takes long, the block and
// some that follow lie in ordinary pages.
constexpr int kBlocksWithout = 64;
constinit thread_local int g_blocks_without = 0;

void ask_for_large_pages(char* memory, std::size_t size) {
  // A system that has none to give leaves it at ordinary ones.
  static_cast<void>(madvise(memory, size / kLargePage * kLargePage, MADV_HUGEPAGE));
}

void put_large_pages(char* memory, std::size_t size) {
  constexpr std::chrono::milliseconds kLong{1};
  if (g_blocks_without > 0) {
    --g_blocks_without;
    return;
  }
  const auto begin = std::chrono::steady_clock::now();
  ask_for_large_pages(memory, kLargePage);
  *static_cast<volatile char*>(memory) = 0;  // which has the system put the first one there
  if (std::chrono::steady_clock::now() - begin < kLong) ask_for_large_pages(memory, size);
  else g_blocks_without = kBlocksWithout;
}

#else

void put_large_pages(char* /*memory*/, std::size_t /*size*/) {}

#endif

}  // namespace

void* take_memory(std::size_t size) {
  if (size < kLargePage) return ::operator new(size);
  void* const memory = ::operator new(size, kAlignment);
  put_large_pages(static_cast<char*>(memory), size);
  return memory;
}

void give_back(void* memory, std::size_t size) noexcept {
  if (size < kLargePage) ::operator delete(memory);
  else ::operator delete(memory, kAlignment);
}

}  // namespace engine::system
