#include "engine/xls/sheet_reader.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "engine/package/file_error.h"
#include "engine/workbook/font_metrics.h"
#include "engine/xls/cell_errors.h"
#include "engine/xls/cells_ahead.h"
#include "engine/xls/fields.h"
#include "engine/xls/filters.h"
#include "engine/xls/plain_cells.h"
#include "engine/xls/records.h"
#include "engine/xls/sheet_records.h"
#include "engine/xls/tokens_read.h"

namespace engine::xls {

namespace {

using package::get16;
using package::get32;

// An expression and what stands behind it: constants of arrays.
struct Expression {
  std::string_view tokens;
  std::string_view behind;
};

Expression take_expression(Fields& in) {
  Expression made;
  const std::size_t size = in.take16();
  made.tokens = in.take(size);
  made.behind = in.rest();
  return made;
}

// An expression as it is kept for a save, behind its size.
std::string unread(const Expression& expression) {
  std::string kept;
  package::put16(kept, expression.tokens.size());
  return kept.append(expression.tokens).append(expression.behind);
}

// Whether an expression only names the cell where its formula stands, and which.
bool points_elsewhere(std::string_view tokens, CellAddress& to) {
  constexpr unsigned kOfFormula = 1;
  constexpr unsigned kOfTable = 2;
  Fields in(tokens);
  const unsigned token = in.take8();
  to.row = in.take16();
  to.column = in.take16();
  return in.ok() && in.at_end() && (token == kOfFormula || token == kOfTable);
}

// A formula whose later records, with its text say, have not come yet.
struct Pending {
  CellAddress at;
  std::uint32_t style = 0;
  Value value;
  bool awaits_text = false;
  std::optional<CellAddress> elsewhere;  // where its expression stands
  std::string formula;                   // else its text
  std::string raw;                       // or its expression, if there is no text for it
};

class SheetReader {
 public:
  SheetReader(RecordReader& reader, const SheetContext& context, const RowFilter& filter,
              SheetContents& contents, SheetFlags& flags)
      : reader_(reader),
        context_(context),
        grid_(context.workbook.limits.grid),
        filter_(filter),
        sheet_(contents),
        reading_(context, contents, flags),
        plain_(context, filter, contents),
        tokens_(context.globals.links, grid_) {}

  void read() {
    sheet_.digit_pixels = digit_pixels(context_.workbook.styles.font(0));
    if (!reader_.next() || reader_.id() != kBof) reader_.fail("no sheet begins here");
    for (bool more = true; more;) {
      if (pending_ && !belongs_to_formula(reader_.next_id())) store_pending();
      if (!pending_) read_plain_cells();
      if (!reader_.next()) reader_.fail("ends too early");
      more = reader_.id() != kEof;
      if (more) read_record();
    }
    resolve_waiting();
    finish_sheet_records(reading_);
  }

 private:
  // A group of cells that share a formula, found by the first of them.
  struct Shared {
    std::uint32_t number = 0;  // of the model's shared formula; 0: each cell has a text of its own
    bool has_text = false;
    CellRange range;
    std::string tokens;
    std::string behind;
  };

  // A cell whose expression stands at another one that has not come yet.
  struct Waiting {
    CellAddress at;
    CellAddress elsewhere;
  };

  static bool belongs_to_formula(std::uint16_t id) {
    return id == kString || id == kShared || id == kArray || id == kDataTable;
  }

  // Reads the plain cells that come next, if there are any.
  void read_plain_cells() {
    for (;;) {
      const std::string_view records = reader_.ahead();
      if (records.size() < PlainCells::kRoom || !is_plain_cell(get16(records, 0))) return;
      const std::uint64_t from = reader_.next_offset();
      begin_ahead(records, from);
      std::uint64_t end = from + records.size();
      if (ahead_) end = std::min(end, ahead_->claim(from));
      if (end == from) {
        take_ahead(from);
        continue;
      }
      const std::size_t passed = plain_.read(records, static_cast<std::size_t>(end - from));
      if (passed != 0) reader_.pass(from + plain_.last(), from + passed);
      if (from + passed < end) return;
    }
  }

  // Once, in front of the first of them: what rows are like is known by then.
  void begin_ahead(std::string_view records, std::uint64_t from) {
    if (std::exchange(ahead_was_begun_, true) || !filter_.keeps_all()) return;
    if (CellsAhead::pays(records.size())) ahead_.emplace(records, from, context_, sheet_);
  }

