#include <sys/mman.h>

#include <cstdint>

#include "engine/system/fresh_pages.h"

namespace engine::system {

void provide_pages([[maybe_unused]] void* begin, [[maybe_unused]] std::size_t size) noexcept {
#ifdef MADV_POPULATE_WRITE
  // Where pages are larger the system refuses what does not begin with one.
  constexpr std::uintptr_t kPage = 4096;
  const auto first = (reinterpret_cast<std::uintptr_t>(begin) + kPage - 1) / kPage * kPage;
  const auto end = (reinterpret_cast<std::uintptr_t>(begin) + size) / kPage * kPage;
  if (first < end)
    static_cast<void>(madvise(reinterpret_cast<void*>(first), end - first, MADV_POPULATE_WRITE));
#endif
}

}  // namespace engine::system
