#include "engine/formula/adjust.h"

#include <algorithm>
#include <limits>

#include "engine/formula/leaf.h"
#include "engine/formula/scan.h"
#include "engine/text/fold.h"

namespace engine::formula {

namespace {

// What a form says of a reference that is lost. Positions are far from it.
constexpr int kLost = std::numeric_limits<int>::min();

// Whether a run of digits names a row behind the place.
bool has_row_behind(std::string_view text, int at) {
  long long number = 0;
  for (const char c : text) {
    if (!is_digit(c)) {
      number = 0;
      continue;
    }
    number = std::min<long long>(number * 10 + (c - '0'), std::numeric_limits<int>::max());
    if (number > at) return true;
  }
  return false;
}

// Whether letters that may be a column's name one behind the place. In front of a bracket they are
// the name of a function.
bool has_column_behind(std::string_view text, int at) {
  for (std::size_t i = 0; i < text.size();) {
    if (!is_word(text[i])) {
      ++i;
      continue;
    }
    int column = 0;
    const std::size_t begin = i;
    while (i < text.size() && is_letter(text[i]) && i - begin < 4)
      column = column * 26 + (text[i++] & 0x1F);
    const std::size_t letters = i - begin;
    while (i < text.size() && is_word(text[i])) ++i;
    const bool calls = i < text.size() && text[i] == '(';
    if (letters != 0 && letters < 4 && column > at && !calls) return true;
  }
  return false;
}

}  // namespace

// False where each prefix is plain to be that of another sheet. A quoted one may be any.
bool Adjuster::names_sheet(std::string_view text) const {
  const bool is_ascii = std::ranges::all_of(sheet_, [](char c) { return (c & 0x80) == 0; });
  for (std::size_t mark = text.find('!'); mark != std::string_view::npos;
       mark = text.find('!', mark + 1)) {
    if (!is_ascii || (mark != 0 && text[mark - 1] == '\'')) return true;
    if (mark < sheet_.size()) continue;
    const std::string_view prefix = text.substr(mark - sheet_.size(), sheet_.size());
    if (std::ranges::equal(
            prefix, sheet_, {}, [](char c) { return lower_ascii(c); },
            [](char c) { return lower_ascii(c); }))
      return true;
  }
  return false;
}

bool Adjuster::may_change(std::string_view text, bool own_sheet) const {
  if (!own_sheet && !names_sheet(text)) return false;
  return move_.axis == Axis::kRows ? has_row_behind(text, move_.at)
                                   : has_column_behind(text, move_.at);
}

std::optional<std::string> Adjuster::adjusted(std::string_view text, bool own_sheet) {
  if (!may_change(text, own_sheet)) return std::nullopt;
  if (!parse(formula_, text, ParseOptions::of_book(grid_))) return std::nullopt;
  return formula::adjusted(formula_, move_, sheet_, own_sheet);
}

SharedAdjuster::SharedAdjuster(const Adjuster& adjuster, std::string_view text, CellAddress at,
                               bool own_sheet)
    : move_(adjuster.move()), own_sheet_(own_sheet), at_(at) {
  if (!parse(formula_, text, ParseOptions::of_book(adjuster.grid()))) {
    is_formula_ = false;
    return;
  }
  moving_.resize(formula_.references.size());
  for (const Node& node : formula_.nodes) {
    if (node.kind != NodeKind::kReference) continue;
    moving_[node.value] = means_sheet(formula_, node, adjuster.sheet(), own_sheet);
    concerned_ |= moving_[node.value];
  }
  // On the sheet itself cells may come to stand at other distances from what does not move.
  concerned_ |= own_sheet && !formula_.references.empty();
  const Grid& grid = formula_.grid;
  across_ = {0, (move_.axis == Axis::kRows ? grid.columns : grid.rows) - 1};
  for (const Reference& reference : formula_.references) {
    append_ends(reference, at_, unchanged_);
    cut_across(reference);
  }
}

void SharedAdjuster::cut_across(const Reference& reference) {
  const bool rows = move_.axis == Axis::kRows;
  if (reference.shape == (rows ? Reference::Shape::kRows : Reference::Shape::kColumns)) return;
  const int size = rows ? formula_.grid.columns : formula_.grid.rows;
  for (const CellReference& end : {reference.first, reference.last}) {
    if (rows ? end.column_absolute : end.row_absolute) continue;
    const int distance = (rows ? end.column : end.row) - across(at_);
    across_.first = std::max(across_.first, -distance);
    across_.last = std::min(across_.last, size - 1 - distance);
  }
}

int SharedAdjuster::last_alike(CellAddress from) const {
  const bool rows = move_.axis == Axis::kRows;
  const bool inserts = move_.kind == Move::Kind::kInsert;
  const int size = rows ? formula_.grid.rows : formula_.grid.columns;
  const int count = std::min(move_.count, size);
  const int behind = std::min(move_.at, size) + count;
  // Ends in here are cut, which leaves them where they are while the cell goes on.
  const Interval cut = inserts ? Interval{size - count, size - 1} : Interval{move_.at, behind - 1};
  const int here = along(from);
  int last = size - 1;
  const auto stop_before = [&](int border, int position) {
    if (position < border) last = std::min(last, here + (border - position) - 1);
  };
  stop_before(move_.at, here);
  for (const Reference& reference : formula_.references) {
    if (reference.shape == (rows ? Reference::Shape::kColumns : Reference::Shape::kRows)) continue;
    const CellReference* const ends[] = {&reference.first, &reference.last};
    for (const int number : {0, 1}) {
      const auto place = [&](int of) { return rows ? ends[of]->row : ends[of]->column; };
      const auto stays = [&](int of) {
        return rows ? ends[of]->row_absolute : ends[of]->column_absolute;
      };
      if (stays(number)) continue;
      const int position = place(number) - along(at_) + here;
      if (cut.first <= position && position <= cut.last) return here;
      for (const int border : {0, move_.at, cut.first, cut.last + 1, size})
        stop_before(border, position);
      // Which end is the first may change.
      if (stays(1 - number))
        for (const int more : {0, 1}) stop_before(place(1 - number) + more, position);
    }
  }
  return last;
}

void SharedAdjuster::append_ends(const Reference& reference, CellAddress cell, Form& form) const {
  const bool rows = move_.axis == Axis::kRows;
  // Whole columns have no rows, whole rows no columns.
  if (reference.shape == (rows ? Reference::Shape::kColumns : Reference::Shape::kRows)) return;
  for (const CellReference& end : {reference.first, reference.last}) {
    const int position = rows ? end.row : end.column;
    const bool absolute = rows ? end.row_absolute : end.column_absolute;
    form.push_back(absolute ? position : position - along(cell));
  }
}

void SharedAdjuster::read_form(CellAddress from, CellAddress to, Form& form) const {
  form.clear();
  for (std::size_t i = 0; i < formula_.references.size(); ++i) {
    Reference reference = formula_.references[i];
    const bool is_left =
        shift_reference(reference, from.row - at_.row, from.column - at_.column, formula_.grid) &&
        (!moving_[i] || adjust_reference(reference, move_, formula_.grid));
    if (is_left) append_ends(reference, to, form);
    else form.push_back(kLost);
  }
}

std::string SharedAdjuster::text_for(CellAddress from, Adjuster& adjuster) const {
  auto here = shifted(formula_, from.row - at_.row, from.column - at_.column);
  std::string text = here ? *std::move(here) : formula_.text;
  auto moved = adjuster.adjusted(text, own_sheet_);
  return moved ? *std::move(moved) : text;
}

}  // namespace engine::formula
