#include "devhost/calc/script.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <utility>

#include "devhost/calc/parser.h"
#include "devhost/calc/tokens.h"
#include "devhost/fm/unicode.h"

namespace devhost {
namespace {

// How a token changes the number of open brackets.
int opened_by(const Token& token) {
  if (token.is(Symbol::kOpen) || token.is(Symbol::kOpenBracket)) return 1;
  return token.is(Symbol::kClose) || token.is(Symbol::kCloseBracket) ? -1 : 0;
}

// The number of tokens of the statement at the front.
std::size_t statement_length(std::span<const Token> tokens) {
  int open = 0;
  for (std::size_t i = 0;; ++i) {
    open += opened_by(tokens[i]);
    const Token& next = tokens[i + 1];
    if (next.kind == Token::Kind::kEnd) return i + 1;
    if (open <= 0 && next.position.line > tokens[i].end.line) return i + 1;
  }
}

Statement parse_statement(std::span<const Token> tokens) {
  Statement statement;
  statement.position = tokens[0].position;
  Token end;
  end.position = tokens.back().end;
  if (tokens.size() > 1 && tokens[0].kind == Token::Kind::kVariable &&
      tokens[1].is(Symbol::kEqual)) {
    statement.variable = tokens[0].text;
    tokens = tokens.subspan(2);
  }
  std::vector<Token> closed(tokens.begin(), tokens.end());
  closed.push_back(end);
  statement.calculation = parse_calculation(closed);
  return statement;
}

}  // namespace

std::vector<Statement> parse_script(std::u16string_view text, int first_line) {
  const std::vector<Token> tokens = tokenize(text, first_line);
  std::vector<Statement> statements;
  std::span<const Token> rest = tokens;
  while (rest[0].kind != Token::Kind::kEnd) {
    const std::size_t length = statement_length(rest);
    statements.push_back(parse_statement(rest.first(length)));
    rest = rest.subspan(length);
  }
  return statements;
}

bool is_unfinished(std::u16string_view text) {
  try {
    int open = 0;
    for (const Token& token : tokenize(text)) open += opened_by(token);
    return open > 0;
  } catch (const UnfinishedText&) {
    return true;
  } catch (const SyntaxError&) {
    return false;
  }
}

std::string printed(const Value& value) {
  std::string text = utf8_from_utf16(value.units());
  if (text.empty()) return text;
  std::replace(text.begin(), text.end(), '\r', '\n');
  return text + '\n';
}

std::optional<Value> run_statement(Evaluator& evaluator, const Statement& statement) {
  Value value = evaluator.evaluate(statement.calculation);
  if (statement.variable.empty()) return value;
  evaluator.set_variable(statement.variable, std::move(value));
  return std::nullopt;
}

}  // namespace devhost
