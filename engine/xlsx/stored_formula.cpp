#include "engine/xlsx/stored_formula.h"

#include <algorithm>
#include <array>
#include <vector>

#include "engine/formula/edits.h"
#include "engine/formula/formula.h"
#include "engine/formula/function_names.h"
#include "engine/formula/scan.h"
#include "engine/formula/sheet_name.h"
#include "engine/text/fold.h"

namespace engine::xlsx {

namespace {

using formula::Edits;
using formula::Formula;
using formula::is_blank;
using formula::is_word;
using formula::Node;
using formula::NodeKind;
using formula::ParseOptions;
using formula::PrefixKind;

constexpr std::string_view kFunctionPrefix = "_xlfn.";
constexpr std::string_view kWorksheetFunctionPrefix = "_xlfn._xlws.";
constexpr std::string_view kParameterPrefix = "_xlpm.";
constexpr std::string_view kSpillCall = "_xlfn.ANCHORARRAY(";
constexpr std::string_view kSingleCall = "_xlfn.SINGLE(";
constexpr std::string_view kThisRow = "[#This Row]";

// What the file puts before a function's name; empty for those that came with the format, and for
// unknown ones.
std::string_view prefix_of(std::string_view function) {
  switch (formula::function_kind(function)) {
    case formula::FunctionKind::kNewer:
      return kFunctionPrefix;
    case formula::FunctionKind::kNewerOfWorksheets:
      return kWorksheetFunctionPrefix;
    default:
      return {};
  }
}

bool is_at_sign(const Node& node) { return node.kind == NodeKind::kPrefix && node.value == '@'; }

// Whether the operand joins references by a comma, which would part arguments in the call.
bool takes_union(const std::vector<Node>& nodes, std::size_t at_sign) {
  const Node& operand = nodes[at_sign - 1];
  return operand.kind == NodeKind::kBinary &&
         operand.value == static_cast<std::uint16_t>(formula::Operator::kUnion);
}

bool may_be_parameter(const Node& node) {
  return node.prefix == PrefixKind::kNone &&
         (node.kind == NodeKind::kName || node.kind == NodeKind::kCall);
}

// The name of a call or of a leaf, without sheet and arguments.
std::string_view name_of(const Formula& formula, const Node& node) {
  const std::string_view text = std::string_view(formula.text).substr(node.mark);
  return text.substr(0, static_cast<std::size_t>(
                            std::find_if_not(text.begin(), text.end(), is_word) - text.begin()));
}

// The parameters that LET and LAMBDA declare, each valid in the text of its call.
class Parameters {
 public:
  explicit Parameters(const Formula& formula) : formula_(formula) {
    for (std::size_t i = 0; i < formula.nodes.size(); ++i) {
      if (formula.nodes[i].kind != NodeKind::kCall) continue;
      std::string_view name = name_of(formula, formula.nodes[i]);
      if (name.starts_with(kFunctionPrefix)) name.remove_prefix(kFunctionPrefix.size());
      if (formula::equals_upper(name, "LET")) declare(i, 2);
      if (formula::equals_upper(name, "LAMBDA")) declare(i, 1);
    }
  }

  bool declares(const Node& node) const {
    if (declared_.empty() || !may_be_parameter(node)) return false;
    const std::string_view name = name_of(formula_, node);
    return std::any_of(declared_.begin(), declared_.end(), [&](const Declared& parameter) {
      return parameter.begin <= node.begin && node.end <= parameter.end &&
             equal_ignoring_case(parameter.name, name);
    });
  }

 private:
  struct Declared {
    std::string_view name;
    std::uint16_t begin;
    std::uint16_t end;
  };

  // Every `step`-th argument of call `index` but the last one is a parameter.
  void declare(std::size_t index, int step) {
    const Node& call = formula_.nodes[index];
    std::size_t root = index - 1;  // of the last argument; they are met from the last to the first
    for (int argument = call.value - 1; argument >= 0; --argument) {
      const Node& node = formula_.nodes[root];
      if (argument != call.value - 1 && argument % step == 0 && node.kind == NodeKind::kName)
        declared_.push_back({name_of(formula_, node), call.begin, call.end});
      root = std::size_t{node.first} - 1;
    }
  }

