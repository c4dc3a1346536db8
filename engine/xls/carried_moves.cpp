#include "engine/xls/carried_moves.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

#include "engine/workbook/cell_ranges.h"
#include "engine/xls/fields.h"
#include "engine/xls/future_records.h"
#include "engine/xls/token_moves.h"

namespace engine::xls {

namespace {

using package::get16;

constexpr std::size_t kRange = 8;  // bytes of rows and columns, first and last of each

CellRange range_at(std::string_view data, std::size_t at) {
  return {get16(data, at), get16(data, at + 2), get16(data, at + 4), get16(data, at + 6)};
}

void set_range(std::string& data, std::size_t at, const CellRange& range) {
  std::size_t place = at;
  for (const int each : {range.row_first, range.row_last, range.column_first, range.column_last}) {
    put16(&data[place], static_cast<std::uint32_t>(each));
    place += 2;
  }
}

// The records of a substream after a move.
class SubstreamMove {
 public:
  SubstreamMove(const LoadedFile& file, const SheetPart& part, bool own_sheet,
                const formula::Move& move, const Grid& grid,
                std::function<bool(std::uint16_t)> means_sheet)
      : file_(file), part_(part), grid_(grid), tokens_{move,      grid,
                                                       own_sheet, std::move(means_sheet),
                                                       {},        {}} {}

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
      case kConditions:
        move_conditions(data, 0);
        break;
      case kLaterConditions:
        move_conditions(data, kFutureHead);
        break;
      case kCondition:
        move_condition(data);
        break;
      case kChartLink:
        move_formula(*data, 6, 8);
        break;
      default:
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

  // Conditions whose cells all go, go with them.
  void move_conditions(std::optional<std::string>& data, std::size_t head) {
    constexpr std::size_t kFixed = 14;
    gone_ = false;
    tokens_.before = tokens_.after = {};
    if (data->size() < head + kFixed) return;
    CellRanges ranges;
    for (std::size_t at = head + kFixed; at + kRange <= data->size(); at += kRange)
      ranges.insert(range_at(*data, at));
    if (ranges.empty()) return;
    tokens_.before = tokens_.after = corner_of(ranges);
    if (!tokens_.own_sheet) return;
    const CellRanges to = moved(ranges, tokens_.move, grid_);
    if (to.empty()) {
      gone_ = true;
      data.reset();
      return;
    }
    place_base(ranges, to);
    data->resize(head + kFixed);
    CellRange all = *to.begin();
    for (const CellRange& range : to) {
      all = {std::min(all.row_first, range.row_first), std::max(all.row_last, range.row_last),
             std::min(all.column_first, range.column_first),
             std::max(all.column_last, range.column_last)};
      data->append(kRange, '\0');
      set_range(*data, data->size() - kRange, range);
    }
    set_range(*data, head + 4, all);
    put16(&(*data)[head + 12], static_cast<std::uint32_t>(to.size()));
    if (head != 0) set_range(*data, 4, all);
  }

  // Relative references count from the first cell. Where that goes, they are told anew from the one
  // that is first then, by where it stood.
  void place_base(const CellRanges& ranges, const CellRanges& to) {
    tokens_.before = corner_of(ranges);
    tokens_.after = corner_of(to);
    const formula::Move& move = tokens_.move;
    const bool rows = move.axis == formula::Axis::kRows;
    int& place = rows ? tokens_.before.row : tokens_.before.column;
    place = rows ? tokens_.after.row : tokens_.after.column;
    if (place < move.at) return;
    if (move.kind == formula::Move::Kind::kRemove) place += move.count;
    else if (place >= move.at + move.count) place -= move.count;
  }

  // The formulas are the last of the record.
  void move_condition(std::optional<std::string>& data) {
    if (gone_) return data.reset();
    if (data->size() < 6) return;
    const std::size_t first = get16(*data, 2);
    const std::size_t second = get16(*data, 4);
    if (first + second > data->size() - 6) return;
    std::size_t at = data->size() - first - second;
    for (const std::size_t size : {first, second}) {
      std::string tokens = data->substr(at, size);
      move_tokens(tokens, tokens_);
      data->replace(at, size, tokens);
      at += size;
    }
  }

  void move_formula(std::string& data, std::size_t size_at, std::size_t at) const {
    if (data.size() < at) return;
    const std::size_t size = std::min<std::size_t>(get16(data, size_at), data.size() - at);
    std::string tokens = data.substr(at, size);
    move_tokens(tokens, tokens_);
    data.replace(at, size, tokens);
  }

  const LoadedFile& file_;
  const SheetPart& part_;
  const Grid& grid_;
  TokenMove tokens_;
  bool gone_ = false;  // the conditions in front have no cells any more
  bool changed_ = false;
};

class EditsMove : public CarriedMove {
 public:
  void add(SheetPart& part, RecordEdits edits) { all_.emplace_back(&part, std::move(edits)); }
  void set_own(SheetPart& part) { own_ = &part; }
  void add(DrawingPart& drawing, MovedDrawing moved) {
    drawing_ = &drawing;
    moved_ = std::move(moved);
  }

  void apply() noexcept override {
    for (auto& [part, edits] : all_) part->edits.swap(edits);
    if (own_) own_->is_moved = true;
    if (!drawing_) return;
    drawing_->shapes.swap(moved_.shapes);
    drawing_->notes.swap(moved_.notes);
  }

 private:
  std::vector<std::pair<SheetPart*, RecordEdits>> all_;
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
    if (data.size() >= kRange) ranges.push_back(range_at(data, 0));
  }
  return ranges;
}

std::unique_ptr<CarriedMove> move_carried(LoadedFile& file, const Workbook& book,
                                          const Sheet& sheet, const formula::Move& move) {
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
      made->add(part.drawing, moved(part.drawing, sheet.contents(), move, book.limits.grid));
    const auto records = file.carried().find(part.begin);
    if (records == file.carried().end()) continue;
    SubstreamMove substream(file, part, its == &sheet, move, book.limits.grid, means_sheet);
    if (auto edits = substream.edits(records->second)) made->add(part, std::move(*edits));
  }
  return made;
}

}  // namespace engine::xls
