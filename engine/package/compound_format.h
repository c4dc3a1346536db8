// Signature, sizes and marks of compound files. Numbers are little-endian.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "engine/package/little_endian.h"

namespace engine::package {

constexpr std::string_view kCompoundMark{"\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8};

constexpr std::size_t kCompoundHeaderSize = 512;
constexpr unsigned kSectorShift = 9;
constexpr unsigned kLargeSectorShift = 12;
constexpr unsigned kMiniSectorShift = 6;
constexpr std::size_t kMiniCutoff = 4096;  // shorter streams lie in mini sectors
constexpr std::size_t kDirectoryItemSize = 128;
constexpr std::size_t kHeaderTableSectors = 109;  // whose numbers stand in the header
constexpr std::size_t kMaxNameUnits = 31;

// Sector numbers that are none. Tables hold for each sector the next one of its chain, or one of
// these.
constexpr std::uint32_t kFreeSector = 0xFFFFFFFF;
constexpr std::uint32_t kEndOfChain = 0xFFFFFFFE;
constexpr std::uint32_t kTableSector = 0xFFFFFFFD;
constexpr std::uint32_t kListSector = 0xFFFFFFFC;

constexpr std::uint32_t kNoItem = 0xFFFFFFFF;  // in place of the number of a directory item

// Kinds of directory items.
constexpr unsigned kFolderItem = 1;
constexpr unsigned kStreamItem = 2;
constexpr unsigned kRootItem = 5;

}  // namespace engine::package
