#include <windows.h>
// After the header above, which it needs.
#include <bcrypt.h>

#include <stdexcept>

#include "engine/system/random.h"

namespace engine::system {

void fill_random(std::span<char> bytes) {
  const auto status =
      BCryptGenRandom(nullptr, reinterpret_cast<UCHAR*>(bytes.data()),
                      static_cast<ULONG>(bytes.size()), BCRYPT_USE_SYSTEM_PREFERRED_RNG);
  if (!BCRYPT_SUCCESS(status)) throw std::runtime_error("the system gives no random numbers");
}

}  // namespace engine::system
