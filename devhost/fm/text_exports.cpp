// The FM_Text_* functions.
#include <algorithm>
#include <stdexcept>
#include <string>
#include <string_view>

#include "devhost/fm/guard.h"
#include "devhost/fm/unicode.h"
#include "devhost/fm/values.h"
#include "platform/fmwrapper/text.h"

using devhost::guarded;
using devhost::object_of;
using devhost::TextObject;

namespace {

// A range of a text; a count that reaches past the end means up to the end.
std::u16string_view range_of(const fmx::Text* text, std::uint32_t position, std::uint32_t count) {
  return std::u16string_view(object_of<TextObject>(text).units).substr(position, count);
}

}  // namespace

fmx::Text* FM_Text_Constructor1(fmx::ErrorRecord* error) {
  return guarded(error, [] { return new TextObject; });
}

void FM_Text_Delete(fmx::Text* text, fmx::ErrorRecord* error) {
  guarded(error, [&] { delete static_cast<TextObject*>(text); });
}

// The host's own encoding is UTF-8.
void FM_Text_Assign(fmx::Text* text, const char* bytes, std::int32_t encoding,
                    fmx::ErrorRecord* error) {
  guarded(error, [&] {
    if (encoding != fmx::Text::kEncoding_Native && encoding != fmx::Text::kEncoding_UTF8) {
      throw std::invalid_argument("unknown encoding");
    }
    object_of<TextObject>(text).units = devhost::utf16_from_utf8(bytes);
  });
}

// An element above the basic plane becomes a surrogate pair; an element that is half a pair already
// stays what it is.
void FM_Text_AssignWide(fmx::Text* text, const wchar_t* characters, fmx::ErrorRecord* error) {
  guarded(error, [&] {
    std::u16string units;
    for (; *characters != 0; ++characters) {
      devhost::append_character(units, static_cast<char32_t>(*characters));
    }
    object_of<TextObject>(text).units = std::move(units);
  });
}

void FM_Text_AssignUnicode(fmx::Text* text, const std::uint16_t* units, fmx::ErrorRecord* error) {
  guarded(error, [&] {
    const std::uint16_t* end = units;
    while (*end != 0) ++end;
    object_of<TextObject>(text).units.assign(units, end);
  });
}

void FM_Text_SetText(fmx::Text* text, const fmx::Text* other, std::uint32_t position,
                     std::uint32_t count, fmx::ErrorRecord* error) {
  guarded(error, [&] {
    object_of<TextObject>(text).units = std::u16string(range_of(other, position, count));
  });
}

void FM_Text_DeleteText(fmx::Text* text, std::uint32_t position, std::uint32_t count,
                        fmx::ErrorRecord* error) {
  guarded(error, [&] { object_of<TextObject>(text).units.erase(position, count); });
}

std::uint32_t FM_Text_GetSize(const fmx::Text* text, fmx::ErrorRecord* error) {
  return guarded(
      error, [&] { return static_cast<std::uint32_t>(object_of<TextObject>(text).units.size()); });
}

void FM_Text_GetBytes(const fmx::Text* text, char* buffer, std::uint32_t buffer_size,
                      std::uint32_t position, std::uint32_t count, std::int32_t /*encoding*/,
                      fmx::ErrorRecord* error) {
  guarded(error, [&] {
    if (buffer_size == 0) return;
    std::u16string_view rest = range_of(text, position, count);
    std::size_t fitting = 0;
    for (std::size_t used = 0; fitting < rest.size();) {
      const std::size_t length = devhost::character_length(rest.substr(fitting));
      used += devhost::utf8_length(rest.substr(fitting, length));
      if (used >= buffer_size) break;
      fitting += length;
    }
    const std::string bytes = devhost::utf8_from_utf16(rest.substr(0, fitting));
    *std::copy(bytes.begin(), bytes.end(), buffer) = 0;
  });
}

void FM_Text_GetUnicode(const fmx::Text* text, std::uint16_t* buffer, std::uint32_t position,
                        std::uint32_t count, fmx::ErrorRecord* error) {
  guarded(error, [&] {
    const std::u16string_view range = range_of(text, position, count);
    if (range.size() != count) throw std::out_of_range("past the end of the text");
    std::copy(range.begin(), range.end(), buffer);
  });
}

std::uint32_t FM_Text_Find(const fmx::Text* text, const fmx::Text* wanted, std::uint32_t position,
                           fmx::ErrorRecord* error) {
  return guarded(error, [&] {
    const std::size_t place =
        object_of<TextObject>(text).units.find(object_of<TextObject>(wanted).units, position);
    return place == std::u16string::npos ? fmx::Text::kSize_Invalid
                                         : static_cast<std::uint32_t>(place);
  });
}
