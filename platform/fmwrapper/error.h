// How calls into the host report failure.
//
// Every FM_* function of the host ends in an error record, which it fills in: 0 success, 1 out of
// memory, 2 any other failure. The classes of this folder check it right after each call, so that
// a plug-in sees exceptions and no codes.
#pragma once

#include <cstdint>
#include <exception>
#include <new>
#include <type_traits>
#include <utility>

namespace fmx {

// What registrations and external functions answer: 0 means success.
using errcode = std::int16_t;

struct ErrorRecord {
  static constexpr std::int32_t kNone = 0;
  static constexpr std::int32_t kOutOfMemory = 1;
  static constexpr std::int32_t kOther = 2;

  std::int32_t code = kNone;

  void check() const {
    if (code == kOutOfMemory) throw std::bad_alloc();
    if (code != kNone) throw std::exception();
  }
};

// Calls a host function with an error record of its own and throws what the record tells.
template <typename Result, typename... Parameters, typename... Arguments>
Result call(Result (*function)(Parameters...), Arguments... arguments) {
  ErrorRecord error;
  if constexpr (std::is_void_v<Result>) {
    function(arguments..., &error);
    error.check();
  } else {
    const Result result = function(arguments..., &error);
    error.check();
    return result;
  }
}

}  // namespace fmx
