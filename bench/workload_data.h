// The data of the workloads: the same for every program that is compared.
//
// Every cell has a number k, from which everything else follows by exact 64-bit arithmetic, so
// that programs in other languages write the very same cells.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace bench {

inline std::uint64_t hash(std::uint64_t k) { return k * 2654435761U % 4294967296U; }

// Numbers of four kinds: integers, two decimals, six decimals, all digits that a double has.
inline double number(std::uint64_t k, int column) {
  const std::uint64_t h = hash(k);
  switch (column % 4) {
    case 0:
      return static_cast<double>(h % 100000);
    case 1:
      return static_cast<double>(h % 10000000) / 100;
    case 2:
      return static_cast<double>(h % 1000000007) / 1000000;
    default:
      return static_cast<double>(h) / 7;
  }
}

inline double date(std::uint64_t k) { return static_cast<double>(36526 + hash(k) % 9000); }

inline int repeated_entry(std::uint64_t k) { return static_cast<int>(hash(k) % 1000); }

// A thousand texts that occur again and again; every tenth needs escaping and several bytes a
// character.
inline std::vector<std::string> repeated_texts() {
  std::vector<std::string> texts;
  for (int entry = 0; entry < 1000; ++entry) {
    char text[40];
    if (entry % 10 == 0) std::snprintf(text, sizeof text, "Größe & Maß %04d", entry);
    else std::snprintf(text, sizeof text, "Category %04d", entry);
    texts.emplace_back(text);
  }
  return texts;
}

// A text that no other cell has.
inline std::string unique_text(int row, int column, std::uint64_t k) {
  char text[40];
  std::snprintf(text, sizeof text, "U%06d-%d-%08X", row, column, static_cast<unsigned>(hash(k)));
  return text;
}

}  // namespace bench
