// The formula grammar: from text to a tree, and what is done with references on the way back.
//
// A formula keeps its text. The tree is a row of nodes in postfix order beside it, each knowing the
// bytes of the text it stands for. So printing copies the text and only replaces those references
// and prefixes that change: blanks, brackets and unknown names come back as they were written. Case
// is settled while parsing, in place: addresses, known functions, TRUE and #N/A become upper case.
//
// Text comes without the leading "=", in UTF-8, with English names, "," between arguments and ";"
// between rows of an array constant. The names that a file writes with prefixes of its own are
// names here too, so that its texts parse as well.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/formula/interval.h"
#include "engine/formula/reference.h"

namespace engine::formula {

inline constexpr int kMaxFormulaLength = 8192;  // in UTF-16 units
inline constexpr int kMaxTextConstant = 255;

enum class Notation : std::uint8_t { kA1, kR1C1 };

struct ParseOptions {
  // Of the sheet that the formula is for.
  ParseOptions(const Grid& size) : grid(size) {}
  // For a text that stands in a book, wherever it came from.
  static ParseOptions of_book(const Grid& size) {
    ParseOptions options(size);
    options.lenient = true;
    return options;
  }

  Grid grid;
  Notation notation = Notation::kA1;
  CellAddress base;  // the cell that R1C1 offsets count from
  int max_arguments = 255;
  // References to tables and spills, and calls of what a function gives; without, the format of the
  // book came before them.
  bool later_forms = true;
  // Takes what files of some programs hold and no spreadsheet lets a person type: more than the
  // limits of length and number, unions of values such as (-4,3), a leading "=".
  bool lenient = false;
};

// Why a text is no formula, and where: positions count UTF-16 units of the text from 0.
struct ParseError {
  enum class Kind { kSyntax, kBeyondGrid, kTooLong, kLongText, kManyArguments };

  Kind kind = Kind::kSyntax;
  int position = 0;
  int length = 0;       // kTooLong: of the formula, in UTF-16 units
  std::string address;  // kBeyondGrid: the reference in A1 notation, without sheet
};

// One leaf that addresses cells. `first` and `last` are the ends in the order written; for a single
// cell they are equal. Whole columns leave the rows 0, whole rows the columns.
struct Reference {
  enum class Shape : std::uint8_t { kCell, kArea, kRows, kColumns };

  Shape shape = Shape::kCell;
  CellReference first;
  CellReference last;
};

enum class NodeKind : std::uint8_t {
  // Leaves.
  kNumber,
  kText,
  kBoolean,
  kError,       // #N/A; with a prefix: Sheet1!#REF!
  kArray,       // {1,2;3,4}
  kReference,   // Sheet1!A1:B2; `value` is the index into Formula::references
  kName,        // Rate, Sheet1!Rate, [1]!Rate, [1]!'an item'
  kStructured,  // Table1[[#This Row],[Net]], [@Net]
  kMissing,     // an argument left out
  // What stands over others.
  kPrefix,       // - + @, over one; `value` is the character
  kPercent,      // over one
  kSpill,        // A1#, over one
  kBinary,       // over two; `value` is an Operator
  kParentheses,  // over one
  kCall,         // NAME(...), over `value` arguments
  kInvoke,       // LAMBDA(x,x+1)(2): over what is called and `value` arguments
};

enum class Operator : std::uint8_t {
  kEqual,
  kNotEqual,
  kLess,
  kLessEqual,
  kGreater,
  kGreaterEqual,
  kConcatenate,
  kAdd,
  kSubtract,
  kMultiply,
  kDivide,
  kPower,
  kUnion,
  kIntersection,
  kRange,
};

// What stands in front of "!".
enum class PrefixKind : std::uint8_t {
  kNone,
  kSheet,     // Sheet1!
  kSheets,    // Sheet1:Sheet3!
  kExternal,  // [1]Sheet1!, [1]!, '[Book 1.xlsx]Sheet1'!, 'C:\dir\[Book1.xlsx]Sheet1'!
  kBroken,    // #REF!
};

struct Node {
  NodeKind kind = NodeKind::kMissing;
  PrefixKind prefix = PrefixKind::kNone;
  std::uint16_t value = 0;
  std::uint16_t first = 0;  // index of the first node of the subtree that ends here
  std::uint16_t begin = 0;  // bytes of the text, with everything below this node
  std::uint16_t end = 0;
  std::uint16_t mark = 0;  // leaves, kCall: end of the prefix; else the operator
};

struct Formula {
  std::string text;
  Notation notation = Notation::kA1;
  CellAddress base;
  Grid grid;
  std::vector<Node> nodes;  // postfix: the last one is the root
  std::vector<Reference> references;

