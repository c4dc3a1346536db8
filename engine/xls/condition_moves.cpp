#include "engine/xls/condition_moves.h"

#include <algorithm>
#include <utility>

#include "engine/xls/future_records.h"
#include "engine/xls/range_fields.h"
#include "engine/xls/records.h"

namespace engine::xls {

namespace {

// A value that a scale, a bar or an icon begins at: a formula, or a number unless its kind is that
// of the lowest or highest one there is.
void move_threshold(std::string& data, Fields& in, const TokenMove& how) {
  constexpr unsigned kLowest = 2;
  constexpr unsigned kHighest = 3;
  const unsigned kind = in.take8();
  const std::size_t size = in.take16();
  move_next_tokens(data, in, size, how);
  if (size == 0 && kind != kLowest && kind != kHighest) in.skip(8);
}

}  // namespace

void move_next_tokens(std::string& data, Fields& in, std::size_t size, const TokenMove& how) {
  const std::size_t at = data.size() - in.rest().size();
  std::string tokens(in.take(size));
  if (!in.ok()) return;
  move_tokens(tokens, how);
  data.replace(at, size, tokens);
}

void ConditionMoves::move(std::uint16_t id, std::optional<std::string>& data) {
  switch (id) {
    case kConditions:
      return move_ranges(data, 0);
    case kLaterConditions:
      return move_ranges(data, kFutureHead);
    case kConditionExtension:
      return move_extension(data);
    case kCondition:
    case kLaterCondition:
      if (gone_) return data.reset();
      return id == kCondition ? move_condition(*data) : move_later_condition(*data);
    default:
      return;
  }
}

void ConditionMoves::use(const Base& base) {
  gone_ = base.gone;
  tokens_.before = base.before;
  tokens_.after = base.after;
}

// Conditions whose cells all go, go with them.
void ConditionMoves::move_ranges(std::optional<std::string>& data, std::size_t head) {
  constexpr std::size_t kFixed = 14;
  use({});
  if (data->size() < head + kFixed) return;
  CellRanges ranges;
  for (std::size_t at = head + kFixed; at + kRangeSize <= data->size(); at += kRangeSize)
    ranges.insert(range_at(*data, at));
  if (ranges.empty()) return;
  Base& base = bases_[package::get16(*data, head + 2) >> 1];
  base = {false, corner_of(ranges), corner_of(ranges)};
  if (tokens_.own_sheet) {
    const CellRanges to = moved(ranges, tokens_.move, tokens_.grid);
    base.gone = to.empty();
    if (base.gone) {
      data.reset();
    } else {
      base = moved_base(ranges, to);
      data->resize(head + kFixed);
      CellRange all = *to.begin();
      for (const CellRange& range : to) {
        all = {std::min(all.row_first, range.row_first), std::max(all.row_last, range.row_last),
               std::min(all.column_first, range.column_first),
               std::max(all.column_last, range.column_last)};
        data->append(kRangeSize, '\0');
        set_range(*data, data->size() - kRangeSize, range);
      }
      set_range(*data, head + 4, all);
      put16(&(*data)[head + 12], static_cast<std::uint32_t>(to.size()));
      if (head != 0) set_range(*data, 4, all);
    }
  }
  use(base);
}

// Relative references count from the first cell. Where that goes, they are told anew from the one
// that is first then, by where it stood.
ConditionMoves::Base ConditionMoves::moved_base(const CellRanges& ranges,
                                                const CellRanges& to) const {
  Base base{false, corner_of(ranges), corner_of(to)};
  const formula::Move& move = tokens_.move;
  const bool rows = move.axis == formula::Axis::kRows;
  int& place = rows ? base.before.row : base.before.column;
  place = rows ? base.after.row : base.after.column;
  if (place < move.at) return base;
  if (move.kind == formula::Move::Kind::kRemove) place += move.count;
  else if (place >= move.at + move.count) place -= move.count;
  return base;
}

void ConditionMoves::move_extension(std::optional<std::string>& data) {
  constexpr std::size_t kCells = 4;
  constexpr std::size_t kNumber = 16;
  use({});
  if (data->size() < kNumber + 2) return;
  const auto base = bases_.find(package::get16(*data, kNumber));
  if (base == bases_.end()) return;
  use(base->second);
  if (gone_) return data.reset();
  if (!tokens_.own_sheet) return;
  if (const auto to = moved_range(range_at(*data, kCells), tokens_.move, tokens_.grid))
    set_range(*data, kCells, *to);
}

// The formulas are the last of the record.
void ConditionMoves::move_condition(std::string& data) const {
  const std::string old = data;
  Fields in(old);
  in.skip(2);
  const std::size_t first = in.take16();
  const std::size_t second = in.take16();
  if (!in.ok() || first + second > in.rest().size()) return;
  in.skip(in.rest().size() - first - second);
  move_next_tokens(data, in, first, tokens_);
  move_next_tokens(data, in, second, tokens_);
}

// Behind the look that it gives stand its two formulas, one that tells whether it counts at all,
// and what a scale, a bar or icons have of their own.
void ConditionMoves::move_later_condition(std::string& data) const {
  enum Kind : unsigned { kScale = 3, kBar = 4, kIcons = 6 };
  constexpr std::size_t kColor = 16;
  constexpr std::size_t kDouble = 8;
  const std::string old = data;
  Fields in(old);
  in.skip(kFutureHead);
  const unsigned kind = in.take8();
  in.skip(1);
  const std::size_t first = in.take16();
  const std::size_t second = in.take16();
  const std::size_t look = in.take32();
  in.skip(look == 0 ? 2 : look);
  move_next_tokens(data, in, first, tokens_);
  move_next_tokens(data, in, second, tokens_);
  move_next_tokens(data, in, in.take16(), tokens_);
  in.skip(5);
  in.skip(in.take8());
  in.skip(3);
  const unsigned count = in.take8();  // of a bar something else
  in.skip(2);
  if (kind == kScale) {
    for (unsigned i = 0; i < count; ++i) {
      move_threshold(data, in, tokens_);
      in.skip(kDouble);
    }
  } else if (kind == kBar) {
    in.skip(kColor);
    move_threshold(data, in, tokens_);
    move_threshold(data, in, tokens_);
  } else if (kind == kIcons) {
    for (unsigned i = 0; i < count; ++i) {
      move_threshold(data, in, tokens_);
      in.skip(5);
    }
  }
}

}  // namespace engine::xls
