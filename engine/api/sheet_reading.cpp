// Operations of a sheet that read cells.
#include <array>

#include "engine/api/format.h"
#include "engine/api/messages.h"
#include "engine/api/sheet_object.h"
#include "engine/formula/formula.h"
#include "engine/text/number_text.h"

namespace engine::api {

namespace {

std::string_view kind_text(ValueKind kind) {
  switch (kind) {
    case ValueKind::kNone:
      break;
    case ValueKind::kNumber:
      return "a number";
    case ValueKind::kText:
      return "text";
    case ValueKind::kBoolean:
      return "a true/false value";
    case ValueKind::kError:
      return "an error";
  }
  return "nothing";
}

libxl::CellType type_of(ValueKind kind) {
  switch (kind) {
    case ValueKind::kNone:
      return libxl::CellBlank;
    case ValueKind::kNumber:
      return libxl::CellNumber;
    case ValueKind::kText:
      return libxl::CellText;
    case ValueKind::kBoolean:
      return libxl::CellBoolean;
    case ValueKind::kError:
      return libxl::CellError;
  }
  return libxl::CellEmpty;
}

}  // namespace

void SheetObject::refuse_kind(int row, int column, ValueKind holds, ValueKind wanted) const {
  book_.refuse(messages::wrong_kind({row, column}, kind_text(holds), kind_text(wanted)));
}

void SheetObject::give_format(const Cell* cell, int row, int column, libxl::Format** format) const {
  if (!format) return;
  *format = book_.format_object(cell ? cell->style : contents().style_at(row, column));
}

libxl::CellType SheetObject::cellType(int row, int column) const {
  return run(libxl::CellEmpty, [&] {
    if (!check_read(row, column)) return libxl::CellEmpty;
    const Cell* cell = contents().cells.find(row, column);
    return cell ? type_of(contents().value(*cell).kind) : libxl::CellEmpty;
  });
}

libxl::Format* SheetObject::cellFormat(int row, int column) const {
  return run(nullptr, [&]() -> libxl::Format* {
    if (!check_read(row, column)) return nullptr;
    return book_.format_object(contents().style_at(row, column));
  });
}

const wchar_t* SheetObject::readStr(int row, int column, libxl::Format** format) {
  return run(nullptr, [&]() -> const wchar_t* {
    if (!check_read(row, column)) return nullptr;
    const Cell* cell = contents().cells.find(row, column);
    const Value value = cell ? contents().value(*cell) : Value();
    const wchar_t* text = nullptr;
    if (value.kind == ValueKind::kText) {
      text = book_.give(book_.workbook().strings[value.text()]);
    } else if (value.kind == ValueKind::kNumber) {
      // In the host a number is a text too, and a column of article numbers holds both kinds.
      std::array<char, kMaxNumberText> digits{};
      const char* end = write_number(digits.data(), value.number);
      text = book_.give({digits.data(), static_cast<std::size_t>(end - digits.data())});
    } else if (value.kind != ValueKind::kNone) {
      refuse_kind(row, column, value.kind, ValueKind::kText);
      return nullptr;
    }
    give_format(cell, row, column, format);
    return text;
  });
}

double SheetObject::readNum(int row, int column, libxl::Format** format) const {
  return run(0, [&]() -> double {
    if (!check_read(row, column)) return 0;
    const Cell* cell = contents().cells.find(row, column);
    const Value value = cell ? contents().value(*cell) : Value();
    if (value.kind != ValueKind::kNumber && value.kind != ValueKind::kNone) {
      refuse_kind(row, column, value.kind, ValueKind::kNumber);
      return 0;
    }
    give_format(cell, row, column, format);
    return value.number;
  });
}

bool SheetObject::readBool(int row, int column, libxl::Format** format) const {
  return run(false, [&] {
    if (!check_read(row, column)) return false;
    const Cell* cell = contents().cells.find(row, column);
    const Value value = cell ? contents().value(*cell) : Value();
    if (value.kind != ValueKind::kBoolean && value.kind != ValueKind::kNone) {
      refuse_kind(row, column, value.kind, ValueKind::kBoolean);
      return false;
    }
    give_format(cell, row, column, format);
    return value.boolean();
  });
}

bool SheetObject::readBlank(int row, int column, libxl::Format** format) const {
  return run(false, [&] {
    if (!check_read(row, column)) return false;
    const Cell* cell = contents().cells.find(row, column);
    give_format(cell, row, column, format);
    return cell && contents().value(*cell).kind == ValueKind::kNone &&
           !formula_record(*cell, {row, column}, nullptr);
  });
}

libxl::ErrorType SheetObject::readError(int row, int column) const {
  return run(libxl::ErrorNone, [&] {
    if (!check_read(row, column)) return libxl::ErrorNone;
    const Cell* cell = contents().cells.find(row, column);
    const Value value = cell ? contents().value(*cell) : Value();
    if (value.kind != ValueKind::kError) return libxl::ErrorNone;
    // Errors younger than the interface read as a wrong value.
    if (value.error() >= kNewError) return libxl::ErrorValue;
    return static_cast<libxl::ErrorType>(value.error());
  });
}

bool SheetObject::isDate(int row, int column) const {
  return run(false, [&] {
    if (!check_read(row, column)) return false;
    const Cell* cell = contents().cells.find(row, column);
    if (!cell) return false;
    const Value value = contents().value(*cell);
    return value.kind == ValueKind::kNumber &&
           book_.workbook().styles.is_date(cell->style, value.number);
  });
}

// The first cell of an array holds the formula of all its cells. The cells of a data table are
// values without a formula.
const CellRecord* SheetObject::formula_record(const Cell& cell, CellAddress at,
                                              CellAddress* anchor) const {
  const auto formula_of = [&](const CellRecord* record) -> const CellRecord* {
    if (!record || !record->has_formula()) return nullptr;
    const CellExtra* extra = contents().extra(*record);
    return extra && extra->form == FormulaForm::kDataTable ? nullptr : record;
  };
  if (anchor) *anchor = at;
  if (const CellRecord* own = formula_of(contents().record(cell))) return own;
  const CellRange* array = contents().arrays.find(at);
  if (!array) return nullptr;
  if (anchor) *anchor = {array->row_first, array->column_first};
  const Cell* first = contents().cells.find(array->row_first, array->column_first);
  if (first) return formula_of(contents().record(*first));
  const auto outer = contents().outer_arrays.find({array->row_first, array->column_first});
  return outer == contents().outer_arrays.end() ? nullptr : &contents().records()[outer->second];
}

bool SheetObject::isFormula(int row, int column) const {
  return run(false, [&] {
    if (!check_read(row, column)) return false;
    const Cell* cell = contents().cells.find(row, column);
    return cell && formula_record(*cell, {row, column}, nullptr);
  });
}

const wchar_t* SheetObject::readFormula(int row, int column, libxl::Format** format) {
  return run(nullptr, [&]() -> const wchar_t* {
    if (!check_read(row, column)) return nullptr;
    const Cell* cell = contents().cells.find(row, column);
    CellAddress anchor;
    const CellRecord* record = cell ? formula_record(*cell, {row, column}, &anchor) : nullptr;
    give_format(cell, row, column, format);
    if (!record) return nullptr;
    const std::string_view text = contents().formula(*record, anchor, limits().grid, text_);
    if (book_.workbook().r1c1) {
      // What a file brought and does not parse is given as it stands.
      const auto options = formula::ParseOptions::of_book(limits().grid);
      if (const auto parsed = formula::parse(text, options))
        return book_.give(formula::print(*parsed, formula::Notation::kR1C1, anchor));
    }
    return book_.give(text);
  });
}

const wchar_t* SheetObject::readComment(int row, int column) const {
  return run(nullptr, [&]() -> const wchar_t* {
    if (!check_read(row, column)) return nullptr;
    const auto found = contents().comments.find({row, column});
    return found == contents().comments.end() ? nullptr : book_.give(found->second.text);
  });
}

}  // namespace engine::api
