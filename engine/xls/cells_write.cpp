#include "engine/xls/cells_write.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <tuple>

#include "engine/formula/reference.h"
#include "engine/package/little_endian.h"
#include "engine/xls/sheet_records.h"

namespace engine::xls {

namespace {

// Tokens that stand alone: a formula, or a table, that another cell has.
constexpr std::uint32_t kOfFormula = 1;
constexpr std::uint32_t kOfTable = 2;

constexpr std::uint32_t kShortInteger = 2;
constexpr std::uint32_t kHundredth = 1;

// The integer next to a value; nothing when it has more bits.
std::optional<std::int32_t> nearest_integer(double value) {
  constexpr double kLimit = (1 << 29) - 1;
  if (!(value >= -kLimit && value <= kLimit)) return std::nullopt;
  return static_cast<std::int32_t>(value < 0 ? value - 0.5 : value + 0.5);
}

}  // namespace

std::optional<std::uint32_t> short_number(double value) {
  constexpr std::uint64_t kCutBits = (std::uint64_t{1} << 34) - 1;
  const auto shifted = [](std::int32_t integer) {
    return static_cast<std::uint32_t>(integer) << 2;
  };
  const auto integer = nearest_integer(value);
  if (integer && *integer == value) return shifted(*integer) | kShortInteger;
  const auto bits = std::bit_cast<std::uint64_t>(value);
  if ((bits & kCutBits) == 0) return static_cast<std::uint32_t>(bits >> 32);
  const auto hundredfold = nearest_integer(value * 100);
  if (!hundredfold || *hundredfold / 100.0 != value) return std::nullopt;
  return shifted(*hundredfold) | kShortInteger | kHundredth;
}

CellsWriter::CellsWriter(RecordWriter& out, const BookWriting& book, const Sheet& sheet,
                         const StoredCells& stored)
    : out_(out),
      book_(book),
      sheet_(sheet),
      stored_(stored),
      contents_(&sheet.contents()),
      tokens_(book.links, book.book.limits.grid) {
  std::uint32_t block_end = 0;
  const auto count = [&](const SheetContents&, const Row& row) {
    if (block_count_ == 0) first_row_ = block_end = row.number;
    end_row_ = row.number + 1;
    if (row.number < block_end) return;
    ++block_count_;
    block_end += ((row.number - block_end) / kBlockRows + 1) * kBlockRows;
  };
  for_rows(0, static_cast<std::uint32_t>(book.book.limits.grid.rows), count);
  has_arrays_ = sheet.contents().has_extras() || !sheet.contents().arrays.empty() ||
                (stored.outside && (stored.outside->rows.contents().has_extras() ||
                                    !stored.outside->rows.contents().arrays.empty()));
}

template <class Visit>
void CellsWriter::for_rows(std::uint32_t first, std::uint32_t end, const Visit& visit) const {
  const auto visit_rows = [&](const SheetContents& contents, std::uint32_t from, std::uint32_t to) {
    if (from >= to) return;
    for (const Row& row : contents.cells.rows(from, to))
      if (is_written(contents, row)) visit(contents, row);
  };
  const SheetContents& loaded = sheet_.contents();
  if (!stored_.outside) return visit_rows(loaded, first, end);
  const SheetContents& others = stored_.outside->rows.contents();
  const auto loaded_first = static_cast<std::uint32_t>(sheet_.loaded_rows.row_first);
  const auto loaded_end = static_cast<std::uint32_t>(sheet_.loaded_rows.row_last) + 1;
  visit_rows(others, first, std::min(end, loaded_first));
  visit_rows(loaded, std::max(first, loaded_first), std::min(end, loaded_end));
  visit_rows(others, std::max(first, loaded_end), end);
}

bool CellsWriter::is_written(const SheetContents& contents, const Row& row) {
  const RowProperties* properties = contents.properties(row);
  return row.count != 0 || contents.hides_rows ||
         (properties != nullptr && *properties != RowProperties());
}

bool CellsWriter::used_range(CellRange* range) const {
  CellRange others;
  const bool any = sheet_.contents().cells.used_range(range);
  if (!stored_.outside || !stored_.outside->rows.contents().cells.used_range(&others)) return any;
  if (!any) {
    *range = others;
    return true;
  }
  range->row_first = std::min(range->row_first, others.row_first);
  range->row_last = std::max(range->row_last, others.row_last);
  range->column_first = std::min(range->column_first, others.column_first);
  range->column_last = std::max(range->column_last, others.column_last);
  return true;
}

std::vector<std::uint32_t> CellsWriter::write() {
  std::vector<std::uint32_t> places;
  std::vector<std::uint64_t> begins;
  for (std::uint32_t begin = first_row_; begin < end_row_; begin += kBlockRows) {
    const std::uint64_t block = out_.position();
    begins.clear();
    for_rows(begin, begin + kBlockRows, [&](const SheetContents& contents, const Row& row) {
      contents_ = &contents;
      write_row(row);
    });
    if (out_.position() == block) continue;
    // From the second row's record on, each place counts from the one before.
    constexpr std::size_t kRowRecord = 20;
    begins.push_back(block + kRowRecord);
    for_rows(begin, begin + kBlockRows, [&](const SheetContents& contents, const Row& row) {
      contents_ = &contents;
      begins.push_back(out_.position());
      write_cells(row);
    });
    const std::uint64_t place = out_.position();
    places.push_back(static_cast<std::uint32_t>(place));
    out_.begin(kDbCell);
    out_.put32(static_cast<std::uint32_t>(place - block));
    for (std::size_t i = 1; i < begins.size(); ++i)
      out_.put16(static_cast<std::uint32_t>(begins[i] - begins[i - 1]));
    out_.end();
  }
  return places;
}

void CellsWriter::write_row(const Row& row) {
  constexpr std::uint32_t kAlways = 0x100;
  const RowProperties* known = contents_->properties(row);
  const RowProperties& its = known ? *known : RowProperties();
  std::uint32_t flags = kAlways | its.outline_level;
  if (its.collapsed) flags |= kRowCollapsed;
  if (its.hidden) flags |= kRowHidden;
  if (its.custom_height) flags |= kRowCustomHeight;
  if (its.style) flags |= kRowHasFormat;
  const double height = its.height.value_or(contents_->default_row_height);
  char* at = out_.records();
  at = put32(at, kRow | 16U << 16);
  at = put16(at, row.number);
  at = put16(at, row.count == 0 ? 0U : row.cells[0].column);
  at = put16(at, row.count == 0 ? 0U : row.cells[row.count - 1].column + 1U);
  at = put16(at, static_cast<std::uint32_t>(std::lround(height * 20)));
  at = put32(at, 0);
  at = put16(at, flags);
  const auto details =
      its.details == 0
          ? 0U
          : static_cast<unsigned char>(contents_->row_details[its.details - 1].front());
  out_.end_at(put16(at, book_.styles.format(its.style.value_or(0)) | details << 12));
}

void CellsWriter::write_cells(const Row& row) {
  if (has_arrays_) return write_cells_of_arrays(row);
  for (std::size_t i = 0; i < row.count;) {
    switch (row.cells[i].kind) {
      case CellKind::kNumber:
        i = write_numbers(row, i);
        break;
      case CellKind::kBlank:
        i = write_blanks(row, i);
        break;
      default:
        write_cell(row, row.cells[i++]);
        break;
    }
  }
}

// Of a row where some may belong to arrays.
void CellsWriter::write_cells_of_arrays(const Row& row) {
  for (const Cell& cell : row.span()) {
    const CellRecord* const record = contents_->record(cell);
    const CellExtra* const extra = record ? contents_->extra(*record) : nullptr;
    const bool is_single = extra && extra->form != FormulaForm::kNormal;
    const CellRange* const array =
        is_single ? &extra->range : array_at({static_cast<int>(row.number), cell.column});
    if (array) write_array_cell(row, cell, *array);
    else write_cell(row, cell);
  }
}

char* CellsWriter::begin_cell(char* at, std::uint16_t id, std::uint32_t size, std::uint32_t row,
                              const Cell& cell) const {
  at = put32(at, id | (size + 6) << 16);
  at = put32(at, row | std::uint32_t{cell.column} << 16);
  return put16(at, book_.styles.format(cell.style));
}

// Neighbours have all but the first bytes of their records in common, so a record of several is one
// of a single number that goes on, with the last column behind.
std::size_t CellsWriter::write_numbers(const Row& row, std::size_t from) {
  const Cell& first = row.cells[from];
  char* const begin = out_.records();
  auto number = short_number(first.number);
  if (!number) {
    char* const at = begin_cell(begin, kNumber, 8, row.number, first);
    out_.end_at(put_double(at, first.number));
    return from + 1;
  }
  char* at = put32(begin_cell(begin, kRk, 4, row.number, first), *number);
  std::size_t next = from + 1;
  for (; next < row.count; ++next) {
    const Cell& cell = row.cells[next];
    if (cell.kind != CellKind::kNumber || cell.column != row.cells[next - 1].column + 1) break;
    number = short_number(cell.number);
    if (!number) break;
    at = put32(put16(at, book_.styles.format(cell.style)), *number);
  }
  if (next - from > 1) {
    at = put16(at, row.cells[next - 1].column);
    put32(begin, kMulRk | static_cast<std::uint32_t>(at - begin - 4) << 16);
  }
  out_.end_at(at);
  return next;
}

std::size_t CellsWriter::write_blanks(const Row& row, std::size_t from) {
  char* const begin = out_.records();
  char* at = begin_cell(begin, kBlank, 0, row.number, row.cells[from]);
  std::size_t next = from + 1;
  for (; next < row.count; ++next) {
    const Cell& cell = row.cells[next];
    if (cell.kind != CellKind::kBlank || cell.column != row.cells[next - 1].column + 1) break;
    at = put16(at, book_.styles.format(cell.style));
  }
  if (next - from > 1) {
    at = put16(at, row.cells[next - 1].column);
    put32(begin, kMulBlank | static_cast<std::uint32_t>(at - begin - 4) << 16);
  }
  out_.end_at(at);
  return next;
}

void CellsWriter::write_cell(const Row& row, const Cell& cell) {
  if (cell.kind == CellKind::kRecord) return write_record(row, cell);
  write_value(row.number, cell, value_of(cell));
}

void CellsWriter::write_value(std::uint32_t row, const Cell& cell, const Value& value) {
  char* const begin = out_.records();
  char* at = begin;
  switch (value.kind) {
    case ValueKind::kNone:
      at = begin_cell(at, kBlank, 0, row, cell);
      break;
    case ValueKind::kNumber:
      at = put_double(begin_cell(at, kNumber, 8, row, cell), value.number);
      break;
    case ValueKind::kText:
      at = put32(begin_cell(at, kTextCell, 4, row, cell), text_number(value.text()));
      break;
    case ValueKind::kBoolean:
      at = put16(begin_cell(at, kBooleanOrError, 2, row, cell), value.boolean() ? 1 : 0);
      break;
    case ValueKind::kError:
      at = put16(begin_cell(at, kBooleanOrError, 2, row, cell),
                 error_number(value.error(), row, cell) | 0x100);
      break;
  }
  out_.end_at(at);
}

void CellsWriter::write_record(const Row& row, const Cell& cell) {
  const CellRecord& record = *contents_->record(cell);
  const CellExtra* const extra = contents_->extra(record);
  if (record.has_formula()) write_formula(row, cell, record);
  else if (extra && !extra->formula_details.empty())
    write_unread_formula(row, cell, record, *extra);
  else write_value(row.number, cell, record.value);
}

void CellsWriter::write_formula(const Row& row, const Cell& cell, const CellRecord& record) {
  const CellAddress at{static_cast<int>(row.number), cell.column};
  const std::string_view text = contents_->formula(record, at, book_.book.limits.grid, moved_);
  std::string_view tokens;
  std::string_view behind;
  if (stored_.formulas) std::tie(tokens, behind) = stored_.formulas->find(at, text);
  if (tokens.empty())
    std::tie(tokens, behind) = tokens_of(row.number, cell, text, FormulaUse::kCell);
  put_formula(row.number, cell, record.value, tokens, behind);
  put_formula_text(record.value);
}

// Its tokens are what the file has, behind their size.
void CellsWriter::write_unread_formula(const Row& row, const Cell& cell, const CellRecord& record,
                                       const CellExtra& extra) {
  std::string_view tokens = extra.formula_details;
  const std::size_t size = package::get16(tokens, 0);
  tokens.remove_prefix(2);
  put_formula(row.number, cell, record.value, tokens.substr(0, size), tokens.substr(size));
  put_formula_text(record.value);
}

std::pair<std::string_view, std::string_view> CellsWriter::tokens_of(std::uint32_t row,
                                                                     const Cell& cell,
                                                                     std::string_view text,
                                                                     FormulaUse use) {
  if (!tokens_.write(text, {&sheet_, use})) fail(row, cell, tokens_.why_not());
  return {tokens_.tokens(), tokens_.behind()};
}

// The cells of an array name the first of them, whose formula stands behind it.
void CellsWriter::write_array_cell(const Row& row, const Cell& cell, const CellRange& array) {
  const CellAddress first{array.row_first, array.column_first};
  const CellRecord* const record = contents_->record(cell);
  const CellExtra* const extra = record ? contents_->extra(*record) : nullptr;
  const bool begins = extra && extra->form != FormulaForm::kNormal;
  if (begins && extra->form == FormulaForm::kDataTable) tables_.insert(first);
  std::string points;
  package::put_number(points, tables_.contains(first) ? kOfTable : kOfFormula, 1);
  package::put16(points, static_cast<std::uint32_t>(first.row));
  package::put16(points, static_cast<std::uint32_t>(first.column));
  const Value value = contents_->value(cell);
  put_formula(row.number, cell, value, points, {});
  if (begins) write_array(row, cell, *record, *extra);
  put_formula_text(value);
}

void CellsWriter::write_array(const Row& row, const Cell& cell, const CellRecord& record,
                              const CellExtra& extra) {
  const bool is_table = extra.form == FormulaForm::kDataTable;
  std::string tokens;
  if (is_table || record.formula.empty()) {
    tokens = extra.formula_details;
  } else {
    const auto [its, behind] = tokens_of(row.number, cell, record.formula, FormulaUse::kArray);
    package::put16(tokens, its.size());
    tokens.append(its).append(behind);
  }
  if (12 + tokens.size() > RecordWriter::kMaxData)
    fail(row.number, cell, "the formula has too many constants");
  out_.begin(is_table ? kDataTable : kArray);
  out_.put16(static_cast<std::uint32_t>(extra.range.row_first));
  out_.put16(static_cast<std::uint32_t>(extra.range.row_last));
  out_.put8(static_cast<std::uint32_t>(extra.range.column_first));
  out_.put8(static_cast<std::uint32_t>(extra.range.column_last));
  if (!is_table) {
    out_.put16(book_.options.calculate ? 1 : 0);
    out_.put32(0);
  }
  out_.put(tokens);
  out_.end();
}

// Also one that begins in rows outside of a partial load, or goes on there.
const CellRange* CellsWriter::array_at(CellAddress at) const {
  const CellRange* const found = contents_->arrays.find(at);
  if (found || !stored_.outside) return found;
  const SheetContents& others =
      contents_ == &sheet_.contents() ? stored_.outside->rows.contents() : sheet_.contents();
  return others.arrays.find(at);
}

// A value that is no number has its kind in the first byte and is marked in the last two. One that
// is not known is an empty text that programs calculate when they open the file.
void CellsWriter::put_formula(std::uint32_t row, const Cell& cell, const Value& value,
                              std::string_view tokens, std::string_view behind) {
  enum Kind : std::uint32_t { kText, kTruth, kFault, kNothing };
  constexpr std::uint32_t kNoNumber = 0xFFFF0000;
  const bool is_empty_text = value.kind == ValueKind::kText && text_of(value.text()).empty();
  out_.begin(kFormula);
  out_.put16(row);
  out_.put16(cell.column);
  out_.put16(book_.styles.format(cell.style));
  const auto put_other = [&](Kind kind, std::uint32_t number) {
    out_.put32(kind | number << 16);
    out_.put32(kNoNumber);
  };
  switch (value.kind) {
    case ValueKind::kNumber:
      out_.put_double(value.number);
      break;
    case ValueKind::kBoolean:
      put_other(kTruth, value.boolean() ? 1 : 0);
      break;
    case ValueKind::kError:
      put_other(kFault, error_number(value.error(), row, cell));
      break;
    case ValueKind::kText:
      put_other(is_empty_text ? kNothing : kText, 0);
      break;
    case ValueKind::kNone:
      put_other(kNothing, kValueUnknown);
      break;
  }
  const bool calculated = value.kind == ValueKind::kNone || book_.options.calculate;
  out_.put16(calculated ? 1 : 0);
  out_.put32(0);
  if (22 + tokens.size() + behind.size() > RecordWriter::kMaxData)
    fail(row, cell, "the formula has too many constants");
  out_.put16(static_cast<std::uint32_t>(tokens.size()));
  out_.put(tokens);
  out_.put(behind);
  out_.end();
}

void CellsWriter::put_formula_text(const Value& value) {
  const std::string_view shown =
      value.kind == ValueKind::kText ? text_of(value.text()) : std::string_view();
  if (shown.empty()) return;
  characters_.take(shown);
  out_.begin(kString);
  out_.put_long_text(characters_);
  out_.end();
}

const Workbook& CellsWriter::book_of_texts() const {
  return contents_ == &sheet_.contents() ? book_.book : stored_.outside->texts;
}

// Rows outside of a partial load have texts of their own behind those of the file.
std::uint32_t CellsWriter::text_number(std::uint32_t text) const {
  if (contents_ == &sheet_.contents() || text < book_.book.strings.count_from_file())
    return book_.texts.number(text);
  return book_.texts.number_of(text_of(text));
}

std::string_view CellsWriter::text_of(std::uint32_t text) const {
  const std::uint32_t own = book_.book.strings.count_from_file();
  if (contents_ == &sheet_.contents() || text < own) return book_.texts.text(text);
  return stored_.outside->texts.strings[text - own];
}

std::uint32_t CellsWriter::error_number(std::uint32_t error, std::uint32_t row,
                                        const Cell& cell) const {
  if (error < kNewError) return error;
  fail(row, cell,
       std::string(error_text(book_of_texts(), error)).append(" is no error of .xls files"));
}

void CellsWriter::fail(std::uint32_t row, const Cell& cell, std::string_view what) const {
  throw_unwritable(sheet_, formula::print_cell(static_cast<int>(row), cell.column), what);
}

}  // namespace engine::xls
