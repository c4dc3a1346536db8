// Rows and columns that are inserted or removed: what follows in the parts of the file.
#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "engine/formula/adjust.h"
#include "engine/formula/formula_text.h"
#include "engine/package/file_error.h"
#include "engine/package/xml_tree.h"
#include "engine/workbook/move_cells.h"
#include "engine/xlsx/attributes.h"
#include "engine/xlsx/comments.h"
#include "engine/xlsx/document.h"
#include "engine/xlsx/elements/conditions.h"
#include "engine/xlsx/elements/drawings.h"
#include "engine/xlsx/moved_cells.h"
#include "engine/xlsx/notes_drawing.h"
#include "engine/xlsx/table_part.h"
#include "engine/xlsx/worksheet_elements.h"

namespace engine::xlsx {

namespace {

using formula::Axis;
using formula::Interval;
using formula::Move;
using package::Family;
using package::FileError;

Interval along(const CellRange& range, Axis axis) {
  return axis == Axis::kRows ? Interval{range.row_first, range.row_last}
                             : Interval{range.column_first, range.column_last};
}

bool inserts(const Move& move) { return move.kind == Move::Kind::kInsert; }

bool is_removed(int place, const Move& move) {
  return !inserts(move) && !formula::moved(place, move);
}

// Whether rows or columns come or go between the first and the last, but not all of them go.
bool cuts(const Interval& interval, const Move& move) {
  const auto& [first, last] = interval;
  if (inserts(move)) return first < move.at && move.at <= last;
  const int end = move.at + move.count;
  return first < end && move.at <= last && (first < move.at || last >= end);
}

// What refuses a removal that a table cannot follow.
std::optional<MoveRefusal> refusal_of_table(const TablePart& table, const Move& move) {
  const auto& [row_first, row_last, column_first, column_last] = table.cells;
  if (move.axis != Axis::kRows || inserts(move) || !cuts({row_first, row_last}, move))
    return std::nullopt;
  MoveRefusal refusal;
  refusal.table = table.name;
  if (table.has_header() && is_removed(row_first, move)) {
    refusal.kind = MoveRefusal::Kind::kTableHeader;
    return refusal;
  }
  const int data_first = row_first + (table.has_header() ? 1 : 0);
  const int data_last = row_last - table.totals_rows;
  if (!is_removed(data_first, move) || move.at + move.count <= data_last) return std::nullopt;
  refusal.kind = MoveRefusal::Kind::kTableRows;
  return refusal;
}

// A part of the sheet's relationships.
struct RelatedPart {
  const Relationship* link;
  const Part* part;
};

std::vector<RelatedPart> related_parts(const Parts& parts, std::string_view sheet,
                                       std::string_view kind) {
  std::vector<RelatedPart> found;
  for (const Relationship& one : parts.relationships(sheet))
    if (one.kind() == kind)
      if (const Part* part = parts.target(sheet, one)) found.push_back({&one, part});
  return found;
}

// What becomes of formulas when tables or columns of tables go.
struct TableEdits {
  std::vector<formula::TableChange> tables;
  formula::ColumnChanges columns;
  Grid grid;

  bool empty() const { return tables.empty() && columns.empty(); }
  std::optional<std::string> operator()(std::string_view text) const {
    auto changed = formula::change_columns_text(text, columns, grid);
    return formula::change_tables_text(text, std::move(changed), tables, grid);
  }
};

}  // namespace

std::optional<MoveRefusal> Document::refusal_of_move(const Workbook& book, const Sheet& sheet,
                                                     const Move& move) const {
  const SheetPart& its = part_of(sheet);
  const Grid& grid = book.limits.grid;
  MoveRefusal refusal;
  if (inserts(move)) {
    const Part* const shown =
        parts_.named_by(package::child(its.tree->root(), Family::Main, "drawing"), its.part).part;
    const int size = move.axis == Axis::kRows ? grid.rows : grid.columns;
    const int limit = std::max(move.at, size - move.count);
    refusal.place = -1;
    for (const RelatedPart& one : related_parts(parts_, its.part, "drawing")) {
      try {
        const auto tree = package::XmlTree::parse(parts_.read(*one.part), one.part->name);
        const auto place = last_carried(
            tree.root(), one.part == shown ? its.pictures : PlacedPictures(), move.axis, limit);
        refusal.place = std::max(refusal.place, place);
      } catch (const FileError&) {
        continue;
      }
    }
    if (refusal.place >= 0) return refusal;
  }
  for (const CellRange& cells : pivot_tables(book, sheet)) {
    if (!cuts(along(cells, move.axis), move)) continue;
    refusal.kind = MoveRefusal::Kind::kPivotTable;
    return refusal;
  }
  for (const TablePart& table : tables_of(book, its))
    if (auto of_table = refusal_of_table(table, move)) return of_table;
  return std::nullopt;
}

// All that is new of one move.
class Document::Moving final : public CarriedMove {
 public:
  Moving(Document& document, Workbook& book, Sheet& sheet, const Move& move)
      : document_(document),
        parts_(document.parts_),
        book_(book),
        sheet_(sheet),
        its_(document.sheets_.at(&sheet)),
        move_(move),
        grid_(book.limits.grid) {}

