#include "tests/api/book_text.h"

#include <algorithm>
#include <sstream>

#include "engine/text/wide.h"

namespace {

using libxl::Book;
using libxl::Font;
using libxl::Format;
using libxl::Sheet;

// Collects lines; every one begins with what it is about.
class Lines {
 public:
  template <class... Values>
  void add(const std::string& about, const Values&... values) {
    std::ostringstream line;
    line.precision(17);
    line << about;
    ((line << ' ' << shown(values)), ...);
    lines_.push_back(line.str());
  }
  std::vector<std::string> take() { return std::move(lines_); }

 private:
  static std::string shown(const wchar_t* text) {
    return text ? "\"" + engine::to_utf8(text) + "\"" : "none";
  }
  template <class Value>
  static const Value& shown(const Value& value) {
    return value;
  }

  std::vector<std::string> lines_;
};

// Formats have other numbers in a saved book: what counts is what they say.
void add_format(Lines& lines, const std::string& about, Book& book, Format& format) {
  const Font& font = *format.font();
  const int number = format.numFormat();
  const wchar_t* code = number >= 164 ? book.customNumFormat(number) : nullptr;
  if (code) lines.add(about + " code", code);
  else lines.add(about + " code", number);
  lines.add(about + " font", font.name(), font.size(), font.bold(), font.italic(), font.strikeOut(),
            font.underline(), font.script(), font.color());
  lines.add(about + " look", format.alignH(), format.alignV(), format.wrap(), format.rotation(),
            format.indent(), format.shrinkToFit(), format.locked(), format.hidden(),
            format.fillPattern(), format.patternForegroundColor(), format.patternBackgroundColor());
  lines.add(about + " borders", format.borderLeft(), format.borderRight(), format.borderTop(),
            format.borderBottom(), format.borderDiagonal(), format.borderLeftColor(),
            format.borderBottomColor());
}

void add_cell(Lines& lines, const std::string& about, Book& book, Sheet& sheet, int row,
              int column) {
  if (const wchar_t* note = sheet.readComment(row, column)) lines.add(about + " note", note);
  const libxl::CellType type = sheet.cellType(row, column);
  Format* format = type == libxl::CellEmpty ? nullptr : sheet.cellFormat(row, column);
  if (type == libxl::CellEmpty) return;
  lines.add(about, type, sheet.isDate(row, column));
  switch (type) {
    case libxl::CellNumber:
      lines.add(about, sheet.readNum(row, column));
      break;
    case libxl::CellText:
      lines.add(about, sheet.readStr(row, column));
      break;
    case libxl::CellBoolean:
      lines.add(about, sheet.readBool(row, column));
      break;
    case libxl::CellError:
      lines.add(about, sheet.readError(row, column));
      break;
    default:
      break;
  }
  if (sheet.isFormula(row, column)) lines.add(about + " =", sheet.readFormula(row, column));
  if (format) add_format(lines, about, book, *format);
}

void add_cells(Lines& lines, const std::string& about, Book& book, Sheet& sheet,
               const ReadArea& area) {
  lines.add(about + "used", sheet.firstRow(), sheet.lastRow(), sheet.firstCol(), sheet.lastCol());
  const int rows = std::max(area.rows, sheet.lastRow());
  const int columns = std::max(area.columns, sheet.lastCol());
  for (int row = 0; row < rows; ++row) {
    lines.add(about + "row " + std::to_string(row), sheet.rowHeight(row), sheet.rowHidden(row));
    for (int column = 0; column < columns; ++column)
      add_cell(lines, about + engine::to_utf8(sheet.rowColToAddr(row, column)), book, sheet, row,
               column);
  }
  for (int column = 0; column < columns; ++column)
    lines.add(about + "column " + std::to_string(column), sheet.colWidth(column),
              sheet.colHidden(column));
}

void add_lists(Lines& lines, const std::string& about, Sheet& sheet) {
  int row = 0;
  int row_last = 0;
  int column = 0;
  int column_last = 0;
  for (int i = 0; i < sheet.mergeSize(); ++i) {
    sheet.merge(i, &row, &row_last, &column, &column_last);
    lines.add(about + "merge", row, row_last, column, column_last);
  }
  for (int i = 0; i < sheet.hyperlinkSize(); ++i) {
    const wchar_t* text = sheet.hyperlink(i, &row, &row_last, &column, &column_last);
    lines.add(about + "link", text, row, row_last, column, column_last);
  }
  for (int i = 0; i < sheet.namedRangeSize(); ++i) {
    int scope = 0;
    bool hidden = false;
    const wchar_t* text =
        sheet.namedRange(i, &row, &row_last, &column, &column_last, &scope, &hidden);
    lines.add(about + "name", text, row, row_last, column, column_last, scope, hidden);
  }
  for (int i = 0; i < sheet.tableSize(); ++i) {
    int headers = 0;
    int totals = 0;
    std::wstring text = sheet.table(i, &row, &row_last, &column, &column_last, &headers, &totals);
    // The number behind a copied table's name counts those on that were deleted since the load.
    text.resize(text.find_last_not_of(L"0123456789") + 1);
    lines.add(about + "table", text.c_str(), row, row_last, column, column_last, headers, totals);
  }
  for (int i = 0; i < sheet.getHorPageBreakSize(); ++i)
    lines.add(about + "row break", sheet.getHorPageBreak(i));
  for (int i = 0; i < sheet.getVerPageBreakSize(); ++i)
    lines.add(about + "column break", sheet.getVerPageBreak(i));
}

void add_view_and_page(Lines& lines, const std::string& about, Sheet& sheet) {
  int a = 0;
  int b = 0;
  int c = 0;
  int d = 0;
  const bool split = sheet.splitInfo(&a, &b);
  lines.add(about + "split", split, a, b);
  sheet.getTopLeftView(&a, &b);
  lines.add(about + "view", a, b, sheet.displayGridlines(), sheet.zoom(), sheet.rightToLeft(),
            sheet.protect(), sheet.groupSummaryBelow(), sheet.groupSummaryRight());
  a = b = 0;
  const bool fits = sheet.getPrintFit(&a, &b);
  lines.add(about + "page", fits, a, b, sheet.printZoom(), sheet.landscape(), sheet.paper(),
            sheet.hCenter(), sheet.vCenter(), sheet.printGridlines(), sheet.printRowCol());
  lines.add(about + "header", sheet.header(), sheet.headerMargin());
  lines.add(about + "footer", sheet.footer(), sheet.footerMargin());
  lines.add(about + "margins", sheet.marginLeft(), sheet.marginRight(), sheet.marginTop(),
            sheet.marginBottom());
  a = b = c = d = 0;
  const bool has_area = sheet.printArea(&a, &b, &c, &d);
  lines.add(about + "print area", has_area, a, b, c, d);
  a = b = 0;
  const bool repeats_rows = sheet.printRepeatRows(&a, &b);
  lines.add(about + "print rows", repeats_rows, a, b);
  a = b = 0;
  const bool repeats_columns = sheet.printRepeatCols(&a, &b);
  lines.add(about + "print columns", repeats_columns, a, b);
}

}  // namespace

