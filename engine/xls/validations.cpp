#include "engine/xls/validations.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "engine/formula/formula_text.h"
#include "engine/package/output.h"
#include "engine/xls/tokens.h"
#include "engine/xls/tokens_read.h"
#include "engine/xls/tokens_write.h"

namespace engine::xls {

namespace {

// The kinds of rules and of faults have the model's numbers.
constexpr unsigned kTypeBits = 0x0F;
constexpr unsigned kStyleShift = 4;
constexpr unsigned kStyleBits = 0x07;
constexpr unsigned kEntriesInText = 0x80;
constexpr unsigned kAllowBlank = 0x100;
constexpr unsigned kHideDropDown = 0x200;
constexpr unsigned kInputModeShift = 10;  // of a person who types in a script of many characters
constexpr unsigned kInputModeBits = 0xFF;
constexpr unsigned kShowPrompt = 0x40000;
constexpr unsigned kShowError = 0x80000;
constexpr unsigned kComparisonShift = 20;
constexpr unsigned kComparisonBits = 0x0F;

constexpr std::size_t kMaxRanges = 432;  // of a record

// By the format's numbers.
constexpr ValidationOperator kComparisons[] = {
    ValidationOperator::kBetween,        ValidationOperator::kNotBetween,
    ValidationOperator::kEqual,          ValidationOperator::kNotEqual,
    ValidationOperator::kGreater,        ValidationOperator::kLess,
    ValidationOperator::kGreaterOrEqual, ValidationOperator::kLessOrEqual,
};

// A zero stands for no text.
constexpr std::string_view kNoText{"\0", 1};

std::string take_text(Fields& in) {
  std::string text = in.take_long_text();
  return text == kNoText ? std::string() : text;
}

std::string_view take_tokens(Fields& in) {
  const std::size_t size = in.take16();
  in.skip(2);
  return in.take(size);
}

std::string list_of_entries(std::string_view tokens) {
  Fields in(tokens.substr(1));
  std::string entries = "\"";
  for (const char c : in.take_short_text()) {
    if (c == '"') entries += c;
    entries += c == '\0' ? ',' : c;
  }
  return entries += '"';
}

// False for a rule whose formula no text says.
bool read_formula(std::string_view tokens, bool entries_in_text, CellAddress corner,
                  const SheetReading& reading, std::string& formula) {
  if (tokens.empty()) return true;
  if (entries_in_text && tokens.front() == static_cast<char>(kText)) {
    formula = list_of_entries(tokens);
    return true;
  }
  TokenReader reader(reading.context.globals.links, reading.context.workbook.limits.grid);
  if (!reader.read(tokens, {}, {&reading.context.sheet, corner})) return false;
  formula = reader.text();
  return true;
}

class RuleWriter {
 public:
  RuleWriter(RecordWriter& out, const BookWriting& book, const Sheet& sheet)
      : out_(out), grid_(book.book.limits.grid), sheet_(sheet), tokens_(book.links, grid_) {}

  // Some of the cells of a rule, whose formulas are restated for the corner of these.
  void write(const Validation& rule, const CellRanges& cells) {
    const CellAddress corner = corner_of(cells);
    bool entries_in_text = false;
    std::string formulas[2];
    for (std::size_t i = 0; i < 2; ++i)
      formulas[i] = tokens_of(rule, rule.formulas[i], corner, entries_in_text);
    out_.begin(kValidation);
    out_.put32(flags_of(rule) | (entries_in_text ? kEntriesInText : 0));
    for (const std::string* text :
         {&rule.prompt_title, &rule.error_title, &rule.prompt, &rule.error})
      out_.put_long_text(Characters(text->empty() ? kNoText : std::string_view(*text)));
    for (const std::string& tokens : formulas) {
      out_.put16(static_cast<std::uint32_t>(tokens.size()));
      out_.put16(0);
      out_.put(tokens);
    }
    out_.put16(static_cast<std::uint32_t>(cells.size()));
    for (const CellRange& range : cells) put_range(out_, range);
    out_.end();
  }

 private:
  static unsigned flags_of(const Validation& rule) {
    const auto comparison = static_cast<unsigned>(std::ranges::find(kComparisons, rule.comparison) -
                                                  std::begin(kComparisons));
    return static_cast<unsigned>(rule.type) |
           static_cast<unsigned>(rule.error_style) << kStyleShift |
           (rule.allow_blank ? kAllowBlank : 0) | (rule.hide_drop_down ? kHideDropDown : 0) |
           (rule.details & kInputModeBits) << kInputModeShift |
           (rule.show_prompt ? kShowPrompt : 0) | (rule.show_error ? kShowError : 0) |
           comparison << kComparisonShift;
  }

