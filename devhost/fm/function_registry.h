// The external functions that plug-ins have registered.
//
// There is one registry, as the calls that register name no other context. It is changed while a
// plug-in starts or stops and only read while calculations run; a function's record stays in place
// until it is unregistered.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "devhost/fm/values.h"
#include "platform/fmwrapper/expression.h"

namespace devhost {

struct RegisteredFunction {
  FourBytes plugin;
  std::int16_t id;
  std::u16string name;
  std::u16string prototype;
  std::u16string description;
  int minimum;
  // -1 for any number.
  int maximum;
  std::uint32_t flags;
  fmx::ExternalFunction function;

  bool visible() const { return flags != fmx::ExprEnv::kHidden; }
  bool accepts(std::size_t count) const;
};

// Why a registration is refused.
enum Refusal : fmx::errcode {
  kAccepted = 0,
  kBadName = 1201,
  kBadParameterCounts = 1202,
  kNoFunction = 1203,
  kNameTaken = 1204,
  kIdTaken = 1205,
  kUnknownFunction = 1206,
};

class FunctionRegistry {
 public:
  static FunctionRegistry& instance();

  Refusal add(RegisteredFunction function);
  Refusal remove(FourBytes plugin, std::int16_t id);

  // Found without regard to case; null when there is none.
  const RegisteredFunction* find(std::u16string_view name) const;
  // In the order of their names.
  std::vector<const RegisteredFunction*> all() const;

 private:
  // By the name in lower case.
  std::map<std::u16string, RegisteredFunction, std::less<>> functions_;
  std::map<std::pair<FourBytes, std::int16_t>, std::u16string> names_by_id_;
};

}  // namespace devhost
