// The prompt: statements from a terminal or, without its comforts, from whatever the input is. A
// statement goes on over lines until its brackets are closed.
#include <algorithm>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "devhost/calc/names.h"
#include "devhost/calc/script.h"
#include "devhost/fm/unicode.h"
#include "devhost/program/commands.h"
#include "devhost/program/line_editor.h"
#include "devhost/program/system.h"

namespace devhost {
namespace {

constexpr const char* kPrompt = "> ";
constexpr const char* kContinued = "  ";

constexpr const char* kHelp =
    "Calculations print their result, $name = ... keeps it. Tab completes a name, ?WORD looks\n"
    "functions up, Ctrl-C drops what is typed, Ctrl-D ends.\n";

std::vector<std::string> words() {
  std::vector<std::string> words;
  for (const std::u16string& name : known_names()) words.push_back(utf8_from_utf16(name));
  return words;
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

// A question mark begins no calculation.
bool is_question(const std::string& text) { return text.starts_with('?'); }

int look_up(Report& report, std::string question) {
  question.erase(0, question.find_first_not_of("? "));
  question.erase(question.find_last_not_of(" \n") + 1);
  return list_functions(report, question);
}

int carry_out(Evaluator& evaluator, Report& report, const std::string& text, int first_line) {
  report.source(utf16_from_utf8(text), {}, first_line);
  try {
    if (is_question(text)) return look_up(report, text);
    for (const Statement& statement : parse_script(utf16_from_utf8(text), first_line)) {
      if (const auto value = run_statement(evaluator, statement)) {
        report.result(*value, statement.position);
      }
    }
    return kDone;
  } catch (const SyntaxError& error) {
    report.error(error);
  } catch (const Interrupted& interruption) {
    report.error(interruption.what());
  }
  return kFailed;
}

}  // namespace

int converse(Evaluator& evaluator, Report& report, const std::string& greeting) {
  std::optional<LineEditor> editor;
  if (is_terminal(Channel::kInput)) {
    std::cerr << greeting << '\n' << kHelp;
    editor.emplace(words, history_file());
    note_interrupts();
  }
  int status = kDone;
  std::string text;
  // What is typed begins anew with each statement; what comes through a pipe has been one text.
  int first_line = 1;
  const auto take = [&] {
    if (carry_out(evaluator, report, text, first_line) != kDone) status = kFailed;
    if (!editor) first_line += static_cast<int>(std::count(text.begin(), text.end(), '\n'));
    text.clear();
  };
  for (;;) {
    const auto line = next_line(editor, text.empty() ? kPrompt : kContinued);
    if (line) {
      text += *line + "\n";
      if (is_question(text) || !is_unfinished(utf16_from_utf8(text))) take();
    } else if (was_interrupted()) {
      text.clear();
      std::cout << '\n';
    } else {
      break;
    }
  }
  if (editor) std::cout << '\n';
  if (!text.empty()) take();
  return editor ? kDone : status;
}

}  // namespace devhost
