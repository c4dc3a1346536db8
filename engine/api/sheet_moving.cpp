// Operations of a sheet that insert and remove rows and columns.
#include "engine/api/messages.h"
#include "engine/api/sheet_object.h"
#include "engine/workbook/move_cells.h"

namespace engine::api {

namespace {

using formula::Axis;
using formula::Move;

std::string text_of(const MoveRefusal& refusal, const Sheet& sheet, const Move& move,
                    const Grid& grid) {
  const int last = move.at + move.count - 1;
  const CellRange range = move.axis == Axis::kRows ? CellRange{move.at, last, 0, grid.columns - 1}
                                                   : CellRange{0, grid.rows - 1, move.at, last};
  switch (refusal.kind) {
    case MoveRefusal::Kind::kRowNotLoaded:
      return messages::row_not_loaded(refusal.place, sheet.name());
    case MoveRefusal::Kind::kPush:
      return messages::push(move.axis, move.count, refusal.place);
    case MoveRefusal::Kind::kArray:
      return messages::splits_array(move.axis, move.at, last, refusal.range);
    case MoveRefusal::Kind::kPivotTable:
      return messages::overlaps_pivot_table(range);
    case MoveRefusal::Kind::kTableHeader:
      return messages::table_header(move.at, last, refusal.table);
    case MoveRefusal::Kind::kTableRows:
      return messages::table_rows(move.at, last, refusal.table);
    case MoveRefusal::Kind::kBoundFormula:
      return messages::bound_formula({refusal.range.row_first, refusal.range.column_first});
  }
  return {};
}

}  // namespace

bool SheetObject::move(Axis axis, Move::Kind kind, int first, int last, bool names_follow) {
  return run(false, [&] {
    if (!(axis == Axis::kRows ? check_rows(first, last) : check_columns(first, last))) return false;
    const Move move{axis, kind, first, last - first + 1};
    const auto refusal =
        move_cells(book_.workbook(), book_.document(), *sheet_, {move, names_follow});
    if (refusal) return book_.refuse(false, text_of(*refusal, *sheet_, move, limits().grid));
    if (filter_) filter_->follow(move);
    book_.contents().values_changed = true;
    return true;
  });
}

bool SheetObject::insertRow(int rowFirst, int rowLast, bool updateNamedRanges) {
  return move(Axis::kRows, Move::Kind::kInsert, rowFirst, rowLast, updateNamedRanges);
}

bool SheetObject::insertCol(int colFirst, int colLast, bool updateNamedRanges) {
  return move(Axis::kColumns, Move::Kind::kInsert, colFirst, colLast, updateNamedRanges);
}

bool SheetObject::removeRow(int rowFirst, int rowLast, bool updateNamedRanges) {
  return move(Axis::kRows, Move::Kind::kRemove, rowFirst, rowLast, updateNamedRanges);
}

bool SheetObject::removeCol(int colFirst, int colLast, bool updateNamedRanges) {
  return move(Axis::kColumns, Move::Kind::kRemove, colFirst, colLast, updateNamedRanges);
}

}  // namespace engine::api
