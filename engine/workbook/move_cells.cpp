#include "engine/workbook/move_cells.h"

#include <algorithm>
#include <map>
#include <span>
#include <utility>
#include <vector>

#include "engine/formula/adjust.h"
#include "engine/workbook/auto_fit.h"
#include "engine/workbook/formula_moves.h"
#include "engine/workbook/sheet_operations.h"

namespace engine {

namespace {

using formula::Axis;
using formula::Interval;
using formula::Move;

bool inserts(const Move& move) { return move.kind == Move::Kind::kInsert; }

int size_along(const Grid& grid, const Move& move) {
  return move.axis == Axis::kRows ? grid.rows : grid.columns;
}

Interval along(const CellRange& range, const Move& move) {
  return move.axis == Axis::kRows ? Interval{range.row_first, range.row_last}
                                  : Interval{range.column_first, range.column_last};
}

// Refusals.

bool holds_something(const SheetContents& contents, const Cell& cell) {
  if (cell.kind == CellKind::kBlank) return false;
  const CellRecord* record = contents.record(cell);
  return !record || record->has_formula() || record->value.kind != ValueKind::kNone;
}

// The last row or column from `first` on that holds something; -1 without one.
int last_used(const SheetContents& contents, Axis axis, int first) {
  const bool rows = axis == Axis::kRows;
  int last = -1;
  for (const Row& row : contents.cells.rows(rows ? static_cast<std::uint32_t>(first) : 0)) {
    for (const Cell& cell : row.span()) {
      const int place = rows ? static_cast<int>(row.number) : cell.column;
      if (place >= first && place > last && holds_something(contents, cell)) last = place;
    }
  }
  for (const auto& [cell, comment] : contents.comments) {
    const int place = rows ? cell.row : cell.column;
    if (place >= first) last = std::max(last, place);
  }
  for (const CellRange& array : contents.arrays.all()) {
    const int place = rows ? array.row_last : array.column_last;
    if (place >= first) last = std::max(last, place);
  }
  return last;
}

// The last place from `first` on at which a range begins; -1 without one.
template <class Ranges, class Cells>
int last_begin(const Ranges& ranges, Axis axis, int first, const Cells& cells_of) {
  int last = -1;
  for (std::size_t i = 0; i < ranges.size(); ++i) {
    const CellRange cells = cells_of(ranges[i]);
    const int begin = axis == Axis::kRows ? cells.row_first : cells.column_first;
    if (begin >= first) last = std::max(last, begin);
  }
  return last;
}

// Whether the cell of a formula that cannot be moved goes, and others that share it stay.
bool strands(const SheetContents& contents, std::uint32_t number, const Move& move,
             const Grid& grid) {
  const SharedFormula& shared = contents.shared_formulas[number];
  const auto goes = [&](int row, int column) {
    return !formula::moved(move.axis == Axis::kRows ? row : column, move);
  };
  if (!goes(shared.at.row, shared.at.column)) return false;
  if (formula::parse(shared.text, formula::ParseOptions::of_book(grid))) return false;
  for (const Row& row : contents.cells.rows())
    for (const Cell& cell : row.span())
      if (const CellRecord* record = contents.record(cell);
          record && record->shared == number + 1 &&
          !goes(static_cast<int>(row.number), cell.column))
        return true;
  return false;
}

std::optional<MoveRefusal> refusal_of_contents(const SheetContents& contents, const Move& move,
                                               const Grid& grid) {
  MoveRefusal refusal;
  if (inserts(move)) {
    const int limit = std::max(move.at, size_along(grid, move) - move.count);
    const auto range = [](const CellRange& merge) { return merge; };
    const auto cells = [](const Link& link) { return link.cells; };
    refusal.place = std::max({last_used(contents, move.axis, limit),
                              last_begin(contents.merges.all(), move.axis, limit, range),
                              last_begin(contents.links, move.axis, limit, cells),
                              last_picture(contents.pictures, move.axis, limit)});
    if (refusal.place >= 0) return refusal;
  }
  for (const CellRange& array : contents.arrays.all()) {
    const auto [first, last] = along(array, move);
    const int end = move.at + move.count;  // of what is removed
    const bool splits = inserts(move)
                            ? first < move.at && move.at <= last
                            : first < end && move.at <= last && (first < move.at || last >= end);
    if (!splits) continue;
    refusal.kind = MoveRefusal::Kind::kArray;
    refusal.range = array;
    return refusal;
  }
  for (std::uint32_t number = 0; number < contents.shared_formulas.size(); ++number) {
    if (inserts(move) || !strands(contents, number, move, grid)) continue;
    const CellAddress at = contents.shared_formulas[number].at;
    refusal.kind = MoveRefusal::Kind::kBoundFormula;
    refusal.range = {at.row, at.row, at.column, at.column};
    return refusal;
  }
  return std::nullopt;
}

std::optional<MoveRefusal> refusal_of_unloaded(const Sheet& sheet, const Move& move) {
  if (sheet.loading != Loading::kPartly || move.axis == Axis::kColumns) return std::nullopt;
  MoveRefusal refusal;
  refusal.kind = MoveRefusal::Kind::kRowNotLoaded;
  refusal.place = move.at;
  const auto [first, last] = along(sheet.loaded_rows, move);
  if (move.at < first || move.at > last) return refusal;
  refusal.place = last + 1;
  if (!inserts(move) && move.at + move.count > refusal.place) return refusal;
  return std::nullopt;
}

// The look of what is inserted.

// Rows look like the one before: its own look and that of its cells.
struct RowLook {
  std::vector<Cell> cells;
  std::optional<RowProperties> properties;
};

int outline_level(const SheetContents& contents, int row) {
  const Row* found = contents.cells.find_row(row);
  const RowProperties* its = found ? contents.properties(*found) : nullptr;
  return its ? its->outline_level : 0;
}

RowLook look_of_rows(const SheetContents& contents, const SheetContents& before, const Move& move) {
  RowLook look;
  // Where rows are hidden that nothing is known of, inserted ones are known.
  if (contents.hides_rows) look.properties.emplace();
  const Row* row = move.at == 0 ? nullptr : before.cells.find_row(move.at - 1);
  if (!row) return look;
  for (const Cell& cell : row->span())
    if (cell.style != 0)
      look.cells.push_back(SheetContents::make_cell(cell.column, Value(), cell.style));
  const RowProperties* its = before.properties(*row);
  if (!its) return look;
  RowProperties made;
  made.style = its->style;
  if (its->custom_height) made.height = its->height;
  made.custom_height = its->custom_height;
  made.outline_level = static_cast<std::uint8_t>(
      std::min<int>(its->outline_level, outline_level(contents, move.at)));
  if (made.style || made.height || made.outline_level != 0) look.properties = made;
  return look;
}

// Inserted columns are like the one before, but shown.
Columns moved_columns(const Columns& columns, const Move& move, const Grid& grid) {
  std::vector<ColumnProperties> made;
  const auto append = [&](ColumnProperties run, int first, int last) {
    run.first = first;
    run.last = std::min(last, grid.columns - 1);
    if (run.first > run.last) return;
    if (!made.empty() && made.back().last + 1 == run.first) {
      ColumnProperties joined = made.back();
      joined.first = run.first;
      joined.last = run.last;
      if (joined == run) {
        made.back().last = run.last;
        return;
      }
    }
    made.push_back(run);
  };
  const ColumnProperties* const behind = columns.find(move.at);
  for (const ColumnProperties& run : columns) {
    if (!inserts(move)) {
      if (const auto to = formula::moved(Interval{run.first, run.last}, move, grid.columns))
        append(run, to->first, to->last);
      continue;
    }
    if (run.first < move.at) append(run, run.first, std::min(run.last, move.at - 1));
    if (run.first < move.at && run.last >= move.at - 1) {
      ColumnProperties look = run;
      look.hidden = look.collapsed = false;
      look.outline_level =
          std::min(run.outline_level, behind ? behind->outline_level : std::uint8_t{0});
      append(look, move.at, move.at + move.count - 1);
    }
    if (run.last >= move.at)
      append(run, std::max(run.first, move.at) + move.count, run.last + move.count);
  }
  Columns all;
  for (const ColumnProperties& run : made) all.append(run);
  return all;
}

// The contents of a sheet, or of its rows outside of a partial load, after the move.
class ContentsMove {
 public:
  // `texts` are cells of inserted columns; `before` holds the row before inserted ones.
  ContentsMove(Sheet& sheet, FormulaMoves& formulas, const Move& move, const Grid& grid)
      : sheet_(sheet), formulas_(formulas), move_(move), grid_(grid) {}
  ContentsMove(const ContentsMove&) = delete;
  ContentsMove& operator=(const ContentsMove&) = delete;
  ~ContentsMove();

