// Books of .xls files: a whole file, or the stream of one. A first byte draws the changes.
#include <cstdint>

#include "tests/fuzz/book_fuzz.h"
#include "tests/fuzz/xls_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  fuzz::change_and_save(xlCreateBookW, fuzz::xls_file(input.substr(1)), data[0] % 64U);
  return 0;
}
