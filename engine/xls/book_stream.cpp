#include "engine/xls/book_stream.h"

#include <span>

namespace engine::xls {

std::uint32_t BookStream::place_of(std::uint64_t place) const {
  if (globals.position() + sheets.position() > kMax) throw package::SizeError(kMax);
  return static_cast<std::uint32_t>(globals.position() + place);
}

void BookStream::write(package::CompoundWriter& file) const {
  for (const package::BlockOutput* piece : {&globals, &sheets})
    for (const std::span<const char> bytes : piece->pieces()) file.write(bytes);
}

}  // namespace engine::xls
