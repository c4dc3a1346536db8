// The parser: precedence climbing over the text itself, without a token list.
//
// Operators bind in these levels, loosest first, all from the left. Those over references bind
// tighter than a sign, so -A1:A2 is -(A1:A2), and a sign tighter than ^, so -2^2 is (-2)^2.
#include <utf8proc.h>

#include <algorithm>
#include <utility>

#include "engine/formula/formula.h"
#include "engine/formula/function_names.h"
#include "engine/formula/leaf.h"
#include "engine/formula/scan.h"
#include "engine/formula/sheet_name.h"
#include "engine/text/fold.h"
#include "engine/text/utf8.h"

namespace engine::formula {
namespace {

enum Level : int {
  kNoOperator,
  kLevelCompare,
  kLevelConcatenate,
  kLevelAdd,
  kLevelMultiply,
  kLevelPower,
  kLevelPercent,
  kLevelSign,
  kLevelUnion,
  kLevelIntersection,
  kLevelRange,
  kLevelCall,
};

// Offsets in nodes have 16 bits.
constexpr std::size_t kMaxBytes = 65535;

// Column ZZZ. Longer words are names, not columns past the grid.
constexpr int kLastThreeLetters = 18277;

constexpr std::string_view kErrorTexts[] = {
    "#REF!",     "#N/A",     "#VALUE!",   "#DIV/0!",    "#NAME?",    "#NULL!",
    "#NUM!",     "#SPILL!",  "#CALC!",    "#FIELD!",    "#BUSY!",    "#BLOCKED!",
    "#UNKNOWN!", "#PYTHON!", "#CONNECT!", "#EXTERNAL!", "#TIMEOUT!", "#GETTING_DATA",
};

constexpr std::size_t npos = std::string_view::npos;

struct Infix {
  Level level = kNoOperator;
  int length = 0;  // bytes of the operator; none for a blank that intersects
  NodeKind kind = NodeKind::kBinary;
  Operator op = Operator::kEqual;
};

// Names of another file by its place: 'C:\dir\Book1.xls'!Rate.
bool is_path(std::string_view text) {
  return text.starts_with("\\\\") || text.find(":\\") != npos || text.find("://") != npos;
}

// What is wrong with the brackets in C:\dir\[Book1.xlsx]Sheet1, or null: one pair holds the book.
const char* bad_book(std::string_view text) {
  const std::size_t open = text.find_first_of("[]");
  const std::size_t close = text.find_first_of("[]", open + 1);
  if (text[open] == ']' || close == open + 1) return text.data() + open;
  if (close == npos) return text.data() + text.size();
  const std::size_t more = text[close] == '[' ? close : text.find_first_of("[]", close + 1);
  return more == npos ? nullptr : text.data() + more;
}

int length_of(std::string_view text) { return static_cast<int>(utf16_length(text)); }

bool is_reference_operator(std::uint16_t op) {
  return op >= static_cast<std::uint16_t>(Operator::kUnion);
}

const char* scan_word(const char* p) {
  while (is_word(*p)) ++p;
  return p;
}

// The first character from `p` on that no name holds: signs, punctuation, bytes that are no UTF-8.
const char* bad_character(const char* p, const char* end) {
  while (p != end) {
    if (static_cast<unsigned char>(*p) < 0x80) {
      ++p;
      continue;
    }
    std::uint32_t code = 0;
    const std::size_t length = decode_utf8(p, end, code);
    if (length == 0) return p;
    switch (utf8proc_category(static_cast<utf8proc_int32_t>(code))) {
      case UTF8PROC_CATEGORY_CN:
      case UTF8PROC_CATEGORY_CC:
      case UTF8PROC_CATEGORY_ZS:
      case UTF8PROC_CATEGORY_ZL:
      case UTF8PROC_CATEGORY_ZP:
      case UTF8PROC_CATEGORY_SM:
      case UTF8PROC_CATEGORY_PI:
      case UTF8PROC_CATEGORY_PF:
        return p;
      default:
        p += length;
    }
  }
  return nullptr;
}

class Parser {
 public:
  Parser(Formula& formula, const ParseOptions& options)
      : formula_(formula),
        options_(options),
        text_(formula.text.data()),
        end_(text_ + formula.text.size()),
        p_(text_) {}

