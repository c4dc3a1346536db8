// Cells whose faults a spreadsheet program shall not mark.
#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "engine/workbook/cell_ranges.h"

namespace engine {

// Kinds of faults, a bit each.
enum FaultKind : std::uint8_t {
  kEvaluationFault = 1,      // the formula gives an error
  kEmptyReferenceFault = 2,  // it refers to empty cells
  kNumberAsTextFault = 4,
  kRangeFault = 8,     // it leaves out cells beside its range
  kFormulaFault = 16,  // it differs from those beside it
  kTwoDigitYearFault = 32,
  kUnlockedFormulaFault = 64,
  kValidationFault = 128,  // the value is none that the validation takes
};

struct IgnoredError {
  CellRanges cells = {};
  std::uint8_t kinds = 0;
  std::uint32_t details = 0;  // kept for the codec: number of what the file says of it; 0: nothing

  friend bool operator==(const IgnoredError&, const IgnoredError&) = default;
};

class IgnoredErrors {
 public:
  const std::vector<IgnoredError>& all() const { return entries_; }

  // Behind all others.
  void add(IgnoredError entry);
  // Adds kinds to the entry for exactly this range, which is made if there is none.
  void put(const CellRange& range, std::uint8_t kinds);

 private:
  std::vector<IgnoredError> entries_;
  std::map<CellRange, std::size_t, RangeLess> places_;  // of entries for one range
};

// What is left after rows or columns were inserted or removed.
IgnoredErrors moved(const IgnoredErrors& errors, const formula::Move& move, const Grid& grid);

}  // namespace engine
