// Values that many entries have in common, each once, by number.
//
// Who takes a number counts as a use of the value. A value that nothing uses any more leaves its
// place to the next new one, so that a list in which entries change again and again stays as long
// as there are different values at a time. Number 0 is the usual value and stays.
#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

namespace engine {

template <class Value, class Hash>
class SharedValues {
 public:
  SharedValues() { take(Value()); }

  const Value& operator[](std::uint32_t number) const { return entries_[number].value; }

  // The number of a value, used once more.
  std::uint32_t take(const Value& value) {
    const std::size_t hash = Hash()(value);
    const auto [first, last] = numbers_.equal_range(hash);
    for (auto at = first; at != last; ++at)
      if (entries_[at->second].value == value) return again(at->second);
    const std::uint32_t number = free_;
    if (number == entries_.size()) entries_.push_back({{}, number + 1});
    numbers_.emplace(hash, number);
    free_ = entries_[number].uses;
    entries_[number] = {value, 1};
    return number;
  }
  std::uint32_t again(std::uint32_t number) noexcept {
    ++entries_[number].uses;
    return number;
  }
  void release(std::uint32_t number) noexcept {
    Entry& entry = entries_[number];
    if (--entry.uses != 0) return;
    auto at = numbers_.equal_range(Hash()(entry.value)).first;
    while (at->second != number) ++at;
    numbers_.erase(at);
    entry.uses = free_;
    free_ = number;
  }

 private:
  struct Entry {
    Value value;
    std::uint32_t uses = 0;  // of a free place: the next free one
  };

  std::vector<Entry> entries_;
  std::unordered_multimap<std::size_t, std::uint32_t> numbers_;  // by hash
  std::uint32_t free_ = 0;                                       // the first free place
};

}  // namespace engine
