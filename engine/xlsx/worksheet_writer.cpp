#include "engine/xlsx/worksheet_writer.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <map>
#include <utility>

#include "engine/formula/reference.h"
#include "engine/package/xml_text.h"
#include "engine/package/xml_tree.h"
#include "engine/text/number_text.h"
#include "engine/xlsx/attributes.h"
#include "engine/xlsx/escapes.h"
#include "engine/xlsx/stored_formula.h"
#include "engine/xlsx/string_item.h"

namespace engine::xlsx {

namespace {

using package::Family;

constexpr std::size_t kCellsPerBlock = 10000;
// The first blocks are shorter, so that two threads share a small sheet evenly.
constexpr std::size_t kShortBlocks = 4;
constexpr std::size_t kCellsPerShortBlock = kCellsPerBlock / 4;

// A short text that is copied as a whole, whatever its length.
struct Piece {
  std::array<char, 15> text{};
  std::uint8_t size = 0;
};

// A row's number, from 0 and as the file writes it.
struct RowNumber {
  int number = 0;
  Piece text;
};

// Texts up to this length are made in the buffer itself.
constexpr std::size_t kShortText = 256;

// Collects text in a buffer of its own and hands it on when that is nearly full.
class TextBuffer {
 public:
  explicit TextBuffer(std::string& out) : out_(out) {}
  TextBuffer(const TextBuffer&) = delete;
  TextBuffer& operator=(const TextBuffer&) = delete;
  ~TextBuffer() = default;

  // Where to write at most kRoom bytes; end() tells how far they went.
  static constexpr std::size_t kRoom = 512 + kShortText * package::kMaxXmlEscape;
  char* begin() {
    if (at_ + kRoom > buffer_.data() + buffer_.size()) flush();
    return at_;
  }
  void end(char* at) { at_ = at; }

  // Goes on behind `at` with a text of any length that `make` appends; returns where to write then.
  template <class Make>
  char* append_made(char* at, const Make& make) {
    end(at);
    flush();
    make(out_);
    return begin();
  }
  char* append(char* at, std::string_view text) {
    return append_made(at, [text](std::string& out) { out.append(text); });
  }

  // The same with the content of an element. Most texts are short and copied as they are.
  char* append_formula_text(char* at, std::string_view text) {
    if (text.size() > kShortText)
      return append_made(at, [text](std::string& out) { package::append_xml_text(out, text); });
    end(is_plain_text(text) ? copy(at, text) : package::write_xml_text(at, text));
    return begin();
  }
  char* append_value_text(char* at, std::string_view text) {
    if (text.size() > kShortText || !is_plain_text(text))
      return append_made(at, [text](std::string& out) { append_text(out, text); });
    end(copy(at, text));
    return begin();
  }
  void flush() {
    out_.append(buffer_.data(), static_cast<std::size_t>(at_ - buffer_.data()));
    at_ = buffer_.data();
  }

 private:
  static char* copy(char* at, std::string_view text) {
    return std::copy(text.begin(), text.end(), at);  // an empty text may lie nowhere
  }

  std::string& out_;
  std::array<char, 16 * 1024> buffer_;  // not cleared: small sheets would pay for it
  char* at_ = buffer_.data();
};

template <std::size_t size>
char* put(char* at, const char (&text)[size]) {
  std::memcpy(at, text, size - 1);
  return at + size - 1;
}

char* put(char* at, const Piece& piece) {
  std::memcpy(at, piece.text.data(), piece.text.size());
  return at + piece.size;
}

char* put_count(char* at, std::uint32_t number) {
  return write_integer(at, static_cast<long long>(number));
}

char* put_text_value(char* at, std::uint32_t number) {
  at = put(at, " t=\"s\"><v>");
  return put(put_count(at, number), "</v></c>");
}

// The text of the file for a formula, which keeps its own spelling until the formula changes.
void append_formula(std::string& out, std::string_view text, std::string_view spelling,
                    const Grid& grid, const FormulaPlace& place) {
  if (!spelling.empty()) {
    const auto shown = shown_formula(spelling, grid);
    if ((shown ? std::string_view(*shown) : spelling) == text)
      return package::append_xml_text(out, spelling);
  }
  const auto stored = stored_formula(text, grid, place);
  package::append_xml_text(out, stored ? std::string_view(*stored) : text);
}

void append_range_attribute(std::string& out, const CellRange& range) {
  out.append(" ref=\"");
  formula::append_range(out, range);
  out.push_back('"');
}

// Rows of one store with what their cells refer to. Texts beyond the shared ones of the file are
// counted from `first_text` in the pool.
struct RowRun {
  CellStore::Rows rows;
  const SheetContents* sheet = nullptr;
  const Workbook* workbook = nullptr;
  std::uint32_t first_text = 0;
  std::size_t first_shared = 0;  // number in the file of its shared formula 1
};

// The cells of a shared formula: the first that is written, and the range around all.
struct SharedCells {
  CellAddress first{-1, 0};
  CellRange range;

