#include "engine/xlsx/table_part.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "engine/package/xml_tree.h"
#include "engine/text/fold.h"
#include "engine/xlsx/attributes.h"
#include "engine/xlsx/elements/filters.h"
#include "engine/xlsx/escapes.h"
#include "engine/xlsx/moved_cells.h"

namespace engine::xlsx {

namespace {

using package::Family;

constexpr std::size_t kLongestName = 255;  // UTF-16 units

std::vector<pugi::xml_node> column_nodes(pugi::xml_node root) {
  return package::children(package::child(root, Family::Main, "tableColumns"), Family::Main,
                           "tableColumn");
}

// At most so many UTF-16 units of the text.
std::string cut(std::string_view text, std::size_t units) {
  std::size_t end = 0;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const auto byte = static_cast<unsigned char>(text[at]);
    if ((byte & 0xC0) == 0x80) continue;
    end = at;
    const std::size_t size = byte >= 0xF0 ? 2 : 1;
    if (size > units) return std::string(text.substr(0, end));
    units -= size;
  }
  return std::string(text);
}

// Names that are taken, and for each text the number to try next.
class Names {
 public:
  void take(std::string_view name) { taken_.insert(fold_case(name)); }

  std::string unique(std::string_view header) {
    std::string base = cut(header.empty() ? "Column" : header, kLongestName);
    if (!header.empty() && taken_.insert(fold_case(base)).second) return base;
    int& number = next_.try_emplace(fold_case(base), header.empty() ? 1 : 2).first->second;
    for (;; ++number) {
      const std::string digits = std::to_string(number);
      std::string name = cut(base, kLongestName - digits.size()) + digits;
      if (taken_.insert(fold_case(name)).second) return name;
    }
  }

 private:
  std::unordered_set<std::string> taken_;
  std::unordered_map<std::string, int> next_;
};

// Line ends are escaped in names, although XML could hold them.
std::string escaped_name(std::string_view name) {
  std::string text;
  for (const char c : escape(name)) {
    if (c == '\n') text.append("_x000a_");
    else text.push_back(c);
  }
  return text;
}

}  // namespace

std::optional<TablePart> read_table(std::string_view bytes, std::string_view part,
                                    const Grid& grid) {
  const auto tree = package::XmlTree::parse(bytes, part);
  const pugi::xml_node root = tree.root();
  const auto cells = formula::parse_range(root.attribute("ref").value(), grid);
  if (!cells) return std::nullopt;
  TablePart table;
  table.part = part;
  table.name = unescape(root.attribute("displayName").value());
  table.cells = *cells;
  table.header_rows = std::max(root.attribute("headerRowCount").as_int(1), 0);
  table.totals_rows = std::max(root.attribute("totalsRowCount").as_int(0), 0);
  table.has_buttons = table.has_header() && package::child(root, Family::Main, "autoFilter");
  for (const pugi::xml_node column : column_nodes(root))
    table.columns.push_back(unescape(column.attribute("name").value()));
  return table;
}

std::vector<std::string> column_names(const std::vector<std::string>& present,
                                      const std::vector<std::optional<std::string>>& headers) {
  Names names;
  for (std::size_t i = 0; i < present.size(); ++i)
    if (i >= headers.size() || !headers[i]) names.take(present[i]);
  std::vector<std::string> made = present;
  for (std::size_t i = 0; i < std::min(present.size(), headers.size()); ++i)
    if (headers[i]) made[i] = names.unique(*headers[i]);
  return made;
}

std::string rename_columns(std::string_view bytes, std::string_view part,
                           const std::vector<std::string>& names) {
  const auto tree = package::XmlTree::parse(bytes, part);
  const std::vector<pugi::xml_node> columns = column_nodes(tree.root());
  for (std::size_t i = 0; i < std::min(names.size(), columns.size()); ++i) {
    pugi::xml_attribute name = pugi::xml_node(columns[i]).attribute("name");
    if (!name) name = pugi::xml_node(columns[i]).append_attribute("name");
    if (unescape(name.value()) != names[i]) name = escaped_name(names[i]).c_str();
  }
  return tree.serialize();
}

namespace {

// Columns that go leave the list, those that are inserted enter it with a name of their own.
void move_columns(pugi::xml_node root, TablePart& table, const formula::Move& move) {
  pugi::xml_node list = package::child(root, Family::Main, "tableColumns");
  const std::vector<pugi::xml_node> nodes = column_nodes(root);
  std::vector<std::string> names;
  std::vector<std::optional<std::string>> headers;
  const auto keep = [&](std::size_t i) {
    names.push_back(table.columns[i]);
    headers.emplace_back();
  };
  const int at = move.at - table.cells.column_first;  // of the first column that comes or goes
  if (move.kind == formula::Move::Kind::kRemove) {
    for (std::size_t i = 0; i < nodes.size(); ++i) {
      const int place = static_cast<int>(i);
      if (place >= at && place < at + move.count) list.remove_child(nodes[i]);
      else keep(i);
    }
    table.columns = std::move(names);
  } else {
    if (at <= 0 || move.at > table.cells.column_last) return;
    unsigned id = 0;
    for (const pugi::xml_node node : nodes) id = std::max(id, node.attribute("id").as_uint());
    const std::size_t first = std::min(static_cast<std::size_t>(at), nodes.size());
    const auto count = static_cast<std::size_t>(move.count);
    for (std::size_t i = 0; i < first; ++i) keep(i);
    for (std::size_t i = 0; i < count; ++i) {
      names.emplace_back();
      headers.emplace_back("");
    }
    for (std::size_t i = first; i < nodes.size(); ++i) keep(i);
    table.columns = column_names(names, headers);
    const pugi::xml_node next = first < nodes.size() ? nodes[first] : pugi::xml_node();
    for (std::size_t i = first; i < first + count; ++i) {
      pugi::xml_node node = next ? package::insert_child(list, "tableColumn", next)
                                 : package::append_child(list, "tableColumn");
      set_attribute(node, "id", std::to_string(++id));
      set_attribute(node, "name", escaped_name(table.columns[i]));
    }
  }
  set_attribute(list, "count", std::to_string(table.columns.size()));
}

}  // namespace

std::string move_table(std::string_view bytes, TablePart& table, const formula::Move& move,
                       const Grid& grid) {
  const auto tree = package::XmlTree::parse(bytes, table.part);
  pugi::xml_node root = tree.root();
  const bool rows = move.axis == formula::Axis::kRows;
  const int last = table.cells.row_last;
  if (rows && table.totals_rows != 0 && move.kind == formula::Move::Kind::kRemove &&
      last - table.totals_rows + 1 >= move.at && last < move.at + move.count) {
    root.remove_attribute("totalsRowCount");
    table.totals_rows = 0;
  }
  if (!rows) move_columns(root, table, move);
  table.cells = *moved_range(table.cells, move, grid);
  set_attribute(root, "ref", formula::print_range(table.cells));
  move_table_filter(root, move, grid);
  return tree.serialize();
}

}  // namespace engine::xlsx
