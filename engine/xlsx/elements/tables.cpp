#include "engine/xlsx/elements/tables.h"

#include "engine/package/xml_tree.h"
#include "engine/xlsx/attributes.h"
#include "engine/xlsx/escapes.h"
#include "engine/xlsx/new_parts.h"

namespace engine::xlsx {

namespace {

using package::Family;

std::string copy_of_table(const std::string& bytes, std::string_view part, const SheetCopying& to) {
  if (!to.table_names) to.table_names.emplace(to.parts);
  const auto tree = package::XmlTree::parse(bytes, part);
  pugi::xml_node root = tree.root();
  formula::TableChange& change = to.tables.emplace_back();
  change.name = unescape(root.attribute("displayName").value());
  const std::string name = escape(*(change.renamed = to.table_names->free(change.name, to.book)));
  set_attribute(root, "id", std::to_string(to.table_names->next_id()));
  if (root.attribute("name")) set_attribute(root, "name", name);
  set_attribute(root, "displayName", name);
  remove_identification(root);
  root.remove_attribute("tableType");
  return tree.serialize();
}

}  // namespace

void copy_tables(pugi::xml_node element, const SheetCopying& to) {
  std::size_t count = 0;
  for (const pugi::xml_node table : package::children(element, Family::Main, "tablePart")) {
    const auto [link, part] = to.parts.named_by(table, to.original.part);
    if (!part) {
      element.remove_child(table);
      continue;
    }
    const std::string name = to.made.add("xl/tables/table#.xml", kTableType,
                                         copy_of_table(to.parts.read(*part), part->name, to));
    to.made.add_relationship(to.copy.part,
                             {link->id, link->type, relative_target(to.copy.part, name), false});
    ++count;
  }
  if (count == 0) element.parent().remove_child(element);
  else if (element.attribute("count")) set_attribute(element, "count", std::to_string(count));
}

}  // namespace engine::xlsx
