// Pictures: whatever is found lies within what a picture may be.
#include <cstdlib>

#include "engine/workbook/picture_header.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto header = engine::read_picture_header({reinterpret_cast<const char*>(data), size});
  if (header && (header->width < 1 || header->height < 1 || header->width > 1'000'000 ||
                 header->height > 1'000'000))
    std::abort();
  return 0;
}
