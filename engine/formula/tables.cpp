// What happens to the references to tables and their columns when these are renamed, copied or
// deleted.
#include <algorithm>

#include "engine/formula/edits.h"
#include "engine/formula/formula.h"
#include "engine/formula/sheet_name.h"
#include "engine/text/fold.h"

namespace engine::formula {
namespace {

// Where the name of this book's table ends that a leaf begins with: at the bracket, or with the
// leaf when the name stands for the whole table. Nothing for leaves that name no table.
std::optional<std::size_t> end_of_table_name(const Formula& formula, const Node& leaf) {
  if (leaf.prefix != PrefixKind::kNone) return std::nullopt;
  if (leaf.kind == NodeKind::kName) return leaf.end;
  if (leaf.kind != NodeKind::kStructured) return std::nullopt;
  const std::size_t bracket = formula.text_of(leaf).find('[');
  return bracket == 0 ? std::nullopt : std::optional(leaf.begin + bracket);
}

// Characters that mean something inside of brackets.
constexpr std::string_view kSpecial = "[]#'@";

std::string quoted_column(std::string_view name) {
  std::string text;
  for (const char c : name) {
    if (kSpecial.find(c) != std::string_view::npos) text.push_back('\'');
    text.push_back(c);
  }
  return text;
}

std::string unquoted_column(std::string_view text) {
  std::string name;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\'' && i + 1 < text.size()) ++i;
    name.push_back(text[i]);
  }
  return name;
}

// Calls back with begin and end of each column's name between the brackets of `text`.
template <class Use>
void for_each_column(std::string_view text, std::size_t begin, std::size_t end, Use use) {
  std::size_t name = 0;  // behind the innermost bracket that is open, else 0
  for (std::size_t at = begin; at < end; ++at) {
    if (text[at] == '\'') {
      ++at;
    } else if (text[at] == '[') {
      name = at + 1;
      if (text[name] == '@') ++name;
    } else if (text[at] == ']') {
      if (name != 0 && name < at && text[name] != '#') use(name, at);
      name = 0;
    }
  }
}

}  // namespace

std::optional<std::string> with_tables(const Formula& formula,
                                       std::span<const TableChange> changes) {
  Edits edits;
  for (const Node& node : formula.nodes) {
    const auto end = end_of_table_name(formula, node);
    if (!end) continue;
    const auto name = std::string_view(formula.text).substr(node.begin, *end - node.begin);
    const auto change = std::find_if(changes.begin(), changes.end(), [&](const TableChange& one) {
      return equal_ignoring_case(one.name, name);
    });
    if (change == changes.end()) continue;
    if (change->renamed) edits.replace(node.begin, *end, *change->renamed);
    else edits.replace(node.begin, node.end, "#REF!");
  }
  return edits.apply(formula.text);
}

void ColumnChanges::add(std::string_view table, std::string_view name, std::string renamed) {
  renamed_.insert_or_assign({fold_case(table), fold_case(name)}, std::move(renamed));
}

const std::string* ColumnChanges::find(std::string_view table, std::string_view name) const {
  const auto found = renamed_.find({fold_case(table), fold_case(name)});
  return found == renamed_.end() ? nullptr : &found->second;
}

void ColumnChanges::remove(std::string_view table, std::span<const std::string> names,
                           const std::vector<bool>& gone) {
  removed_.insert_or_assign(fold_case(table), Removal{{names.begin(), names.end()}, gone});
}

std::size_t ColumnChanges::Removal::place(std::string_view name) const {
  const auto found = std::ranges::find_if(
      names, [&](const std::string& one) { return equal_ignoring_case(one, name); });
  return static_cast<std::size_t>(found - names.begin());
}

const ColumnChanges::Removal* ColumnChanges::removal(std::string_view table) const {
  if (removed_.empty()) return nullptr;
  const auto found = removed_.find(fold_case(table));
  return found == removed_.end() ? nullptr : &found->second;
}

bool ColumnChanges::goes(std::string_view table, std::string_view name) const {
  const Removal* its = removal(table);
  const std::size_t place = its ? its->place(name) : 0;
  return its && place < its->names.size() && its->gone[place];
}

bool ColumnChanges::narrow(std::string_view table, std::string& first, std::string& last) const {
  const Removal* its = removal(table);
  if (!its) return true;
  std::size_t from = its->place(first);
  std::size_t to = its->place(last);
  if (from >= its->names.size() || to >= its->names.size()) return true;
  const std::ptrdiff_t step = from <= to ? 1 : -1;
  for (; its->gone[from]; from += static_cast<std::size_t>(step))
    if (from == to) return false;
  while (its->gone[to]) to -= static_cast<std::size_t>(step);
  first = its->names[from];
  last = its->names[to];
  return true;
}

std::optional<std::string> with_columns(const Formula& formula, const ColumnChanges& changes) {
  Edits edits;
  for (const Node& node : formula.nodes) {
    if (node.kind != NodeKind::kStructured || node.prefix != PrefixKind::kNone) continue;
    const std::string_view text = formula.text;
    const std::size_t bracket = text.find('[', node.begin);
    const auto table = text.substr(node.begin, bracket - node.begin);
    struct Place {
      std::size_t begin;
      std::size_t end;
    };
    std::vector<Place> places;
    for_each_column(text, bracket, node.end, [&](std::size_t begin, std::size_t end) {
      places.push_back({begin, end});
    });
    std::vector<std::string> names;
    for (const auto& [begin, end] : places)
      names.push_back(unquoted_column(text.substr(begin, end - begin)));
    // Two names are the ends of a range.
    const bool is_left =
        names.empty() || (names.size() == 2 ? changes.narrow(table, names[0], names[1])
                                            : !changes.goes(table, names[0]));
    if (!is_left) {
      edits.replace(node.begin, node.end, "#REF!");
      continue;
    }
    for (std::size_t i = 0; i < names.size(); ++i) {
      const auto& [begin, end] = places[i];
      const std::string* renamed = changes.find(table, names[i]);
      std::string name = quoted_column(renamed ? *renamed : names[i]);
      const bool narrowed = unquoted_column(text.substr(begin, end - begin)) != names[i];
      if (renamed || narrowed) edits.replace(begin, end, std::move(name));
    }
  }
  return edits.apply(formula.text);
}

}  // namespace engine::formula