  bool run() {
    if (options_.lenient && *p_ == '=') ++p_;
    if (!expression(kLevelCompare)) return false;
    skip_blanks();
    return p_ == end_ || fail(p_);
  }

  ParseError error() const {
    ParseError error{error_, 0, 0, error_address_};
    error.position = length_of({text_, static_cast<std::size_t>(error_at_ - text_)});
    return error;
  }

 private:
  using Kind = ParseError::Kind;

  bool fail(const char* at, Kind kind = Kind::kSyntax) {
    error_at_ = at;
    error_ = kind;
    return false;
  }

  bool fail_beyond(const char* at, const Reference& reference) {
    append_reference(error_address_, reference, Notation::kA1, {});
    std::erase(error_address_, '$');
    return fail(at, Kind::kBeyondGrid);
  }

  std::uint16_t offset(const char* p) const { return static_cast<std::uint16_t>(p - text_); }
  std::uint16_t node_count() const { return static_cast<std::uint16_t>(formula_.nodes.size()); }

  // The text ends in a zero, so one character may always be looked at.
  void skip_blanks() {
    while (is_blank(*p_)) ++p_;
  }

  // Adds a node over everything since node `first`; its text runs from `begin` to where we are.
  bool add(NodeKind kind, std::uint16_t first, const char* begin, const char* mark,
           std::uint16_t value = 0, PrefixKind prefix = PrefixKind::kNone) {
    formula_.nodes.push_back({kind, prefix, value, first, offset(begin), offset(p_), offset(mark)});
    return true;
  }

  bool add_leaf(NodeKind kind, const char* begin, const char* mark,
                PrefixKind prefix = PrefixKind::kNone) {
    return add(kind, node_count(), begin, mark, 0, prefix);
  }

  // Addresses and keywords are turned to capitals where they stand.
  void capitalise(const char* begin, const char* end) {
    for (const char* p = begin; p != end; ++p)
      if (*p >= 'a' && *p <= 'z') formula_.text[offset(p)] = upper_ascii(*p);
  }

  // Whether the last node may stand for cells, which the operators over references ask for.
  bool yields_reference() const {
    const auto& nodes = formula_.nodes;
    std::size_t i = nodes.size() - 1;
    while (nodes[i].kind == NodeKind::kParentheses) --i;
    switch (nodes[i].kind) {
      case NodeKind::kReference:
      case NodeKind::kName:
      case NodeKind::kStructured:
      case NodeKind::kError:
      case NodeKind::kCall:
      case NodeKind::kInvoke:
      case NodeKind::kSpill:
        return true;
      case NodeKind::kBinary:
        return is_reference_operator(nodes[i].value);
      default:
        return false;
    }
  }

  // In R1C1 notation a name such as A may not be the end of a range: in A1 notation it would turn
  // into a column.
  bool reads_as_column() const {
    const Node& node = formula_.nodes.back();
    return options_.notation == Notation::kR1C1 && node.kind == NodeKind::kName &&
           parse_column(
               formula_.text_of(node).substr(static_cast<std::size_t>(node.mark) - node.begin));
  }

  bool expression(int level);
  Infix infix_at(bool after_blank) const;
  Infix blank_infix(bool after_blank) const;
  bool apply(const Infix& infix, std::uint16_t first, const char* begin);
  bool operand();
  bool sign();
  bool parentheses();
  bool text_constant();
  bool number();
  bool error_or_broken_prefix();
  const char* error_text_end(const char* p) const;
  bool array();
  bool array_element();
  bool skip_text();
  bool skip_number();
  bool quoted_prefix();
  const char* behind_quoted(const char* p) const;
  bool bracket();
  bool after_prefix(const char* begin, PrefixKind prefix);
  bool word(const char* begin, PrefixKind prefix);
  bool call(const char* begin, const char* name, const char* name_end, PrefixKind prefix);
  bool arguments(const char* begin, int& count);
  bool structured(const char* begin, const char* mark, PrefixKind prefix);
  struct SheetPrefixAt {
    PrefixKind kind;
    const char* behind;
  };
  static SheetPrefixAt sheet_prefix_at(const char* begin);
  PrefixKind skip_sheet_prefix();

  enum class Found { kNo, kYes, kRefused };
  Found reference(const char* begin, PrefixKind prefix);
  Found reference_a1(const char* begin, PrefixKind prefix);
  Found reference_r1c1(const char* begin, PrefixKind prefix);
  Found add_reference(const char* begin, const char* end, PrefixKind prefix, const Reference&);
  const char* r1c1_end(const char* p, Reference::Shape& shape, CellReference& cell) const;

