// Scripts: files of statements.
//
// A statement ends at the end of a line on which its brackets are closed. "$name = calculation"
// assigns; any other calculation prints its result, each value of a list on a line of its own.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "devhost/calc/evaluator.h"
#include "devhost/calc/tree.h"

namespace devhost {

struct Statement {
  // With its "$"; empty when the result is printed.
  std::u16string variable;
  Calculation calculation;
  Position position;
};

// Parses the whole text, which may be a part that starts at a line, before anything of it runs.
// Throws SyntaxError.
std::vector<Statement> parse_script(std::u16string_view text, int first_line = 1);

// Whether text ends inside brackets, a text or a comment, so that more has to follow.
bool is_unfinished(std::u16string_view text);

// Carries out a statement; its value, unless it assigns, is to be printed.
std::optional<Value> run_statement(Evaluator& evaluator, const Statement& statement);

// A value as it is printed, with a line end after each line.
std::string printed(const Value& value);

}  // namespace devhost
