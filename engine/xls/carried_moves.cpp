#include "engine/xls/carried_moves.h"

#include <algorithm>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "engine/formula/adjust.h"
#include "engine/workbook/cell_ranges.h"
#include "engine/xls/condition_moves.h"
#include "engine/xls/fields.h"
#include "engine/xls/pivot_sources.h"
#include "engine/xls/range_fields.h"
#include "engine/xls/token_moves.h"

namespace engine::xls {

namespace {

using package::get16;

// The records of a substream after a move.
class SubstreamMove {
 public:
  SubstreamMove(const LoadedFile& file, const SheetPart& part, bool own_sheet,
                const formula::Move& move, const Grid& grid,
                const std::function<bool(std::uint16_t)>& means_sheet)
      : file_(file),
        part_(part),
        grid_(grid),
        tokens_{move, grid, own_sheet, means_sheet, {}, {}},
        conditions_(move, grid, own_sheet, means_sheet) {}

  // Nothing when all stays.
  std::optional<RecordEdits> edits(const std::vector<CarriedRecord>& records) {
    RecordEdits made = part_.edits;
    RecordReader reader(file_.stream, part_.begin, file_.globals.cipher);
    for (const CarriedRecord& record : records) {
      const auto known = made.find(record.offset);
      if (known != made.end() && !known->second) continue;
      std::string data;
      if (known != made.end()) {
        data = *known->second;
      } else {
        reader.go_to(record.offset);
        if (!reader.next() || reader.next_id() == kContinue) continue;
        data = reader.data();
      }
      std::optional<std::string> moved = data;
      move(record.id, moved);
      if (moved == data) continue;
      made[record.offset] = std::move(moved);
      changed_ = true;
    }
    return changed_ ? std::optional(std::move(made)) : std::nullopt;
  }

 private:
  void move(std::uint16_t id, std::optional<std::string>& data) {
    switch (id) {
      case kSelection:
        if (tokens_.own_sheet) move_selection(*data);
        break;
      case kPivotView:
        if (tokens_.own_sheet) move_pivot(*data);
        break;
      case kChartLink:
        move_chart_link(*data);
        break;
      default:
        conditions_.move(id, data);
        break;
    }
  }

  // A cell, and ranges of which the columns are bytes.
  void move_selection(std::string& data) {
    constexpr std::size_t kFixed = 9;
    constexpr std::size_t kEach = 6;
    if (data.size() < kFixed) return;
    const CellRange active{get16(data, 1), get16(data, 1), get16(data, 3), get16(data, 3)};
    const CellRange cell = moved_or_next(active);
    put16(&data[1], static_cast<std::uint32_t>(cell.row_first));
    put16(&data[3], static_cast<std::uint32_t>(cell.column_first));
    for (std::size_t at = kFixed; at + kEach <= data.size(); at += kEach) {
      const CellRange range{get16(data, at), get16(data, at + 2),
                            static_cast<unsigned char>(data[at + 4]),
                            static_cast<unsigned char>(data[at + 5])};
      const CellRange to = moved_or_next(range);
      put16(&data[at], static_cast<std::uint32_t>(to.row_first));
      put16(&data[at + 2], static_cast<std::uint32_t>(to.row_last));
      data[at + 4] = static_cast<char>(to.column_first);
      data[at + 5] = static_cast<char>(to.column_last);
    }
  }

  // In place of cells that are removed, those that come to stand there.
  CellRange moved_or_next(CellRange range) const {
    if (const auto to = moved_range(range, tokens_.move, grid_)) return *to;
    const bool rows = tokens_.move.axis == formula::Axis::kRows;
    const int at = std::min(tokens_.move.at, (rows ? grid_.rows : grid_.columns) - 1);
    (rows ? range.row_first : range.column_first) = at;
    (rows ? range.row_last : range.column_last) = at;
    return range;
  }

  // The table's cells, its first heading row and its first cells of data.
  void move_pivot(std::string& data) {
    constexpr std::size_t kPlaces = 14;
    if (data.size() < kPlaces) return;
    const CellRange cells = range_at(data, 0);
    const auto to = moved_range(cells, tokens_.move, grid_);
    if (!to) return;
    set_range(data, 0, *to);
    const auto shift = [&](std::size_t at, int by) {
      put16(&data[at], static_cast<std::uint32_t>(get16(data, at) + by));
    };
    shift(8, to->row_first - cells.row_first);
    shift(10, to->row_first - cells.row_first);
    shift(12, to->column_first - cells.column_first);
  }

  // Where its series has values or texts from.
  void move_chart_link(std::string& data) const {
    constexpr std::size_t kInFront = 6;
    const std::string old = data;
    Fields in(old);
    in.skip(kInFront);
    const std::size_t size = in.take16();
    move_next_tokens(data, in, std::min(size, in.rest().size()), tokens_);
  }