  std::string_view text_of(const Node& node) const {
    return std::string_view(text).substr(node.begin,
                                         static_cast<std::size_t>(node.end - node.begin));
  }
};

// Nothing when the text is no formula; then `error`, if given, says why. Loaded formulas that do
// not parse are kept as text by the caller.
std::optional<Formula> parse(std::string_view text, const ParseOptions& options,
                             ParseError* error = nullptr);
// The same into a formula whose memory is used again; false leaves something unfinished in it.
bool parse(Formula& formula, std::string_view text, const ParseOptions& options,
           ParseError* error = nullptr);

// The formula in either notation, in R1C1 as it reads in cell `base`.
std::string print(const Formula& formula, Notation notation = Notation::kA1, CellAddress base = {});

// The functions below take a formula in A1 notation, in which formulas are kept, and give its
// changed text, or nothing when it does not change. A reference that is lost becomes #REF!, without
// its sheet prefix.

// As copied to a cell that lies so many rows and columns away: relative parts move along, what
// leaves the grid is lost.
std::optional<std::string> shifted(const Formula& formula, int rows, int columns);

// After rows or columns of the sheet were inserted or removed. `own_sheet` tells whether the
// formula stands on that sheet, so that references without prefix mean it.
std::optional<std::string> adjusted(const Formula& formula, const Move& move,
                                    std::string_view sheet, bool own_sheet);

// After a sheet was renamed; ends of 3-D references too.
std::optional<std::string> renamed(const Formula& formula, std::string_view from,
                                   std::string_view to);

// As in the copy of a sheet: references to the sheet itself name the copy, 3-D ones stay.
std::optional<std::string> retargeted(const Formula& formula, std::string_view from,
                                      std::string_view to);

// After sheet `index` of `sheets` was deleted (`sheets` in their order, the deleted one included).
// Its references read #REF!A1; a 3-D reference that ended there ends at the neighbour inside.
std::optional<std::string> without_sheet(const Formula& formula,
                                         std::span<const std::string_view> sheets,
                                         std::size_t index);

// A table by the name that formulas call it by, and its new name; without one it was deleted.
struct TableChange {
  std::string name;
  std::optional<std::string> renamed;
};

// After tables were renamed or deleted; what refers to a deleted one reads #REF!.
std::optional<std::string> with_tables(const Formula& formula,
                                       std::span<const TableChange> changes);

// The first of the sheets in the formula's prefixes, unquoted, that `known` denies to be one of the
// book; nothing when all are.
std::optional<std::string> unknown_sheet(const Formula& formula,
                                         const std::function<bool(std::string_view)>& known);

// New names of columns of tables, and columns that go. A formula inside of a table may leave its
// name out: columns of the table without a name are those.
class ColumnChanges {
 public:
  void add(std::string_view table, std::string_view name, std::string renamed);
  // The columns of a table in their order, of which those go that are marked.
  void remove(std::string_view table, std::span<const std::string> names,
              const std::vector<bool>& gone);
  // The new name; null for a column that keeps its own.
  const std::string* find(std::string_view table, std::string_view name) const;
  bool goes(std::string_view table, std::string_view name) const;
  // Narrows a range of columns to those that stay; false when none does. The ends come in either
  // order.
  bool narrow(std::string_view table, std::string& first, std::string& last) const;
  bool empty() const { return renamed_.empty() && removed_.empty(); }

 private:
  struct Removal {
    std::vector<std::string> names;
    std::vector<bool> gone;
    std::size_t place(std::string_view name) const;
  };
  const Removal* removal(std::string_view table) const;

  std::map<std::pair<std::string, std::string>, std::string> renamed_;  // by both names, folded
  std::map<std::string, Removal> removed_;                              // by the name, folded
};

// After columns of tables were renamed or removed; what refers to removed ones alone reads #REF!.
std::optional<std::string> with_columns(const Formula& formula, const ColumnChanges& changes);

}  // namespace engine::formula
