// The fields of a record or parsed expression, taken from the front.
//
// Nothing is read beyond the end: once something was missing, all that follows is zero, and ok()
// tells it.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "engine/package/little_endian.h"
#include "engine/text/utf16.h"

namespace engine::xls {

// Two bits of a compressed number say what the others are.
inline double decode_rk(std::uint32_t rk) {
  constexpr std::uint32_t kHundredths = 1;
  constexpr std::uint32_t kWhole = 2;
  const double value = (rk & kWhole) != 0 ? static_cast<std::int32_t>(rk) >> 2
                                          : std::bit_cast<double>(std::uint64_t{rk & ~3U} << 32);
  return (rk & kHundredths) != 0 ? value / 100 : value;
}

class Fields {
 public:
  explicit Fields(std::string_view bytes) : rest_(bytes) {}

  bool at_end() const { return rest_.empty(); }
  bool ok() const { return ok_; }
  std::string_view rest() const { return rest_; }

  std::uint8_t take8() { return static_cast<std::uint8_t>(take_number(1)[0]); }
  std::uint16_t take16() { return package::get16(take_number(2), 0); }
  std::uint32_t take32() { return package::get32(take_number(4), 0); }
  double take_double() { return package::get_double(take_number(8), 0); }
  void skip(std::size_t count) { take(count); }

  // Empty when there are fewer.
  std::string_view take(std::size_t count) {
    if (rest_.size() < count) {
      ok_ = false;
      rest_ = {};
      return {};
    }
    const std::string_view taken = rest_.substr(0, count);
    rest_.remove_prefix(count);
    return taken;
  }

  // Characters behind their option byte, which tells whether they are wide.
  void take_characters(std::size_t count, std::string& utf8) {
    if ((take8() & 1) != 0) append_utf16(utf8, take(2 * count));
    else append_latin1(utf8, take(count));
  }
  // A text behind its length of one or two bytes.
  std::string take_short_text() { return take_text(take8()); }
  std::string take_long_text() { return take_text(take16()); }
  std::string take_text(std::size_t count) {
    std::string text;
    take_characters(count, text);
    return text;
  }

 private:
  std::string_view take_number(std::size_t size) {
    static constexpr char kZeros[8] = {};
    const std::string_view taken = take(size);
    return taken.empty() ? std::string_view(kZeros, size) : taken;
  }

  std::string_view rest_;
  bool ok_ = true;
};

}  // namespace engine::xls
