// What is wrong with the text of a calculation, and where.
#pragma once

#include <stdexcept>
#include <string>

namespace devhost {

// Counted from 1; a column is a character.
struct Position {
  int line = 1;
  int column = 1;
};

// The problem alone is its text.
class SyntaxError : public std::runtime_error {
 public:
  SyntaxError(Position position, const std::string& problem)
      : std::runtime_error(problem), position_(position) {}

  Position position() const { return position_; }

 private:
  Position position_;
};

// The text stops inside a comment or a text literal.
class UnfinishedText : public SyntaxError {
 public:
  using SyntaxError::SyntaxError;
};

}  // namespace devhost
