// What happens to the sheet prefixes of a formula when sheets are renamed, copied or deleted.
#include <algorithm>

#include "engine/formula/edits.h"
#include "engine/formula/formula.h"
#include "engine/formula/leaf.h"
#include "engine/formula/sheet_name.h"
#include "engine/text/fold.h"

namespace engine::formula {
namespace {

bool names_own_sheets(const Node& node) {
  return node.prefix == PrefixKind::kSheet || node.prefix == PrefixKind::kSheets;
}

std::string print_prefix(const SheetPrefix& prefix) {
  std::string out;
  append_prefix(out, prefix);
  return out;
}

std::optional<std::size_t> position_of(std::span<const std::string_view> sheets,
                                       std::string_view name) {
  for (std::size_t i = 0; i < sheets.size(); ++i)
    if (equal_ignoring_case(sheets[i], name)) return i;
  return std::nullopt;
}

// Takes a deleted sheet off the ends of a 3-D prefix, whose sheets may stand in either order; false
// when it was the only one left.
bool shrink(SheetPrefix& prefix, std::span<const std::string_view> sheets, std::size_t index) {
  const auto first = position_of(sheets, prefix.first);
  const auto last = position_of(sheets, prefix.last);
  if (!first || !last || (*first == index && *last == index)) return false;
  const bool in_order = *first < *last;
  if (*first == index) prefix.first = sheets[in_order ? index + 1 : index - 1];
  if (*last == index) prefix.last = sheets[in_order ? index - 1 : index + 1];
  return true;
}

// The name between the apostrophes, without them.
std::string unquoted(std::string_view text) {
  std::string name;
  name.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    name += text[i];
    if (text[i] == '\'') ++i;
  }
  return name;
}

std::string_view prefix_text(const Formula& formula, const Node& node) {
  const std::string_view text = formula.text_of(node);
  return text.substr(0, static_cast<std::size_t>(node.mark - node.begin) - 1);
}

}  // namespace

SheetPrefix read_prefix(const Formula& formula, const Node& node) {
  std::string_view text = prefix_text(formula, node);
  if (text.front() == '\'') text = text.substr(1, text.size() - 2);
  const std::size_t colon =
      node.prefix == PrefixKind::kSheets ? text.find(':') : std::string_view::npos;
  std::string first = unquoted(text.substr(0, colon));
  if (colon == std::string_view::npos) return {first, first};
  return {std::move(first), unquoted(text.substr(colon + 1))};
}

void append_prefix(std::string& out, const SheetPrefix& prefix) {
  const std::string first = quote_sheet_name(prefix.first);
  if (equal_ignoring_case(prefix.first, prefix.last)) {
    out.append(first).append("!");
    return;
  }
  const std::string last = quote_sheet_name(prefix.last);
  if (first.front() != '\'' && last.front() != '\'') {
    out.append(first).append(":").append(last).append("!");
    return;
  }
  // One pair of apostrophes stands around both.
  const auto inner = [](const std::string& name) {
    return name.front() == '\'' ? name.substr(1, name.size() - 2) : name;
  };
  out.append("'").append(inner(first)).append(":").append(inner(last)).append("'!");
}

bool names_sheet(const Formula& formula, const Node& node, std::string_view sheet) {
  const std::string_view text = prefix_text(formula, node);
  if (text.front() != '\'') return equal_ignoring_case(text, sheet);
  return equal_ignoring_case(unquoted(text.substr(1, text.size() - 2)), sheet);
}

std::optional<std::string> renamed(const Formula& formula, std::string_view from,
                                   std::string_view to) {
  Edits edits;
  for (const Node& node : formula.nodes) {
    if (!names_own_sheets(node)) continue;
    SheetPrefix prefix = read_prefix(formula, node);
    const bool first = equal_ignoring_case(prefix.first, from);
    const bool last = equal_ignoring_case(prefix.last, from);
    if (first) prefix.first = to;
    if (last) prefix.last = to;
    if (first || last) edits.replace(node.begin, node.mark, print_prefix(prefix));
  }
  return edits.apply(formula.text);
}

std::optional<std::string> retargeted(const Formula& formula, std::string_view from,
                                      std::string_view to) {
  Edits edits;
  for (const Node& node : formula.nodes)
    if (node.prefix == PrefixKind::kSheet && names_sheet(formula, node, from))
      edits.replace(node.begin, node.mark, quote_sheet_name(to) + '!');
  return edits.apply(formula.text);
}

std::optional<std::string> without_sheet(const Formula& formula,
                                         std::span<const std::string_view> sheets,
                                         std::size_t index) {
  Edits edits;
  for (const Node& node : formula.nodes) {
    if (!names_own_sheets(node)) continue;
    SheetPrefix prefix = read_prefix(formula, node);
    const std::string_view deleted = sheets[index];
    if (!equal_ignoring_case(prefix.first, deleted) && !equal_ignoring_case(prefix.last, deleted))
      continue;
    if (node.prefix == PrefixKind::kSheets && shrink(prefix, sheets, index))
      edits.replace(node.begin, node.mark, print_prefix(prefix));
    else  // Sheet1!#REF! is lost already and becomes #REF!, not #REF!#REF!.
      edits.replace(node.begin, node.kind == NodeKind::kError ? node.end : node.mark, "#REF!");
  }
  return edits.apply(formula.text);
}

std::optional<std::string> unknown_sheet(const Formula& formula,
                                         const std::function<bool(std::string_view)>& known) {
  for (const Node& node : formula.nodes) {
    if (!names_own_sheets(node)) continue;
    std::string_view text = prefix_text(formula, node);
    if (text.front() == '\'') text = text.substr(1, text.size() - 2);
    if (node.prefix == PrefixKind::kSheet && text.find('\'') == std::string_view::npos) {
      if (!known(text)) return std::string(text);
      continue;
    }
    SheetPrefix prefix = read_prefix(formula, node);
    if (!known(prefix.first)) return std::move(prefix.first);
    if (node.prefix == PrefixKind::kSheets && !known(prefix.last)) return std::move(prefix.last);
  }
  return std::nullopt;
}

}  // namespace engine::formula