  // An address ends where no longer word, call, sheet or table name goes on.
  static bool ends_address(const char* p) {
    return p != nullptr && !is_word(*p) && *p != '(' && *p != '!' && *p != '[' && *p != '$';
  }

  // Behind the colon of a range, or null; `p` may be null too.
  static const char* behind_colon(const char* p) {
    if (p == nullptr) return nullptr;
    while (is_blank(*p)) ++p;
    if (*p != ':') return nullptr;
    ++p;
    while (is_blank(*p)) ++p;
    return p;
  }

  Formula& formula_;
  const ParseOptions& options_;
  const char* const text_;
  const char* const end_;
  const char* p_;
  bool unions_ = true;  // whether a comma joins references here; between arguments it separates
  int depth_ = 0;
  int deepest_ = 0;  // of the expression that is read, as files have it
  Kind error_ = Kind::kSyntax;
  const char* error_at_ = nullptr;
  std::string error_address_;
};

bool Parser::expression(int level) {
  if (++depth_ > kMaxDepth) return fail(p_);
  const int deepest_around = std::exchange(deepest_, depth_);
  skip_blanks();
  const char* const begin = p_;
  const std::uint16_t first = node_count();
  if (!operand()) return false;
  int last = kLevelCall;
  while (true) {
    const char* const behind = p_;
    skip_blanks();
    const bool ends = *p_ == ')' || *p_ == 0 || (*p_ == ',' && !unions_);
    const Infix infix = ends ? Infix() : infix_at(p_ != behind);
    if (infix.level == kNoOperator || infix.level < level) {
      p_ = behind;
      --depth_;
      deepest_ = std::max(deepest_, deepest_around);
      return true;
    }
    // The operand in front has refused it, and all in front of that is none of its own.
    if (infix.level > last) return fail(p_);
    last = infix.level;
    if (!apply(infix, first, begin)) return false;
  }
}

// The operator that stands at this place, if one does.
Infix Parser::infix_at(bool after_blank) const {
  constexpr auto kBinary = NodeKind::kBinary;
  switch (*p_) {
    case '=':
      return {kLevelCompare, 1, kBinary, Operator::kEqual};
    case '<':
      if (p_[1] == '>') return {kLevelCompare, 2, kBinary, Operator::kNotEqual};
      if (p_[1] == '=') return {kLevelCompare, 2, kBinary, Operator::kLessEqual};
      return {kLevelCompare, 1, kBinary, Operator::kLess};
    case '>':
      if (p_[1] == '=') return {kLevelCompare, 2, kBinary, Operator::kGreaterEqual};
      return {kLevelCompare, 1, kBinary, Operator::kGreater};
    case '&':
      return {kLevelConcatenate, 1, kBinary, Operator::kConcatenate};
    case '+':
      return {kLevelAdd, 1, kBinary, Operator::kAdd};
    case '-':
      return {kLevelAdd, 1, kBinary, Operator::kSubtract};
    case '*':
      return {kLevelMultiply, 1, kBinary, Operator::kMultiply};
    case '/':
      return {kLevelMultiply, 1, kBinary, Operator::kDivide};
    case '^':
      return {kLevelPower, 1, kBinary, Operator::kPower};
    case '%':
      return {kLevelPercent, 1, NodeKind::kPercent, {}};
    case ':':
      return {kLevelRange, 1, kBinary, Operator::kRange};
    case ',':
      if (!unions_) return {};
      return {kLevelUnion, 1, kBinary, Operator::kUnion};
    default:
      return blank_infix(after_blank);
  }
}

// What needs no character of its own or stands directly behind its operand.
Infix Parser::blank_infix(bool after_blank) const {
  if (after_blank) {
    const bool operand_follows =
        is_word(*p_) || *p_ == '$' || *p_ == '\'' || *p_ == '[' || *p_ == '(' || *p_ == '#';
    if (!operand_follows || !yields_reference()) return {};
    return {kLevelIntersection, 0, NodeKind::kBinary, Operator::kIntersection};
  }
  if (!options_.later_forms) return {};
  const NodeKind left = formula_.nodes.back().kind;
  if (*p_ == '#' && left != NodeKind::kSpill && yields_reference())
    return {kLevelCall, 1, NodeKind::kSpill, {}};
  const bool callable =
      left == NodeKind::kCall || left == NodeKind::kInvoke || left == NodeKind::kParentheses;
  if (*p_ == '(' && callable) return {kLevelCall, 1, NodeKind::kInvoke, {}};
  return {};
}

bool Parser::apply(const Infix& infix, std::uint16_t first, const char* begin) {
  const char* const mark = p_;
  p_ += infix.length;
  if (infix.kind == NodeKind::kInvoke) {
    int count = 0;
    return arguments(begin, count) &&
           add(NodeKind::kInvoke, first, begin, mark, static_cast<std::uint16_t>(count));
  }
  // In files a call is around what spills.
  if (infix.kind == NodeKind::kSpill && ++deepest_ > kMaxDepth) return fail(mark);
  if (infix.kind != NodeKind::kBinary) return add(infix.kind, first, begin, mark);
  const auto op = static_cast<std::uint16_t>(infix.op);
  const bool joins_references =
      is_reference_operator(op) && !(infix.op == Operator::kUnion && options_.lenient);
  if (joins_references && !yields_reference()) return fail(mark);
  if (infix.op == Operator::kRange && reads_as_column()) return fail(mark);
  if (!expression(infix.level + 1)) return false;
  if (joins_references && !yields_reference()) return fail(text_ + formula_.nodes.back().begin);
  if (infix.op == Operator::kRange && reads_as_column()) return fail(mark);
  return add(NodeKind::kBinary, first, begin, mark, op);
}

bool Parser::operand() {
  switch (*p_) {
    case '-':
    case '+':
    case '@':
      return sign();
    case '"':
      return text_constant();
    case '(':
      return parentheses();
    case '{':
      return array();
    case '#':
      return error_or_broken_prefix();
    case '\'':
      return quoted_prefix();
    case '[':
      return bracket();
    case '$':
      if (reference(p_, PrefixKind::kNone) == Found::kYes) return true;
      return error_at_ != nullptr ? false : fail(p_);
    case '.':
      return number();
    default:
      break;
  }
  if (is_digit(*p_)) return number();
  return is_word(*p_) ? word(p_, PrefixKind::kNone) : fail(p_);
}

bool Parser::sign() {
  const char* const begin = p_;
  const std::uint16_t first = node_count();
  ++p_;
  if (!expression(kLevelSign)) return false;
  // In files a call is instead of it, and parentheses may be around its operand.
  if (*begin == '@' && ++deepest_ > kMaxDepth) return fail(begin);
  return add(NodeKind::kPrefix, first, begin, begin, static_cast<unsigned char>(*begin));
}

bool Parser::parentheses() {
  const char* const begin = p_++;
  const std::uint16_t first = node_count();
  const bool outer_unions = std::exchange(unions_, true);
  if (!expression(kLevelCompare)) return false;
  skip_blanks();
  if (*p_ != ')') return fail(p_);
  ++p_;
  unions_ = outer_unions;
  return add(NodeKind::kParentheses, first, begin, begin);
}

bool Parser::text_constant() {
  const char* const begin = p_;
  return skip_text() && add_leaf(NodeKind::kText, begin, begin);
}

bool Parser::skip_text() {
  const char* const begin = p_;
  std::size_t doubled = 0;
  for (++p_; p_ != end_; ++p_) {
    if (*p_ != '"') continue;
    if (p_[1] != '"') break;
    ++p_;
    ++doubled;
  }
  if (p_ == end_) return fail(p_);
  const auto length = static_cast<std::size_t>(p_ - begin) - 1;
  ++p_;
  if (!options_.lenient && length - doubled > kMaxTextConstant &&
      length_of({begin + 1, length}) - static_cast<int>(doubled) > kMaxTextConstant)
    return fail(begin, Kind::kLongText);
  return true;
}

// A number, or rows such as 2:7.
bool Parser::number() {
  const char* const begin = p_;
  const Found rows = reference(begin, PrefixKind::kNone);
  if (rows != Found::kNo) return rows == Found::kYes;
  if (!skip_number()) return false;
  if (!is_word(*p_) && *p_ != '!') return add_leaf(NodeKind::kNumber, begin, begin);
  // A sheet's name that begins with a digit wants apostrophes, but not every program sets them.
  const char* const stop = std::exchange(p_, begin);
  const PrefixKind prefix = skip_sheet_prefix();
  return prefix == PrefixKind::kNone ? fail(stop) : after_prefix(begin, prefix);
}

bool Parser::skip_number() {
  const char* const begin = p_;
  while (is_digit(*p_)) ++p_;
  if (*p_ == '.') ++p_;
  while (is_digit(*p_)) ++p_;
  if (p_ - begin == 1 && *begin == '.') return fail(begin);
  if (*p_ != 'E' && *p_ != 'e') return true;
  const char* exponent = p_ + 1;
  if (*exponent == '+' || *exponent == '-') ++exponent;
  if (!is_digit(*exponent)) return true;
  while (is_digit(*exponent)) ++exponent;
  capitalise(p_, exponent);
  p_ = exponent;
  return true;
}

const char* Parser::error_text_end(const char* p) const {
  const std::string_view rest(p, static_cast<std::size_t>(end_ - p));
  for (const std::string_view text : kErrorTexts)
    if (equals_upper(rest.substr(0, text.size()), text)) return p + text.size();
  return nullptr;
}

// #N/A, or the #REF! that stands for a deleted sheet: #REF!A1.
bool Parser::error_or_broken_prefix() {
  const char* const begin = p_;
  const char* const behind = error_text_end(begin);
  if (behind == nullptr) return fail(begin);
  capitalise(begin, behind);
  p_ = behind;
  const bool is_ref = std::string_view(begin, 5) == "#REF!";
  if (is_ref && (is_word(*p_) || *p_ == '$' || error_text_end(p_) != nullptr))
    return after_prefix(begin, PrefixKind::kBroken);
  return add_leaf(NodeKind::kError, begin, begin);
}

bool Parser::array() {
  const char* const begin = p_++;
  int columns = 0;  // of the first row
  for (int column = 1;; ++column) {
    if (!array_element()) return false;
    if (*p_ == ',') {
      ++p_;
      continue;
    }
    if (*p_ != ';' && *p_ != '}') return fail(p_);
    if (columns == 0) columns = column;
    if (column != columns) return fail(p_);
    column = 0;
    if (*p_++ == '}') return add_leaf(NodeKind::kArray, begin, begin);
  }
}

bool Parser::array_element() {
  skip_blanks();
  const bool has_sign = *p_ == '-' || *p_ == '+';
  if (has_sign) ++p_;
  if (is_digit(*p_) || *p_ == '.') {
    if (!skip_number()) return false;
  } else if (has_sign) {
    return fail(p_);
  } else if (*p_ == '"') {
    if (!skip_text()) return false;
  } else {
    const char* const behind = *p_ == '#' ? error_text_end(p_) : scan_word(p_);
    if (behind == nullptr) return fail(p_);
    const std::string_view text(p_, static_cast<std::size_t>(behind - p_));
    if (*p_ != '#' && !equals_upper(text, "TRUE") && !equals_upper(text, "FALSE")) return fail(p_);
    capitalise(p_, behind);
    p_ = behind;
  }
  skip_blanks();
  return true;
}

// 'It''s'!, 'First:Last'!, '[1]Sheet 1'!, 'C:\dir\[Book 1.xlsx]Sheet 1'!
bool Parser::quoted_prefix() {
  const char* const begin = p_;
  const char* const p = behind_quoted(begin);
  if (p == nullptr) return fail(end_);
  if (p - begin == 2) return fail(begin + 1);
  if (*p != '!') return fail(p);
  const std::string_view inner(begin + 1, static_cast<std::size_t>(p - begin) - 2);
  PrefixKind kind = PrefixKind::kSheet;
  if (inner.find_first_of("[]") != npos) {
    kind = PrefixKind::kExternal;
    if (const char* const bad = bad_book(inner)) return fail(bad);
  } else if (options_.lenient && is_path(inner)) {
    kind = PrefixKind::kExternal;
  } else if (const std::size_t colon = inner.find(':'); colon != npos) {
    kind = PrefixKind::kSheets;
    if (const std::size_t more = inner.find(':', colon + 1); more != npos)
      return fail(inner.data() + more);
  }
  p_ = p + 1;
  return after_prefix(begin, kind);
}

// Behind the closing apostrophe of what opens at `p`; null when it does not close.
const char* Parser::behind_quoted(const char* p) const {
  for (++p; p != end_; ++p) {
    if (*p != '\'') continue;
    if (p[1] != '\'') return p + 1;
    ++p;
  }
  return nullptr;
}

// [1]Sheet1!A1, [Book1.xlsx]Sheet1!A1, [1]!Rate, or the columns of the table that the formula
// stands in: [@Net].
bool Parser::bracket() {
  const char* const begin = p_;
  const std::size_t inside =
      std::string_view(begin + 1, static_cast<std::size_t>(end_ - begin) - 1).find_first_of("[]'");
  const char* const p = begin + 1 + std::min(inside, static_cast<std::size_t>(end_ - begin) - 1);
  if (*p == ']' && p != begin + 1) {
    p_ = p + 1;
    if (*p_ == '!') {
      ++p_;
      return after_prefix(begin, PrefixKind::kExternal);
    }
    if (is_word(*p_) && skip_sheet_prefix() != PrefixKind::kNone)
      return after_prefix(begin, PrefixKind::kExternal);
    p_ = begin;
  }
  return structured(begin, begin, PrefixKind::kNone);
}

// `Sheet1!` or `Sheet1:Sheet3!`, or PrefixKind::kNone when neither stands there.
Parser::SheetPrefixAt Parser::sheet_prefix_at(const char* begin) {
  PrefixKind kind = PrefixKind::kSheet;
  const char* p = scan_word(begin);
  if (*p == ':' && is_word(p[1])) {
    // A1:Sheet2!B1 is a range from A1 on.
    if (looks_like_address({begin, static_cast<std::size_t>(p - begin)})) kind = PrefixKind::kNone;
    else kind = PrefixKind::kSheets;
    p = scan_word(p + 1);
  }
  if (*p != '!' || bad_character(begin, p) != nullptr) kind = PrefixKind::kNone;
  return {kind, p + 1};
}

PrefixKind Parser::skip_sheet_prefix() {
  const auto [kind, behind] = sheet_prefix_at(p_);
  if (kind != PrefixKind::kNone) p_ = behind;
  return kind;
}

// What a prefix may stand before: an address, a name, a call, a table, an error.
bool Parser::after_prefix(const char* begin, PrefixKind prefix) {
  const char* const mark = p_;
  if (const char* const behind = *p_ == '#' ? error_text_end(p_) : nullptr) {
    capitalise(p_, behind);
    p_ = behind;
    return add_leaf(NodeKind::kError, begin, mark, prefix);
  }
  if (*p_ == '\'' && prefix == PrefixKind::kExternal) {
    const char* const behind = behind_quoted(p_);
    if (behind == nullptr) return fail(end_);
    p_ = behind;
    return add_leaf(NodeKind::kName, begin, mark, prefix);
  }
  if (*p_ != '$' && !is_word(*p_)) return fail(p_);
  return word(begin, prefix);
}

// An address, a name, a call, a table, TRUE, or a sheet's name that leads on to one of these.
bool Parser::word(const char* begin, PrefixKind prefix) {
  const char* const start = p_;
  const Found found = reference(begin, prefix);
  if (found != Found::kNo) return found == Found::kYes;
  const char* const end = scan_word(start);
  if (const char* const bad = bad_character(start, end)) return fail(bad);
  if (prefix == PrefixKind::kNone && (*end == '!' || *end == ':')) {
    const PrefixKind found_prefix = skip_sheet_prefix();
    if (found_prefix != PrefixKind::kNone) return after_prefix(begin, found_prefix);
  }
  if (end == start || is_digit(*start) || *start == '.' || *start == '?') return fail(start);
  p_ = end;
  if (*p_ == '(') return call(begin, start, end, prefix);
  if (*p_ == '[') return structured(begin, start, prefix);
  const std::string_view name(start, static_cast<std::size_t>(end - start));
  // A blank before the parenthesis intersects, but not end what can only be a function.
  if (is_blank(*p_) && (is_known_function(name) || name.starts_with("_xlfn."))) {
    skip_blanks();
    if (*p_ == '(') return call(begin, start, end, prefix);
    p_ = end;
  }
  if (prefix == PrefixKind::kNone && (equals_upper(name, "TRUE") || equals_upper(name, "FALSE"))) {
    capitalise(start, end);
    return add_leaf(NodeKind::kBoolean, begin, begin);
  }
  CellReference cell;
  if (options_.notation == Notation::kR1C1 && scan_cell(start, end, cell) == end)
    return fail(start);  // it would turn into an address in A1 notation
  return add_leaf(NodeKind::kName, begin, start, prefix);
}

// Brackets hold one name, [Net], or a list of names in brackets of their own, [[#Totals],[Net]],
// either end an @. An apostrophe takes the special meaning off the next character.
bool Parser::structured(const char* begin, const char* mark, PrefixKind prefix) {
  if (!options_.later_forms) return fail(mark);
  int depth = 0;
  bool is_name = false;
  bool is_list = false;
  for (; p_ != end_; ++p_) {
    if (*p_ == '[') {
      if (++depth > 2 || is_name) return fail(p_);
      is_list = depth == 2;
      if (depth == 1 && p_[1] == '@') ++p_;
    } else if (*p_ == ']') {
      if (--depth > 0) continue;
      ++p_;
      return add_leaf(NodeKind::kStructured, begin, mark, prefix);
    } else if (depth == 2 || !is_blank(*p_)) {
      if (depth == 1 && is_list && *p_ != ',' && *p_ != ':') return fail(p_);
      is_name = depth == 1 && !is_list;
      if (*p_ == '\'' && p_ + 1 != end_) ++p_;
    }
  }
  return fail(p_);
}

// Stands on the opening parenthesis, behind the name that begins at `name`.
bool Parser::call(const char* begin, const char* name, const char* name_end, PrefixKind prefix) {
  const std::uint16_t first = node_count();
  const bool lower = std::any_of(name, name_end, [](char c) { return c >= 'a' && c <= 'z'; });
  if (lower && is_known_function({name, static_cast<std::size_t>(name_end - name)}))
    capitalise(name, name_end);
  ++p_;
  int count = 0;
  if (!arguments(begin, count)) return false;
  formula_.nodes.push_back({NodeKind::kCall, prefix, static_cast<std::uint16_t>(count), first,
                            offset(begin), offset(p_), offset(name)});
  return true;
}

// Stands behind the opening parenthesis and goes behind the closing one.
bool Parser::arguments(const char* begin, int& count) {
  const bool outer_unions = std::exchange(unions_, false);
  skip_blanks();
  if (*p_ == ')') {
    ++p_;
    unions_ = outer_unions;
    return true;
  }
  while (true) {
    if (++count > options_.max_arguments && !options_.lenient)
      return fail(begin, Kind::kManyArguments);
    skip_blanks();
    if (*p_ == ',' || *p_ == ')') add_leaf(NodeKind::kMissing, p_, p_);
    else if (!expression(kLevelCompare)) return false;
    skip_blanks();
    if (*p_ != ',' && *p_ != ')') return fail(p_);
    if (*p_++ == ')') break;
  }
  unions_ = outer_unions;
  return true;
}

Parser::Found Parser::reference(const char* begin, PrefixKind prefix) {
  return options_.notation == Notation::kA1 ? reference_a1(begin, prefix)
                                            : reference_r1c1(begin, prefix);
}

// One look at the letters and digits tells what can follow, as most words are calls and most
// addresses single cells.
Parser::Found Parser::reference_a1(const char* begin, PrefixKind prefix) {
  Reference reference;
  CellReference& first = reference.first;
  CellReference& last = reference.last;
  const char* const start = p_;
  const char* const behind_column = scan_column(start, end_, first.column, first.column_absolute);
  const char* const behind_row = scan_row(behind_column == nullptr ? start : behind_column, end_,
                                          first.row, first.row_absolute);
  if (behind_column != nullptr && behind_row != nullptr) {
    // A1, A1:B2; names such as YTD2024 have too many letters.
    if (!ends_address(behind_row) || first.column >= kAddressColumns) return Found::kNo;
    // A book may call something TAX10 where the columns end before that.
    const auto is_name = [this](const CellReference& cell) {
      return options_.lenient && !options_.grid.holds(cell.row, cell.column);
    };
    if (is_name(first)) return Found::kNo;
    const char* const second = behind_colon(behind_row);
    const char* const area_end = second == nullptr ? nullptr : scan_cell(second, end_, last);
    // A1:Abcd1:Abcd3!A1 goes on with sheets: their names have too many letters as well.
    const bool is_area =
        ends_address(area_end) && !is_name(last) &&
        (last.column < kAddressColumns || sheet_prefix_at(second).kind == PrefixKind::kNone);
    if (is_area) reference.shape = Reference::Shape::kArea;
    else last = first;
    return add_reference(begin, is_area ? area_end : behind_row, prefix, reference);
  }
  // A:C, 2:7
  const bool columns = behind_column != nullptr;
  const char* const second = behind_colon(columns ? behind_column : behind_row);
  if (second == nullptr) return Found::kNo;
  const char* const behind = columns ? scan_column(second, end_, last.column, last.column_absolute)
                                     : scan_row(second, end_, last.row, last.row_absolute);
  if (!ends_address(behind)) return Found::kNo;
  if (columns) {
    if (std::max(first.column, last.column) > kLastThreeLetters) return Found::kNo;
    first.row = 0;
    first.row_absolute = false;
  } else {
    first.column = 0;
    first.column_absolute = false;
  }
  reference.shape = columns ? Reference::Shape::kColumns : Reference::Shape::kRows;
  return add_reference(begin, behind, prefix, reference);
}

// One end of a reference in R1C1 notation: a cell, or R or C alone for whole rows and columns.
const char* Parser::r1c1_end(const char* p, Reference::Shape& shape, CellReference& cell) const {
  const CellAddress base = options_.base;
  const Grid& grid = options_.grid;
  const char* const behind_row =
      scan_r1c1_part(p, end_, 'R', base.row, grid.rows, cell.row, cell.row_absolute);
  if (behind_row != nullptr) p = behind_row;
  const char* const behind_column =
      scan_r1c1_part(p, end_, 'C', base.column, grid.columns, cell.column, cell.column_absolute);
  if (behind_column == nullptr) {
    shape = Reference::Shape::kRows;
    return ends_address(behind_row) ? behind_row : nullptr;
  }
  shape = behind_row == nullptr ? Reference::Shape::kColumns : Reference::Shape::kCell;
  return ends_address(behind_column) ? behind_column : nullptr;
}

Parser::Found Parser::reference_r1c1(const char* begin, PrefixKind prefix) {
  Reference reference;
  const char* const behind = r1c1_end(p_, reference.shape, reference.first);
  if (behind == nullptr) return Found::kNo;
  reference.last = reference.first;
  Reference::Shape shape = reference.shape;
  CellReference last;
  const char* const second = behind_colon(behind);
  const char* const area_end = second == nullptr ? nullptr : r1c1_end(second, shape, last);
  if (area_end == nullptr || shape != reference.shape)
    return add_reference(begin, behind, prefix, reference);
  reference.last = last;
  if (shape == Reference::Shape::kCell) reference.shape = Reference::Shape::kArea;
  return add_reference(begin, area_end, prefix, reference);
}

Parser::Found Parser::add_reference(const char* begin, const char* end, PrefixKind prefix,
                                    const Reference& reference) {
  const auto& [shape, first, last] = reference;
  const char* const start = p_;
  if (!options_.grid.holds(std::max(first.row, last.row), std::max(first.column, last.column))) {
    fail_beyond(start, reference);
    return Found::kRefused;
  }
  capitalise(start, end);
  p_ = end;
  const auto index = static_cast<std::uint16_t>(formula_.references.size());
  formula_.references.push_back(reference);
  add(NodeKind::kReference, node_count(), begin, start, index, prefix);
  return Found::kYes;
}

}  // namespace

bool parse(Formula& formula, std::string_view text, const ParseOptions& options,
           ParseError* error) {
  if (text.size() > kMaxFormulaLength) {
    const int length = length_of(text);
    const bool fits = options.lenient || length <= kMaxFormulaLength;
    if (text.size() > kMaxBytes || !fits) {
      if (error != nullptr) *error = {ParseError::Kind::kTooLong, 0, length, {}};
      return false;
    }
  }
  formula.text = text;
  formula.notation = options.notation;
  formula.base = options.base;
  formula.grid = options.grid;
  formula.nodes.clear();
  formula.references.clear();
  Parser parser(formula, options);
  if (parser.run()) return true;
  if (error != nullptr) *error = parser.error();
  return false;
}

std::optional<Formula> parse(std::string_view text, const ParseOptions& options,
                             ParseError* error) {
  std::optional<Formula> formula(std::in_place);
  if (!parse(*formula, text, options, error)) formula.reset();
  return formula;
}

}  // namespace engine::formula
