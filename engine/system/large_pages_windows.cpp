#include "engine/system/large_pages.h"

namespace engine::system {

// Large pages are a right there that few accounts have.
void* take_memory(std::size_t size) { return ::operator new(size); }

void give_back(void* memory, std::size_t) noexcept { ::operator delete(memory); }

}  // namespace engine::system
