#include "engine/package/compound_file.h"

#include <algorithm>
#include <string>
#include <vector>

#include "engine/text/fold.h"

namespace engine::package {

// Directory entries are 128 bytes and begin with their name in UTF-16; where the directory lies
// does not matter for finding one.
bool has_stream(const Source& source, std::string_view name) {
  constexpr std::size_t kEntry = 128;
  std::string wanted;
  for (const char c : name) wanted.append({lower_ascii(c), '\0'});
  wanted.append(2, '\0');
  std::vector<char> block(512 * kEntry);
  for (std::uint64_t offset = 0; offset < source.size(); offset += block.size()) {
    const std::size_t size = std::min<std::uint64_t>(block.size(), source.size() - offset);
    source.read(offset, std::span(block).first(size));
    for (std::size_t at = 0; at + kEntry <= size; at += kEntry)
      if (lower_ascii(std::string_view(&block[at], wanted.size())) == wanted) return true;
  }
  return false;
}

}  // namespace engine::package