  void enter(int row, int column) {
    if (first.row < 0) {
      first = {row, column};
      range = {row, row, column, column};
    }
    range.row_last = std::max(range.row_last, row);
    range.column_first = std::min(range.column_first, column);
    range.column_last = std::max(range.column_last, column);
  }
};

struct Block {
  std::size_t run = 0;
  CellStore::Rows rows;
  std::size_t cells = 0;
};

// Bytes that a cell's text mostly needs at most.
constexpr std::size_t kRoomPerCell = 40;

class WorksheetText {
 public:
  WorksheetText(const package::XmlTree& tree, const Sheet& sheet, const OutsideRows* outside,
                const WriteContext& context);

  std::size_t block_count() const { return blocks_.size(); }
  void make(std::size_t block, std::string& out) const;

 private:
  void add_run(CellStore::Rows rows, const Sheet& sheet, const Workbook& workbook,
               std::uint32_t first_text);
  void cut_into_blocks();
  void make_pieces();
  void find_shared();
  void render_ends(const package::XmlTree& tree);

  void write_row(TextBuffer& out, const RowRun& run, const Row& row) const;
  char* write_properties(char* at, const RowProperties& properties) const;
  void write_cell(TextBuffer& out, const RowRun& run, const RowNumber& row, const Cell& cell) const;
  void write_record(TextBuffer& out, const RowRun& run, const RowNumber& row,
                    const Cell& cell) const;
  char* write_formula(TextBuffer& out, char* at, const RowRun& run, const CellRecord& record,
                      CellAddress place) const;
  char* write_value(TextBuffer& out, char* at, const RowRun& run, const Value& value) const;
  char* put_reference(char* at, const RowNumber& row, const Cell& cell) const;
  bool is_shared(const RowRun& run, std::uint32_t text) const {
    return run.workbook == &context_.workbook || text < run.first_text;
  }
  std::string_view text_of(const RowRun& run, std::uint32_t text) const {
    return is_shared(run, text) ? context_.workbook.strings[text]
                                : run.workbook->strings[text - run.first_text];
  }

  // A text of the cell's own that has runs of its own look, as an item; else null.
  const std::string* own_item(const RowRun& run, std::uint32_t text) const {
    return is_shared(run, text) ? nullptr : run.workbook->strings.rich(text - run.first_text);
  }

