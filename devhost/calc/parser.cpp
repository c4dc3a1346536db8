#include "devhost/calc/parser.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "devhost/calc/names.h"
#include "devhost/fm/number_text.h"
#include "devhost/fm/unicode.h"

namespace devhost {
namespace {

constexpr std::size_t kRanks = 7;

// The operators of each rank, the loosest first.
const std::array<std::vector<Symbol>, kRanks>& ranks() {
  static const std::array<std::vector<Symbol>, kRanks> table = {{
      {Symbol::kOr, Symbol::kXor},
      {Symbol::kAnd},
      {Symbol::kEqual, Symbol::kNotEqual, Symbol::kLess, Symbol::kGreater, Symbol::kLessOrEqual,
       Symbol::kGreaterOrEqual},
      {Symbol::kConcatenate},
      {Symbol::kPlus, Symbol::kMinus},
      {Symbol::kTimes, Symbol::kDivide},
      {Symbol::kPower},
  }};
  return table;
}

NodePtr make(Node::Kind kind) { return std::make_unique<Node>(kind); }

bool is_word(const Token& token, std::u16string_view word) {
  return compare_ignoring_case(token.text, word) == 0;
}

struct Local {
  std::u16string name;
  std::size_t slot;
};

template <typename Iterator>
Iterator find_local(Iterator first, Iterator last, const std::u16string& name) {
  return std::find_if(first, last, [&](const Local& local) { return local.name == name; });
}

class Parser {
 public:
  explicit Parser(std::span<const Token> tokens) : tokens_(tokens) {}

  Calculation calculation() {
    Calculation result;
    result.root = expression();
    if (current().kind != Token::Kind::kEnd) fail("an operator is expected here");
    result.slots = slots_;
    return result;
  }

 private:
  // Counts the levels between the calculation and the place that is being read.
  class Nesting {
   public:
    explicit Nesting(Parser& parser) : parser_(parser) {
      if (++parser_.nesting_ > kMaxNesting) parser_.fail("nested too deeply");
    }
    ~Nesting() { --parser_.nesting_; }
    Nesting(const Nesting&) = delete;
    Nesting& operator=(const Nesting&) = delete;

   private:
    Parser& parser_;
  };

  const Token& current() const { return tokens_[next_]; }

  [[noreturn]] void fail(const std::string& problem) const { fail_at(current(), problem); }

  [[noreturn]] static void fail_at(const Token& token, const std::string& problem) {
    throw SyntaxError(token.position, problem);
  }

  bool take(Symbol symbol) {
    if (!current().is(symbol)) return false;
    ++next_;
    return true;
  }

  void expect(Symbol symbol, const char* spelling) {
    if (!take(symbol)) fail(std::string(spelling) + " is expected here");
  }

  NodePtr expression() {
    const Nesting level(*this);
    return ranked(0);
  }

  NodePtr ranked(std::size_t rank) {
    if (rank == kRanks) return operand();
    NodePtr first = ranked(rank + 1);
    if (!at_operator(rank)) return first;
    NodePtr node = make(Node::Kind::kOperators);
    node->children.push_back(std::move(first));
    while (at_operator(rank)) {
      node->operators.push_back(current().symbol);
      ++next_;
      node->children.push_back(ranked(rank + 1));
    }
    return node;
  }

  bool at_operator(std::size_t rank) const {
    const auto& symbols = ranks()[rank];
    return current().kind == Token::Kind::kSymbol &&
           std::find(symbols.begin(), symbols.end(), current().symbol) != symbols.end();
  }

  NodePtr operand() {
    const Token& token = current();
    switch (token.kind) {
      case Token::Kind::kNumber:
        ++next_;
        return constant(Value(number_from_text(token.text)));
      case Token::Kind::kText:
        ++next_;
        return constant(Value(token.text));
      case Token::Kind::kVariable:
        ++next_;
        return variable(token);
      case Token::Kind::kName:
        ++next_;
        return named(token);
      default:
        break;
    }
    if (take(Symbol::kMinus)) return signed_operand(Node::Kind::kNegate);
    if (take(Symbol::kPlus)) return signed_operand(Node::Kind::kOperators);
    if (take(Symbol::kNot)) return signed_operand(Node::Kind::kNot);
    expect(Symbol::kOpen, "a value");
    NodePtr inner = expression();
    expect(Symbol::kClose, ")");
    return inner;
  }

