// Relationships: how one part of a package refers to others.
//
// A part's relationships stand in a part of their own, xl/_rels/workbook.xml.rels for
// xl/workbook.xml and _rels/.rels for the package itself. Paths of parts mean nothing; only
// relationships tell what a part is for.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace engine::xlsx {

struct Relationship {
  std::string id;
  std::string type;    // a URI, of the transitional or the strict family
  std::string target;  // as the file spells it
  bool external = false;

  // What the type ends in, the same in both families: "worksheet", "sharedStrings".
  std::string_view kind() const {
    return std::string_view(type).substr(type.find_last_of('/') + 1);
  }
};

// The URI of the usual, transitional family.
std::string relationship_type(std::string_view kind);

// The name of the part that holds the relationships of a part; the empty name is the package.
std::string relationships_name(std::string_view part);

// Throws FileError when the text is not well-formed.
std::vector<Relationship> parse_relationships(std::string_view xml, std::string_view name);
std::string write_relationships(const std::vector<Relationship>& relationships);

// The part that a target names, without leading slash; percent escapes stay.
std::string resolve_target(std::string_view owner, std::string_view target);
std::string decode_percent(std::string_view text);
// The target that leads from one part to another: relative to the owner's folder.
std::string relative_target(std::string_view owner, std::string_view part);

}  // namespace engine::xlsx
