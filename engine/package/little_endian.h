// Numbers in bytes, the lowest byte first. What is read must lie in the bytes.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace engine::package {

template <typename Number>
Number get_number(std::string_view bytes, std::size_t at) {
  Number number = 0;
  if constexpr (std::endian::native == std::endian::little) {
    std::memcpy(&number, bytes.data() + at, sizeof number);
  } else {
    for (std::size_t i = sizeof number; i-- > 0;)
      number = static_cast<Number>(number << 8 | static_cast<unsigned char>(bytes[at + i]));
  }
  return number;
}

inline std::uint16_t get16(std::string_view bytes, std::size_t at) {
  return get_number<std::uint16_t>(bytes, at);
}
inline std::uint32_t get32(std::string_view bytes, std::size_t at) {
  return get_number<std::uint32_t>(bytes, at);
}
inline std::uint64_t get64(std::string_view bytes, std::size_t at) {
  return get_number<std::uint64_t>(bytes, at);
}
inline double get_double(std::string_view bytes, std::size_t at) {
  return std::bit_cast<double>(get64(bytes, at));
}

inline void put_number(std::string& out, std::uint64_t value, std::size_t size) {
  for (; size > 0; --size, value >>= 8) out += static_cast<char>(value & 0xFF);
}
inline void put16(std::string& out, std::uint64_t value) { put_number(out, value, 2); }
inline void put32(std::string& out, std::uint64_t value) { put_number(out, value, 4); }
inline void put64(std::string& out, std::uint64_t value) { put_number(out, value, 8); }

}  // namespace engine::package
