#include "engine/formula/interval.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace engine::formula {
namespace {

// One that no integer holds stays at the largest, which lies past the end of every sheet.
int sum(int position, int count) {
  constexpr std::int64_t kLargest = std::numeric_limits<int>::max();
  return static_cast<int>(std::min(kLargest, std::int64_t{position} + count));
}

}  // namespace

std::optional<int> moved(int x, const Move& move) {
  if (x < move.at) return x;
  if (move.kind == Move::Kind::kInsert) return sum(x, move.count);
  if (x < sum(move.at, move.count)) return std::nullopt;
  return x - move.count;
}

std::optional<Interval> moved(Interval interval, const Move& move, int size) {
  auto& [first, last] = interval;
  if (move.kind == Move::Kind::kInsert) {
    if (move.at <= first) first = sum(first, move.count);
    if (move.at <= last) last = sum(last, move.count);
    if (first >= size) return std::nullopt;
    last = std::min(last, size - 1);
    return interval;
  }
  const int behind = sum(move.at, move.count);  // the first one behind the removed
  if (first >= move.at && last < behind) return std::nullopt;
  if (first >= behind) first -= move.count;
  else first = std::min(first, move.at);
  if (last >= behind) last -= move.count;
  else last = std::min(last, move.at - 1);
  return interval;
}

}  // namespace engine::formula
