#include "devhost/fm/function_registry.h"

#include <algorithm>
#include <utility>

#include "devhost/fm/unicode.h"

namespace devhost {
namespace {

// A name that a calculation can write: a letter first, then letters, digits, "_" and ".".
bool is_name(std::u16string_view name) {
  const auto is_letter = [](char16_t unit) {
    return (unit >= u'A' && unit <= u'Z') || (unit >= u'a' && unit <= u'z') || unit == u'_' ||
           unit > 0xBF;
  };
  const auto is_rest = [&](char16_t unit) {
    return is_letter(unit) || (unit >= u'0' && unit <= u'9') || unit == u'.';
  };
  return !name.empty() && is_letter(name[0]) && std::all_of(name.begin(), name.end(), is_rest);
}

bool are_counts(int minimum, int maximum) {
  return minimum >= 0 && (maximum == -1 || maximum >= minimum);
}

}  // namespace

bool RegisteredFunction::accepts(std::size_t count) const {
  return count >= static_cast<std::size_t>(minimum) &&
         (maximum == -1 || count <= static_cast<std::size_t>(maximum));
}

FunctionRegistry& FunctionRegistry::instance() {
  static FunctionRegistry registry;
  return registry;
}

Refusal FunctionRegistry::add(RegisteredFunction function) {
  if (!is_name(function.name)) return kBadName;
  if (!are_counts(function.minimum, function.maximum)) return kBadParameterCounts;
  if (function.function == nullptr) return kNoFunction;
  const std::pair id(function.plugin, function.id);
  if (names_by_id_.contains(id)) return kIdTaken;
  std::u16string key = to_lower(function.name);
  if (functions_.contains(key)) return kNameTaken;
  names_by_id_.emplace(id, key);
  functions_.emplace(std::move(key), std::move(function));
  return kAccepted;
}

Refusal FunctionRegistry::remove(FourBytes plugin, std::int16_t id) {
  const auto known = names_by_id_.find({plugin, id});
  if (known == names_by_id_.end()) return kUnknownFunction;
  functions_.erase(known->second);
  names_by_id_.erase(known);
  return kAccepted;
}

const RegisteredFunction* FunctionRegistry::find(std::u16string_view name) const {
  const auto found = functions_.find(to_lower(name));
  return found != functions_.end() ? &found->second : nullptr;
}

std::vector<const RegisteredFunction*> FunctionRegistry::all() const {
  std::vector<const RegisteredFunction*> result;
  result.reserve(functions_.size());
  for (const auto& [name, function] : functions_) result.push_back(&function);
  return result;
}

}  // namespace devhost
