// Operations of a sheet on its own name and on the names that the book defines: named ranges, print
// titles and areas.
#include "engine/api/messages.h"
#include "engine/api/name_rules.h"
#include "engine/api/outputs.h"
#include "engine/api/sheet_object.h"
#include "engine/formula/formula_text.h"
#include "engine/text/wide.h"
#include "engine/workbook/print_names.h"
#include "engine/workbook/sheet_operations.h"

namespace engine::api {

const wchar_t* SheetObject::name() const {
  return run(nullptr, [&] { return book_.give(sheet_->name()); });
}

void SheetObject::setName(const wchar_t* name) {
  run([&] {
    std::string text = to_utf8(name);
    if (!check_sheet_name(book_, text, sheet_) || text == sheet_->name()) return;
    rename_sheet(book_.workbook(), book_.document(), *sheet_, std::move(text));
    book_.contents().values_changed = true;
  });
}

bool SheetObject::check_scope(int scope) const {
  const auto sheets = static_cast<int>(book_.workbook().sheets().size());
  return (scope >= libxl::ScopeUndefined && scope < sheets) ||
         book_.refuse(false,
                      messages::out_of_range("scope", scope, libxl::ScopeUndefined, sheets - 1));
}

const DefinedName* SheetObject::find_name(const std::string& name, int scope) const {
  const Workbook& workbook = book_.workbook();
  if (scope >= 0)
    return workbook.names.find(name, workbook.sheets()[static_cast<std::size_t>(scope)].get());
  const DefinedName* own =
      scope == libxl::ScopeUndefined ? workbook.names.find(name, sheet_) : nullptr;
  return own ? own : workbook.names.find(name, nullptr);
}

bool SheetObject::getNamedRange(const wchar_t* name, int* rowFirst, int* rowLast, int* colFirst,
                                int* colLast, int scopeId, bool* hidden) const {
  return run(false, [&] {
    if (!check_scope(scopeId)) return false;
    const DefinedName* found = find_name(to_utf8(name), scopeId);
    const auto range = found ? book_.workbook().names.range_of(*found, *sheet_) : std::nullopt;
    if (!range) return false;
    give_range(*range, rowFirst, rowLast, colFirst, colLast);
    give(hidden, found->hidden);
    return true;
  });
}

bool SheetObject::setNamedRange(const wchar_t* name, int rowFirst, int rowLast, int colFirst,
                                int colLast, int scopeId) {
  return run(false, [&] {
    Workbook& workbook = book_.workbook();
    const CellRange range{rowFirst, rowLast, colFirst, colLast};
    std::string text = to_utf8(name);
    if (!check_defined_name(book_, text) || !check_range(range) || !check_scope(scopeId))
      return false;
    if (book_.document().is_table_name(workbook, text))
      return book_.refuse(false, messages::name_of_table(text));
    std::string definition = formula::absolute_range_text(sheet_->name(), range);
    if (const DefinedName* found = find_name(text, scopeId)) {
      workbook.names.define(*found, std::move(definition));
    } else {
      const engine::Sheet* scope =
          scopeId < 0 ? nullptr : workbook.sheets()[static_cast<std::size_t>(scopeId)].get();
      workbook.names.add({std::move(text), std::move(definition), scope, false, ""});
    }
    book_.contents().values_changed = true;
    return true;
  });
}

bool SheetObject::delNamedRange(const wchar_t* name, int scopeId) {
  return run(false, [&] {
    if (!check_scope(scopeId)) return false;
    DefinedNames& names = book_.workbook().names;
    const DefinedName* found = find_name(to_utf8(name), scopeId);
    if (!found || !names.range_of(*found, *sheet_)) return false;
    names.remove(*found);
    book_.contents().values_changed = true;
    return true;
  });
}

int SheetObject::namedRangeSize() const {
  return run(0, [&] { return static_cast<int>(book_.workbook().names.ranges_on(*sheet_).size()); });
}

const wchar_t* SheetObject::namedRange(int index, int* rowFirst, int* rowLast, int* colFirst,
                                       int* colLast, int* scopeId, bool* hidden) const {
  return run(nullptr, [&]() -> const wchar_t* {
    const Workbook& workbook = book_.workbook();
    const auto& ranges = workbook.names.ranges_on(*sheet_);
    if (!book_.check_index("named range", index, ranges.size())) return nullptr;
    const DefinedName& name = *ranges[static_cast<std::size_t>(index)].second;
    const auto range = workbook.names.range_of(name, *sheet_);
    const wchar_t* text = book_.give(name.name);
    give_range(range.value_or(CellRange()), rowFirst, rowLast, colFirst, colLast);
    give(scopeId, name.scope ? static_cast<int>(workbook.position(*name.scope))
                             : static_cast<int>(libxl::ScopeWorkbook));
    give(hidden, name.hidden);
    return text;
  });
}

bool SheetObject::printRepeatRows(int* rowFirst, int* rowLast) const {
  return run(false, [&] {
    const auto rows = print_titles(book_.workbook(), *sheet_).rows;
    if (!rows) return false;
    give(rowFirst, rows->first);
    give(rowLast, rows->last);
    return true;
  });
}

void SheetObject::setPrintRepeatRows(int rowFirst, int rowLast) {
  run([&] {
    if (!check_range({rowFirst, rowLast, 0, 0})) return;
    PrintTitles titles = print_titles(book_.workbook(), *sheet_);
    titles.rows = {rowFirst, rowLast};
    set_print_titles(book_.workbook(), *sheet_, titles);
  });
}

bool SheetObject::printRepeatCols(int* colFirst, int* colLast) const {
  return run(false, [&] {
    const auto columns = print_titles(book_.workbook(), *sheet_).columns;
    if (!columns) return false;
    give(colFirst, columns->first);
    give(colLast, columns->last);
    return true;
  });
}

void SheetObject::setPrintRepeatCols(int colFirst, int colLast) {
  run([&] {
    if (!check_range({0, 0, colFirst, colLast})) return;
    PrintTitles titles = print_titles(book_.workbook(), *sheet_);
    titles.columns = {colFirst, colLast};
    set_print_titles(book_.workbook(), *sheet_, titles);
  });
}

bool SheetObject::printArea(int* rowFirst, int* rowLast, int* colFirst, int* colLast) const {
  return run(false, [&] {
    const auto area = print_area(book_.workbook(), *sheet_);
    if (!area) return false;
    give_range(*area, rowFirst, rowLast, colFirst, colLast);
    return true;
  });
}

void SheetObject::setPrintArea(int rowFirst, int rowLast, int colFirst, int colLast) {
  run([&] {
    const CellRange area{rowFirst, rowLast, colFirst, colLast};
    if (check_range(area)) set_print_area(book_.workbook(), *sheet_, area);
  });
}

void SheetObject::clearPrintRepeats() {
  run([&] { set_print_titles(book_.workbook(), *sheet_, {}); });
}

void SheetObject::clearPrintArea() {
  run([&] { set_print_area(book_.workbook(), *sheet_, std::nullopt); });
}

}  // namespace engine::api
