// Small parts as trees.
//
// A tree keeps the order, the prefixes, comments and white space of what it read, so that what we
// do not know survives being written again. Names are matched by namespace and local name, as the
// prefix is the writer's choice.
//
// The library below tells nobody that memory was short: a node is missing, a value is the old one,
// a copy is shorter. So its allocator counts failures, and a tree throws std::bad_alloc before
// anybody takes for whole what was made or edited while one happened.
#pragma once

#include <cstdint>
#include <optional>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "engine/package/xml_namespaces.h"

namespace engine::package {

// The owner of one tree. It is open to edits when it was parsed or copied; once settled it only is
// read and copied, so that what goes wrong elsewhere later on is no concern of it.
class XmlTree {
 public:
  // Without a root.
  XmlTree() = default;

  // UTF-8 or UTF-16, with or without a byte order mark. `part` names the part in errors. Throws
  // FileError when the text is not well-formed, declares a document type, nests too deep or would
  // make too big a tree.
  static XmlTree parse(std::string_view bytes, std::string_view part);

  // A tree of its own, open to edits.
  XmlTree copy() const;

  // The outermost element; null without one. Edits go through it.
  pugi::xml_node root() const { return document_.document_element(); }

  // Ends the edits; called before the tree is kept. Throws std::bad_alloc when memory was short for
  // one of them.
  void settle();

  // What serialize() gives, cut in front of an element's end tag: more of its children fit in
  // there.
  struct Halves {
    std::string head;
    std::string tail;
  };
  Halves cut_in(pugi::xml_node element) const;

  // UTF-8 with an XML declaration. A carriage return in a text becomes a character reference: it
  // came from one, as reading turns plain ones into line feeds. Throws as settle() does.
  std::string serialize() const;

 private:
  void check() const;

  pugi::xml_document document_;
  std::optional<std::uint64_t> failures_before_;  // while it is open to edits
};

// One element with all it holds, without a declaration.
std::string serialize_xml(pugi::xml_node node);

std::string_view local_name(pugi::xml_node node);

// What a prefix means at an element: the declarations of its ancestors count. Without a prefix it
// is the namespace of elements that have none.
Family family_of_prefix(pugi::xml_node node, std::string_view prefix);
// The URI of an element's namespace; empty without one.
std::string_view namespace_of(pugi::xml_node node);
// The family of an element.
Family family(pugi::xml_node node);
bool is(pugi::xml_node node, Family family, std::string_view local);

// The first such child, the next such sibling, all such children; null or empty without one.
pugi::xml_node child(pugi::xml_node parent, Family family, std::string_view local);
pugi::xml_node next_sibling(pugi::xml_node node, Family family, std::string_view local);
std::vector<pugi::xml_node> children(pugi::xml_node parent, Family family, std::string_view local);

// The attribute of a namespace, as r:id under any prefix. Attributes without a prefix have no
// namespace: node.attribute("id") finds them.
pugi::xml_attribute attribute(pugi::xml_node node, Family family, std::string_view local);

// The name of such an attribute at a node; a prefix that is not declared yet is declared at the
// root.
std::string attribute_name(pugi::xml_node node, Family family, std::string_view local);

// Sets an attribute of a namespace.
void set_attribute(pugi::xml_node node, Family family, std::string_view local,
                   std::string_view value);

// The name of an element of the parent's namespace.
std::string name_in(pugi::xml_node parent, std::string_view local);

// A new element of the parent's namespace: last, or before `next` when that is not null.
pugi::xml_node append_child(pugi::xml_node parent, std::string_view local);
pugi::xml_node insert_child(pugi::xml_node parent, std::string_view local, pugi::xml_node next);

}  // namespace engine::package
