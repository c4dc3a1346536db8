#include "engine/formula/reference.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include "engine/formula/scan.h"
#include "engine/text/fold.h"

namespace engine::formula {
namespace {

void append_row(std::string& out, int row) {
  std::array<char, 12> digits{};
  const auto result = std::to_chars(digits.data(), digits.data() + digits.size(), row + 1);
  out.append(digits.data(), result.ptr);
}

// The row or column that makes up the whole text.
template <typename Scan>
std::optional<int> whole(Scan* scan, std::string_view text) {
  int position = 0;
  bool absolute = false;
  const char* const end = text.data() + text.size();
  if (scan(text.data(), end, position, absolute) != end || text.empty()) return std::nullopt;
  return position;
}

// Both ends of a range in order and inside 0..size-1.
bool in_order(int& first, int& last, int size) {
  if (first > last) std::swap(first, last);
  return last < size;
}

}  // namespace

bool equals_upper(std::string_view text, std::string_view upper_case) {
  return std::equal(text.begin(), text.end(), upper_case.begin(), upper_case.end(),
                    [](char a, char b) { return upper_ascii(a) == b; });
}

const char* scan_cell(const char* p, const char* end, CellReference& cell) {
  p = scan_column(p, end, cell.column, cell.column_absolute);
  return p == nullptr ? nullptr : scan_row(p, end, cell.row, cell.row_absolute);
}

const char* scan_r1c1_part(const char* p, const char* end, char letter, int base, int size,
                           int& position, bool& absolute) {
  if (p == end || upper_ascii(*p) != letter) return nullptr;
  ++p;
  absolute = p != end && is_digit(*p);
  if (absolute) {
    bool dollar = false;
    return scan_row(p, end, position, dollar);
  }
  position = base;
  if (p == end || *p != '[') return p;
  ++p;
  const bool negative = p != end && *p == '-';
  if (p != end && (*p == '-' || *p == '+')) ++p;
  int offset = 0;
  const auto [behind, failure] = std::from_chars(p, end, offset);
  if (failure != std::errc() || !is_digit(*p) || behind == end || *behind != ']') return nullptr;
  offset %= size;
  position = (base + (negative ? size - offset : offset)) % size;
  return behind + 1;
}

std::optional<int> parse_column(std::string_view letters) {
  return letters.starts_with('$') ? std::nullopt : whole(scan_column, letters);
}

std::optional<CellReference> parse_cell(std::string_view text) {
  const char* const end = text.data() + text.size();
  CellReference cell;
  if (scan_cell(text.data(), end, cell) != end || text.empty()) return std::nullopt;
  return cell;
}

std::optional<CellRange> parse_range(std::string_view text, const Grid& grid) {
  const std::size_t colon = text.find(':');
  const bool has_colon = colon != std::string_view::npos;
  const std::string_view one = text.substr(0, colon);
  const std::string_view two = has_colon ? text.substr(colon + 1) : one;
  CellRange range;
  if (const auto first = parse_cell(one), last = parse_cell(two); first && last)
    range = {first->row, last->row, first->column, last->column};
  else if (const auto left = whole(scan_column, one), right = whole(scan_column, two);
           has_colon && left && right)
    range = {0, grid.rows - 1, *left, *right};
  else if (const auto top = whole(scan_row, one), bottom = whole(scan_row, two);
           has_colon && top && bottom)
    range = {*top, *bottom, 0, grid.columns - 1};
  else return std::nullopt;
  if (!in_order(range.row_first, range.row_last, grid.rows)) return std::nullopt;
  if (!in_order(range.column_first, range.column_last, grid.columns)) return std::nullopt;
  return range;
}

void append_column(std::string& out, int column) {
  std::array<char, 8> letters{};
  std::size_t begin = letters.size();
  for (int rest = column + 1; rest > 0; rest = (rest - 1) / 26)
    letters[--begin] = static_cast<char>('A' + (rest - 1) % 26);
  out.append(letters.data() + begin, letters.size() - begin);
}

void append_cell(std::string& out, int row, int column) {
  append_column(out, column);
  append_row(out, row);
}

void append_cell(std::string& out, const CellReference& address) {
  if (address.column_absolute) out += '$';
  append_column(out, address.column);
  if (address.row_absolute) out += '$';
  append_row(out, address.row);
}

void append_range(std::string& out, const CellRange& range) {
  append_cell(out, range.row_first, range.column_first);
  if (range.row_first == range.row_last && range.column_first == range.column_last) return;
  out += ':';
  append_cell(out, range.row_last, range.column_last);
}

std::string print_column(int column) {
  std::string out;
  append_column(out, column);
  return out;
}

std::string print_cell(int row, int column) {
  std::string out;
  append_cell(out, row, column);
  return out;
}

std::string print_range(const CellRange& range) {
  std::string out;
  append_range(out, range);
  return out;
}

}  // namespace engine::formula
