#include "engine/xls/future_records.h"

#include "engine/package/little_endian.h"

namespace engine::xls {

Feature feature_of(std::string_view data) {
  if (data.size() < kFutureHead + 2) return Feature::kNone;
  return static_cast<Feature>(package::get16(data, kFutureHead));
}

void begin_feature_header(RecordWriter& out, Feature feature) {
  begin_future_record(out, kFeatureHeader);
  out.put16(static_cast<std::uint32_t>(feature));
  out.put8(1);
}

void begin_future_record(RecordWriter& out, std::uint16_t id) {
  out.begin(id);
  out.put16(id);
  out.put_zeros(kFutureHead - 2);
}

void begin_future_record(RecordWriter& out, std::uint16_t id, const CellRange& cells) {
  constexpr std::uint32_t kHasCells = 1;
  out.begin(id);
  out.put16(id);
  out.put16(kHasCells);
  put_range(out, cells);
}

}  // namespace engine::xls
