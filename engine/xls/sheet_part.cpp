#include "engine/xls/sheet_part.h"

namespace engine::xls {

std::vector<std::uint64_t> limits_of(std::span<const std::uint32_t> begins, std::uint64_t size) {
  std::uint64_t limit = size;
  std::vector<std::uint64_t> limits(begins.begin(), begins.end());
  std::map<std::uint32_t, std::size_t> firsts;
  for (std::size_t i = 0; i < begins.size(); ++i) firsts.try_emplace(begins[i], i);
  for (auto sheet = firsts.rbegin(); sheet != firsts.rend(); ++sheet) {
    limits[sheet->second] = limit;
    limit = sheet->first;
  }
  return limits;
}

}  // namespace engine::xls