  static NodePtr constant(Value value) {
    NodePtr node = make(Node::Kind::kConstant);
    node->constant = std::move(value);
    return node;
  }

  static NodePtr variable(const Token& token) {
    NodePtr node = make(Node::Kind::kVariable);
    node->variable = to_lower(token.text);
    return node;
  }

  // A plus sign leaves its operand as it is.
  NodePtr signed_operand(Node::Kind kind) {
    const Nesting level(*this);
    NodePtr inner = operand();
    if (kind == Node::Kind::kOperators) return inner;
    NodePtr node = make(kind);
    node->children.push_back(std::move(inner));
    return node;
  }

  NodePtr named(const Token& name) {
    const bool has_arguments = current().is(Symbol::kOpen);
    if (has_arguments) {
      if (is_word(name, u"Let")) return let();
      if (is_word(name, u"While")) return while_loop(name);
      if (is_word(name, u"If")) return choice(name, 3);
      if (is_word(name, u"Case")) return choice(name, kUnlimited);
    } else if (NodePtr node = local(name)) {
      return node;
    }
    return function(name, has_arguments);
  }

  // The innermost local variable of the name; null when there is none.
  NodePtr local(const Token& name) const {
    const auto found = find_local(scope_.rbegin(), scope_.rend(), to_lower(name.text));
    if (found == scope_.rend()) return nullptr;
    NodePtr node = make(Node::Kind::kLocal);
    node->slot = found->slot;
    return node;
  }

  NodePtr function(const Token& name, bool has_arguments) {
    const Builtin* builtin = find_builtin(name.text);
    const RegisteredFunction* external =
        builtin == nullptr ? FunctionRegistry::instance().find(name.text) : nullptr;
    if (builtin == nullptr && external == nullptr) {
      fail_unknown(name);
    }
    NodePtr node = make(builtin != nullptr ? Node::Kind::kBuiltin : Node::Kind::kExternal);
    node->position = name.position;
    node->builtin = builtin;
    node->external = external;
    if (has_arguments) node->children = arguments(builtin != nullptr && builtin->takes_pairs);
    if (builtin != nullptr) {
      check_count(name, node->children.size(), builtin->minimum, builtin->maximum);
      if (builtin->takes_pairs && node->children.size() % 2 == 0) {
        fail_at(name, utf8_from_utf16(name.text) + " takes a text and pairs");
      }
    } else {
      check_count(name, node->children.size(), external->minimum, external->maximum,
                  external->prototype);
    }
    return node;
  }

  [[noreturn]] static void fail_unknown(const Token& name) {
    std::string problem = "there is no function or variable " + utf8_from_utf16(name.text);
    const std::u16string nearest = nearest_name(name.text);
    if (!nearest.empty()) problem += "; did you mean " + utf8_from_utf16(nearest) + "?";
    fail_at(name, problem);
  }

  static void check_count(const Token& name, std::size_t count, int minimum, int maximum,
                          std::u16string_view prototype = {}) {
    if (count >= static_cast<std::size_t>(minimum) &&
        (maximum == kUnlimited || count <= static_cast<std::size_t>(maximum))) {
      return;
    }
    std::string expected = std::to_string(minimum);
    if (maximum == kUnlimited) expected += " or more";
    if (maximum > minimum) expected += " to " + std::to_string(maximum);
    const char* const parameters = expected == "1" ? " parameter, not " : " parameters, not ";
    std::string problem =
        utf8_from_utf16(name.text) + " takes " + expected + parameters + std::to_string(count);
    if (!prototype.empty()) problem += ": " + utf8_from_utf16(prototype);
    fail_at(name, problem);
  }

