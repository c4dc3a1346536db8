#include "engine/workbook/metrics.h"

#include <algorithm>
#include <cmath>

namespace engine {

namespace {

constexpr double kMaxWidth = 65535;  // files may say anything; columns end far below

constexpr double kMaxHeight = 409.5;  // points

int pixels_of_row(const SheetContents& sheet, const RowProperties* row) {
  if (row && row->hidden) return 0;
  return pixels_of_points(row && row->height ? *row->height : sheet.default_row_height);
}

}  // namespace

int pixels_of_width(double width, int digit) {
  const double sane = width > 0 ? std::min(width, kMaxWidth) : 0;
  const double rounding = std::trunc(128.0 / digit);
  return static_cast<int>((256 * sane + rounding) / 256 * digit);
}

double width_of_pixels(int pixels, int digit) {
  return std::trunc(static_cast<double>(pixels) / digit * 256) / 256;
}

// Below one character the padding shrinks with it.
int pixels_of_characters(double characters, int digit) {
  return characters < 1 ? static_cast<int>(std::lround(characters * (digit + kColumnPadding)))
                        : static_cast<int>(std::lround(characters * digit)) + kColumnPadding;
}

double characters_of_pixels(int pixels, int digit) {
  const double exact = pixels < digit + kColumnPadding
                           ? static_cast<double>(pixels) / (digit + kColumnPadding)
                           : static_cast<double>(pixels - kColumnPadding) / digit;
  return std::round(exact * 100) / 100;
}

double restated_width(double width, int former_digit, int digit) {
  const double characters =
      characters_of_pixels(pixels_of_width(width, former_digit), former_digit);
  return width_of_pixels(pixels_of_characters(characters, digit), digit);
}

int pixels_of_points(double points) {
  const double sane = points > 0 ? std::min(points, kMaxHeight) : 0;
  return static_cast<int>(std::lround(sane * 96 / 72));
}

// Without a stated width there is room for the base width and the padding, and more until the
// pixels are a multiple of eight.
int default_column_pixels(const SheetContents& sheet) {
  if (sheet.default_column_width)
    return pixels_of_width(*sheet.default_column_width, sheet.digit_pixels);
  return (sheet.base_column_width * sheet.digit_pixels + kColumnPadding + 7) / 8 * 8;
}

int unhidden_column_pixels(const SheetContents& sheet, int column) {
  const ColumnProperties* run = sheet.columns.find(column);
  return run && run->width ? pixels_of_width(*run->width, sheet.digit_pixels)
                           : default_column_pixels(sheet);
}

int column_pixels(const SheetContents& sheet, int column) {
  const ColumnProperties* run = sheet.columns.find(column);
  return run && run->hidden ? 0 : unhidden_column_pixels(sheet, column);
}

int row_pixels(const SheetContents& sheet, int row) {
  const Row* found = sheet.cells.find_row(row);
  if (!found && sheet.hides_rows) return 0;
  return pixels_of_row(sheet, found ? sheet.properties(*found) : nullptr);
}

namespace {

// A distance on its way over rows or columns of known sizes, one after the other.
class Walk {
 public:
  Walk(Corner from, long long distance, int count)
      : index_(from.index), left_(std::max(from.offset + distance, 0LL)), count_(count) {}

  int index() const { return index_; }
  // Over those of one size up to but not including `end`. False when the distance ends there.
  bool over(int end, int size) {
    end = std::min(end, count_);
    if (end <= index_) return true;
    last_size_ = size;
    const long long steps = size > 0 ? std::min<long long>(left_ / size, end - index_)
                                     : static_cast<long long>(end - index_);
    index_ += static_cast<int>(steps);
    left_ -= steps * size;
    return index_ == end;
  }
  Corner end() const {
    if (index_ < count_) return {index_, static_cast<int>(left_)};
    return {count_ - 1, std::max(last_size_ - 1, 0)};
  }

