#include "engine/xls/older_tokens.h"

#include <algorithm>
#include <array>

#include "engine/xls/tokens.h"

namespace engine::xls {

namespace {

// The whole expression, where it only names the cell where it stands.
constexpr unsigned kOfFormula = 1;
constexpr unsigned kOfTable = 2;

constexpr unsigned kRowBits = 0x3FFF;
constexpr unsigned kRowRelative = 0x8000;
constexpr unsigned kRelative = 0xC000;  // the row's bit and the column's
constexpr unsigned kLastRow = 0xFFFF;

constexpr std::size_t kUnusedOfSheet = 8;
constexpr std::size_t kUnusedOfName = 12;

void copy(Fields& in, std::size_t size, std::string& out) { out += in.take(size); }

}  // namespace

bool OlderTokens::take(std::string_view tokens, std::string_view behind, const OlderList& list) {
  size_ = tokens.size();
  tokens_.clear();
  constants_.clear();
  places_.clear();
  distances_.clear();
  Fields in(tokens);
  Fields constants(behind);
  bool is_good = true;
  while (is_good && !in.at_end()) {
    places_.emplace_back(place(in), tokens_.size());
    is_good = take_token(in, constants, list) && in.ok() && constants.ok();
  }
  places_.emplace_back(size_, tokens_.size());
  is_good = is_good && settle() && tokens_.size() <= UINT16_MAX;
  if (!is_good) tokens_.clear();
  if (!is_good) constants_.clear();
  expression_.clear();
  package::put16(expression_, tokens_.size());
  expression_ += tokens_;
  expression_ += constants_;
  return is_good;
}

bool OlderTokens::take_token(Fields& in, Fields& constants, const OlderList& list) {
  const unsigned byte = in.take8();
  const unsigned token = byte < 0x20 || byte >= 0x80 ? byte : (byte & 0x1F) | 0x20;
  const unsigned its_class = byte - token;
  put8(byte);
  if (token >= kFirstBinary && token <= kMissing) return true;
  switch (token) {
    case kOfFormula:
    case kOfTable:
      copy(in, 4, tokens_);
      return true;
    case kText:
      tokens_ += texts_.short_text(in.take(in.take8()));
      return true;
    case kAttribute:
      take_attribute(in);
      return true;
    case kError:
    case kBoolean:
      copy(in, 1, tokens_);
      return true;
    case kInteger:
    case kCall:
      copy(in, 2, tokens_);
      return true;
    case kFloat:
      copy(in, 8, tokens_);
      return true;
    case kVariableCall:
      copy(in, 3, tokens_);
      return true;
    case kArrayConstant:
      copy(in, 7, tokens_);
      take_array(constants);
      return true;
    case kNameToken:
      put16(in.take16());
      put16(0);
      in.skip(kUnusedOfName);
      return true;
    case kForeignName: {
      const auto number = static_cast<std::int16_t>(in.take16());
      in.skip(kUnusedOfSheet);
      std::uint16_t name = in.take16();
      in.skip(kUnusedOfName);
      put16(links_.name(list, number, name));
      put16(name);
      put16(0);
      return true;
    }
    case kCell:
    case kLostCell:
    case kRelativeCell:
      put_cells(1, token == kRelativeCell, in);
      return true;
    case kArea:
    case kLostArea:
    case kRelativeArea:
      put_cells(2, token == kRelativeArea, in);
      return true;
    case kSheetCell:
    case kLostSheetCell:
    case kSheetArea:
    case kLostSheetArea: {
      const auto number = static_cast<std::int16_t>(in.take16());
      in.skip(kUnusedOfSheet);
      const unsigned first = in.take16();
      const unsigned last = in.take16();
      put16(links_.sheets(list, number, first, last));
      put_cells(token == kSheetCell || token == kLostSheetCell ? 1 : 2, list.is_of_names(), in);
      return true;
    }
    case kMemoryArea:
    case kMemoryError:
    case kMemoryNone: {
      copy(in, 4, tokens_);
      const std::size_t size = in.take16();
      take_distance(place(in) + size, tokens_.size() + 2);
      if (token == kMemoryArea) take_areas(constants);
      return true;
    }
    case kMemoryAreaRelative:
    case kMemoryNoneRelative:
    case kMemoryCall: {
      tokens_.back() = static_cast<char>(kMemoryCall + its_class);
      const std::size_t size = in.take16();
      take_distance(place(in) + size, tokens_.size() + 2);
      return true;
    }
    default:
      return false;
  }
}

void OlderTokens::take_attribute(Fields& in) {
  const unsigned flags = in.take8();
  const unsigned field = in.take16();
  put8(flags);
  if ((flags & kChoose) != 0) {
    put16(field);
    const std::size_t table = place(in);
    const std::size_t from = tokens_.size();
    for (unsigned left = field + 1; left > 0 && in.ok(); --left)
      take_distance(table + in.take16(), from);
  } else if ((flags & kIf) != 0) {
    take_distance(place(in) + field, tokens_.size() + 2);
  } else if ((flags & kSkip) != 0) {
    take_distance(place(in) + field + 1, tokens_.size() + 2, 1);
  } else {
    put16(field);
  }
}

void OlderTokens::take_distance(std::size_t to, std::size_t from, std::size_t less) {
  distances_.push_back({tokens_.size(), from, to, less});
  put16(0);
}

bool OlderTokens::settle() {
  for (const auto& [at, from, to, less] : distances_) {
    const auto found =
        std::ranges::lower_bound(places_, to, {}, &std::pair<std::size_t, std::size_t>::first);
    if (found == places_.end() || found->first != to || found->second < from + less) return false;
    const std::size_t distance = found->second - from - less;
    tokens_[at] = static_cast<char>(distance);
    tokens_[at + 1] = static_cast<char>(distance >> 8);
  }
  return true;
}

// Rows of one cell or of the first and the last one, then their columns. Distances have a sign. An
// area of all rows has all of them again.
void OlderTokens::put_cells(std::size_t count, bool is_relative, Fields& in) {
  std::array<unsigned, 2> rows{};
  std::array<unsigned, 2> flags{};
  for (std::size_t i = 0; i < count; ++i) {
    const unsigned row = in.take16();
    flags[i] = row & kRelative;
    rows[i] = row & kRowBits;
    const bool is_distance = is_relative && (row & kRowRelative) != 0;
    if (is_distance && rows[i] > kRowBits / 2) rows[i] |= ~kRowBits & kLastRow;
  }
  if (count == 2 && rows[0] == 0 && rows[1] == kRowBits) rows[1] = kLastRow;
  for (std::size_t i = 0; i < count; ++i) put16(rows[i]);
  for (std::size_t i = 0; i < count; ++i) put16(in.take8() | flags[i]);
}

void OlderTokens::take_array(Fields& constants) {
  constexpr unsigned kString = 2;
  constexpr std::size_t kMostColumns = 256;
  std::size_t columns = constants.take8();
  if (columns == 0) columns = kMostColumns;
  const std::size_t rows = constants.take16();
  if (rows == 0) constants.take(constants.rest().size() + 1);  // there is no such array
  constants_ += static_cast<char>(columns - 1);
  package::put16(constants_, rows - 1);
  for (std::size_t left = rows * columns; left > 0 && constants.ok(); --left) {
    const unsigned kind = constants.take8();
    constants_ += static_cast<char>(kind);
    if (kind == kString) constants_ += texts_.long_text(constants.take(constants.take8()));
    else copy(constants, 8, constants_);
  }
}

void OlderTokens::take_areas(Fields& constants) {
  const unsigned count = constants.take16();
  package::put16(constants_, count);
  for (unsigned left = count; left > 0 && constants.ok(); --left) {
    copy(constants, 4, constants_);
    package::put16(constants_, constants.take8());
    package::put16(constants_, constants.take8());
  }
}

}  // namespace engine::xls
