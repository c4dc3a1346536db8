#include "engine/xlsx/row_reader.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <iterator>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "engine/formula/formula_text.h"
#include "engine/formula/reference.h"
#include "engine/package/file_error.h"
#include "engine/package/xml_scanner.h"
#include "engine/package/xml_text.h"
#include "engine/text/number_text.h"
#include "engine/xlsx/escapes.h"
#include "engine/xlsx/plain_cells.h"
#include "engine/xlsx/rows_ahead.h"
#include "engine/xlsx/stored_formula.h"
#include "engine/xlsx/string_item.h"

namespace engine::xlsx {

namespace {

using package::XmlAttribute;
using package::XmlAttributes;
using package::XmlScanner;
using Token = XmlScanner::Token;

bool is_true(std::string_view value) { return value == "1" || value == "true"; }

template <class T>
std::optional<T> parse_whole(std::string_view text) {
  T number = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && stop == end ? std::optional<T>(number) : std::nullopt;
}

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n";
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) + 1 - first);
}

// What the file says of one cell. The texts are reused from cell to cell.
struct CellText {
  std::optional<CellAddress> at;
  std::uint32_t style = 0;
  std::string kind;
  std::string value;
  bool has_value = false;
  bool has_formula = false;
  std::string formula;
  std::uint32_t shared = 0;  // as in CellRecord
  std::string inline_item;
  CellExtra extra;

  void clear() {
    at.reset();
    style = 0;
    kind.clear();
    value.clear();
    has_value = false;
    has_formula = false;
    formula.clear();
    shared = 0;
    inline_item.clear();
    extra = {};
  }
  bool has_extra() const {
    return extra.form != FormulaForm::kNormal || !extra.details.empty() ||
           !extra.formula_details.empty() || !extra.formula_spelling.empty() ||
           !extra.children.empty();
  }
};

void append_attribute(std::string& out, const XmlAttribute& attribute) {
  const char quote = attribute.value.find('"') == std::string_view::npos ? '"' : '\'';
  out.append(" ").append(attribute.name).append("=").append(1, quote);
  out.append(attribute.value).push_back(quote);
}

}  // namespace

// What the reader is made of.
class RowReader::Machine {
 public:
  Machine(XmlScanner& scanner, std::string_view part, const SheetContext& context,
          const RowFilter& filter, SheetContents& sheet, SheetPart& remains)
      : scanner_(scanner),
        part_(part),
        context_(context),
        grid_(context.workbook.limits.grid),
        filter_(filter),
        sheet_(sheet),
        remains_(remains),
        prefixed_(scanner.qualified_name() != scanner.name()) {}

  void read_rows(RowsAhead* ahead);
  int last_row() const { return element_row_; }

 private:
  std::uint64_t next_piece();
  void take_piece(RowPiece& piece);

  void read_row();
  std::uint32_t read_row_attributes();
  bool read_row_attribute(const XmlAttribute& attribute, RowProperties& properties, bool& any,
                          bool& custom_format, std::optional<std::uint32_t>& style);
  std::uint32_t keep(const RowProperties& properties);
  void keep_size(const RowProperties& properties);
  void keep_row_children();
  std::uint32_t number_of_details(const std::string& details);

  void begin_row(int row);
  void pass_plain_cells();
  void take_plain_cells();
  void skip_plain_cells();
  bool store_plain(const PlainCell& plain);
  bool make_plain_record(const PlainCell& plain, Cell& cell);
  void read_cell();
  void read_cell_attributes();
  void read_cell_children();
  void read_formula();
  void read_shared_formula(std::string_view index);
  void place_cell();
  Value value_of_cell();
  void keep_date_text();
  Value number_value();
  Value text_value();
  Value inline_value();
  void store(const Cell& cell);

  Value own_text(std::string_view text) {
    return Value::of_text(context_.first_text + context_.workbook.strings.add(text));
  }
  Value own_rich_text(std::string_view text, std::string content) {
    return Value::of_text(context_.first_text +
                          context_.workbook.strings.append_rich(text, std::move(content)));
  }
  [[noreturn]] void fail(std::string_view what) const;

  XmlScanner& scanner_;
  const std::string part_;
  const SheetContext& context_;
  const Grid grid_;
  const RowFilter& filter_;
  SheetContents& sheet_;
  SheetPart& remains_;
  const bool prefixed_;

