#include "engine/formula/formula_text.h"

#include <algorithm>

#include "engine/formula/formula.h"
#include "engine/formula/leaf.h"
#include "engine/formula/sheet_name.h"

namespace engine::formula {
namespace {

// The changed text of a formula as it stands in `text`: while parsing, case is settled too, which
// is no change that a caller waits for.
template <typename Change>
std::optional<std::string> change(std::string_view text, const Grid& grid, const Change& change) {
  const std::optional<Formula> formula = parse(text, ParseOptions::of_book(grid));
  if (!formula) return std::nullopt;
  return change(*formula);
}

// A text without "!" names no sheet.
bool has_prefix(std::string_view text) { return text.find('!') != std::string_view::npos; }

CellRange range_of(const Reference& reference, const Grid& grid) {
  const auto& [shape, first, last] = reference;
  const auto [row_first, row_last] = std::minmax(first.row, last.row);
  const auto [column_first, column_last] = std::minmax(first.column, last.column);
  if (shape == Reference::Shape::kRows) return {row_first, row_last, 0, grid.columns - 1};
  if (shape == Reference::Shape::kColumns) return {0, grid.rows - 1, column_first, column_last};
  return {row_first, row_last, column_first, column_last};
}

}  // namespace

std::optional<std::string> shift_text(std::string_view text, int rows, int columns,
                                      const Grid& grid) {
  return change(text, grid,
                [&](const Formula& formula) { return shifted(formula, rows, columns); });
}

std::optional<std::string> adjust_text(std::string_view text, const Move& move,
                                       std::string_view sheet, bool own_sheet, const Grid& grid) {
  if (!own_sheet && !has_prefix(text)) return std::nullopt;
  return change(text, grid,
                [&](const Formula& formula) { return adjusted(formula, move, sheet, own_sheet); });
}

std::optional<std::string> rename_sheet_text(std::string_view text, std::string_view from,
                                             std::string_view to, const Grid& grid) {
  if (!has_prefix(text)) return std::nullopt;
  return change(text, grid, [&](const Formula& formula) { return renamed(formula, from, to); });
}

std::optional<std::string> retarget_sheet_text(std::string_view text, std::string_view from,
                                               std::string_view to, const Grid& grid) {
  if (!has_prefix(text)) return std::nullopt;
  return change(text, grid, [&](const Formula& formula) { return retargeted(formula, from, to); });
}

std::optional<std::string> delete_sheet_text(std::string_view text,
                                             std::span<const std::string_view> sheets,
                                             std::size_t index, const Grid& grid) {
  if (!has_prefix(text)) return std::nullopt;
  return change(text, grid,
                [&](const Formula& formula) { return without_sheet(formula, sheets, index); });
}

std::optional<std::string> change_tables_text(std::string_view text,
                                              std::span<const TableChange> changes,
                                              const Grid& grid) {
  if (changes.empty()) return std::nullopt;
  return change(text, grid, [&](const Formula& formula) { return with_tables(formula, changes); });
}

std::optional<std::string> change_tables_text(std::string_view text,
                                              std::optional<std::string> changed,
                                              std::span<const TableChange> changes,
                                              const Grid& grid) {
  auto made = change_tables_text(changed ? *changed : text, changes, grid);
  return made ? made : changed;
}

std::optional<std::string> change_columns_text(std::string_view text, const ColumnChanges& changes,
                                               const Grid& grid) {
  if (text.find('[') == std::string_view::npos) return std::nullopt;
  return change(text, grid, [&](const Formula& formula) { return with_columns(formula, changes); });
}

std::vector<SheetRange> ranges_of_text(std::string_view text, const Grid& grid) {
  const std::optional<Formula> formula = parse(text, ParseOptions::of_book(grid));
  if (!formula) return {};
  std::vector<SheetRange> ranges;
  for (const Node& node : formula->nodes) {
    if (node.kind == NodeKind::kParentheses) continue;
    if (node.kind == NodeKind::kBinary &&
        node.value == static_cast<std::uint16_t>(Operator::kUnion))
      continue;
    const bool single = node.prefix == PrefixKind::kNone || node.prefix == PrefixKind::kSheet;
    if (node.kind != NodeKind::kReference || !single) return {};
    std::string sheet;
    if (node.prefix == PrefixKind::kSheet) sheet = read_prefix(*formula, node).first;
    ranges.push_back({std::move(sheet), range_of(formula->references[node.value], grid)});
  }
  return ranges;
}

std::string absolute_range_text(std::string_view sheet, const CellRange& range) {
  std::string out = quote_sheet_name(sheet) + '!';
  const auto& [row_first, row_last, column_first, column_last] = range;
  append_cell(out, {row_first, column_first, true, true});
  if (row_first == row_last && column_first == column_last) return out;
  out += ':';
  append_cell(out, {row_last, column_last, true, true});
  return out;
}

}  // namespace engine::formula
