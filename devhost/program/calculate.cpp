// Calculations given as an argument and scripts given as a file.
#include <fstream>
#include <iostream>
#include <optional>
#include <sstream>

#include "devhost/calc/parser.h"
#include "devhost/calc/script.h"
#include "devhost/fm/unicode.h"
#include "devhost/program/commands.h"

namespace devhost {
namespace {

std::optional<std::string> read_file(const std::string& path) {
  std::ifstream file(path_from_utf8(path), std::ios::binary);
  // Only a file that is empty ends here: one that cannot be read, as a folder, fails otherwise.
  if (file.peek(); file.eof()) return "";
  std::ostringstream text;
  if (!file || !(text << file.rdbuf())) return std::nullopt;
  return text.str();
}

}  // namespace

int evaluate(Evaluator& evaluator, const std::string& calculation) {
  const Calculation parsed = parse_calculation(utf16_from_utf8(calculation));
  std::cout << printed(evaluator.evaluate(parsed)) << std::flush;
  return kDone;
}

int run_script(Evaluator& evaluator, const std::string& path) {
  const auto text = read_file(path);
  if (!text) {
    complain("script \"" + path + "\" cannot be read");
    return kBadUsage;
  }
  for (const Statement& statement : parse_script(utf16_from_utf8(*text))) {
    std::cout << run_statement(evaluator, statement) << std::flush;
  }
  return kDone;
}

}  // namespace devhost
