// Feeds arbitrary text to the formula grammar: what parses must print to a text that parses and
// prints the same, in both notations, through a file and back.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "engine/formula/formula.h"
#include "engine/formula/formula_text.h"
#include "engine/xlsx/stored_formula.h"

namespace {

using engine::CellAddress;
using engine::Grid;
using engine::formula::Formula;
using engine::formula::Notation;
using engine::formula::ParseOptions;

constexpr Grid kGrid{1048576, 16384};

void demand(bool holds) {
  if (!holds) std::abort();
}

void check_shape(const Formula& formula) {
  const std::size_t size = formula.text.size();
  for (std::size_t i = 0; i < formula.nodes.size(); ++i) {
    const auto& node = formula.nodes[i];
    demand(node.first <= i && node.begin <= node.mark && node.mark <= node.end && node.end <= size);
  }
  demand(formula.nodes.back().first == 0);
}

// What is changed in a formula leaves a formula.
void check_changed(const std::optional<std::string>& text) {
  if (text && text->size() < engine::formula::kMaxFormulaLength)
    demand(engine::formula::parse(*text, ParseOptions::of_book(kGrid)).has_value());
}

void check_a1(const Formula& formula) {
  using engine::formula::Axis;
  using engine::formula::Move;
  const std::string_view sheets[] = {"S", "T", "U"};
  check_changed(shifted(formula, 3, -2));
  check_changed(adjusted(formula, {Axis::kRows, Move::Kind::kInsert, 2, 5}, "S", true));
  check_changed(adjusted(formula, {Axis::kColumns, Move::Kind::kRemove, 1, 2}, "S", true));
  check_changed(renamed(formula, "S", "It's a sheet"));
  check_changed(without_sheet(formula, sheets, 0));
  demand(!unknown_sheet(formula, [](std::string_view name) { return name.size() < 32768; }));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
  const CellAddress base{100, 50};
  const bool r1c1 = (data[0] & 1) != 0;
  ParseOptions options(kGrid);
  options.lenient = (data[0] & 2) != 0;
  options.notation = r1c1 ? Notation::kR1C1 : Notation::kA1;
  options.base = base;
  engine::formula::ParseError error;
  const auto formula = engine::formula::parse(text, options, &error);
  if (!formula) {
    // A stray lead byte counts as the two units of the character that it announces.
    demand(error.position >= 0 && static_cast<std::size_t>(error.position) <= 2 * text.size());
    return 0;
  }
  check_shape(*formula);
  const std::string printed = print(*formula, options.notation, base);
  const auto again = engine::formula::parse(printed, options);
  demand(again && print(*again, options.notation, base) == printed);
  if (r1c1) {
    const std::string a1 = print(*formula);
    if (a1.size() < engine::formula::kMaxFormulaLength)
      demand(engine::formula::parse(a1, ParseOptions::of_book(kGrid)).has_value());
    return 0;
  }
  check_a1(*formula);
  if (const auto shown = engine::xlsx::shown_formula(text, kGrid)) {
    const auto stored = engine::xlsx::stored_formula(*shown, kGrid);
    demand(stored && *stored == text);
  }
  const engine::Table table = {"T", {0, 0, 0, 0}};
  check_changed(engine::xlsx::stored_formula(text, kGrid, {std::span(&table, 1), {}}));
  return 0;
}