  std::vector<NodePtr> arguments(bool pairs_allowed) {
    std::vector<NodePtr> result;
    expect(Symbol::kOpen, "(");
    if (take(Symbol::kClose)) return result;
    do {
      if (pairs_allowed && take(Symbol::kOpenBracket)) {
        result.push_back(expression());
        expect(Symbol::kSemicolon, ";");
        result.push_back(expression());
        expect(Symbol::kCloseBracket, "]");
      } else {
        result.push_back(expression());
      }
    } while (take(Symbol::kSemicolon));
    expect(Symbol::kClose, ")");
    return result;
  }

  NodePtr choice(const Token& name, int maximum) {
    NodePtr node = make(Node::Kind::kCase);
    node->children = arguments(false);
    check_count(name, node->children.size(), 2, maximum);
    return node;
  }

  NodePtr let() {
    const std::size_t outer = scope_.size();
    NodePtr node = make(Node::Kind::kLet);
    expect(Symbol::kOpen, "(");
    node->bindings = bindings();
    expect(Symbol::kSemicolon, ";");
    node->children.push_back(expression());
    expect(Symbol::kClose, ")");
    leave_scope(outer);
    return node;
  }

  NodePtr while_loop(const Token& name) {
    const std::size_t outer = scope_.size();
    NodePtr node = make(Node::Kind::kWhile);
    node->position = name.position;
    expect(Symbol::kOpen, "(");
    node->bindings = bindings();
    expect(Symbol::kSemicolon, ";");
    node->children.push_back(expression());
    expect(Symbol::kSemicolon, ";");
    node->repeated = bindings(outer);
    expect(Symbol::kSemicolon, ";");
    node->children.push_back(expression());
    expect(Symbol::kClose, ")");
    leave_scope(outer);
    return node;
  }

  void leave_scope(std::size_t outer) {
    scope_.erase(scope_.begin() + static_cast<std::ptrdiff_t>(outer), scope_.end());
  }

  std::vector<Binding> bindings() { return bindings(scope_.size()); }

  // One binding, or any number in brackets. A name that stands in the scope from `own` on is
  // changed, another one is new.
  std::vector<Binding> bindings(std::size_t own) {
    std::vector<Binding> result;
    if (!take(Symbol::kOpenBracket)) {
      result.push_back(binding(own));
      return result;
    }
    while (!take(Symbol::kCloseBracket)) {
      result.push_back(binding(own));
      if (!take(Symbol::kSemicolon) && !current().is(Symbol::kCloseBracket)) {
        fail("; or ] is expected here");
      }
    }
    return result;
  }

  // The value is read first, as it does not see the name that it is for.
  Binding binding(std::size_t own) {
    const Token& name = current();
    if (name.kind != Token::Kind::kName && name.kind != Token::Kind::kVariable) {
      fail("the name of a variable is expected here");
    }
    ++next_;
    expect(Symbol::kEqual, "=");
    Binding result;
    result.value = expression();
    if (name.kind == Token::Kind::kVariable) {
      result.variable = to_lower(name.text);
    } else {
      result.slot = slot_of(to_lower(name.text), own);
    }
    return result;
  }

  // No two names share a slot, even when their scopes do not overlap: a loop comes back to a scope
  // that the parser has left.
  std::size_t slot_of(std::u16string name, std::size_t own) {
    const auto start = scope_.begin() + static_cast<std::ptrdiff_t>(own);
    const auto known = find_local(start, scope_.end(), name);
    if (known != scope_.end()) return known->slot;
    scope_.push_back({std::move(name), slots_});
    return slots_++;
  }

  static constexpr int kUnlimited = -1;

  std::span<const Token> tokens_;
  std::size_t next_ = 0;
  int nesting_ = 0;
  // The local variables in reach, the innermost last.
  std::vector<Local> scope_;
  std::size_t slots_ = 0;
};

}  // namespace

Calculation parse_calculation(std::span<const Token> tokens) {
  return Parser(tokens).calculation();
}

Calculation parse_calculation(std::u16string_view text) {
  return parse_calculation(tokenize(text));
}

}  // namespace devhost
