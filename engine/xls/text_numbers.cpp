#include "engine/xls/text_numbers.h"

#include <algorithm>

namespace engine::xls {

namespace {

// A text that the index of the list names.
struct Place {
  std::uint32_t position;   // in the stream
  std::uint32_t in_record;  // from the beginning of its record
};

}  // namespace

void TextNumbers::write(RecordWriter& out) const {
  constexpr std::size_t kMostPlaces = 128;
  constexpr std::size_t kLeastTexts = 8;
  const std::size_t each = std::max(kLeastTexts, listed_.size() / kMostPlaces + 1);
  std::vector<Place> places;
  Characters characters;
  out.begin(kTexts);
  out.put32(cells_);
  out.put32(static_cast<std::uint32_t>(listed_.size()));
  for (std::size_t i = 0; i < listed_.size(); ++i) {
    characters.take(pool_[listed_[i]]);
    out.keep_together(3 + characters.size_of_one());
    if (i % each == 0)
      places.push_back({static_cast<std::uint32_t>(out.position()),
                        static_cast<std::uint32_t>(out.size_so_far() + 4)});
    out.put_long_text(characters);
  }
  out.end();
  out.begin(kTextIndex);
  out.put16(static_cast<std::uint32_t>(each));
  for (const auto& [position, in_record] : places) {
    out.put32(position);
    out.put16(in_record);
    out.put16(0);
  }
  out.end();
}

}  // namespace engine::xls
