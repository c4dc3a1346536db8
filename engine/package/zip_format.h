// Signatures and sizes of zip archives.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "engine/package/little_endian.h"

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

}  // namespace engine::package
