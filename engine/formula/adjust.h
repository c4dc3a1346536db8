// Formulas after rows or columns of a sheet were inserted or removed, one after the other.
//
// Most formulas of a book are not concerned: they name other sheets, or cells in front of the place
// where others go in or out. A look at the letters and digits of the text tells that, so only what
// may change is parsed.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/formula/formula.h"
#include "engine/formula/interval.h"
#include "engine/formula/reference.h"

namespace engine::formula {

class Adjuster {
 public:
  // `sheet` is the name of the sheet whose cells move; it has to outlive this.
  Adjuster(const Move& move, std::string_view sheet, const Grid& grid)
      : move_(move), sheet_(sheet), grid_(grid) {}

  const Move& move() const { return move_; }
  std::string_view sheet() const { return sheet_; }
  const Grid& grid() const { return grid_; }

  // The new text; nothing when it stays. `own_sheet` tells whether the formula stands on the sheet,
  // so that references without prefix mean it.
  std::optional<std::string> adjusted(std::string_view text, bool own_sheet);

  // Whether a formula can be concerned at all.
  bool may_change(std::string_view text, bool own_sheet) const;

 private:
  bool names_sheet(std::string_view text) const;

  const Move move_;
  const std::string_view sheet_;
  const Grid grid_;
  Formula formula_;  // its memory is used again
};

// A formula that many cells share, each with its references shifted by its distance from the cell
// that the text is for.
//
// What the move makes of it is told cell by cell as a form: where its references are then, relative
// parts counted from the cell. Cells of one form go on to share a formula. The form follows from
// where a cell stands along the axis of the move, but near the edges across of it, and is the same
// for stretches of it: a file names a long formula from any number of cells in few bytes.
class SharedAdjuster {
 public:
  using Form = std::vector<int>;

  // A text that is no formula is the same for all cells.
  SharedAdjuster(const Adjuster& adjuster, std::string_view text, CellAddress at, bool own_sheet);

  bool is_formula() const { return is_formula_; }
  bool concerned() const { return concerned_; }
  // The form that the formula has for all cells when nothing changes.
  const Form& unchanged() const { return unchanged_; }
  // The form for a cell that stands at `from` and is going to stand at `to`.
  void read_form(CellAddress from, CellAddress to, Form& form) const;
  int along(CellAddress cell) const { return move_.axis == Axis::kRows ? cell.row : cell.column; }
  // Whether its form is that of the cells beside it, across of the axis.
  bool is_like_beside(CellAddress from) const {
    return across_.first <= across(from) && across(from) <= across_.last;
  }
  // The last place along the axis up to which cells have the form of one that stands at `from`.
  int last_alike(CellAddress from) const;
  // The text for a cell that stands at `from`.
  std::string text_for(CellAddress from, Adjuster& adjuster) const;

 private:
  int across(CellAddress cell) const { return move_.axis == Axis::kRows ? cell.column : cell.row; }
  void cut_across(const Reference& reference);
  void append_ends(const Reference& reference, CellAddress cell, Form& form) const;

  const Move move_;
  const bool own_sheet_;
  CellAddress at_;
  Formula formula_;
  std::vector<bool> moving_;  // by reference: whether the move concerns it
  bool is_formula_ = true;
  bool concerned_ = false;
  Form unchanged_;
  Interval across_;  // of cells all of whose references lie on the sheet across of the axis
};

}  // namespace engine::formula
