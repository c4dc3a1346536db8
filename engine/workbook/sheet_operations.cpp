#include "engine/workbook/sheet_operations.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include "engine/formula/formula_text.h"

namespace engine {

namespace {

CellRecord copy_of(const CellRecord& record, const FormulaEdit& edit, const Sheet* sheet) {
  CellRecord copy;
  copy.value = record.value;
  copy.formula = edit(sheet, record.formula).value_or(record.formula);
  if (record.extra) copy.extra = std::make_unique<CellExtra>(*record.extra);
  return copy;
}

void copy_cells(const Sheet& original, const FormulaEdit& edit, Sheet& copy) {
  for (const Row& row : original.cells.rows()) {
    Row& made = copy.cells.row_at(static_cast<int>(row.number));
    made.properties = row.properties;
    for (const Cell& cell : row.span()) {
      Cell copied = cell;
      if (const CellRecord* record = original.record(cell))
        copied.bits = copy.keep_record(copy_of(*record, edit, &original));
      copy.cells.at(made, cell.column) = copied;
    }
  }
}

void copy_comments(const Sheet& original, Sheet& copy) {
  copy.comments = original.comments;
  for (auto& [at, comment] : copy.comments) comment.changed = true;
  copy.comments_changed = !copy.comments.empty();
}

std::vector<DefinedName> copies_of_names(const Workbook& book, const FormulaEdit& edit,
                                         const Sheet& original, const Sheet& copy) {
  std::vector<DefinedName> copies;
  for (const DefinedName& name : book.names) {
    if (name.scope != &original) continue;
    copies.push_back(name);
    copies.back().scope = &copy;
    if (auto text = edit(&original, name.definition)) copies.back().definition = *std::move(text);
  }
  return copies;
}

void set_selected(Sheet& sheet, bool selected) {
  if (sheet.selected == selected) return;
  sheet.selected = selected;
  sheet.selection_changed = true;
}

bool is_visible(const std::unique_ptr<Sheet>& sheet) {
  return sheet->visibility == SheetVisibility::kVisible;
}

// The sheet that becomes active where the active one stood: the next visible one, else the previous
// one.
std::size_t heir_of_active(const Workbook& book, std::size_t position) {
  const auto at = book.sheets.begin() + static_cast<std::ptrdiff_t>(position);
  const auto next = std::find_if(at, book.sheets.end(), is_visible);
  if (next != book.sheets.end()) return static_cast<std::size_t>(next - book.sheets.begin());
  const auto previous =
      std::find_if(std::make_reverse_iterator(at), book.sheets.rend(), is_visible);
  if (previous == book.sheets.rend()) return 0;
  return static_cast<std::size_t>(book.sheets.rend() - previous) - 1;
}

}  // namespace

void FormulaEdits::collect(Workbook& book, const FormulaEdit& edit, const Sheet* except) {
  for (const auto& sheet : book.sheets) {
    if (sheet.get() == except) continue;
    for (const Row& row : std::as_const(sheet->cells).rows()) {
      for (const Cell& cell : row.span()) {
        CellRecord* record = sheet->record(cell);
        if (!record || record->formula.empty()) continue;
        if (auto text = edit(sheet.get(), record->formula))
          cells_.push_back({sheet.get(), record, *std::move(text)});
      }
    }
  }
  for (DefinedName& name : book.names) {
    if (except && name.scope == except) continue;
    if (auto text = edit(name.scope, name.definition)) names_.push_back({&name, *std::move(text)});
  }
}

void FormulaEdits::apply(Workbook& book) noexcept {
  for (CellEdit& edit : cells_) {
    edit.record->formula.swap(edit.formula);
    edit.sheet->changed = true;
  }
  for (NameEdit& edit : names_) edit.name->definition.swap(edit.definition);
  if (!cells_.empty() || !names_.empty()) book.needs_calculation = true;
}

void read_all_sheets(Workbook& book, Document& document, const Sheet* except) {
  for (const auto& sheet : book.sheets) {
    if (sheet.get() == except || sheet->kind != SheetKind::kWorksheet) continue;
    if (sheet->loading == Loading::kUnread || sheet->loading == Loading::kExcluded)
      document.read_sheet(book, *sheet);
  }
}

NewSheet make_sheet(std::string name) {
  NewSheet made;
  made.sheet = std::make_unique<Sheet>();
  made.sheet->name = std::move(name);
  made.sheet->changed = true;
  return made;
}

NewSheet make_copy(Workbook& book, Document& document, const Sheet& original, std::string name) {
  NewSheet made = make_sheet(std::move(name));
  Sheet& copy = *made.sheet;
  const std::vector<formula::TableChange> tables = document.copy_sheet(book, original, copy);
  const FormulaEdit edit = [&](const Sheet*, std::string_view text) {
    return formula::change_tables_text(
        text, formula::retarget_sheet_text(text, original.name, copy.name), tables);
  };
  copy_cells(original, edit, copy);
  copy.row_properties = original.row_properties;
  copy.columns = original.columns;
  copy.digit_pixels = original.digit_pixels;
  copy.default_column_width = original.default_column_width;
  copy.base_column_width = original.base_column_width;
  copy.default_row_pixels = original.default_row_pixels;
  copy.arrays = original.arrays;
  copy_comments(original, copy);
  made.names = copies_of_names(book, edit, original, copy);
  return made;
}

void make_room(Workbook& book, const NewSheet& made) {
  book.names.reserve(book.names.size() + made.names.size());
  book.sheets.reserve(book.sheets.size() + 1);
}

void place_sheet(Workbook& book, std::size_t position, NewSheet made) noexcept {
  if (book.sheets.empty()) made.sheet->selected = true;
  else if (position <= book.active_sheet) ++book.active_sheet;
  std::ranges::move(made.names, std::back_inserter(book.names));
  book.sheets.insert(book.sheets.begin() + static_cast<std::ptrdiff_t>(position),
                     std::move(made.sheet));
}

void move_sheet(Workbook& book, std::size_t from, std::size_t to) noexcept {
  const Sheet* active = book.sheets[book.active_sheet].get();
  const auto at = [&](std::size_t i) { return book.sheets.begin() + static_cast<int>(i); };
  if (from < to) std::rotate(at(from), at(from + 1), at(to + 1));
  else std::rotate(at(to), at(from), at(from + 1));
  book.active_sheet = book.position(*active);
}

std::unique_ptr<Sheet> delete_sheet(Workbook& book, Document& document, std::size_t position) {
  Sheet& gone = *book.sheets[position];
  read_all_sheets(book, document, &gone);
  std::vector<std::string_view> order;
  for (const auto& sheet : book.sheets) order.push_back(sheet->name);
  std::vector<formula::TableChange> tables;
  for (Table& table : document.tables(gone)) tables.push_back({std::move(table.name), {}});
  const FormulaEdit edit = [&](const Sheet*, std::string_view text) {
    return formula::change_tables_text(text, formula::delete_sheet_text(text, order, position),
                                       tables);
  };
  FormulaEdits edits;
  edits.collect(book, edit, &gone);
  document.remove_sheet(book, gone, edit);

  edits.apply(book);
  std::erase_if(book.names, [&](const DefinedName& name) { return name.scope == &gone; });
  const auto at = book.sheets.begin() + static_cast<std::ptrdiff_t>(position);
  std::unique_ptr<Sheet> removed = std::move(*at);
  book.sheets.erase(at);
  if (position < book.active_sheet) {
    --book.active_sheet;
  } else if (position == book.active_sheet) {
    book.active_sheet = heir_of_active(book, position);
    if (!book.sheets.empty()) set_selected(*book.sheets[book.active_sheet], true);
  }
  return removed;
}

void activate_sheet(Workbook& book, Document& document, std::size_t position) {
  read_all_sheets(book, document);
  const Sheet* active = book.sheets[position].get();
  for (const auto& sheet : book.sheets) set_selected(*sheet, sheet.get() == active);
  book.active_sheet = position;
}

}  // namespace engine
