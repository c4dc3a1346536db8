// The workbook's stream while it comes into being, in two pieces: what all sheets share and, behind
// that, the sheets. The first is known once the second is laid out.
#pragma once

#include <cstdint>

#include "engine/package/compound_writer.h"
#include "engine/package/output.h"

namespace engine::xls {

struct BookStream {
  static constexpr std::uint64_t kMax = 0x7FFFFFFF;  // bytes

  package::BlockOutput globals{kMax};
  package::BlockOutput sheets{kMax};

  // Where a place among the sheets comes to lie, once the other piece is whole. Throws SizeError
  // when the stream is too long.
  std::uint32_t place_of(std::uint64_t place) const;

  // Appends it to the stream of a file that was begun.
  void write(package::CompoundWriter& file) const;
};

}  // namespace engine::xls
