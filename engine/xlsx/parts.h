// The parts of a package: their names, content types, relationships and bytes.
//
// A part of a file stays in the file's archive; only what somebody asks for is unpacked, and what
// nobody replaces is written as it is stored there. The list is a value: saving copies it, gives
// the copy the bytes of changed parts, and writes that.
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "engine/package/archive.h"
#include "engine/package/archive_writer.h"
#include "engine/xlsx/relationships.h"

namespace engine::xlsx {

// The bytes of a part that are made while it is written.
struct PartBlocks {
  std::size_t count = 0;
  package::ArchiveWriter::MakeBlock make;
};

struct Part {
  std::string name;  // without leading slash
  std::string type;  // content type; empty when the package gives none
  const package::ArchiveEntry* stored = nullptr;
  // In place of what is stored; at most one of them.
  std::shared_ptr<const std::string> bytes;
  PartBlocks blocks;
};

// The relationships of a part, and whether they are those of the file.
struct PartLinks {
  Relationships items;
  bool changed = false;
};

// A relationship with the part that it leads to; null where there is none.
struct NamedPart {
  const Relationship* link = nullptr;
  const Part* part = nullptr;
};

class NewParts;

class Parts {
 public:
  // A package without parts.
  Parts();
  // Throws FileError.
  explicit Parts(std::shared_ptr<const package::Source> source);

  // Names compare without case. Null when there is no such part.
  const Part* find(std::string_view name) const;

  // The bytes of a part that no save has replaced.
  std::string read(const Part& part) const;
  std::unique_ptr<package::BlockReader> open(const Part& part) const;
  // The same as UTF-8, for what looks at the text itself. Throws FileError.
  std::string read_text(const Part& part) const;

  // The part is made when there is none of that name.
  void put(std::string_view name, std::string_view type, std::string bytes);
  void put_shared(std::string_view name, std::string_view type,
                  std::shared_ptr<const std::string> bytes);
  void put_blocks(std::string_view name, std::string_view type, PartBlocks blocks);
  void set_type(std::string_view name, std::string_view type);
  // Gives one of these parts other bytes.
  void exchange(const Part& part, std::shared_ptr<const std::string>& bytes) noexcept;

  // "xl/worksheets/sheet3.xml" for the pattern "xl/worksheets/sheet#.xml": a name that no part has,
  // none of those pending either, and that nothing in the file mentions.
  std::string free_name(std::string_view pattern, const NewParts* pending = nullptr) const;
  // Whether a relationship or a content type of the file speaks of a part that is not there.
  bool is_mentioned(std::string_view name) const;
  // Removes a relationship with the part that it leads to and all that is left without an owner,
  // as far as no file has it. Their names are free again. Throws before it changes anything.
  void forget(std::string_view owner, std::string_view id);

  // Of a part; the empty name stands for the package. Throws FileError when they are damaged.
  const Relationships& relationships(std::string_view owner) const;
  const Relationship* relationship(std::string_view owner, std::string_view id) const;

  // The part that a relationship leads to; null when it is external or there is no such part.
  const Part* target(std::string_view owner, const Relationship& relationship) const;
  // What an element of the owner names by its r:id.
  NamedPart named_by(pugi::xml_node element, std::string_view owner) const;
  // The first part that a relationship of the kind leads to.
  const Part* related(std::string_view owner, std::string_view kind) const;

  // A relationship to a part under a free id: one that neither another has nor something in the
  // owner mentions.
  Relationship new_relationship(std::string_view owner, const Ids& mentioned, std::string_view kind,
                                std::string_view part) const;
  // Adds such a relationship and gives its id.
  std::string relate(std::string_view owner, const Ids& mentioned, std::string_view kind,
                     std::string_view part);
  // The same to a target outside of the package.
  std::string relate_outside(std::string_view owner, const Ids& mentioned, std::string_view kind,
                             std::string target);
  void add_relationship(std::string_view owner, Relationship relationship);
  // What nothing leads to any more goes with drop_unreachable(). Throws before it changes anything.
  void unrelate(std::string_view owner, std::string_view id);
  // The same in two steps, of which the second cannot fail. Nothing of the owner may be copied or
  // removed in between.
  struct Unlink {
    PartLinks* links = nullptr;
    std::string id;
  };
  Unlink prepare_unrelate(std::string_view owner, std::string_view id) const {
    return {&links(owner), std::string(id)};
  }
  void unrelate(const Unlink& link) noexcept;
  // Gives a relationship another target, in such two steps.
  struct Retarget {
    PartLinks* links = nullptr;
    std::string id;
    std::string target;
  };
  Retarget prepare_retarget(std::string_view owner, std::string_view id, std::string target) const {
    return {&links(owner), std::string(id), std::move(target)};
  }
  static void retarget(Retarget& link) noexcept;

  // Takes over parts that were made together.
  void take(NewParts&& made) noexcept;

  // Removes digital signatures: they hold for the bytes that were signed only.
  void remove_signatures();

  // Removes what was reachable through relationships, or made since, and no longer is.
  void drop_unreachable();

  // Every part, by its name in lower case.
  const std::map<std::string, Part>& all() const { return parts_; }

  void write(package::Output& output) const;

 private:
  friend class NewParts;

  // The numbers in names: up to `taken` none is free but those that were freed.
  struct NameNumbers {
    std::size_t taken = 0;
    std::set<std::size_t> freed;
  };

  void read_types();
  std::string type_of(std::string_view name) const;
  Part& make(std::string_view name, std::string_view type);
  PartLinks& links(std::string_view owner) const;
  Relationships stored_relationships(std::string_view owner) const;
  std::set<std::string> reachable(bool in_file) const;
  std::set<std::string> made_behind(const Part& first) const;
  void release_name(const std::string& name);
  bool has_relationships(std::string_view owner) const;
  std::string written_types() const;
  void write_relationships_of(std::string_view owner, package::ArchiveWriter& archive) const;

  std::shared_ptr<const package::Archive> archive_;  // null for a new package
  std::map<std::string, Part> parts_;
  bool unrelated_ = false;                          // some relationship was removed
  mutable std::map<std::string, PartLinks> links_;  // asked for so far, by owner in lower case
  mutable std::map<std::string, NameNumbers, std::less<>> numbers_;  // by pattern
  mutable std::optional<std::set<std::string>> mentioned_;  // names without a part, in lower case
  std::map<std::string, std::string> default_types_;        // by extension in lower case
  std::map<std::string, std::string> override_types_;       // by part name in lower case
};

// Parts that are made together and enter a package together. They have their names from the start.
class NewParts {
 public:
  explicit NewParts(const Parts& package) : package_(&package) {}

  // A part under a free name of the pattern; gives the name.
  std::string add(std::string_view pattern, std::string_view type, std::string bytes);
  bool has(std::string_view name) const;
  // By their names in lower case.
  std::map<std::string, Part>& all() { return parts_; }

  // Of one of these parts, or of one that is in the package already.
  void add_relationship(std::string_view owner, Relationship relationship);

 private:
  friend class Parts;

  const Parts* package_;
  std::map<std::string, Part> parts_;
  std::map<std::string, PartLinks> links_;
};

}  // namespace engine::xlsx
