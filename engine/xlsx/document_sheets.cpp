// Copying and removing sheets: what becomes of the parts and elements around their cells.
#include <algorithm>
#include <array>
#include <set>
#include <utility>

#include "engine/formula/formula_text.h"
#include "engine/formula/sheet_name.h"
#include "engine/package/xml_tree.h"
#include "engine/text/fold.h"
#include "engine/xlsx/copied_drawing.h"
#include "engine/xlsx/document.h"
#include "engine/xlsx/escapes.h"
#include "engine/xlsx/formula_texts.h"
#include "engine/xlsx/new_parts.h"

namespace engine::xlsx {

namespace {

using package::Family;

// What stands in a worksheet for parts that are not copied with it. Comments are the model's, and
// of drawings the pictures are copied.
constexpr auto kNotCopied = std::to_array<std::string_view>({
    "customProperties",
    "legacyDrawing",
    "legacyDrawingHF",
    "drawingHF",
    "picture",
    "oleObjects",
    "controls",
    "webPublishItems",
});

bool refers_to_parts(pugi::xml_node node) {
  if (package::attribute(node, Family::Relationships, "id")) return true;
  return std::ranges::any_of(node.children(), refers_to_parts);
}

// Elements that are nothing without a part, and identifications that no two sheets may share.
void remove_uncopied(pugi::xml_node root) {
  for (pugi::xml_node node = root.first_child(); node;) {
    const pugi::xml_node next = node.next_sibling();
    const bool main = package::family(node) == Family::Main;
    const bool listed =
        std::ranges::find(kNotCopied, package::local_name(node)) != kNotCopied.end();
    if ((main && listed) || (!main && refers_to_parts(node))) root.remove_child(node);
    node = next;
  }
  pugi::xml_node extensions = package::child(root, Family::Main, "extLst");
  for (const pugi::xml_node one : package::children(extensions, Family::Main, "ext"))
    if (refers_to_parts(one)) extensions.remove_child(one);
  if (extensions && !extensions.first_child()) root.remove_child(extensions);
  pugi::xml_node views = package::child(root, Family::Main, "sheetViews");
  for (pugi::xml_node view : package::children(views, Family::Main, "sheetView"))
    for (const pugi::xml_node pivot : package::children(view, Family::Main, "pivotSelection"))
      view.remove_child(pivot);
  package::child(root, Family::Main, "sheetPr").remove_attribute("codeName");
  pugi::xml_node setup = package::child(root, Family::Main, "pageSetup");
  setup.remove_attribute(package::attribute(setup, Family::Relationships, "id"));
  for (const pugi::xml_attribute attribute : root.attributes())
    if (package::local_name(attribute.name()) == "uid") {
      root.remove_attribute(attribute);
      break;
    }
}

// A sheet's relationships, whether the file or only the model has the sheet.
class SheetLinks {
 public:
  SheetLinks(const Parts& parts, const SheetPart& sheet) : parts_(parts), sheet_(sheet) {}

  const Relationship* external(std::string_view id) const {
    const auto& all = in_file() ? parts_.relationships(sheet_.part) : sheet_.links;
    const auto found = std::ranges::find(all, id, &Relationship::id);
    return found == all.end() || !found->external ? nullptr : &*found;
  }

  // The ids under which the sheet knows its tables.
  std::vector<std::string> tables() const {
    std::vector<std::string> ids;
    if (in_file()) {
      for (const Relationship& one : parts_.relationships(sheet_.part))
        if (one.kind() == "table") ids.push_back(one.id);
    } else {
      for (const AddedPart& added : sheet_.added)
        if (added.kind == "table") ids.push_back(added.relationship);
    }
    return ids;
  }

  // The relationships of a part that belongs to the sheet, their targets told from the root.
  std::vector<Relationship> links_of(std::string_view id) const {
    if (const AddedPart* found = added(id)) return found->links;
    const Part* owner = stored(id);
    if (!owner) return {};
    std::vector<Relationship> links = parts_.relationships(owner->name);
    for (Relationship& link : links)
      if (!link.external) link.target = "/" + resolve_target(owner->name, link.target);
    return links;
  }

