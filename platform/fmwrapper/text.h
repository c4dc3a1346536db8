// Texts of the host: sequences of UTF-16 units, which may hold any unit, zero included.
#pragma once

#include <cstdint>

#include "platform/fmwrapper/error.h"
#include "platform/fmwrapper/owner.h"

namespace fmx {
class Text;
}  // namespace fmx

#pragma GCC visibility push(default)
extern "C" {
fmx::Text* FM_Text_Constructor1(fmx::ErrorRecord* error);
void FM_Text_Delete(fmx::Text* text, fmx::ErrorRecord* error);
void FM_Text_Assign(fmx::Text* text, const char* bytes, std::int32_t encoding,
                    fmx::ErrorRecord* error);
void FM_Text_AssignWide(fmx::Text* text, const wchar_t* characters, fmx::ErrorRecord* error);
void FM_Text_AssignUnicode(fmx::Text* text, const std::uint16_t* units, fmx::ErrorRecord* error);
void FM_Text_SetText(fmx::Text* text, const fmx::Text* other, std::uint32_t position,
                     std::uint32_t count, fmx::ErrorRecord* error);
void FM_Text_DeleteText(fmx::Text* text, std::uint32_t position, std::uint32_t count,
                        fmx::ErrorRecord* error);
std::uint32_t FM_Text_GetSize(const fmx::Text* text, fmx::ErrorRecord* error);
void FM_Text_GetBytes(const fmx::Text* text, char* buffer, std::uint32_t buffer_size,
                      std::uint32_t position, std::uint32_t count, std::int32_t encoding,
                      fmx::ErrorRecord* error);
void FM_Text_GetUnicode(const fmx::Text* text, std::uint16_t* buffer, std::uint32_t position,
                        std::uint32_t count, fmx::ErrorRecord* error);
std::uint32_t FM_Text_Find(const fmx::Text* text, const fmx::Text* wanted, std::uint32_t position,
                           fmx::ErrorRecord* error);
}
#pragma GCC visibility pop

namespace fmx {

class Text {
 public:
  // How the bytes that are put in or taken out are encoded; Native is the host's own.
  enum Encoding : std::int32_t { kEncoding_Native = 0, kEncoding_UTF8 = 1 };

  // As a count: up to the end.
  static constexpr std::uint32_t kSize_End = 0xFFFFFFFF;
  // As a position: there is none.
  static constexpr std::uint32_t kSize_Invalid = 0xFFFFFFFF;

  static Text* create() { return call(FM_Text_Constructor1); }
  static void destroy(Text* text, ErrorRecord* error) { FM_Text_Delete(text, error); }

  // All three read up to the first zero.
  void Assign(const char* bytes, Encoding encoding) {
    call(FM_Text_Assign, this, bytes, static_cast<std::int32_t>(encoding));
  }
  void AssignWide(const wchar_t* characters) { call(FM_Text_AssignWide, this, characters); }
  void AssignUnicode(const std::uint16_t* units) { call(FM_Text_AssignUnicode, this, units); }

  // Becomes a copy of the given range of another text.
  void SetText(const Text& other, std::uint32_t position = 0, std::uint32_t count = kSize_End) {
    call(FM_Text_SetText, this, &other, position, count);
  }
  // Drops count units from position on, or as many as there are.
  void DeleteText(std::uint32_t position, std::uint32_t count = kSize_End) {
    call(FM_Text_DeleteText, this, position, count);
  }

  std::uint32_t GetSize() const { return call(FM_Text_GetSize, this); }
  // Writes whole characters as long as they and a final zero fit into the buffer.
  void GetBytes(char* buffer, std::uint32_t buffer_size, std::uint32_t position,
                std::uint32_t count, Encoding encoding) const {
    call(FM_Text_GetBytes, this, buffer, buffer_size, position, count,
         static_cast<std::int32_t>(encoding));
  }
  // Writes exactly count units and no zero after them.
  void GetUnicode(std::uint16_t* buffer, std::uint32_t position, std::uint32_t count) const {
    call(FM_Text_GetUnicode, this, buffer, position, count);
  }
  // The place of the first match at or after position, or kSize_Invalid.
  std::uint32_t Find(const Text& wanted, std::uint32_t position) const {
    return call(FM_Text_Find, this, &wanted, position);
  }

 protected:
  // The host derives its texts from this class; nobody else makes any.
  Text() = default;
  Text(const Text&) = default;
  Text& operator=(const Text&) = default;
  ~Text() = default;
};

using TextUniquePtr = UniquePtr<Text>;

}  // namespace fmx
