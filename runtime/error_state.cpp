#include "runtime/error_state.h"

constinit thread_local short g_last_error = codes::kNone;
thread_local std::string g_last_error_message;

short NoError() {
  g_last_error = codes::kNone;
  return g_last_error;
}

short MapError(short code, bool keep) {
  if (keep) return g_last_error = code;
  if (g_last_error == codes::kNone) g_last_error = code;
  return g_last_error == codes::kNone ? short{0} : short{-1};
}
