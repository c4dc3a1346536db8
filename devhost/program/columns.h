// Texts in the columns of a terminal, where a character takes none, one or two.
#pragma once

#include <string>
#include <string_view>

namespace devhost {

// Texts of files may hold what a terminal obeys. A control character becomes U+FFFD, and so does
// half a surrogate pair; line ends and tabs stay.
std::u16string harmless(std::u16string_view text);

// Harmless on one line: a line end becomes ↵, a tab a blank.
std::u16string on_one_line(std::u16string_view text);

int columns_of(std::u16string_view text);

// The beginning that fits, with … where something is missing.
std::u16string cut_to(std::u16string_view text, int columns);

// The text between blanks, cut where it is too long.
std::u16string fitted(std::u16string_view text, int columns, bool at_the_right);

}  // namespace devhost
