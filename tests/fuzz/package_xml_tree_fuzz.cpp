// Trees: what was read and written reads as the same tree again.
#include <cstdlib>

#include "engine/package/xml_tree.h"
#include "tests/fuzz/package_entry.h"

void fuzz::decode(std::string_view bytes) {
  using engine::package::XmlTree;
  const auto text = XmlTree::parse(bytes, "part").serialize();
  if (XmlTree::parse(text, "part").serialize() != text) std::abort();
}
