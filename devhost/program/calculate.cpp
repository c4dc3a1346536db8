// Calculations given as an argument and scripts given as a file.
#include <fstream>
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

int evaluate(Evaluator& evaluator, Report& report, const std::string& calculation) {
  const std::u16string text = utf16_from_utf8(calculation);
  report.source(text);
  report.result(evaluator.evaluate(parse_calculation(text)), {});
  return kDone;
}

int run_script(Evaluator& evaluator, Report& report, const std::string& path) {
  const auto bytes = read_file(path);
  if (!bytes) {
    report.error("script \"" + path + "\" cannot be read");
    return kBadUsage;
  }
  const std::u16string text = utf16_from_utf8(*bytes);
  report.source(text, path);
  for (const Statement& statement : parse_script(text)) {
    if (const auto value = run_statement(evaluator, statement)) {
      report.result(*value, statement.position);
    }
  }
  return kDone;
}

}  // namespace devhost
