// Workbooks as tables, made with the plug-in's functions as any calculation could.
#include <algorithm>
#include <charconv>
#include <cstddef>
#include <iostream>
#include <stdexcept>
#include <system_error>
#include <vector>

#include "devhost/calc/external.h"
#include "devhost/fm/unicode.h"
#include "devhost/program/area.h"
#include "devhost/program/columns.h"
#include "devhost/program/commands.h"
#include "devhost/program/system.h"
#include "devhost/program/table.h"
#include "devhost/program/workbook_view.h"

namespace devhost {
namespace {

// Rows that are printed of what somebody only looks into.
constexpr int kRowsOfPage = 50;
// A column takes that much of a terminal at least, so there is no need to read more.
constexpr int kLeastColumn = 4;
constexpr std::size_t kMostNamed = 10;

// A request that the workbook cannot answer.
struct BadRequest : std::runtime_error {
  using std::runtime_error::runtime_error;
};

std::string in_quotes(std::u16string_view name) {
  return '"' + utf8_from_utf16(on_one_line(name)) + '"';
}

const SheetView* find_sheet(const WorkbookView& book, const std::string& wanted) {
  const std::u16string name = utf16_from_utf8(wanted);
  for (const SheetView& sheet : book.sheets()) {
    if (compare_ignoring_case(sheet.name, name) == 0) return &sheet;
  }
  std::size_t number = 0;
  const auto [end, error] = std::from_chars(wanted.data(), wanted.data() + wanted.size(), number);
  const bool is_number = error == std::errc() && end == wanted.data() + wanted.size();
  const bool exists = is_number && number > 0 && number <= book.sheets().size();
  return exists ? &book.sheets()[number - 1] : nullptr;
}

[[noreturn]] void fail_unknown(const WorkbookView& book, const std::string& wanted) {
  std::string problem = "there is no sheet " + in_quotes(utf16_from_utf8(wanted)) + " but ";
  const std::size_t named = std::min(book.sheets().size(), kMostNamed);
  for (std::size_t i = 0; i < named; ++i) {
    problem += (i == 0 ? "" : ", ") + in_quotes(book.sheets()[i].name);
  }
  if (named < book.sheets().size()) {
    problem += " and " + std::to_string(book.sheets().size() - named) + " more";
  }
  throw BadRequest(problem);
}

// The active sheet, or where that has no cells the first one that may.
const SheetView* usual_sheet(const WorkbookView& book) {
  const SheetView* usual = nullptr;
  for (const SheetView& sheet : book.sheets()) {
    if (!sheet.has_cells()) continue;
    if (sheet.active) return &sheet;
    if (usual == nullptr) usual = &sheet;
  }
  return usual;
}

const char* kind_text(const SheetView& sheet) {
  if (!sheet.has_cells()) return "no cells";
  if (sheet.state == SheetView::State::kHidden) return "hidden";
  if (sheet.state == SheetView::State::kVeryHidden) return "very hidden";
  return sheet.active ? "active" : "";
}

std::string used_text(const SheetView& sheet) {
  if (sheet.used) return area_text(*sheet.used);
  return sheet.has_cells() ? "empty" : "";
}

void print_sheets(const WorkbookView& book) {
  int name_width = 0;
  int used_width = 0;
  for (const SheetView& sheet : book.sheets()) {
    name_width = std::max(name_width, columns_of(on_one_line(sheet.name)));
    used_width = std::max(used_width, static_cast<int>(used_text(sheet).size()));
  }
  const auto number_width = static_cast<int>(std::to_string(book.sheets().size()).size());
  int number = 0;
  for (const SheetView& sheet : book.sheets()) {
    std::u16string line = fitted(utf16_from_utf8(std::to_string(++number)), number_width, true);
    line += u"  " + fitted(on_one_line(sheet.name), name_width, false);
    line += u"  " + fitted(utf16_from_utf8(used_text(sheet)), used_width, false);
    line += u"  " + utf16_from_utf8(kind_text(sheet));
    std::cout << utf8_from_utf16(line.substr(0, line.find_last_not_of(u' ') + 1)) << '\n';
  }
}

void print_cells(WorkbookView& book, const SheetView& sheet, const Area& asked,
                 const Shown& wanted) {
  Area area = asked;
  const int width = wanted.all ? 0 : terminal_width();
  if (!wanted.all && !area.names_rows) {
    area.row_last = std::min(area.row_last, area.row_first + kRowsOfPage - 1);
  }
  if (width > 0) {
    area.column_last = std::min(area.column_last, area.column_first + width / kLeastColumn);
  }
  std::vector<std::u16string> headings;
  for (int column = area.column_first; column <= area.column_last; ++column) {
    headings.push_back(utf16_from_utf8(column_text(column)));
  }
  Table table(std::move(headings));
  for (int row = area.row_first; row <= area.row_last; ++row) {
    table.begin_row(utf16_from_utf8(std::to_string(row + 1)));
    for (int column = area.column_first; column <= area.column_last; ++column) {
      const CellView cell = book.cell(sheet, row, column);
      const bool as_formula = wanted.formulas && !cell.formula.empty();
      table.add(as_formula ? u'=' + cell.formula : cell.shown,
                !as_formula && cell.kind == CellView::Kind::kNumber);
    }
  }
  const auto printed = static_cast<int>(table.print(std::cout, width));
  if (printed < asked.columns()) {
    std::cout << "Columns " << column_text(asked.column_first + printed) << " to "
              << column_text(asked.column_last) << " are left out; --all prints them.\n";
  }
  if (area.row_last < asked.row_last) {
    std::cout << "Rows " << area.row_last + 2 << " to " << asked.row_last + 1
              << " are left out; --all prints them.\n";
  }
}

void write_cell(JsonWriter& json, const CellView& cell, int row, int column) {
  json.open_object();
  json.member("cell", utf16_from_utf8(cell_text(row, column)));
  json.key("value");
  switch (cell.kind) {
    case CellView::Kind::kNumber:
      json.number(cell.value.number().value);
      break;
    case CellView::Kind::kText:
      json.text(cell.value.units());
      break;
    case CellView::Kind::kBoolean:
      json.boolean(cell.value.boolean());
      break;
    default:
      json.null();
  }
  json.member("shown", cell.shown);
  if (!cell.formula.empty()) json.member("formula", cell.formula);
  json.close();
}

const char* state_text(const SheetView& sheet) {
  switch (sheet.state) {
    case SheetView::State::kHidden:
      return "hidden";
    case SheetView::State::kVeryHidden:
      return "very hidden";
    default:
      return "visible";
  }
}

// Without the cells that hold nothing.
void write_sheet(JsonWriter& json, WorkbookView& book, const SheetView& sheet,
                 const std::optional<Area>& area) {
  json.open_object();
  json.member("sheet", sheet.name);
  json.member("state", utf16_from_utf8(state_text(sheet)));
  json.key("active");
  json.boolean(sheet.active);
  json.key("range");
  if (sheet.used) json.text(utf16_from_utf8(area_text(*sheet.used)));
  else json.null();
  json.key("cells");
  json.open_list();
  for (int row = area ? area->row_first : 0; area && row <= area->row_last; ++row) {
    for (int column = area->column_first; column <= area->column_last; ++column) {
      const CellView cell = book.cell(sheet, row, column);
      const bool is_empty = cell.kind == CellView::Kind::kEmpty && cell.formula.empty();
      if (!is_empty) write_cell(json, cell, row, column);
    }
  }
  json.close();
  json.close();
}

// What of the sheet is asked for and there.
std::optional<Area> asked_of(const SheetView& sheet, const std::optional<Area>& range) {
  return sheet.used && range ? overlap(*sheet.used, *range) : sheet.used;
}

void show(Report& report, const Shown& wanted) {
  std::optional<Area> range = parse_area(wanted.range);
  if (!wanted.range.empty() && !range) {
    throw BadRequest('"' + wanted.range + "\" is no range of cells as B2:D20, B:D or 2:20");
  }
  WorkbookView book(wanted.file);
  const SheetView* sheet = nullptr;
  if (!wanted.sheet.empty()) {
    sheet = find_sheet(book, wanted.sheet);
    // A range alone is one of the active sheet: no name holds a colon.
    if (sheet == nullptr && !range) range = parse_area(wanted.sheet);
    if (sheet == nullptr && range && wanted.range.empty()) sheet = usual_sheet(book);
    if (sheet == nullptr) fail_unknown(book, wanted.sheet);
    if (!sheet->has_cells()) throw BadRequest("sheet " + in_quotes(sheet->name) + " has no cells");
  }
  if (JsonWriter* json = report.json()) {
    for (const SheetView& one : book.sheets()) {
      if (sheet == nullptr || sheet == &one) write_sheet(*json, book, one, asked_of(one, range));
    }
    return;
  }
  if (sheet == nullptr) {
    print_sheets(book);
    sheet = usual_sheet(book);
    if (sheet == nullptr || !sheet->used) return;
    std::cout << '\n' << utf8_from_utf16(on_one_line(sheet->name)) << '\n';
  }
  const auto area = asked_of(*sheet, range);
  if (area) print_cells(book, *sheet, *area, wanted);
  else std::cout << in_quotes(sheet->name) << " holds nothing there.\n";
}

}  // namespace

int show_workbook(Report& report, const Shown& wanted) {
  try {
    show(report, wanted);
    return kDone;
  } catch (const CallFailed& failure) {
    report.error(failure.what());
  } catch (const BadRequest& problem) {
    report.error(problem.what());
  }
  return kFailed;
}

}  // namespace devhost
