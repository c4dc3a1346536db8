#include <algorithm>
#include <cassert>

#include "engine/formula/formula.h"
#include "engine/formula/leaf.h"

namespace engine::formula {
namespace {

void append_r1c1_part(std::string& out, char letter, int position, bool absolute, int base) {
  out += letter;
  if (absolute) out += std::to_string(position + 1);
  else if (position != base) out.append("[").append(std::to_string(position - base)).append("]");
}

void append_r1c1_end(std::string& out, Reference::Shape shape, const CellReference& cell,
                     CellAddress base) {
  if (shape != Reference::Shape::kColumns)
    append_r1c1_part(out, 'R', cell.row, cell.row_absolute, base.row);
  if (shape != Reference::Shape::kRows)
    append_r1c1_part(out, 'C', cell.column, cell.column_absolute, base.column);
}

void append_a1_end(std::string& out, Reference::Shape shape, const CellReference& cell) {
  if (shape == Reference::Shape::kColumns) {
    if (cell.column_absolute) out += '$';
    append_column(out, cell.column);
  } else if (shape == Reference::Shape::kRows) {
    if (cell.row_absolute) out += '$';
    out += std::to_string(cell.row + 1);
  } else {
    append_cell(out, cell);
  }
}

// The text of a formula with some of its references exchanged, from left to right. References are
// leaves, which postfix order gives from left to right too.
class Rewriting {
 public:
  explicit Rewriting(const Formula& formula) : formula_(formula) {}

  // Whatever is appended to the result stands for the bytes begin..end.
  std::string& replace(std::size_t begin, std::size_t end) {
    if (copied_ == 0) out_.reserve(formula_.text.size() + 8);
    out_.append(formula_.text, copied_, begin - copied_);
    copied_ = end;
    return out_;
  }

  // A lost reference goes with its prefix: not every program reads Sheet1!#REF!.
  void lose(const Node& node) { replace(node.begin, node.end) += "#REF!"; }

  std::optional<std::string> result() && {
    if (copied_ == 0) return std::nullopt;
    out_.append(formula_.text, copied_);
    return std::move(out_);
  }

 private:
  const Formula& formula_;
  std::string out_;
  std::size_t copied_ = 0;
};

// Moves one end; false when it leaves the grid.
bool shift(CellReference& cell, Reference::Shape shape, int rows, int columns, const Grid& grid) {
  if (!cell.row_absolute && shape != Reference::Shape::kColumns) cell.row += rows;
  if (!cell.column_absolute && shape != Reference::Shape::kRows) cell.column += columns;
  return grid.holds(cell.row, cell.column);
}

// Applies the interval rule to the ends, which may stand in either order; false when nothing is
// left.
bool adjust(int& one, int& two, const Move& move, int size) {
  const auto [first, last] = std::minmax(one, two);
  const auto moved_to = moved(Interval{first, last}, move, size);
  if (!moved_to) return false;
  const bool in_order = one <= two;
  one = in_order ? moved_to->first : moved_to->last;
  two = in_order ? moved_to->last : moved_to->first;
  return true;
}

}  // namespace

bool means_sheet(const Formula& formula, const Node& node, std::string_view sheet, bool own_sheet) {
  if (node.prefix == PrefixKind::kNone) return own_sheet;
  return node.prefix == PrefixKind::kSheet && names_sheet(formula, node, sheet);
}

bool shift_reference(Reference& reference, int rows, int columns, const Grid& grid) {
  auto& [shape, first, last] = reference;
  const bool first_inside = shift(first, shape, rows, columns, grid);
  return shift(last, shape, rows, columns, grid) && first_inside;
}

bool adjust_reference(Reference& reference, const Move& move, const Grid& grid) {
  auto& [shape, first, last] = reference;
  if (move.axis == Axis::kRows)
    return shape == Reference::Shape::kColumns || adjust(first.row, last.row, move, grid.rows);
  return shape == Reference::Shape::kRows || adjust(first.column, last.column, move, grid.columns);
}

void append_reference(std::string& out, const Reference& reference, Notation notation,
                      CellAddress base) {
  const Reference::Shape shape = reference.shape;
  const bool r1c1 = notation == Notation::kR1C1;
  const auto append_end = [&](const CellReference& cell) {
    if (r1c1) append_r1c1_end(out, shape, cell, base);
    else append_a1_end(out, shape, cell);
  };
  append_end(reference.first);
  // A single whole row is 5:5 in A1 but R5 in R1C1.
  const bool one_line =
      r1c1 && reference.first == reference.last && shape != Reference::Shape::kArea;
  if (shape == Reference::Shape::kCell || one_line) return;
  out += ':';
  append_end(reference.last);
}

std::string print(const Formula& formula, Notation notation, CellAddress base) {
  const bool same_base = notation == Notation::kA1 || base == formula.base;
  if (notation == formula.notation && same_base) return formula.text;
  Rewriting rewriting(formula);
  for (const Node& node : formula.nodes) {
    if (node.kind != NodeKind::kReference) continue;
    append_reference(rewriting.replace(node.mark, node.end), formula.references[node.value],
                     notation, base);
  }
  return std::move(rewriting).result().value_or(formula.text);
}

std::optional<std::string> shifted(const Formula& formula, int rows, int columns) {
  assert(formula.notation == Notation::kA1);
  Rewriting rewriting(formula);
  for (const Node& node : formula.nodes) {
    if (node.kind != NodeKind::kReference) continue;
    const Reference& old = formula.references[node.value];
    Reference reference = old;
    if (!shift_reference(reference, rows, columns, formula.grid)) rewriting.lose(node);
    else if (reference.first != old.first || reference.last != old.last)
      append_reference(rewriting.replace(node.mark, node.end), reference, Notation::kA1, {});
  }
  return std::move(rewriting).result();
}

std::optional<std::string> adjusted(const Formula& formula, const Move& move,
                                    std::string_view sheet, bool own_sheet) {
  assert(formula.notation == Notation::kA1);
  Rewriting rewriting(formula);
  for (const Node& node : formula.nodes) {
    if (node.kind != NodeKind::kReference) continue;
    if (!means_sheet(formula, node, sheet, own_sheet)) continue;
    const Reference& old = formula.references[node.value];
    Reference reference = old;
    if (!adjust_reference(reference, move, formula.grid)) rewriting.lose(node);
    else if (reference.first != old.first || reference.last != old.last)
      append_reference(rewriting.replace(node.mark, node.end), reference, Notation::kA1, {});
  }
  return std::move(rewriting).result();
}

}  // namespace engine::formula
