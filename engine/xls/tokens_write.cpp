#include "engine/xls/tokens_write.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "engine/formula/function_names.h"
#include "engine/formula/leaf.h"
#include "engine/package/little_endian.h"
#include "engine/text/number_text.h"
#include "engine/text/utf8.h"
#include "engine/xls/cell_errors.h"
#include "engine/xls/tokens.h"

namespace engine::xls {

namespace {

using formula::Node;
using formula::NodeKind;
using formula::Operator;
using formula::PrefixKind;
using formula::Reference;

constexpr std::size_t kMaxArguments = 30;
constexpr std::size_t kMaxColumns = 256;  // of an array constant

// By Operator.
constexpr std::uint8_t kOperatorTokens[] = {0x0B, 0x0E, 0x09, 0x0A, 0x0D, 0x0C, 0x08, 0x03,
                                            0x04, 0x05, 0x06, 0x07, 0x10, 0x0F, 0x11};

// Functions whose result changes though no operand does.
constexpr std::string_view kVolatile[] = {"CELL",   "INDIRECT", "INFO", "NOW",
                                          "OFFSET", "RAND",     "TODAY"};

// Functions that came after the binary format, though files of the next one hold them as they are,
// and what they take arguments as: a criterion is a value. The last two go on.
struct LaterFunction {
  std::string_view name;
  std::string_view classes = "RR";
};
constexpr LaterFunction kAfterwards[] = {
    {"AVERAGEIF", "RVR"}, {"AVERAGEIFS", "RRV"},  {"COUNTIFS", "RV"}, {"CUBEKPIMEMBER"},
    {"CUBEMEMBER"},       {"CUBEMEMBERPROPERTY"}, {"CUBESET"},        {"CUBERANKEDMEMBER"},
    {"CUBESETCOUNT"},     {"CUBEVALUE"},          {"IFERROR"},        {"SUMIFS", "RRV"}};

const LaterFunction* find_later(std::string_view name) {
  const auto found = std::ranges::find(kAfterwards, name, &LaterFunction::name);
  return found == std::end(kAfterwards) ? nullptr : found;
}

// Of the argument at a place.
char class_of_argument(const Function* function, const LaterFunction* later, std::size_t place) {
  if (function) return function->classes[std::min(place, function->classes.size() - 1)];
  if (!later) return 'R';
  const std::size_t count = later->classes.size();
  return later->classes[place < count ? place : count - 2 + (place - count) % 2];
}

bool makes_reference(const Node& node) {
  const auto op = static_cast<Operator>(node.value);
  return node.kind == NodeKind::kBinary &&
         (op == Operator::kUnion || op == Operator::kIntersection || op == Operator::kRange);
}

std::uint32_t column_field(const formula::CellReference& cell) {
  return static_cast<std::uint32_t>(cell.column) | (cell.column_absolute ? 0U : 0x4000U) |
         (cell.row_absolute ? 0U : 0x8000U);
}

// Makes relative parts distances, which wrap around the sheet's end.
void count_from(CellAddress cell, formula::CellReference& to) {
  if (!to.row_absolute) to.row = (to.row - cell.row) & 0xFFFF;
  if (!to.column_absolute) to.column = (to.column - cell.column) & 0xFF;
}

// A constant between its quotation marks.
std::string unquoted(std::string_view quoted) {
  std::string text;
  for (std::size_t i = 1; i + 1 < quoted.size(); ++i) {
    text += quoted[i];
    if (quoted[i] == quoted.front()) ++i;
  }
  return text;
}

}  // namespace

bool TokenWriter::fail(std::string_view what) {
  why_not_ = what;
  return false;
}

bool TokenWriter::write(std::string_view text, const FormulaContext& context) {
  tokens_.clear();
  behind_.clear();
  openings_.clear();
  jumps_.clear();
  intersections_.clear();
  if (!formula::parse(formula_, text, options_))
    return fail("the formula is not one that .xls files can hold");
  place_nodes(context);
  for (std::size_t node = 0; node < formula_.nodes.size(); ++node) {
    if (!write_openings(node, context) || !write_node(node, context)) return false;
    if (places_[node].part != Part::kOther) write_argument_end(node);
    if (tokens_.size() > kMaxTokens) return fail("the formula is too long for .xls files");
  }
  return true;
}

// Places are told from the root down, which is from the last node to the first.
void TokenWriter::place_nodes(const FormulaContext& context) {
  const std::size_t count = formula_.nodes.size();
  places_.assign(count, {});
  Place& root = places_.back();
  if (context.use == FormulaUse::kName) root.values = Values::kAll;
  const bool gives_cells =
      context.use == FormulaUse::kName || context.use == FormulaUse::kRuleCells;
  root.wanted = gives_cells                         ? Class::kReference
                : context.use == FormulaUse::kArray ? Class::kArray
                                                    : Class::kValue;
  bool is_volatile = false;
  for (std::size_t node = count; node-- > 0;) {
    place_operands(node);
    const Function* function = places_[node].function;
    is_volatile =
        is_volatile || (function && std::ranges::binary_search(kVolatile, function->name));
  }
  std::ranges::stable_sort(openings_, {}, &Opening::first);
  next_opening_ = 0;
  if (is_volatile) {
    put8(kAttribute);
    put8(kAlwaysCalculated);
    put16(0);
  }
}

void TokenWriter::place_operands(std::size_t node) {
  const Node& its = formula_.nodes[node];
  Place below = places_[node];
  below.part = Part::kOther;
  below.function = nullptr;
  switch (its.kind) {
    case NodeKind::kCall:
      return place_call(node);
    case NodeKind::kParentheses:
      places_[node - 1] = below;
      return;
    case NodeKind::kPrefix:
    case NodeKind::kPercent:
      if (below.wanted == Class::kReference || its.value == '@') below.wanted = Class::kValue;
      if (its.value == '@') below.values = Values::kSingle;
      below.in_reference = false;
      places_[node - 1] = below;
      return;
    case NodeKind::kBinary: {
      const bool joins = makes_reference(its);
      if (joins) below.wanted = Class::kReference;
      else if (below.wanted == Class::kReference) below.wanted = Class::kValue;
      below.in_reference = joins;
      if (joins && !places_[node].in_reference) openings_.push_back({its.first, node});
      if (its.value == static_cast<std::uint16_t>(Operator::kIntersection))
        intersections_.push_back(its.mark);
      places_[node - 1] = below;
      places_[formula_.nodes[node - 1].first - 1U] = below;
      return;
    }
    default:
      return;
  }
}

void TokenWriter::place_call(std::size_t node) {
  const Node& its = formula_.nodes[node];
  const std::size_t count = its.value;
  const std::string_view text = formula_.text_of(its).substr(its.mark - std::size_t{its.begin});
  const std::string_view name = text.substr(0, text.find_first_of("( \n"));
  const Function* function = find_function(name);
  if (function && (count < function->least || count > function->most)) function = nullptr;
  const LaterFunction* later = function ? nullptr : find_later(name);
  places_[node].function = function;
  if (!function) openings_.push_back({its.first, node});
  Place below;
  below.values = places_[node].values;
  below.parent = static_cast<std::uint16_t>(node);
  if (function && function->name == "IF") below.part = Part::kOfIf;
  if (function && function->name == "CHOOSE") below.part = Part::kOfChoose;
  std::size_t operand = node;
  for (std::size_t argument = count; argument-- > 0;) {
    --operand;
    Place& place = places_[operand];
    place = below;
    place.argument = static_cast<std::uint8_t>(argument);
    place_argument(place, class_of_argument(function, later, argument));
    operand = formula_.nodes[operand].first;
  }
}

// The place of an argument, which is the call's so far.
void TokenWriter::place_argument(Place& place, char its_class) {
  const bool all = place.values == Values::kAll;
  switch (its_class) {
    case 'V':
    case 'v':
    case 's':
      place.wanted = Class::kValue;
      if (its_class == 'v') place.values = Values::kAsTheyAre;
      if (its_class == 's') place.values = Values::kSingle;
      break;
    case 'A':
      place.wanted = Class::kArray;
      place.values = Values::kAll;
      break;
    default:
      place.wanted = Class::kReference;
      place.values =
          its_class == 'a' || (its_class == 'R' && all) ? Values::kAll : Values::kAsTheyAre;
      break;
  }
}

// Of those that begin with the same node the outer one stands in front.
bool TokenWriter::write_openings(std::size_t node, const FormulaContext& context) {
  for (; next_opening_ < openings_.size() && openings_[next_opening_].first == node;
       ++next_opening_) {
    const std::size_t opened = openings_[next_opening_].node;
    const Node& its = formula_.nodes[opened];
    if (its.kind == NodeKind::kBinary) {
      put_token(kMemoryCall, class_of(opened));
      jumps_.push_back({opened, tokens_.size(), 0});
      put16(0);
      continue;
    }
    const std::string_view text = formula_.text_of(its).substr(its.mark - std::size_t{its.begin});
    const std::string_view name = text.substr(0, text.find_first_of("( \n"));
    if (its.prefix == PrefixKind::kNone) {
      put_function(function_name(name), context);
      continue;
    }
    const auto found = foreign_name(opened, name);
    if (!found) return false;
    put_foreign_name(*found, Class::kReference);
  }
  return true;
}

// Of a function without a number: one that the book has a name for, a macro say, or an add-in's.
void TokenWriter::put_function(const std::string& name, const FormulaContext& context) {
  const auto number = links_.name_of_file(name, context.sheet);
  if (!number) return put_foreign_name(links_.function(name), Class::kReference);
  put_token(kNameToken, Class::kReference);
  put16(*number);
  put16(0);
}

// As files call a function that came later.
std::string TokenWriter::function_name(std::string_view name) {
  using formula::FunctionKind;
  const FunctionKind kind = formula::function_kind(name);
  if (kind == FunctionKind::kNewerOfWorksheets) return std::string("_xlfn._xlws.").append(name);
  if (kind == FunctionKind::kNewer || find_later(name)) return std::string("_xlfn.").append(name);
  return std::string(name);
}

bool TokenWriter::write_node(std::size_t node, const FormulaContext& context) {
  const Node& its = formula_.nodes[node];
  const std::string_view text = formula_.text_of(its);
  switch (its.kind) {
    case NodeKind::kBinary:
      write_binary(node);
      return true;
    case NodeKind::kPrefix:
      if (its.value == '@') return true;
      write_blanks_before(its.begin, kBlanks);
      put8(its.value == '-' ? kMinus : kPlus);
      return true;
    case NodeKind::kPercent:
      put8(kPercentSign);
      return true;
    case NodeKind::kParentheses:
      write_blanks_before(its.begin, kBlanksBeforeOpen);
      write_blanks_before(its.end - 1U, kBlanksBeforeClose);
      put8(kParentheses);
      return true;
    case NodeKind::kCall:
      return write_call(node);
    case NodeKind::kMissing:
      put8(kMissing);
      return true;
    case NodeKind::kSpill:
      return fail("the formula has a spill reference, which .xls files do not know");
    case NodeKind::kStructured:
      return fail("the formula refers to a table, which .xls files do not have");
    case NodeKind::kInvoke:
      return fail("the formula calls what a function gives, which .xls files do not know");
    default:
      break;
  }
  write_blanks_before(its.begin, kBlanks);
  switch (its.kind) {
    case NodeKind::kNumber:
      write_number(parse_number(text).value_or(0));
      return true;
    case NodeKind::kText:
      return write_text(text);
    case NodeKind::kBoolean:
      put8(kBoolean);
      put8(text == "TRUE" ? 1 : 0);
      return true;
    case NodeKind::kError:
      return write_error(node);
    case NodeKind::kArray:
      return write_array(node);
    case NodeKind::kReference:
      return write_reference(node, context);
    default:
      return write_name(node, context);
  }
}

TokenWriter::Class TokenWriter::class_of(std::size_t node) const {
  const Place& place = places_[node];
  if (place.wanted == Class::kValue && place.values == Values::kAll) return Class::kArray;
  return place.wanted;
}

// What a function gives, as its place takes it.
TokenWriter::Class TokenWriter::class_of_result(std::size_t node) const {
  const auto& [wanted, values, in_reference, part, argument, parent, function] = places_[node];
  const char result = function ? function->result : 'V';
  if (result == 'R' && wanted == Class::kReference && values != Values::kAll)
    return Class::kReference;
  const bool is_array =
      result == 'A' ? wanted == Class::kArray || values != Values::kSingle : values == Values::kAll;
  return is_array ? Class::kArray : Class::kValue;
}

void TokenWriter::put_token(std::uint32_t token, Class its) {
  put8(token + 0x20 * static_cast<std::uint32_t>(its));
}

void TokenWriter::patch16(std::size_t at, std::size_t value) {
  tokens_[at] = static_cast<char>(value);
  tokens_[at + 1] = static_cast<char>(value >> 8);
}

void TokenWriter::write_number(double value) {
  if (value >= 0 && value <= 0xFFFF && value == static_cast<std::uint16_t>(value)) {
    put8(kInteger);
    put16(static_cast<std::uint16_t>(value));
  } else {
    put8(kFloat);
    package::put64(tokens_, std::bit_cast<std::uint64_t>(value));
  }
}

bool TokenWriter::write_text(std::string_view quoted) {
  const std::string text = unquoted(quoted);
  const Characters characters(text);
  if (characters.count() > formula::kMaxTextConstant)
    return fail("the formula has a text of more than 255 characters");
  put8(kText);
  put8(static_cast<std::uint32_t>(characters.count()));
  put8(characters.wide() ? 1 : 0);
  tokens_ += characters.bytes();
  return true;
}

// An error behind the name of a sheet is a cell of it that is lost.
bool TokenWriter::write_error(std::size_t node) {
  const Node& its = formula_.nodes[node];
  const std::string_view text = formula_.text_of(its).substr(its.mark - std::size_t{its.begin});
  const auto number = cell_error_number(text);
  if (!number) return fail("the formula has an error that .xls files do not know");
  if (its.prefix == PrefixKind::kNone) {
    if (text == "#REF!") {
      put_token(kLostCell, class_of(node));
      package::put32(tokens_, 0);
      return true;
    }
    put8(kError);
    put8(*number);
    return true;
  }
  const auto entry = sheets_of(node);
  if (!entry) return false;
  put_token(kLostSheetCell, class_of(node));
  put16(*entry);
  package::put32(tokens_, 0);
  return true;
}

std::optional<std::uint16_t> TokenWriter::sheets_of(std::size_t node) {
  const Node& its = formula_.nodes[node];
  if (its.prefix == PrefixKind::kBroken) return links_.lost_sheet();
  const auto [first, last] = formula::read_prefix(formula_, its);
  const bool is_foreign = its.prefix == PrefixKind::kExternal;
  const auto entry = is_foreign ? links_.foreign_sheets(first) : links_.sheets(first, last);
  if (!entry)
    fail(is_foreign ? "the formula refers to another workbook that the file has no link to"
                    : "the formula refers to a sheet that the book does not have");
  return entry;
}

// Of a name behind a prefix.
std::optional<TokenWriter::ForeignName> TokenWriter::foreign_name(std::size_t node,
                                                                  std::string_view name) {
  const Node& its = formula_.nodes[node];
  const std::string prefix = formula::read_prefix(formula_, its).first;
  if (its.prefix == PrefixKind::kSheet) {
    const auto number = links_.name_of(name, prefix);
    if (number) return ForeignName{links_.whole_book(), *number};
  }
  const auto found =
      its.prefix == PrefixKind::kExternal ? links_.foreign_name(prefix, name) : std::nullopt;
  if (!found) fail("the formula refers to a name that the file does not have");
  return found;
}

void TokenWriter::put_foreign_name(const ForeignName& name, Class its) {
  put_token(kForeignName, its);
  put16(name.first);
  put16(name.second);
  put16(0);
}

bool TokenWriter::write_reference(std::size_t node, const FormulaContext& context) {
  const Node& its = formula_.nodes[node];
  const bool has_sheet = its.prefix != PrefixKind::kNone;
  std::uint16_t entry = 0;
  if (has_sheet) {
    const auto found = sheets_of(node);
    if (!found) return false;
    entry = *found;
  }
  Reference reference = formula_.references[its.value];
  auto& [shape, first, last] = reference;
  if (shape == Reference::Shape::kRows) last.column = options_.grid.columns - 1;
  if (shape == Reference::Shape::kColumns) last.row = options_.grid.rows - 1;
  if (shape == Reference::Shape::kRows) first.column_absolute = last.column_absolute = true;
  if (shape == Reference::Shape::kColumns) first.row_absolute = last.row_absolute = true;
  // The ends of a range come in order, whatever way they were typed.
  if (first.row > last.row) {
    std::swap(first.row, last.row);
    std::swap(first.row_absolute, last.row_absolute);
  }
  if (first.column > last.column) {
    std::swap(first.column, last.column);
    std::swap(first.column_absolute, last.column_absolute);
  }
  const bool is_cell = shape == Reference::Shape::kCell;
  const bool is_placed = context.use == FormulaUse::kCell || context.use == FormulaUse::kArray;
  const bool counts =
      !is_placed && !has_sheet &&
      !(first.row_absolute && first.column_absolute && last.row_absolute && last.column_absolute);
  if (counts) {
    count_from(context.cell, first);
    count_from(context.cell, last);
  }
  const std::uint32_t token = has_sheet ? (is_cell ? kSheetCell : kSheetArea)
                              : counts  ? (is_cell ? kRelativeCell : kRelativeArea)
                                        : (is_cell ? kCell : kArea);
  put_token(token, class_of(node));
  if (has_sheet) put16(entry);
  put16(static_cast<std::uint32_t>(first.row));
  if (!is_cell) put16(static_cast<std::uint32_t>(last.row));
  put16(column_field(first));
  if (!is_cell) put16(column_field(last));
  return true;
}

bool TokenWriter::write_name(std::size_t node, const FormulaContext& context) {
  const Node& its = formula_.nodes[node];
  const std::string_view name = formula_.text_of(its).substr(its.mark - std::size_t{its.begin});
  if (its.prefix == PrefixKind::kNone) {
    put_token(kNameToken, class_of(node));
    put16(links_.name(name, context.sheet));
    put16(0);
    return true;
  }
  // Of a sheet that is gone.
  if (its.prefix == PrefixKind::kBroken) {
    put8(kError);
    put8(*cell_error_number("#REF!"));
    return true;
  }
  const auto found =
      foreign_name(node, name.starts_with('\'') ? unquoted(name) : std::string(name));
  if (found) put_foreign_name(*found, class_of(node));
  return found.has_value();
}

// The constants, row by row, stand behind the tokens.
bool TokenWriter::write_array(std::size_t node) {
  enum class Kind : std::uint8_t { kNumber = 1, kString = 2, kTruth = 4, kErrorCode = 16 };
  const Place& place = places_[node];
  const bool single = place.wanted == Class::kValue && place.values == Values::kSingle;
  const Class its = single ? Class::kValue : Class::kArray;
  put_token(kArrayConstant, its);
  tokens_.append(7, '\0');
  const std::size_t header = behind_.size();
  behind_.append(3, '\0');
  std::size_t count = 0;
  std::size_t rows = 1;
  const auto put_fixed = [&](Kind kind, std::uint32_t value) {
    behind_ += static_cast<char>(kind);
    package::put64(behind_, value);
  };
  std::string_view rest = formula_.text_of(formula_.nodes[node]);
  rest = rest.substr(1, rest.size() - 2);
  constexpr std::string_view kBlankCharacters = " \t\r\n";
  while (!rest.empty()) {
    const char c = rest.front();
    std::size_t size = 1;
    if (c == ',' || c == ';') {
      rows += c == ';' ? 1 : 0;
    } else if (c == '"') {
      while (size < rest.size() && (rest[size] != '"' || rest.substr(size + 1, 1) == "\""))
        size += rest[size] == '"' ? 2 : 1;
      ++size;
      ++count;
      const std::string text = unquoted(rest.substr(0, size));
      const Characters characters(text);
      if (characters.count() > formula::kMaxTextConstant)
        return fail("the formula has a text of more than 255 characters");
      behind_ += static_cast<char>(Kind::kString);
      package::put16(behind_, characters.count());
      behind_ += static_cast<char>(characters.wide() ? 1 : 0);
      behind_ += characters.bytes();
    } else if (kBlankCharacters.find(c) == std::string_view::npos) {
      size = std::min(rest.find_first_of(",; \t\r\n"), rest.size());
      ++count;
      const std::string_view element = rest.substr(0, size);
      if (element == "TRUE" || element == "FALSE") {
        put_fixed(Kind::kTruth, element == "TRUE" ? 1 : 0);
      } else if (c == '#') {
        const auto error = cell_error_number(element);
        if (!error) return fail("the formula has an error that .xls files do not know");
        put_fixed(Kind::kErrorCode, *error);
      } else {
        behind_ += static_cast<char>(Kind::kNumber);
        package::put64(behind_, std::bit_cast<std::uint64_t>(parse_number(element).value_or(0)));
      }
    }
    rest.remove_prefix(size);
  }
  const std::size_t columns = count / rows;
  if (columns > kMaxColumns) return fail("the formula has an array of more than 256 columns");
  behind_[header] = static_cast<char>(columns - 1);
  behind_[header + 1] = static_cast<char>(rows - 1);
  behind_[header + 2] = static_cast<char>((rows - 1) >> 8);
  return true;
}

void TokenWriter::write_binary(std::size_t node) {
  const Node& its = formula_.nodes[node];
  if (its.value != static_cast<std::uint16_t>(Operator::kIntersection))
    write_blanks_before(its.mark, kBlanks);
  put8(kOperatorTokens[its.value]);
  if (!makes_reference(its) || places_[node].in_reference) return;
  const std::size_t at = jumps_.back().at;
  jumps_.pop_back();
  patch16(at, tokens_.size() - at - 2);
}

bool TokenWriter::write_call(std::size_t node) {
  const Node& its = formula_.nodes[node];
  const Place& place = places_[node];
  if (its.value > kMaxArguments) return fail("the formula has a call of more than 30 arguments");
  write_blanks_before(its.begin, kBlanks);
  write_blanks_before(its.end - 1U, kBlanksBeforeClose);
  const Function* const function = place.function;
  const std::size_t begin = tokens_.size();
  const Class result = class_of_result(node);
  if (!function) {
    put_token(kVariableCall, result);
    put8(its.value + 1U);
    put16(kUserFunction);
  } else if (function->name == "SUM" && its.value == 1) {
    put8(kAttribute);
    put8(kSum);
    put16(0);
  } else if (function->least == function->most) {
    put_token(kCall, result);
    put16(function->number);
  } else {
    put_token(kVariableCall, result);
    put8(its.value);
    put16(function->number);
  }
  settle_jumps(node, begin);
  return true;
}

// Behind an argument of IF: where the condition is false the calculation goes on behind the next
// one, and behind that it leaves the call. CHOOSE has a table of its choices instead.
void TokenWriter::write_argument_end(std::size_t node) {
  const Place& place = places_[node];
  const std::size_t count = formula_.nodes[place.parent].value;
  const bool decides = place.argument == 0;
  put8(kAttribute);
  put8(!decides ? kSkip : place.part == Part::kOfIf ? kIf : kChoose);
  if (decides && place.part == Part::kOfChoose) put16(static_cast<std::uint32_t>(count - 1));
  jumps_.push_back({place.parent, tokens_.size(), place.argument});
  tokens_.append(decides && place.part == Part::kOfChoose ? 2 * count : 2, '\0');
}

// The distances that the call's jumps go. `function_at` is where the tokens of the call begin.
void TokenWriter::settle_jumps(std::size_t node, std::size_t function_at) {
  const std::size_t count = formula_.nodes[node].value;
  while (!jumps_.empty() && jumps_.back().node == node) {
    const auto [parent, at, argument] = jumps_.back();
    jumps_.pop_back();
    if (argument != 0) {
      patch16(at, tokens_.size() - at - 3);
      starts_[argument] = at + 2;
      continue;
    }
    if (places_[node].function->name == "IF") {
      patch16(at, starts_[1] - at - 2);
      continue;
    }
    starts_[0] = at + 2 * count;
    for (std::size_t i = 0; i + 1 < count; ++i) patch16(at + 2 * i, starts_[i] - at);
    patch16(at + 2 * (count - 1), function_at - at);
  }
}

// Blanks and line ends in front of a place in the text.
void TokenWriter::write_blanks_before(std::size_t end, std::uint32_t kind) {
  std::size_t begin = end;
  const std::string& text = formula_.text;
  while (begin > 0 && (text[begin - 1] == ' ' || text[begin - 1] == '\n')) --begin;
  if (begin == end) return;
  if (std::ranges::find(intersections_, end) != intersections_.end()) ++begin;
  for (std::size_t at = begin; at < end;) {
    const std::size_t next = std::min(text.find_first_not_of(text[at], at), end);
    const std::size_t count = std::min<std::size_t>(next - at, 0xFF);
    put8(kAttribute);
    put8(kSpace);
    put8(kind + (text[at] == '\n' ? 1 : 0));
    put8(static_cast<std::uint32_t>(count));
    at = next;
  }
}

}  // namespace engine::xls