  RowsAhead* ahead_ = nullptr;
  std::uint64_t next_piece_ = RowsAhead::kNone;  // where it begins in the part
  std::uint64_t known_up_to_ = 0;                // pieces that begin in front of this are known
  int element_row_ = -1;                         // of the row that is read
  int row_ = -1;  // of the cell that is read, which may lie elsewhere
  int column_ = -1;
  bool keeps_row_ = true;  // row_
  RowMark row_mark_;
  std::string children_;   // of the row, but its cells
  Row* target_ = nullptr;  // the row that cells are put into; null until it has one
  CellText cell_;
  std::string scratch_;
  std::unordered_map<std::uint32_t, std::uint32_t> shared_;  // by the number in the file
  std::map<std::string, std::uint32_t> details_;
};

void RowReader::Machine::read_rows(RowsAhead* ahead) {
  ahead_ = ahead;
  known_up_to_ = 0;
  for (;;) {
    if (next_piece() == scanner_.offset_ahead()) take_piece(*ahead_->take(next_piece_));
    if (scanner_.next() == Token::End) break;
    if (scanner_.token() != Token::Start) continue;
    if (scanner_.name() == "row") read_row();
    else scanner_.skip_element();
  }
  ahead_ = nullptr;
}

// Where in the bytes at hand rows begin that were read ahead. A block that is at hand has no new
// ones.
std::uint64_t RowReader::Machine::next_piece() {
  if (!ahead_) return RowsAhead::kNone;
  if (known_up_to_ != scanner_.received() || next_piece_ < scanner_.offset_ahead()) {
    known_up_to_ = scanner_.received();
    next_piece_ = ahead_->first_from(scanner_.offset_ahead());
  }
  return next_piece_;
}

// Passes over the rows of a piece and puts them in as if they had been read here. What is counted
// by number follows what is there.
void RowReader::Machine::take_piece(RowPiece& piece) {
  SheetContents& rows = piece.sheet;
  std::vector<Value> texts;
  for (std::uint32_t i = 0; i < piece.texts.strings.size(); ++i) {
    const std::string* rich = piece.texts.strings.rich(i);
    texts.push_back(rich ? own_rich_text(piece.texts.strings[i], *rich)
                         : own_text(piece.texts.strings[i]));
  }
  const auto number_text = [&](std::uint64_t& text) {
    if (text >= context_.shared_texts) text = texts[text - context_.shared_texts].bits;
  };
  const std::size_t records = sheet_.records().size();
  for (CellRecord record : rows.records()) {
    if (record.value.kind == ValueKind::kText) number_text(record.value.bits);
    record.formula = sheet_.keep_text(record.formula);
    if (record.extra != 0) record.extra = sheet_.keep_extra(std::move(*rows.extra(record)));
    sheet_.keep_record(record);
  }
  const std::size_t properties = sheet_.row_properties.size();
  for (RowProperties& row : rows.row_properties) {
    if (row.details != 0) row.details = number_of_details(rows.row_details[row.details - 1]);
    sheet_.row_properties.push_back(row);
  }
  const bool numbers_change = !texts.empty() || rows.records().size() != 0;
  for (const Row& row : rows.cells.rows()) {
    if (numbers_change) {
      for (Cell& cell : std::span(row.cells, row.count)) {
        if (cell.kind == CellKind::kText) number_text(cell.bits);
        if (cell.kind == CellKind::kRecord) cell.bits += records;
      }
    }
    Row& mine = sheet_.cells.copy_row(row);
    if (row.properties != 0)
      mine.properties = static_cast<std::uint32_t>(row.properties + properties);
  }
  remains_.text_cells += piece.remains.text_cells;
  element_row_ = piece.last_row;
  target_ = nullptr;
  scanner_.consume(piece.size);
}

void RowReader::Machine::read_row() {
  row_ = element_row_ + 1;
  const std::uint32_t properties = read_row_attributes();
  begin_row(row_);
  if (properties != 0 && keeps_row_) sheet_.cells.row_at(row_).properties = properties;
  pass_plain_cells();
  while (scanner_.next() != Token::End) {
    if (scanner_.token() != Token::Start) continue;
    if (scanner_.name() != "c") {
      scanner_.append_element(children_);
      continue;
    }
    read_cell();
    row_ = element_row_;
    keeps_row_ = filter_.keeps(row_);
    pass_plain_cells();
  }
  if (!children_.empty() && keeps_row_) keep_row_children();
}

void RowReader::Machine::begin_row(int row) {
  element_row_ = row_ = row;
  column_ = -1;
  keeps_row_ = filter_.keeps(row);
  row_mark_ = RowMark(row);
  children_.clear();
  target_ = keeps_row_ ? &sheet_.cells.row_at(row) : nullptr;
}

