#include "engine/xls/characters.h"

#include <algorithm>
#include <cstdint>

#include "engine/text/utf16.h"
#include "engine/text/utf8.h"

namespace engine::xls {

void Characters::take(std::string_view utf8) {
  bytes_ = utf8;
  wide_ = false;
  const auto is_ascii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
  if (std::ranges::all_of(utf8, is_ascii)) return;
  made_.clear();
  for (std::string_view rest = utf8; !rest.empty() && !wide_;) {
    const std::uint32_t code = take_character(rest);
    wide_ = code > 0xFF;
    made_ += static_cast<char>(code);
  }
  if (wide_) made_ = utf16_bytes(utf8);
  bytes_ = made_;
}

}  // namespace engine::xls
