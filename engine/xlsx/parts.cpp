#include "engine/xlsx/parts.h"

#include <algorithm>
#include <charconv>
#include <set>
#include <utility>
#include <vector>

#include "engine/package/file_error.h"
#include "engine/package/xml_text.h"
#include "engine/package/xml_tree.h"
#include "engine/text/fold.h"
#include "engine/text/percent.h"

namespace engine::xlsx {

namespace {

constexpr std::string_view kTypesName = "[Content_Types].xml";
constexpr std::string_view kEmptyTypes =
    "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
    "<Types xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\">"
    "<Default Extension=\"rels\" "
    "ContentType=\"application/vnd.openxmlformats-package.relationships+xml\"/>"
    "<Default Extension=\"xml\" ContentType=\"application/xml\"/></Types>";

constexpr std::string_view kRelationshipsType =
    "application/vnd.openxmlformats-package.relationships+xml";
constexpr std::string_view kStrictTypes =
    "http://purl.oclc.org/ooxml/officeDocument/relationships/";

std::string extension_of(std::string_view name) {
  const std::size_t dot = name.find_last_of("./");
  return dot == std::string_view::npos || name[dot] == '/' ? "" : lower_ascii(name.substr(dot + 1));
}

// One without a target that can come to these. A file of the strict family keeps to it, which those
// of the package tell where these are none.
Relationship free_relationship(const Relationships& items, const Relationships& of_package,
                               const Ids& mentioned, std::string_view kind) {
  Relationship made;
  std::size_t number = items.size();
  do made.id = "rId" + std::to_string(++number);
  while (items.find(made.id) || mentioned.contains(made.id));
  const Relationships& like = items.empty() ? of_package : items;
  const bool is_strict = !like.empty() && like.begin()->type.starts_with(kStrictTypes);
  made.type = is_strict ? std::string(kStrictTypes).append(kind) : relationship_type(kind);
  return made;
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
    if (key == lower_ascii(kTypesName) || relationships_owner(key)) continue;
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

std::string Parts::read_text(const Part& part) const {
  std::string text = read(part);
  if (!package::xml_to_utf8(text))
    package::throw_damaged(part.name, "UTF-16 text is not well-formed");
  return text;
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
  put_shared(name, type, std::make_shared<const std::string>(std::move(bytes)));
}

void Parts::put_shared(std::string_view name, std::string_view type,
                       std::shared_ptr<const std::string> bytes) {
  make(name, type).bytes = std::move(bytes);
}

void Parts::put_blocks(std::string_view name, std::string_view type, PartBlocks blocks) {
  make(name, type).blocks = std::move(blocks);
}

void Parts::set_type(std::string_view name, std::string_view type) {
  const auto found = parts_.find(lower_ascii(name));
  if (found != parts_.end()) found->second.type = type;
}

// Not static: the parts belong to the list, and who may change it may change them.
// NOLINTNEXTLINE(readability-convert-member-functions-to-static)
void Parts::exchange(const Part& part, std::shared_ptr<const std::string>& bytes) noexcept {
  const_cast<Part&>(part).bytes.swap(bytes);
}

std::string Parts::free_name(std::string_view pattern, const NewParts* pending) const {
  const std::size_t mark = pattern.find('#');
  const auto name_of = [&](std::size_t number) {
    std::string name(pattern.substr(0, mark));
    return name.append(std::to_string(number)).append(pattern.substr(mark + 1));
  };
  NameNumbers& numbers = numbers_.try_emplace(std::string(pattern)).first->second;
  std::string name;
  while (!numbers.freed.empty()) {
    name = name_of(*numbers.freed.begin());
    if (!find(name) && !(pending && pending->has(name))) return name;
    numbers.freed.erase(numbers.freed.begin());
  }
  for (std::size_t number = numbers.taken + 1;; ++number) {
    name = name_of(number);
    if (find(name) || is_mentioned(name)) numbers.taken = number;
    else if (!pending || !pending->has(name)) return name;
  }
}

void Parts::forget(std::string_view owner, std::string_view id) {
  const Relationship* link = relationship(owner, id);
  const Part* part = link ? target(owner, *link) : nullptr;
  std::set<std::string> gone;
  if (part) gone = made_behind(*part);
  // What was made since is reached through relationships that came since, and no others.
  for (const auto& [key, its] : links_) {
    if (!its.changed || gone.contains(key)) continue;
    for (const Relationship& one : its.items) {
      const Part* needed = &one == link ? nullptr : target(key, one);
      if (!needed || !gone.contains(lower_ascii(needed->name))) continue;
      for (const std::string& kept : made_behind(*needed)) gone.erase(kept);
    }
  }
  for (const std::string& key : gone) release_name(parts_.at(key).name);
  unrelate(owner, id);
  for (const std::string& key : gone) {
    parts_.erase(key);
    links_.erase(key);
  }
}

// The keys of a part and of those that it leads to, one through the other, as far as no file has
// them.
std::set<std::string> Parts::made_behind(const Part& first) const {
  std::set<std::string> found;
  std::vector<const Part*> open;
  const auto enter = [&](const Part* part) {
    if (part && !part->stored && found.insert(lower_ascii(part->name)).second) open.push_back(part);
  };
  enter(&first);
  while (!open.empty()) {
    const std::string& owner = open.back()->name;
    open.pop_back();
    for (const Relationship& one : relationships(owner)) enter(target(owner, one));
  }
  return found;
}

// A number that a pattern gave is free for it again.
void Parts::release_name(const std::string& name) {
  const std::size_t end = name.rfind('.');
  if (end == std::string::npos) return;
  const std::size_t begin = name.find_last_not_of("0123456789", end - 1) + 1;
  const auto pattern = numbers_.find(name.substr(0, begin) + "#" + name.substr(end));
  std::size_t number = 0;
  std::from_chars(name.data() + begin, name.data() + end, number);
  if (pattern != numbers_.end() && number != 0) pattern->second.freed.insert(number);
}

bool Parts::is_mentioned(std::string_view name) const {
  if (!archive_) return false;
  if (!mentioned_) {
    std::set<std::string> names;
    for (const auto& [key, type] : override_types_)
      if (!find(key)) names.insert(key);
    for (const package::ArchiveEntry& entry : archive_->entries()) {
      const auto owner = relationships_owner(entry.name);
      if (!owner) continue;
      try {
        for (const Relationship& one : stored_relationships(*owner))
          if (!one.external && !target(*owner, one))
            names.insert(lower_ascii(resolve_target(*owner, one.target)));
      } catch (const package::FileError&) {
        continue;
      }
    }
    mentioned_ = std::move(names);
  }
  return mentioned_->contains(lower_ascii(name));
}

Relationships Parts::stored_relationships(std::string_view owner) const {
  const std::string name = relationships_name(owner);
  const package::ArchiveEntry* entry = archive_ ? archive_->find(name) : nullptr;
  return entry ? parse_relationships(archive_->read(*entry), name) : Relationships();
}

PartLinks& Parts::links(std::string_view owner) const {
  std::string key = lower_ascii(owner);
  const auto known = links_.find(key);
  if (known != links_.end()) return known->second;
  return links_.emplace(std::move(key), PartLinks{stored_relationships(owner)}).first->second;
}

const Relationships& Parts::relationships(std::string_view owner) const {
  return links(owner).items;
}

const Relationship* Parts::relationship(std::string_view owner, std::string_view id) const {
  return relationships(owner).find(id);
}

const Part* Parts::target(std::string_view owner, const Relationship& relationship) const {
  if (relationship.external) return nullptr;
  const std::string name = resolve_target(owner, relationship.target);
  const Part* found = find(name);
  return found ? found : find(decode_percent(name));
}

NamedPart Parts::named_by(pugi::xml_node element, std::string_view owner) const {
  const pugi::xml_attribute id = package::attribute(element, package::Family::Relationships, "id");
  const Relationship* link = id ? relationship(owner, id.value()) : nullptr;
  return {link, link ? target(owner, *link) : nullptr};
}

const Part* Parts::related(std::string_view owner, std::string_view kind) const {
  for (const Relationship& one : relationships(owner))
    if (one.kind() == kind)
      if (const Part* part = target(owner, one)) return part;
  return nullptr;
}

Relationship Parts::new_relationship(std::string_view owner, const Ids& mentioned,
                                     std::string_view kind, std::string_view part) const {
  Relationship made = free_relationship(relationships(owner), relationships(""), mentioned, kind);
  made.target = relative_target(owner, part);
  return made;
}

std::string Parts::relate(std::string_view owner, const Ids& mentioned, std::string_view kind,
                          std::string_view part) {
  Relationship made = new_relationship(owner, mentioned, kind, part);
  std::string id = made.id;
  add_relationship(owner, std::move(made));
  return id;
}

std::string Parts::relate_outside(std::string_view owner, const Ids& mentioned,
                                  std::string_view kind, std::string target) {
  PartLinks& its = links(owner);
  Relationship made = free_relationship(its.items, relationships(""), mentioned, kind);
  made.target = std::move(target);
  made.external = true;
  std::string id = made.id;
  its.items.add(std::move(made));
  its.changed = true;
  return id;
}

void Parts::add_relationship(std::string_view owner, Relationship relationship) {
  PartLinks& its = links(owner);
  its.items.add(std::move(relationship));
  its.changed = true;
}

void Parts::unrelate(std::string_view owner, std::string_view id) {
  unrelate(prepare_unrelate(owner, id));
}

void Parts::unrelate(const Unlink& link) noexcept {
  if (!link.links->items.remove(link.id)) return;
  link.links->changed = true;
  unrelated_ = true;
}

void Parts::retarget(Retarget& link) noexcept {
  link.links->items.exchange(link.id, link.target);
  link.links->changed = true;
}

void Parts::take(NewParts&& made) noexcept {
  parts_.merge(made.parts_);
  for (auto& [owner, its] : made.links_) {
    const auto known = links_.find(owner);
    if (known == links_.end()) continue;
    known->second.items.append(std::move(its.items));
    known->second.changed = true;
  }
  links_.merge(made.links_);
}

std::string NewParts::add(std::string_view pattern, std::string_view type, std::string bytes) {
  Part part;
  part.name = package_->free_name(pattern, this);
  part.type = type;
  part.bytes = std::make_shared<const std::string>(std::move(bytes));
  std::string name = part.name;
  parts_.emplace(lower_ascii(name), std::move(part));
  return name;
}

bool NewParts::has(std::string_view name) const { return parts_.contains(lower_ascii(name)); }

void NewParts::add_relationship(std::string_view owner, Relationship relationship) {
  std::string key = lower_ascii(owner);
  // Those of a part of the package are at hand when these come to them.
  if (!parts_.contains(key)) package_->relationships(owner);
  PartLinks& its = links_.try_emplace(std::move(key)).first->second;
  its.items.add(std::move(relationship));
  its.changed = true;
}

// The keys of all parts that relationships lead to: those of the file, or the present ones.
// Relationships that cannot be read lead nowhere.
std::set<std::string> Parts::reachable(bool in_file) const {
  std::set<std::string> seen;
  std::vector<std::string> open{""};
  while (!open.empty()) {
    const std::string owner = std::move(open.back());
    open.pop_back();
    try {
      for (const Relationship& one : in_file ? stored_relationships(owner) : relationships(owner))
        if (const Part* part = target(owner, one))
          if (seen.insert(lower_ascii(part->name)).second) open.push_back(part->name);
    } catch (const package::FileError&) {
      continue;
    }
  }
  return seen;
}

void Parts::drop_unreachable() {
  if (!unrelated_) return;
  const std::set<std::string> before = reachable(true);
  const std::set<std::string> now = reachable(false);
  std::erase_if(parts_, [&](const auto& entry) {
    const auto& [key, part] = entry;
    return !now.contains(key) && (!part.stored || before.contains(key));
  });
}

void Parts::remove_signatures() {
  std::vector<std::string> ids;
  for (const Relationship& one : relationships(""))
    if (one.type.starts_with("http://schemas.openxmlformats.org/package/2006/relationships/"
                             "digital-signature/"))
      ids.push_back(one.id);
  for (const std::string& id : ids) unrelate("", id);
}

// Whether the package that is written has relationships of the part.
bool Parts::has_relationships(std::string_view owner) const {
  if (!owner.empty() && !find(owner)) return false;
  const auto known = links_.find(lower_ascii(owner));
  if (known != links_.end() && known->second.changed) return !known->second.items.empty();
  return archive_ && archive_->find(relationships_name(owner));
}

// The content types: the file's own list, with an entry for each part that it tells nothing or
// something else of, and without those of parts that were removed.
std::string Parts::written_types() const {
  const package::ArchiveEntry* entry = archive_ ? archive_->find(kTypesName) : nullptr;
  const std::string stored = entry ? archive_->read(*entry) : std::string(kEmptyTypes);
  const auto tree = package::XmlTree::parse(stored, kTypesName);
  pugi::xml_node root = tree.root();
  bool changed = false;
  std::set<std::string> settled;
  for (pugi::xml_node node = root.first_child(); node;) {
    const pugi::xml_node next = node.next_sibling();
    if (package::local_name(node) == "Override") {
      const std::string key = part_name_of(node);
      const auto part = parts_.find(key);
      const auto owner = relationships_owner(key);
      const bool in_file = archive_ && archive_->find(key);
      if (in_file && (owner ? !has_relationships(*owner) : part == parts_.end())) {
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
  const auto add_override = [&](const std::string& name, std::string_view type) {
    pugi::xml_node node = package::append_child(root, "Override");
    node.append_attribute("PartName") = ("/" + name).c_str();
    node.append_attribute("ContentType") = std::string(type).c_str();
    changed = true;
  };
  // Older spreadsheet programs state the type of each part of relationships by itself.
  const auto add_links = [&](std::string_view owner) {
    const std::string name = relationships_name(owner);
    if (archive_ && !default_types_.contains("rels") && has_relationships(owner) &&
        !override_types_.contains(lower_ascii(name)))
      add_override(name, kRelationshipsType);
  };
  add_links("");
  // Kinds of pictures are told by the ends of names, where the file says nothing else of these.
  std::map<std::string, std::string> pictures;
  const auto is_told = [&](const std::string& key, const Part& part) {
    if (part.type == type_of(key)) return true;
    const std::string extension = extension_of(key);
    if (!part.type.starts_with("image/") || default_types_.contains(extension)) return false;
    return pictures.try_emplace(extension, part.type).first->second == part.type;
  };
  for (const auto& [key, part] : parts_) {
    if (!part.type.empty() && !settled.contains(key) && !is_told(key, part))
      add_override(part.name, part.type);
    add_links(part.name);
  }
  for (const auto& [extension, type] : pictures) {
    pugi::xml_node node = package::insert_child(root, "Default", root.first_child());
    node.append_attribute("Extension") = extension.c_str();
    node.append_attribute("ContentType") = type.c_str();
    changed = true;
  }
  return changed || !archive_ ? tree.serialize() : std::string();
}

void Parts::write_relationships_of(std::string_view owner, package::ArchiveWriter& archive) const {
  if (!has_relationships(owner)) return;
  const std::string name = relationships_name(owner);
  const auto known = links_.find(lower_ascii(owner));
  if (known != links_.end() && known->second.changed)
    archive.add(name, write_relationships(known->second.items));
  else archive.copy(*archive_, *archive_->find(name));
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
