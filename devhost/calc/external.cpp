#include "devhost/calc/external.h"

#include <optional>
#include <utility>

#include "devhost/fm/unicode.h"

namespace devhost {
namespace {

fmx::errcode call_plainly(const RegisteredFunction& function, const ValueList& parameters,
                          Value& result) {
  const EnvironmentObject environment;
  return function.function(function.id, environment, parameters, result);
}

std::optional<Value> ask(std::u16string_view name) {
  const RegisteredFunction* function = FunctionRegistry::instance().find(name);
  Value result;
  if (function == nullptr || !function->accepts(0) ||
      call_plainly(*function, ValueList(), result) != 0) {
    return std::nullopt;
  }
  return result;
}

// Plug-ins tell more about their last failure through two functions of their own, named after the
// prefix that all their functions share. Without these the answer to the call is all there is.
CallFailed last_failure(const RegisteredFunction& function, int answer) {
  const std::u16string prefix = function.name.substr(0, function.name.find(u'_'));
  const auto code = ask(prefix + u"_GetLastError");
  const auto message = ask(prefix + u"_GetLastErrorMessage");
  return {code ? static_cast<int>(code->number().value) : answer,
          message ? message->units() : std::u16string()};
}

}  // namespace

CallFailed::CallFailed(int code, std::u16string message)
    : std::runtime_error(utf8_from_utf16(message)), code_(code), message_(std::move(message)) {}

Value call(const RegisteredFunction& function, std::vector<Value> parameters) {
  ValueList list;
  list.values = std::move(parameters);
  Value result;
  const fmx::errcode answer = call_plainly(function, list, result);
  if (answer != 0) throw last_failure(function, answer);
  return result;
}

Value call(std::u16string_view function, std::vector<Value> parameters) {
  const RegisteredFunction* found = FunctionRegistry::instance().find(function);
  if (found == nullptr || !found->accepts(parameters.size())) {
    throw CallFailed(
        0, u"the plug-in has no function " + std::u16string(function) + u" as it is called here");
  }
  return call(*found, std::move(parameters));
}

}  // namespace devhost
