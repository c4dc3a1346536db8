#include "engine/workbook/columns.h"

#include <algorithm>
#include <span>
#include <utility>
#include <vector>

namespace engine {

namespace {

// Runs that are put together from left to right.
class Joined {
 public:
  // Of no columns at all adds nothing.
  void add(ColumnProperties run) {
    if (run.first > run.last) return;
    if (!runs_.empty() && runs_.back().last + 1 == run.first) {
      ColumnProperties extended = runs_.back();
      run.first = extended.first;
      extended.last = run.last;
      if (run == extended) {
        runs_.back() = run;
        return;
      }
      run.first = runs_.back().last + 1;
    }
    runs_.push_back(run);
  }
  std::vector<ColumnProperties> take() { return std::move(runs_); }

 private:
  std::vector<ColumnProperties> runs_;
};

ColumnProperties part(ColumnProperties run, int first, int last) {
  run.first = std::max(run.first, first);
  run.last = std::min(run.last, last);
  return run;
}

// The runs after an edit.
std::vector<ColumnProperties> edited(std::span<const ColumnProperties> runs,
                                     const Columns::Change& change) {
  const int first = change.first;
  const int last = change.last;
  Joined joined;
  int next = first;  // the first column that is not edited yet
  const auto add_unknown = [&](int end) {
    if (next > end) return;
    ColumnProperties unknown;
    unknown.first = next;
    unknown.last = end;
    ColumnProperties known = unknown;
    change.edit(known);
    if (known != unknown) joined.add(known);
  };
  for (const ColumnProperties& run : runs) {
    joined.add(part(run, run.first, first - 1));
    add_unknown(std::min(run.first - 1, last));
    ColumnProperties inside = part(run, first, last);
    if (inside.first <= inside.last) {
      change.edit(inside);
      joined.add(inside);
    }
    next = std::max(next, run.last + 1);
    if (run.first > last) add_unknown(last);
    joined.add(part(run, last + 1, run.last));
  }
  add_unknown(last);
  return joined.take();
}

}  // namespace

void Columns::change(std::initializer_list<Change> changes) {
  int first = changes.begin()->first;
  int last = changes.begin()->last;
  for (const Change& one : changes) {
    first = std::min(first, one.first);
    last = std::max(last, one.last);
  }
  // With the neighbours on both sides, which the outermost columns may become like.
  const auto old_begin = runs_.lower_bound(first - 1);
  auto old_end = old_begin;
  while (old_end != runs_.end() && old_end->first <= last + 1) ++old_end;
  std::vector<ColumnProperties> runs(old_begin, old_end);
  for (const Change& one : changes) runs = edited(runs, one);
  Runs made(runs.begin(), runs.end());
  runs_.erase(old_begin, old_end);
  runs_.merge(made);
}

void Columns::change_all(const Edit& edit) noexcept {
  Runs edited;
  while (!runs_.empty()) {
    auto node = runs_.extract(runs_.begin());
    edit(node.value());
    edited.insert(edited.end(), std::move(node));
  }
  runs_.swap(edited);
}

}  // namespace engine
