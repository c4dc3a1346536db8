#include "engine/xls/token_moves.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "engine/package/little_endian.h"
#include "engine/workbook/cell_ranges.h"
#include "engine/xls/record_writer.h"
#include "engine/xls/tokens.h"

namespace engine::xls {

namespace {

using package::get16;

constexpr unsigned kPlain = 0x20;  // tokens below have no class

// How many bytes stand behind a token; nothing for one that is not known, or cut.
std::optional<std::size_t> size_behind(std::string_view tokens, std::size_t at, unsigned token) {
  const auto byte = [&](std::size_t i) {
    return i < tokens.size() ? static_cast<unsigned char>(tokens[i]) : 0U;
  };
  switch (token) {
    case 0x01:
    case 0x02:
    case kNameToken:
    case kCell:
    case kLostCell:
    case kRelativeCell:
      return 4;
    case kText:
      return 2 + byte(at) * ((byte(at + 1) & 1) != 0 ? 2U : 1U);
    case kAttribute:
      if ((byte(at) & kChoose) == 0) return 3;
      return 3 + 2 * (byte(at + 1) + 256U * byte(at + 2) + 1);
    case kError:
    case kBoolean:
      return 1;
    case kInteger:
    case kCall:
    case kMemoryAreaRelative:
    case kMemoryNoneRelative:
    case kMemoryCall:
      return 2;
    case kVariableCall:
      return 3;
    case kFloat:
    case kArea:
    case kLostArea:
    case kRelativeArea:
      return 8;
    case kArrayConstant:
      return 7;
    case kMemoryArea:
    case kMemoryError:
    case kMemoryNone:
    case kForeignName:
    case kSheetCell:
    case kLostSheetCell:
      return 6;
    case kSheetArea:
    case kLostSheetArea:
      return 10;
    default:
      return token >= kFirstBinary && token <= kMissing ? std::optional<std::size_t>(0)
                                                        : std::nullopt;
  }
}

// One end of a reference, as its fields say.
class End {
 public:
  End(std::string& tokens, std::size_t row, std::size_t column, bool relative)
      : tokens_(tokens), row_at_(row), column_at_(column), relative_(relative) {}

  CellAddress cell(CellAddress from) const {
    CellAddress at{get16(tokens_, row_at_), get16(tokens_, column_at_) & 0xFF};
    if (!relative_) return at;
    if (row_is_relative()) at.row = (from.row + at.row) & 0xFFFF;
    if (column_is_relative()) at.column = (from.column + at.column) & 0xFF;
    return at;
  }

  void set(CellAddress at, CellAddress from) {
    if (relative_ && row_is_relative()) at.row -= from.row;
    if (relative_ && column_is_relative()) at.column -= from.column;
    const unsigned flags = get16(tokens_, column_at_) & 0xFF00U;
    put16(&tokens_[row_at_], static_cast<std::uint32_t>(at.row));
    put16(&tokens_[column_at_], (static_cast<std::uint32_t>(at.column) & 0xFF) | flags);
  }

 private:
  bool row_is_relative() const { return (get16(tokens_, column_at_) & 0x8000) != 0; }
  bool column_is_relative() const { return (get16(tokens_, column_at_) & 0x4000) != 0; }

  std::string& tokens_;
  const std::size_t row_at_;
  const std::size_t column_at_;
  const bool relative_;
};

// References to all rows or columns stay so.
std::optional<CellRange> moved_reference(const CellRange& range, const TokenMove& how) {
  const bool rows = how.move.axis == formula::Axis::kRows;
  const int first = rows ? range.row_first : range.column_first;
  const int last = rows ? range.row_last : range.column_last;
  if (first == 0 && last == (rows ? how.grid.rows : how.grid.columns) - 1) return range;
  return moved_range(range, how.move, how.grid);
}

// `at` is where the fields of the token begin.
void move_reference(std::string& tokens, std::size_t at, unsigned token, const TokenMove& how) {
  const bool has_sheet = token == kSheetCell || token == kSheetArea;
  const bool is_cell = token == kCell || token == kRelativeCell || token == kSheetCell;
  const bool relative = token == kRelativeCell || token == kRelativeArea;
  const bool moves = has_sheet ? how.means_sheet(get16(tokens, at)) : how.own_sheet;
  const std::size_t begin = has_sheet ? at + 2 : at;
  End first(tokens, begin, is_cell ? begin + 2 : begin + 4, relative);
  End last(tokens, is_cell ? begin : begin + 2, is_cell ? begin + 2 : begin + 6, relative);
  const CellAddress from = first.cell(how.before);
  const CellAddress to = last.cell(how.before);
  const auto [row_first, row_last] = std::minmax(from.row, to.row);
  const auto [column_first, column_last] = std::minmax(from.column, to.column);
  const CellRange range{row_first, row_last, column_first, column_last};
  const auto target = moves ? moved_reference(range, how) : range;
  if (!target) {
    // From a reference of any kind it is as far to the lost one of a cell as to that of an area.
    const auto distance = [](Token kept, Token lost) {
      return static_cast<int>(lost) - static_cast<int>(kept);
    };
    const int lost = has_sheet  ? distance(kSheetCell, kLostSheetCell)
                     : relative ? distance(kRelativeCell, kLostCell)
                                : distance(kCell, kLostCell);
    tokens[at - 1] = static_cast<char>(tokens[at - 1] + lost);
    return;
  }
  if (*target == range && how.before == how.after) return;
  first.set({target->row_first, target->column_first}, how.after);
  last.set({target->row_last, target->column_last}, how.after);
}

}  // namespace

void move_tokens(std::string& tokens, const TokenMove& how) {
  std::string moved = tokens;
  for (std::size_t at = 0; at < moved.size();) {
    const auto byte = static_cast<unsigned char>(moved[at++]);
    const unsigned token = byte < kPlain || byte >= 0x80 ? byte : (byte & 0x1F) | kPlain;
    const auto size = size_behind(moved, at, token);
    if (!size || at + *size > moved.size()) return;
    switch (token) {
      case kCell:
      case kArea:
      case kRelativeCell:
      case kRelativeArea:
      case kSheetCell:
      case kSheetArea:
        move_reference(moved, at, token, how);
        break;
      default:
        break;
    }
    at += *size;
  }
  tokens = std::move(moved);
}

}  // namespace engine::xls
