// A file of the binary format from an input that is one or the stream that makes it.
#pragma once

#include <string>
#include <string_view>

#include "tests/xls/streams.h"

namespace fuzz {

inline std::string xls_file(std::string_view input) {
  if (input.starts_with("\xD0\xCF")) return std::string(input);
  return engine::xls::testing::file_of(input);
}

}  // namespace fuzz