  // The bytes of a part that belongs to the sheet; empty when there is none.
  std::string part(std::string_view id) const {
    if (const AddedPart* found = added(id)) return found->bytes;
    const Part* found = stored(id);
    return found ? parts_.read(*found) : std::string();
  }

 private:
  bool in_file() const { return !sheet_.part.empty(); }

  // The part of that id, which is either the model's or the file's; else null.
  const AddedPart* added(std::string_view id) const {
    const auto found = std::ranges::find(sheet_.added, id, &AddedPart::relationship);
    return found == sheet_.added.end() ? nullptr : &*found;
  }
  const Part* stored(std::string_view id) const {
    const Relationship* one = in_file() ? parts_.relationship(sheet_.part, id) : nullptr;
    return one ? parts_.target(sheet_.part, *one) : nullptr;
  }

  const Parts& parts_;
  const SheetPart& sheet_;
};

// Names and ids of the book's tables.
class TableNames {
 public:
  TableNames(const Workbook& book, const Parts& parts) {
    for (const auto& [key, part] : parts.all())
      if (part.type == kTableType) enter(parts.read(part));
    for (const auto& sheet : book.sheets)
      if (const SheetPart* remains = part_of(std::as_const(*sheet)))
        for (const AddedPart& added : remains->added)
          if (added.kind == "table") enter(added.bytes);
    for (const DefinedName& name : book.names) used_.insert(fold_case(name.name));
  }

  // The name with the first number behind it that nobody has.
  std::string free(const std::string& name) {
    for (int number = 1;; ++number) {
      std::string made = name + "_" + std::to_string(number);
      if (used_.insert(fold_case(made)).second) return made;
    }
  }
  unsigned next_id() { return ++last_id_; }

 private:
  void enter(const std::string& bytes) {
    const auto tree = package::XmlTree::parse(bytes, "table");
    const pugi::xml_node root = tree.root();
    last_id_ = std::max(last_id_, root.attribute("id").as_uint());
    for (const char* name : {"name", "displayName"})
      used_.insert(fold_case(unescape(root.attribute(name).value())));
  }

