// The FM_ExprEnv_* functions: a plug-in's way into the registry.
#include <cstdint>
#include <string>

#include "devhost/fm/function_registry.h"
#include "devhost/fm/guard.h"
#include "devhost/fm/values.h"
#include "platform/fmwrapper/expression.h"

using devhost::FunctionRegistry;
using devhost::guarded;
using devhost::object_of;
using devhost::QuadCharObject;
using devhost::TextObject;

namespace {

std::u16string units_of(const fmx::Text* text) { return object_of<TextObject>(text).units; }

}  // namespace

fmx::errcode FM_ExprEnv_RegisterExternalFunction(const fmx::QuadChar* plugin,
                                                 std::int16_t function_id, const fmx::Text* name,
                                                 const fmx::Text* prototype, std::int16_t minimum,
                                                 std::int16_t maximum, std::uint32_t flags,
                                                 fmx::ExternalFunction function,
                                                 fmx::ErrorRecord* error) {
  const TextObject no_description;
  return FM_ExprEnv_RegisterExternalFunctionEx(plugin, function_id, name, prototype,
                                               &no_description, minimum, maximum, flags, function,
                                               error);
}

fmx::errcode FM_ExprEnv_RegisterExternalFunctionEx(
    const fmx::QuadChar* plugin, std::int16_t function_id, const fmx::Text* name,
    const fmx::Text* prototype, const fmx::Text* description, std::int16_t minimum,
    std::int16_t maximum, std::uint32_t flags, fmx::ExternalFunction function,
    fmx::ErrorRecord* error) {
  return guarded(error, [&]() -> fmx::errcode {
    return FunctionRegistry::instance().add(
        {object_of<QuadCharObject>(plugin).bytes, function_id, units_of(name), units_of(prototype),
         units_of(description), minimum, maximum, flags, function});
  });
}

fmx::errcode FM_ExprEnv_UnRegisterExternalFunction(const fmx::QuadChar* plugin,
                                                   std::int16_t function_id,
                                                   fmx::ErrorRecord* error) {
  return guarded(error, [&]() -> fmx::errcode {
    return FunctionRegistry::instance().remove(object_of<QuadCharObject>(plugin).bytes,
                                               function_id);
  });
}