  void take_ahead(std::uint64_t from) {
    const auto taken = ahead_->take(from);
    // What rows are like that say nothing may have changed meanwhile.
    const bool counts = taken && taken->sheet.hides_rows == sheet_.hides_rows &&
                        taken->sheet.default_row_height == sheet_.default_row_height;
    if (counts) {
      sheet_.cells.take_cells(std::move(taken->sheet.cells),
                              [this](int row, const Cell& cell) { put(row, cell); });
      reader_.pass(taken->last, taken->end);
    }
    ahead_.reset();
  }

  void read_record() {
    if (reader_.id() != kFutureContinue) reading_.filter.goes_on = false;
    const std::string_view data = reader_.data();
    switch (reader_.id()) {
      case kNumber:
        need(14);
        return store_number(get16(data, 0), get16(data, 2), get16(data, 4),
                            package::get_double(data, 6));
      case kRk:
        need(10);
        return store_number(get16(data, 0), get16(data, 2), get16(data, 4),
                            decode_rk(get32(data, 6)));
      case kMulRk:
        return read_numbers(data);
      case kTextCell:
        return read_text_cell(data);
      case kBlank:
        need(6);
        return store(get16(data, 0), get16(data, 2), get16(data, 4), {});
      case kMulBlank:
        return read_blanks(data);
      case kBooleanOrError:
        return read_boolean_or_error(data);
      case kLabel:
      case kRichText:
        return read_label();
      case kFormula:
      case kFormulaOf3:
      case kFormulaOf4:
        return read_formula();
      case kString:
        return read_formula_text();
      case kShared:
        return read_shared();
      case kArray:
        return read_array();
      case kDataTable:
        return read_data_table();
      case kRow:
        return read_row(data);
      case kDrawing:
        return reading_.drawing.take_drawing(reader_);
      case kObject:
        return reading_.drawing.take_object(reader_);
      case kTextBox:
        return reading_.drawing.take_text(reader_);
      case kContinue:  // else goes with the record in front of it
        return reading_.drawing.take_continued(reader_);
      case kBof:
        return reading_.drawing.take_substream(reader_);
      // A person's own view of the sheet, which has records of the same kinds.
      case kUserViewBegin:
        return skip_user_view();
      default:
        return read_other();
    }
  }

  void read_other() {
    // It goes with the record in front of it.
    if (reader_.id() == kFutureContinue) return continue_filter(reader_.data(), reading_);
    const SheetRecord* known = find_sheet_record(reader_.id(), reader_.data());
    if (!known || !known->read || is_carried(*known)) return;
    reading_.record = reader_.offset();
    Fields in(reader_.whole_data());
    known->read(in, reading_);
  }

  // A book may be shown in several windows, of which the first one counts.
  bool is_carried(const SheetRecord& known) {
    std::uint64_t& others = reading_.flags.other_windows;
    if (known.group == SheetGroup::kWindow && std::exchange(has_window_, true))
      others = std::min(others, reader_.offset());
    return is_of_other_window(known.group, reader_.offset(), others);
  }

  void need(std::size_t size) {
    if (reader_.data().size() < size) reader_.fail("ends too early");
  }

  void store(int row, int column, std::size_t style, Value value) {
    if (!filter_.keeps(row)) return;
    put(row, SheetContents::make_cell(checked(column), value, context_.globals.format(style)));
  }
  void store_number(int row, int column, std::size_t style, double value) {
    store(row, column, style, number_value(value));
  }
  // What is no number at all shows as an error.
  Value number_value(double value) {
    constexpr std::uint8_t kNoNumber = 0x24;
    return std::isfinite(value) ? Value::of_number(value) : error_value(kNoNumber);
  }
  int checked(int column) {
    if (column >= grid_.columns) reader_.fail("a cell is beyond the last one");
    return column;
  }

  // A later cell of the same place is the one that counts.
  void put(int row, const Cell& cell) {
    if (!row_ || row_->number != static_cast<std::uint32_t>(row)) row_ = &sheet_.cells.row_at(row);
    Cell& place = sheet_.cells.at(*row_, cell.column);
    if (place.kind == CellKind::kRecord) sheet_.forget_record(place);
    place = cell;
  }

