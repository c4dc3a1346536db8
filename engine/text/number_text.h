// Numbers as text: the shortest that reads back as the same number.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace engine {

constexpr std::size_t kMaxNumberText = 32;

// Writes at most kMaxNumberText characters and returns the end: 12, -0.5, 1E+20, 1.5E-07. Minus
// zero is written 0. The number must be finite.
char* write_number(char* out, double value);
void append_number(std::string& out, double value);

char* write_integer(char* out, long long value);
void append_integer(std::string& out, long long value);

// A decimal number, with blanks around and a leading plus allowed; nothing when it is none or is
// beyond what a double holds.
std::optional<double> parse_number(std::string_view text);

}  // namespace engine
