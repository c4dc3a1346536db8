#include <algorithm>
#include <cstring>
#include <new>

#include "engine/package/output.h"

namespace engine::package {
namespace {

constexpr std::size_t kFirstCapacity = 16 * 1024;

}  // namespace

LimitError::LimitError(std::string_view things, std::uint64_t limit)
    : std::runtime_error(std::string("too many ")
                             .append(things)
                             .append(": the limit is ")
                             .append(std::to_string(limit))) {}

SizeError::SizeError(std::uint64_t limit)
    : LimitError("the workbook is larger than " + std::to_string(limit) + " bytes") {}

void MemoryOutput::write(std::span<const char> bytes) {
  if (bytes.empty()) return;
  if (bytes.size() > limit_ - size_) throw SizeError(limit_);
  const auto needed = size_ + bytes.size();
  if (needed > capacity_) {
    const auto capacity = std::max({needed, capacity_ + capacity_ / 2, kFirstCapacity});
    auto* const grown = static_cast<char*>(std::realloc(data_.get(), capacity));
    if (grown == nullptr) throw std::bad_alloc();
    static_cast<void>(data_.release());
    data_.reset(grown);
    capacity_ = capacity;
  }
  std::memcpy(data_.get() + size_, bytes.data(), bytes.size());
  size_ = needed;
}

void MemoryOutput::patch(std::uint64_t offset, std::span<const char> bytes) {
  std::copy(bytes.begin(), bytes.end(), data_.get() + offset);
}

}  // namespace engine::package
