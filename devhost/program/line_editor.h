// Lines that are typed at a terminal.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace devhost {

// There is one terminal, and so one editor at a time.
class LineEditor {
 public:
  // Gives the words that may complete a name, asked anew each time.
  using Words = std::vector<std::string> (*)();

  // Lines of earlier runs are taken from the file and the new ones kept there; an empty path keeps
  // none, and a file that cannot be read or written is done without.
  LineEditor(Words words, std::filesystem::path history);
  ~LineEditor();
  LineEditor(const LineEditor&) = delete;
  LineEditor& operator=(const LineEditor&) = delete;

  // None at the end of the input, and when the user interrupts.
  std::optional<std::string> read(const char* prompt);

 private:
  void keep(const char* line) const;

  std::filesystem::path history_;
};

}  // namespace devhost
