// Formulas from text to the tokens of the binary format.
//
// Tokens stand in the order of calculation, which is that of the nodes of a parsed formula. Beside
// them go, in front of what they concern: names of functions that have no number, the size of an
// expression that makes a reference out of others, and behind the arguments of IF and CHOOSE how
// far to jump.
//
// An operand has a class: the cells themselves, one value of them or all their values. Functions
// say what they take each argument as, operators take values, and the root depends on what the
// formula is for. Where all values are wanted, as in array formulas, single values are nowhere.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/formula/formula.h"
#include "engine/xls/functions.h"
#include "engine/xls/link_writer.h"

namespace engine::xls {

// Those of names and rules stand for many cells: their relative references are distances.
enum class FormulaUse : std::uint8_t {
  kCell,
  kArray,
  kName,
  kRule,       // of a data validation
  kRuleCells,  // one that gives the cells of a list
};

struct FormulaContext {
  const Sheet* sheet = nullptr;  // that the formula stands on; null for none
  FormulaUse use = FormulaUse::kCell;
  CellAddress cell = {};  // that distances count from
};

class TokenWriter {
 public:
  static constexpr std::size_t kMaxTokens = 1800;

  TokenWriter(LinkWriter& links, const Grid& grid)
      : links_(links), options_(formula::ParseOptions::of_book(grid)) {}

  // False when the format cannot hold the formula; then why_not() tells it. The results are valid
  // until the next formula.
  bool write(std::string_view text, const FormulaContext& context);
  const std::string& tokens() const { return tokens_; }
  // Constants of arrays, which stand behind the tokens.
  const std::string& behind() const { return behind_; }
  const std::string& why_not() const { return why_not_; }

 private:
  enum class Class : std::uint8_t { kReference, kValue, kArray };
  // What a node is to the one above it.
  enum class Part : std::uint8_t { kOther, kOfIf, kOfChoose };

  // Whether of several values one counts, each for itself or what comes.
  enum class Values : std::uint8_t { kSingle, kAsTheyAre, kAll };

  struct Place {
    Class wanted = Class::kValue;
    Values values = Values::kSingle;
    bool in_reference = false;  // below an operator that makes references
    Part part = Part::kOther;
    std::uint8_t argument = 0;
    std::uint16_t parent = 0;
    const Function* function = nullptr;  // of a call
  };

  // Tokens in front of the node that a subtree begins with.
  struct Opening {
    std::size_t first;
    std::size_t node;
  };

  using ForeignName = std::pair<std::uint16_t, std::uint32_t>;  // entry, number there

  // A jump whose distance is not known yet, or the table of such.
  struct Jump {
    std::size_t node;
    std::size_t at;  // in tokens_
    std::uint8_t argument;
  };

  bool fail(std::string_view what);
  void place_nodes(const FormulaContext& context);
  void place_operands(std::size_t node);
  void place_call(std::size_t node);
  bool write_openings(std::size_t node, const FormulaContext& context);
  bool write_node(std::size_t node, const FormulaContext& context);
  bool write_reference(std::size_t node, const FormulaContext& context);
  bool write_name(std::size_t node, const FormulaContext& context);
  bool write_array(std::size_t node);
  bool write_error(std::size_t node);
  bool write_call(std::size_t node);
  void write_number(double value);
  bool write_text(std::string_view quoted);
  void write_binary(std::size_t node);
  void write_argument_end(std::size_t node);
  void settle_jumps(std::size_t node, std::size_t function_at);
  void write_blanks_before(std::size_t end, std::uint32_t kind);
  void put_function(const std::string& name, const FormulaContext& context);
  static std::string function_name(std::string_view name);
  std::optional<std::uint16_t> sheets_of(std::size_t node);
  std::optional<ForeignName> foreign_name(std::size_t node, std::string_view name);
  void put_foreign_name(const ForeignName& name, Class its);
  Class class_of(std::size_t node) const;
  Class class_of_result(std::size_t node) const;
  static void place_argument(Place& place, char its_class);
  void put8(std::uint32_t value) { tokens_ += static_cast<char>(value); }
  void put16(std::uint32_t value) {
    put8(value);
    put8(value >> 8);
  }
  void put_token(std::uint32_t token, Class its);
  void patch16(std::size_t at, std::size_t value);

  LinkWriter& links_;
  const formula::ParseOptions options_;
  formula::Formula formula_;
  std::vector<Place> places_;
  std::vector<Opening> openings_;
  std::vector<Jump> jumps_;
  std::vector<std::size_t> intersections_;  // where the right operands of such begin in the text
  std::array<std::size_t, 32> starts_{};    // of the choices that the jumps of a call go to
  std::size_t next_opening_ = 0;
  std::string tokens_;
  std::string behind_;
  std::string why_not_;
};

}  // namespace engine::xls
