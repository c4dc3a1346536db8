#include "engine/memory/block.h"

#include <sys/mman.h>

#include <algorithm>

namespace engine::memory {

void* allocate_block(std::size_t size) {
  const bool big = size >= kBigPage;
  const std::size_t page = big ? kBigPage : alignof(std::max_align_t);
  const std::size_t whole = (std::max<std::size_t>(size, 1) + page - 1) / page * page;
  void* const block = std::aligned_alloc(page, whole);
  if (block == nullptr) throw std::bad_alloc();
#ifdef MADV_HUGEPAGE
  if (big) madvise(block, whole, MADV_HUGEPAGE);
#endif
  return block;
}

}  // namespace engine::memory
