// A list of plain data that grows at its end and whose items stay where they are.
//
// Items lie in blocks, each twice as long as the one before, so growing moves nothing and a short
// list is small. A block's memory is not touched before it is used.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <iterator>
#include <type_traits>
#include <utility>
#include <vector>

#include "engine/system/large_pages.h"

namespace engine {

template <class T>
class BlockList {
  static_assert(std::is_trivially_copyable_v<T>);
  static constexpr std::size_t kFirstBlock = 256;

  // Goes through the items in order. List is a list that may be changed or one that may not.
  template <class List>
  class Iterator {
   public:
    using value_type = T;
    using difference_type = std::ptrdiff_t;

    Iterator() = default;
    Iterator(List& list, std::size_t at) : list_(&list), at_(at) {}

    auto& operator*() const { return (*list_)[at_]; }
    Iterator& operator++() {
      ++at_;
      return *this;
    }
    Iterator operator++(int) { return {*list_, at_++}; }
    bool operator==(const Iterator&) const = default;

   private:
    List* list_ = nullptr;
    std::size_t at_ = 0;
  };

 public:
  BlockList() = default;
  BlockList(BlockList&& other) noexcept { swap(other); }
  BlockList(const BlockList& other) : size_(other.size_) {
    blocks_.reserve(other.blocks_.size());
    for (std::size_t left = size_; left != 0;) {
      const std::size_t number = blocks_.size();
      const std::size_t used = std::min(left, length_of(number));
      add_block();
      std::copy_n(other.items(number), used, items(number));
      left -= used;
    }
  }
  BlockList& operator=(BlockList other) noexcept {
    swap(other);
    return *this;
  }
  ~BlockList() = default;

  std::size_t size() const { return size_; }
  T& operator[](std::size_t at) {
    const Place place(at);
    return items(place.block)[place.offset];
  }
  const T& operator[](std::size_t at) const {
    const Place place(at);
    return items(place.block)[place.offset];
  }

  void push_back(const T& item) {
    const Place place(size_);
    if (place.block == blocks_.size()) add_block();
    items(place.block)[place.offset] = item;
    ++size_;
  }

  auto begin() { return Iterator<BlockList>(*this, 0); }
  auto end() { return Iterator<BlockList>(*this, size_); }
  auto begin() const { return Iterator<const BlockList>(*this, 0); }
  auto end() const { return Iterator<const BlockList>(*this, size_); }

 private:
  static constexpr std::size_t length_of(std::size_t block) { return kFirstBlock << block; }

  // Before a block stand as many items as it has itself, but for those of the first.
  struct Place {
    explicit Place(std::size_t at)
        : block(static_cast<std::size_t>(std::bit_width(at / kFirstBlock + 1)) - 1),
          offset(at + kFirstBlock - length_of(block)) {}

    std::size_t block;
    std::size_t offset;
  };

  T* items(std::size_t block) const { return blocks_[block].get(); }
  void add_block() { blocks_.push_back(system::make_items<T>(length_of(blocks_.size()))); }
  void swap(BlockList& other) noexcept {
    blocks_.swap(other.blocks_);
    std::swap(size_, other.size_);
  }

  std::vector<system::Items<T>> blocks_;
  std::size_t size_ = 0;
};

}  // namespace engine
