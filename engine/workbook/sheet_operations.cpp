#include "engine/workbook/sheet_operations.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include "engine/formula/formula.h"
#include "engine/formula/formula_text.h"
#include "engine/text/fold.h"
#include "engine/workbook/font_metrics.h"

namespace engine {

namespace {

// Edits the formulas of a copy; `original` is the sheet that they stood on.
void edit_copy(SheetContents& copy, const FormulaEdit& edit, const Sheet* original) {
  for (CellRecord& record : copy.records())
    if (!record.formula.empty())
      if (const auto text = edit(original, record.formula))
        copy.set_formula(record, copy.keep_text(*text));
  for (SharedFormula& shared : copy.shared_formulas)
    if (auto text = edit(original, shared.text)) shared.text = *std::move(text);
  for (std::size_t slot = 0; slot < copy.validations.slots().size(); ++slot)
    for (std::size_t number = 0;
         const std::string& formula : copy.validations.slots()[slot].formulas) {
      if (auto text = edit(original, formula)) copy.validations.exchange(slot, number, *text);
      ++number;
    }
}

void copy_names(const Workbook& book, const FormulaEdit& edit, const Sheet& original,
                const Sheet& copy, DefinedNames& copies) {
  for (const DefinedName* name : book.names.of_scope(original)) {
    DefinedName made = *name;
    made.scope = &copy;
    if (auto text = edit(&original, made.definition)) made.definition = *std::move(text);
    copies.add(std::move(made));
  }
}

// New texts for links to places in the book.
struct LinkEdit {
  Sheet* sheet;
  std::size_t index;
  std::string text;
};

std::vector<LinkEdit> edited_links(const Workbook& book, const FormulaEdit& edit) {
  std::vector<LinkEdit> edits;
  for (const auto& sheet : book.sheets()) {
    const Links& links = sheet->contents().links;
    for (std::size_t index = 0; index < links.size(); ++index) {
      const LinkTarget to = link_target(links[index].text);
      if (to.kind != LinkKind::kPlace) continue;
      if (auto place = edit(sheet.get(), to.location))
        edits.push_back({sheet.get(), index, "#" + *place});
    }
  }
  return edits;
}

bool is_unread(const Sheet& sheet) {
  return sheet.kind == SheetKind::kWorksheet &&
         (sheet.loading == Loading::kUnread || sheet.loading == Loading::kExcluded);
}

bool is_visible(const std::unique_ptr<Sheet>& sheet) {
  return sheet->visibility == SheetVisibility::kVisible;
}

// The sheet that becomes active in place of the active one: the first visible one from `next` on,
// else the last before `position`.
std::size_t heir_of_active(const Workbook& book, std::size_t position, std::size_t next) {
  const auto at = [&](std::size_t i) { return book.sheets().begin() + static_cast<int>(i); };
  const auto found = std::find_if(at(next), book.sheets().end(), is_visible);
  if (found != book.sheets().end()) return static_cast<std::size_t>(found - book.sheets().begin());
  const auto previous =
      std::find_if(std::make_reverse_iterator(at(position)), book.sheets().rend(), is_visible);
  if (previous == book.sheets().rend()) return 0;
  return static_cast<std::size_t>(book.sheets().rend() - previous) - 1;
}

// The number of the formula that a cell shares with others, plus one; 0 without one.
std::uint32_t shared_at(const SheetContents& contents, CellAddress at) {
  const Cell* cell = contents.cells.find(at.row, at.column);
  const CellRecord* record = cell ? contents.record(*cell) : nullptr;
  return record ? record->shared : 0;
}

// Whether at least so many cells share a formula that cannot be moved.
bool is_bound(const SheetContents& contents, std::uint32_t number, std::size_t cells,
              const Grid& grid) {
  const std::string_view text = contents.shared_formulas[number - 1].text;
  if (formula::parse(text, formula::ParseOptions::of_book(grid))) return false;
  for (const CellRecord& record : contents.records())
    if (record.shared == number && --cells == 0) return true;
  return false;
}

}  // namespace

bool holds_bound_formula(const SheetContents& contents, CellAddress cell, const Grid& grid) {
  if (contents.shared_formulas.empty()) return false;
  const std::uint32_t number = shared_at(contents, cell);
  return number != 0 && contents.shared_formulas[number - 1].at == cell &&
         is_bound(contents, number, 2, grid);
}

const SharedFormula* stranded_formula(const SheetContents& contents, const Grid& grid) {
  for (std::uint32_t number = 1; const SharedFormula& one : contents.shared_formulas) {
    if (shared_at(contents, one.at) != number && is_bound(contents, number, 1, grid)) return &one;
    ++number;
  }
  return nullptr;
}

void FormulaEdits::collect(Workbook& book, const FormulaEdit& edit, const Sheet* except) {
  for (const auto& sheet : book.sheets()) {
    if (sheet.get() == except) continue;
    collect_cells(*sheet, *sheet, edit);
    if (sheet->outside) collect_cells(sheet->outside->rows, *sheet, edit);
    collect_validations(*sheet, edit);
  }
  for (const DefinedName& name : book.names) {
    if (except && name.scope == except) continue;
    if (auto text = edit(name.scope, name.definition)) names_.push_back({&name, *std::move(text)});
  }
}

void FormulaEdits::collect_validations(Sheet& sheet, const FormulaEdit& edit) {
  for (std::size_t slot = 0; const Validation& rule : sheet.contents().validations.slots()) {
    for (std::size_t number = 0; const std::string& formula : rule.formulas) {
      if (auto text = edit(&sheet, formula))
        validations_.push_back({&sheet, slot, number, *std::move(text)});
      ++number;
    }
    ++slot;
  }
}

void FormulaEdits::collect_cells(Sheet& rows, const Sheet& sheet, const FormulaEdit& edit) {
  collect_records(rows, sheet, edit);
  for (std::uint32_t number = 0; const SharedFormula& shared : rows.contents().shared_formulas) {
    if (auto text = edit(&sheet, shared.text)) shared_.push_back({&rows, number, *std::move(text)});
    ++number;
  }
}

void FormulaEdits::collect_records(Sheet& rows, const Sheet& sheet, const FormulaEdit& edit) {
  rows.drop_unused_texts();
  const auto& records = rows.contents().records();
  for (std::uint32_t number = 0; const CellRecord& record : records) {
    if (!record.formula.empty())
      if (const auto text = edit(&sheet, record.formula)) add(rows, number, *text);
    ++number;
  }
}

void FormulaEdits::add(Sheet& rows, std::uint32_t record, std::string_view formula) {
  cells_.push_back({&rows, record, rows.keep_text(formula)});
}

void FormulaEdits::apply(Workbook& book) noexcept {
  for (const CellEdit& edit : cells_) {
    SheetContents& contents = edit.sheet->change();
    contents.set_formula(contents.records()[edit.record], edit.formula);
  }
  for (SharedEdit& edit : shared_)
    edit.sheet->change().shared_formulas[edit.number].text.swap(edit.formula);
  for (ValidationEdit& edit : validations_)
    edit.sheet->change().validations.exchange(edit.slot, edit.number, edit.formula);
  for (NameEdit& edit : names_) book.names.exchange(*edit.name, edit.definition);
}

void read_all_sheets(Workbook& book, Document& document, const Sheet* except) {
  for (const auto& sheet : book.sheets())
    if (sheet.get() != except && is_unread(*sheet)) document.read_sheet(book, *sheet);
}

void read_referring_sheets(Workbook& book, Document& document, const Sheet* except) {
  for (const auto& sheet : book.sheets())
    if (sheet.get() != except && is_unread(*sheet) && document.may_refer(*sheet))
      document.read_sheet(book, *sheet);
}

// A sheet whose rows cannot be read leaves the others as they were.
AllRows::AllRows(Workbook& book, const Document& document, const Sheet* except) {
  std::vector<std::unique_ptr<OutsideRows>> rows;
  for (const auto& sheet : book.sheets()) {
    if (sheet.get() == except || sheet->loading != Loading::kPartly || sheet->outside) continue;
    rows.push_back(document.read_outside(book, *sheet));
    read_.push_back(sheet.get());
  }
  for (std::size_t i = 0; i < rows.size(); ++i) read_[i]->outside = std::move(rows[i]);
}

AllRows::~AllRows() {
  for (Sheet* sheet : read_)
    if (!sheet->outside->rows.changed()) sheet->outside.reset();
}

NewSheet make_sheet(const Workbook& book, Document& document, std::string name) {
  NewSheet made(book);
  made.sheet = std::make_unique<Sheet>(std::move(name));
  SheetContents& contents = made.sheet->change();
  contents.digit_pixels = digit_pixels(book.styles.font(0));
  contents.default_row_height = book.new_row_height;
  contents.page = book.new_page;
  document.begin_sheet(book, *made.sheet);
  return made;
}

NewSheet make_copy(const Workbook& book, Document& document, const Sheet& original,
                   std::string name) {
  NewSheet made(book);
  made.sheet = std::make_unique<Sheet>(std::move(name));
  Sheet& copy = *made.sheet;
  const std::vector<formula::TableChange> tables = document.copy_sheet(book, original, copy);
  const FormulaEdit edit = [&](const Sheet*, std::string_view text) {
    return formula::change_tables_text(
        text, formula::retarget_sheet_text(text, original.name(), copy.name(), book.limits.grid),
        tables, book.limits.grid);
  };
  copy.take(SheetContents(original.contents()));
  edit_copy(copy.change(), edit, &original);
  copy_names(book, edit, original, copy, made.names);
  return made;
}

void make_room(Workbook& book, NewSheet& made) {
  book.make_room_for_sheet();
  made.index = {made.sheet.get()};
}

void place_sheet(Workbook& book, Document& document, std::size_t position, NewSheet made) noexcept {
  document.place_sheet(*made.sheet);
  if (book.sheets().empty()) made.sheet->selected = true;
  else if (position <= book.active_sheet) ++book.active_sheet;
  book.names.take(std::move(made.names));
  book.insert_sheet(position, std::move(made.sheet), std::move(made.index));
}

void move_sheet(Workbook& book, std::size_t from, std::size_t to) noexcept {
  const Sheet* active = book.sheets()[book.active_sheet].get();
  book.move_sheet(from, to);
  book.active_sheet = book.position(*active);
}

void rename_sheet(Workbook& book, Document& document, Sheet& sheet, std::string name) {
  read_referring_sheets(book, document);
  const AllRows all_rows(book, document);
  const FormulaEdit edit = [&](const Sheet*, std::string_view text) {
    return formula::rename_sheet_text(text, sheet.name(), name, book.limits.grid);
  };
  FormulaEdits edits;
  edits.collect(book, edit);
  std::vector<LinkEdit> links = edited_links(book, edit);
  std::string folded_name = fold_case(name);
  document.edit_formulas(book, edit);

  edits.apply(book);
  for (LinkEdit& one : links) one.sheet->change().links.exchange(one.index, one.text);
  book.rename_sheet(sheet, std::move(name), std::move(folded_name));
}

std::unique_ptr<Sheet> delete_sheet(Workbook& book, Document& document, std::size_t position) {
  Sheet& gone = *book.sheets()[position];
  std::vector<formula::TableChange> tables;
  for (Table& table : document.tables(book, gone)) tables.push_back({std::move(table.name), {}});
  if (tables.empty()) read_referring_sheets(book, document, &gone);
  else read_all_sheets(book, document, &gone);
  const AllRows all_rows(book, document, &gone);
  std::vector<std::string_view> order;
  for (const auto& sheet : book.sheets()) order.push_back(sheet->name());
  const FormulaEdit edit = [&](const Sheet*, std::string_view text) {
    return formula::change_tables_text(
        text, formula::delete_sheet_text(text, order, position, book.limits.grid), tables,
        book.limits.grid);
  };
  FormulaEdits edits;
  edits.collect(book, edit, &gone);
  document.remove_sheet(book, gone, edit);

  edits.apply(book);
  book.names.remove_scope(gone);
  std::unique_ptr<Sheet> removed = book.remove_sheet(position);
  if (position < book.active_sheet) {
    --book.active_sheet;
  } else if (position == book.active_sheet) {
    book.active_sheet = heir_of_active(book, position, position);
    if (!book.sheets().empty()) book.sheets()[book.active_sheet]->selected = true;
  }
  return removed;
}

void activate_sheet(Workbook& book, Document& document, std::size_t position) {
  read_all_sheets(book, document);
  const Sheet* active = book.sheets()[position].get();
  for (const auto& sheet : book.sheets()) sheet->selected = sheet.get() == active;
  book.active_sheet = position;
}

bool is_only_visible(const Workbook& book, const Sheet& sheet) {
  return sheet.visibility == SheetVisibility::kVisible &&
         std::ranges::count_if(book.sheets(), is_visible) == 1;
}

void hide_sheet(Workbook& book, Document& document, Sheet& sheet, SheetVisibility how) {
  const std::size_t position = book.position(sheet);
  if (position == book.active_sheet && sheet.visibility == SheetVisibility::kVisible)
    activate_sheet(book, document, heir_of_active(book, position, position + 1));
  sheet.visibility = how;
  sheet.selected = false;
}

}  // namespace engine
