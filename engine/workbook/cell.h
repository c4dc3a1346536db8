// Cells: sixteen bytes each, whatever they hold.
//
// A cell is a value word, the number of its cell format, its column and a kind. What does not fit
// into the word (a formula with its cached value, what a file says about a cell beyond its value)
// stands in a record of the sheet, and the word holds the record's number. A record is plain data
// as well: the sheet keeps the texts of formulas and the rare rest apart.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

#include "engine/formula/reference.h"

namespace engine {

enum class ValueKind : std::uint8_t { kNone, kNumber, kText, kBoolean, kError };

// What a cell shows: nothing, a number, a text of the string pool, true or false, an error.
struct Value {
  union {
    double number = 0;
    std::uint64_t bits;  // text: index in the string pool; boolean: 0 or 1; error: ErrorValue
  };
  ValueKind kind = ValueKind::kNone;

  static Value of_number(double value) {
    Value made;
    made.number = value;
    made.kind = ValueKind::kNumber;
    return made;
  }
  static Value of_text(std::uint32_t index) { return of_bits(ValueKind::kText, index); }
  static Value of_boolean(bool value) { return of_bits(ValueKind::kBoolean, value ? 1 : 0); }
  static Value of_error(std::uint32_t error) { return of_bits(ValueKind::kError, error); }

  std::uint32_t text() const { return static_cast<std::uint32_t>(bits); }
  bool boolean() const { return bits != 0; }
  std::uint32_t error() const { return static_cast<std::uint32_t>(bits); }

 private:
  static Value of_bits(ValueKind kind, std::uint64_t bits) {
    Value made;
    made.bits = bits;
    made.kind = kind;
    return made;
  }
};

enum class CellKind : std::uint8_t { kBlank, kNumber, kText, kBoolean, kError, kRecord };

struct Cell {
  union {
    double number = 0;
    std::uint64_t bits;  // as in Value; a record cell: the record's number in its sheet
  };
  std::uint32_t style = 0;  // index of the cell format in the book's list
  std::uint16_t column = 0;
  CellKind kind = CellKind::kBlank;

  std::uint32_t index() const { return static_cast<std::uint32_t>(bits); }
};
static_assert(sizeof(Cell) == 16 && std::is_trivially_copyable_v<Cell>);

// What a cell without a record shows, and the kind of a cell that shows a value without one.
static_assert(static_cast<int>(ValueKind::kError) == static_cast<int>(CellKind::kError));
inline CellKind kind_of(const Value& value) { return static_cast<CellKind>(value.kind); }
inline Value value_of(const Cell& cell) {
  Value value;
  value.bits = cell.bits;
  value.kind = static_cast<ValueKind>(cell.kind);
  return value;
}

enum class FormulaForm : std::uint8_t { kNormal, kArray, kDataTable };

// What few cells have.
struct CellExtra {
  FormulaForm form = FormulaForm::kNormal;
  CellRange range;               // the cells that an array formula or data table fills
  std::string formula_details;   // kept for the codec: what else the file says of the formula
  std::string formula_spelling;  // kept for the codec: the formula as only the file spells it
  std::string details;           // kept for the codec: what else the file says of the cell
  std::string children;          // kept for the codec: further content of the cell
};

// A formula that many cells have, each with its references moved by its distance from the first. It
// stands in memory once: a file can name a long one from any number of cells.
struct SharedFormula {
  std::string text;  // as the cell at `at` has it
  CellAddress at;
  std::string spelling;  // kept for the codec: as CellExtra::formula_spelling
};

// A cell with a formula, or with something that the engine carries without understanding it.
struct CellRecord {
  Value value;               // a formula's cached value: kNone when it has none
  std::string_view formula;  // without "=", as callers see it; empty: none, or a shared one
  std::uint32_t shared = 0;  // number of a formula that cells of the sheet share, plus one; or 0
  std::uint32_t extra = 0;   // number of the CellExtra in the sheet, plus one; or 0

  bool has_formula() const { return !formula.empty() || shared != 0; }
};
static_assert(std::is_trivially_copyable_v<CellRecord>);

}  // namespace engine
