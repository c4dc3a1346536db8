// Calls of a plug-in's functions, as the host makes them.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "devhost/fm/function_registry.h"
#include "devhost/fm/values.h"

namespace devhost {

class CallFailed : public std::runtime_error {
 public:
  CallFailed(int code, std::u16string message);

  int code() const { return code_; }
  const std::u16string& message() const { return message_; }

 private:
  int code_;
  std::u16string message_;
};

// Throws CallFailed with what the plug-in tells about it.
Value call(const RegisteredFunction& function, std::vector<Value> parameters);

// Throws CallFailed as well when there is no such function.
Value call(std::u16string_view function, std::vector<Value> parameters);

}  // namespace devhost
