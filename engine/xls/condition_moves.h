// Conditional formats that a file carries, when rows or columns are inserted or removed: the cells
// they are for and the formulas that judge these.
//
// Ranges stand in one record, the conditions for them in records behind it. What later programs
// know of a condition stands further behind, by the number of its ranges, and may be followed by a
// condition of the later kind.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>

#include "engine/workbook/cell_ranges.h"
#include "engine/xls/fields.h"
#include "engine/xls/token_moves.h"

namespace engine::xls {

// Moves the tokens that come next in a record's data, of which `in` reads a copy.
void move_next_tokens(std::string& data, Fields& in, std::size_t size, const TokenMove& how);

class ConditionMoves {
 public:
  // Both outlive this.
  ConditionMoves(const formula::Move& move, const Grid& grid, bool own_sheet,
                 std::function<bool(std::uint16_t)> means_sheet)
      : tokens_{move, grid, own_sheet, std::move(means_sheet), {}, {}} {}

  // Takes the records of a sheet in their order. Nothing stays of data that goes with its cells.
  void move(std::uint16_t id, std::optional<std::string>& data);

 private:
  // What conditions are for.
  struct Base {
    bool gone = false;   // there are no cells any more
    CellAddress before;  // where relative references count from
    CellAddress after;
  };

  void move_ranges(std::optional<std::string>& data, std::size_t head);
  void move_extension(std::optional<std::string>& data);
  void move_condition(std::string& data) const;
  void move_later_condition(std::string& data) const;
  Base moved_base(const CellRanges& ranges, const CellRanges& to) const;
  void use(const Base& base);

  TokenMove tokens_;
  bool gone_ = false;
  std::map<unsigned, Base> bases_;  // by the numbers of their ranges
};

}  // namespace engine::xls
