// Digests of bytes, as files hold them for passwords, encryption and pictures.
#pragma once

#include <array>
#include <string_view>

namespace engine::system {

template <std::size_t kSize>
using Digest = std::array<char, kSize>;

Digest<16> md5(std::string_view bytes);
Digest<20> sha1(std::string_view bytes);
Digest<64> sha512(std::string_view bytes);

template <std::size_t kSize>
std::string_view view_of(const Digest<kSize>& digest) {
  return {digest.data(), digest.size()};
}

}  // namespace engine::system
