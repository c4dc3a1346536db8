// Memory that is about to be filled from one end to the other.
#pragma once

#include <cstddef>

namespace engine::system {

// The least that is worth a call.
inline constexpr std::size_t kManyPages = std::size_t{1} << 20;

// Has the system put pages under fresh memory all at once. One by one, as each is first written,
// they take a fifth longer. What it does not do now is done then.
void provide_pages(void* begin, std::size_t size) noexcept;

}  // namespace engine::system
