#include "engine/xls/cells_write.h"

#include <bit>
#include <cmath>

#include "engine/formula/reference.h"

namespace engine::xls {

namespace {

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

CellsWriter::CellsWriter(RecordWriter& out, const BookWriting& book, const Sheet& sheet)
    : out_(out),
      book_(book),
      sheet_(sheet),
      contents_(sheet.contents()),
      tokens_(book.links, book.book.limits.grid) {
  std::uint32_t block_end = 0;
  for (const Row& row : contents_.cells.rows()) {
    if (!is_written(row)) continue;
    if (block_count_ == 0) first_row_ = block_end = row.number;
    end_row_ = row.number + 1;
    if (row.number < block_end) continue;
    ++block_count_;
    block_end += ((row.number - block_end) / kBlockRows + 1) * kBlockRows;
  }
}

bool CellsWriter::is_written(const Row& row) const {
  const RowProperties* properties = contents_.properties(row);
  return row.count != 0 || contents_.hides_rows ||
         (properties != nullptr && *properties != RowProperties());
}

std::vector<std::uint32_t> CellsWriter::write() {
  std::vector<std::uint32_t> places;
  std::vector<std::uint64_t> begins;
  for (std::uint32_t begin = first_row_; begin < end_row_; begin += kBlockRows) {
    const auto rows = contents_.cells.rows(begin, begin + kBlockRows);
    const std::uint64_t block = out_.position();
    begins.clear();
    for (const Row& row : rows)
      if (is_written(row)) write_row(row);
    if (out_.position() == block) continue;
    // From the second row's record on, each place counts from the one before.
    constexpr std::size_t kRowRecord = 20;
    begins.push_back(block + kRowRecord);
    for (const Row& row : rows) {
      if (!is_written(row)) continue;
      begins.push_back(out_.position());
      write_cells(row);
    }
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
  constexpr std::uint32_t kCollapsed = 0x10;
  constexpr std::uint32_t kHidden = 0x20;
  constexpr std::uint32_t kCustomHeight = 0x40;
  constexpr std::uint32_t kHasFormat = 0x80;
  constexpr std::uint32_t kAlways = 0x100;
  const RowProperties* known = contents_.properties(row);
  const RowProperties& its = known ? *known : RowProperties();
  std::uint32_t flags = kAlways | its.outline_level;
  if (its.collapsed) flags |= kCollapsed;
  if (its.hidden) flags |= kHidden;
  if (its.custom_height) flags |= kCustomHeight;
  if (its.style) flags |= kHasFormat;
  const double height = its.height.value_or(contents_.default_row_height);
  char* at = out_.records();
  at = put32(at, kRow | 16U << 16);
  at = put16(at, row.number);
  at = put16(at, row.count == 0 ? 0U : row.cells[0].column);
  at = put16(at, row.count == 0 ? 0U : row.cells[row.count - 1].column + 1U);
  at = put16(at, static_cast<std::uint32_t>(std::lround(height * 20)));
  at = put32(at, 0);
  at = put16(at, flags);
  out_.end_at(put16(at, book_.styles.format(its.style.value_or(0))));
}

void CellsWriter::write_cells(const Row& row) {
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
      at = put32(begin_cell(at, kTextCell, 4, row, cell), book_.texts.number(value.text()));
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
  const CellRecord& record = *contents_.record(cell);
  if (record.has_formula()) write_formula(row, cell, record);
  else write_value(row.number, cell, record.value);
}

// A value that is no number has its kind in the first byte and is marked in the last two. One that
// is not known is an empty text that programs calculate when they open the file.
void CellsWriter::write_formula(const Row& row, const Cell& cell, const CellRecord& record) {
  enum Kind : std::uint32_t { kText, kTruth, kFault, kNothing };
  constexpr std::uint32_t kNoNumber = 0xFFFF0000;
  const CellAddress at{static_cast<int>(row.number), cell.column};
  const std::string_view text = contents_.formula(record, at, book_.book.limits.grid, moved_);
  if (!tokens_.write(text, {&sheet_, FormulaUse::kCell})) fail(row.number, cell, tokens_.why_not());
  const Value& value = record.value;
  const std::string_view shown =
      value.kind == ValueKind::kText ? book_.texts.text(value.text()) : std::string_view();
  const bool is_empty_text = value.kind == ValueKind::kText && shown.empty();
  out_.begin(kFormula);
  out_.put16(row.number);
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
      put_other(kFault, error_number(value.error(), row.number, cell));
      break;
    default:
      put_other(shown.empty() ? kNothing : kText, 0);
      break;
  }
  // An empty text that is to be calculated would read as none.
  const bool calculated =
      value.kind == ValueKind::kNone || (book_.options.calculate && !is_empty_text);
  out_.put16(calculated ? 1 : 0);
  out_.put32(0);
  const std::string& tokens = tokens_.tokens();
  const std::string& behind = tokens_.behind();
  if (22 + tokens.size() + behind.size() > RecordWriter::kMaxData)
    fail(row.number, cell, "the formula has too many constants");
  out_.put16(static_cast<std::uint32_t>(tokens.size()));
  out_.put(tokens);
  out_.put(behind);
  out_.end();
  if (shown.empty()) return;
  characters_.take(shown);
  out_.begin(kString);
  out_.put_long_text(characters_);
  out_.end();
}

std::uint32_t CellsWriter::error_number(std::uint32_t error, std::uint32_t row,
                                        const Cell& cell) const {
  if (error < kNewError) return error;
  fail(row, cell, std::string(error_text(book_.book, error)).append(" is no error of .xls files"));
}

void CellsWriter::fail(std::uint32_t row, const Cell& cell, std::string_view what) const {
  throw_unwritable(sheet_, formula::print_cell(static_cast<int>(row), cell.column), what);
}

}  // namespace engine::xls