  const LoadedFile& file_;
  const SheetPart& part_;
  const Grid& grid_;
  const TokenMove tokens_;
  ConditionMoves conditions_;
  bool changed_ = false;
};

// The input cells of a data table, one or two, as its record has them behind its range.
std::string moved_inputs(std::string_view stored, const formula::Move& move, const Grid& grid) {
  constexpr std::size_t kSize = 10;
  constexpr unsigned kTwoInputs = 0x08;
  constexpr unsigned kLost = 0x10;  // the first one; the next bit is for the second
  constexpr std::uint32_t kNoCell = 0xFFFF;
  std::string made(stored);
  if (made.size() < kSize) return made;
  unsigned flags = get16(made, 0);
  const unsigned count = (flags & kTwoInputs) != 0 ? 2 : 1;
  for (unsigned i = 0; i < count; ++i) {
    if ((flags & kLost << i) != 0) continue;
    char* const place = &made[2 + 4 * i];
    const int row = get16(made, 2 + 4 * i);
    const int column = get16(made, 4 + 4 * i);
    const auto to = moved_range({row, row, column, column}, move, grid);
    if (!to) flags |= kLost << i;
    put16(put16(place, to ? static_cast<std::uint32_t>(to->row_first) : kNoCell),
          to ? static_cast<std::uint32_t>(to->column_first) : kNoCell);
  }
  put16(made.data(), flags);
  return made;
}

class EditsMove : public CarriedMove {
 public:
  void add(RecordEdits& of, RecordEdits edits) { all_.emplace_back(&of, std::move(edits)); }
  void set_own(SheetPart& part) { own_ = &part; }
  void add(DrawingPart& drawing, MovedDrawing moved) {
    drawing_ = &drawing;
    moved_ = std::move(moved);
  }
  void add_tables(Sheet& rows, const formula::Move& move, const Grid& grid) {
    const std::deque<CellExtra>& extras = rows.spare().extras();
    for (std::size_t i = 0; i < extras.size(); ++i)
      if (extras[i].form == FormulaForm::kDataTable)
        tables_.push_back({&rows, i, moved_inputs(extras[i].formula_details, move, grid)});
  }

  void apply() noexcept override {
    for (auto& [place, edits] : all_) place->swap(edits);
    for (Table& table : tables_)
      table.rows->change().extras()[table.extra].formula_details.swap(table.inputs);
    if (own_) own_->is_moved = true;
    if (!drawing_) return;
    drawing_->shapes.swap(moved_.shapes);
    drawing_->notes.swap(moved_.notes);
  }

 private:
  struct Table {
    Sheet* rows;
    std::size_t extra;
    std::string inputs;
  };

  std::vector<std::pair<RecordEdits*, RecordEdits>> all_;
  std::vector<Table> tables_;
  SheetPart* own_ = nullptr;        // of the sheet that is changed
  DrawingPart* drawing_ = nullptr;  // its drawing, if that moves
  MovedDrawing moved_;
};

}  // namespace

std::vector<CellRange> pivot_ranges(const LoadedFile& file, const Sheet& sheet) {
  std::vector<CellRange> ranges;
  const auto part = file.sheets.find(&sheet);
  if (part == file.sheets.end() || part->second.is_copy) return ranges;
  const auto records = file.carried().find(part->second.begin);
  if (records == file.carried().end()) return ranges;
  RecordReader reader(file.stream, part->second.begin, file.globals.cipher);
  for (const CarriedRecord& record : records->second) {
    if (record.id != kPivotView) continue;
    reader.go_to(record.offset);
    if (!reader.next()) continue;
    const auto edit = part->second.edits.find(record.offset);
    const std::string_view data =
        edit != part->second.edits.end() && edit->second ? *edit->second : reader.data();
    if (data.size() >= kRangeSize) ranges.push_back(range_at(data, 0));
  }
  return ranges;
}

std::unique_ptr<CarriedMove> move_carried(LoadedFile& file, const Workbook& book, Sheet& sheet,
                                          const formula::Move& move) {
  const Grid& grid = book.limits.grid;
  const LinkTable& links = file.globals.links;
  const auto means_sheet = [&](std::uint16_t number) {
    if (number >= links.entries.size()) return false;
    const LinkedSheets& entry = links.entries[number];
    return entry.book < links.books.size() &&
           links.books[entry.book].kind == LinkedBook::Kind::kOwn && entry.first == entry.last &&
           links.sheet(entry.first) == &sheet;
  };
  auto made = std::make_unique<EditsMove>();
  for (auto& [its, part] : file.sheets) {
    if (its == &sheet) made->set_own(part);
    if (its == &sheet && part.drawing.exists())
      made->add(part.drawing, moved(part.drawing, sheet.contents(), move, grid));
    const auto records = file.carried().find(part.begin);
    if (records == file.carried().end()) continue;
    SubstreamMove substream(file, part, its == &sheet, move, grid, means_sheet);
    if (auto edits = substream.edits(records->second)) made->add(part.edits, std::move(*edits));
  }
  formula::Adjuster adjuster(move, sheet.name(), grid);
  const auto adjusted = [&](const Sheet* /*sheet*/, std::string_view text) {
    return adjuster.adjusted(text, false);
  };
  if (auto edits = edited_sources(file, adjusted, grid)) made->add(file.edits, std::move(*edits));
  made->add_tables(sheet, move, grid);
  if (sheet.outside) made->add_tables(sheet.outside->rows, move, grid);
  return made;
}

}  // namespace engine::xls
