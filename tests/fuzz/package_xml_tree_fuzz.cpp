// Trees: what was read and written reads as the same tree again.
#include <cstdlib>

#include "engine/package/xml_tree.h"
#include "tests/fuzz/package_entry.h"

void fuzz::decode(std::string_view bytes) {
  using engine::package::parse_xml;
  using engine::package::serialize_xml;
  const auto text = serialize_xml(parse_xml(bytes, "part"));
  if (serialize_xml(parse_xml(text, "part")) != text) std::abort();
}
