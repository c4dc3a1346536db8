// Formulas from the tokens of the binary format to text.
//
// A formula is stored as it is calculated: operands first, then what is done with them. Each token
// is a number, in three classes for operands, and its fields. Brackets and blanks that a person
// typed have tokens of their own. Constants of arrays stand behind the tokens.
//
// The tokens become a row of nodes in the same order, each with the first node of its operands, and
// the text follows from walking over them from the left.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "engine/formula/formula.h"
#include "engine/xls/link_table.h"

namespace engine::xls {

class Fields;

struct FormulaPlace {
  const Sheet* sheet = nullptr;  // that the formula stands on; null for none
  CellAddress cell;              // that relative references of names and shared formulas count from
};

class TokenReader {
 public:
  TokenReader(const LinkTable& links, const Grid& grid) : links_(links), grid_(grid) {}

  // The text, valid until the next one is read. False for tokens that no text says, or not in the
  // length that a formula may have. `behind` holds the constants.
  bool read(std::string_view tokens, std::string_view behind, const FormulaPlace& place);
  const std::string& text() const { return text_; }

  // The last row and column that relative references of the formula reached: so far a formula that
  // cells share can be moved before one of them wraps around the sheet's end.
  CellAddress furthest() const { return furthest_; }

 private:
  // Bytes of `pieces_`.
  struct Piece {
    std::uint32_t begin = 0;
    std::uint32_t end = 0;
  };

  struct Node {
    enum class Kind : std::uint8_t {
      kLeaf,
      kPrefix,
      kPostfix,
      kBinary,
      kParentheses,
      kCall,
      kNamedCall,  // its first operand is the name
    };

    Kind kind = Kind::kLeaf;
    std::uint8_t level = 0;
    std::uint16_t operands = 0;
    std::uint32_t first = 0;  // node of the operands
    Piece open;               // the text, or what stands before the operands
    Piece close;              // behind them, if that is anything
  };

  static constexpr std::uint32_t kNode =
      0xFFFFFFFF;  // a piece is a node, whose number it begins with

  bool read_token(Fields& in, Fields& constants, const FormulaPlace& place);
  bool read_attribute(Fields& in);
  bool read_reference(Fields& in, unsigned kind, const FormulaPlace& place);
  bool read_area(Fields& in, unsigned kind, const FormulaPlace& place);
  bool read_array(Fields& constants);
  static void read_constant(Fields& constants, std::string& out);
  static void take_cell(unsigned row, unsigned column, bool relative, const FormulaPlace& place,
                        formula::CellReference& cell);
  bool add_reference(std::string_view prefix, const formula::Reference& reference);
  bool add_leaf(const auto& append);
  bool add_operator(std::string_view text, std::uint8_t level, std::size_t operands);
  bool add_brackets(std::string_view name, std::size_t operands);
  bool add_named_call(std::size_t arguments);
  bool add_node(Node node, std::size_t operands);
  Piece add_piece(std::initializer_list<std::string_view> texts);
  void print();

  const LinkTable& links_;
  const Grid grid_;
  std::vector<Node> nodes_;
  std::vector<std::uint32_t> operands_;  // roots that no later node has taken
  std::string pieces_;                   // the text of all nodes
  std::string before_;                   // blanks in front of the next token
  std::string before_open_;              // the same of its brackets
  std::string before_close_;
  std::vector<Piece> waiting_;  // to be printed
  std::string text_;
  CellAddress furthest_;
};

}  // namespace engine::xls
