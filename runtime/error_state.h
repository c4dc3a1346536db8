// The outcome of the last external function, one per thread.
//
// The host learns only whether a call succeeded. The code and the message stay here and are read
// back by XL_GetLastError and XL_GetLastErrorMessage on the same thread.
#pragma once

#include <exception>
#include <new>
#include <stdexcept>
#include <string>

namespace codes {

inline constexpr short kNone = 0;
// The library told of a failure, in words that are the message.
inline constexpr short kLibrary = 1;
inline constexpr short kOutOfMemory = 7;
inline constexpr short kNotFound = 10;
// The kind of a cell has no value that XL_Sheet_ReadCell could give.
inline constexpr short kUnreadableCell = 10300;
inline constexpr short kOther = -1;
inline constexpr short kWrongType = -2;

}  // namespace codes

extern constinit thread_local short g_last_error;

// Not cleared when a call starts: a text stays until a failure brings another one or a result that
// is bound to a handle is stored.
extern thread_local std::string g_last_error_message;

// A failure with a code of its own. Thrown by the registry, caught by the call frame.
class KelPlugin_Exception : public std::runtime_error {
 public:
  KelPlugin_Exception(short code, const std::string& message)
      : std::runtime_error(message), code_(code) {}

  virtual short code() const { return code_; }

 private:
  short code_;
};

// Starts a call: no error. Returns 0.
short NoError();

// Folds the code of a call into the thread's error and returns what the host gets: 0 or -1. The
// first failure of a call wins, also over a later success. With keep the code replaces the
// thread's error and is returned as it is.
short MapError(short code, bool keep);

// The code that a body returns, or that of the standard exception it ends with.
template <class Body>
short code_of(Body body) {
  try {
    return body();
  } catch (const std::bad_alloc&) {
    return codes::kOutOfMemory;
  } catch (const std::exception&) {
    return codes::kOther;
  }
}