  std::string tokens_of(const Validation& rule, const std::string& formula, CellAddress corner,
                        bool& entries_in_text) {
    if (formula.empty()) return {};
    const bool is_list = rule.type == ValidationType::kList;
    if (is_list && formula.starts_with('"')) {
      if (auto entries = entries_of_list(formula)) {
        entries_in_text = true;
        return *std::move(entries);
      }
    }
    const auto moved = formula::shift_text(formula, corner.row - rule.corner.row,
                                           corner.column - rule.corner.column, grid_);
    const FormulaUse use = is_list ? FormulaUse::kRuleCells : FormulaUse::kRule;
    if (!tokens_.write(moved.value_or(formula), {&sheet_, use, corner}))
      fail(corner, tokens_.why_not());
    if (!tokens_.behind().empty())
      fail(corner, "the formula has an array, which .xls files do not have there");
    return tokens_.tokens();
  }

  // The token of a list that stands in the rule; nothing when the formula only begins with a text.
  // Blanks in front of an entry are not its own.
  std::optional<std::string> entries_of_list(std::string_view formula) {
    std::string entries;
    for (std::size_t i = 1; i < formula.size(); ++i) {
      const char c = formula[i];
      if (c == '"') {
        if (i + 1 == formula.size()) break;
        if (formula[++i] != '"') return std::nullopt;
      }
      const bool at_begin = entries.empty() || entries.back() == '\0';
      if (c != ' ' || !at_begin) entries += c == ',' ? '\0' : c;
    }
    const Characters characters(entries);
    if (characters.count() > formula::kMaxTextConstant) return std::nullopt;
    std::string token{static_cast<char>(kText), static_cast<char>(characters.count()),
                      static_cast<char>(characters.wide() ? 1 : 0)};
    return token.append(characters.bytes());
  }

  [[noreturn]] void fail(CellAddress cell, std::string_view what) const {
    throw_unwritable(sheet_, formula::print_cell(cell.row, cell.column),
                     "data validation: " + std::string(what));
  }

  RecordWriter& out_;
  const Grid grid_;
  const Sheet& sheet_;
  TokenWriter tokens_;
};

// As many ranges at a time as a record may have.
std::vector<CellRanges> parts_of(const CellRanges& cells) {
  std::vector<CellRanges> parts;
  for (const CellRange& range : cells) {
    if (parts.empty() || parts.back().size() == kMaxRanges) parts.emplace_back();
    parts.back().insert(parts.back().end(), range);
  }
  return parts;
}

}  // namespace

void read_validation(Fields& in, SheetReading& to) {
  Validation made;
  const unsigned flags = in.take32();
  const unsigned type = flags & kTypeBits;
  const unsigned style = flags >> kStyleShift & kStyleBits;
  const unsigned comparison = flags >> kComparisonShift & kComparisonBits;
  if (type > static_cast<unsigned>(ValidationType::kCustom) ||
      style > static_cast<unsigned>(ValidationErrorStyle::kInformation) ||
      comparison >= std::size(kComparisons))
    return;
  made.type = static_cast<ValidationType>(type);
  made.error_style = static_cast<ValidationErrorStyle>(style);
  made.comparison = kComparisons[comparison];
  made.allow_blank = (flags & kAllowBlank) != 0;
  made.hide_drop_down = (flags & kHideDropDown) != 0;
  made.show_prompt = (flags & kShowPrompt) != 0;
  made.show_error = (flags & kShowError) != 0;
  made.details = flags >> kInputModeShift & kInputModeBits;
  for (std::string* text : {&made.prompt_title, &made.error_title, &made.prompt, &made.error})
    *text = take_text(in);
  const std::string_view tokens[] = {take_tokens(in), take_tokens(in)};
  const Grid& grid = to.context.workbook.limits.grid;
  for (std::size_t left = in.take16(); left > 0 && in.ok(); --left)
    if (const auto range = take_range(in, grid)) made.cells.insert(*range);
  if (!in.ok() || made.cells.empty()) return;
  const bool entries_in_text = (flags & kEntriesInText) != 0;
  for (std::size_t i = 0; i < 2; ++i)
    if (!read_formula(tokens[i], entries_in_text, corner_of(made.cells), to, made.formulas[i]))
      return;
  to.sheet.validations.add(std::move(made));
}

void write_validations(RecordWriter& out, const BookWriting& book, const Sheet& sheet) {
  constexpr std::uint32_t kNoObject = 0xFFFFFFFF;
  std::vector<std::pair<const Validation*, CellRanges>> records;
  for (const Validation& rule : sheet.contents().validations.slots())
    for (CellRanges& part : parts_of(rule.cells)) records.emplace_back(&rule, std::move(part));
  if (records.empty()) return;
  const std::size_t limit = book.book.limits.validations;
  if (records.size() > limit) throw package::LimitError("validations", limit);
  out.begin(kValidations);
  out.put16(0);
  out.put32(0);
  out.put32(0);
  out.put32(kNoObject);
  out.put32(static_cast<std::uint32_t>(records.size()));
  out.end();
  RuleWriter writer(out, book, sheet);
  for (const auto& [rule, cells] : records) writer.write(*rule, cells);
}

}  // namespace engine::xls