  void read_numbers(std::string_view data) {
    constexpr std::size_t kEntry = 6;
    need(kEntry);
    const int row = get16(data, 0);
    int column = get16(data, 2);
    for (std::size_t at = 4; at + kEntry + 2 <= data.size(); at += kEntry)
      store_number(row, column++, get16(data, at), decode_rk(get32(data, at + 2)));
  }

  void read_blanks(std::string_view data) {
    need(6);
    int column = get16(data, 2);
    for (std::size_t at = 4; at + 4 <= data.size(); at += 2)
      store(get16(data, 0), column++, get16(data, at), {});
  }

  void read_text_cell(std::string_view data) {
    need(10);
    const std::uint32_t text = get32(data, 6);
    if (text >= context_.texts)
      reader_.fail("text " + std::to_string(text) + " of " + std::to_string(context_.texts));
    store(get16(data, 0), get16(data, 2), get16(data, 4), Value::of_text(text));
  }

  void read_boolean_or_error(std::string_view data) {
    need(8);
    const auto value = static_cast<std::uint8_t>(data[6]);
    store(get16(data, 0), get16(data, 2), get16(data, 4),
          data[7] != 0 ? error_value(value) : Value::of_boolean(value != 0));
  }

  Value error_value(std::uint8_t number) {
    return Value::of_error(error_number(context_.workbook, cell_error_text(number)));
  }
  Value own_text(std::string_view text) {
    return Value::of_text(context_.first_text + context_.workbook.strings.add(text));
  }

  // A text that stands in its cell.
  void read_label() {
    need(9);
    Fields in(reader_.whole_data());
    const int row = in.take16();
    const int column = in.take16();
    const std::size_t style = in.take16();
    const std::string text = in.take_long_text();
    if (!in.ok()) reader_.fail("ends too early");
    if (filter_.keeps(row)) store(row, column, style, own_text(text));
  }

  // Formulas.

  void read_formula() {
    need(20);
    Fields in(reader_.whole_data());
    Pending& made = pending_.emplace();
    made.at.row = in.take16();
    made.at.column = in.take16();
    made.style = context_.globals.format(in.take16());
    checked(made.at.column);
    const std::string_view value = in.take(8);
    in.skip(6);
    const Expression expression = take_expression(in);
    if (!in.ok()) reader_.fail("ends too early");
    made.value = cached_value(value);
    made.awaits_text = made.value.kind == ValueKind::kText;
    CellAddress elsewhere;
    if (points_elsewhere(expression.tokens, elsewhere)) made.elsewhere = elsewhere;
    else if (filter_.keeps(made.at.row)) read_expression(expression, made.at, made);
  }

  // What is no number is marked by its last bytes, and its kind stands in the first one.
  Value cached_value(std::string_view bytes) {
    if (get16(bytes, 6) != 0xFFFF) return number_value(package::get_double(bytes, 0));
    const auto value = static_cast<std::uint8_t>(bytes[2]);
    switch (bytes[0]) {
      case 1:
        return Value::of_boolean(value != 0);
      case 2:
        return error_value(value);
      case 3:
        return get16(bytes, 2) == kValueUnknown ? Value() : own_text("");
      default:
        return own_text("");
    }
  }

  void read_expression(const Expression& expression, CellAddress at, Pending& to) {
    if (tokens_.read(expression.tokens, expression.behind, {&context_.sheet, at}))
      to.formula = tokens_.text();
    else to.raw = unread(expression);
  }

  void read_formula_text() {
    if (!pending_ || !pending_->awaits_text) return;
    ContinuedData in(reader_);
    const std::size_t length = in.take16();
    std::string text;
    if (length != 0) {
      const bool wide = (in.take8() & 1) != 0;
      in.take_characters(length, wide, text);
    }
    if (filter_.keeps(pending_->at.row)) pending_->value = own_text(text);
    pending_->awaits_text = false;
  }

  // The range in front of an expression.
  CellRange take_range(Fields& in) {
    CellRange range;
    range.row_first = in.take16();
    range.row_last = in.take16();
    range.column_first = in.take8();
    range.column_last = in.take8();
    if (!in.ok() || range.row_first > range.row_last || range.column_first > range.column_last)
      reader_.fail("the range is none");
    return range;
  }

  // Where the cells of a group say that its expression stands: at the one it follows.
  CellAddress anchor(const CellRange& range) const {
    if (pending_) return pending_->elsewhere.value_or(pending_->at);
    return {range.row_first, range.column_first};
  }

