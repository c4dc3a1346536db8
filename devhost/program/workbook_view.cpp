#include "devhost/program/workbook_view.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <fstream>
#include <string_view>
#include <tuple>
#include <utility>

#include "devhost/calc/external.h"
#include "devhost/fm/unicode.h"
#include "engine/workbook/display.h"
#include "engine/workbook/number_format.h"

namespace devhost {
namespace {

// What functions give for sheets and cells.
constexpr int kWorksheet = 0;
constexpr int kHidden = 1;
constexpr int kVeryHidden = 2;
constexpr int kErrorCell = 10300;
constexpr std::uint32_t kShortDate = 14;

// No function tells which error a cell holds.
constexpr std::u16string_view kErrorText = u"#ERROR";

int integer(const Value& value) { return static_cast<int>(value.number().value); }

Value number(int value) { return Value(static_cast<double>(value)); }

enum class Kind { kNew, kOld };

Kind kind_by_name(const std::string& path) {
  return path.ends_with(".xls") ? Kind::kOld : Kind::kNew;
}

// Names lie: an .xlsx workbook is an archive and an .xls one a compound file, whatever it is
// called.
Kind kind_by_bytes(const std::string& path) {
  std::ifstream file(path_from_utf8(path), std::ios::binary);
  std::array<char, 2> bytes = {};
  file.read(bytes.data(), bytes.size());
  const std::string_view start(bytes.data(), bytes.size());
  if (start == "PK") return Kind::kNew;
  return start == "\xD0\xCF" ? Kind::kOld : kind_by_name(path);
}

Value load(const std::string& path, Kind kind) {
  Value book = call(kind == Kind::kOld ? u"XL_XlCreateBook" : u"XL_XlCreateXMLBook", {});
  call(u"XL_Book_Load", {book, Value(utf16_from_utf8(path))});
  return book;
}

// A file that both kinds refuse is told about as what it was meant to be: an encrypted .xlsx
// workbook is a compound file too.
Value load(const std::string& path) {
  const Kind kind = kind_by_bytes(path);
  try {
    return load(path, kind);
  } catch (const CallFailed&) {
    if (kind == kind_by_name(path)) throw;
  }
  return load(path, kind_by_name(path));
}

SheetView::State state_of(int value) {
  if (value == kHidden) return SheetView::State::kHidden;
  return value == kVeryHidden ? SheetView::State::kVeryHidden : SheetView::State::kVisible;
}

std::optional<Area> used_cells(const Value& sheet) {
  const Area area = {integer(call(u"XL_Sheet_FirstRow", {sheet})),
                     integer(call(u"XL_Sheet_LastRow", {sheet})) - 1,
                     integer(call(u"XL_Sheet_FirstCol", {sheet})),
                     integer(call(u"XL_Sheet_LastCol", {sheet})) - 1};
  return area.rows() > 0 && area.columns() > 0 ? std::optional(area) : std::nullopt;
}

// A yes or no comes as 1 or 0; only a cell that holds one can be read as such.
bool is_boolean(const std::vector<Value>& cell) {
  try {
    call(u"XL_Sheet_ReadBool", cell);
    return true;
  } catch (const CallFailed&) {
    return false;
  }
}

// The formula, and what the plug-in calls the format; of a formula that it does not understand
// there is only a question mark.
std::pair<std::u16string, std::u16string> formula_and_format(const std::vector<Value>& cell) {
  try {
    const std::u16string read = call(u"XL_Sheet_ReadFormula", cell).units();
    const std::size_t end = std::min(read.find(u'\r'), read.size());
    return {read.substr(0, end), read.substr(std::min(end + 1, read.size()))};
  } catch (const CallFailed&) {
    return {u"?", {}};
  }
}

}  // namespace

WorkbookView::WorkbookView(const std::string& path) : book_(load(path)) {
  date1904_ = call(u"XL_Book_IsDate1904", {book_}).boolean();
  read_sheets();
  read_codes();
}

void WorkbookView::read_sheets() {
  const int count = integer(call(u"XL_Book_SheetCount", {book_}));
  const int active = integer(call(u"XL_Book_ActiveSheet", {book_}));
  for (int i = 0; i < count; ++i) {
    SheetView sheet;
    sheet.name = call(u"XL_Book_GetSheetName", {book_, number(i)}).units();
    sheet.active = i == active;
    if (integer(call(u"XL_Book_SheetType", {book_, number(i)})) == kWorksheet) {
      sheet.handle = call(u"XL_Book_GetSheet", {book_, number(i)});
      sheet.state = state_of(integer(call(u"XL_Sheet_Hidden", {sheet.handle})));
      sheet.used = used_cells(sheet.handle);
    }
    sheets_.push_back(std::move(sheet));
  }
}

// All at once, as long as the book can be asked.
void WorkbookView::read_codes() {
  const int count = integer(call(u"XL_Book_FormatSize", {book_}));
  for (int i = 0; i < count; ++i) {
    const Value format = call(u"XL_Book_Format", {book_, number(i)});
    const Value id = call(u"XL_Format_NumFormat", {format});
    const auto [code, is_new] = codes_.try_emplace(static_cast<std::uint32_t>(id.number().value));
    if (!is_new) continue;
    code->second = engine::built_in_number_format(code->first);
    if (code->second.empty() && engine::is_built_in_date(code->first)) {
      code->second = engine::built_in_number_format(kShortDate);
    }
    try {
      code->second = utf8_from_utf16(call(u"XL_Book_CustomNumFormat", {book_, id}).units());
    } catch (const CallFailed&) {
      // A number that needs no definition.
    }
  }
}

// Formats that are known by no name are asked for each time.
const std::string& WorkbookView::code_of(const std::u16string& format,
                                         const std::vector<Value>& cell) {
  const auto known = met_.find(format);
  if (known != met_.end() && !format.empty()) return known->second;
  const Value id = call(u"XL_Format_NumFormat", {call(u"XL_Sheet_CellFormat", cell)});
  return met_[format] = codes_[static_cast<std::uint32_t>(id.number().value)];
}

CellView WorkbookView::cell(const SheetView& sheet, int row, int column) {
  const std::vector<Value> place = {sheet.handle, number(row), number(column)};
  CellView cell;
  std::u16string format;
  std::tie(cell.formula, format) = formula_and_format(place);
  try {
    cell.value = call(u"XL_Sheet_ReadCell", place);
  } catch (const CallFailed& failure) {
    if (failure.code() != kErrorCell) throw;
    cell.kind = CellView::Kind::kError;
    cell.shown = kErrorText;
    return cell;
  }
  if (cell.value.is_empty()) return cell;
  const std::string& code = code_of(format, place);
  if (!cell.value.is_number()) {
    cell.kind = CellView::Kind::kText;
    cell.shown = utf16_from_utf8(engine::display_text(utf8_from_utf16(cell.value.units()), code));
    return cell;
  }
  const double value = cell.value.number().value;
  if ((value == 0 || value == 1) && is_boolean(place)) {
    cell.kind = CellView::Kind::kBoolean;
    cell.shown = value == 1 ? u"TRUE" : u"FALSE";
    return cell;
  }
  cell.kind = CellView::Kind::kNumber;
  cell.shown = utf16_from_utf8(engine::display_number(value, code, date1904_));
  return cell;
}

}  // namespace devhost
