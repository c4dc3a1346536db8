#include "engine/formula/interval.h"

#include <algorithm>

namespace engine::formula {

std::optional<int> moved(int x, const Move& move) {
  if (x < move.at) return x;
  if (move.kind == Move::Kind::kInsert) return x + move.count;
  if (x < move.at + move.count) return std::nullopt;
  return x - move.count;
}

std::optional<Interval> moved(Interval interval, const Move& move, int size) {
  auto& [first, last] = interval;
  if (move.kind == Move::Kind::kInsert) {
    if (move.at <= first) first += move.count;
    if (move.at <= last) last += move.count;
    if (first >= size) return std::nullopt;
    last = std::min(last, size - 1);
    return interval;
  }
  const int behind = move.at + move.count;  // the first one behind the removed
  if (first >= move.at && last < behind) return std::nullopt;
  if (first >= behind) first -= move.count;
  else first = std::min(first, move.at);
  if (last >= behind) last -= move.count;
  else last = std::min(last, move.at - 1);
  return interval;
}

}  // namespace engine::formula
