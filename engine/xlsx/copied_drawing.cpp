#include "engine/xlsx/copied_drawing.h"

#include <algorithm>

#include "engine/package/xml_tree.h"

namespace engine::xlsx {

namespace {

using package::Family;

// Attributes that name a relationship have a prefix: r:embed, r:link, r:id.
bool mentions(pugi::xml_node node, std::string_view id) {
  for (const pugi::xml_attribute one : node.attributes()) {
    const bool prefixed = !package::prefix_of(std::string_view(one.name())).empty();
    if (prefixed && one.value() == id) return true;
  }
  return std::ranges::any_of(node.children(),
                             [id](pugi::xml_node child) { return mentions(child, id); });
}

}  // namespace

std::optional<CopiedDrawing> copy_pictures(std::string_view bytes, std::string_view part,
                                           const std::vector<Relationship>& links) {
  const auto document = package::XmlTree::parse(bytes, part);
  pugi::xml_node root = document.root();
  for (pugi::xml_node anchor = root.first_child(); anchor;) {
    const pugi::xml_node next = anchor.next_sibling();
    if (!package::child(anchor, Family::SpreadsheetDrawing, "pic")) root.remove_child(anchor);
    anchor = next;
  }
  if (!root.first_child()) return std::nullopt;
  CopiedDrawing made{document.serialize(), {}};
  for (const Relationship& link : links)
    if (mentions(root, link.id)) made.links.push_back(link);
  return made;
}

}  // namespace engine::xlsx
