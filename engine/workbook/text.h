// Texts as the engine keeps them, UTF-8, and as its interface speaks them, wide.
//
// Wide text has one element per UTF-16 code unit, so a character outside the basic plane is two
// elements in both directions; a caller may also give such a character as one element. Lengths
// and limits count UTF-16 units throughout.
#pragma once

#include <cstddef>
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

std::size_t utf16_length(std::string_view utf8);

// CR LF and CR become LF: the host ends lines with CR, a spreadsheet with LF.
void normalize_line_ends(std::string& text);

// A text for a message: in double quotes, cut to 64 characters.
std::string quoted(std::string_view utf8);

// Unicode simple case folding, independent of any locale.
std::string fold_case(std::string_view utf8);
bool equal_ignoring_case(std::string_view a, std::string_view b);

}  // namespace engine
