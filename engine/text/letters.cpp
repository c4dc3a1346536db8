#include "engine/text/letters.h"

#include <utf8proc.h>

#include <array>

namespace engine {

int cells_of(std::uint32_t character) {
  if (character >= 0x20 && character < 0x7F) return 1;
  return utf8proc_charwidth(static_cast<utf8proc_int32_t>(character));
}

std::uint32_t base_letter(std::uint32_t character) {
  if (character < 0x80) return character;
  std::array<utf8proc_int32_t, 8> parts{};
  int boundary = 0;
  const auto count = utf8proc_decompose_char(static_cast<utf8proc_int32_t>(character), parts.data(),
                                             static_cast<utf8proc_ssize_t>(parts.size()),
                                             UTF8PROC_DECOMPOSE, &boundary);
  return count > 0 ? static_cast<std::uint32_t>(parts[0]) : character;
}

}  // namespace engine
