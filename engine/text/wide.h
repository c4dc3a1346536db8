// Texts as the engine's interface speaks them, wide, and as the engine keeps them, UTF-8.
//
// Wide text has one element per UTF-16 code unit, so a character outside the basic plane is two
// elements in both directions; where elements have room for it, a caller may also give such a
// character as one.
#pragma once

#include <string>
#include <string_view>

namespace engine {

// Joins surrogate pairs; a surrogate without its partner, or what is no character at all, becomes
// U+FFFD. Null counts as empty.
std::string to_utf8(const wchar_t* text);
// The same into a buffer that is reused; the former content goes.
void to_utf8(const wchar_t* text, std::string& utf8);

// One element per UTF-16 unit; bytes that are not UTF-8 become U+FFFD.
std::wstring to_wide(std::string_view utf8);
void to_wide(std::string_view utf8, std::wstring& wide);

}  // namespace engine
