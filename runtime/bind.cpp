#include "runtime/bind.h"

short bind::store_handle(long handle, const char* type, const void* object, fmx::Data& result) {
  if (set_last_error_message(handle)) return codes::kLibrary;
  SetResult(static_cast<double>(set_object(handle, type, object)), result);
  return codes::kNone;
}

short bind::run(Body body, const fmx::DataVect& params, fmx::Data& result) {
  NoError();
  const short code = code_of([&] {
    try {
      return body(params, result);
    } catch (const KelPlugin_Exception& failure) {
      // Memory may be short for the message too, which is a failure of its own.
      g_last_error_message = failure.what();
      return failure.code();
    }
  });
  return MapError(code, false);
}
