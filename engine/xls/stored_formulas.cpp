#include "engine/xls/stored_formulas.h"

#include <algorithm>

#include "engine/xls/fields.h"
#include "engine/xls/record_merge.h"
#include "engine/xls/sheet_records.h"

namespace engine::xls {

StoredFormulas::StoredFormulas(const RecordReader& reader, const LinkTable& links, const Grid& grid,
                               const Sheet& sheet)
    : reader_(reader), tokens_(links, grid), sheet_(sheet) {
  RecordReader records(reader);
  for (bool inside = false; records.next() && records.id() != kEof; inside = true) {
    if (records.id() == kBof && inside) pass_substream(records, [] {});
    if (records.id() != kFormula && records.id() != kFormulaOf3 && records.id() != kFormulaOf4)
      continue;
    Fields in(records.data());
    CellAddress at;
    at.row = in.take16();
    at.column = in.take16();
    if (in.ok()) places_.emplace_back(at, records.offset());
  }
  // Of two at one place the later one counts.
  std::ranges::reverse(places_);
  std::ranges::stable_sort(places_, {}, &std::pair<CellAddress, std::uint64_t>::first);
}

std::pair<std::string_view, std::string_view> StoredFormulas::find(CellAddress at,
                                                                   std::string_view text) {
  constexpr std::size_t kInFront = 20;
  const auto found =
      std::ranges::lower_bound(places_, at, {}, &decltype(places_)::value_type::first);
  if (found == places_.end() || found->first != at) return {};
  reader_.go_to(found->second);
  if (!reader_.next()) return {};
  Fields in(reader_.whole_data());
  in.skip(kInFront);
  const std::size_t size = in.take16();
  const std::string_view tokens = in.take(size);
  if (!in.ok() || !tokens_.read(tokens, in.rest(), {&sheet_, at}) || tokens_.text() != text)
    return {};
  return {tokens, in.rest()};
}

}  // namespace engine::xls
