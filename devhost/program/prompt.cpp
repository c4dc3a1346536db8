#include "devhost/program/prompt.h"

#include <editline/readline.h>
#include <unistd.h>

#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "devhost/calc/builtins.h"
#include "devhost/calc/script.h"
#include "devhost/fm/function_registry.h"
#include "devhost/fm/unicode.h"

namespace devhost {
namespace {

constexpr const char* kPrompt = "> ";
constexpr const char* kContinued = "  ";

std::vector<std::string> all_names() {
  std::vector<std::string> names = {"Case", "If", "Let", "While"};
  for (const auto functions :
       {number_functions(), text_functions(), list_functions(), container_functions()}) {
    for (const Builtin& builtin : functions) names.push_back(utf8_from_utf16(builtin.name));
  }
  for (const RegisteredFunction* function : FunctionRegistry::instance().all()) {
    names.push_back(utf8_from_utf16(function->name));
  }
  std::sort(names.begin(), names.end());
  return names;
}

bool starts_with_ignoring_case(const std::string& name, std::string_view start) {
  return name.size() >= start.size() &&
         compare_ignoring_case(utf16_from_utf8(name.substr(0, start.size())),
                               utf16_from_utf8(start)) == 0;
}

// The library asks for one match after the other; state 0 begins anew. It frees what it gets.
char* next_match(const char* start, int state) {
  static std::vector<std::string> matches;
  static std::size_t next = 0;
  if (state == 0) {
    matches = all_names();
    std::erase_if(matches,
                  [&](const std::string& name) { return !starts_with_ignoring_case(name, start); });
    next = 0;
  }
  return next < matches.size() ? strdup(matches[next++].c_str()) : nullptr;
}

// File names, which the library would offer otherwise, are of no use in a calculation.
char** complete(const char* word, int /*start*/, int /*end*/) {
  rl_attempted_completion_over = 1;
  return rl_completion_matches(word, next_match);
}

struct Free {
  void operator()(char* text) const { std::free(text); }
};

std::optional<std::string> read_from_terminal(const char* prompt) {
  const std::unique_ptr<char, Free> line(readline(prompt));
  if (!line) return std::nullopt;
  if (*line != '\0') add_history(line.get());
  return line.get();
}

std::optional<std::string> read_plainly(const char* /*prompt*/) {
  std::string line;
  if (!std::getline(std::cin, line)) return std::nullopt;
  return line;
}

}  // namespace

void run_prompt(const std::function<void(const std::string& statement)>& carry_out) {
  const bool terminal = isatty(STDIN_FILENO) != 0;
  if (terminal) {
    // Characters only: numbers keep their point.
    std::setlocale(LC_CTYPE, "");
    rl_attempted_completion_function = complete;
  }
  const auto read = terminal ? read_from_terminal : read_plainly;
  std::string statement;
  while (const auto line = read(statement.empty() ? kPrompt : kContinued)) {
    statement += *line + "\n";
    if (is_unfinished(utf16_from_utf8(statement))) continue;
    carry_out(statement);
    statement.clear();
  }
  if (!statement.empty()) carry_out(statement);
  if (terminal) std::cout << '\n';
}

}  // namespace devhost
