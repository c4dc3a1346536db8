#include <sys/random.h>
#include <unistd.h>

#include <stdexcept>

#include "engine/system/random.h"

namespace engine::system {

void fill_random(std::span<char> bytes) {
  if (getentropy(bytes.data(), bytes.size()) != 0)
    throw std::runtime_error("the system gives no random numbers");
}

}  // namespace engine::system
