// Small parts as trees.
//
// A tree keeps the order, the prefixes, comments and white space of what it read, so that what we
// do not know survives being written again. Names are matched by namespace and local name, as the
// prefix is the writer's choice.
#pragma once

#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "engine/package/xml_namespaces.h"

namespace engine::package {

// UTF-8 or UTF-16, with or without a byte order mark. `part` names the part in errors. Throws
// FileError when the text is not well-formed, declares a document type or nests too deep.
pugi::xml_document parse_xml(std::string_view bytes, std::string_view part);

// UTF-8 with an XML declaration. A carriage return in a text becomes a character reference: it came
// from one, as reading turns plain ones into line feeds.
std::string serialize_xml(const pugi::xml_document& document);
// One element with all it holds, without a declaration.
std::string serialize_xml(pugi::xml_node node);

std::string_view local_name(pugi::xml_node node);

// The family of an element, its prefix looked up through its ancestors.
Family family(pugi::xml_node node);
bool is(pugi::xml_node node, Family family, std::string_view local);

// The first such child, the next such sibling, all such children; null or empty without one.
pugi::xml_node child(pugi::xml_node parent, Family family, std::string_view local);
pugi::xml_node next_sibling(pugi::xml_node node, Family family, std::string_view local);
std::vector<pugi::xml_node> children(pugi::xml_node parent, Family family, std::string_view local);

// The attribute of a namespace, as r:id under any prefix. Attributes without a prefix have no
// namespace: node.attribute("id") finds them.
pugi::xml_attribute attribute(pugi::xml_node node, Family family, std::string_view local);

// Sets an attribute of a namespace; a prefix that is not declared yet is declared at the root.
void set_attribute(pugi::xml_node node, Family family, std::string_view local,
                   std::string_view value);

// A new element of the parent's namespace: last, or before `next` when that is not null.
pugi::xml_node append_child(pugi::xml_node parent, std::string_view local);
pugi::xml_node insert_child(pugi::xml_node parent, std::string_view local, pugi::xml_node next);

}  // namespace engine::package
