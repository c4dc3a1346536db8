// Rules for what may be typed into cells.
//
// A cell has at most one rule: a new one takes its cells from the older ones. A file may hold rules
// that meet all the same; they are kept so. The formulas of a rule are written for the corner of
// its cells, and stand for the others as if copied there: where a rule loses its corner they are
// restated.
//
// A rule keeps its slot as long as it lives. Which rules meet a rectangle is told by an index, made
// when a rule is first put among the others.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/formula/interval.h"
#include "engine/formula/reference.h"
#include "engine/workbook/cell_ranges.h"
#include "engine/workbook/range_index.h"

namespace engine {

enum class ValidationType : std::uint8_t {
  kNone,
  kWhole,
  kDecimal,
  kList,
  kDate,
  kTime,
  kTextLength,
  kCustom,
};

enum class ValidationOperator : std::uint8_t {
  kBetween,
  kNotBetween,
  kEqual,
  kNotEqual,
  kLess,
  kLessOrEqual,
  kGreater,
  kGreaterOrEqual,
};

enum class ValidationErrorStyle : std::uint8_t { kStop, kWarning, kInformation };

struct Validation {
  ValidationType type = ValidationType::kNone;
  ValidationOperator comparison = ValidationOperator::kBetween;
  ValidationErrorStyle error_style = ValidationErrorStyle::kStop;
  bool allow_blank = false;
  bool hide_drop_down = false;
  bool show_prompt = false;
  bool show_error = false;
  std::string prompt_title = {};
  std::string prompt = {};
  std::string error_title = {};
  std::string error = {};
  std::array<std::string, 2> formulas = {};  // without "="; empty where there is none
  CellRanges cells = {};
  CellAddress corner = {};    // of these
  std::uint32_t details = 0;  // kept for the codec: number of what the file says of it; 0: nothing

  friend bool operator==(const Validation&, const Validation&) = default;
};

// Whether the rule compares what is typed with limits, and with how many.
bool compares(ValidationType type);
bool has_two_limits(ValidationOperator comparison);

class Validations {
 public:
  std::size_t size() const { return count_; }
  bool empty() const { return count_ == 0; }

  // In their order. Those without cells are gone.
  const std::vector<Validation>& slots() const { return slots_; }

  // Behind all others, which may have the same cells. There is at least one.
  void add(Validation rule);
  // Adds a rule for a range after the cells of that have left the others.
  void put(const CellRange& cells, Validation rule, const Grid& grid);

  // Whether the rules are the same, in the same order.
  friend bool operator==(const Validations& a, const Validations& b);

  // Gives a rule another formula and its former one back.
  void exchange(std::size_t slot, std::size_t formula, std::string& text) noexcept {
    slots_[slot].formulas[formula].swap(text);
  }

 private:
  struct Cut;

  static void settle(Cut& cut, const Validation& rule, const Grid& grid);
  void drop_free_slots();
  void make_index();

  std::vector<Validation> slots_;
  std::size_t count_ = 0;
  RangeIndex index_;         // of the cells of the first slots
  std::size_t indexed_ = 0;  // so many
};

// The rules after rows or columns of their sheet were inserted or removed. `edit` gives the new
// text of a formula that stands on it, nothing when it stays.
Validations moved(const Validations& rules, const formula::Move& move, const Grid& grid,
                  const std::function<std::optional<std::string>(std::string_view)>& edit);

}  // namespace engine
