// Tables: which cells they are, and what follows when header cells were written.
#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "engine/formula/formula_text.h"
#include "engine/formula/reference.h"
#include "engine/package/file_error.h"
#include "engine/package/xml_tree.h"
#include "engine/text/fold.h"
#include "engine/text/number_text.h"
#include "engine/workbook/sheet_operations.h"
#include "engine/xlsx/document.h"
#include "engine/xlsx/table_part.h"
#include "engine/xlsx/worksheet_reader.h"

namespace engine::xlsx {

namespace {

// `texts` is the book, or the owner of the texts of rows that were read apart.
Header header_at(const Workbook& book, const Workbook& texts, const SheetContents& sheet, int row,
                 int column) {
  Header made;
  const Cell* cell = sheet.cells.find(row, column);
  if (!cell) return made;
  const Value value = sheet.value(*cell);
  const std::uint32_t shared = book.strings.count_from_file();
  switch (value.kind) {
    case ValueKind::kNone:
      break;
    case ValueKind::kNumber:
      append_number(made.text, value.number);
      break;
    case ValueKind::kText:
      made.text = &texts == &book || value.text() < shared ? book.strings[value.text()]
                                                           : texts.strings[value.text() - shared];
      made.is_text = !made.text.empty() && !sheet.is_formula(*cell);
      break;
    case ValueKind::kBoolean:
      made.text = value.boolean() ? "TRUE" : "FALSE";
      break;
    case ValueKind::kError:
      made.text = error_text(texts, value.error());
      break;
  }
  return made;
}

// A table whose columns get other names.
struct Renaming {
  const Sheet* sheet = nullptr;
  TablePart* table = nullptr;
  const Part* part = nullptr;
  std::vector<std::string> names;
  formula::ColumnChanges own;                // as the table's own formulas may say them
  std::shared_ptr<const std::string> bytes;  // of the part
};

// The contents of a sheet with the texts that header cells have to show.
struct Headers {
  Sheet* sheet = nullptr;
  SheetContents before;
  SheetContents now;
};

// Gives the formulas inside a table the new names that they say without the table's.
void restate(Headers& made, Sheet& sheet, const CellRange& cells, const formula::ColumnChanges& own,
             const Grid& grid) {
  for (auto& [at, text] : own_formulas(sheet.contents(), cells, own, grid)) {
    if (!made.sheet) made = {&sheet, sheet.contents(), sheet.contents()};
    const Cell* cell = made.now.cells.find(at.row, at.column);
    if (!cell || !made.now.is_formula(*cell)) continue;
    made.now.set_formula(*made.now.record(*cell), made.now.keep_text(text));
  }
}

// The cells of a pivot table with the fields above that choose its page.
std::optional<CellRange> pivot_cells(pugi::xml_node root, const Grid& grid) {
  const pugi::xml_node location = package::child(root, package::Family::Main, "location");
  auto cells = formula::parse_range(location.attribute("ref").value(), grid);
  const int fields = std::clamp(location.attribute("rowPageCount").as_int(), 0, grid.rows);
  if (cells && fields != 0) cells->row_first = std::max(cells->row_first - fields - 1, 0);
  return cells;
}

}  // namespace

std::vector<std::pair<CellAddress, std::string>> own_formulas(const SheetContents& sheet,
                                                              const CellRange& cells,
                                                              const formula::ColumnChanges& own,
                                                              const Grid& grid) {
  std::vector<std::pair<CellAddress, std::string>> texts;
  std::string moved;
  for (const Row& row : sheet.cells.rows()) {
    const int number = static_cast<int>(row.number);
    if (number < cells.row_first || number > cells.row_last) continue;
    for (const Cell& cell : row.span()) {
      if (!sheet.is_formula(cell) || !cells.contains(number, cell.column)) continue;
      const CellAddress at{number, cell.column};
      auto text = formula::change_columns_text(sheet.formula(*sheet.record(cell), at, grid, moved),
                                               own, grid);
      if (text) texts.push_back({{number, cell.column}, *std::move(text)});
    }
  }
  return texts;
}

// A table that cannot be read is none that formulas are known to mean. Once the sheet is read, its
// list of tables tells their order.
std::vector<TablePart>& Document::tables_of(const Workbook& book, const SheetPart& sheet) const {
  if (sheet.tables) return *sheet.tables;
  std::vector<TablePart> tables;
  for (const auto& [link, part] : table_parts(parts_, sheet)) {
    try {
      auto table = read_table(parts_.read(*part), part->name, book.limits.grid);
      if (table) tables.push_back(*std::move(table));
    } catch (const package::FileError&) {
      continue;
    }
  }
  return sheet.tables.emplace(std::move(tables));
}

std::vector<Table> Document::tables(const Workbook& book, const Sheet& sheet) const {
  std::vector<Table> all;
  for (const TablePart& table : tables_of(book, part_of(sheet))) all.push_back(table);
  return all;
}

bool Document::is_table_name(const Workbook& book, std::string_view name) const {
  for (const auto& sheet : book.sheets()) {
    try {
      for (const TablePart& table : tables_of(book, part_of(*sheet)))
        if (equal_ignoring_case(table.name, name)) return true;
    } catch (const package::FileError&) {
      continue;
    }
  }
  return false;
}

// One that cannot be read fills no range that anybody knows of.
std::vector<CellRange> Document::pivot_tables(const Workbook& book, const Sheet& sheet) const {
  const SheetPart& its = part_of(sheet);
  if (its.pivot_tables) return *its.pivot_tables;
  std::vector<CellRange> ranges;
  for (const Relationship& one : parts_.relationships(its.part)) {
    const Part* part = one.kind() == "pivotTable" ? parts_.target(its.part, one) : nullptr;
    if (!part) continue;
    try {
      const auto tree = package::XmlTree::parse(parts_.read(*part), part->name);
      if (const auto cells = pivot_cells(tree.root(), book.limits.grid)) ranges.push_back(*cells);
    } catch (const package::FileError&) {
      continue;
    }
  }
  return its.pivot_tables.emplace(std::move(ranges));
}

// The texts of header cells that differ from the names of their columns. A difference that the file
// has itself, or the sheet that this one is a copy of, is its own concern.
std::vector<std::optional<std::string>> Document::changed_headers(const Workbook& book,
                                                                  const Sheet& sheet,
                                                                  const TablePart& table) const {
  const int row = table.cells.row_first;
  const bool is_loaded = sheet.loading != Loading::kPartly ||
                         (row >= sheet.loaded_rows.row_first && row <= sheet.loaded_rows.row_last);
  if (!table.has_header() || !is_loaded) return {};
  const SheetContents& contents = sheet.contents();
  const SheetPart& its = part_of(sheet);
  const auto width = static_cast<std::size_t>(table.cells.column_last - table.cells.column_first);
  std::vector<std::optional<std::string>> changed(std::min(width + 1, table.columns.size()));
  std::unique_ptr<OutsideRows> stored;
  for (std::size_t i = 0; i < changed.size(); ++i) {
    const int column = table.cells.column_first + static_cast<int>(i);
    Header header = header_at(book, book, contents, row, column);
    if (header == Header{table.columns[i], true} || contents.arrays.find({row, column})) continue;
    const auto copied = its.copied_headers.find({row, column});
    if (copied != its.copied_headers.end() && copied->second == header) continue;
    if (its.listed != 0 && !its.moved && !stored) {
      stored = std::make_unique<OutsideRows>(book);
      SheetContents rows;
      SheetPart unused;
      read_worksheet(*parts_.open(*parts_.find(its.part)), its.part, context(stored->texts, book),
                     {row, row, false}, rows, unused);
      stored->rows.take(std::move(rows));
    }
    const bool is_as_stored =
        stored && header == header_at(book, stored->texts, stored->rows.contents(), row, column);
    if (!is_as_stored) changed[i] = std::move(header.text);
  }
  return changed;
}

// Header cells that may differ from the names of their columns in a copy too.
std::map<CellAddress, Header> Document::odd_headers(const Workbook& book,
                                                    const Sheet& sheet) const {
  std::map<CellAddress, Header> odd;
  for (const TablePart& table : tables_of(book, part_of(sheet))) {
    if (!table.has_header()) continue;
    const auto changed = changed_headers(book, sheet, table);
    for (std::size_t i = 0; i < changed.size(); ++i) {
      const CellAddress at{table.cells.row_first, table.cells.column_first + static_cast<int>(i)};
      Header header = header_at(book, book, sheet.contents(), at.row, at.column);
      if (!changed[i] && header != Header{table.columns[i], true})
        odd.emplace(at, std::move(header));
    }
  }
  return odd;
}

// All that is new is made first; only the formulas can be asked for when the columns have their
// names, and what went before is taken back when that fails.
void Document::settle_tables(Workbook& book) {
  std::vector<Renaming> renamings;
  std::vector<Headers> headers;
  formula::ColumnChanges changes;
  for (const auto& sheet : book.sheets()) {
    const SheetPart& its = part_of(*sheet);
    if (!its.read || !sheet->changed()) continue;
    Headers made;
    for (TablePart& table : tables_of(book, its)) {
      const auto changed = changed_headers(book, *sheet, table);
      if (std::ranges::none_of(changed, &std::optional<std::string>::has_value)) continue;
      const Part* part = parts_.find(table.part);
      auto names = column_names(table.columns, changed);
      auto bytes = rename_columns(parts_.read(*part), table.part, names);
      formula::ColumnChanges own;
      for (std::size_t i = 0; i < changed.size(); ++i) {
        if (!changed[i]) continue;
        if (names[i] != table.columns[i]) {
          changes.add(table.name, table.columns[i], names[i]);
          own.add({}, table.columns[i], names[i]);
        }
        const int row = table.cells.row_first;
        const int column = table.cells.column_first + static_cast<int>(i);
        const Header shown = header_at(book, book, sheet->contents(), row, column);
        if (shown == Header{names[i], true}) continue;
        if (!made.sheet) made = {sheet.get(), sheet->contents(), sheet->contents()};
        made.now.put_value(row, column, Value::of_text(book.strings.add(names[i])), {});
      }
      restate(made, *sheet, table.cells, own, book.limits.grid);
      renamings.push_back({sheet.get(), &table, part, std::move(names), std::move(own),
                           std::make_shared<const std::string>(std::move(bytes))});
    }
    if (made.sheet) headers.push_back(std::move(made));
  }
  if (renamings.empty()) return;

  read_readable_sheets(book);
  const AllRows all_rows(book, *this);
  for (const auto& sheet : book.sheets()) {
    if (!sheet->outside) continue;
    Headers made;
    for (const Renaming& one : renamings)
      if (one.sheet == sheet.get())
        restate(made, sheet->outside->rows, one.table->cells, one.own, book.limits.grid);
    if (made.sheet) headers.push_back(std::move(made));
  }
  for (Renaming& one : renamings) parts_.exchange(*one.part, one.bytes);
  for (Headers& one : headers) one.sheet->change() = std::move(one.now);
  FormulaEdits edits;
  try {
    const FormulaEdit edit = [&](const Sheet*, std::string_view text) {
      return formula::change_columns_text(text, changes, book.limits.grid);
    };
    edits.collect(book, edit);
    edit_formulas(book, edit);
  } catch (...) {
    for (Renaming& one : renamings) parts_.exchange(*one.part, one.bytes);
    for (Headers& one : headers) one.sheet->change() = std::move(one.before);
    throw;
  }
  edits.apply(book);
  for (Renaming& one : renamings) one.table->columns.swap(one.names);
}

// One that is damaged is written as it is stored, and what it says nobody can tell.
void Document::read_readable_sheets(Workbook& book) {
  for (const auto& sheet : book.sheets()) {
    if (sheet->loading != Loading::kUnread && sheet->loading != Loading::kExcluded) continue;
    try {
      read_sheet(book, *sheet);
    } catch (const package::FileError&) {
      continue;
    }
  }
}

}  // namespace engine::xlsx
