#include "engine/xlsx/elements/drawings.h"

#include "engine/package/xml_tree.h"
#include "engine/xlsx/copied_drawing.h"
#include "engine/xlsx/new_parts.h"

namespace engine::xlsx {

namespace {

// The relationship as another part has it. Targets inside the part itself, as "#Sheet1!A1" of a
// picture that leads to a cell, mean the same there.
Relationship moved_link(Relationship link, std::string_view from) {
  if (link.external || link.target.starts_with('#')) return link;
  const std::size_t fragment = std::min(link.target.find('#'), link.target.size());
  const std::string rest = link.target.substr(fragment);
  link.target = "/" + resolve_target(from, link.target) + rest;
  return link;
}

}  // namespace

// Of a drawing the pictures are copied.
void copy_drawing(pugi::xml_node element, const SheetCopying& to) {
  const auto [link, part] = to.parts.named_by(element, to.original.part);
  auto pictures = part ? copy_pictures(to.parts.read(*part), part->name) : std::nullopt;
  if (!pictures) {
    element.parent().remove_child(element);
    return;
  }
  const std::string name =
      to.made.add("xl/drawings/drawing#.xml", kDrawingType, std::move(pictures->bytes));
  for (const Relationship& one : to.parts.relationships(part->name))
    if (pictures->ids.contains(one.id)) to.made.add_relationship(name, moved_link(one, part->name));
  to.made.add_relationship(to.copy.part,
                           {link->id, link->type, relative_target(to.copy.part, name), false});
}

}  // namespace engine::xlsx
