// Comparing texts without regard to case, independent of any locale.
#pragma once

#include <string>
#include <string_view>

namespace engine {

// Unicode's simple case folding: equal texts of different case fall together. The Turkish letters i
// with and without a dot stay apart from the others. A byte that is no UTF-8 stands for itself.
std::string fold_case(std::string_view utf8);
// Each character's capital, where it has a single one.
std::string upper_case(std::string_view utf8);
bool equal_ignoring_case(std::string_view a, std::string_view b);

// For names in which only the letters A to Z have no case: parts, file name extensions, encodings.
constexpr char lower_ascii(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
constexpr char upper_ascii(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}
std::string lower_ascii(std::string_view text);

}  // namespace engine