// Of a row that the file has twice, the later children count, as later attributes do.
void RowReader::Machine::keep_row_children() {
  RowProperties& properties = sheet_.properties_at(row_);
  std::string details;
  if (properties.details != 0) {
    details = sheet_.row_details[properties.details - 1];
    details.resize(std::min(details.find(kDetailsEnd), details.size()));
  }
  details.append(1, kDetailsEnd).append(children_);
  properties.details = number_of_details(details);
}

// The number of the row's properties, plus one; 0 when it has none worth an entry.
std::uint32_t RowReader::Machine::read_row_attributes() {
  RowProperties properties;
  bool any = false;
  bool custom_format = false;
  std::optional<std::uint32_t> style;
  scratch_.clear();
  XmlAttributes attributes = scanner_.attributes();
  for (XmlAttribute one; attributes.next(one);)
    if (!read_row_attribute(one, properties, any, custom_format, style))
      append_attribute(scratch_, one);
  if (custom_format) properties.style = context_.format(style.value_or(0));
  if (!filter_.keeps(row_)) {
    keep_size(properties);
    return 0;
  }
  if (!scratch_.empty()) properties.details = number_of_details(scratch_);
  return any || properties.style || properties.details != 0 ? keep(properties) : 0;
}

std::uint32_t RowReader::Machine::keep(const RowProperties& properties) {
  sheet_.row_properties.push_back(properties);
  return static_cast<std::uint32_t>(sheet_.row_properties.size());
}

// Of rows that a partial load leaves out: objects on the sheet lie over them.
void RowReader::Machine::keep_size(const RowProperties& properties) {
  if (filter_.others || (!properties.height && !properties.hidden)) return;
  RowProperties size;
  size.height = properties.height;
  size.custom_height = properties.custom_height;
  size.hidden = properties.hidden;
  sheet_.cells.row_at(row_).properties = keep(size);
}

bool RowReader::Machine::read_row_attribute(const XmlAttribute& attribute,
                                            RowProperties& properties, bool& any,
                                            bool& custom_format,
                                            std::optional<std::uint32_t>& style) {
  const auto [name, value] = attribute;
  if (name == "r") {
    const auto number = parse_whole<int>(trimmed(value));
    if (!number || *number < 1 || *number > grid_.rows)
      package::throw_damaged(
          part_, "row " + std::string(value.substr(0, 64)) + " of " + std::to_string(grid_.rows));
    row_ = *number - 1;
  } else if (name == "spans") {
    // Only a hint, and wrong as soon as a cell is added.
  } else if (name == "s") {
    style = parse_whole<std::uint32_t>(value);
  } else if (name == "customFormat") {
    custom_format = is_true(value);
  } else if (name == "ht") {
    properties.height = parse_number(value);
    any = true;
  } else if (name == "customHeight") {
    any |= properties.custom_height = is_true(value);
  } else if (name == "hidden") {
    any |= properties.hidden = is_true(value);
  } else if (name == "collapsed") {
    any |= properties.collapsed = is_true(value);
  } else if (name == "outlineLevel") {
    properties.outline_level =
        std::min<std::uint8_t>(parse_whole<std::uint8_t>(value).value_or(0), 7);
    any |= properties.outline_level != 0;
  } else {
    return false;
  }
  return true;
}

std::uint32_t RowReader::Machine::number_of_details(const std::string& details) {
  const auto [entry, is_new] = details_.try_emplace(details, 0);
  if (is_new) {
    sheet_.row_details.push_back(details);
    entry->second = static_cast<std::uint32_t>(sheet_.row_details.size());
  }
  return entry->second;
}

// Goes behind the cells that stand ahead in the form that nearly all have, and into the rows
// behind.
void RowReader::Machine::pass_plain_cells() {
  if (prefixed_) return;
  for (bool kept = !keeps_row_; kept != keeps_row_;) {
    kept = keeps_row_;
    if (kept) take_plain_cells();
    else skip_plain_cells();
  }
}

