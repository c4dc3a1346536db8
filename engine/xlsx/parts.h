// The parts of a package: their names, content types, relationships and bytes.
//
// A part of a file stays in the file's archive; only what somebody asks for is unpacked, and what
// nobody replaces is written as it is stored there. The list is a value: saving copies it, gives
// the copy the bytes of changed parts, and writes that.
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

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

  // The part is made when there is none of that name.
  void put(std::string_view name, std::string_view type, std::string bytes);
  void put_blocks(std::string_view name, std::string_view type, PartBlocks blocks);
  void set_type(std::string_view name, std::string_view type);
  void remove(std::string_view name);

  // "xl/worksheets/sheet3.xml" for the pattern "xl/worksheets/sheet#.xml", the number being the
  // first that no part has taken.
  std::string free_name(std::string_view pattern) const;

  // Of a part; the empty name stands for the package. Throws FileError when they are damaged.
  const std::vector<Relationship>& relationships(std::string_view owner) const;
  const Relationship* relationship(std::string_view owner, std::string_view id) const;

  // The part that a relationship leads to; null when it is external or there is no such part.
  const Part* target(std::string_view owner, const Relationship& relationship) const;
  // The first part that a relationship of the kind leads to.
  const Part* related(std::string_view owner, std::string_view kind) const;

  // Adds a relationship and gives its id, the next free number.
  std::string relate(std::string_view owner, std::string_view kind, std::string_view part);
  void add_relationship(std::string_view owner, Relationship relationship);
  void unrelate(std::string_view owner, std::string_view id);

  // Keeps a part although nothing may lead to it until the book is saved.
  void hold(std::string_view part) { held_.insert(std::string(part)); }

  // Removes a relationship with the parts that nothing else leads to.
  void prune(std::string_view owner, std::string_view id);

  // Removes digital signatures: they hold for the bytes that were signed only.
  void remove_signatures();

  // Every part, by its name in lower case.
  const std::map<std::string, Part>& all() const { return parts_; }

  void write(package::Output& output) const;

 private:
  struct List {
    std::vector<Relationship> items;
    bool changed = false;
  };

  void read_types();
  std::string type_of(std::string_view name) const;
  Part& make(std::string_view name, std::string_view type);
  List& list(std::string_view owner) const;
  std::vector<std::string> reachable() const;
  std::string written_types() const;
  void write_relationships_of(std::string_view owner, package::ArchiveWriter& archive) const;

  std::shared_ptr<const package::Archive> archive_;  // null for a new package
  std::map<std::string, Part> parts_;
  std::set<std::string> held_;
  mutable std::map<std::string, List> lists_;  // those asked for so far, by owner in lower case
  std::map<std::string, std::string> default_types_;   // by extension in lower case
  std::map<std::string, std::string> override_types_;  // by part name in lower case
};

}  // namespace engine::xlsx
