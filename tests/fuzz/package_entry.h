// The entry shape of the package's fuzz targets: a target says how its decoder reads bytes.
//
// A decoder may refuse what it reads with FileError; everything else that goes wrong is a find.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "engine/package/file_error.h"

namespace fuzz {

// Reads all that the decoder gives for these bytes.
void decode(std::string_view bytes);

}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    fuzz::decode({reinterpret_cast<const char*>(data), size});
  } catch (const engine::package::FileError&) {
    return 0;
  }
  return 0;
}
