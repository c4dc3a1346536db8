#include "devhost/program/examples.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <tuple>

#include "devhost/fm/function_registry.h"
#include "devhost/fm/unicode.h"
#include "devhost/program/system.h"

namespace devhost {
namespace {

constexpr std::array kPlaces = {"share/doc/vornelix/examples/reference", "examples/reference"};

// The program is in bin, the examples are beside that folder; a build lies somewhere in the tree.
std::filesystem::path examples_folder() {
  std::filesystem::path folder = program_file();
  while (folder.has_relative_path()) {
    folder = folder.parent_path();
    for (const char* const place : kPlaces) {
      std::error_code error;
      if (std::filesystem::is_directory(folder / place, error)) return folder / place;
    }
  }
  return {};
}

std::vector<std::filesystem::path> files_in(const std::filesystem::path& folder) {
  std::vector<std::filesystem::path> files;
  std::error_code error;
  std::filesystem::directory_iterator file(folder, error);
  for (; !error && file != std::filesystem::directory_iterator(); file.increment(error)) {
    if (file->path().extension() == ".calc") files.push_back(file->path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

bool is_name_part(char letter) {
  return letter == '_' || std::isalnum(static_cast<unsigned char>(letter)) != 0;
}

std::set<std::string> functions_in(std::string_view text) {
  std::set<std::string> functions;
  while (!text.empty()) {
    const auto length = static_cast<std::size_t>(
        std::find_if_not(text.begin(), text.end(), is_name_part) - text.begin());
    const auto* function =
        FunctionRegistry::instance().find(utf16_from_utf8(text.substr(0, length)));
    if (function != nullptr && function->visible()) functions.emplace(text.substr(0, length));
    text.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return functions;
}

// How many words of a name stand in the text: "Write numbers" has both of XL_Sheet_WriteNum. What
// stands in front, the family, is no word of the function's own.
std::ptrdiff_t words_in(const std::string& text, const std::string& name) {
  const std::u16string lower = to_lower(utf16_from_utf8(text));
  std::ptrdiff_t count = 0;
  for (std::size_t at = name.rfind('_') + 1; at < name.size();) {
    const std::size_t end =
        std::min(name.find_first_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ", at + 1), name.size());
    const std::u16string word = to_lower(utf16_from_utf8(name.substr(at, end - at)));
    if (word.size() > 1 && lower.find(word) != std::u16string::npos) ++count;
    at = end;
  }
  return count;
}

Example example_from(const std::string& paragraph) {
  Example example;
  std::size_t at = 0;
  while (paragraph.compare(at, 3, "// ") == 0) {
    const std::size_t end = std::min(paragraph.find('\n', at), paragraph.size());
    if (!example.purpose.empty()) example.purpose += ' ';
    example.purpose += paragraph.substr(at + 3, end - at - 3);
    at = std::min(end + 1, paragraph.size());
  }
  example.text = paragraph.substr(at);
  example.functions = functions_in(example.text);
  return example;
}

}  // namespace

Examples Examples::installed() {
  Examples examples;
  for (const auto& path : files_in(examples_folder())) {
    std::ifstream file(path);
    std::string paragraph;
    for (std::string line; std::getline(file, line);) {
      if (!line.empty()) paragraph += line + '\n';
      if (!line.empty() && file.peek() != std::ifstream::traits_type::eof()) continue;
      examples.add(example_from(paragraph));
      paragraph.clear();
    }
  }
  return examples;
}

void Examples::add(Example example) {
  if (example.functions.empty()) return;
  for (const std::string& name : example.functions) ++uses_[name];
  examples_.push_back(std::move(example));
}

std::size_t Examples::rarer_functions(const Example& example, const std::string& function) const {
  const std::size_t uses = uses_.at(function);
  return static_cast<std::size_t>(
      std::count_if(example.functions.begin(), example.functions.end(),
                    [&](const std::string& name) { return uses_.at(name) < uses; }));
}

const Example* Examples::of(const std::string& function) const {
  const Example* best = nullptr;
  const auto rank = [&](const Example& example) {
    return std::tuple(-words_in(example.purpose, function), rarer_functions(example, function),
                      example.text.size());
  };
  for (const Example& example : examples_) {
    if (!example.functions.contains(function)) continue;
    if (best == nullptr || rank(example) < rank(*best)) best = &example;
  }
  return best;
}

}  // namespace devhost