void RowReader::Machine::take_plain_cells() {
  const std::string_view ahead = scanner_.ahead();
  const char* at = ahead.data();
  const char* const end = at + ahead.size();
  PlainCell cell;
  // Behind the end of this row the rows of a piece begin, which are not to be read again.
  constexpr std::string_view kRowEnd = "</row>";
  const std::uint64_t to_piece = next_piece() - scanner_.offset_ahead() - kRowEnd.size();
  const char* const stop = to_piece < ahead.size() ? at + to_piece : nullptr;
  for (int row = 0; static_cast<std::size_t>(end - at) >= kMaxPlainCell && keeps_row_;) {
    const char* next = at;
    if (take_plain_cell(next, end, row_mark_, cell)) {
      if (!store_plain(cell)) break;
    } else if (children_.empty() && at != stop && take_plain_row(next, grid_.rows, row)) {
      begin_row(row);
    } else {
      break;
    }
    at = next;
  }
  scanner_.consume(static_cast<std::size_t>(at - ahead.data()));
}

// Passes over cells that are not kept. What matters all the same ends the pass in front of the cell
// that holds it: a cell that names another row, a formula that others refer to, a comment, what is
// not known.
void RowReader::Machine::skip_plain_cells() {
  constexpr Mark kRowEnd("</row>");
  const std::string_view ahead = scanner_.ahead();
  if (ahead.size() < kMaxPlainCell) return;
  const char* passed = ahead.data();  // up to here only whole cells and rows
  const char* const limit = passed + ahead.size() - kMaxPlainCell;
  int next_column = column_;  // of the cell behind `passed`
  int row = 0;
  for (const char* at = passed; !keeps_row_ && (at = find_notable_tag(at, limit)) < limit;) {
    const char* const tag = at;
    int column = 0;
    if (take_plain_address(at, row_mark_, column)) {
      passed = tag;
      column_ = std::exchange(next_column, column);
    } else if (take_plain_row(at, grid_.rows, row)) {
      passed = at;
      begin_row(row);
      next_column = column_;
    } else if (kRowEnd.take(at)) {
      passed = tag;
      break;
    } else if (!take_plain_content(at)) {
      break;
    }
  }
  scanner_.consume(static_cast<std::size_t>(passed - ahead.data()));
}

bool RowReader::Machine::store_plain(const PlainCell& plain) {
  if (plain.column >= grid_.columns) return false;
  Cell cell;
  cell.style = context_.format(plain.style);
  cell.column = static_cast<std::uint16_t>(plain.column);
  if (plain.has_formula) {
    if (!make_plain_record(plain, cell)) return false;
  } else if (plain.value == PlainCell::Value::kSharedText) {
    const bool known = plain.number >= 0 && plain.number < context_.shared_texts;
    if (!known || plain.number != static_cast<std::uint32_t>(plain.number)) return false;
    cell.bits = static_cast<std::uint32_t>(plain.number);
    cell.kind = CellKind::kText;
    ++remains_.text_cells;
  } else if (plain.value == PlainCell::Value::kNumber) {
    cell.number = plain.number;
    cell.kind = CellKind::kNumber;
  }
  column_ = plain.column;
  store(cell);
  return true;
}

// False, with nothing done, for a text that callers see in another form than the file's, or that is
// no text.
bool RowReader::Machine::make_plain_record(const PlainCell& plain, Cell& cell) {
  const auto holds = [](const PlainText& text, std::string_view meaning, std::string_view mark) {
    return (text.found.underscore || text.found.special) && meaning.find(mark) != meaning.npos;
  };
  const auto means = [](const PlainText& text, std::string& decoded, std::string_view& meaning) {
    meaning = text.raw;
    if (!text.found.special && !text.found.beyond_ascii) return true;
    decoded.clear();
    if (!package::decode_xml_text(text.raw, decoded)) return false;
    meaning = decoded;
    return true;
  };
  CellRecord record;
  std::string_view formula;
  if (plain.formula.is_shared) {
    const auto known = shared_.find(plain.formula.shared);
    if (known == shared_.end()) return false;
    record.shared = known->second;
  } else if (!means(plain.formula.text, cell_.formula, formula) || formula.empty() ||
             holds(plain.formula.text, formula, "_xl") || !is_stored_as_shown(formula)) {
    return false;
  }
  if (plain.value == PlainCell::Value::kNumber) {
    record.value = Value::of_number(plain.number);
  } else if (plain.value == PlainCell::Value::kOwnText) {
    std::string_view text;
    if (!means(plain.text, cell_.value, text) || holds(plain.text, text, "_x")) return false;
    record.value = own_text(text);
  }
  record.formula = sheet_.keep_text(formula);
  cell.bits = sheet_.keep_record(record);
  cell.kind = CellKind::kRecord;
  return true;
}