std::vector<std::string> text_of(Book& book, const ReadArea& area) {
  Lines lines;
  int size = 0;
  lines.add("default font", book.defaultFont(&size), size);
  lines.add("book", book.activeSheet(), book.isDate1904(), book.isTemplate());
  for (int i = 0; i < book.sheetCount(); ++i) {
    const std::string about = engine::to_utf8(book.getSheetName(i)) + ": ";
    lines.add(about, i, book.sheetType(i));
    if (book.sheetType(i) != libxl::SheetWorksheet) continue;
    Sheet* sheet = book.getSheet(i);
    if (!sheet) {
      lines.add(about, book.errorMessage());
      continue;
    }
    lines.add(about + "state", sheet->hidden());
    add_cells(lines, about, book, *sheet, area);
    add_lists(lines, about, *sheet);
    add_view_and_page(lines, about, *sheet);
  }
  return lines.take();
}

std::string difference(const std::vector<std::string>& one, const std::vector<std::string>& other) {
  constexpr std::size_t kShown = 6;
  const auto [at, there] = std::ranges::mismatch(one, other);
  std::string text;
  for (auto line = at; line != one.end() && line < at + kShown; ++line) text += "- " + *line + "\n";
  for (auto line = there; line != other.end() && line < there + kShown; ++line)
    text += "+ " + *line + "\n";
  return text;
}
