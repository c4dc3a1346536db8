#include "engine/xlsx/copied_drawing.h"

#include "engine/package/xml_tree.h"

namespace engine::xlsx {

using package::Family;

std::optional<CopiedDrawing> copy_pictures(std::string_view bytes, std::string_view part) {
  const auto document = package::XmlTree::parse(bytes, part);
  pugi::xml_node root = document.root();
  for (pugi::xml_node anchor = root.first_child(); anchor;) {
    const pugi::xml_node next = anchor.next_sibling();
    if (!package::child(anchor, Family::SpreadsheetDrawing, "pic")) root.remove_child(anchor);
    anchor = next;
  }
  if (!root.first_child()) return std::nullopt;
  return CopiedDrawing{document.serialize(), mentioned_ids(root)};
}

}  // namespace engine::xlsx
