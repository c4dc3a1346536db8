#include "engine/xls/ignored_errors.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "engine/xls/future_records.h"

namespace engine::xls {

namespace {

constexpr std::uint32_t kKindsSize = 4;  // of the bits, which are the model's

// As many ranges as a record has room for.
void write_part(RecordWriter& out, CellRanges::const_iterator first, std::size_t count,
                std::uint8_t kinds) {
  begin_future_record(out, kFeature);
  out.put16(static_cast<std::uint32_t>(Feature::kIgnoredErrors));
  out.put8(0);
  out.put32(0);
  out.put16(static_cast<std::uint32_t>(count));
  out.put32(kKindsSize);
  out.put16(0);
  for (; count > 0; --count) put_range(out, *first++);
  out.put32(kinds);
  out.end();
}

}  // namespace

bool is_of_ignored_errors(std::string_view data) {
  return feature_of(data) == Feature::kIgnoredErrors;
}

void read_ignored_errors(Fields& in, SheetReading& to) {
  in.skip(kFutureHead + 7);
  IgnoredError made;
  const std::size_t count = in.take16();
  in.skip(6);
  for (std::size_t left = count; left > 0 && in.ok(); --left)
    if (const auto range = take_range(in, to.context.workbook.limits.grid))
      made.cells.insert(*range);
  made.kinds = static_cast<std::uint8_t>(in.take32());
  if (in.ok() && made.kinds != 0 && !made.cells.empty())
    to.sheet.ignored_errors.add(std::move(made));
}

void write_ignored_errors(RecordWriter& out, const IgnoredErrors& errors) {
  constexpr std::size_t kMaxRanges = 1000;
  if (errors.all().empty()) return;
  begin_feature_header(out, Feature::kIgnoredErrors);
  out.put32(0);
  out.end();
  for (const IgnoredError& one : errors.all()) {
    auto first = one.cells.begin();
    for (std::size_t left = one.cells.size(); left > 0;) {
      const std::size_t count = std::min(left, kMaxRanges);
      write_part(out, first, count, one.kinds);
      std::advance(first, count);
      left -= count;
    }
  }
}

}  // namespace engine::xls
