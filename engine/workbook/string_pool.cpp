#include "engine/workbook/string_pool.h"

#include <xxhash.h>

#include <algorithm>
#include <random>

namespace engine {

std::uint32_t StringPool::hash_of(std::string_view text) const {
  const auto folded =
      static_cast<std::uint32_t>(XXH3_64bits_withSeed(text.data(), text.size(), seed_));
  return folded == 0 ? 1 : folded;
}

std::uint32_t StringPool::add(std::string_view text) {
  if ((entries_.size() + 1) * 2 > bucket_count_) make_index((entries_.size() + 8) * 4);
  const std::uint32_t hash = hash_of(text);
  const auto mask = static_cast<std::uint32_t>(bucket_count_ - 1);
  std::uint32_t at = hash & mask;
  // The text is kept before it is known to be new: meanwhile its bucket comes from memory.
  __builtin_prefetch(&buckets_[at]);
  const char* const kept = texts_.keep(text).data();
  for (; buckets_[at] != 0; at = (at + 1) & mask) {
    if (((buckets_[at] ^ hash) & ~mask) != 0) continue;
    const std::uint32_t index = (buckets_[at] & mask) - 1;
    const Entry& entry = entries_[index];
    if (entry.hash == hash && std::string_view(entry.data, entry.length) == text) {
      texts_.drop_last(text);
      return index;
    }
  }
  entries_.push_back({kept, static_cast<std::uint32_t>(text.size()), hash});
  buckets_[at] = (hash & ~mask) | size();
  return size() - 1;
}

std::uint32_t StringPool::append(std::string_view text) {
  const char* data = texts_.keep(text).data();
  entries_.push_back({data, static_cast<std::uint32_t>(text.size()), 0});
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

// Rich entries stay out of the index: a plain text that is equal gets an entry of its own.
void StringPool::make_index(std::size_t buckets) {
  std::size_t size = 64;
  while (size < buckets) size *= 2;
  if (!buckets_) {
    std::random_device random;
    seed_ = std::uint64_t{random()} << 32 | random();
  }
  buckets_ = system::make_items<std::uint32_t>(size);
  bucket_count_ = size;
  std::fill_n(buckets_.get(), size, 0);
  for (std::uint32_t index = 0; index < entries_.size(); ++index) {
    if (!rich_.empty() && rich_.contains(index)) continue;
    Entry& entry = entries_[index];
    if (entry.hash == 0) entry.hash = hash_of({entry.data, entry.length});
    enter(index);
  }
}

void StringPool::enter(std::uint32_t index) {
  const auto mask = static_cast<std::uint32_t>(bucket_count_ - 1);
  const std::uint32_t hash = entries_[index].hash;
  std::uint32_t at = hash & mask;
  while (buckets_[at] != 0) at = (at + 1) & mask;
  buckets_[at] = (hash & ~mask) | (index + 1);
}

}  // namespace engine
