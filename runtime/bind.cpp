#include "runtime/bind.h"

#include <exception>
#include <new>

short bind::store_handle(long handle, const char* type, const void* object, fmx::Data& result) {
  if (set_last_error_message(handle)) return codes::kLibrary;
  SetResult(static_cast<double>(set_object(handle, type, object)), result);
  return codes::kNone;
}

short bind::run(Body body, const fmx::DataVect& params, fmx::Data& result) {
  NoError();
  try {
    try {
      return MapError(body(params, result), false);
    } catch (const KelPlugin_Exception& failure) {
      // Memory may be short for the message too, hence the second try block.
      g_last_error_message = failure.what();
      return MapError(failure.code(), false);
    }
  } catch (const std::bad_alloc&) {
    return MapError(codes::kOutOfMemory, false);
  } catch (const std::exception&) {
    return MapError(codes::kOther, false);
  }
}
