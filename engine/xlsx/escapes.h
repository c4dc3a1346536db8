// Characters that XML cannot hold, as spreadsheet files write them: _xHHHH_.
//
// A text that has this shape by itself gets an escape in front of its underscore, so that both ways
// give back what went in. This is a layer under XML's own escapes, not one of them.
//
// _x0000_ is no escape, neither way: no text can hold the character, so these seven stand for
// themselves, in a file and in what a caller gives.
#pragma once

#include <string>
#include <string_view>

namespace engine::xlsx {

std::string escape(std::string_view text);

// Appends a text as the content of an element: escaped, and XML's own escapes on top.
void append_text(std::string& out, std::string_view text);

// Whether append_text() would append the text as it is.
bool is_plain_text(std::string_view text);

// Two escaped surrogates in sequence are one character, a lone one is U+FFFD.
std::string unescape(std::string_view text);

}  // namespace engine::xlsx
