#include "tests/growth/work.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

constexpr std::size_t kBytesPerStep = 32;

std::atomic<std::uint64_t> g_steps = 0;

void count(std::size_t steps) { g_steps.fetch_add(steps, std::memory_order_relaxed); }
void count_bytes(std::size_t size) { count(1 + size / kBytesPerStep); }

}  // namespace

std::uint64_t work_done() { return g_steps.load(std::memory_order_relaxed); }

// Names that the compiler and the linker give. NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {

void __sanitizer_cov_trace_pc() { count(1); }

void* __real_memmove(void* to, const void* from, std::size_t size);
void* __real_memcpy(void* to, const void* from, std::size_t size);
void* __real_memset(void* to, int value, std::size_t size);
int __real_memcmp(const void* a, const void* b, std::size_t size);
void* __real_memchr(const void* from, int value, std::size_t size);
void* __real_malloc(std::size_t size);

void* __wrap_memmove(void* to, const void* from, std::size_t size) {
  count_bytes(size);
  return __real_memmove(to, from, size);
}
void* __wrap_memcpy(void* to, const void* from, std::size_t size) {
  count_bytes(size);
  return __real_memcpy(to, from, size);
}
void* __wrap_memset(void* to, int value, std::size_t size) {
  count_bytes(size);
  return __real_memset(to, value, size);
}
int __wrap_memcmp(const void* a, const void* b, std::size_t size) {
  count_bytes(size);
  return __real_memcmp(a, b, size);
}
void* __wrap_memchr(const void* from, int value, std::size_t size) {
  void* const found = __real_memchr(from, value, size);
  const auto* const begin = static_cast<const char*>(from);
  count_bytes(found ? static_cast<std::size_t>(static_cast<char*>(found) - begin) : size);
  return found;
}
void* __wrap_malloc(std::size_t size) {
  count_bytes(size);
  return __real_malloc(size);
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier)

void* operator new(std::size_t size) {
  void* const made = std::malloc(size == 0 ? 1 : size);
  if (!made) throw std::bad_alloc();
  return made;
}
void* operator new(std::size_t size, std::align_val_t alignment) {
  count_bytes(size);
  void* const made = std::aligned_alloc(static_cast<std::size_t>(alignment), size);
  if (!made) throw std::bad_alloc();
  return made;
}
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
void operator delete(void* block, std::align_val_t) noexcept { std::free(block); }
