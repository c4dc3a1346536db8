// A list of plain data that grows at its end and whose items stay where they are.
//
// Items lie in blocks of one size, so growing moves nothing, and a short list is small.
#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

namespace engine {

template <class T>
class BlockList {
  static_assert(std::is_trivially_copyable_v<T>);
  static constexpr std::size_t kBlock = 256;
  using Block = std::array<T, kBlock>;

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
    for (const auto& block : other.blocks_) blocks_.push_back(std::make_unique<Block>(*block));
  }
  BlockList& operator=(BlockList other) noexcept {
    swap(other);
    return *this;
  }
  ~BlockList() = default;

  std::size_t size() const { return size_; }
  T& operator[](std::size_t at) { return (*blocks_[at / kBlock])[at % kBlock]; }
  const T& operator[](std::size_t at) const { return (*blocks_[at / kBlock])[at % kBlock]; }

  void push_back(const T& item) {
    if (size_ == blocks_.size() * kBlock)
      blocks_.push_back(std::make_unique_for_overwrite<Block>());
    (*blocks_.back())[size_ % kBlock] = item;
    ++size_;
  }

  auto begin() { return Iterator(*this, 0); }
  auto end() { return Iterator(*this, size_); }
  auto begin() const { return Iterator(*this, 0); }
  auto end() const { return Iterator(*this, size_); }

 private:
  void swap(BlockList& other) noexcept {
    blocks_.swap(other.blocks_);
    std::swap(size_, other.size_);
  }

  std::vector<std::unique_ptr<Block>> blocks_;
  std::size_t size_ = 0;
};

}  // namespace engine
