// Walking over the records of a workbook stream.
//
// A record is its number, the size of its data and the data, at most 8,224 bytes; what is longer
// goes on in CONTINUE records. A text that is cut has its option byte anew behind the cut, and may
// change its width there.
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/package/compound_file.h"
#include "engine/xls/cipher.h"
#include "engine/xls/records.h"

namespace engine::xls {

class RecordReader {
 public:
  // The stream outlives this. `sheet` names the sheet in messages.
  RecordReader(const package::CompoundStream& stream, std::uint64_t offset,
               const std::optional<Cipher>& cipher = {}, std::string_view sheet = {});

  // The records from here on are encrypted.
  void decrypt_with(const Cipher& cipher) { cipher_ = cipher; }

  // Nothing is read from `offset` on; said before anything is.
  void end_at(std::uint64_t offset) { end_ = std::min(end_, offset); }

  // The next record is the one that begins there.
  void go_to(std::uint64_t offset) { next_ = offset; }

  // Goes to the next record; false at the end.
  bool next();

  std::uint16_t id() const { return id_; }
  // Valid until the next record.
  std::string_view data() const { return data_; }
  // Of the record in the stream, its number and size included.
  std::uint64_t offset() const { return offset_; }

  // The bytes from the next record on as far as they lie in one piece. None of encrypted records.
  std::string_view ahead();
  std::uint64_t next_offset() const { return next_; }
  // Goes behind records that were read there, of which the last one begins at `last`.
  void pass(std::uint64_t last, std::uint64_t end);

  // The number of the record behind this one; 0 at the end.
  std::uint16_t next_id();

  // Goes on to the next record if it continues this one.
  bool next_part() { return next_id() == kContinue && next(); }
  // The data with that of all records that continue this one, which are passed.
  std::string_view whole_data();

  [[noreturn]] void fail(std::string_view what) const;

 private:
  // Whether there are so many bytes; brings them into the window.
  bool reach(std::uint64_t offset, std::size_t count) {
    return in_window(offset, count) || move_window(offset, count);
  }
  bool in_window(std::uint64_t offset, std::size_t count) const {
    const std::uint64_t at = offset - window_begin_;  // too much for any window if it is in front
    return at <= window_.size() && window_.size() - at >= count;
  }
  bool move_window(std::uint64_t offset, std::size_t count);
  void decrypt();

  const package::CompoundStream& stream_;
  const std::string_view sheet_;
  std::string_view window_;  // bytes of the stream, none behind its end
  std::uint64_t window_begin_ = 0;
  std::vector<char> buffer_;  // of a window that does not lie in one piece
  std::uint64_t offset_ = 0;
  std::uint64_t next_ = 0;
  std::uint64_t end_;
  std::uint16_t id_ = 0;
  std::string_view data_;
  std::string whole_;
  std::optional<Cipher> cipher_;
  std::string decrypted_;
};

// A record's data and those of the records that continue it, taken from the front. What is not
// there is damage.
class ContinuedData {
 public:
  explicit ContinuedData(RecordReader& reader) : reader_(reader), rest_(reader.data()) {}

  // Whether nothing is left; goes on behind a border.
  bool at_end();
  std::uint8_t take8();
  std::uint16_t take16();
  std::uint32_t take32();
  void skip(std::uint64_t count);
  // Characters of a text, to the end of one that lies in this part if it can be viewed there.
  void take_characters(std::size_t count, bool wide, std::string& utf8);
  // The same of characters that are bytes of ASCII and lie in one part; empty if they are not, and
  // then nothing is taken.
  std::string_view take_plain(std::size_t count);

 private:
  RecordReader& reader_;
  std::string_view rest_;
};

bool is_ascii(std::string_view bytes);

}  // namespace engine::xls
