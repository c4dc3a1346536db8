#include <sys/mman.h>

#include <atomic>
#include <chrono>

#include "engine/system/large_pages.h"

namespace engine::system {
namespace {

constexpr std::align_val_t kAlignment{kLargePage};

#ifdef MADV_HUGEPAGE

// Of a virtual machine the host may have taken back what was free. Then it takes milliseconds until
// a large page is there, as long as all the ordinary ones in its place, which are rather had from
// what is still warm: so many blocks then lie in those before large ones are tried again.
constexpr int kBlocksWithout = 1000;
std::atomic<int> g_blocks_without = 0;

void ask_for_large_pages(char* memory, std::size_t size) {
  // A system that has none to give leaves it at ordinary ones.
  static_cast<void>(madvise(memory, size / kLargePage * kLargePage, MADV_HUGEPAGE));
}

void put_large_pages(char* memory, std::size_t size) {
  constexpr std::chrono::milliseconds kLong{1};
  if (g_blocks_without.load(std::memory_order_relaxed) > 0) {
    g_blocks_without.fetch_sub(1, std::memory_order_relaxed);
    return;
  }
  const auto begin = std::chrono::steady_clock::now();
  ask_for_large_pages(memory, kLargePage);
  *static_cast<volatile char*>(memory) = 0;  // which has the system put the first one there
  if (std::chrono::steady_clock::now() - begin < kLong) ask_for_large_pages(memory, size);
  else g_blocks_without.store(kBlocksWithout, std::memory_order_relaxed);
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
