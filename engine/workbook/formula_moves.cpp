#include "engine/workbook/formula_moves.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <memory>
#include <new>

#include "engine/formula/formula_text.h"

namespace engine {

namespace {

// Names that a sheet is printed and filtered by.
bool belongs_to(const DefinedName& name, const Sheet& sheet) {
  return name.scope == &sheet && name.name.starts_with("_xlnm.");
}

// Where a cell of the sheet that moves goes.
std::optional<CellAddress> moved(CellAddress cell, const formula::Move& move) {
  int& place = move.axis == formula::Axis::kRows ? cell.row : cell.column;
  const auto to = formula::moved(place, move);
  if (!to) return std::nullopt;
  place = *to;
  return cell;
}

}  // namespace

std::optional<std::string> FormulaMoves::edited(const Sheet* on, std::string_view formula) {
  auto text = adjuster_.adjusted(formula, on == &sheet_);
  if (!carried_ || !carried_->edit) return text;
  auto further = carried_->edit(text ? *text : formula);
  return further ? std::move(further) : std::move(text);
}

void FormulaMoves::collect(Workbook& book, bool names_follow) {
  for (const auto& sheet : book.sheets()) {
    collect_cells(*sheet, *sheet);
    if (sheet->outside) collect_cells(sheet->outside->rows, *sheet);
    if (sheet.get() == &sheet_) continue;
    texts_.collect_validations(
        *sheet, [this](const Sheet* on, std::string_view formula) { return edited(on, formula); });
  }
  collect_names(book, names_follow);
}

void FormulaMoves::collect_cells(Sheet& rows, const Sheet& owner) {
  texts_.collect_records(rows, owner, [this](const Sheet* on, std::string_view formula) {
    return edited(on, formula);
  });
  if (!rows.contents().shared_formulas.empty()) collect_shared(rows, owner);
  if (!carried_ || &owner != &sheet_) return;
  for (const auto& [at, formula] : carried_->formulas) {
    const Cell* cell = rows.contents().cells.find(at.row, at.column);
    if (!cell || cell->kind != CellKind::kRecord) continue;
    const auto text = adjuster_.adjusted(formula, true);
    texts_.add(rows, cell->index(), text ? *text : formula);
  }
}

void FormulaMoves::collect_shared(Sheet& rows, const Sheet& owner) {
  const SheetContents& contents = rows.contents();
  const bool own_sheet = &owner == &sheet_;
  std::vector<std::unique_ptr<formula::SharedAdjuster>> adjusters;
  bool concerned = false;
  for (const SharedFormula& shared : contents.shared_formulas) {
    adjusters.push_back(
        std::make_unique<formula::SharedAdjuster>(adjuster_, shared.text, shared.at, own_sheet));
    concerned |= adjusters.back()->concerned() || (carried_ && carried_->edit) || own_sheet;
  }
  if (!concerned) return;

  std::vector<std::vector<Group>> groups(adjusters.size());
  std::vector<std::map<formula::SharedAdjuster::Form, std::size_t>> known(adjusters.size());
  std::vector<std::map<int, Stretch>> stretches(adjusters.size());  // by where they begin
  formula::SharedAdjuster::Form form;
  for (const Row& row : contents.cells.rows()) {
    for (const Cell& cell : row.span()) {
      const CellRecord* record = contents.record(cell);
      if (!record || record->shared == 0) continue;
      const std::uint32_t number = record->shared - 1;
      const CellAddress from{static_cast<int>(row.number), cell.column};
      const auto to = own_sheet ? moved(from, adjuster_.move()) : from;
      if (!to) continue;
      const formula::SharedAdjuster& shared = *adjusters[number];
      std::vector<Group>& its = groups[number];
      const bool is_like_beside = shared.is_like_beside(from);
      if (is_like_beside) {
        const auto behind = stretches[number].upper_bound(shared.along(from));
        if (behind != stretches[number].begin()) {
          const Stretch& before = std::prev(behind)->second;
          if (before.last >= shared.along(from)) {
            its[before.group].records.push_back(cell.index());
            continue;
          }
        }
      }
      shared.read_form(from, *to, form);
      const auto [place, is_new] = known[number].try_emplace(form, its.size());
      if (is_new) {
        // One of each formula is no more than there was.
        if (!its.empty())
          pay_for_group(contents.shared_formulas[number].text.size() +
                        2 * sizeof(int) * form.size());
        its.push_back({form, from, *to, {}});
      }
      its[place->second].records.push_back(cell.index());
      if (is_like_beside)
        stretches[number][shared.along(from)] = {shared.last_alike(from), place->second};
    }
  }
  Split split;
  split.rows = &rows;
  split.formulas.resize(contents.shared_formulas.size());
  for (std::uint32_t number = 0; number < groups.size(); ++number)
    collect_groups(rows, own_sheet, split, number, *adjusters[number], groups[number]);
  splits_.push_back(std::move(split));
}

void FormulaMoves::pay_for_group(std::size_t bytes) {
  if (bytes > room_) throw std::bad_alloc();
  room_ -= bytes;
}

// One group keeps the number, with the text if that stays; a cell of a group of its own has the
// text for itself.
void FormulaMoves::collect_groups(Sheet& rows, bool own_sheet, Split& split, std::uint32_t number,
                                  const formula::SharedAdjuster& shared,
                                  const std::vector<Group>& groups) {
  if (!shared.is_formula()) {
    // It stays as it is, for the cell that it is for.
    const SharedFormula& bound = rows.contents().shared_formulas[number];
    const auto to = own_sheet ? moved(bound.at, adjuster_.move()) : bound.at;
    if (to && *to != bound.at) split.formulas[number] = {bound.text, *to, bound.spelling};
    return;
  }
  const auto same = std::ranges::find(groups, shared.unchanged(), &Group::form);
  const std::size_t keeper =
      same == groups.end() ? 0 : static_cast<std::size_t>(same - groups.begin());
  for (std::size_t i = 0; i < groups.size(); ++i) {
    const Group& group = groups[i];
    std::string text = shared.text_for(group.from, adjuster_);
    bool changed = same == groups.end() || i != keeper;
    if (carried_ && carried_->edit) {
      if (auto further = carried_->edit(text)) {
        text = *std::move(further);
        changed = true;
      }
    }
    if (!changed) continue;
    if (group.records.size() == 1) {
      texts_.add(rows, group.records.front(), text);
      continue;
    }
    std::uint32_t own = number;
    if (i != keeper) {
      own = static_cast<std::uint32_t>(split.formulas.size());
      split.formulas.emplace_back();
      for (const std::uint32_t record : group.records) split.records.emplace_back(record, own + 1);
    }
    split.formulas[own].text = std::move(text);
    split.formulas[own].at = group.to;
  }
}

// The hidden name of a filter says which cells it has, header first. Without a header it is none.
bool FormulaMoves::goes_with_filter(const DefinedName& name) const {
  if (name.scope != &sheet_ || name.name != "_xlnm._FilterDatabase") return false;
  const auto ranges = formula::ranges_of_text(name.definition, adjuster_.grid());
  if (ranges.size() != 1) return false;
  const formula::Move& move = adjuster_.move();
  const CellRange& cells = ranges[0].range;
  if (move.axis == formula::Axis::kRows) return !formula::moved(cells.row_first, move);
  return !formula::moved({cells.column_first, cells.column_last}, move, adjuster_.grid().columns);
}

void FormulaMoves::collect_names(Workbook& book, bool names_follow) {
  for (const DefinedName& name : book.names) {
    if (goes_with_filter(name)) {
      filter_name_ = &name;
      continue;
    }
    if (!names_follow && !belongs_to(name, sheet_)) continue;
    if (auto text = edited(name.scope, name.definition))
      names_.emplace_back(&name, *std::move(text));
  }
}

void FormulaMoves::begin_apply(Workbook& book) {
  if (filter_name_) book.names.remove(*filter_name_);
}

void FormulaMoves::apply(Workbook& book) noexcept {
  texts_.apply(book);
  for (Split& split : splits_) {
    SheetContents& contents = split.rows->change();
    for (std::size_t i = 0; i < contents.shared_formulas.size(); ++i)
      if (split.formulas[i].text.empty()) std::swap(split.formulas[i], contents.shared_formulas[i]);
    contents.shared_formulas.swap(split.formulas);
    for (const auto& [record, shared] : split.records) contents.records()[record].shared = shared;
  }
  for (auto& [name, definition] : names_) book.names.exchange(*name, definition);
}

}  // namespace engine
