// The plain functions of the library below, whose state is a value on the stack: those that it
// recommends begin with set-up for the whole process, which a plug-in leaves to its host, and which
// never recovers where memory was short for it. Each brings nothing of the library along but
// itself.
#define OPENSSL_SUPPRESS_DEPRECATED
#include <openssl/md5.h>
#include <openssl/sha.h>

#include "engine/system/digest.h"

namespace engine::system {

namespace {

template <class State, auto* Init, auto* Update, auto* Final, std::size_t kSize>
Digest<kSize> digest(std::string_view bytes) {
  Digest<kSize> out;
  State state;
  Init(&state);
  Update(&state, bytes.data(), bytes.size());
  Final(reinterpret_cast<unsigned char*>(out.data()), &state);
  return out;
}

}  // namespace

Digest<16> md5(std::string_view bytes) {
  return digest<MD5_CTX, &MD5_Init, &MD5_Update, &MD5_Final, MD5_DIGEST_LENGTH>(bytes);
}

Digest<20> sha1(std::string_view bytes) {
  return digest<SHA_CTX, &SHA1_Init, &SHA1_Update, &SHA1_Final, SHA_DIGEST_LENGTH>(bytes);
}

Digest<64> sha512(std::string_view bytes) {
  return digest<SHA512_CTX, &SHA512_Init, &SHA512_Update, &SHA512_Final, SHA512_DIGEST_LENGTH>(
      bytes);
}

}  // namespace engine::system
