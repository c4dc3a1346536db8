// How a run reaches whoever started it: as text, problems on standard error, or as one JSON object
// on standard output.
//
//     { "results": [ … ], "failures": [ … ], "error": null }
//
// "results" is what the command is asked for. "failures" are the functions that failed, each with
// "function", "code" and "message", and with "line" and "column" of the calculation; "error" is
// what ended the run, a "message" with or without a place, else null.
#pragma once

#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "devhost/calc/evaluator.h"
#include "devhost/calc/syntax_error.h"
#include "devhost/program/json.h"

namespace devhost {

enum class Style { kText, kJson };

// Ends the run at the first failure; what failed has been told already.
struct StrictEnd : std::exception {};

class Report {
 public:
  Report(Style style, bool strict);

  // Null when results are printed as text.
  JsonWriter* json() { return json_ ? &*json_ : nullptr; }

  // The text whose lines and columns are told from here on, the file that it is from and the number
  // of its first line.
  void source(std::u16string text, std::string file = {}, int first_line = 1);

  // The value of a statement.
  void result(const Value& value, Position position);
  // Throws StrictEnd when the run is to be strict.
  void failure(const Failure& failure);
  // A mistake in the source.
  void error(const SyntaxError& error);
  void error(const std::string& problem);

  // Completes what is printed.
  void finish();

 private:
  struct Error {
    std::string message;
    std::optional<Position> position;
  };

  void tell(Position position, const std::string& problem) const;
  void write_place(const std::optional<Position>& position);

  std::u16string source_;
  std::string file_;
  int first_line_ = 1;
  bool strict_;
  std::optional<JsonWriter> json_;
  std::vector<Failure> failures_;
  std::optional<Error> error_;
};

}  // namespace devhost
