// Books of .xlsx files: a whole file, or a part that takes its place in a package with a bit of
// everything: the part's name, the end of the line, its content. Parts that are not so named in the
// package join it. A first byte draws the changes.
#include <cstdint>

#include "tests/fuzz/book_fuzz.h"
#include "tests/xlsx/rich_package.h"

namespace {

std::string file_of(std::string_view input) {
  if (input.starts_with("PK")) return std::string(input);
  const std::size_t end = input.find('\n');
  if (end == std::string_view::npos) return {};
  static const auto kParts = engine::xlsx::rich_package();
  auto parts = kParts;
  parts[std::string(input.substr(0, end))] = input.substr(end + 1);
  return engine::xlsx::zip(parts);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  fuzz::change_and_save(xlCreateXMLBookW, file_of(input.substr(1)), data[0] % 64U);
  return 0;
}