  const WriteContext context_;
  std::vector<RowRun> runs_;
  std::vector<Block> blocks_;
  std::vector<Piece> columns_;       // letters
  std::vector<Piece> styles_;        // ` s="12"`, empty for format 0
  std::vector<SharedCells> shared_;  // by number in the file
  std::string head_;
  std::string tail_;
};

WorksheetText::WorksheetText(const package::XmlTree& tree, const Sheet& sheet,
                             const OutsideRows* outside, const WriteContext& context)
    : context_(context) {
  const std::uint32_t first_text = context.workbook.strings.count_from_file();
  const CellStore& rows = sheet.contents().cells;
  if (outside) {
    const auto first = static_cast<std::uint32_t>(sheet.loaded_rows.row_first);
    const auto end = static_cast<std::uint32_t>(sheet.loaded_rows.row_last) + 1;
    const CellStore& others = outside->rows.contents().cells;
    add_run(others.rows(0, first), outside->rows, outside->texts, first_text);
    add_run(rows.rows(first, end), sheet, context.workbook, 0);
    add_run(others.rows(end), outside->rows, outside->texts, first_text);
  } else {
    add_run(rows.rows(), sheet, context.workbook, 0);
  }
  cut_into_blocks();
  make_pieces();
  find_shared();
  render_ends(tree);
}

void WorksheetText::add_run(CellStore::Rows rows, const Sheet& sheet, const Workbook& workbook,
                            std::uint32_t first_text) {
  runs_.push_back({rows, &sheet.contents(), &workbook, first_text});
}

void WorksheetText::cut_into_blocks() {
  for (std::size_t run = 0; run < runs_.size(); ++run) {
    CellStore::RowIterator first = runs_[run].rows.begin();
    const CellStore::RowIterator end = runs_[run].rows.end();
    std::size_t cells = 0;
    for (CellStore::RowIterator row = first; row != end;) {
      cells += row->count + std::size_t{1};
      ++row;
      const bool is_short = blocks_.size() < kShortBlocks;
      if (cells < (is_short ? kCellsPerShortBlock : kCellsPerBlock) && row != end) continue;
      blocks_.push_back({run, {first, row}, cells});
      first = row;
      cells = 0;
    }
  }
  if (blocks_.empty()) blocks_.push_back({});
}

void WorksheetText::make_pieces() {
  int last_column = -1;
  std::uint32_t last_style = 0;
  for (const RowRun& run : runs_) {
    for (const Row& row : run.rows) {
      if (row.count == 0) continue;
      last_column = std::max<int>(last_column, row.cells[row.count - 1].column);
      for (const Cell& cell : row.span()) last_style = std::max(last_style, cell.style);
    }
  }
  std::string letters;
  for (int column = 0; column <= last_column; ++column) {
    letters.clear();
    formula::append_column(letters, column);
    Piece& piece = columns_.emplace_back();
    std::ranges::copy(letters, piece.text.begin());
    piece.size = static_cast<std::uint8_t>(letters.size());
  }
  for (std::uint32_t style = 0; style <= last_style; ++style) {
    Piece& piece = styles_.emplace_back();
    const std::uint32_t number = context_.styles.file_number(style);
    if (number == 0) continue;
    char* at = put(piece.text.data(), " s=\"");
    at = put_count(at, number);
    at = put(at, "\"");
    piece.size = static_cast<std::uint8_t>(at - piece.text.data());
  }
}

// The text in front of the first row and behind the last.
void WorksheetText::render_ends(const package::XmlTree& tree) {
  auto [head, tail] = tree.cut_in(package::child(tree.root(), Family::Main, "sheetData"));
  head_ = std::move(head);
  tail_ = std::move(tail);
}

void WorksheetText::make(std::size_t block, std::string& out) const {
  const Block& its = blocks_[block];
  if (block == 0) out.append(head_);
  out.reserve(out.size() + its.cells * kRoomPerCell);
  const RowRun& run = runs_[its.run];
  TextBuffer buffer(out);
  for (const Row& row : its.rows) write_row(buffer, run, row);
  buffer.flush();
  if (block + 1 == blocks_.size()) out.append(tail_);
}

void WorksheetText::write_row(TextBuffer& out, const RowRun& run, const Row& row) const {
  const RowProperties* properties = run.sheet->properties(row);
  const bool is_plain = row.count == 0 && (!properties || *properties == RowProperties());
  if (is_plain && !run.sheet->hides_rows) return;
  RowNumber number;
  number.number = static_cast<int>(row.number);
  auto& [digits, size] = number.text;
  size = static_cast<std::uint8_t>(put_count(digits.data(), row.number + 1) - digits.data());
  char* at = put(out.begin(), "<row r=\"");
  at = put(put(at, number.text), "\"");
  std::string_view children;
  if (properties) {
    at = write_properties(at, *properties);
    if (properties->details != 0) {
      const std::string_view details = run.sheet->row_details[properties->details - 1];
      const std::size_t end = std::min(details.find(kDetailsEnd), details.size());
      at = out.append(at, details.substr(0, end));
      children = details.substr(std::min(end + 1, details.size()));
    }
  }
  out.end(put(at, ">"));
  for (const Cell& cell : row.span()) write_cell(out, run, number, cell);
  at = out.begin();
  if (!children.empty()) at = out.append(at, children);
  out.end(put(at, "</row>"));
}

char* WorksheetText::write_properties(char* at, const RowProperties& properties) const {
  if (properties.style) {
    at = put(at, " s=\"");
    at = put_count(at, context_.styles.file_number(*properties.style));
    at = put(at, R"(" customFormat="1")");
  }
  if (properties.height) {
    at = put(at, " ht=\"");
    at = put(write_number(at, *properties.height), "\"");
  }
  if (properties.hidden) at = put(at, " hidden=\"1\"");
  if (properties.custom_height) at = put(at, " customHeight=\"1\"");
  if (properties.outline_level != 0) {
    at = put(at, " outlineLevel=\"");
    at = put(put_count(at, properties.outline_level), "\"");
  }
  if (properties.collapsed) at = put(at, " collapsed=\"1\"");
  return at;
}

char* WorksheetText::put_reference(char* at, const RowNumber& row, const Cell& cell) const {
  at = put(at, "<c r=\"");
  at = put(at, columns_[cell.column]);
  at = put(at, row.text);
  at = put(at, "\"");
  return put(at, styles_[cell.style]);
}

void WorksheetText::write_cell(TextBuffer& out, const RowRun& run, const RowNumber& row,
                               const Cell& cell) const {
  if (cell.kind == CellKind::kRecord) return write_record(out, run, row, cell);
  char* at = put_reference(out.begin(), row, cell);
  switch (cell.kind) {
    case CellKind::kBlank:
      at = put(at, "/>");
      break;
    case CellKind::kNumber:
      at = put(at, "><v>");
      at = put(write_number(at, cell.number), "</v></c>");
      break;
    case CellKind::kBoolean:
      at = put(at, " t=\"b\"><v>");
      *at++ = cell.bits != 0 ? '1' : '0';
      at = put(at, "</v></c>");
      break;
    case CellKind::kText:
      if (is_shared(run, cell.index())) {
        at = put_text_value(at, context_.texts.number(cell.index()));
        break;
      }
      if (const std::string* item = own_item(run, cell.index())) {
        at = out.append(put(at, " t=\"inlineStr\"><is>"), *item);
        at = put(at, "</is></c>");
        break;
      }
      at = put(at, " t=\"str\">");
      at = put(write_value(out, at, run, value_of(cell)), "</c>");
      break;
    case CellKind::kError:
      at = put(at, " t=\"e\">");
      at = put(write_value(out, at, run, value_of(cell)), "</c>");
      break;
    case CellKind::kRecord:
      break;
  }
  out.end(at);
}

void WorksheetText::write_record(TextBuffer& out, const RowRun& run, const RowNumber& row,
                                 const Cell& cell) const {
  const CellRecord& record = *run.sheet->record(cell);
  const CellExtra* const extra = run.sheet->extra(record);
  const bool formula = has_formula_element(*run.sheet, record);
  const Value& value = record.value;
  const bool shared_text =
      value.kind == ValueKind::kText && !formula && is_shared(run, value.text());
  const std::string* const item = value.kind == ValueKind::kText && !formula && !shared_text
                                      ? own_item(run, value.text())
                                      : nullptr;
  const bool is_dated = extra && extra->details.starts_with(kDateKind);
  char* at = put_reference(out.begin(), row, cell);
  switch (value.kind) {
    case ValueKind::kText:
      at = shared_text ? put(at, " t=\"s\"")
           : item      ? put(at, " t=\"inlineStr\"")
                       : put(at, " t=\"str\"");
      break;
    case ValueKind::kBoolean:
      at = put(at, " t=\"b\"");
      break;
    case ValueKind::kError:
      at = put(at, " t=\"e\"");
      break;
    default:
      break;
  }
  if (extra) at = out.append(at, extra->details);
  at = put(at, ">");
  if (formula) at = write_formula(out, at, run, record, {row.number, cell.column});
  if (shared_text) {
    at = put(put_count(put(at, "<v>"), context_.texts.number(value.text())), "</v>");
  } else if (item) {
    at = put(out.append(put(at, "<is>"), *item), "</is>");
  } else if (value.kind != ValueKind::kNone && !is_dated) {
    at = write_value(out, at, run, value);
  }
  if (extra) at = out.append(at, extra->children);
  out.end(put(at, "</c>"));
}

// Of the cells that share a formula the first that is written has its text, whichever cell had it
// in the file: a reader has to know the text before it meets the others. Rows of a partial load and
// the rows outside share apart.
void WorksheetText::find_shared() {
  std::map<const SheetContents*, std::size_t> firsts;
  for (RowRun& run : runs_) {
    if (run.sheet->shared_formulas.empty()) continue;
    run.first_shared = firsts.try_emplace(run.sheet, shared_.size()).first->second;
    shared_.resize(std::max(shared_.size(), run.first_shared + run.sheet->shared_formulas.size()));
    for (const Row& row : run.rows)
      for (const Cell& cell : row.span())
        if (const CellRecord* record = run.sheet->record(cell); record && record->shared != 0)
          shared_[run.first_shared + record->shared - 1].enter(static_cast<int>(row.number),
                                                               cell.column);
  }
}

char* WorksheetText::write_formula(TextBuffer& out, char* at, const RowRun& run,
                                   const CellRecord& record, CellAddress place) const {
  const auto append_range = [&out](char* to, const CellRange& range) {
    return out.append_made(to, [&](std::string& text) { append_range_attribute(text, range); });
  };
  const Grid& grid = context_.workbook.limits.grid;
  at = put(at, "<f");
  std::string_view spelling;
  if (const CellExtra* extra = run.sheet->extra(record)) {
    if (extra->form != FormulaForm::kNormal) {
      const bool array = extra->form == FormulaForm::kArray;
      at = array ? put(at, " t=\"array\"") : put(at, " t=\"dataTable\"");
      at = append_range(at, extra->range);
    }
    at = out.append(at, extra->formula_details);
    spelling = extra->formula_spelling;
  }
  std::string moved;
  std::string_view text = record.formula;
  if (record.shared != 0) {
    const SharedFormula& shared = run.sheet->shared_formulas[record.shared - 1];
    const std::size_t number = run.first_shared + record.shared - 1;
    const SharedCells& cells = shared_[number];
    at = put(at, " t=\"shared\"");
    if (place == cells.first) {
      at = append_range(at, cells.range);
      text = run.sheet->formula(record, place, grid, moved);
      if (place == shared.at) spelling = shared.spelling;
    }
    at = put(at, " si=\"");
    at = put(write_integer(at, static_cast<long long>(number)), "\"");
  }
  if (text.empty()) return put(at, "/>");
  at = put(at, ">");
  if (spelling.empty() && is_stored_as_shown(text)) {
    at = out.append_formula_text(at, text);
  } else {
    at = out.append_made(at, [&](std::string& stored) {
      append_formula(stored, text, spelling, grid, {context_.tables, place});
    });
  }
  return put(at, "</f>");
}

char* WorksheetText::write_value(TextBuffer& out, char* at, const RowRun& run,
                                 const Value& value) const {
  const std::string_view text =
      value.kind == ValueKind::kText ? text_of(run, value.text()) : std::string_view();
  at = has_outer_blank(text) ? put(at, "<v xml:space=\"preserve\">") : put(at, "<v>");
  switch (value.kind) {
    case ValueKind::kNone:
      break;
    case ValueKind::kNumber:
      at = write_number(at, value.number);
      break;
    case ValueKind::kText:
      at = out.append_value_text(at, text);
      break;
    case ValueKind::kBoolean:
      *at++ = value.boolean() ? '1' : '0';
      break;
    case ValueKind::kError:
      at = out.append_made(at, [&](std::string& to) {
        package::append_xml_text(to, error_text(*run.workbook, value.error()));
      });
      break;
  }
  return put(at, "</v>");
}

// Rows are written without a prefix, so where the part has one the bare names are declared.
void declare_bare_names(pugi::xml_node root) {
  const std::string prefix(package::prefix_of(root.name()));
  if (prefix.empty()) return;
  pugi::xml_node data = package::child(root, Family::Main, "sheetData");
  data.set_name("sheetData");
  set_attribute(data, "xmlns", root.attribute(("xmlns:" + prefix).c_str()).value());
}

}  // namespace

PartBlocks write_worksheet(package::XmlTree tree, const Sheet& sheet, const OutsideRows* outside,
                           const WriteContext& context) {
  declare_bare_names(tree.root());
  tree.settle();
  auto text = std::make_shared<const WorksheetText>(tree, sheet, outside, context);
  const std::size_t count = text->block_count();
  return {count, [text = std::move(text)](std::size_t block, std::string& out) {
            text->make(block, out);
          }};
}

}  // namespace engine::xlsx
