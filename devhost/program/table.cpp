#include "devhost/program/table.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <utility>

#include "devhost/fm/unicode.h"
#include "devhost/program/columns.h"

namespace devhost {
namespace {

constexpr std::u16string_view kBetween = u" │ ";
constexpr int kBetweenWidth = 3;
// A column that is made narrower keeps that much.
constexpr int kLeastWidth = 12;

std::u16string repeated(char16_t unit, int times) {
  return std::u16string(static_cast<std::size_t>(times), unit);
}

int total(const std::vector<int>& widths, int most) {
  return std::accumulate(widths.begin(), widths.end(), 0, [most](int sum, int width) {
    return sum + kBetweenWidth + std::min(width, most);
  });
}

void print_line(std::ostream& out, const std::u16string& line) {
  const std::size_t end = line.find_last_not_of(u' ');
  out << utf8_from_utf16(std::u16string_view(line).substr(0, end + 1)) << '\n';
}

}  // namespace

Table::Table(std::vector<std::u16string> headings) {
  for (std::u16string& heading : headings) {
    const int width = columns_of(heading);
    columns_.push_back({std::move(heading), width});
  }
}

void Table::begin_row(std::u16string label) {
  label_width_ = std::max(label_width_, columns_of(label));
  rows_.push_back({std::move(label), {}});
}

void Table::add(std::u16string_view text, bool is_number) {
  std::vector<Cell>& cells = rows_.back().cells;
  Column& column = columns_[cells.size()];
  cells.push_back({on_one_line(text), is_number});
  column.width = std::max(column.width, columns_of(cells.back().text));
  if (!text.empty()) ++(is_number ? column.numbers : column.texts);
}

// The widest columns give first, all down to the same width.
std::vector<int> Table::widths_within(int width) const {
  std::vector<int> widths;
  for (const Column& column : columns_) widths.push_back(column.width);
  if (width == 0) return widths;
  const int room = width - label_width_;
  while (widths.size() > 1 && total(widths, kLeastWidth) > room) widths.pop_back();
  int most = *std::max_element(widths.begin(), widths.end());
  while (most > 1 && total(widths, most) > room) --most;
  for (int& one : widths) one = std::min(one, most);
  return widths;
}

std::size_t Table::print(std::ostream& out, int width) const {
  const std::vector<int> widths = widths_within(width);
  std::u16string line = repeated(u' ', label_width_);
  std::u16string rule = repeated(u'─', label_width_);
  for (std::size_t i = 0; i < widths.size(); ++i) {
    line += kBetween;
    line += fitted(columns_[i].heading, widths[i], columns_[i].is_numeric());
    rule += u"─┼─" + repeated(u'─', widths[i]);
  }
  print_line(out, line);
  print_line(out, rule);
  for (const Row& row : rows_) {
    line = fitted(row.label, label_width_, true);
    for (std::size_t i = 0; i < widths.size(); ++i) {
      const Cell cell = i < row.cells.size() ? row.cells[i] : Cell();
      line += kBetween;
      // A number of which digits are missing would be another one.
      line += cell.is_number && columns_of(cell.text) > widths[i]
                  ? repeated(u'#', widths[i])
                  : fitted(cell.text, widths[i], cell.is_number);
    }
    print_line(out, line);
  }
  return widths.size();
}

}  // namespace devhost