 private:
  int index_;
  long long left_;
  int count_;
  int last_size_ = 0;
};

// Rows that the sheet says nothing of.
int usual_row_pixels(const SheetContents& sheet) {
  return sheet.hides_rows ? 0 : pixels_of_points(sheet.default_row_height);
}

}  // namespace

long long column_distance(const SheetContents& sheet, int first, int end) {
  long long sum = 0;
  for (int column = first; column < end; ++column) sum += column_pixels(sheet, column);
  return sum;
}

long long row_distance(const SheetContents& sheet, int first, int end) {
  if (end <= first) return 0;
  const int usual = usual_row_pixels(sheet);
  long long sum = static_cast<long long>(end - first) * usual;
  for (const Row& row :
       sheet.cells.rows(static_cast<std::uint32_t>(first), static_cast<std::uint32_t>(end)))
    sum += pixels_of_row(sheet, sheet.properties(row)) - usual;
  return sum;
}

namespace {

// Measures on until `is_enough` says so of the beginnings that are known, or they reach `end`. One
// pass over the rows: they may lie far apart.
template <class Enough>
const std::vector<long long>& measured_begins(const SheetContents& sheet, int end,
                                              const Enough& is_enough) {
  constexpr int kStep = RowBegins::kStep;
  std::vector<long long>& known = sheet.row_begins().known;
  if (known.empty()) known.push_back(0);
  if (is_enough(known)) return known;
  const int usual = usual_row_pixels(sheet);
  int last = static_cast<int>(known.size() - 1) * kStep;
  auto [row, rows_end] = sheet.cells.rows(static_cast<std::uint32_t>(last));
  while (last + kStep < end && !is_enough(known)) {
    last += kStep;
    long long begin = known.back() + static_cast<long long>(kStep) * usual;
    for (; row != rows_end && row->number < static_cast<std::uint32_t>(last); ++row)
      begin += pixels_of_row(sheet, sheet.properties(*row)) - usual;
    known.push_back(begin);
  }
  return known;
}

}  // namespace

long long row_position(const SheetContents& sheet, int row) {
  const auto step = static_cast<std::size_t>(row / RowBegins::kStep);
  const auto& begins = measured_begins(
      sheet, row + 1, [step](const std::vector<long long>& known) { return known.size() > step; });
  return begins[step] + row_distance(sheet, row / RowBegins::kStep * RowBegins::kStep, row);
}

Corner row_at_position(const SheetContents& sheet, long long position, int count) {
  const auto& begins = measured_begins(
      sheet, count,
      [position](const std::vector<long long>& known) { return known.back() > position; });
  const auto step =
      std::max<std::ptrdiff_t>(std::ranges::upper_bound(begins, position) - begins.begin() - 1, 0);
  return walk_rows(sheet, {static_cast<int>(step) * RowBegins::kStep, 0},
                   position - begins[static_cast<std::size_t>(step)], count);
}

Corner walk_columns(const SheetContents& sheet, Corner from, long long distance, int count) {
  Walk walk(from, distance, count);
  while (walk.index() < count && walk.over(walk.index() + 1, column_pixels(sheet, walk.index())))
    continue;
  return walk.end();
}

Corner walk_rows(const SheetContents& sheet, Corner from, long long distance, int count) {
  Walk walk(from, distance, count);
  const int usual = usual_row_pixels(sheet);
  for (const Row& row : sheet.cells.rows(static_cast<std::uint32_t>(from.index))) {
    const int number = static_cast<int>(row.number);
    if (!walk.over(number, usual)) return walk.end();
    if (!walk.over(number + 1, pixels_of_row(sheet, sheet.properties(row)))) return walk.end();
  }
  walk.over(count, usual);
  return walk.end();
}

Edges::Edges(int count, int usual) : count_(count), usual_(usual) {
  runs_.push_back({0, 0, usual});
}

void Edges::append(int first, int last, int size) {
  last = std::min(last, count_ - 1);
  if (last < first) return;
  start_run(first, size);
  if (last + 1 < count_) start_run(last + 1, usual_);
}

// A run that nothing is in gives way to the next one.
void Edges::start_run(int first, int size) {
  const long long begin = position(first);
  if (runs_.back().first == first) runs_.back() = {first, begin, size};
  else if (runs_.back().size != size) runs_.push_back({first, begin, size});
}

Edges Edges::of_columns(const SheetContents& sheet, int count) {
  Edges made(count, default_column_pixels(sheet));
  for (const ColumnProperties& run : sheet.columns)
    made.append(run.first, run.last, column_pixels(sheet, run.first));
  return made;
}

Edges Edges::of_rows(const SheetContents& sheet, int count) {
  Edges made(count, usual_row_pixels(sheet));
  for (const Row& row : sheet.cells.rows()) {
    const RowProperties* its = sheet.properties(row);
    const int number = static_cast<int>(row.number);
    if (its || sheet.hides_rows) made.append(number, number, pixels_of_row(sheet, its));
  }
  return made;
}

long long Edges::position(int index) const {
  const Run& run = *std::prev(std::ranges::upper_bound(runs_, index, {}, &Run::first));
  return run.begin + static_cast<long long>(index - run.first) * run.size;
}

Edges Edges::moved(const formula::Move& move, int size) const {
  Edges made(count_, usual_);
  for (std::size_t i = 0; i < runs_.size(); ++i) {
    const auto& [first, begin, own] = runs_[i];
    const int last = i + 1 < runs_.size() ? runs_[i + 1].first - 1 : count_ - 1;
    if (move.kind == formula::Move::Kind::kRemove) {
      if (const auto to = formula::moved(formula::Interval{first, last}, move, count_))
        made.append(to->first, to->last, own);
      continue;
    }
    made.append(first, std::min(last, move.at - 1), own);
    if (first <= move.at && move.at <= last) made.append(move.at, move.at + move.count - 1, size);
    made.append(std::max(first, move.at) + move.count, last + move.count, own);
  }
  return made;
}

Corner Edges::walk(Corner from, int distance) const {
  const long long target = position(from.index) + from.offset + distance;
  const Run& run = *std::prev(std::ranges::upper_bound(runs_, target, {}, &Run::begin));
  const long long steps = run.size > 0 ? (target - run.begin) / run.size : count_;
  const int index = static_cast<int>(std::min<long long>(run.first + steps, count_ - 1));
  const long long left = target - position(index);
  return {index, static_cast<int>(std::min<long long>(left, std::max(run.size - 1, 0)))};
}

}  // namespace engine
