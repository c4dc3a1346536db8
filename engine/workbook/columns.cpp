#include "engine/workbook/columns.h"

#include <algorithm>
#include <iterator>
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
  const std::vector<ColumnProperties>& runs() const { return runs_; }

 private:
  std::vector<ColumnProperties> runs_;
};

ColumnProperties part(ColumnProperties run, int first, int last) {
  run.first = std::max(run.first, first);
  run.last = std::min(run.last, last);
  return run;
}

}  // namespace

void Columns::change(int first, int last, const Edit& edit) {
  // With the neighbours on both sides, which the outermost columns may become like.
  const auto from = runs_.lower_bound(first - 1);
  auto until = from;
  Joined joined;
  int next = first;  // the first column that is not edited yet
  const auto add_edited = [&](ColumnProperties run) {
    if (run.first <= run.last) edit(run);
    next = std::max(next, run.last + 1);
    joined.add(run);
  };
  const auto add_unknown = [&](int end) {
    if (next > end) return;
    ColumnProperties unknown;
    unknown.first = next;
    unknown.last = end;
    ColumnProperties edited = unknown;
    edit(edited);
    next = end + 1;
    if (edited != unknown) joined.add(edited);
  };
  for (; until != runs_.end() && until->first <= last + 1; ++until) {
    joined.add(part(*until, until->first, first - 1));
    add_unknown(std::min(until->first - 1, last));
    add_edited(part(*until, first, last));
    joined.add(part(*until, last + 1, until->last));
  }
  add_unknown(last);
  Runs made(joined.runs().begin(), joined.runs().end());
  runs_.erase(from, until);
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
