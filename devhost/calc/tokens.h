// The words of the calculation language.
//
// Between the words stand blanks, line ends and comments: // to the end of the line, and /* */. A
// text literal holds \" for a quote, \\ for a backslash, ¶ for a carriage return and \¶ for the
// character itself; a line end inside is a carriage return too.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "devhost/calc/syntax_error.h"

namespace devhost {

enum class Symbol {
  kOpen,
  kClose,
  kOpenBracket,
  kCloseBracket,
  kSemicolon,
  kConcatenate,
  kPlus,
  kMinus,
  kTimes,
  kDivide,
  kPower,
  kEqual,
  kNotEqual,
  kLess,
  kGreater,
  kLessOrEqual,
  kGreaterOrEqual,
  kAnd,
  kOr,
  kXor,
  kNot,
};

struct Token {
  enum class Kind { kNumber, kText, kName, kVariable, kSymbol, kEnd };

  bool is(Symbol wanted) const { return kind == Kind::kSymbol && symbol == wanted; }

  Kind kind = Kind::kEnd;
  Symbol symbol = Symbol::kOpen;
  // Of a text its content, of a number its digits, of a name or variable ("$" included) its
  // letters.
  std::u16string text;
  Position position;
  // Where the next character stands.
  Position end;
};

// All tokens, closed by one of kind kEnd. The text may be a part, from the start of a line on.
std::vector<Token> tokenize(std::u16string_view text, int first_line = 1);

}  // namespace devhost