  std::set<std::string> used_;
  unsigned last_id_ = 0;
};

std::string copy_of_table(const std::string& bytes, TableNames& names,
                          std::vector<formula::TableChange>& copies) {
  const auto tree = package::XmlTree::parse(bytes, "table");
  pugi::xml_node root = tree.root();
  formula::TableChange& change = copies.emplace_back();
  change.name = unescape(root.attribute("displayName").value());
  const std::string& name = change.renamed.emplace(names.free(change.name));
  root.attribute("id") = names.next_id();
  if (root.attribute("name")) root.attribute("name") = escape(name).c_str();
  root.attribute("displayName") = escape(name).c_str();
  for (const pugi::xml_attribute attribute : root.attributes())
    if (package::local_name(attribute.name()) == "uid") {
      root.remove_attribute(attribute);
      break;
    }
  root.remove_attribute("tableType");
  return tree.serialize();
}

void copy_hyperlinks(pugi::xml_node root, const SheetLinks& links, SheetPart& made) {
  pugi::xml_node list = package::child(root, Family::Main, "hyperlinks");
  for (const pugi::xml_node link : package::children(list, Family::Main, "hyperlink")) {
    const std::string_view id = package::attribute(link, Family::Relationships, "id").value();
    if (id.empty()) continue;
    const Relationship* target = links.external(id);
    if (!target) list.remove_child(link);
    else if (std::ranges::find(made.links, id, &Relationship::id) == made.links.end())
      made.links.push_back(*target);
  }
  if (list && !list.first_child()) root.remove_child(list);
}

void copy_drawing(pugi::xml_node root, const SheetLinks& links, Parts& parts, SheetPart& made) {
  const pugi::xml_node element = package::child(root, Family::Main, "drawing");
  const std::string id = package::attribute(element, Family::Relationships, "id").value();
  const std::string bytes = links.part(id);
  auto pictures =
      bytes.empty() ? std::nullopt : copy_pictures(bytes, "drawing", links.links_of(id));
  if (!pictures) {
    root.remove_child(element);
    return;
  }
  for (const Relationship& link : pictures->links)
    if (!link.external) parts.hold(std::string_view(link.target).substr(1));
  made.added.push_back({id, "drawing", "xl/drawings/drawing#.xml", std::string(kDrawingType),
                        std::move(pictures->bytes), std::move(pictures->links)});
}

// The copies under their new names, their formulas still those of the originals.
std::vector<formula::TableChange> copy_tables(pugi::xml_node root, const SheetLinks& links,
                                              TableNames names, SheetPart& made) {
  std::vector<formula::TableChange> copies;
  pugi::xml_node list = package::child(root, Family::Main, "tableParts");
  for (const pugi::xml_node table : package::children(list, Family::Main, "tablePart")) {
    const std::string id = package::attribute(table, Family::Relationships, "id").value();
    const std::string bytes = links.part(id);
    if (bytes.empty()) {
      list.remove_child(table);
      continue;
    }
    made.added.push_back({id,
                          "table",
                          "xl/tables/table#.xml",
                          std::string(kTableType),
                          copy_of_table(bytes, names, copies),
                          {}});
  }
  if (list && copies.empty()) root.remove_child(list);
  else if (list.attribute("count")) list.attribute("count") = copies.size();
  return copies;
}

}  // namespace

std::vector<formula::TableChange> Document::copy_sheet(Workbook& book, const Sheet& original,
                                                       Sheet& copy) {
  const SheetPart* from = part_of(original);
  if (!from) return {};  // a new sheet that nothing is carried for
  auto made = std::make_unique<SheetPart>();
  made->read = true;
  made->tree = from->tree.copy();
  made->row_details = from->row_details;
  const pugi::xml_node root = made->tree.root();
  remove_uncopied(root);
  const SheetLinks links(parts_, *from);
  copy_hyperlinks(root, links, *made);
  auto tables = copy_tables(root, links, TableNames(book, parts_), *made);
  const FormulaEdit edit = [&](const Sheet*, std::string_view text) {
    return formula::change_tables_text(
        text, formula::retarget_sheet_text(text, original.name, copy.name, book.limits.grid),
        tables, book.limits.grid);
  };
  for (AddedPart& table : made->added)
    if (auto edited = edited_table(table.bytes, nullptr, edit)) table.bytes = *std::move(edited);
  copy_drawing(root, links, parts_, *made);
  TextEdits texts;
  texts.collect_worksheet(root, &original, edit);
  texts.apply();
  made->tree.settle();
  copy.remains = std::move(made);
  return tables;
}

void Document::remove_sheet(Workbook& book, Sheet& sheet, const FormulaEdit& edit) {
  const SheetPart* gone = part_of(sheet);
  const bool in_file = gone && !gone->relationship.empty();
  edit_carried(book, edit, in_file ? gone->relationship : std::string_view());
  if (in_file) sheet_removed_ = true;
}

// A table that cannot be read is none that formulas are known to mean.
std::vector<Table> Document::tables(const Workbook& book, const Sheet& sheet) const {
  std::vector<Table> all;
  const SheetPart* remains = part_of(sheet);
  if (!remains) return all;
  const SheetLinks links(parts_, *remains);
  for (const std::string& id : links.tables()) {
    try {
      const auto tree = package::XmlTree::parse(links.part(id), "table");
      const pugi::xml_node root = tree.root();
      const auto cells = formula::parse_range(root.attribute("ref").value(), book.limits.grid);
      if (cells) all.push_back({unescape(root.attribute("displayName").value()), *cells});
    } catch (const package::FileError&) {
      continue;
    }
  }
  return all;
}

}  // namespace engine::xlsx
