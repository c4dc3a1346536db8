// Relationships: how one part of a package refers to others.
//
// A part's relationships stand in a part of their own, xl/_rels/workbook.xml.rels for
// xl/workbook.xml and _rels/.rels for the package itself. Paths of parts mean nothing; only
// relationships tell what a part is for.
#pragma once

#include <cstddef>
#include <list>
#include <map>
#include <optional>
#include <pugixml.hpp>
#include <set>
#include <string>
#include <string_view>

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

// The relationships of one part, in the order of the file and found by their ids.
class Relationships {
 public:
  Relationships() = default;
  Relationships(Relationships&&) noexcept = default;
  Relationships& operator=(Relationships&&) noexcept = default;
  Relationships(const Relationships& other);
  Relationships& operator=(const Relationships& other) { return *this = Relationships(other); }
  ~Relationships() = default;

  std::list<Relationship>::const_iterator begin() const { return items_.begin(); }
  std::list<Relationship>::const_iterator end() const { return items_.end(); }
  std::size_t size() const { return items_.size(); }
  bool empty() const { return items_.empty(); }

  // The first of that id; null without one.
  const Relationship* find(std::string_view id) const;

  void add(Relationship one);
  // All of that id; false when there is none.
  bool remove(std::string_view id);
  // Gives the first of that id another target, and the former one back.
  void exchange(std::string_view id, std::string& target) noexcept;
  // Takes the others behind its own.
  void append(Relationships&& others) noexcept;

 private:
  std::list<Relationship> items_;
  std::multimap<std::string_view, std::list<Relationship>::const_iterator> by_id_;
};

using Ids = std::set<std::string, std::less<>>;

// The ids of relationships that a part mentions. The attributes have a prefix: r:id, r:embed.
Ids mentioned_ids(pugi::xml_node root);

// Whether an element, or one in it, names a part.
bool refers_to_parts(pugi::xml_node element);

// The URI of the usual, transitional family.
std::string relationship_type(std::string_view kind);

// The name of the part that holds the relationships of a part; the empty name is the package.
std::string relationships_name(std::string_view part);
// The part whose relationships a part of that name holds; null when it holds none.
std::optional<std::string> relationships_owner(std::string_view name);

// Throws FileError when the text is not well-formed.
Relationships parse_relationships(std::string_view xml, std::string_view name);
std::string write_relationships(const Relationships& relationships);

// The part that a target names, without leading slash; percent escapes stay.
std::string resolve_target(std::string_view owner, std::string_view target);
// The target that leads from one part to another: relative to the owner's folder.
std::string relative_target(std::string_view owner, std::string_view part);

}  // namespace engine::xlsx
