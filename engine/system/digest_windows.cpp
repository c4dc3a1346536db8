#include <windows.h>
// After the header above, which it needs.
#include <bcrypt.h>

#include <limits>
#include <stdexcept>

#include "engine/system/digest.h"

namespace engine::system {

namespace {

[[noreturn]] void give_up() { throw std::runtime_error("the system computes no digest"); }

// It stays open until the process ends; several threads may use it.
BCRYPT_ALG_HANDLE open_algorithm(const wchar_t* name) {
  BCRYPT_ALG_HANDLE algorithm = nullptr;
  if (!BCRYPT_SUCCESS(BCryptOpenAlgorithmProvider(&algorithm, name, nullptr, 0))) give_up();
  return algorithm;
}

template <std::size_t kSize>
Digest<kSize> digest(BCRYPT_ALG_HANDLE algorithm, std::string_view bytes) {
  if (bytes.size() > std::numeric_limits<ULONG>::max()) give_up();
  Digest<kSize> out;
  // The input is only read, whatever its type says.
  auto* const input = reinterpret_cast<UCHAR*>(const_cast<char*>(bytes.data()));
  if (!BCRYPT_SUCCESS(BCryptHash(algorithm, nullptr, 0, input, static_cast<ULONG>(bytes.size()),
                                 reinterpret_cast<UCHAR*>(out.data()), kSize)))
    give_up();
  return out;
}

}  // namespace

Digest<16> md5(std::string_view bytes) {
  static BCRYPT_ALG_HANDLE const algorithm = open_algorithm(BCRYPT_MD5_ALGORITHM);
  return digest<16>(algorithm, bytes);
}

Digest<20> sha1(std::string_view bytes) {
  static BCRYPT_ALG_HANDLE const algorithm = open_algorithm(BCRYPT_SHA1_ALGORITHM);
  return digest<20>(algorithm, bytes);
}

Digest<64> sha512(std::string_view bytes) {
  static BCRYPT_ALG_HANDLE const algorithm = open_algorithm(BCRYPT_SHA512_ALGORITHM);
  return digest<64>(algorithm, bytes);
}

}  // namespace engine::system
