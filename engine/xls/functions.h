// The worksheet functions that have a number in the binary format.
//
// Functions with a fixed count of arguments are stored without it. Others, newer ones and those of
// add-ins, have no number: they are calls of number kUserFunction, whose first operand is the name.
#pragma once

#include <cstdint>
#include <string_view>

namespace engine::xls {

inline constexpr std::uint16_t kUserFunction = 255;

// Classes say what an operand is taken as: R a reference, V a value, A an array. Inside of an array
// all of these are one too. Those in small letters are not: r and v are taken as they are, s is a
// single value, and a is a reference, but where it is none an array.
struct Function {
  std::uint16_t number;
  std::string_view name;
  std::uint8_t least;  // arguments
  std::uint8_t most;
  char result;
  std::string_view classes;  // of the arguments; the last one goes for the rest
};

// Null for a number that no function has.
const Function* find_function(std::uint16_t number);
// The same for a name, in upper case.
const Function* find_function(std::string_view name);

}  // namespace engine::xls
