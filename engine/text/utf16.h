// Texts of binary files: UTF-16, the lower byte first, and its low bytes alone.
#pragma once

#include <string>
#include <string_view>

namespace engine {

// Joins surrogate pairs; a surrogate without its partner becomes U+FFFD. A last odd byte is left.
void append_utf16(std::string& utf8, std::string_view bytes);

// The units whose high byte is zero, which is left out: Latin-1.
void append_latin1(std::string& utf8, std::string_view bytes);

// The other way round; bytes that are not UTF-8 become U+FFFD.
std::string utf16_bytes(std::string_view utf8);

}  // namespace engine
