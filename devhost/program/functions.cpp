// What functions there are, and what is said about them.
#include <iostream>

#include "devhost/fm/function_registry.h"
#include "devhost/fm/unicode.h"
#include "devhost/program/commands.h"

namespace devhost {
namespace {

bool mentions(const RegisteredFunction& function, const std::string& word) {
  const std::u16string text =
      function.name + u' ' + function.prototype + u' ' + function.description;
  return to_lower(text).find(to_lower(utf16_from_utf8(word))) != std::u16string::npos;
}

}  // namespace

int list_functions(const std::string& word) {
  for (const auto* function : FunctionRegistry::instance().all()) {
    if (!function->visible() || !mentions(*function, word)) continue;
    std::cout << utf8_from_utf16(function->prototype) << '\n';
    if (!function->description.empty()) {
      std::cout << "    " << utf8_from_utf16(function->description) << '\n';
    }
  }
  return kDone;
}

}  // namespace devhost
