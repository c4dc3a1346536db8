#include <editline/readline.h>

#include <algorithm>
#include <clocale>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <string_view>
#include <system_error>
#include <utility>

#include "devhost/fm/unicode.h"
#include "devhost/program/line_editor.h"

namespace devhost {
namespace {

constexpr int kKeptLines = 1000;

// The library knows its callbacks by plain pointers without a context.
LineEditor::Words g_words = nullptr;

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
    matches = g_words();
    std::erase_if(matches,
                  [&](const std::string& name) { return !starts_with_ignoring_case(name, start); });
    std::sort(matches.begin(), matches.end());
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

}  // namespace

LineEditor::LineEditor(Words words, std::filesystem::path history) : history_(std::move(history)) {
  // Characters only: numbers keep their point.
  std::setlocale(LC_CTYPE, "");
  g_words = words;
  rl_attempted_completion_function = complete;
  using_history();
  stifle_history(kKeptLines);
  std::ifstream file(history_);
  for (std::string line; std::getline(file, line);) add_history(line.c_str());
}

LineEditor::~LineEditor() { g_words = nullptr; }

// At once, so that nothing is lost however the program ends.
void LineEditor::keep(const char* line) const {
  add_history(line);
  if (history_.empty()) return;
  std::error_code error;
  std::filesystem::create_directories(history_.parent_path(), error);
  std::ofstream(history_, std::ios::app) << line << '\n';
}

std::optional<std::string> LineEditor::read(const char* prompt) {
  const std::unique_ptr<char, Free> line(readline(prompt));
  if (!line) return std::nullopt;
  if (*line != '\0') keep(line.get());
  return line.get();
}

}  // namespace devhost
