// Records of programs that came after the format: they say their number again in front of their
// data, and which cells they are about.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "engine/formula/reference.h"
#include "engine/xls/record_writer.h"

namespace engine::xls {

// Of what such a record begins with.
inline constexpr std::size_t kFutureHead = 12;

// What a feature record, or the one that begins such, is about.
enum class Feature : std::uint16_t { kNone = 0, kProtection = 2, kIgnoredErrors = 3 };

// Of a record's data.
Feature feature_of(std::string_view data);
void begin_feature_header(RecordWriter& out, Feature feature);

void begin_future_record(RecordWriter& out, std::uint16_t id);
void begin_future_record(RecordWriter& out, std::uint16_t id, const CellRange& cells);

}  // namespace engine::xls
