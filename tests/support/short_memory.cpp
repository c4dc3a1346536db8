#include "tests/support/short_memory.h"

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <new>

// The allocator that stands behind ours: the sanitizers' when the program has one.
#ifdef VORNELIX_SANITIZED
#define BEHIND(function) __interceptor_##function
#else
#define BEHIND(function) __libc_##function
#endif

extern "C" {
void* BEHIND(malloc)(std::size_t size);
void* BEHIND(calloc)(std::size_t count, std::size_t size);
void* BEHIND(realloc)(void* block, std::size_t size);
void* BEHIND(memalign)(std::size_t alignment, std::size_t size);
void BEHIND(free)(void* block);
}

namespace short_memory {
namespace {

constexpr long kNever = -1;

std::atomic<long> g_allowed = kNever;
std::atomic<bool> g_once = false;
std::atomic<bool> g_struck = false;
std::atomic<long> g_blocks = 0;

#ifdef VORNELIX_SANITIZED
// Sanitizers allocate while a thread starts, and cannot do without: only the thread that asked for
// the shortage has one.
thread_local bool t_concerned = false;
#else
constexpr bool t_concerned = true;
#endif

bool fails() {
  if (!t_concerned) return false;
  long allowed = g_allowed;
  while (allowed != kNever) {
    const bool suffices = allowed > 0;
    const long left = suffices ? allowed - 1 : g_once ? kNever : 0;
    if (!g_allowed.compare_exchange_weak(allowed, left)) continue;
    if (suffices) return false;
    g_struck = true;
    errno = ENOMEM;
    return true;
  }
  return false;
}

void* counted(void* block) {
  if (block != nullptr) ++g_blocks;
  return block;
}

}  // namespace

Shortage::Shortage(long allowed, Failing failing, bool& struck) : struck_(struck) {
  g_once = failing == Failing::kOnce;
  g_struck = false;
#ifdef VORNELIX_SANITIZED
  t_concerned = true;
#endif
  g_allowed = allowed;
}

Shortage::~Shortage() {
  g_allowed = kNever;
  struck_ = g_struck;
}

long blocks_in_use() { return g_blocks; }

}  // namespace short_memory

using short_memory::counted;
using short_memory::fails;
using short_memory::g_blocks;

extern "C" {

[[gnu::visibility("default")]] void* malloc(std::size_t size) noexcept {
  return fails() ? nullptr : counted(BEHIND(malloc)(size));
}

[[gnu::visibility("default")]] void* calloc(std::size_t nmemb, std::size_t size) noexcept {
  return fails() ? nullptr : counted(BEHIND(calloc)(nmemb, size));
}

[[gnu::visibility("default")]] void* realloc(void* ptr, std::size_t size) noexcept {
  if (fails()) return nullptr;
  void* const moved = BEHIND(realloc)(ptr, size);
  return ptr == nullptr ? counted(moved) : moved;
}

[[gnu::visibility("default")]] void* aligned_alloc(std::size_t alignment,
                                                   std::size_t size) noexcept {
  return fails() ? nullptr : counted(BEHIND(memalign)(alignment, size));
}

[[gnu::visibility("default")]] void free(void* ptr) noexcept {
  if (ptr != nullptr) --g_blocks;
  BEHIND(free)(ptr);
}

}  // extern "C"

// The sanitizers' operators would go past malloc.
#ifdef VORNELIX_SANITIZED
void* operator new(std::size_t size) {
  if (void* const block = malloc(size == 0 ? 1 : size)) return block;
  throw std::bad_alloc();
}
void* operator new[](std::size_t size) { return operator new(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return malloc(size == 0 ? 1 : size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return malloc(size == 0 ? 1 : size);
}
void* operator new(std::size_t size, std::align_val_t alignment) {
  if (void* const block = aligned_alloc(static_cast<std::size_t>(alignment), size)) return block;
  throw std::bad_alloc();
}
void operator delete(void* block) noexcept { free(block); }
void operator delete[](void* block) noexcept { free(block); }
void operator delete(void* block, std::size_t) noexcept { free(block); }
void operator delete(void* block, std::align_val_t) noexcept { free(block); }
void operator delete[](void* block, std::size_t) noexcept { free(block); }
#endif