void RowReader::Machine::store(const Cell& cell) {
  if (!target_ || target_->number != static_cast<std::uint32_t>(row_))
    target_ = &sheet_.cells.row_at(row_);
  if (!sheet_.cells.append(*target_, cell)) sheet_.cells.at(*target_, cell.column) = cell;
}

void RowReader::Machine::read_cell() {
  cell_.clear();
  read_cell_attributes();
  place_cell();
  read_cell_children();
  if (!keeps_row_) return;
  const Value value = value_of_cell();
  const bool has_formula = !cell_.formula.empty() || cell_.shared != 0;
  if (!has_formula && !cell_.has_extra())
    return store(SheetContents::make_cell(column_, value, cell_.style));
  CellRecord record;
  record.value = value;
  record.formula = sheet_.keep_text(cell_.formula);
  record.shared = cell_.shared;
  if (cell_.has_extra()) record.extra = sheet_.keep_extra(std::move(cell_.extra));
  Cell cell;
  cell.bits = sheet_.keep_record(record);
  cell.style = cell_.style;
  cell.column = static_cast<std::uint16_t>(column_);
  cell.kind = CellKind::kRecord;
  store(cell);
}

void RowReader::Machine::read_cell_attributes() {
  XmlAttributes attributes = scanner_.attributes();
  for (XmlAttribute one; attributes.next(one);) {
    if (one.name == "r") {
      const auto address = formula::parse_cell(trimmed(one.value));
      if (!address)
        package::throw_damaged(
            part_, "cell address \"" + std::string(one.value.substr(0, 64)) + "\" is not one");
      cell_.at = CellAddress{address->row, address->column};
    } else if (one.name == "s") {
      cell_.style = context_.format(parse_whole<std::uint32_t>(one.value).value_or(0));
    } else if (one.name == "t") {
      cell_.kind = one.value;
    } else {
      append_attribute(cell_.extra.details, one);
    }
  }
}

// A cell without an address follows the one before; its own address counts, whatever row it is in.
void RowReader::Machine::place_cell() {
  if (!cell_.at) cell_.at = CellAddress{row_, column_ + 1};
  row_ = cell_.at->row;
  column_ = cell_.at->column;
  if (row_ >= grid_.rows || column_ >= grid_.columns) fail("is beyond the last cell");
  keeps_row_ = filter_.keeps(row_);
}

void RowReader::Machine::read_cell_children() {
  while (scanner_.next() != Token::End) {
    if (scanner_.token() != Token::Start) continue;
    if (scanner_.name() == "v") {
      scanner_.append_text(cell_.value);
      cell_.has_value = true;
    } else if (scanner_.name() == "f") {
      read_formula();
    } else if (scanner_.name() == "is") {
      scanner_.append_element(cell_.inline_item);
    } else {
      scanner_.append_element(cell_.extra.children);
    }
  }
}

void RowReader::Machine::read_formula() {
  std::string kind;
  std::string shared;
  cell_.has_formula = true;
  XmlAttributes attributes = scanner_.attributes();
  for (XmlAttribute one; attributes.next(one);) {
    if (one.name == "t") {
      kind = one.value;
    } else if (one.name == "si") {
      shared = one.value;
    } else if (one.name == "ref") {
      // Of a shared formula it is only a hint.
      const auto range = formula::parse_range(one.value, grid_);
      if (range) cell_.extra.range = *range;
    } else {
      append_attribute(cell_.extra.formula_details, one);
    }
  }
  scanner_.append_text(cell_.formula);
  if (kind == "array") cell_.extra.form = FormulaForm::kArray;
  else if (kind == "dataTable") cell_.extra.form = FormulaForm::kDataTable;
  else if (kind == "shared") return read_shared_formula(shared);
  if (keeps_row_) show_formula(cell_.formula, grid_, cell_.extra.formula_spelling);
  const auto& [row_first, row_last, column_first, column_last] = cell_.extra.range;
  const bool many = row_first != row_last || column_first != column_last;
  // One that begins outside of the rows that are read may fill cells of them all the same.
  const bool reaches_in =
      keeps_row_ || (!filter_.others && row_first <= filter_.last && row_last >= filter_.first);
  if (!many || cell_.extra.form == FormulaForm::kNormal || !reaches_in) return;
  sheet_.arrays.add(cell_.extra.range);
  if (keeps_row_ || cell_.extra.form != FormulaForm::kArray) return;
  std::string spelling;  // of the cell outside, which is not written from here
  show_formula(cell_.formula, grid_, spelling);
  CellRecord record;
  record.formula = sheet_.keep_text(cell_.formula);
  sheet_.outer_arrays[{row_first, column_first}] = sheet_.keep_record(record);
}

