#include "engine/xlsx/comments.h"

#include <map>
#include <optional>
#include <set>

#include "engine/formula/reference.h"
#include "engine/package/file_error.h"
#include "engine/package/xml_tree.h"
#include "engine/xlsx/escapes.h"
#include "engine/xlsx/formula_texts.h"

namespace engine::xlsx {

namespace {

using package::Family;

constexpr std::string_view kEmptyPart =
    "<comments xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\">"
    "<authors/><commentList/></comments>";

// The part names an author once and each comment in memory again: together they may take so many
// times the part's size, which no real name comes near to.
constexpr std::size_t kAuthorRoom = 16;

std::optional<CellAddress> cell_of(pugi::xml_node comment) {
  const auto cell = formula::parse_cell(comment.attribute("ref").value());
  if (!cell) return std::nullopt;
  return CellAddress{cell->row, cell->column};
}

// The text of a rich string: its direct text, or the texts of its runs, without phonetic ones.
std::string plain_text(pugi::xml_node rich) {
  std::string text;
  for (const pugi::xml_node node : rich.children()) {
    if (package::is(node, Family::Main, "t")) text.append(unescape(node.text().get()));
    if (package::is(node, Family::Main, "r"))
      text.append(unescape(package::child(node, Family::Main, "t").text().get()));
  }
  return text;
}

std::vector<std::string> authors_of(pugi::xml_node root) {
  std::vector<std::string> authors;
  const pugi::xml_node list = package::child(root, Family::Main, "authors");
  for (const pugi::xml_node author : package::children(list, Family::Main, "author"))
    authors.push_back(unescape(author.text().get()));
  return authors;
}

pugi::xml_node root_of(const package::XmlTree& document, std::string_view part) {
  const pugi::xml_node root = document.root();
  if (!package::is(root, Family::Main, "comments"))
    package::throw_damaged(part, "not a list of comments");
  return root;
}

pugi::xml_node child_or_new(pugi::xml_node root, std::string_view local, pugi::xml_node next) {
  const pugi::xml_node found = package::child(root, Family::Main, local);
  return found ? found : package::insert_child(root, local, next);
}

// Numbers of authors, with new ones put behind those that the part has.
class Authors {
 public:
  Authors(pugi::xml_node root, pugi::xml_node list) : list_(list) {
    std::size_t number = 0;
    for (const std::string& author : authors_of(root)) numbers_.try_emplace(author, number++);
    count_ = number;
  }

  std::size_t number(const std::string& author) {
    const auto [entry, is_new] = numbers_.try_emplace(author, count_);
    if (is_new) {
      package::append_child(list_, "author").text().set(escape(author).c_str());
      ++count_;
    }
    return entry->second;
  }

 private:
  pugi::xml_node list_;
  std::map<std::string, std::size_t> numbers_;
  std::size_t count_ = 0;
};

void append_comment(pugi::xml_node list, CellAddress cell, const Comment& note,
                    std::size_t author) {
  pugi::xml_node comment = package::append_child(list, "comment");
  comment.append_attribute("ref") = formula::print_cell(cell.row, cell.column).c_str();
  comment.append_attribute("authorId") = author;
  pugi::xml_node run = package::append_child(package::append_child(comment, "text"), "r");
  pugi::xml_node look = package::append_child(run, "rPr");
  package::append_child(look, "sz").append_attribute("val") = 9;
  package::append_child(look, "color").append_attribute("indexed") = 81;
  package::append_child(look, "rFont").append_attribute("val") = "Tahoma";
  package::append_child(look, "family").append_attribute("val") = 2;
  pugi::xml_node text = package::append_child(run, "t");
  text.append_attribute("xml:space") = "preserve";
  text.text().set(escape(note.text).c_str());
}

}  // namespace

bool is_as_read(const Comments& comments, const Comments& as_read, CellAddress cell) {
  const auto now = comments.find(cell);
  const auto then = as_read.find(cell);
  return now != comments.end() && then != as_read.end() && now->second == then->second;
}

void read_comments(std::string_view xml, std::string_view part, Comments& comments) {
  const auto document = package::XmlTree::parse(xml, part);
  const pugi::xml_node root = root_of(document, part);
  const std::vector<std::string> authors = authors_of(root);
  const pugi::xml_node list = package::child(root, Family::Main, "commentList");
  std::size_t room = kAuthorRoom * xml.size();
  for (const pugi::xml_node node : package::children(list, Family::Main, "comment")) {
    const auto cell = cell_of(node);
    if (!cell) package::throw_damaged(part, "a comment without a cell");
    Comment note;
    note.text = plain_text(package::child(node, Family::Main, "text"));
    const unsigned author = node.attribute("authorId").as_uint();
    if (author < authors.size()) note.author = authors[author];
    if (note.author.size() > room) package::throw_damaged(part, "names of authors are too long");
    room -= note.author.size();
    comments.insert_or_assign(*cell, std::move(note));
  }
}

std::string write_comments(std::string_view stored, std::string_view part, const Comments& comments,
                           const Comments& as_read) {
  const auto document = package::XmlTree::parse(stored.empty() ? kEmptyPart : stored, part);
  const pugi::xml_node root = root_of(document, part);
  pugi::xml_node list = child_or_new(root, "commentList", root.last_child());
  Authors authors(root, child_or_new(root, "authors", root.first_child()));

  std::set<CellAddress> kept;
  for (const pugi::xml_node node : package::children(list, Family::Main, "comment")) {
    const auto cell = cell_of(node);
    if (cell && is_as_read(comments, as_read, *cell)) kept.insert(*cell);
    else list.remove_child(node);
  }
  for (const auto& [cell, note] : comments)
    if (!kept.contains(cell)) append_comment(list, cell, note, authors.number(note.author));
  return document.serialize();
}

std::string write_threads(std::string_view stored, std::string_view part, const Comments& comments,
                          const Comments& as_read) {
  const auto document = package::XmlTree::parse(stored, part);
  pugi::xml_node root = document.root();
  bool changed = false;
  for (pugi::xml_node node = root.first_child(); node;) {
    const pugi::xml_node next = node.next_sibling();
    const auto cell = cell_of(node);
    if (cell && !is_as_read(comments, as_read, *cell)) changed |= root.remove_child(node);
    node = next;
  }
  return changed ? document.serialize() : std::string(stored);
}

std::optional<std::string> move_comments(std::string_view stored, std::string_view part,
                                         const formula::Move& move) {
  const auto document = package::XmlTree::parse(stored, part);
  bool changed = false;
  std::vector<pugi::xml_node> lost;
  visit_elements(document.root(), [&](pugi::xml_node node) {
    auto cell = cell_of(node);
    if (!cell) return;
    int& place = move.axis == formula::Axis::kRows ? cell->row : cell->column;
    const auto to = formula::moved(place, move);
    changed |= to != place;
    if (!to) return lost.push_back(node);
    place = *to;
    node.attribute("ref") = formula::print_cell(cell->row, cell->column).c_str();
  });
  for (const pugi::xml_node node : lost) node.parent().remove_child(node);
  return changed ? std::optional(document.serialize()) : std::nullopt;
}

}  // namespace engine::xlsx