  const Formula& formula_;
  std::vector<Declared> declared_;
};

// What the file puts before a name or call; nothing before what a caller wrote with its prefix.
std::string prefix_of(const Formula& formula, const Node& node, const Parameters& parameters) {
  const std::string_view name = name_of(formula, node);
  const bool is_parameter = parameters.declares(node) && !name.starts_with(kParameterPrefix);
  if (is_parameter) return std::string(kParameterPrefix);
  return node.kind == NodeKind::kCall ? std::string(prefix_of(name)) : std::string();
}

// Whether the word before the parenthesis at `i` is a function that the file holds with a prefix.
bool calls_newer_function(std::string_view text, std::size_t i) {
  while (i > 0 && is_blank(text[i - 1])) --i;
  std::size_t begin = i;
  while (begin > 0 && is_word(text[begin - 1])) --begin;
  return begin < i && !prefix_of(text.substr(begin, i - begin)).empty();
}

// What a text has to be looked at for: quotes, what calls, and the signs of newer grammar.
constexpr std::array<bool, 256> kTelling = [] {
  std::array<bool, 256> telling{};
  for (const unsigned char c : {'"', '\'', '@', '#', '[', '('}) telling[c] = true;
  return telling;
}();

// Table1[@Net] as Table1[[#This Row],[Net]]; the table's name is put before columns without one.
void write_structured(Edits& edits, const Formula& formula, const Node& node,
                      const FormulaPlace& place) {
  const std::string_view text = formula.text_of(node);
  const std::size_t bracket = text.find('[', static_cast<std::size_t>(node.mark - node.begin));
  if (bracket == 0) edits.insert(node.begin, std::string(place.table()));
  if (text[bracket + 1] != '@') return;
  const std::size_t at = node.begin + bracket + 1;
  std::string_view column = text.substr(bracket + 2, text.size() - bracket - 3);
  while (!column.empty() && is_blank(column.front())) column.remove_prefix(1);
  std::string inner(kThisRow);
  if (column.empty()) inner = inner.substr(1, inner.size() - 2);
  else if (column.front() == '[') inner.append(",").append(column);
  else inner.append(",[").append(column).append("]");
  edits.replace(at, node.end - 1U, std::move(inner));
}

// _xlfn.ANCHORARRAY(A1) and _xlfn.SINGLE(A1:A9) with nothing between the parentheses and what can
// stand beside the operator as it is.
bool reads_as_operator(const Formula& formula, const Node& call, std::string_view call_text) {
  if (call.value != 1 || !formula.text_of(call).starts_with(call_text)) return false;
  const Node& argument = *(&call - 1);  // the root of the last argument stands before the call
  return argument.begin == call.begin + call_text.size() && argument.end + 1 == call.end;
}

void read_call(Edits& edits, const Formula& formula, const Node& call) {
  const std::size_t last = call.end - 1U;
  if (reads_as_operator(formula, call, kSpillCall)) {
    edits.replace(call.begin, call.begin + kSpillCall.size(), {});
    edits.replace(last, call.end, "#");
    return;
  }
  if (reads_as_operator(formula, call, kSingleCall)) {
    edits.replace(call.begin, call.begin + kSingleCall.size(), "@");
    edits.replace(last, call.end, {});
    return;
  }
  const std::string_view name = name_of(formula, call);
  for (const std::string_view prefix : {kWorksheetFunctionPrefix, kFunctionPrefix})
    if (name.starts_with(prefix) && prefix_of(name.substr(prefix.size())) == prefix) {
      edits.replace(call.begin, call.begin + prefix.size(), {});
      return;
    }
}

}  // namespace

std::string_view FormulaPlace::table() const {
  for (const Table& table : tables)
    if (table.cells.contains(at.row, at.column)) return table.name;
  return {};
}

// Those call no newer function and use no sign of newer grammar.
bool is_stored_as_shown(std::string_view shown) {
  for (std::size_t i = 0; i < shown.size(); ++i) {
    const char c = shown[i];
    if (!kTelling[static_cast<unsigned char>(c)]) continue;
    if (c == '"' || c == '\'') i = std::min(shown.find(c, i + 1), shown.size());
    else if (c != '(' || calls_newer_function(shown, i)) return false;
  }
  return true;
}

std::optional<std::string> stored_formula(std::string_view shown, const Grid& grid,
                                          const FormulaPlace& place) {
  if (is_stored_as_shown(shown)) return std::nullopt;
  const std::optional<Formula> formula = formula::parse(shown, ParseOptions::of_book(grid));
  if (!formula) return std::nullopt;
  const auto& nodes = formula->nodes;
  const Parameters parameters(*formula);
  Edits edits;
  // What opens at one place opens from the outside in, and the outer nodes come last.
  for (std::size_t i = nodes.size(); i-- > 0;) {
    const Node& node = nodes[i];
    if (is_at_sign(node))
      edits.replace(node.begin, node.begin + 1U,
                    std::string(kSingleCall) + (takes_union(nodes, i) ? "(" : ""));
    else if (node.kind == NodeKind::kSpill) edits.insert(node.begin, std::string(kSpillCall));
    else if (may_be_parameter(node))
      edits.insert(node.begin, prefix_of(*formula, node, parameters));
  }
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    const Node& node = nodes[i];
    if (is_at_sign(node)) edits.insert(node.end, takes_union(nodes, i) ? "))" : ")");
    else if (node.kind == NodeKind::kSpill) edits.replace(node.end - 1U, node.end, ")");
    else if (node.kind == NodeKind::kStructured) write_structured(edits, *formula, node, place);
  }
  return edits.apply(shown);
}

std::optional<std::string> shown_formula(std::string_view stored, const Grid& grid) {
  if (stored.find("_xl") == std::string_view::npos) return std::nullopt;
  const std::optional<Formula> formula = formula::parse(stored, ParseOptions::of_book(grid));
  if (!formula) return std::nullopt;
  const Parameters parameters(*formula);
  Edits edits;
  for (const Node& node : formula->nodes) {
    if (!may_be_parameter(node)) continue;
    const std::string_view name = name_of(*formula, node);
    if (name.starts_with(kParameterPrefix) && parameters.declares(node))
      edits.replace(node.begin, node.begin + kParameterPrefix.size(), {});
    else if (node.kind == NodeKind::kCall && name.starts_with(kFunctionPrefix))
      read_call(edits, *formula, node);
  }
  // Without its prefixes a text may read differently: a parameter such as x1 is a cell. Then it
  // stays as the file has it.
  std::optional<std::string> read = edits.apply(stored);
  if (read && stored_formula(*read, grid) != stored) return std::nullopt;
  return read;
}

void show_formula(std::string& formula, const Grid& grid, std::string& spelling) {
  std::optional<std::string> shown = shown_formula(formula, grid);
  const std::string_view seen = shown ? *shown : formula;
  // With a table around, so that columns without one do not stay as they are.
  const Table any = {"_", {0, 0, 0, 0}};
  const auto again = stored_formula(seen, grid, {std::span(&any, 1), {0, 0}});
  if ((shown || again) && (again ? std::string_view(*again) : seen) != formula) spelling = formula;
  if (shown) formula = *std::move(shown);
}

}  // namespace engine::xlsx