  void read_shared() {
    Fields in(reader_.whole_data());
    Shared made;
    made.range = take_range(in);
    in.skip(2);
    const Expression expression = take_expression(in);
    if (!in.ok()) reader_.fail("ends too early");
    made.tokens = expression.tokens;
    made.behind = expression.behind;
    const CellAddress first{made.range.row_first, made.range.column_first};
    if (tokens_.read(made.tokens, made.behind, {&context_.sheet, first})) {
      // References that some cell has wrapped around the sheet's end differ in more than distance.
      made.has_text = true;
      const CellAddress furthest = tokens_.furthest();
      if (grid_.holds(furthest.row + made.range.row_last - first.row,
                      furthest.column + made.range.column_last - first.column)) {
        sheet_.shared_formulas.push_back({tokens_.text(), first, {}});
        made.number = static_cast<std::uint32_t>(sheet_.shared_formulas.size());
      }
    }
    shared_.insert_or_assign(anchor(made.range), std::move(made));
  }

  void read_array() {
    Fields in(reader_.whole_data());
    const CellRange range = take_range(in);
    in.skip(6);
    const Expression expression = take_expression(in);
    if (!in.ok()) reader_.fail("ends too early");
    const CellAddress first{range.row_first, range.column_first};
    const bool has_text =
        tokens_.read(expression.tokens, expression.behind, {&context_.sheet, first});
    std::string raw;
    if (!has_text) raw = unread(expression);
    take_array(range, FormulaForm::kArray, has_text ? tokens_.text() : std::string(), raw);
  }

  void read_data_table() {
    Fields in(reader_.whole_data());
    const CellRange range = take_range(in);
    take_array(range, FormulaForm::kDataTable, {}, std::string(in.rest()));
  }

  // The first cell of the range has the formula, the others values.
  void take_array(const CellRange& range, FormulaForm form, const std::string& formula,
                  const std::string& raw) {
    const bool first_kept = filter_.keeps(range.row_first);
    const bool reaches_in = first_kept || (!filter_.others && range.row_first <= filter_.last &&
                                           range.row_last >= filter_.first);
    arrays_.insert(anchor(range));
    if (!reaches_in) return;
    const bool many = range.row_first != range.row_last || range.column_first != range.column_last;
    if (many) sheet_.arrays.add(range);
    CellRecord record;
    record.formula = sheet_.keep_text(formula);
    if (!first_kept) {
      if (many && form == FormulaForm::kArray)
        sheet_.outer_arrays[{range.row_first, range.column_first}] = sheet_.keep_record(record);
      return;
    }
    CellExtra extra;
    extra.form = form;
    extra.range = range;
    extra.formula_details = raw;
    if (!pending_) return;
    array_ = std::pair{record, std::move(extra)};
  }

  // Stores a formula once all its records have come.
  void store_pending() {
    const Pending made = *std::exchange(pending_, std::nullopt);
    auto array = std::exchange(array_, std::nullopt);
    if (!filter_.keeps(made.at.row)) return;
    const bool is_first = array && array->second.range.row_first == made.at.row &&
                          array->second.range.column_first == made.at.column;
    if (is_first) {
      CellRecord record = array->first;
      record.value = made.value;
      record.extra = sheet_.keep_extra(std::move(array->second));
      return put_record(made, record);
    }
    CellRecord record;
    record.value = made.value;
    if (!made.elsewhere) {
      record.formula = sheet_.keep_text(made.formula);
      if (!made.raw.empty()) {
        CellExtra extra;
        extra.formula_details = made.raw;
        record.extra = sheet_.keep_extra(std::move(extra));
      }
      return put_record(made, record);
    }
    if (arrays_.contains(*made.elsewhere))
      return put(made.at.row, SheetContents::make_cell(made.at.column, made.value, made.style));
    const auto group = shared_.find(*made.elsewhere);
    if (group == shared_.end()) waiting_.push_back({made.at, *made.elsewhere});
    else share(group->second, made.at, record);
    put_record(made, record);
  }

  void put_record(const Pending& made, const CellRecord& record) {
    Cell cell;
    cell.bits = sheet_.keep_record(record);
    cell.style = made.style;
    cell.column = static_cast<std::uint16_t>(made.at.column);
    cell.kind = CellKind::kRecord;
    put(made.at.row, cell);
  }

