// Texts that live as long as their arena, one behind the other in blocks that never move.
//
// A text that is kept never changes, so a copy of an arena shares its blocks: what views the texts
// of one views those of the other.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/system/large_pages.h"

namespace engine {

class TextArena {
 public:
  TextArena() = default;
  // New texts of a copy go into blocks of its own.
  TextArena(const TextArena& other) : blocks_(other.blocks_), size_(other.size_) {}
  TextArena(TextArena&& other) noexcept { swap(other); }
  TextArena& operator=(TextArena other) noexcept {
    swap(other);
    return *this;
  }
  ~TextArena() = default;

  std::string_view keep(std::string_view text) {
    if (text.size() > room_)
      reserve(std::max(text.size(), system::next_block(kFirstBlock, blocks_.size())));
    char* const kept = free_;
    std::ranges::copy(text, kept);
    free_ += text.size();
    room_ -= text.size();
    size_ += text.size();
    return {kept, text.size()};
  }

  // Gives up the text that was kept last.
  void drop_last(std::string_view text) {
    free_ -= text.size();
    room_ += text.size();
    size_ -= text.size();
  }

  // Makes room: the next texts of so many bytes in all are kept without a failure.
  void reserve(std::size_t size) {
    if (size <= room_) return;
    blocks_.push_back(std::shared_ptr<char[]>(system::make_items<char>(size)));
    free_ = blocks_.back().get();
    room_ = size;
  }

  // Bytes of all texts that were kept.
  std::size_t size() const { return size_; }

 private:
  static constexpr std::size_t kFirstBlock = 1024;
  void swap(TextArena& other) noexcept {
    blocks_.swap(other.blocks_);
    std::swap(free_, other.free_);
    std::swap(room_, other.room_);
    std::swap(size_, other.size_);
  }

  std::vector<std::shared_ptr<char[]>> blocks_;
  char* free_ = nullptr;
  std::size_t room_ = 0;
  std::size_t size_ = 0;
};

}  // namespace engine
