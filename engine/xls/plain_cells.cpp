#include "engine/xls/plain_cells.h"

#include <cmath>

#include "engine/package/little_endian.h"
#include "engine/xls/fields.h"
#include "engine/xls/records.h"

namespace engine::xls {

namespace {

using package::get16;
using package::get32;

// The number and the size of a record as one word.
constexpr std::uint32_t head(RecordId id, std::uint32_t size) { return id | size << 16; }

}  // namespace

PlainCells::PlainCells(const SheetContext& context, const RowFilter& filter, SheetContents& sheet)
    : context_(context),
      columns_(static_cast<std::size_t>(context.workbook.limits.grid.columns)),
      filter_(filter),
      keeps_all_(filter.keeps_all()),
      sheet_(sheet) {}

inline bool PlainCells::put(std::size_t row, std::size_t column, std::size_t style,
                            const Value& value) {
  if (value.kind == ValueKind::kNumber && !std::isfinite(value.number)) return false;
  if (!keeps_all_ && !filter_.keeps(static_cast<int>(row))) return true;
  if (column >= columns_) return false;
  if (!row_ || row_->number != row) row_ = &sheet_.cells.row_at(static_cast<int>(row));
  return sheet_.cells.append(*row_, SheetContents::make_cell(static_cast<int>(column), value,
                                                             context_.globals.format(style)));
}

std::size_t PlainCells::read(std::string_view records, std::size_t end) {
  std::size_t at = 0;
  while (at < end && records.size() - at >= kRoom) {
    const std::string_view record = records.substr(at);
    const std::uint32_t its_head = get32(record, 0);
    Value value;
    bool is_cell = true;
    bool is_read = false;
    switch (its_head) {
      case head(kNumber, 14):
        value = Value::of_number(package::get_double(record, 10));
        break;
      case head(kRk, 10):
        value = Value::of_number(decode_rk(get32(record, 10)));
        break;
      case head(kTextCell, 10):
        value = Value::of_text(get32(record, 10));
        is_cell = value.text() < context_.texts;
        break;
      case head(kBlank, 6):
        break;
      case head(kBooleanOrError, 8):
        value = Value::of_boolean(record[10] != 0);
        is_cell = record[11] == 0;
        break;
      default:
        is_cell = false;
        is_read = read_other(record);
    }
    if (is_cell) is_read = put(get16(record, 4), get16(record, 6), get16(record, 8), value);
    if (!is_read) break;
    last_ = at;
    at += kRecordHead + (its_head >> 16);
  }
  return at;
}

bool PlainCells::read_other(std::string_view records) {
  const std::string_view record = records.substr(0, kRecordHead + get16(records, 2));
  if (record.size() < kRecordHead + get16(records, 2)) return false;
  switch (get16(record, 0)) {
    case kMulRk:
      return read_numbers(record);
    case kMulBlank:
      return read_blanks(record);
    case kRow:
      return record.size() == kRecordHead + 16 && says_nothing(record);
    default:
      return get16(record, 0) == kDbCell;
  }
}

bool PlainCells::says_nothing(std::string_view row) const {
  constexpr unsigned kSayings =
      kRowLevel | kRowCollapsed | kRowHidden | kRowCustomHeight | kRowHasFormat;
  const unsigned height = get16(row, 10);
  return !sheet_.hides_rows && (get16(row, 16) & kSayings) == 0 &&
         (get16(row, 18) & kRowDetails) == 0 &&
         ((height & kRowUsualHeight) != 0 || height / 20.0 == sheet_.default_row_height);
}

// Neighbours of a row.
bool PlainCells::read_numbers(std::string_view record) {
  constexpr std::size_t kEntry = 6;
  if (record.size() < kRecordHead + kEntry) return false;
  std::size_t column = get16(record, 6);
  for (std::size_t at = 8; at + kEntry + 2 <= record.size(); at += kEntry)
    if (!put(get16(record, 4), column++, get16(record, at),
             Value::of_number(decode_rk(get32(record, at + 2)))))
      return false;
  return true;
}

bool PlainCells::read_blanks(std::string_view record) {
  if (record.size() < kRecordHead + 6) return false;
  std::size_t column = get16(record, 6);
  for (std::size_t at = 8; at + 4 <= record.size(); at += 2)
    if (!put(get16(record, 4), column++, get16(record, at), {})) return false;
  return true;
}

}  // namespace engine::xls
