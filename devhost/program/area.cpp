#include "devhost/program/area.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstddef>
#include <system_error>
#include <tuple>

namespace devhost {
namespace {

constexpr int kLetters = 26;
// What sheets have at most.
constexpr int kRows = 1048576;
constexpr int kColumns = 16384;

// One end of a range; -1 where it names no row or no column.
struct Corner {
  int row = -1;
  int column = -1;
};

std::optional<Corner> parse_corner(std::string_view text) {
  Corner corner;
  if (text.starts_with('$')) text.remove_prefix(1);
  int column = 0;
  while (!text.empty() && std::isalpha(static_cast<unsigned char>(text[0])) != 0) {
    column = column * kLetters + std::toupper(static_cast<unsigned char>(text[0])) - 'A' + 1;
    if (column > kColumns) return std::nullopt;
    text.remove_prefix(1);
  }
  corner.column = column - 1;
  if (text.starts_with('$') && column > 0) text.remove_prefix(1);
  if (text.empty()) return column > 0 ? std::optional(corner) : std::nullopt;
  int row = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), row);
  const bool whole = error == std::errc() && end == text.data() + text.size();
  if (!whole || row < 1 || row > kRows) return std::nullopt;
  corner.row = row - 1;
  return corner;
}

}  // namespace

std::optional<Area> parse_area(std::string_view text) {
  const std::size_t colon = text.find(':');
  const auto first = parse_corner(text.substr(0, colon));
  if (!first) return std::nullopt;
  const bool is_cell = first->row >= 0 && first->column >= 0;
  if (colon == std::string_view::npos && !is_cell) return std::nullopt;
  const auto last = colon == std::string_view::npos ? first : parse_corner(text.substr(colon + 1));
  if (!last || (last->row < 0) != (first->row < 0) || (last->column < 0) != (first->column < 0)) {
    return std::nullopt;
  }
  Area area = {0, kRows - 1, 0, kColumns - 1, first->row >= 0};
  if (first->row >= 0) std::tie(area.row_first, area.row_last) = std::minmax(first->row, last->row);
  if (first->column >= 0) {
    std::tie(area.column_first, area.column_last) = std::minmax(first->column, last->column);
  }
  return area;
}

std::optional<Area> overlap(const Area& left, const Area& right) {
  const Area both = {
      std::max(left.row_first, right.row_first), std::min(left.row_last, right.row_last),
      std::max(left.column_first, right.column_first),
      std::min(left.column_last, right.column_last), left.names_rows || right.names_rows};
  return both.rows() > 0 && both.columns() > 0 ? std::optional(both) : std::nullopt;
}

std::string column_text(int column) {
  std::string text;
  for (++column; column > 0; column = (column - 1) / kLetters) {
    text.insert(text.begin(), static_cast<char>('A' + (column - 1) % kLetters));
  }
  return text;
}

std::string cell_text(int row, int column) { return column_text(column) + std::to_string(row + 1); }

std::string area_text(const Area& area) {
  const std::string first = cell_text(area.row_first, area.column_first);
  const std::string last = cell_text(area.row_last, area.column_last);
  return first == last ? first : first + ":" + last;
}

}  // namespace devhost
