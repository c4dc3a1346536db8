// The texts of a book: each new one once, given out by number.
//
// Texts are UTF-8 and lie one behind the other in blocks that never move. Entries that a file
// brought keep their numbers, doubles too, because sheets that nobody opens refer to them. The
// index by hash is made when the first new text comes: a book that is only read needs none. Its
// hashes begin with a number that nobody knows beforehand, so that no file can make its texts meet
// in one place of the index.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "engine/system/large_pages.h"
#include "engine/workbook/block_list.h"
#include "engine/workbook/text_arena.h"

namespace engine {

class StringPool {
 public:
  // The number of the text: that of an equal plain entry, or a new one.
  std::uint32_t add(std::string_view text);

  // A further entry as a file lists it, equal to another or not.
  std::uint32_t append(std::string_view text);

  // A text with runs of its own look; `rich` is kept for the codec, which can write it again.
  std::uint32_t append_rich(std::string_view text, std::string rich);

  // Rich content of an entry that `append_rich` made, else null.
  const std::string* rich(std::uint32_t index) const;

  // From here on entries are new: those before are the file's and stand in its own part.
  void end_of_file_entries() { from_file_ = size(); }
  std::uint32_t count_from_file() const { return from_file_; }

  // Says that entry `index` has a look of its own, so that plain text never becomes it.
  void mark_rich(std::uint32_t index) { rich_.try_emplace(index); }

  std::uint32_t size() const { return static_cast<std::uint32_t>(entries_.size()); }
  std::string_view operator[](std::uint32_t index) const {
    return {entries_[index].data, entries_[index].length};
  }

 private:
  struct Entry {
    const char* data;
    std::uint32_t length;
    std::uint32_t hash;  // 0 until the index by hash is made
  };

  std::uint32_t hash_of(std::string_view text) const;
  void make_index(std::size_t buckets);
  void enter(std::uint32_t index);

  BlockList<Entry> entries_;
  // Open addressing. As many low bits as number all buckets hold the entry's number plus one, 0 is
  // free; above them stands what the hash has there, so that most texts which meet in a bucket are
  // told apart without looking at the entry.
  system::Items<std::uint32_t> buckets_;
  std::size_t bucket_count_ = 0;
  std::uint64_t seed_ = 0;  // of the hashes, once the index is made
  TextArena texts_;
  std::map<std::uint32_t, std::string> rich_;
  std::uint32_t from_file_ = 0;
};

}  // namespace engine
