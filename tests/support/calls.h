// Calls of external functions as the host makes them: by name, with values of the host.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "devhost/fm/values.h"
#include "runtime/bind.h"

namespace calls {

// A number, a text or a container.
struct Argument : devhost::Value {
  Argument(double number) : Value(number) {}
  Argument(int number) : Value(static_cast<double>(number)) {}
  Argument(long number) : Value(static_cast<double>(number)) {}
  Argument(const char16_t* text) : Value(std::u16string(text)) {}
  Argument(devhost::ContainerObject container) : Value(std::move(container)) {}
};

struct Outcome {
  // What the host is told.
  short code;
  // The thread's error afterwards.
  short last_error;
  std::string message;
  devhost::Value value;

  double number() const { return value.number().value; }
  // ASCII only, carriage returns as bars; "" without a result.
  std::string text() const;
};

// Parameters in the form in which the host keeps them.
devhost::ValueList parameters(const std::vector<Argument>& arguments);

Outcome call(const bind::Row& row, const std::vector<Argument>& arguments);

// The function must be in the table.
const bind::Row& find(std::string_view name);
Outcome call(std::string_view name, const std::vector<Argument>& arguments);

std::string narrow(std::u16string_view text);

// A container with streams of these types and payloads.
devhost::ContainerObject container(const std::vector<std::pair<std::string, std::string>>& streams);

}  // namespace calls
