// Registration of external functions with the host's calculation engine.
#pragma once

#include <cstdint>

#include "platform/fmwrapper/data.h"
#include "platform/fmwrapper/error.h"
#include "platform/fmwrapper/quad_char.h"
#include "platform/fmwrapper/text.h"

namespace fmx {

class ExprEnv;

// An external function: takes its own id, the environment of the expression, the parameters and the
// place of the result; answers 0, or a code that makes the calculation fail.
using ExternalFunction = errcode (*)(std::int16_t function_id, const ExprEnv& environment,
                                     const DataVect& parameters, Data& result);

}  // namespace fmx

#pragma GCC visibility push(default)
extern "C" {
fmx::errcode FM_ExprEnv_RegisterExternalFunction(const fmx::QuadChar* plugin,
                                                 std::int16_t function_id, const fmx::Text* name,
                                                 const fmx::Text* prototype, std::int16_t minimum,
                                                 std::int16_t maximum, std::uint32_t flags,
                                                 fmx::ExternalFunction function,
                                                 fmx::ErrorRecord* error);
fmx::errcode FM_ExprEnv_RegisterExternalFunctionEx(
    const fmx::QuadChar* plugin, std::int16_t function_id, const fmx::Text* name,
    const fmx::Text* prototype, const fmx::Text* description, std::int16_t minimum,
    std::int16_t maximum, std::uint32_t flags, fmx::ExternalFunction function,
    fmx::ErrorRecord* error);
fmx::errcode FM_ExprEnv_UnRegisterExternalFunction(const fmx::QuadChar* plugin,
                                                   std::int16_t function_id,
                                                   fmx::ErrorRecord* error);
}
#pragma GCC visibility pop

namespace fmx {

// The environment in which an expression is evaluated.
class ExprEnv {
 public:
  // Flags of a registration: listed wherever the host lists functions, or callable by name only.
  static constexpr std::uint32_t kDisplayInAllDialogs = 0xFF00;
  static constexpr std::uint32_t kHidden = 0;

  ExprEnv(const ExprEnv&) = delete;
  ExprEnv& operator=(const ExprEnv&) = delete;

  // The answer is 0, or the host's reason to refuse the function. The prototype is what the host
  // shows in its list: the name with the parameters in brackets. A maximum of -1 means any number.
  static errcode RegisterExternalFunction(const QuadChar& plugin, std::int16_t function_id,
                                          const Text& name, const Text& prototype,
                                          std::int16_t minimum, std::int16_t maximum,
                                          std::uint32_t flags, ExternalFunction function) {
    return call(FM_ExprEnv_RegisterExternalFunction, &plugin, function_id, &name, &prototype,
                minimum, maximum, flags, function);
  }
  // The form with a description, which hosts of interface version 56 and later offer.
  static errcode RegisterExternalFunctionEx(const QuadChar& plugin, std::int16_t function_id,
                                            const Text& name, const Text& prototype,
                                            const Text& description, std::int16_t minimum,
                                            std::int16_t maximum, std::uint32_t flags,
                                            ExternalFunction function) {
    return call(FM_ExprEnv_RegisterExternalFunctionEx, &plugin, function_id, &name, &prototype,
                &description, minimum, maximum, flags, function);
  }
  static errcode UnRegisterExternalFunction(const QuadChar& plugin, std::int16_t function_id) {
    return call(FM_ExprEnv_UnRegisterExternalFunction, &plugin, function_id);
  }

 protected:
  ExprEnv() = default;
  ~ExprEnv() = default;
};

}  // namespace fmx
