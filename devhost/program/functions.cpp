// What functions there are, what is said about them, and how they are used.
#include <algorithm>
#include <cstddef>
#include <iostream>
#include <set>
#include <sstream>
#include <string_view>
#include <vector>

#include "devhost/calc/names.h"
#include "devhost/fm/function_registry.h"
#include "devhost/fm/unicode.h"
#include "devhost/program/columns.h"
#include "devhost/program/commands.h"
#include "devhost/program/examples.h"
#include "devhost/program/system.h"

namespace devhost {
namespace {

// A longer list is looked through first; then examples stand in the way.
constexpr std::ptrdiff_t kMostWithExamples = 12;

using Functions = std::vector<const RegisteredFunction*>;

// The functions with the word in their name, and behind them the constants, which are no functions
// to those who use them; when there are none, the functions with the word in what is said about
// them.
Functions functions_about(const std::string& word) {
  const std::u16string wanted = to_lower(utf16_from_utf8(word));
  const auto holds = [&](const std::u16string& text) {
    return to_lower(text).find(wanted) != std::u16string::npos;
  };
  Functions named;
  Functions constants;
  Functions described;
  for (const RegisteredFunction* function : FunctionRegistry::instance().all()) {
    const bool is_named = holds(function->name);
    if (!function->visible()) {
      if (is_named && !word.empty()) constants.push_back(function);
    } else if (is_named) {
      named.push_back(function);
    } else if (holds(function->prototype + u' ' + function->description)) {
      described.push_back(function);
    }
  }
  named.insert(named.end(), constants.begin(), constants.end());
  return named.empty() ? described : named;
}

// Over as many lines as it takes, where the terminal has an end.
void print_wrapped(const std::string& text) {
  constexpr std::string_view kMargin = "    ";
  const int width = terminal_width();
  std::istringstream words(text);
  int used = 0;
  for (std::string word; words >> word;) {
    const int columns = columns_of(utf16_from_utf8(word)) + 1;
    const bool begins = used == 0 || (width > 0 && used + columns > width);
    if (begins) {
      std::cout << (used == 0 ? "" : "\n") << kMargin << word;
      used = static_cast<int>(kMargin.size());
    } else {
      std::cout << ' ' << word;
    }
    used += columns;
  }
  std::cout << '\n';
}

void print_indented(const std::string& text) {
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) std::cout << "        " << line << '\n';
}

void print(const Functions& functions, const Examples& examples) {
  std::set<const Example*> shown;
  for (const RegisteredFunction* function : functions) {
    std::cout << utf8_from_utf16(function->prototype) << '\n';
    if (!function->description.empty()) {
      print_wrapped(utf8_from_utf16(function->description));
    }
    const Example* example = examples.of(utf8_from_utf16(function->name));
    if (example == nullptr) continue;
    std::cout << "\n    " << example->purpose;
    if (shown.insert(example).second) {
      std::cout << ":\n";
      print_indented(example->text);
    } else {
      std::cout << ": see above\n";
    }
    std::cout << '\n';
  }
}

void write(const Functions& functions, const Examples& examples, JsonWriter& json) {
  for (const RegisteredFunction* function : functions) {
    json.open_object();
    json.member("name", function->name);
    json.member("prototype", function->prototype);
    json.member("description", function->description);
    if (const Example* example = examples.of(utf8_from_utf16(function->name))) {
      json.key("example");
      json.open_object();
      json.member("purpose", utf16_from_utf8(example->purpose));
      json.member("text", utf16_from_utf8(example->text));
      json.close();
    }
    json.close();
  }
}

}  // namespace

int list_functions(Report& report, const std::string& word) {
  const Functions functions = functions_about(word);
  if (functions.empty()) {
    std::string problem = "no function mentions \"" + word + "\"";
    const std::u16string nearest = nearest_name(utf16_from_utf8(word));
    if (!nearest.empty()) problem += "; did you mean " + utf8_from_utf16(nearest) + "?";
    report.error(problem);
    return kFailed;
  }
  if (JsonWriter* json = report.json()) {
    write(functions, Examples::installed(), *json);
    return kDone;
  }
  const auto shown = std::count_if(functions.begin(), functions.end(),
                                   [](const auto* function) { return function->visible(); });
  const bool few = shown <= kMostWithExamples;
  print(functions, few ? Examples::installed() : Examples());
  return kDone;
}

}  // namespace devhost
