#include "engine/workbook/sheet.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "engine/formula/formula_text.h"
#include "engine/text/fold.h"
#include "engine/workbook/workbook.h"

namespace engine {

const CellRecord* SheetContents::record(const Cell& cell) const {
  return cell.kind == CellKind::kRecord ? &records_[cell.index()] : nullptr;
}

CellRecord* SheetContents::record(const Cell& cell) {
  return cell.kind == CellKind::kRecord ? &records_[cell.index()] : nullptr;
}

bool SheetContents::is_formula(const Cell& cell) const {
  const CellRecord* found = record(cell);
  return found && found->has_formula();
}

std::string_view SheetContents::formula(const CellRecord& record, CellAddress at, const Grid& grid,
                                        std::string& moved) const {
  if (record.shared == 0) return record.formula;
  const SharedFormula& shared = shared_formulas[record.shared - 1];
  auto text =
      formula::shift_text(shared.text, at.row - shared.at.row, at.column - shared.at.column, grid);
  if (!text) return shared.text;
  moved = *std::move(text);
  return moved;
}

std::uint32_t SheetContents::style_at(int row, int column) const {
  const Row* at = cells.find_row(row);
  if (at) {
    if (const Cell* cell = cells.find(row, column)) return cell->style;
    const RowProperties* its = properties(*at);
    if (its && its->style) return *its->style;
  }
  const ColumnProperties* run = columns.find(column);
  return run ? run->style : 0;
}

void SheetContents::put_value(int row, int column, Value value,
                              std::optional<std::uint32_t> style) {
  Cell& cell = place(row, column, style);
  forget_record(cell);
  cell = make_cell(column, value, cell.style);
}

void SheetContents::put_record(int row, int column, const CellRecord& record,
                               std::optional<std::uint32_t> style) {
  drop_unused_texts();
  CellRecord kept = record;
  kept.formula = keep_text(record.formula);
  provide_record();
  Cell& cell = place(row, column, style);
  if (cell.kind != CellKind::kRecord) {
    cell.kind = CellKind::kRecord;
    cell.bits = take_record();
  }
  replace(records_[cell.index()], kept);
}

void SheetContents::put_style(int row, int column, std::uint32_t style) {
  cells.at(row_at(row), column).style = style;
}

Row& SheetContents::hidden_row_at(int row) {
  if (Row* const there = cells.find_row(row)) return *there;
  row_properties.emplace_back().hidden = true;
  Row& made = cells.row_at(row);
  made.properties = static_cast<std::uint32_t>(row_properties.size());
  return made;
}

Cell& SheetContents::place(int row, int column, std::optional<std::uint32_t> style) {
  Row& at = row_at(row);
  const std::uint16_t before = at.count;
  Cell& cell = cells.at(at, column);
  if (style) cell.style = *style;
  else if (at.count != before && (at.properties != 0 || !columns.empty())) {
    // A new cell looks like its row or column: what stands there without the cell itself.
    const RowProperties* its = properties(at);
    const ColumnProperties* run = columns.find(column);
    if (its && its->style) cell.style = *its->style;
    else if (run) cell.style = run->style;
  }
  return cell;
}

void SheetContents::erase_cells(const CellRange& range) noexcept {
  cells.erase(range, [this](const Cell& cell) { forget_record(cell); });
  arrays.remove_inside(range);
}

void SheetContents::clear(const CellRange& range) noexcept {
  erase_cells(range);
  auto comment = comments.lower_bound({range.row_first, range.column_first});
  while (comment != comments.end() && comment->first.row <= range.row_last) {
    const bool is_inside = range.contains(comment->first.row, comment->first.column);
    comment = is_inside ? comments.erase(comment) : std::next(comment);
  }
}

std::uint32_t SheetContents::keep_record(const CellRecord& record) {
  provide_record();
  const std::uint32_t index = take_record();
  replace(records_[index], record);
  return index;
}

// Free records are a chain through the words of their values. Makes one when there is none.
void SheetContents::provide_record() {
  if (free_record_ != kNoRecord) return;
  CellRecord record;
  record.value.bits = kNoRecord;
  records_.push_back(record);
  free_record_ = static_cast<std::uint32_t>(records_.size() - 1);
}

std::uint32_t SheetContents::take_record() noexcept {
  const std::uint32_t index = free_record_;
  free_record_ = static_cast<std::uint32_t>(records_[index].value.bits);
  return index;
}

std::uint32_t SheetContents::keep_extra(CellExtra extra) {
  extras_.push_back(std::move(extra));
  return static_cast<std::uint32_t>(extras_.size());
}

// Free records are a chain through the words of their values.
void SheetContents::forget_record(const Cell& cell) noexcept {
  if (cell.kind != CellKind::kRecord) return;
  CellRecord& record = records_[cell.index()];
  replace(record, {});
  record.value.bits = free_record_;
  free_record_ = cell.index();
}

// All that records are given and lose goes through here, so that what nothing uses is counted.
void SheetContents::replace(CellRecord& record, const CellRecord& by) noexcept {
  unused_text_ += record.formula.size();
  unused_text_ -= by.formula.size();
  if (record.extra != 0 && record.extra != by.extra) extras_[record.extra - 1] = {};
  record = by;
}

std::string_view SheetContents::keep_text(std::string_view text) {
  const std::string_view kept = texts_.keep(text);
  unused_text_ += text.size();
  return kept;
}

void SheetContents::set_formula(CellRecord& record, std::string_view kept) noexcept {
  CellRecord changed = record;
  changed.formula = kept;
  changed.shared = 0;
  replace(record, changed);
}

// The texts in use move only when at least as much is freed, so each byte that is kept pays for
// one that moves.
void SheetContents::drop_unused_texts() {
  constexpr std::size_t kTolerated = std::size_t{1} << 16;
  if (unused_text_ < kTolerated || unused_text_ < texts_.size() / 2) return;
  std::size_t used = 0;
  for (const CellRecord& record : records_) used += record.formula.size();
  TextArena kept;
  kept.reserve(used);
  for (CellRecord& record : records_) record.formula = kept.keep(record.formula);
  texts_ = std::move(kept);
  unused_text_ = 0;
}

const RowProperties* SheetContents::properties(const Row& row) const {
  return row.properties == 0 ? nullptr : &row_properties[row.properties - 1];
}

const RowProperties* SheetContents::properties(int row) const {
  const Row* found = cells.find_row(row);
  return found ? properties(*found) : nullptr;
}

bool SheetContents::is_hidden(int row) const {
  const Row* found = cells.find_row(row);
  if (!found) return hides_rows;
  const RowProperties* its = properties(*found);
  return its && its->hidden;
}

RowProperties& SheetContents::properties_at(int row) {
  row_begins_.forget_below(row);
  Row& at = row_at(row);
  if (at.properties == 0) {
    row_properties.emplace_back();
    at.properties = static_cast<std::uint32_t>(row_properties.size());
  }
  return row_properties[at.properties - 1];
}

Sheet::Sheet(std::string its_name) : name_(std::move(its_name)), folded_name_(fold_case(name_)) {}

Sheet::~Sheet() = default;

void Sheet::take(SheetContents&& contents) noexcept {
  contents_ = std::move(contents);
  changed_ = false;
}

bool Sheet::changed() const { return changed_ || (outside && outside->rows.changed()); }

}  // namespace engine
