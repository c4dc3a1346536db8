// Memory that runs out on request, for programs that take short_memory.cpp in.
//
// Their malloc and its relatives are replaced, so whatever is linked fails with them: our own code,
// the C++ library, the tree library; on every thread, those included that the engine starts
// (under a sanitizer on the test's own only).
#pragma once

#include <cstdint>

namespace short_memory {

enum class Failing : std::uint8_t {
  kOnce,   // one allocation, none behind it
  kOnward  // that one and all behind it
};

// Lets the program allocate so many times more and fail then, as long as it lives; tells in the end
// whether that came to pass.
class Shortage {
 public:
  Shortage(long allowed, Failing failing, bool& struck);
  Shortage(const Shortage&) = delete;
  Shortage& operator=(const Shortage&) = delete;
  ~Shortage();

 private:
  bool& struck_;
};

// Blocks that the program has allocated and not given back, on all threads.
long blocks_in_use();

}  // namespace short_memory
