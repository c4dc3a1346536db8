// The frame of every FM_* function: what goes wrong inside is told in the error record.
#pragma once

#include <exception>
#include <new>
#include <type_traits>

#include "platform/fmwrapper/error.h"

namespace devhost {

// Gives what the body gives, or a zero when it fails.
template <typename Body>
auto guarded(fmx::ErrorRecord* error, Body body) -> decltype(body()) {
  using Result = decltype(body());
  error->code = fmx::ErrorRecord::kNone;
  try {
    return body();
  } catch (const std::bad_alloc&) {
    error->code = fmx::ErrorRecord::kOutOfMemory;
  } catch (const std::exception&) {
    error->code = fmx::ErrorRecord::kOther;
  }
  if constexpr (!std::is_void_v<Result>) return Result{};
}

// The host's object behind what a plug-in holds.
template <typename Object, typename Opaque>
Object& object_of(Opaque* opaque) {
  return *static_cast<Object*>(opaque);
}
template <typename Object, typename Opaque>
const Object& object_of(const Opaque* opaque) {
  return *static_cast<const Object*>(opaque);
}

}  // namespace devhost
