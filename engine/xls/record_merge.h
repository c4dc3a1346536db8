// Writing a substream again with some of its records made anew.
//
// Records stand in an order that the format fixes, and most of them mean nothing to the engine. So
// those that it knows are parted into groups, numbered in that order. A loaded substream is gone
// over record by record: what belongs to no group, or to one that is as it was, is copied in its
// place; a group that is written anew stands where its first record stood, and one that the file
// does not have yet in front of the first record of a later group. A new substream is its groups,
// one after the other.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "engine/xls/record_reader.h"
#include "engine/xls/record_writer.h"

namespace engine::xls {

// Data of carried records that operations have changed, by where these stand in the stream;
// nothing for a record that is gone.
using RecordEdits = std::map<std::uint64_t, std::optional<std::string>>;

class GroupWriter {
 public:
  enum class Mode : std::uint8_t {
    kCopy,     // as the file has it, if it does
    kReplace,  // written at once
    kExtend,   // one record after the other, with new ones behind them
  };

  GroupWriter() = default;
  GroupWriter(const GroupWriter&) = delete;
  GroupWriter& operator=(const GroupWriter&) = delete;
  virtual ~GroupWriter() = default;

  virtual std::size_t count() const = 0;
  // The group of the record that the reader stands at; nothing for a carried one.
  virtual std::optional<std::size_t> group_of(const RecordReader& record) const = 0;
  virtual Mode mode(std::size_t group) const = 0;

  // Writes a group from the model. `old` stands at its first record, or is null without one.
  virtual void write(std::size_t group, RecordReader* old) = 0;
  // Writes a record of a group that is extended in place of what the file has there. False leaves
  // that as it is.
  virtual bool write_one(std::size_t /*group*/, std::size_t /*place*/, RecordReader& /*old*/) {
    return false;
  }

  // Tells that a record is copied, with all of what lies in it. False leaves it out.
  virtual bool takes(const RecordReader& /*record*/) { return true; }
};

// Writes all groups.
void write_groups(GroupWriter& groups);

// Writes a loaded substream, which `reader` stands in front of, up to its end.
void merge_records(RecordReader reader, const RecordEdits& edits, RecordWriter& out,
                   GroupWriter& groups);

// Copies the records from one place of the stream that a reader goes over to another.
void copy_records(RecordReader reader, std::uint64_t begin, std::uint64_t end,
                  const RecordEdits& edits, RecordWriter& out);

// Goes over all records up to the one that ends what begins with the one the reader stands at.
template <class Visit>
void pass_substream(RecordReader& reader, const Visit& visit) {
  for (std::size_t depth = 1; depth > 0;) {
    if (!reader.next()) reader.fail("ends too early");
    if (reader.id() == kBof) ++depth;
    else if (reader.id() == kEof) --depth;
    visit();
  }
}

}  // namespace engine::xls
