// The prompt: statements from a terminal or, without its comforts, from whatever the input is. A
// statement goes on over lines until its brackets are closed.
#include <iostream>
#include <optional>
#include <vector>

#include "devhost/calc/builtins.h"
#include "devhost/calc/script.h"
#include "devhost/fm/function_registry.h"
#include "devhost/fm/unicode.h"
#include "devhost/program/commands.h"
#include "devhost/program/line_editor.h"
#include "devhost/program/system.h"

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
  return names;
}

std::filesystem::path history_file() {
  const std::filesystem::path folder = state_folder();
  return folder.empty() ? folder : folder / "xlcalc" / "history";
}

std::optional<std::string> next_line(std::optional<LineEditor>& editor, const char* prompt) {
  if (editor) return editor->read(prompt);
  std::string line;
  if (!std::getline(std::cin, line)) return std::nullopt;
  return line;
}

int carry_out(Evaluator& evaluator, const std::string& statements) {
  try {
    for (const Statement& statement : parse_script(utf16_from_utf8(statements))) {
      std::cout << run_statement(evaluator, statement) << std::flush;
    }
    return kDone;
  } catch (const SyntaxError& error) {
    complain(error.what());
    return kFailed;
  }
}

}  // namespace

int converse(Evaluator& evaluator, const PluginModule& plugin) {
  std::cerr << plugin.string(PluginModule::kNameString) << '\n';
  std::optional<LineEditor> editor;
  if (is_terminal(Channel::kInput)) {
    editor.emplace(all_names, history_file());
    note_interrupts();
  }
  int status = kDone;
  const auto take = [&](std::string& statement) {
    if (carry_out(evaluator, statement) != kDone) status = kFailed;
    statement.clear();
  };
  std::string statement;
  for (;;) {
    const auto line = next_line(editor, statement.empty() ? kPrompt : kContinued);
    if (line) {
      statement += *line + "\n";
      if (!is_unfinished(utf16_from_utf8(statement))) take(statement);
    } else if (was_interrupted()) {
      statement.clear();
      std::cout << '\n';
    } else {
      break;
    }
  }
  if (editor) std::cout << '\n';
  if (!statement.empty()) take(statement);
  return status;
}

}  // namespace devhost
