#include "engine/xls/tokens_read.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "engine/formula/leaf.h"
#include "engine/text/number_text.h"
#include "engine/xls/cell_errors.h"
#include "engine/xls/fields.h"
#include "engine/xls/functions.h"
#include "engine/xls/tokens.h"

namespace engine::xls {

namespace {

using formula::Reference;

// What a text can be at most, so that its places have 16 bits. A short token may stand for a long
// name, so this bounds what a file can make of its bytes, too.
constexpr std::size_t kMaxText = 65535;

// How tight operators bind, loosest first.
enum Level : std::uint8_t {
  kCompare = 1,
  kConcatenate,
  kAdd,
  kMultiply,
  kPower,
  kPercent,
  kSign,
  kUnion,
  kIntersection,
  kRange,
  kOperand,
};

struct BinaryOperator {
  std::string_view text;
  Level level;
};

// By token, from 0x03 on.
constexpr BinaryOperator kBinaryOperators[] = {
    {"+", kAdd},         {"-", kAdd},      {"*", kMultiply},     {"/", kMultiply}, {"^", kPower},
    {"&", kConcatenate}, {"<", kCompare},  {"<=", kCompare},     {"=", kCompare},  {">=", kCompare},
    {">", kCompare},     {"<>", kCompare}, {" ", kIntersection}, {",", kUnion},    {":", kRange},
};

// Prefixes by which files mark functions that came later.
constexpr std::string_view kFunctionPrefixes[] = {"_xlfn._xlws.", "_xlfn.", "_xlws.", "_xludf."};

void append_text_constant(std::string& out, std::string_view text) {
  out += '"';
  for (const char c : text) out.append(c == '"' ? 2 : 1, c);
  out += '"';
}

}  // namespace

bool TokenReader::read(std::string_view tokens, std::string_view behind,
                       const FormulaPlace& place) {
  nodes_.clear();
  operands_.clear();
  pieces_ = "(),";
  before_.clear();
  before_open_.clear();
  before_close_.clear();
  text_.clear();
  furthest_ = place.cell;
  Fields in(tokens);
  Fields constants(behind);
  while (!in.at_end())
    if (!read_token(in, constants, place) || !in.ok() || !constants.ok() ||
        pieces_.size() > 2 * kMaxText)
      return false;
  if (operands_.size() != 1) return false;
  print();
  return text_.size() <= kMaxText;
}

bool TokenReader::read_token(Fields& in, Fields& constants, const FormulaPlace& place) {
  const unsigned byte = in.take8();
  if (byte >= kFirstBinary && byte <= kLastBinary) {
    const auto& [text, level] = kBinaryOperators[byte - kFirstBinary];
    return add_operator(text, level, 2);
  }
  // Operands have their class in two bits, of which one is always set.
  const unsigned token = byte < 0x20 || byte >= 0x80 ? byte : (byte & 0x1F) | 0x20;
  switch (token) {
    case kPlus:
      return add_operator("+", kSign, 1);
    case kMinus:
      return add_operator("-", kSign, 1);
    case kPercentSign:
      return add_operator("%", kPercent, 1);
    case kParentheses:
      return add_brackets("", 1);
    case kMissing:
      return add_leaf([](std::string&) {});
    case kText:
      return add_leaf([&](std::string& out) { append_text_constant(out, in.take_short_text()); });
    case kAttribute:
      return read_attribute(in);
    case kError:
      return add_leaf([&](std::string& out) { out += cell_error_text(in.take8()); });
    case kBoolean:
      return add_leaf([&](std::string& out) { out += in.take8() != 0 ? "TRUE" : "FALSE"; });
    case kInteger:
      return add_leaf([&](std::string& out) { append_integer(out, in.take16()); });
    case kFloat:
      return add_leaf([&](std::string& out) { append_number(out, in.take_double()); });
    case kArrayConstant:
      in.skip(7);
      return read_array(constants);
    case kCall: {
      const Function* function = find_function(in.take16());
      return function && add_brackets(function->name, function->least);
    }
    case kVariableCall: {
      const std::size_t arguments = in.take8() & 0x7F;
      const std::uint16_t number = in.take16();
      if (number == kUserFunction) return add_named_call(arguments);
      const Function* function = find_function(number);
      return function && add_brackets(function->name, arguments);
    }
    case kNameToken: {
      const std::string name = links_.name(in.take32() & 0xFFFF, place.sheet);
      return add_leaf([&](std::string& out) { out += name.empty() ? "#NAME?" : name; });
    }
    case kForeignName: {
      const std::uint16_t entry = in.take16();
      const std::string name = links_.name(entry, in.take32() & 0xFFFF);
      return add_leaf([&](std::string& out) { out += name.empty() ? "#NAME?" : name; });
    }
    case kCell:
    case kRelativeCell:
    case kSheetCell:
      return read_reference(in, token, place);
    case kArea:
    case kRelativeArea:
    case kSheetArea:
      return read_area(in, token, place);
    case kLostCell:
    case kLostArea:
      in.skip(token == kLostCell ? 4 : 8);
      return add_leaf([](std::string& out) { out += "#REF!"; });
    case kLostSheetCell:
    case kLostSheetArea: {
      const std::string prefix = links_.prefix(in.take16());
      in.skip(token == kLostSheetCell ? 4 : 8);
      return add_leaf([&](std::string& out) {
        if (prefix.ends_with("!") && prefix != "#REF!") out += prefix;
        out += "#REF!";
      });
    }
    // The operands whose result these remember follow as they were typed.
    case kMemoryArea:
      in.skip(6);
      constants.skip(8 * std::size_t{constants.take16()});
      return true;
    case kMemoryError:
    case kMemoryNone:
      in.skip(6);
      return true;
    case kMemoryAreaRelative:
    case kMemoryNoneRelative:
    case kMemoryCall:
      in.skip(2);
      return true;
    default:
      return false;
  }
}

// Jumps that speed up calculation say nothing; blanks belong to a token that follows.
bool TokenReader::read_attribute(Fields& in) {
  const unsigned flags = in.take8();
  const std::size_t field = in.take16();
  if ((flags & kChoose) != 0) {
    in.skip(2 * (field + 1));
  } else if ((flags & kSum) != 0) {
    return add_brackets("SUM", 1);
  } else if ((flags & kSpace) != 0) {
    const unsigned where = field & 0xFF;
    std::string& blanks = where == 2 || where == 3   ? before_open_
                          : where == 4 || where == 5 ? before_close_
                                                     : before_;
    const bool line_end = where == 1 || where == 3 || where == 5;
    blanks.append(field >> 8, line_end ? '\n' : ' ');
  }
  return true;
}

void TokenReader::take_cell(unsigned row, unsigned column, bool relative, const FormulaPlace& place,
                            formula::CellReference& cell) {
  cell.row_absolute = (column & 0x8000) == 0;
  cell.column_absolute = (column & 0x4000) == 0;
  cell.row = static_cast<int>(row);
  cell.column = static_cast<int>(std::min(column & 0x3FFF, 255U));
  if (!relative) return;
  cell.column = static_cast<int>(column & 0xFF);
  // Offsets wrap around.
  if (!cell.row_absolute) cell.row = (place.cell.row + cell.row) & 0xFFFF;
  if (!cell.column_absolute) cell.column = (place.cell.column + cell.column) & 0xFF;
}

bool TokenReader::read_reference(Fields& in, unsigned kind, const FormulaPlace& place) {
  const std::string prefix = kind == kSheetCell ? links_.prefix(in.take16()) : std::string();
  const unsigned row = in.take16();
  const unsigned column = in.take16();
  Reference reference;
  take_cell(row, column, kind == kRelativeCell, place, reference.first);
  reference.last = reference.first;
  return add_reference(prefix, reference);
}

bool TokenReader::read_area(Fields& in, unsigned kind, const FormulaPlace& place) {
  const std::string prefix = kind == kSheetArea ? links_.prefix(in.take16()) : std::string();
  const unsigned row_first = in.take16();
  const unsigned row_last = in.take16();
  const unsigned column_first = in.take16();
  const unsigned column_last = in.take16();
  Reference reference;
  reference.shape = Reference::Shape::kArea;
  auto& [shape, first, last] = reference;
  take_cell(row_first, column_first, kind == kRelativeArea, place, first);
  take_cell(row_last, column_last, kind == kRelativeArea, place, last);
  if (first.row > last.row) {
    std::swap(first.row, last.row);
    std::swap(first.row_absolute, last.row_absolute);
  }
  if (first.column > last.column) {
    std::swap(first.column, last.column);
    std::swap(first.column_absolute, last.column_absolute);
  }
  if (first.column == 0 && last.column == grid_.columns - 1) shape = Reference::Shape::kRows;
  else if (first.row == 0 && last.row == grid_.rows - 1) shape = Reference::Shape::kColumns;
  return add_reference(prefix, reference);
}

bool TokenReader::add_reference(std::string_view prefix, const Reference& reference) {
  for (const formula::CellReference& end : {reference.first, reference.last}) {
    if (!end.row_absolute && reference.shape != Reference::Shape::kColumns)
      furthest_.row = std::max(furthest_.row, end.row);
    if (!end.column_absolute && reference.shape != Reference::Shape::kRows)
      furthest_.column = std::max(furthest_.column, end.column);
  }
  return add_leaf([&](std::string& out) {
    out += prefix;
    formula::append_reference(out, reference, formula::Notation::kA1, {});
  });
}

bool TokenReader::read_array(Fields& constants) {
  const std::size_t columns = std::size_t{constants.take8()} + 1;
  const std::size_t rows = std::size_t{constants.take16()} + 1;
  return add_leaf([&](std::string& out) {
    out += '{';
    for (std::size_t i = 0; i < rows * columns && constants.ok(); ++i) {
      if (i != 0) out += i % columns == 0 ? ';' : ',';
      read_constant(constants, out);
    }
    out += '}';
  });
}

void TokenReader::read_constant(Fields& constants, std::string& out) {
  enum Kind : unsigned { kNumber = 1, kString = 2, kTruth = 4, kErrorCode = 16 };
  const unsigned kind = constants.take8();
  if (kind == kNumber) {
    append_number(out, constants.take_double());
  } else if (kind == kString) {
    append_text_constant(out, constants.take_long_text());
  } else {
    const std::uint8_t value = constants.take8();
    constants.skip(7);
    if (kind == kTruth) out += value != 0 ? "TRUE" : "FALSE";
    else if (kind == kErrorCode) out += cell_error_text(value);
    else out += "\"\"";
  }
}

// The first operand is the name.
bool TokenReader::add_named_call(std::size_t arguments) {
  if (arguments == 0 || arguments > operands_.size()) return false;
  Node& name = nodes_[operands_[operands_.size() - arguments]];
  if (name.kind != Node::Kind::kLeaf) return false;
  const std::string_view text =
      std::string_view(pieces_).substr(name.open.begin, name.open.end - name.open.begin);
  for (const std::string_view prefix : kFunctionPrefixes) {
    if (!text.starts_with(prefix)) continue;
    name.open.begin += static_cast<std::uint32_t>(prefix.size());
    break;
  }
  Node node;
  node.kind = Node::Kind::kNamedCall;
  node.level = kOperand;
  node.close = add_piece({before_close_, ")"});
  return add_node(node, arguments);
}

bool TokenReader::add_operator(std::string_view text, std::uint8_t level, std::size_t operands) {
  Node node;
  node.kind = operands == 2       ? Node::Kind::kBinary
              : level == kPercent ? Node::Kind::kPostfix
                                  : Node::Kind::kPrefix;
  node.level = level;
  node.open = add_piece({before_, text});
  return add_node(node, operands);
}

bool TokenReader::add_brackets(std::string_view name, std::size_t operands) {
  Node node;
  node.kind = name.empty() ? Node::Kind::kParentheses : Node::Kind::kCall;
  node.level = kOperand;
  node.open = add_piece({before_, before_open_, name, "("});
  node.close = add_piece({before_close_, ")"});
  return add_node(node, operands);
}

bool TokenReader::add_leaf(const auto& append) {
  Node node;
  node.level = kOperand;
  node.open.begin = static_cast<std::uint32_t>(pieces_.size());
  pieces_ += before_;
  append(pieces_);
  node.open.end = static_cast<std::uint32_t>(pieces_.size());
  return add_node(node, 0);
}

TokenReader::Piece TokenReader::add_piece(std::initializer_list<std::string_view> texts) {
  const auto begin = static_cast<std::uint32_t>(pieces_.size());
  for (const std::string_view text : texts) pieces_ += text;
  return {begin, static_cast<std::uint32_t>(pieces_.size())};
}

bool TokenReader::add_node(Node node, std::size_t operands) {
  if (operands > operands_.size()) return false;
  const auto number = static_cast<std::uint32_t>(nodes_.size());
  node.operands = static_cast<std::uint16_t>(operands);
  node.first = number;
  if (operands != 0) {
    node.first = nodes_[operands_[operands_.size() - operands]].first;
    operands_.resize(operands_.size() - operands);
  }
  operands_.push_back(number);
  nodes_.push_back(node);
  before_.clear();
  before_open_.clear();
  before_close_.clear();
  return true;
}

// What is to be printed waits on a stack, the leftmost on top: nodes, and pieces between them. A
// file may nest as deep as it is long, so this does not recur.
void TokenReader::print() {
  constexpr Piece kOpen{0, 1};
  constexpr Piece kClose{1, 2};
  constexpr Piece kComma{2, 3};
  waiting_.clear();
  const auto wait = [&](const Piece& piece) { waiting_.push_back({piece.begin, piece.end}); };
  const auto wait_for = [&](std::uint32_t number, unsigned level) {
    const bool wrapped = nodes_[number].level < level;
    if (wrapped) wait(kClose);
    waiting_.push_back({number, kNode});
    if (wrapped) wait(kOpen);
  };
  // Gives the operand in front of so many, of which the last is known. Bare commas of a union would
  // make several arguments of it.
  const auto wait_for_arguments = [&](std::uint32_t operand, std::size_t count) {
    for (std::size_t left = count; left > 0; --left) {
      wait_for(operand, nodes_[operand].level == kUnion ? kOperand : 0);
      if (left > 1) wait(kComma);
      operand = nodes_[operand].first - 1;
    }
    return operand;
  };
  std::uint32_t name = 0;
  wait_for(operands_.back(), 0);
  while (!waiting_.empty() && text_.size() <= kMaxText) {
    const auto [number, end] = waiting_.back();
    waiting_.pop_back();
    if (end != kNode) {
      text_.append(pieces_, number, end - number);
      continue;
    }
    const Node& node = nodes_[number];
    switch (node.kind) {
      case Node::Kind::kLeaf:
        wait(node.open);
        break;
      case Node::Kind::kPrefix:
        // A percent sign binds looser but means the same on either side of a sign.
        wait_for(number - 1, kPercent);
        wait(node.open);
        break;
      case Node::Kind::kPostfix:
        wait(node.open);
        wait_for(number - 1, node.level);
        break;
      case Node::Kind::kBinary:
        wait_for(number - 1, node.level + 1U);
        wait(node.open);
        wait_for(nodes_[number - 1].first - 1, node.level);
        break;
      case Node::Kind::kParentheses:
        wait(node.close);
        wait_for(number - 1, 0);
        wait(node.open);
        break;
      case Node::Kind::kCall:
        wait(node.close);
        wait_for_arguments(number - 1, node.operands);
        wait(node.open);
        break;
      case Node::Kind::kNamedCall:
        wait(node.close);
        name = wait_for_arguments(number - 1, node.operands - 1U);
        wait(kOpen);
        waiting_.push_back({name, kNode});
        break;
    }
  }
}

}  // namespace engine::xls