  void prepare();
  void apply() noexcept override;

 private:
  void prepare_tables();
  void prepare_tree(const FormulaEdit& change);
  void write_tables(const FormulaEdit& change);
  void prepare_notes();
  void prepare_legacy_drawing(const FormulaEdit& change);
  void prepare_drawings(const FormulaEdit& change);
  void prepare_pivot_tables();
  void prepare_mapped_cells();
  void note_formulas_of(const TablePart& table, const std::vector<bool>& gone);

  Document& document_;
  Parts& parts_;
  Workbook& book_;
  Sheet& sheet_;
  SheetPart& its_;
  const Move move_;
  const Grid grid_;
  CarriedEdits edits_;
  std::shared_ptr<TableEdits> table_edits_ = std::make_shared<TableEdits>();
  std::vector<TablePart> tables_;         // those that stay
  std::set<std::string> removed_tables_;  // ids of relationships
  std::set<const Part*> own_parts_;       // of the sheet: what they are is known here
  std::map<CellAddress, Header> headers_;
};

void Document::Moving::prepare() {
  for (const std::string& damage : {sheet_.comments_damage, its_.links_damage})
    if (!damage.empty()) throw FileError(damage);
  headers_ = document_.odd_headers(book_, sheet_);
  for (const std::string_view kind : {"table", "drawing", "vmlDrawing"})
    for (const RelatedPart& one : related_parts(parts_, its_.part, kind))
      own_parts_.insert(one.part);
  prepare_tables();
  formula::Adjuster adjuster(move_, sheet_.name(), grid_);
  const FormulaEdit change = [&](const Sheet* on, std::string_view text) {
    auto made = adjuster.adjusted(text, on == &sheet_);
    if (table_edits_->empty()) return made;
    auto further = (*table_edits_)(made ? *made : text);
    return further ? further : made;
  };
  if (!table_edits_->empty())
    edit = [edits = table_edits_](std::string_view text) { return (*edits)(text); };
  edits_ = document_.collect_carried(book_, change, {nullptr, &sheet_, own_parts_});
  for (const std::string& id : removed_tables_)
    edits_.links.push_back(parts_.prepare_unrelate(its_.part, id));
  prepare_tree(change);
  write_tables(change);
  prepare_notes();
  prepare_legacy_drawing(change);
  prepare_drawings(change);
  prepare_pivot_tables();
  prepare_mapped_cells();
}

// Tables that go, and columns of others: they change formulas everywhere.
void Document::Moving::prepare_tables() {
  table_edits_->grid = grid_;
  for (const auto& [link, part] : table_parts(parts_, its_)) {
    auto table = read_table(parts_.read(*part), part->name, grid_);
    if (!table) continue;
    if (!moved_range(table->cells, move_, grid_)) {
      table_edits_->tables.push_back({table->name, {}});
      removed_tables_.insert(link->id);
      continue;
    }
    if (move_.axis == Axis::kColumns && !inserts(move_)) {
      std::vector<bool> gone;
      for (std::size_t i = 0; i < table->columns.size(); ++i)
        gone.push_back(is_removed(table->cells.column_first + static_cast<int>(i), move_));
      if (std::ranges::find(gone, true) != gone.end()) {
        table_edits_->columns.remove(table->name, table->columns, gone);
        note_formulas_of(*table, gone);
      }
    }
    tables_.push_back(*std::move(table));
  }
}

// Formulas inside of the table may mean its columns without its name.
void Document::Moving::note_formulas_of(const TablePart& table, const std::vector<bool>& gone) {
  formula::ColumnChanges own;
  own.remove({}, table.columns, gone);
  own.remove(table.name, table.columns, gone);
  auto changed = own_formulas(sheet_.contents(), table.cells, own, grid_);
  std::ranges::move(changed, std::back_inserter(formulas));
}

void Document::Moving::prepare_tree(const FormulaEdit& change) {
  package::XmlTree tree = its_.tree->copy();
  const pugi::xml_node root = tree.root();
  pugi::xml_node list = package::child(root, Family::Main, "tableParts");
  for (const pugi::xml_node table : package::children(list, Family::Main, "tablePart"))
    if (removed_tables_.contains(package::attribute(table, Family::Relationships, "id").value()))
      list.remove_child(table);
  if (!removed_tables_.empty()) {
    const auto left = package::children(list, Family::Main, "tablePart").size();
    if (left == 0) list.parent().remove_child(list);
    else if (list.attribute("count")) set_attribute(list, "count", std::to_string(left));
  }
  restate_rules(root, move_, grid_);
  TextEdits of_tree(&sheet_, change);
  collect_formulas(root, of_tree);
  of_tree.apply();
  move_elements(root, {sheet_.contents(), move_, grid_});
  tree.settle();
  edits_.add_tree(sheet_, std::move(tree));
}

void Document::Moving::write_tables(const FormulaEdit& change) {
  for (TablePart& table : tables_) {
    const Part& part = *parts_.find(table.part);
    const int first = table.cells.column_first;
    const bool widens = move_.axis == Axis::kColumns && inserts(move_) && first < move_.at &&
                        move_.at <= table.cells.column_last;
    const CellRange before = table.cells;
    const auto tree =
        package::XmlTree::parse(move_table(parts_.read(part), table, move_, grid_), table.part);
    TextEdits of_table(&sheet_, change);
    collect_table(tree.root(), of_table);
    if (table.cells != before || !of_table.empty()) {
      of_table.apply();
      edits_.add_part(part, tree.serialize());
    }
    if (!widens || !table.has_header()) continue;
    for (int column = move_.at; column < move_.at + move_.count; ++column) {
      const auto place = static_cast<std::size_t>(column - first);
      if (place < table.columns.size())
        texts.emplace_back(CellAddress{table.cells.row_first, column}, table.columns[place]);
    }
  }
}

void Document::Moving::prepare_notes() {
  for (const std::string_view kind : {"comments", "threadedComment"})
    for (const auto& [link, part] : related_parts(parts_, its_.part, kind))
      if (auto moved = move_comments(parts_.read(*part), part->name, move_))
        edits_.add_part(*part, *std::move(moved));
}

void Document::Moving::prepare_legacy_drawing(const FormulaEdit& change) {
  // Pictures of headers and footers have no place among the cells.
  const pugi::xml_node shown = package::child(its_.tree->root(), Family::Main, "legacyDrawing");
  const Part* part = parts_.named_by(shown, its_.part).part;
  if (!part) return;
  const std::string stored = parts_.read_text(*part);
  auto moved = move_notes_drawing(stored, move_, grid_);
  auto edited = edit_controls(moved ? *moved : stored, &sheet_, change);
  if (edited || moved) edits_.add_part(*part, *std::move(edited ? edited : moved));
}

void Document::Moving::prepare_drawings(const FormulaEdit& change) {
  const pugi::xml_node shown = package::child(its_.tree->root(), Family::Main, "drawing");
  for (const auto& [link, part] : related_parts(parts_, its_.part, "drawing")) {
    const auto tree = package::XmlTree::parse(parts_.read(*part), part->name);
    const std::string before = tree.serialize();
    TextEdits of_drawing(&sheet_, change);
    collect_drawing(tree.root(), of_drawing);
    of_drawing.apply();
    const bool is_shown = parts_.named_by(shown, its_.part).part == part;
    move_carried(tree.root(), is_shown ? its_.pictures : PlacedPictures(),
                 AnchorMove(sheet_.contents(), move_, grid_));
    std::string after = tree.serialize();
    if (after != before) edits_.add_part(*part, std::move(after));
  }
}

void Document::Moving::prepare_pivot_tables() {
  for (const auto& [link, part] : related_parts(parts_, its_.part, "pivotTable")) {
    const auto tree = package::XmlTree::parse(parts_.read(*part), part->name);
    const pugi::xml_node location = package::child(tree.root(), Family::Main, "location");
    const auto cells = formula::parse_range(location.attribute("ref").value(), grid_);
    const auto to = cells ? moved_range(*cells, move_, grid_) : std::nullopt;
    if (!cells || to == cells) continue;
    if (!to) {
      edits_.links.push_back(parts_.prepare_unrelate(its_.part, link->id));
      continue;
    }
    set_attribute(location, "ref", formula::print_range(*to));
    edits_.add_part(*part, tree.serialize());
  }
}

// Cells that belong to an element of an XML document each.
void Document::Moving::prepare_mapped_cells() {
  for (const auto& [link, part] : related_parts(parts_, its_.part, "tableSingleCells")) {
    const auto tree = package::XmlTree::parse(parts_.read(*part), part->name);
    pugi::xml_node root = tree.root();
    const std::string before = tree.serialize();
    for (pugi::xml_node cell : package::children(root, Family::Main, "singleXmlCell")) {
      const auto at = formula::parse_range(cell.attribute("r").value(), grid_);
      const auto to = at ? moved_range(*at, move_, grid_) : std::nullopt;
      if (to) set_attribute(cell, "r", formula::print_range(*to));
      else if (at) root.remove_child(cell);
    }
    std::string after = tree.serialize();
    if (package::children(root, Family::Main, "singleXmlCell").empty())
      edits_.links.push_back(parts_.prepare_unrelate(its_.part, link->id));
    else if (after != before) edits_.add_part(*part, std::move(after));
  }
}

void Document::Moving::apply() noexcept {
  edits_.apply(parts_, document_.sheets_);
  its_.tables = std::move(tables_);
  its_.pivot_tables.reset();
  its_.moved = true;
  move_keys(its_.comments, move_);
  its_.copied_headers.swap(headers_);
  move_keys(its_.copied_headers, move_);
}

std::unique_ptr<CarriedMove> Document::prepare_move(Workbook& book, Sheet& sheet,
                                                    const Move& move) {
  auto made = std::make_unique<Moving>(*this, book, sheet, move);
  made->prepare();
  return made;
}

}  // namespace engine::xlsx