  void prepare_rows(const RowLook& look);
  void prepare_columns(const std::map<CellAddress, Value>& texts);
  void apply() noexcept;

 private:
  void prepare_ranges();
  void drop_cells() noexcept;

  Sheet& sheet_;
  FormulaMoves& formulas_;
  const Move move_;
  const Grid grid_;
  CellStore::RowsMove rows_;
  CellStore::ColumnsMove columns_of_cells_;
  Columns columns_;
  ArrayRanges arrays_;
  Merges merges_;
  Links links_;
  PageBreaks breaks_;
  AutoFilter filter_;
  Validations validations_;
  IgnoredErrors ignored_errors_;
  PlacedPictures pictures_;
  std::optional<FitArea> fit_area_;
  std::optional<RowProperties> properties_;  // of inserted rows
  std::size_t properties_before_ = 0;
  bool applied_ = false;
};

ContentsMove::~ContentsMove() {
  if (applied_ || !properties_) return;
  sheet_.spare().row_properties.resize(properties_before_);
}

void ContentsMove::prepare_rows(const RowLook& look) {
  prepare_ranges();
  SheetContents& contents = sheet_.spare();
  properties_before_ = contents.row_properties.size();
  std::uint32_t number = 0;
  if (look.properties) {
    properties_ = look.properties;
    number = static_cast<std::uint32_t>(properties_before_) + 1;
    contents.row_properties.resize(properties_before_ + static_cast<std::size_t>(move_.count));
  }
  rows_ = contents.cells.prepare_rows(move_, grid_.rows, look.cells, number);
}

void ContentsMove::prepare_columns(const std::map<CellAddress, Value>& texts) {
  prepare_ranges();
  SheetContents& contents = sheet_.spare();
  columns_ = moved_columns(contents.columns, move_, grid_);
  for (const auto& [at, value] : texts) contents.cells.row_at(at.row);
  std::vector<CellStore::PlacedCell> added;
  if (inserts(move_) && move_.at != 0) {
    const int end = std::min(move_.at + move_.count, grid_.columns);
    for (const Row& row : contents.cells.rows()) {
      const int number = static_cast<int>(row.number);
      const auto before = std::ranges::lower_bound(row.span(), move_.at - 1, {}, &Cell::column);
      const bool found = before != row.span().end() && before->column == move_.at - 1;
      const std::uint32_t style = found ? before->style : 0;
      const auto text = texts.lower_bound({number, 0});
      if (style == 0 && (text == texts.end() || text->first.row != number)) continue;
      for (int column = move_.at; column < end; ++column) {
        const auto own = texts.find({number, column});
        if (style == 0 && own == texts.end()) continue;
        const Value value = own == texts.end() ? Value() : own->second;
        added.push_back({row.number, SheetContents::make_cell(column, value, style)});
      }
    }
  }
  columns_of_cells_ = contents.cells.prepare_columns(move_, grid_.columns, added);
}

void ContentsMove::prepare_ranges() {
  merges_ = engine::moved(sheet_.contents().merges, move_, grid_);
  links_ = engine::moved(sheet_.contents().links, move_, grid_);
  breaks_ = engine::moved(sheet_.contents().breaks, move_, grid_);
  filter_ = engine::moved(sheet_.contents().filter, move_, grid_);
  validations_ =
      engine::moved(sheet_.contents().validations, move_, grid_,
                    [this](std::string_view text) { return formulas_.edited(&sheet_, text); });
  ignored_errors_ = engine::moved(sheet_.contents().ignored_errors, move_, grid_);
  pictures_ = engine::moved(sheet_.contents().pictures, sheet_.contents(), move_, grid_);
  if (const auto& area = sheet_.contents().fit_area) fit_area_ = engine::moved(*area, move_, grid_);
  for (const CellRange& array : sheet_.contents().arrays.all())
    if (const auto to = moved_range(array, move_, grid_)) arrays_.add(*to);
}

// What goes with the cells that are removed or pushed off the sheet.
void ContentsMove::drop_cells() noexcept {
  SheetContents& contents = sheet_.spare();
  const bool rows = move_.axis == Axis::kRows;
  const int size = size_along(grid_, move_);
  const int first = inserts(move_) ? std::max(move_.at, size - move_.count) : move_.at;
  const int end = inserts(move_) ? size : move_.at + move_.count;
  const auto row_first = static_cast<std::uint32_t>(rows ? first : 0);
  const auto row_end = static_cast<std::uint32_t>(rows ? end : grid_.rows);
  for (const Row& row : contents.cells.rows(row_first, row_end)) {
    for (const Cell& cell : row.span())
      if (rows || (cell.column >= first && cell.column < end)) contents.forget_record(cell);
    if (rows && row.properties != 0) contents.row_properties[row.properties - 1] = {};
  }
}

void ContentsMove::apply() noexcept {
  applied_ = true;
  SheetContents& contents = sheet_.change();
  drop_cells();
  if (move_.axis == Axis::kRows) {
    contents.cells.exchange(rows_);
    contents.row_begins().forget_below(move_.at);
    if (properties_)
      for (std::size_t i = properties_before_; i < contents.row_properties.size(); ++i)
        contents.row_properties[i] = *properties_;
  } else {
    contents.cells.exchange(columns_of_cells_);
    std::swap(contents.columns, columns_);
  }
  for (CellExtra& extra : contents.extras()) {
    if (extra.form == FormulaForm::kNormal) continue;
    if (const auto to = moved_range(extra.range, move_, grid_)) extra.range = *to;
  }
  std::swap(contents.arrays, arrays_);
  std::swap(contents.merges, merges_);
  std::swap(contents.links, links_);
  std::swap(contents.breaks, breaks_);
  if (contents.filter.range && !filter_.range) contents.filtered = false;
  std::swap(contents.filter, filter_);
  std::swap(contents.validations, validations_);
  std::swap(contents.ignored_errors, ignored_errors_);
  std::swap(contents.pictures, pictures_);
  contents.view = engine::moved(contents.view, move_, grid_);
  contents.fit_area = fit_area_;
  move_keys(contents.outer_arrays, move_);
  move_keys(contents.comments, move_);
}

// Texts of cells of inserted columns as values of the book, or of rows that were read apart.
std::map<CellAddress, Value> values_of(const CarriedMove* carried, const Sheet& sheet,
                                       bool outside_rows, Workbook& texts,
                                       std::uint32_t first_text) {
  std::map<CellAddress, Value> values;
  if (!carried) return values;
  for (const auto& [at, text] : carried->texts) {
    const bool is_loaded =
        sheet.loading != Loading::kPartly ||
        (at.row >= sheet.loaded_rows.row_first && at.row <= sheet.loaded_rows.row_last);
    if (is_loaded != outside_rows)
      values.emplace(at, Value::of_text(first_text + texts.strings.add(text)));
  }
  return values;
}

}  // namespace

std::optional<MoveRefusal> move_cells(Workbook& book, Document& document, Sheet& sheet,
                                      const CellsMove& cells) {
  const Move& move = cells.move;
  const Grid& grid = book.limits.grid;
  if (auto refusal = refusal_of_unloaded(sheet, move)) return refusal;
  const AllRows all_rows(book, document);
  OutsideRows* const outside = sheet.outside.get();
  if (auto refusal = refusal_of_contents(sheet.contents(), move, grid)) return refusal;
  if (outside)
    if (auto refusal = refusal_of_contents(outside->rows.contents(), move, grid)) return refusal;
  if (auto refusal = document.refusal_of_move(book, sheet, move)) return refusal;
  // Tables are called by their names from anywhere.
  const bool tables_may_go = !inserts(move) && !document.tables(book, sheet).empty();
  if (tables_may_go) read_all_sheets(book, document);
  else read_referring_sheets(book, document);

  const auto carried = document.prepare_move(book, sheet, move);
  formula::Adjuster adjuster(move, sheet.name(), grid);
  FormulaMoves formulas(adjuster, sheet, carried.get());
  formulas.collect(book, cells.names_follow);
  ContentsMove inside(sheet, formulas, move, grid);
  std::optional<ContentsMove> others;
  if (outside) others.emplace(outside->rows, formulas, move, grid);
  if (move.axis == Axis::kRows) {
    const bool first_is_loaded = !outside || move.at > sheet.loaded_rows.row_first;
    RowLook look;
    if (inserts(move))
      look = look_of_rows(sheet.contents(),
                          first_is_loaded ? sheet.contents() : outside->rows.contents(), move);
    inside.prepare_rows(look);
    if (others) others->prepare_rows({});
  } else {
    inside.prepare_columns(values_of(carried.get(), sheet, false, book, 0));
    if (others)
      others->prepare_columns(
          values_of(carried.get(), sheet, true, outside->texts, book.strings.count_from_file()));
  }

  formulas.begin_apply(book);
  formulas.apply(book);
  if (carried) carried->apply();
  inside.apply();
  if (others) others->apply();
  if (move.axis == Axis::kRows && sheet.loading == Loading::kPartly)
    sheet.loaded_rows.row_last += inserts(move) ? move.count : -move.count;
  return std::nullopt;
}

}  // namespace engine