  // Cells that only name a long expression would make more of it than the file can pay for.
  void share(const Shared& group, CellAddress at, CellRecord& record) {
    constexpr std::size_t kMaxExpanded = std::size_t{1} << 26;
    if (!group.has_text) return;
    if (group.number != 0 && group.range.contains(at.row, at.column)) record.shared = group.number;
    if (record.shared != 0) return;
    if (expanded_ > kMaxExpanded) reader_.fail("the shared formulas are too long");
    if (tokens_.read(group.tokens, group.behind, {&context_.sheet, at}))
      record.formula = sheet_.keep_text(tokens_.text());
    expanded_ += group.tokens.size() + record.formula.size();
  }

  // Files may name a group that comes later, or none: then the value is all there is.
  void resolve_waiting() {
    for (const auto& [at, elsewhere] : waiting_) {
      const Cell* cell = sheet_.cells.find(at.row, at.column);
      CellRecord* its = cell ? sheet_.record(*cell) : nullptr;
      const auto group = shared_.find(elsewhere);
      if (!its || its->has_formula() || group == shared_.end()) continue;
      CellRecord shared;
      share(group->second, at, shared);
      its->shared = shared.shared;
      if (!shared.formula.empty()) sheet_.set_formula(*its, shared.formula);
    }
  }

  void read_row(std::string_view data) {
    need(16);
    const int row = get16(data, 0);
    const bool is_kept = filter_.keeps(row);
    if (!is_kept && !filter_.sizes) return;
    const unsigned height = get16(data, 6);
    const unsigned flags = get16(data, 12);
    RowProperties its;
    its.custom_height = (flags & kRowCustomHeight) != 0;
    const double points = (height & ~kRowUsualHeight) / 20.0;
    const bool usual = (height & kRowUsualHeight) != 0 || points == sheet_.default_row_height;
    if (its.custom_height || !usual) its.height = points;
    its.hidden = (flags & kRowHidden) != 0;
    if (is_kept) {
      its.collapsed = (flags & kRowCollapsed) != 0;
      its.outline_level = static_cast<std::uint8_t>(flags & kRowLevel);
      const unsigned format = get16(data, 14);
      if ((flags & kRowHasFormat) != 0) its.style = context_.globals.format(format & 0xFFFU);
      its.details = row_details((format & kRowDetails) >> 12);
    }
    // Where rows are hidden, those that are not are told of by standing here.
    if (its == RowProperties() && !sheet_.hides_rows) return;
    row_ = &sheet_.cells.row_at(row);
    if (row_->properties == 0) {
      sheet_.row_properties.emplace_back();
      row_->properties = static_cast<std::uint32_t>(sheet_.row_properties.size());
    }
    sheet_.row_properties[row_->properties - 1] = its;
  }

  // Lines and readings that make a row higher; 0 for none of these.
  std::uint32_t row_details(unsigned bits) {
    if (bits == 0) return 0;
    std::uint32_t& number = row_details_[bits];
    if (number == 0) {
      sheet_.row_details.emplace_back(1, static_cast<char>(bits));
      number = static_cast<std::uint32_t>(sheet_.row_details.size());
    }
    return number;
  }

  void skip_user_view() {
    while (reader_.id() != kUserViewEnd && reader_.next_id() != kEof && reader_.next()) {
    }
  }

  RecordReader& reader_;
  const SheetContext& context_;
  const Grid grid_;
  const RowFilter filter_;
  SheetContents& sheet_;
  SheetReading reading_;
  PlainCells plain_;
  std::optional<CellsAhead> ahead_;
  bool ahead_was_begun_ = false;
  bool has_window_ = false;
  TokenReader tokens_;
  Row* row_ = nullptr;  // met last
  std::optional<Pending> pending_;
  std::optional<std::pair<CellRecord, CellExtra>> array_;  // that the pending formula begins
  std::map<CellAddress, Shared> shared_;
  std::set<CellAddress> arrays_;  // where cells of arrays say that the formula stands
  std::vector<Waiting> waiting_;
  std::array<std::uint32_t, (kRowDetails >> 12) + 1> row_details_{};  // their numbers in the model
  std::size_t expanded_ = 0;  // bytes of expressions that were read for one cell more, and of texts
};

}  // namespace

void read_sheet(RecordReader& reader, const SheetContext& context, const RowFilter& filter,
                SheetContents& contents, SheetFlags& flags) {
  SheetReader(reader, context, filter, contents, flags).read();
}

}  // namespace engine::xls
