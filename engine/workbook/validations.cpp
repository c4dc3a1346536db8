#include "engine/workbook/validations.h"

#include <algorithm>
#include <limits>
#include <map>
#include <utility>

#include "engine/formula/formula_text.h"

namespace engine {

namespace {

constexpr std::size_t kFewSlots = 64;

// The formulas of a rule for another corner; they refer to the same cells from every cell.
std::array<std::string, 2> restated(const std::array<std::string, 2>& formulas, CellAddress from,
                                    CellAddress to, const Grid& grid) {
  std::array<std::string, 2> made = formulas;
  if (from == to) return made;
  for (std::string& formula : made)
    if (auto text = formula::shift_text(formula, to.row - from.row, to.column - from.column, grid))
      formula = *std::move(text);
  return made;
}

// The cells that a move leaves, where they are before it.
CellRanges staying(const CellRanges& cells, const formula::Move& move, const Grid& grid) {
  CellRanges left;
  if (move.kind == formula::Move::Kind::kInsert) {
    for (const CellRange& range : cells)
      if (moved_range(range, move, grid)) left.insert(range);
    return left;
  }
  const bool rows = move.axis == formula::Axis::kRows;
  const int last = move.at + move.count - 1;
  const CellRange removed = rows ? CellRange{move.at, last, 0, grid.columns - 1}
                                 : CellRange{0, grid.rows - 1, move.at, last};
  for (const CellRange& range : cells) {
    if (range.overlaps(removed)) left.merge(outside(range, removed));
    else left.insert(range);
  }
  return left;
}

}  // namespace

bool compares(ValidationType type) {
  return type != ValidationType::kNone && type != ValidationType::kList &&
         type != ValidationType::kCustom;
}

bool has_two_limits(ValidationOperator comparison) {
  return comparison == ValidationOperator::kBetween ||
         comparison == ValidationOperator::kNotBetween;
}

void Validations::add(Validation rule) {
  if (slots_.size() == slots_.capacity()) slots_.reserve(2 * slots_.size() + 1);
  rule.corner = corner_of(rule.cells);
  slots_.push_back(std::move(rule));
  ++count_;
}

// What a rule loses to a newer one, all of it made before anything changes.
struct Validations::Cut {
  std::vector<CellRange> lost;
  CellRanges left;  // in place of those
  RangeIndex index;
  CellAddress corner;
  std::array<std::string, 2> formulas;
};

// Most cuts leave the corner where it is, which the first ranges tell.
void Validations::settle(Cut& cut, const Validation& rule, const Grid& grid) {
  std::ranges::sort(cut.lost, RangeLess());
  constexpr int kFar = std::numeric_limits<int>::max();
  cut.corner = {kFar, kFar};
  const auto take = [&](const CellRange& one) {
    cut.corner.row = std::min(cut.corner.row, one.row_first);
    cut.corner.column = std::min(cut.corner.column, one.column_first);
    return cut.corner == rule.corner;
  };
  bool stays = std::ranges::any_of(cut.left, take);
  for (auto at = rule.cells.begin(); !stays && at != rule.cells.end(); ++at)
    stays = !std::ranges::binary_search(cut.lost, *at, RangeLess()) && take(*at);
  const bool is_gone = cut.corner.row == kFar;
  cut.formulas = restated(rule.formulas, rule.corner, is_gone ? rule.corner : cut.corner, grid);
}

void Validations::put(const CellRange& cells, Validation rule, const Grid& grid) {
  if (slots_.size() > 2 * count_ + kFewSlots) drop_free_slots();
  make_index();
  std::map<std::uint32_t, Cut> cuts;
  index_.visit(cells, [&](const RangeIndex::Entry& entry) {
    Cut& cut = cuts[entry.number];
    cut.lost.push_back(entry.range());
    CellRanges left = outside(entry.range(), cells);
    for (const CellRange& part : left) cut.index.insert(part, entry.number);
    cut.left.merge(left);
  });
  for (auto& [number, cut] : cuts) settle(cut, slots_[number], grid);
  RangeIndex own;
  own.insert(cells, static_cast<std::uint32_t>(slots_.size()));
  rule.cells = {cells};
  add(std::move(rule));

  ++indexed_;
  index_.merge(own);
  for (auto& [number, cut] : cuts) {
    Validation& other = slots_[number];
    for (const CellRange& range : cut.lost) {
      other.cells.erase(range);
      index_.erase(range, number);
    }
    other.cells.merge(cut.left);
    index_.merge(cut.index);
    other.corner = cut.corner;
    other.formulas.swap(cut.formulas);
    if (other.cells.empty()) --count_;
  }
}

bool operator==(const Validations& a, const Validations& b) {
  if (a.count_ != b.count_) return false;
  auto other = b.slots_.begin();
  for (const Validation& rule : a.slots_) {
    if (rule.cells.empty()) continue;
    while (other->cells.empty()) ++other;
    if (rule != *other++) return false;
  }
  return true;
}

void Validations::drop_free_slots() {
  Validations kept;
  kept.slots_.reserve(slots_.size());
  for (const Validation& rule : slots_)
    if (!rule.cells.empty()) kept.add(rule);
  *this = std::move(kept);
}

void Validations::make_index() {
  for (; indexed_ < slots_.size(); ++indexed_)
    for (const CellRange& range : slots_[indexed_].cells)
      index_.insert(range, static_cast<std::uint32_t>(indexed_));
}

Validations moved(const Validations& rules, const formula::Move& move, const Grid& grid,
                  const std::function<std::optional<std::string>(std::string_view)>& edit) {
  Validations made;
  for (const Validation& rule : rules.slots()) {
    CellRanges cells = moved(rule.cells, move, grid);
    if (cells.empty()) continue;
    Validation to = rule;
    const CellAddress first = corner_of(staying(rule.cells, move, grid));
    to.formulas = restated(rule.formulas, rule.corner, first, grid);
    for (std::string& formula : to.formulas)
      if (auto text = edit(formula)) formula = *std::move(text);
    to.cells = std::move(cells);
    made.add(std::move(to));
  }
  return made;
}

}  // namespace engine
