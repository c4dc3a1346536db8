// The text of XML: references to characters, line ends, escapes.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace engine::package {

// Appends what a raw text or attribute value means: references replaced, line ends made line
// feeds (in an attribute blanks). False when a reference is unknown or the bytes are not UTF-8.
bool decode_xml_text(std::string_view raw, std::string& out);
bool decode_xml_attribute(std::string_view raw, std::string& out);

// Whether a raw text means just what it says and can be used as it lies.
bool is_plain_xml(std::string_view raw);

// Where the next "<" stands in a raw text, and what stands before it that has to be looked at.
struct RawText {
  std::size_t size = std::string_view::npos;  // of the text; npos when it does not end
  bool beyond_ascii = false;
  bool special = false;  // a reference, or a line end that is changed
  bool underscore = false;
};
RawText find_text_end(std::string_view raw);

// Appends UTF-8 text with what XML needs escaped. Line feed, carriage return and tab in an
// attribute, and a carriage return in a text, become references, as a reader would change them.
// Characters that XML cannot hold (below the blank, save those three) are the caller's concern.
void append_xml_text(std::string& out, std::string_view text);
void append_xml_attribute(std::string& out, std::string_view value);

// The same into `out`, which has room for kMaxXmlEscape bytes a character; returns the end.
inline constexpr std::size_t kMaxXmlEscape = 5;
char* write_xml_text(char* out, std::string_view text);

// Turns UTF-16 text, told by a byte order mark or by its first character, into UTF-8 that declares
// itself to be that, and drops a mark; UTF-8 is left as it is but for its mark. False when UTF-16
// is not well-formed.
bool xml_to_utf8(std::string& text);
bool looks_like_utf16(std::string_view text);

// Makes the XML declaration, if the text begins with one, name UTF-8.
void declare_utf8(std::string& text);

}  // namespace engine::package
