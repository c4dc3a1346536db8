// Memory for much data.
//
// Where it is large it lies in large pages, if the system has such: one is had at once where five
// hundred ordinary ones cost a fault each, and finding what lies in it costs less too. That takes
// a quarter off reading or writing a large book.
#pragma once

#include <algorithm>
#include <cstddef>
#include <limits>
#include <memory>
#include <new>
#include <type_traits>

namespace engine::system {

// A large page, hence the least that lies in one.
inline constexpr std::size_t kLargePage = std::size_t{1} << 21;

// The size of a block behind so many others: they double from `first` until each is a large page.
constexpr std::size_t next_block(std::size_t first, std::size_t blocks) {
  return std::min(first << std::min<std::size_t>(blocks, 21), kLargePage);
}

// Throws std::bad_alloc. What is not written to takes no memory, but for the first large page and
// the rest of others.
void* take_memory(std::size_t size);
// `size` is what was taken.
void give_back(void* memory, std::size_t size) noexcept;

struct GiveBack {
  std::size_t size = 0;
  void operator()(void* memory) const noexcept { give_back(memory, size); }
};

// Plain data, an array of it, with whatever was in the memory before.
template <class T>
using Items = std::unique_ptr<T[], GiveBack>;

template <class T>
Items<T> make_items(std::size_t count) {
  static_assert(std::is_trivially_copyable_v<T>);
  if (count > std::numeric_limits<std::size_t>::max() / sizeof(T))
    throw std::bad_array_new_length();
  const std::size_t size = count * sizeof(T);
  return Items<T>(static_cast<T*>(take_memory(size)), {size});
}

}  // namespace engine::system
