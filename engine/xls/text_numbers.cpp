#include "engine/xls/text_numbers.h"

#include <algorithm>
#include <string>

#include "engine/package/little_endian.h"

namespace engine::xls {

// The parts of a list that the file has stay as they are, and new texts go on in the last one.
void TextNumbers::write(RecordWriter& out, RecordReader* old) {
  places_.clear();
  shift_ = 0;
  std::uint32_t cells = cells_;
  const std::uint64_t begin = out.position();
  std::string part;
  if (old) {
    shift_ = static_cast<std::int64_t>(begin) - static_cast<std::int64_t>(old->offset());
    part = old->data();
    part.resize(std::max<std::size_t>(part.size(), 8));
    cells += package::get32(part, 0);
  } else {
    part.resize(8);
  }
  put32(part.data(), cells);
  put32(&part[4], from_file_ + static_cast<std::uint32_t>(listed_.size()));
  std::uint16_t id = kTexts;
  while (old && old->next_id() == kContinue) {
    out.copy(id, part);
    old->next();
    part = old->data();
    id = kContinue;
  }
  if (part.size() <= RecordWriter::kMaxData) {
    out.begin(id);
    out.put(part);
  } else {
    out.copy(id, part);
    if (listed_.empty()) return;
    out.begin(kContinue);
  }
  Characters characters;
  for (const std::string_view text : listed_) {
    characters.take(text);
    out.keep_together(3 + characters.room_for_one());
    places_.push_back({static_cast<std::uint32_t>(out.position()),
                       static_cast<std::uint32_t>(out.size_so_far() + 4)});
    out.put_long_text(characters);
  }
  out.end();
}

// Texts of the file stand as far from one another as they did.
void TextNumbers::write_index(RecordWriter& out, RecordReader* old) const {
  constexpr std::size_t kMostPlaces = 128;
  constexpr std::size_t kLeastTexts = 8;
  std::size_t each = std::max(kLeastTexts, listed_.size() / kMostPlaces + 1);
  std::vector<Place> places;
  if (old) {
    const std::string_view data = old->whole_data();
    if (data.size() >= 2) each = std::max<std::size_t>(package::get16(data, 0), 1);
    for (std::size_t at = 2; at + 8 <= data.size(); at += 8)
      places.push_back({static_cast<std::uint32_t>(package::get32(data, at) + shift_),
                        package::get16(data, at + 4)});
    places.resize(std::min(places.size(), (from_file_ + each - 1) / each));
  }
  for (std::size_t i = 0; i < places_.size(); ++i)
    if ((from_file_ + i) % each == 0) places.push_back(places_[i]);
  out.begin(kTextIndex);
  out.put16(static_cast<std::uint32_t>(each));
  for (const auto& [position, in_record] : places) {
    out.keep_together(8);
    out.put32(position);
    out.put16(in_record);
    out.put16(0);
  }
  out.end();
}

}  // namespace engine::xls
