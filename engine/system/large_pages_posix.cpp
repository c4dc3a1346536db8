#include <sys/mman.h>

#include "engine/system/large_pages.h"

namespace engine::system {
namespace {

constexpr std::align_val_t kAlignment{kLargePage};

}  // namespace

void* take_memory(std::size_t size) {
  if (size < kLargePage) return ::operator new(size);
  void* const memory = ::operator new(size, kAlignment);
#ifdef MADV_HUGEPAGE
  // A system that has none to give leaves it at ordinary ones.
  static_cast<void>(madvise(memory, size / kLargePage * kLargePage, MADV_HUGEPAGE));
#endif
  return memory;
}

void give_back(void* memory, std::size_t size) noexcept {
  if (size < kLargePage) ::operator delete(memory);
  else ::operator delete(memory, kAlignment);
}

}  // namespace engine::system