// The text stands at the first cell of the group; the others have it moved by their distance. A
// later text with the same number holds for what follows.
void RowReader::Machine::read_shared_formula(std::string_view index) {
  const auto number = parse_whole<std::uint32_t>(index);
  if (!number) return show_formula(cell_.formula, grid_, cell_.extra.formula_spelling);
  if (!cell_.formula.empty()) {
    SharedFormula& made = sheet_.shared_formulas.emplace_back();
    made.text = std::exchange(cell_.formula, {});
    made.at = *cell_.at;
    show_formula(made.text, grid_, made.spelling);
    shared_.insert_or_assign(*number, static_cast<std::uint32_t>(sheet_.shared_formulas.size()));
  }
  const auto known = shared_.find(*number);
  if (known == shared_.end()) fail("shared formula " + std::string(index) + " is missing");
  cell_.shared = known->second;
}

Value RowReader::Machine::value_of_cell() {
  const std::string_view kind = cell_.kind;
  if (!cell_.inline_item.empty()) return inline_value();
  if (!cell_.has_value) return {};
  if (kind.empty() || kind == "n") return number_value();
  if (kind == "s") return text_value();
  if (kind == "str" || kind == "inlineStr") {
    if (cell_.value.find("_x") != std::string::npos) return own_text(unescape(cell_.value));
    return own_text(cell_.value);
  }
  const std::string_view value = trimmed(cell_.value);
  if (value.empty()) return {};
  if (kind == "b") {
    if (is_true(value)) return Value::of_boolean(true);
    if (value == "0" || value == "false") return Value::of_boolean(false);
    fail("\"" + std::string(value.substr(0, 64)) + "\" is not a true/false value");
  }
  if (kind == "e") return Value::of_error(error_number(context_.workbook, value));
  if (kind != "d") fail("type \"" + std::string(kind.substr(0, 64)) + "\" is not known");
  const auto date = parse_iso_date(value, context_.dates);
  if (!date) fail("\"" + std::string(value.substr(0, 64)) + "\" is not a date");
  keep_date_text();
  return Value::of_number(*date);
}

// What shows that the number is a date is its notation alone, so the cell keeps that.
void RowReader::Machine::keep_date_text() {
  std::string text = "<v>";
  package::append_xml_text(text, cell_.value);
  cell_.extra.children.insert(0, text.append("</v>"));
  cell_.extra.details.insert(0, kDateKind);
}

Value RowReader::Machine::number_value() {
  constexpr std::string_view kNoNumbers[] = {"NaN", "INF", "-INF"};  // as XML Schema has them
  const std::string_view text = trimmed(cell_.value);
  if (text.empty()) return {};
  if (const auto number = parse_number(text)) return Value::of_number(*number);
  if (std::ranges::find(kNoNumbers, text) == std::end(kNoNumbers))
    fail("\"" + std::string(text.substr(0, 64)) + "\" is not a number");
  return Value::of_error(error_number(context_.workbook, "#NUM!"));
}

Value RowReader::Machine::text_value() {
  const std::string_view text = trimmed(cell_.value);
  if (text.empty()) return {};
  const auto index = parse_whole<std::uint32_t>(text);
  if (!index || *index >= context_.shared_texts)
    fail("text " + std::string(text.substr(0, 64)) + " of " +
         std::to_string(context_.shared_texts));
  ++remains_.text_cells;
  return Value::of_text(*index);
}

Value RowReader::Machine::inline_value() {
  std::string content;
  const StringItem item = parse_string_item(cell_.inline_item, part_, content);
  return item.rich ? own_rich_text(item.text, std::move(content)) : own_text(item.text);
}

void RowReader::Machine::fail(std::string_view what) const {
  package::throw_damaged(part_ + ", cell " + formula::print_cell(row_, column_), what);
}

RowReader::RowReader(XmlScanner& scanner, std::string_view part, const SheetContext& context,
                     const RowFilter& filter, SheetContents& sheet, SheetPart& remains)
    : machine_(std::make_unique<Machine>(scanner, part, context, filter, sheet, remains)) {}

RowReader::~RowReader() = default;

void RowReader::read(RowsAhead* ahead) { machine_->read_rows(ahead); }

int RowReader::last_row() const { return machine_->last_row(); }

}  // namespace engine::xlsx
