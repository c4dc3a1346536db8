// The texts of a book that its file lists: those of a loaded file as it has them, then those that
// cells name beyond these, in the order in which they do.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "engine/workbook/string_pool.h"
#include "engine/xls/record_reader.h"
#include "engine/xls/record_writer.h"

namespace engine::xls {

class TextNumbers {
 public:
  explicit TextNumbers(const StringPool& pool)
      : pool_(pool), from_file_(pool.count_from_file()), numbers_(pool.size(), kNone) {}

  // The number in the file of a text that a cell has.
  std::uint32_t number(std::uint32_t text) {
    if (text < from_file_) return text;
    ++cells_;
    std::uint32_t& number = numbers_[text];
    if (number == kNone) number = list(pool_[text]);
    return number;
  }
  // The same of a text that is not the book's, which stays as long as this.
  std::uint32_t number_of(std::string_view text) {
    ++cells_;
    return list(text);
  }

  std::string_view text(std::uint32_t text) const { return pool_[text]; }

  // Whether there are texts that the file does not have.
  bool any_new() const { return !listed_.empty(); }

  // The list, where `old` stands in front of what the file has of it, or is null.
  void write(RecordWriter& out, RecordReader* old);
  // Where every so many of its texts stand in the stream, whose beginning the output is.
  void write_index(RecordWriter& out, RecordReader* old) const;

 private:
  static constexpr std::uint32_t kNone = 0xFFFFFFFF;

  // A text that the index names.
  struct Place {
    std::uint32_t position;   // in the stream
    std::uint32_t in_record;  // from the beginning of its record
  };

  std::uint32_t list(std::string_view text) {
    listed_.push_back(text);
    return from_file_ + static_cast<std::uint32_t>(listed_.size()) - 1;
  }

  const StringPool& pool_;
  const std::uint32_t from_file_;
  std::vector<std::uint32_t> numbers_;    // by the pool's
  std::vector<std::string_view> listed_;  // new ones
  std::uint32_t cells_ = 0;
  std::vector<Place> places_;  // of new ones, as the list was written
  std::int64_t shift_ = 0;     // of the file's list
};

}  // namespace engine::xls
