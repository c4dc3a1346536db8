// The texts of a book that its file lists, in the order in which cells first name them.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "engine/workbook/string_pool.h"
#include "engine/xls/record_writer.h"

namespace engine::xls {

class TextNumbers {
 public:
  explicit TextNumbers(const StringPool& pool) : pool_(pool), numbers_(pool.size(), kNone) {}

  // The number in the file of a text that a cell has.
  std::uint32_t number(std::uint32_t text) {
    ++cells_;
    std::uint32_t& number = numbers_[text];
    if (number == kNone) {
      number = static_cast<std::uint32_t>(listed_.size());
      listed_.push_back(text);
    }
    return number;
  }

  std::string_view text(std::uint32_t text) const { return pool_[text]; }

  // The list, and where every so many of its texts stand in the stream, whose beginning the output
  // is.
  void write(RecordWriter& out) const;

 private:
  static constexpr std::uint32_t kNone = 0xFFFFFFFF;

  const StringPool& pool_;
  std::vector<std::uint32_t> numbers_;  // by the pool's
  std::vector<std::uint32_t> listed_;
  std::uint32_t cells_ = 0;
};

}  // namespace engine::xls
