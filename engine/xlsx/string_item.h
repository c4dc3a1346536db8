// One text of a file, plain or rich: the content of si and is elements.
#pragma once

#include <string>
#include <string_view>

#include "engine/package/xml_scanner.h"

namespace engine::xlsx {

struct StringItem {
  std::string text;   // without phonetic text
  bool rich = false;  // there is more than plain text
};

// Called at the element's Start; ends at its End.
void read_string_item(package::XmlScanner& scanner, StringItem& item);

// The same for an element as it stands in a part. `content` receives what stands in it, without
// prefixes, so that it holds in any part.
StringItem parse_string_item(std::string_view element, std::string_view part, std::string& content);

// Whether the text begins or ends with white space, which a spreadsheet program drops unless the
// element says xml:space="preserve": in a t as in the v of a formula's text.
bool has_outer_blank(std::string_view text);

// Appends <si><t>text</t></si>, escaped.
void append_string_item(std::string& out, std::string_view text);

}  // namespace engine::xlsx
