// Tables of localized strings: files of entries "key" = "value"; with comments between them.
//
// A file is UTF-8, or UTF-16 when it begins with a byte order mark. Keys and values stand in double
// quotes, a key of letters and digits may go without. Escapes in quotes: \n \r \t \" \\ and \Uxxxx,
// a UTF-16 unit in hexadecimal.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace corefoundation {

using StringsTable = std::unordered_map<std::u16string, std::u16string>;

// The UTF-16 form of UTF-8; a byte that belongs to no character becomes U+FFFD.
std::u16string utf16_from_utf8(std::string_view bytes);

// The entries of a file's bytes; of a key that comes twice the first. Nothing when the bytes are no
// table from beginning to end.
std::optional<StringsTable> parse_strings_table(std::string_view bytes);

}  // namespace corefoundation
