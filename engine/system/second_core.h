// Whether a second thread would run beside the first.
#pragma once

#include <thread>

namespace engine::system {

// The system reads a file to tell the number, so it is asked once.
inline bool has_second_core() {
  static const bool has = std::thread::hardware_concurrency() >= 2;
  return has;
}

}  // namespace engine::system
