#include "engine/xls/record_merge.h"

#include <utility>
#include <vector>

namespace engine::xls {

namespace {

using Mode = GroupWriter::Mode;

void copy_record(const RecordReader& reader, const RecordEdits& edits, RecordWriter& out) {
  const auto edit = edits.find(reader.offset());
  if (edit == edits.end()) out.copy(reader.id(), reader.data());
  else if (edit->second) out.copy(reader.id(), *edit->second);
}

class Merge {
 public:
  Merge(const RecordEdits& edits, RecordWriter& out, GroupWriter& groups)
      : edits_(edits), out_(out), groups_(groups), states_(groups.count()) {
    for (std::size_t group = 0; group < states_.size(); ++group)
      states_[group].mode = groups_.mode(group);
  }

  void write(RecordReader& reader) {
    count_records(reader);
    if (!reader.next()) reader.fail("ends too early");
    copy(reader);
    while (true) {
      if (!reader.next()) reader.fail("ends too early");
      if (continues(reader.id())) {
        if (copying_) out_.copy(reader.id(), reader.data());
        continue;
      }
      finish_extended();
      if (reader.id() == kEof) break;
      write_record(reader);
    }
    write_missing(states_.size());
    out_.copy(kEof, {});
  }

 private:
  struct State {
    Mode mode = Mode::kCopy;
    std::size_t records = 0;  // that the file has
    std::size_t passed = 0;   // of those
  };

  static bool continues(std::uint16_t id) {
    return id == kContinue || id == kContinueFuture || id == kFutureContinue;
  }

  // What begins here is passed as one.
  static bool is_nested(std::uint16_t id) { return id == kBof || id == kUserViewBegin; }

  // Goes over what begins with a record, and `visit`s all that follows it.
  template <class Visit>
  static void pass_nested(RecordReader& reader, const Visit& visit) {
    if (reader.id() == kBof) return pass_substream(reader, visit);
    while (reader.next_id() != kEof && reader.id() != kUserViewEnd && reader.next()) visit();
  }

  void count_records(RecordReader reader) {
    if (!reader.next()) return;
    while (reader.next() && reader.id() != kEof) {
      if (continues(reader.id())) continue;
      if (const auto group = groups_.group_of(reader)) ++states_[*group].records;
      if (is_nested(reader.id())) pass_nested(reader, [] {});
    }
  }

  void write_record(RecordReader& reader) {
    const auto group = groups_.group_of(reader);
    if (!group) return copy(reader);
    write_missing(*group);
    State& state = states_[*group];
    const std::size_t place = state.passed++;
    switch (state.mode) {
      case Mode::kCopy:
        copy(reader);
        break;
      case Mode::kReplace:
        copying_ = false;
        if (place == 0) groups_.write(*group, &reader);
        if (is_nested(reader.id())) pass_nested(reader, [] {});
        break;
      case Mode::kExtend:
        copying_ = false;
        if (!groups_.write_one(*group, place, reader)) copy(reader);
        if (state.passed == state.records) extended_ = *group;
        break;
    }
  }

  void copy(RecordReader& reader) {
    const auto edit = edits_.find(reader.offset());
    copying_ = groups_.takes(reader) && (edit == edits_.end() || edit->second);
    if (copying_) out_.copy(reader.id(), edit == edits_.end() ? reader.data() : *edit->second);
    // The first record of all is the one that begins the substream itself.
    if (!std::exchange(inside_, true) || !is_nested(reader.id())) return;
    const bool copies = copying_;
    pass_nested(reader, [&] {
      if (copies) copy_record(reader, edits_, out_);
    });
  }

  // Groups in front of one that the file does not have.
  void write_missing(std::size_t end) {
    for (; reached_ < end; ++reached_) {
      const State& state = states_[reached_];
      if (state.records == 0 && state.mode != Mode::kCopy) groups_.write(reached_, nullptr);
    }
  }

  void finish_extended() {
    if (extended_) groups_.write(*std::exchange(extended_, std::nullopt), nullptr);
  }

  const RecordEdits& edits_;
  RecordWriter& out_;
  GroupWriter& groups_;
  std::vector<State> states_;
  std::size_t reached_ = 0;              // groups in front of this one stand where they belong
  std::optional<std::size_t> extended_;  // whose last record was passed just now
  bool copying_ = false;                 // what continues the record that was met last
  bool inside_ = false;
};

}  // namespace

void write_groups(GroupWriter& groups) {
  for (std::size_t group = 0; group < groups.count(); ++group) groups.write(group, nullptr);
}

void copy_records(RecordReader reader, std::uint64_t begin, std::uint64_t end,
                  const RecordEdits& edits, RecordWriter& out) {
  reader.go_to(begin);
  while (reader.next() && reader.offset() < end) copy_record(reader, edits, out);
}

void merge_records(RecordReader reader, const RecordEdits& edits, RecordWriter& out,
                   GroupWriter& groups) {
  Merge(edits, out, groups).write(reader);
}

}  // namespace engine::xls
