// The pictures of a file: which there are, and where its sheets show them.
#include <algorithm>
#include <map>
#include <utility>

#include "engine/package/file_error.h"
#include "engine/package/xml_tree.h"
#include "engine/xlsx/document.h"
#include "engine/xlsx/formula_texts.h"

namespace engine::xlsx {

namespace {

using package::Family;

// Those that a drawing shows, in whatever object. One that cannot be read shows none.
void enter_drawing(const Parts& parts, const Part& drawing, StoredPictures& pictures) try {
  const auto tree = package::XmlTree::parse(parts.read(drawing), drawing.name);
  visit_elements(tree.root(), [&](pugi::xml_node node) {
    if (package::is(node, Family::Drawing, "blip"))
      pictures.add(source_of(node, parts, drawing.name));
  });
} catch (const package::FileError&) {
  return;
}

void enter_drawing_of(const Parts& parts, const std::string& sheet, StoredPictures& pictures) try {
  if (const Part* drawing = parts.related(sheet, "drawing"))
    enter_drawing(parts, *drawing, pictures);
} catch (const package::FileError&) {
  return;
}

// Parts with pictures that no drawing shows: backgrounds, headers, fillings of charts. The picture
// of the whole document is none of the book's.
void enter_others(const Parts& parts, StoredPictures& pictures) {
  const Part* const preview = parts.related("", "thumbnail");
  std::set<std::string_view> known;
  for (const PictureSource& one : pictures.sources) known.insert(one.first);
  std::vector<std::string> others;
  for (const auto& [key, part] : parts.all())
    if (part.stored && &part != preview && part.type.starts_with("image/") &&
        !known.contains(part.name))
      others.push_back(part.name);
  for (std::string& name : others) pictures.add({std::move(name), {}});
}

}  // namespace

// The order is that of the file's sheets, however they were moved since.
void Document::read_pictures(Workbook& book) {
  if (pictures_) return;
  std::map<std::uint32_t, const SheetPart*> in_order;
  for (const auto& [sheet, part] : sheets_)
    if (part.listed != 0 && !part.part.empty()) in_order.emplace(part.listed, &part);
  StoredPictures pictures;
  for (const auto& [place, sheet] : in_order) enter_drawing_of(parts_, sheet->part, pictures);
  enter_others(parts_, pictures);
  std::vector<Picture> made(pictures.sources.size());
  for (std::size_t i = 0; i < made.size(); ++i) {
    made[i].in_file = !pictures.sources[i].first.empty();
    made[i].link = pictures.sources[i].second;
  }
  pictures_ = std::move(pictures);
  book.pictures = std::move(made);
}

void Document::read_picture(Workbook& book, std::size_t index) {
  Picture& picture = book.pictures[index];
  if (!picture.in_file) return;
  const Part& part = *parts_.find(pictures_->sources[index].first);
  auto bytes = std::make_shared<const std::string>(parts_.read(part));
  picture.header = read_picture_header(*bytes);
  picture.bytes = std::move(bytes);
  picture.in_file = false;
}

// A drawing that cannot be read is carried, and so are relationships; what is wrong is told when a
// picture is to be added.
std::string Document::read_drawing(Workbook& book, const SheetPart& sheet,
                                   SheetContents& contents) try {
  parts_.relationships(sheet.part);
  const pugi::xml_node link = package::child(sheet.tree->root(), Family::Main, "drawing");
  const Part* part = parts_.named_by(link, sheet.part).part;
  if (!part) return {};
  const auto tree = package::XmlTree::parse(parts_.read(*part), part->name);
  const pugi::xml_node root = drawing_root(tree, part->name);
  parts_.relationships(part->name);
  if (picture_anchors(root).empty()) return {};
  read_pictures(book);
  contents.pictures = xlsx::read_pictures(root, parts_, part->name, *pictures_, book.limits.grid);
  return {};
} catch (const package::FileError& error) {
  return error.what();
}

}  // namespace engine::xlsx
