#include "engine/text/percent.h"

#include <charconv>

namespace engine {

void append_percent(std::string& out, char byte) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  const auto code = static_cast<unsigned char>(byte);
  out.append({'%', kDigits[code >> 4], kDigits[code & 15]});
}

std::string decode_percent(std::string_view text) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    unsigned char byte = 0;
    if (text[i] == '%' && i + 2 < text.size()) {
      const auto [end, error] = std::from_chars(text.data() + i + 1, text.data() + i + 3, byte, 16);
      if (error == std::errc() && end == text.data() + i + 3) {
        out.push_back(static_cast<char>(byte));
        i += 2;
        continue;
      }
    }
    out.push_back(text[i]);
  }
  return out;
}

}  // namespace engine
