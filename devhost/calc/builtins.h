// The functions of the calculation language itself, and those of this host.
//
// Let, If, Case and While are no functions but part of the grammar, as not all of their arguments
// are evaluated.
#pragma once

#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

#include "devhost/fm/values.h"

namespace devhost {

struct Builtin {
  std::u16string_view name;
  int minimum;
  // -1 for any number.
  int maximum;
  Value (*function)(std::span<const Value> arguments);
  // Whether the arguments after the first are pairs, which may stand in brackets.
  bool takes_pairs = false;
};

// A function's failure with the code that the host has for it.
class FunctionFailure : public std::runtime_error {
 public:
  FunctionFailure(int code, const std::string& message)
      : std::runtime_error(message), code_(code) {}

  int code() const { return code_; }

 private:
  int code_;
};

// What a failed calculation gives.
Value failed_value();

// A number, or the failed value when the host has no such number.
Value number_value(double number);

std::span<const Builtin> number_functions();
std::span<const Builtin> text_functions();
std::span<const Builtin> list_functions();
std::span<const Builtin> container_functions();

// Found without regard to case; null when there is none.
const Builtin* find_builtin(std::u16string_view name);

}  // namespace devhost
