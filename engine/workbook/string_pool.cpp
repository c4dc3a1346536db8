#include "engine/workbook/string_pool.h"

#include <algorithm>
#include <bit>
#include <functional>

namespace engine {

namespace {

constexpr std::size_t kFirstBuckets = 64;
constexpr std::size_t kFirstBlock = 1024;
constexpr std::size_t kLargestBlock = std::size_t{1} << 20;

std::uint32_t hash_of(std::string_view text) {
  const std::uint64_t wide = std::hash<std::string_view>()(text);
  return static_cast<std::uint32_t>(wide ^ (wide >> 32));
}

}  // namespace

std::uint32_t StringPool::add(std::string_view text) {
  if ((entries_.size() + 1) * 2 > buckets_.size()) make_room();
  const std::uint32_t hash = hash_of(text);
  const std::size_t mask = buckets_.size() - 1;
  std::size_t at = hash & mask;
  for (; buckets_[at].entry != 0; at = (at + 1) & mask) {
    const auto [known, entry] = buckets_[at];
    if (known == hash && (*this)[entry - 1] == text) return entry - 1;
  }
  const std::uint32_t index = append(text);
  buckets_[at] = {hash, index + 1};
  return index;
}

std::uint32_t StringPool::append(std::string_view text) {
  const char* data = keep(text);
  entries_.push_back({data, static_cast<std::uint32_t>(text.size())});
  return size() - 1;
}

std::uint32_t StringPool::append_rich(std::string_view text, std::string rich) {
  const std::uint32_t index = append(text);
  rich_.insert_or_assign(index, std::move(rich));
  return index;
}

const std::string* StringPool::rich(std::uint32_t index) const {
  const auto found = rich_.find(index);
  return found == rich_.end() || found->second.empty() ? nullptr : &found->second;
}

const char* StringPool::keep(std::string_view text) {
  if (text.size() > room_) {
    const std::size_t doubled = kFirstBlock << std::min<std::size_t>(blocks_.size(), 10);
    const std::size_t size = std::max(text.size(), std::min(doubled, kLargestBlock));
    blocks_.push_back(std::make_unique_for_overwrite<char[]>(size));
    free_ = blocks_.back().get();
    room_ = size;
  }
  char* kept = free_;
  std::ranges::copy(text, kept);
  free_ += text.size();
  room_ -= text.size();
  return kept;
}

// Rich entries stay out of the index: a plain text that is equal gets an entry of its own.
void StringPool::make_room() {
  std::vector<Bucket> made(std::bit_ceil(std::max(kFirstBuckets, (entries_.size() + 1) * 2)));
  if (buckets_.empty()) {
    for (std::uint32_t index = 0; index < size(); ++index)
      if (rich_.empty() || !rich_.contains(index))
        enter(made, {hash_of((*this)[index]), index + 1});
  }
  for (const Bucket& bucket : buckets_)
    if (bucket.entry != 0) enter(made, bucket);
  buckets_.swap(made);
}

void StringPool::enter(std::vector<Bucket>& buckets, Bucket bucket) {
  const std::size_t mask = buckets.size() - 1;
  std::size_t at = bucket.hash & mask;
  while (buckets[at].entry != 0) at = (at + 1) & mask;
  buckets[at] = bucket;
}

}  // namespace engine
