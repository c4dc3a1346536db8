// What measuring a text has to know of its characters.
#pragma once

#include <cstdint>

namespace engine {

// How many letters' room a character takes: 0 for marks and what is not seen, 2 for the wide ones
// of East Asia, else 1.
int cells_of(std::uint32_t character);

// A letter without the marks on it: o for ö. Others stand for themselves.
std::uint32_t base_letter(std::uint32_t character);

}  // namespace engine
