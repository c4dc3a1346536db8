// Formulas as the file has them, for those that nobody has changed: their tokens say more than the
// text that people see, such as how a program has remembered a result.
#pragma once

#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/formula/reference.h"
#include "engine/xls/record_reader.h"
#include "engine/xls/tokens_read.h"

namespace engine::xls {

class StoredFormulas {
 public:
  // `reader` stands in front of the sheet's substream.
  StoredFormulas(const RecordReader& reader, const LinkTable& links, const Grid& grid,
                 const Sheet& sheet);

  // The tokens of a cell's formula and what stands behind them, if it reads as `text`; else
  // nothing, which is empty tokens. Valid until the next call.
  std::pair<std::string_view, std::string_view> find(CellAddress at, std::string_view text);

 private:
  RecordReader reader_;
  TokenReader tokens_;
  const Sheet& sheet_;
  std::vector<std::pair<CellAddress, std::uint64_t>> places_;  // of records in the stream
};

}  // namespace engine::xls
