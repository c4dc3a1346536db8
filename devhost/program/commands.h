// What xlcalc does: one function a command. Each gives the exit status of the program.
#pragma once

#include <string>
#include <string_view>

#include "devhost/calc/evaluator.h"
#include "devhost/program/report.h"

namespace devhost {

inline constexpr int kDone = 0;
inline constexpr int kFailed = 1;
inline constexpr int kBadUsage = 2;

int evaluate(Evaluator& evaluator, Report& report, const std::string& calculation);

int run_script(Evaluator& evaluator, Report& report, const std::string& path);

// Statements typed one by one. A mistake in one does not end the prompt.
int converse(Evaluator& evaluator, Report& report, const std::string& greeting);

// Functions and constants that mention the word, functions each with a calculation that uses it
// when they are few.
int list_functions(Report& report, const std::string& word);

struct Shown {
  std::string file;
  // A name or a number from 1 on; empty for the list of sheets and the active sheet.
  std::string sheet;
  // Empty for all that the sheet holds.
  std::string range;
  bool formulas = false;
  bool all = false;
};

int show_workbook(Report& report, const Shown& wanted);

}  // namespace devhost
