// Which cells of a column a filter's criterion accepts.
//
// What a criterion says is made ready once and asked of one cell after the other. Texts are
// compared as cells show them, under their number formats and without regard to case.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "engine/workbook/auto_filter.h"
#include "engine/workbook/workbook.h"

namespace engine {

class FilterMatcher {
 public:
  // `range` is that of the filter that the column belongs to. All of this outlives the matcher.
  FilterMatcher(const Workbook& book, const SheetContents& sheet, const ColumnFilter& filter,
                const CellRange& range);

  int column() const { return filter_.column; }
  // Whether it depends on what nobody here can tell: the look of cells, or the day.
  bool is_carried() const;
  // Null stands for a cell that is not there.
  bool accepts(const Cell* cell) const;
  // The last number that is shown of the largest or smallest ones; nothing for other criteria.
  std::optional<double> last_shown() const { return last_shown_; }

 private:
  // One condition, made ready: its value is a number or a pattern of texts.
  struct Condition {
    FilterOperator comparison = FilterOperator::kEqual;
    std::string folded;
    std::u32string pattern;
    std::optional<double> number;
  };

  // What a cell is, asked for as far as a criterion needs it.
  class Seen;

  void take_numbers(const CellRange& range);
  bool accepts_value(const Seen& cell) const;
  bool is_in_dates(const Seen& cell) const;
  bool accepts_number(const Seen& cell) const;
  bool meets(const Seen& cell, const Condition& condition) const;
  bool equals(const Seen& cell, const Condition& condition) const;

  const Workbook& book_;
  const SheetContents& sheet_;
  const ColumnFilter& filter_;
  std::vector<Condition> conditions_;
  std::optional<double> last_shown_;
};

}  // namespace engine
