// Times the phases of a program that is measured.
#pragma once

#include <chrono>

namespace bench {

class Stopwatch {
 public:
  // Milliseconds since the last lap, or since the stopwatch was made.
  double lap() {
    const Clock::time_point now = Clock::now();
    const std::chrono::duration<double, std::milli> time = now - start_;
    start_ = now;
    return time.count();
  }

 private:
  using Clock = std::chrono::steady_clock;
  Clock::time_point start_ = Clock::now();
};

}  // namespace bench
