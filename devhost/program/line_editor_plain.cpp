// Where no library edits lines, the terminal's own keys have to do.
#include <iostream>

#include "devhost/program/line_editor.h"

namespace devhost {

LineEditor::LineEditor(Words /*words*/, std::filesystem::path /*history*/) {}

LineEditor::~LineEditor() = default;

std::optional<std::string> LineEditor::read(const char* prompt) {
  std::cout << prompt << std::flush;
  std::string line;
  if (std::getline(std::cin, line)) return line;
  return std::nullopt;
}

}  // namespace devhost
