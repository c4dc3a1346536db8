#include "engine/xlsx/parts.h"

#include <algorithm>
#include <set>

#include "engine/package/file_error.h"
#include "engine/package/xml_tree.h"
#include "engine/text/fold.h"

namespace engine::xlsx {

namespace {

constexpr std::string_view kTypesName = "[Content_Types].xml";
constexpr std::string_view kEmptyTypes =
    "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
    "<Types xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\">"
    "<Default Extension=\"rels\" "
    "ContentType=\"application/vnd.openxmlformats-package.relationships+xml\"/>"
    "<Default Extension=\"xml\" ContentType=\"application/xml\"/></Types>";

std::string extension_of(std::string_view name) {
  const std::size_t dot = name.find_last_of("./");
  return dot == std::string_view::npos || name[dot] == '/' ? "" : lower_ascii(name.substr(dot + 1));
}

bool is_relationships_part(std::string_view key) {
  if (!key.ends_with(".rels")) return false;
  const std::string_view folder = key.substr(0, key.find_last_of('/') + 1);
  return folder == "_rels/" || folder.ends_with("/_rels/");
}

std::string part_name_of(pugi::xml_node override_node) {
  const std::string_view name = override_node.attribute("PartName").value();
  return lower_ascii(name.starts_with('/') ? name.substr(1) : name);
}

}  // namespace

Parts::Parts() = default;

Parts::Parts(std::shared_ptr<const package::Source> source)
    : archive_(std::make_shared<package::Archive>(std::move(source))) {
  read_types();
  for (const package::ArchiveEntry& entry : archive_->entries()) {
    std::string key = lower_ascii(entry.name);
    if (key == lower_ascii(kTypesName) || is_relationships_part(key)) continue;
    Part part;
    part.name = entry.name;
    part.type = type_of(key);
    part.stored = &entry;
    parts_.try_emplace(std::move(key), std::move(part));
  }
}

void Parts::read_types() {
  const package::ArchiveEntry* entry = archive_->find(kTypesName);
  if (!entry) return;
  const auto document = package::XmlTree::parse(archive_->read(*entry), kTypesName);
  for (const pugi::xml_node node : document.root().children()) {
    const char* type = node.attribute("ContentType").value();
    if (package::local_name(node) == "Default")
      default_types_.try_emplace(lower_ascii(node.attribute("Extension").value()), type);
    else if (package::local_name(node) == "Override")
      override_types_.try_emplace(part_name_of(node), type);
  }
}

std::string Parts::type_of(std::string_view name) const {
  const auto own = override_types_.find(lower_ascii(name));
  if (own != override_types_.end()) return own->second;
  const auto usual = default_types_.find(extension_of(name));
  return usual == default_types_.end() ? "" : usual->second;
}

const Part* Parts::find(std::string_view name) const {
  const auto found = parts_.find(lower_ascii(name));
  return found == parts_.end() ? nullptr : &found->second;
}

std::string Parts::read(const Part& part) const {
  if (part.bytes) return *part.bytes;
  return part.stored ? archive_->read(*part.stored) : std::string();
}

std::unique_ptr<package::BlockReader> Parts::open(const Part& part) const {
  if (part.stored && !part.bytes) return archive_->open(*part.stored);
  return std::make_unique<package::MemoryReader>(part.bytes ? *part.bytes : std::string_view());
}

Part& Parts::make(std::string_view name, std::string_view type) {
  Part& part = parts_.try_emplace(lower_ascii(name)).first->second;
  if (part.name.empty()) part.name = name;
  if (!type.empty()) part.type = type;
  part.bytes.reset();
  part.blocks = {};
  return part;
}

void Parts::put(std::string_view name, std::string_view type, std::string bytes) {
  auto kept = std::make_shared<const std::string>(std::move(bytes));
  make(name, type).bytes = std::move(kept);
}

void Parts::put_blocks(std::string_view name, std::string_view type, PartBlocks blocks) {
  make(name, type).blocks = std::move(blocks);
}

void Parts::set_type(std::string_view name, std::string_view type) {
  const auto found = parts_.find(lower_ascii(name));
  if (found != parts_.end()) found->second.type = type;
}

void Parts::remove(std::string_view name) {
  const std::string key = lower_ascii(name);
  parts_.erase(key);
  lists_[key] = {{}, true};
}

std::string Parts::free_name(std::string_view pattern) const {
  const std::size_t mark = pattern.find('#');
  for (std::size_t number = 1;; ++number) {
    std::string name(pattern.substr(0, mark));
    name.append(std::to_string(number)).append(pattern.substr(mark + 1));
    if (!find(name)) return name;
  }
}

Parts::List& Parts::list(std::string_view owner) const {
  const std::string key = lower_ascii(owner);
  const auto known = lists_.find(key);
  if (known != lists_.end()) return known->second;
  List made;
  const std::string name = relationships_name(owner);
  const package::ArchiveEntry* entry = archive_ ? archive_->find(name) : nullptr;
  if (entry) made.items = parse_relationships(archive_->read(*entry), name);
  return lists_.emplace(key, std::move(made)).first->second;
}

const std::vector<Relationship>& Parts::relationships(std::string_view owner) const {
  return list(owner).items;
}

const Relationship* Parts::relationship(std::string_view owner, std::string_view id) const {
  const auto& items = relationships(owner);
  const auto found = std::ranges::find(items, id, &Relationship::id);
  return found == items.end() ? nullptr : &*found;
}

const Part* Parts::target(std::string_view owner, const Relationship& relationship) const {
  if (relationship.external) return nullptr;
  const std::string name = resolve_target(owner, relationship.target);
  const Part* found = find(name);
  return found ? found : find(decode_percent(name));
}

const Part* Parts::related(std::string_view owner, std::string_view kind) const {
  for (const Relationship& one : relationships(owner))
    if (one.kind() == kind)
      if (const Part* part = target(owner, one)) return part;
  return nullptr;
}

std::string Parts::relate(std::string_view owner, std::string_view kind, std::string_view part) {
  const auto& items = relationships(owner);
  Relationship made;
  std::size_t number = items.size();
  do made.id = "rId" + std::to_string(++number);
  while (relationship(owner, made.id));
  made.type = relationship_type(kind);
  // A file of the strict family keeps to it.
  for (const Relationship& one : items)
    if (one.type.starts_with("http://purl.oclc.org/ooxml/"))
      made.type =
          std::string("http://purl.oclc.org/ooxml/officeDocument/relationships/").append(kind);
  made.target = relative_target(owner, part);
  std::string id = made.id;
  add_relationship(owner, std::move(made));
  return id;
}

void Parts::add_relationship(std::string_view owner, Relationship relationship) {
  List& its = list(owner);
  its.items.push_back(std::move(relationship));
  its.changed = true;
}

void Parts::unrelate(std::string_view owner, std::string_view id) {
  List& its = list(owner);
  if (std::erase_if(its.items, [&](const Relationship& one) { return one.id == id; }) != 0)
    its.changed = true;
}

// The keys of all parts that relationships lead to, in order. Relationships that cannot be read
// lead nowhere.
std::vector<std::string> Parts::reachable() const {
  std::set<std::string> seen;
  std::vector<std::string> open{""};
  for (const std::string& held : held_)
    if (seen.insert(lower_ascii(held)).second) open.push_back(held);
  while (!open.empty()) {
    const std::string owner = std::move(open.back());
    open.pop_back();
    const std::vector<Relationship>* items = nullptr;
    try {
      items = &relationships(owner);
    } catch (const package::FileError&) {
      continue;
    }
    for (const Relationship& one : *items)
      if (const Part* part = target(owner, one))
        if (seen.insert(lower_ascii(part->name)).second) open.push_back(part->name);
  }
  return {seen.begin(), seen.end()};
}

void Parts::prune(std::string_view owner, std::string_view id) {
  const std::vector<std::string> before = reachable();
  unrelate(owner, id);
  const std::vector<std::string> after = reachable();
  std::vector<std::string> lost;
  std::ranges::set_difference(before, after, std::back_inserter(lost));
  for (const std::string& key : lost) remove(key);
}

void Parts::remove_signatures() {
  std::vector<std::string> ids;
  for (const Relationship& one : relationships(""))
    if (one.type.starts_with("http://schemas.openxmlformats.org/package/2006/relationships/"
                             "digital-signature/"))
      ids.push_back(one.id);
  for (const std::string& id : ids) prune("", id);
}

// The content types: the file's own list, with an entry for each part that it tells nothing or
// something else of, and without those of parts that were removed.
std::string Parts::written_types() const {
  const package::ArchiveEntry* entry = archive_ ? archive_->find(kTypesName) : nullptr;
  const std::string stored = entry ? archive_->read(*entry) : std::string(kEmptyTypes);
  const auto document = package::XmlTree::parse(stored, kTypesName);
  pugi::xml_node root = document.root();
  bool changed = false;
  std::set<std::string> settled;
  for (pugi::xml_node node = root.first_child(); node;) {
    const pugi::xml_node next = node.next_sibling();
    if (package::local_name(node) == "Override") {
      const std::string key = part_name_of(node);
      const auto part = parts_.find(key);
      const bool in_file = archive_ && archive_->find(key);
      if (part == parts_.end() && in_file) {
        root.remove_child(node);
        changed = true;
      } else if (part != parts_.end() && settled.insert(key).second &&
                 part->second.type != node.attribute("ContentType").value()) {
        node.attribute("ContentType") = part->second.type.c_str();
        changed = true;
      }
    }
    node = next;
  }
  for (const auto& [key, part] : parts_) {
    if (part.type.empty() || settled.contains(key) || part.type == type_of(key)) continue;
    pugi::xml_node node = package::append_child(root, "Override");
    node.append_attribute("PartName") = ("/" + part.name).c_str();
    node.append_attribute("ContentType") = part.type.c_str();
    changed = true;
  }
  return changed || !archive_ ? document.serialize() : std::string();
}

void Parts::write_relationships_of(std::string_view owner, package::ArchiveWriter& archive) const {
  const std::string name = relationships_name(owner);
  const auto known = lists_.find(lower_ascii(owner));
  const package::ArchiveEntry* entry = archive_ ? archive_->find(name) : nullptr;
  if (known != lists_.end() && known->second.changed) {
    if (!known->second.items.empty()) archive.add(name, write_relationships(known->second.items));
  } else if (entry) {
    archive.copy(*archive_, *entry);
  }
}

void Parts::write(package::Output& output) const {
  package::ArchiveWriter archive(output);
  const std::string types = written_types();
  const package::ArchiveEntry* stored = archive_ ? archive_->find(kTypesName) : nullptr;
  if (types.empty() && stored) archive.copy(*archive_, *stored, kTypesName);
  else archive.add(kTypesName, types);
  write_relationships_of("", archive);
  for (const auto& [key, part] : parts_) {
    if (part.bytes) archive.add(part.name, *part.bytes);
    else if (part.blocks.make) archive.add_blocks(part.name, part.blocks.count, part.blocks.make);
    else if (part.stored) archive.copy(*archive_, *part.stored);
    write_relationships_of(part.name, archive);
  }
  archive.finish();
}

}  // namespace engine::xlsx
