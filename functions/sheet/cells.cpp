// External functions that read and write cells and their comments.
#include <string>

#include "functions/enumeration.h"
#include "functions/families.h"

namespace {

using bind::row;
using libxl::CellType;
using libxl::ErrorType;
using libxl::Format;
using libxl::Sheet;

// Kinds of cells and errors go to the host as handles of records that hold them.
bind::Entry<CellType> cell_type(Sheet& sheet, int row, int col) {
  return {sheet.cellType(row, col)};
}

bind::Entry<ErrorType> read_error(Sheet& sheet, int row, int col) {
  return {sheet.readError(row, col)};
}

// The readers fill in the cell's format. A format that is passed only seeds the place for it.
const wchar_t* read_str(Sheet& sheet, int row, int col, Format* format) {
  return sheet.readStr(row, col, &format);
}

double read_num(Sheet& sheet, int row, int col, Format* format) {
  return sheet.readNum(row, col, &format);
}

bool read_bool(Sheet& sheet, int row, int col, Format* format) {
  return sheet.readBool(row, col, &format);
}

// The two readers whose result tells the format, as its address and not as a handle.
Fields read_blank(Sheet& sheet, int row, int col, Format* format) {
  Fields fields;
  fields.add(sheet.readBlank(row, col, &format));
  fields.add(format);
  return fields;
}

Fields read_formula(Sheet& sheet, int row, int col, Format* format) {
  Fields fields;
  fields.add(sheet.readFormula(row, col, &format));
  fields.add(format);
  return fields;
}

// A text is always written as one, a flag never as an error.
bool write_str(Sheet& sheet, int row, int col, const wchar_t* value, Format* format) {
  return sheet.writeStr(row, col, value, format, libxl::CellText);
}

bool write_bool(Sheet& sheet, int row, int col, bool value, Format* format) {
  return sheet.writeBool(row, col, value, format, libxl::ErrorNone);
}

// The error is a handle or a number, which no plain row reads.
short write_error(const fmx::DataVect& params, fmx::Data&) {
  const bind::Target<Sheet> sheet(params);
  const int row = bind::read<int>(params, 1, 0);
  const int col = bind::read<int>(params, 2, 0);
  const auto error = bind::read_enumeration<ErrorType>(params, 3);
  Format* format = bind::read<Format*>(params, 4, nullptr);
  sheet.get().writeError(row, col, error, format);
  return set_last_error_message(sheet.handle());
}

// Reads by what the cell holds. A date is its number; an error has no value.
short read_value(long handle, Sheet& sheet, const fmx::DataVect& params, fmx::Data& result) {
  const int row = bind::read<int>(params, 1, 0);
  const int col = bind::read<int>(params, 2, 0);
  const CellType type = sheet.cellType(row, col);
  if (set_last_error_message(handle)) return codes::kUnreadableCell;
  Format* format = bind::read<Format*>(params, 3, nullptr);
  switch (type) {
    case libxl::CellEmpty:
    case libxl::CellBlank:
      return codes::kNone;
    case libxl::CellNumber:
      return bind::store(handle, sheet.readNum(row, col, &format), result);
    case libxl::CellText:
      return bind::store(handle, sheet.readStr(row, col, &format), result);
    case libxl::CellBoolean:
      return bind::store(handle, sheet.readBool(row, col, &format), result);
    default:
      return codes::kUnreadableCell;
  }
}

// Reads whatever the cell holds. Whatever the failure, the message ends in the text of a missing
// sheet: calculations know it so.
short read_cell(const fmx::DataVect& params, fmx::Data& result) {
  const bind::Target<Sheet> sheet(params);
  const short code = sheet.is_missing() ? codes::kNotFound
                                        : read_value(sheet.handle(), sheet.get(), params, result);
  if (code == codes::kNone) return code;
  if (!g_last_error_message.empty()) g_last_error_message += '\r';
  g_last_error_message += sheet.not_found();
  return code;
}

constexpr bind::Row kRows[] = {
    row<cell_type>(1800, "XL_Sheet_CellType"),
    row<&Sheet::isFormula>(1801, "XL_Sheet_IsFormula"),
    row<&Sheet::cellFormat>(1802, "XL_Sheet_CellFormat"),
    row<&Sheet::setCellFormat>(1803, "XL_Sheet_SetCellFormat"),
    row<read_str, nullptr>(1804, "XL_Sheet_ReadStr"),
    row<write_str, nullptr>(1805, "XL_Sheet_WriteStr"),
    row<read_num, nullptr>(1806, "XL_Sheet_ReadNum"),
    row<&Sheet::writeNum, nullptr>(1807, "XL_Sheet_WriteNum"),
    row<read_bool, nullptr>(1808, "XL_Sheet_ReadBool"),
    row<write_bool, nullptr>(1809, "XL_Sheet_WriteBool"),
    row<read_blank, nullptr>(1810, "XL_Sheet_ReadBlank"),
    row<&Sheet::writeBlank>(1811, "XL_Sheet_WriteBlank"),
    row<read_formula, nullptr>(1812, "XL_Sheet_ReadFormula"),
    row<&Sheet::writeFormula, nullptr>(1813, "XL_Sheet_WriteFormula"),
    row<&Sheet::readComment>(1814, "XL_Sheet_ReadComment"),
    row<&Sheet::writeComment, nullptr, 129, 75>(1815, "XL_Sheet_WriteComment"),
    row<&Sheet::isDate>(1816, "XL_Sheet_IsDate"),
    row<read_error>(1817, "XL_Sheet_ReadError"),
    row<&Sheet::writeFormulaNum, nullptr>(2223, "XL_Sheet_WriteFormulaNum"),
    row<&Sheet::writeFormulaStr, nullptr>(2224, "XL_Sheet_WriteFormulaStr"),
    row<&Sheet::writeFormulaBool, nullptr>(2225, "XL_Sheet_WriteFormulaBool"),
    row<&Sheet::removeComment>(2226, "XL_Sheet_RemoveComment"),
    row<write_error>(2227, "XL_Sheet_WriteError", 4, 5),
    row<read_cell>(3000, "XL_Sheet_ReadCell", 3, 4),
};

}  // namespace

std::span<const bind::Row> cell_functions() { return kRows; }
