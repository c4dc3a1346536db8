// What happens to the references to tables when these are renamed, copied or deleted.
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

}  // namespace engine::formula
