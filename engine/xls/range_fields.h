// Ranges in the data of records: rows and columns, first and last of each, of two bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "engine/formula/reference.h"
#include "engine/package/little_endian.h"
#include "engine/xls/record_writer.h"

namespace engine::xls {

inline constexpr std::size_t kRangeSize = 8;

inline CellRange range_at(std::string_view data, std::size_t at) {
  return {package::get16(data, at), package::get16(data, at + 2), package::get16(data, at + 4),
          package::get16(data, at + 6)};
}

inline void set_range(std::string& data, std::size_t at, const CellRange& range) {
  char* place = &data[at];
  for (const int each : {range.row_first, range.row_last, range.column_first, range.column_last})
    place = put16(place, static_cast<std::uint32_t>(each));
}

}  // namespace engine::xls
