// Signatures, sizes and number fields of zip archives. Numbers are little-endian.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace engine::package {

constexpr std::string_view kLocalMark{"PK\x03\x04", 4};
constexpr std::string_view kDirectoryMark{"PK\x01\x02", 4};
constexpr std::string_view kEndMark{"PK\x05\x06", 4};
constexpr std::string_view kWideEndMark{"PK\x06\x06", 4};
constexpr std::string_view kWideLocatorMark{"PK\x06\x07", 4};

constexpr std::size_t kLocalHeaderSize = 30;
constexpr std::size_t kDirectoryEntrySize = 46;
constexpr std::size_t kEndSize = 22;
constexpr std::size_t kWideEndSize = 56;
constexpr std::size_t kWideLocatorSize = 20;

constexpr std::uint16_t kStored = 0;
constexpr std::uint16_t kDeflated = 8;

// A field of all ones: the value stands in a zip64 field.
constexpr std::uint32_t kFull16 = 0xFFFF;
constexpr std::uint32_t kFull32 = 0xFFFFFFFF;

template <typename Number>
Number get_number(std::string_view bytes, std::size_t at) {
  Number number = 0;
  for (std::size_t i = sizeof number; i-- > 0;) {
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
  std::uint64_t high = get32(bytes, at + 4);
  return high << 32 | get32(bytes, at);
}

inline void put_number(std::string& out, std::uint64_t value, std::size_t size) {
  for (; size > 0; --size, value >>= 8) out += static_cast<char>(value & 0xFF);
}
inline void put16(std::string& out, std::uint64_t value) { put_number(out, value, 2); }
inline void put32(std::string& out, std::uint64_t value) { put_number(out, value, 4); }
inline void put64(std::string& out, std::uint64_t value) { put_number(out, value, 8); }

}  // namespace engine::package
