#include "tests/api/random_changes.h"

#include <iterator>
#include <string>
#include <vector>

namespace {

using libxl::Book;
using libxl::Color;
using libxl::Format;
using libxl::Sheet;

struct Changing {
  Book& book;
  Sheet& sheet;
  Lot& lot;

  int row() const { return lot.below(kChangedRows); }
  int column() const { return lot.below(kChangedColumns); }
  bool flag() const { return lot.once_in(2); }
};

// Rows or columns from the first to the last.
struct Ends {
  int first;
  int last;

  Ends(Lot& lot, int size, int length)
      : first(lot.below(size - length)), last(first + lot.below(length)) {}
};
Ends rows(const Changing& c, int length = 4) { return {c.lot, kChangedRows, length}; }
Ends columns(const Changing& c, int length = 3) { return {c.lot, kChangedColumns, length}; }

constexpr const wchar_t* kTexts[] = {
    L"a text",  L"",       L" blanks around ",  L"two\nlines", L"\u00e4\u4e2d",
    L"_x0041_", L"<&>\"'", L"\U0001F600 smile", L"12",         L"=A1"};
constexpr const wchar_t* kSheetNames[] = {
    L"New", L"It's a sheet", L"2026", L"R1C1", L"\u00dcbersicht", L"A1", L"Copy (2)", L"a-b"};
constexpr const wchar_t* kNames[] = {L"First", L"second_name", L"_third", L"\u00c4rger", L"Local"};
constexpr const wchar_t* kLinks[] = {L"https://example.com/a b?c=1#part", L"mailto:a@example.com",
                                     L"other file.xlsx#Sheet1!A1", L"www.example.com",
                                     L"\\\\server\\share\\file.txt"};
constexpr double kNumbers[] = {0, 1, -2.5, 45000, 1e300, 0.1, 123456789012345.0};

// A text of the book is good until the next operation.
std::wstring address(const Changing& c, bool row_moves = true, bool column_moves = true) {
  const int row = c.row();
  return c.sheet.rowColToAddr(row, c.column(), row_moves, column_moves);
}

// How formulas call a sheet of the book.
std::wstring prefix(Book& book, Lot& lot) {
  std::wstring name = book.getSheetName(lot.below(book.sheetCount()));
  for (std::size_t at = 0; (at = name.find(L'\'', at)) != std::wstring::npos; at += 2)
    name.insert(at, 1, L'\'');
  return L"'" + name + L"'!";
}

std::wstring cell(const Changing& c) {
  const std::wstring text = c.flag() ? prefix(c.book, c.lot) : L"";
  const bool row_moves = c.flag();
  return text + address(c, row_moves, c.flag());
}

std::wstring formula(const Changing& c) {
  switch (c.lot.below(9)) {
    case 0:
      return cell(c) + L"+" + cell(c);
    case 1:
      return L"SUM(" + cell(c) + L":" + address(c) + L",1)";
    case 2:
      return L"SUM(B:C," + prefix(c.book, c.lot) + L"$3:7)";
    case 3:
      return L"First*2&second_name";
    case 4:
      return L"IF(" + cell(c) + L">1,\"A1\",{1,2;3,4})";
    case 5:
      return L"INDIRECT(\"A1\")+[1]Sheet!A1";
    case 6:
      return L"SUM((A1:B2,C3:D4 D3:D9))";
    case 7:
      return L"XLOOKUP(A1," + cell(c) + L",$B$2:$C$9)";
    default:
      return L"COUNT(A1048576:C1048576," + cell(c) + L")";
  }
}

Format* format(const Changing& c) {
  if (c.flag()) return nullptr;
  Format* made = c.book.addFormat();
  switch (c.lot.below(5)) {
    case 0:
      made->setNumFormat(c.book.addCustomNumFormat(c.flag() ? L"0.000" : L"yyyy\\-mm"));
      break;
    case 1: {
      libxl::Font* font = c.book.addFont();
      font->setBold(c.flag());
      font->setSize(8 + c.lot.below(8));
      made->setFont(font);
      break;
    }
    case 2:
      made->setBorder(libxl::BorderThin);
      break;
    case 3:
      made->setAlignH(libxl::AlignHCenter);
      made->setWrap(true);
      break;
    default:
      made->setNumFormat(libxl::NumDate);
  }
  return made;
}

struct Change {
  std::string_view name;
  void (*make)(const Changing& c);
};

constexpr Change kSheetChanges[] = {
    {"writeStr",
     [](const Changing& c) { c.sheet.writeStr(c.row(), c.column(), c.lot.of(kTexts), format(c)); }},
    {"writeNum",
     [](const Changing& c) {
       c.sheet.writeNum(c.row(), c.column(), c.lot.of(kNumbers), format(c));
     }},
    {"writeBool",
     [](const Changing& c) { c.sheet.writeBool(c.row(), c.column(), c.flag(), format(c)); }},
    {"writeBlank", [](const Changing& c) { c.sheet.writeBlank(c.row(), c.column(), format(c)); }},
    {"writeError",
     [](const Changing& c) { c.sheet.writeError(c.row(), c.column(), libxl::ErrorNA); }},
    {"writeFormula",
     [](const Changing& c) {
       c.sheet.writeFormula(c.row(), c.column(), formula(c).c_str(), format(c));
     }},
    {"writeFormula",
     [](const Changing& c) { c.sheet.writeFormula(c.row(), c.column(), formula(c).c_str()); }},
    {"writeFormulaNum",
     [](const Changing& c) {
       c.sheet.writeFormulaNum(c.row(), c.column(), formula(c).c_str(), c.lot.of(kNumbers));
     }},
    {"writeFormulaStr",
     [](const Changing& c) {
       c.sheet.writeFormulaStr(c.row(), c.column(), formula(c).c_str(), c.lot.of(kTexts));
     }},
    {"writeFormulaBool",
     [](const Changing& c) {
       c.sheet.writeFormulaBool(c.row(), c.column(), formula(c).c_str(), c.flag());
     }},
    {"setCellFormat",
     [](const Changing& c) { c.sheet.setCellFormat(c.row(), c.column(), format(c)); }},
    {"writeComment",
     [](const Changing& c) {
       c.sheet.writeComment(c.row(), c.column(), c.lot.of(kTexts), c.flag() ? L"Ann" : nullptr,
                            100 + c.lot.below(9), 50);
     }},
    {"removeComment", [](const Changing& c) { c.sheet.removeComment(c.row(), c.column()); }},
    {"copyCell",
     [](const Changing& c) { c.sheet.copyCell(c.row(), c.column(), c.row(), c.column()); }},
    {"clear",
     [](const Changing& c) {
       const Ends r = rows(c);
       const Ends k = columns(c);
       c.sheet.clear(r.first, r.last, k.first, k.last);
     }},
    {"setCol",
     [](const Changing& c) {
       const Ends k = columns(c);
       c.sheet.setCol(k.first, k.last, c.lot.below(30), format(c), c.flag());
     }},
    {"setRow",
     [](const Changing& c) { c.sheet.setRow(c.row(), c.lot.below(40) - 1, format(c), c.flag()); }},
    {"setRowHidden", [](const Changing& c) { c.sheet.setRowHidden(c.row(), c.flag()); }},
    {"setColHidden", [](const Changing& c) { c.sheet.setColHidden(c.column(), c.flag()); }},
    {"setMerge",
     [](const Changing& c) {
       const Ends r = rows(c);
       const Ends k = columns(c);
       c.sheet.setMerge(r.first, r.last, k.first, k.last);
     }},
    {"delMerge", [](const Changing& c) { c.sheet.delMerge(c.row(), c.column()); }},
    {"delMergeByIndex", [](const Changing& c) { c.sheet.delMergeByIndex(c.lot.below(3)); }},
    {"groupRows",
     [](const Changing& c) {
       const Ends r = rows(c);
       c.sheet.groupRows(r.first, r.last, c.flag());
     }},
    {"groupCols",
     [](const Changing& c) {
       const Ends k = columns(c);
       c.sheet.groupCols(k.first, k.last, c.flag());
     }},
    {"setGroupSummaryBelow", [](const Changing& c) { c.sheet.setGroupSummaryBelow(c.flag()); }},
    {"setGroupSummaryRight", [](const Changing& c) { c.sheet.setGroupSummaryRight(c.flag()); }},
    {"insertRow",
     [](const Changing& c) {
       const Ends r = rows(c);
       c.sheet.insertRow(r.first, r.last, !c.lot.once_in(4));
     }},
    {"insertCol",
     [](const Changing& c) {
       const Ends k = columns(c);
       c.sheet.insertCol(k.first, k.last, !c.lot.once_in(4));
     }},
    {"removeRow",
     [](const Changing& c) {
       const Ends r = rows(c);
       c.sheet.removeRow(r.first, r.last, !c.lot.once_in(4));
     }},
    {"removeCol",
     [](const Changing& c) {
       const Ends k = columns(c);
       c.sheet.removeCol(k.first, k.last, !c.lot.once_in(4));
     }},
    {"setHorPageBreak", [](const Changing& c) { c.sheet.setHorPageBreak(c.row(), c.flag()); }},
    {"setVerPageBreak", [](const Changing& c) { c.sheet.setVerPageBreak(c.column(), c.flag()); }},
    {"split", [](const Changing& c) { c.sheet.split(c.lot.below(4), c.lot.below(4)); }},
    {"setDisplayGridlines", [](const Changing& c) { c.sheet.setDisplayGridlines(c.flag()); }},
    {"setZoom", [](const Changing& c) { c.sheet.setZoom(c.lot.below(420)); }},
    {"setRightToLeft", [](const Changing& c) { c.sheet.setRightToLeft(c.flag()); }},
    {"setTopLeftView", [](const Changing& c) { c.sheet.setTopLeftView(c.row(), c.column()); }},
    // A password takes its time to hash.
    {"setProtect", [](const Changing& c) { c.sheet.setProtect(c.flag()); }},
    {"setHidden",
     [](const Changing& c) { c.sheet.setHidden(static_cast<libxl::SheetState>(c.lot.below(3))); }},
    {"setTabColor", [](const Changing& c) { c.sheet.setTabColor(libxl::ColorRed); }},
    {"setTabColor", [](const Changing& c) { c.sheet.setTabColor(c.lot.below(256), 1, 2); }},
    {"setPrintGridlines", [](const Changing& c) { c.sheet.setPrintGridlines(c.flag()); }},
    {"setPrintRowCol", [](const Changing& c) { c.sheet.setPrintRowCol(c.flag()); }},
    {"setPrintZoom", [](const Changing& c) { c.sheet.setPrintZoom(10 + c.lot.below(200)); }},
    {"setPrintFit", [](const Changing& c) { c.sheet.setPrintFit(c.lot.below(3), c.lot.below(3)); }},
    {"setLandscape", [](const Changing& c) { c.sheet.setLandscape(c.flag()); }},
    {"setPaper",
     [](const Changing& c) { c.sheet.setPaper(static_cast<libxl::Paper>(c.lot.below(12))); }},
    {"setHeader",
     [](const Changing& c) { c.sheet.setHeader(c.lot.of(kTexts), c.lot.below(4) / 4.0); }},
    {"setFooter",
     [](const Changing& c) { c.sheet.setFooter(c.lot.of(kTexts), c.lot.below(4) / 4.0); }},
    {"setHCenter", [](const Changing& c) { c.sheet.setHCenter(c.flag()); }},
    {"setVCenter", [](const Changing& c) { c.sheet.setVCenter(c.flag()); }},
    {"setMarginLeft", [](const Changing& c) { c.sheet.setMarginLeft(c.lot.below(8) / 8.0); }},
    {"setMarginRight", [](const Changing& c) { c.sheet.setMarginRight(c.lot.below(8) / 8.0); }},
    {"setMarginTop", [](const Changing& c) { c.sheet.setMarginTop(c.lot.below(8) / 8.0); }},
    {"setMarginBottom", [](const Changing& c) { c.sheet.setMarginBottom(c.lot.below(8) / 8.0); }},
    {"setNamedRange",
     [](const Changing& c) {
       const Ends r = rows(c);
       const Ends k = columns(c);
       c.sheet.setNamedRange(c.lot.of(kNames), r.first, r.last, k.first, k.last,
                             c.lot.below(4) - 2);
     }},
    {"delNamedRange",
     [](const Changing& c) { c.sheet.delNamedRange(c.lot.of(kNames), c.lot.below(4) - 2); }},
    {"setPrintRepeatRows",
     [](const Changing& c) {
       const Ends r = rows(c);
       c.sheet.setPrintRepeatRows(r.first, r.last);
     }},
    {"setPrintRepeatCols",
     [](const Changing& c) {
       const Ends k = columns(c);
       c.sheet.setPrintRepeatCols(k.first, k.last);
     }},
    {"setPrintArea",
     [](const Changing& c) {
       const Ends r = rows(c, 9);
       const Ends k = columns(c, 6);
       c.sheet.setPrintArea(r.first, r.last, k.first, k.last);
     }},
    {"clearPrintRepeats",
     [](const Changing& c) {
       if (c.lot.once_in(4)) c.sheet.clearPrintRepeats();
     }},
    {"clearPrintArea",
     [](const Changing& c) {
       if (c.lot.once_in(4)) c.sheet.clearPrintArea();
     }},
    {"addHyperlink",
     [](const Changing& c) {
       const Ends r = rows(c);
       const Ends k = columns(c);
       const std::wstring place = L"#" + prefix(c.book, c.lot) + address(c);
       const wchar_t* target = c.flag() ? place.c_str() : c.lot.of(kLinks);
       c.sheet.addHyperlink(target, r.first, r.last, k.first, k.last);
     }},
    {"delHyperlink", [](const Changing& c) { c.sheet.delHyperlink(c.lot.below(3)); }},
};

// What depends on more than a file says: on which columns follow their cells, on fonts that are
// alike.
constexpr Change kUntilSaved[] = {
    {"setDefaultFont",
     [](const Changing& c) {
       if (c.lot.once_in(3)) c.book.setDefaultFont(c.flag() ? L"Arial" : L"Calibri", 11);
     }},
    {"setAutoFitArea",
     [](const Changing& c) {
       const Ends r = rows(c);
       const Ends k = columns(c);
       c.sheet.setAutoFitArea(r.first, k.first, r.last, k.last);
     }},
    {"setCol",
     [](const Changing& c) {
       const Ends k = columns(c);
       c.sheet.setCol(k.first, k.last, -1, format(c), c.flag());
     }},
};

// A name that is free, most of the time.
std::wstring sheet_name(const Changing& c) {
  return c.lot.of(kSheetNames) + std::to_wstring(c.lot.below(20));
}

constexpr int kMostSheets = 5;

constexpr Change kBookChanges[] = {
    {"addSheet",
     [](const Changing& c) {
       if (c.book.sheetCount() >= kMostSheets) return;
       c.book.addSheet(sheet_name(c).c_str(), c.flag() ? &c.sheet : nullptr);
     }},
    {"insertSheet",
     [](const Changing& c) {
       if (c.book.sheetCount() >= kMostSheets) return;
       c.book.insertSheet(0, sheet_name(c).c_str(), c.flag() ? &c.sheet : nullptr);
     }},
    {"moveSheet",
     [](const Changing& c) {
       const int sheets = c.book.sheetCount();
       c.book.moveSheet(c.lot.below(sheets), c.lot.below(sheets));
     }},
    {"delSheet",
     [](const Changing& c) {
       const int sheet = c.lot.below(c.book.sheetCount());
       const bool another_is_shown =
           c.book.getSheet(sheet) != &c.sheet && c.sheet.hidden() == libxl::StateVisible;
       if (another_is_shown) c.book.delSheet(sheet);
     }},
    {"setName", [](const Changing& c) { c.sheet.setName(sheet_name(c).c_str()); }},
    {"setActiveSheet",
     [](const Changing& c) { c.book.setActiveSheet(c.lot.below(c.book.sheetCount())); }},
};

template <std::size_t kSize>
std::string_view make_one(const Change (&changes)[kSize], Book& book, int sheet, Lot& lot) {
  const Change& one = lot.of(changes);
  one.make({book, *book.getSheet(sheet), lot});
  return one.name;
}

}  // namespace

std::string_view change_sheet(Book& book, int sheet, Lot& lot) {
  return make_one(kSheetChanges, book, sheet, lot);
}

std::string_view change_book(Book& book, Lot& lot) {
  constexpr int kChangesOfSheets = 7;  // for one of the book
  int sheet = 0;
  do sheet = lot.below(book.sheetCount());
  while (book.sheetType(sheet) != libxl::SheetWorksheet);
  if (lot.below(kChangesOfSheets + 1) != 0) return change_sheet(book, sheet, lot);
  return make_one(kBookChanges, book, sheet, lot);
}

std::string_view change_until_saved(Book& book, int sheet, Lot& lot) {
  return make_one(kUntilSaved, book, sheet, lot);
}
