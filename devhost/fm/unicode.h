// Texts between UTF-8, in which files and terminals speak, and UTF-16, in which the host thinks.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace devhost {

// A byte that belongs to no character becomes U+FFFD.
std::u16string utf16_from_utf8(std::string_view bytes);

// Half a surrogate pair becomes U+FFFD.
std::string utf8_from_utf16(std::u16string_view text);

// Paths, which systems keep in other forms, are UTF-8 everywhere else.
std::filesystem::path path_from_utf8(std::string_view bytes);
std::string utf8_from_path(const std::filesystem::path& path);

// The number of units at the front that make one character: 2 for a surrogate pair.
std::size_t character_length(std::u16string_view text);

// The bytes that a character takes in UTF-8; half a surrogate pair counts as U+FFFD does.
std::size_t utf8_length(std::u16string_view character);

// A character above the basic plane becomes a surrogate pair.
void append_character(std::u16string& text, char32_t character);

// The first character of a text that has one; half a surrogate pair comes back as it is.
char32_t first_character(std::u16string_view text);

std::u16string to_upper(std::u16string_view text);
std::u16string to_lower(std::u16string_view text);

// Orders texts as the host compares them: without regard to case.
int compare_ignoring_case(std::u16string_view left, std::u16string_view right);

}  // namespace devhost
