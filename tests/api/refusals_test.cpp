// Refused calls: the failure value, the message, and that the next call is well again.
#include <gmock/gmock.h>

#include <limits>
#include <span>

#include "tests/api/stage.h"

namespace {

struct Refusing : Stage {
  using Stage::Stage;

  // A sheet, format and font that a book no longer has, and those of another book.
  Stage other;
  libxl::Sheet* gone = remove_sheet();

  libxl::Sheet* remove_sheet() {
    libxl::Sheet* added = book->addSheet(L"Gone");
    book->delSheet(1);
    return added;
  }
};

struct Refusal {
  const char* call;
  bool (*failed)(Refusing&);  // makes the call; whether it gave its failure value
  const char* message;
};

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

const Refusal kCells[] = {
    {"row below", [](Refusing& s) { return !s.sheet->writeNum(-1, 0, 1); },
     "row -1 is out of range 0..1048575"},
    {"row above", [](Refusing& s) { return !s.sheet->writeNum(1048576, 0, 1); },
     "row 1048576 is out of range 0..1048575"},
    {"column above", [](Refusing& s) { return s.sheet->readNum(0, 16384) == 0; },
     "column 16384 is out of range 0..16383"},
    {"row before column", [](Refusing& s) { return !s.sheet->readStr(-1, -1); },
     "row -1 is out of range 0..1048575"},
    {"place before value", [](Refusing& s) { return !s.sheet->writeNum(0, -1, kNaN); },
     "column -1 is out of range 0..16383"},
    {"not a number", [](Refusing& s) { return !s.sheet->writeNum(0, 0, kNaN); },
     "number is not a finite number"},
    {"value before format",
     [](Refusing& s) { return !s.sheet->writeNum(0, 0, kNaN, s.other.book->format(0)); },
     "number is not a finite number"},
    {"other book's format",
     [](Refusing& s) { return !s.sheet->writeNum(0, 0, 1, s.other.book->format(0)); },
     "the format belongs to another book"},
    {"format before error code",
     [](Refusing& s) {
       libxl::Format* format = s.other.book->format(0);
       return !s.sheet->writeBool(0, 0, true, format, static_cast<libxl::ErrorType>(3));
     },
     "the format belongs to another book"},
    {"error code",
     [](Refusing& s) {
       return !s.sheet->writeBool(0, 0, true, nullptr, static_cast<libxl::ErrorType>(3));
     },
     "error code 3 is not known"},
    {"error none",
     [](Refusing& s) {
       s.sheet->writeError(0, 0, libxl::ErrorNone);
       return s.sheet->cellType(0, 0) == libxl::CellEmpty &&
              (s.sheet->writeError(0, 0, libxl::ErrorNone), true);
     },
     "error code 255 is not known"},
    {"cell type",
     [](Refusing& s) { return !s.sheet->writeStr(0, 0, L"x", nullptr, libxl::CellNumber); },
     "cell type 1 is not known"},
    {"long text",
     [](Refusing& s) { return !s.sheet->writeStr(0, 0, std::wstring(32768, L'\u00DF').c_str()); },
     "text is 32768 characters long, the limit is 32767"},
    {"text as number",
     [](Refusing& s) {
       s.sheet->writeStr(6, 1, L"12");
       return s.sheet->readNum(6, 1) == 0;
     },
     "cell B7 holds text, not a number"},
    {"error as text",
     [](Refusing& s) {
       s.sheet->writeError(0, 0, libxl::ErrorNA);
       return !s.sheet->readStr(0, 0);
     },
     "cell A1 holds an error, not text"},
    {"boolean as text",
     [](Refusing& s) {
       s.sheet->writeBool(0, 26, true);
       return !s.sheet->readStr(0, 26);
     },
     "cell AA1 holds a true/false value, not text"},
    {"number as boolean",
     [](Refusing& s) {
       s.sheet->writeNum(0, 0, 1);
       return !s.sheet->readBool(0, 0);
     },
     "cell A1 holds a number, not a true/false value"},
    {"comment width",
     [](Refusing& s) { return s.sheet->writeComment(0, 0, L"x", L"", 0, 0), true; },
     "comment width 0 is out of range 1..32767"},
    {"comment author",
     [](Refusing& s) {
       return s.sheet->writeComment(0, 0, L"x", std::wstring(256, L'a').c_str()), true;
     },
     "author is 256 characters long, the limit is 255"},
    {"address", [](Refusing& s) { return s.sheet->addrToRowCol(L"A1:B2", nullptr, nullptr), true; },
     R"(address "A1:B2" is not a cell address)"},
    {"no address",
     [](Refusing& s) { return s.sheet->addrToRowCol(nullptr, nullptr, nullptr), true; },
     "address is empty"},
    {"address beyond",
     [](Refusing& s) { return s.sheet->addrToRowCol(L"XFE1", nullptr, nullptr), true; },
     R"(address "XFE1" is beyond the last cell XFD1048576)"},
    {"deleted sheet", [](Refusing& s) { return !s.gone->writeNum(0, 0, 1); },
     "the sheet is no longer in the book"},
    {"deleted before row", [](Refusing& s) { return s.gone->cellType(-1, 0) == libxl::CellEmpty; },
     "the sheet is no longer in the book"},
    {"deleted sheet's name", [](Refusing& s) { return !s.gone->name(); },
     "the sheet is no longer in the book"},
};

const Refusal kShape[] = {
    {"column", [](Refusing& s) { return s.sheet->colWidth(16384) == 0; },
     "column 16384 is out of range 0..16383"},
    {"columns before their order", [](Refusing& s) { return !s.sheet->setCol(5, -1, 256); },
     "column -1 is out of range 0..16383"},
    {"order before width", [](Refusing& s) { return !s.sheet->setCol(5, 4, 256); },
     "first column 5 is after last column 4"},
    {"width", [](Refusing& s) { return !s.sheet->setCol(4, 5, 255.5, s.other.book->format(0)); },
     "column width 255.5 is out of range 0..255"},
    {"width below", [](Refusing& s) { return !s.sheet->setCol(4, 5, -0.5); },
     "column width -0.5 is out of range 0..255"},
    {"no width", [](Refusing& s) { return !s.sheet->setCol(4, 5, kNaN); },
     "column width is not a finite number"},
    {"other book's format",
     [](Refusing& s) { return !s.sheet->setCol(4, 5, 9, s.other.book->format(0)); },
     "the format belongs to another book"},
    {"height", [](Refusing& s) { return !s.sheet->setRow(0, 410); },
     "row height 410 is out of range 0..409.5"},
    {"deep groups",
     [](Refusing& s) {
       for (int level = 1; level <= 7; ++level) s.sheet->groupRows(level, 20, false);
       return !s.sheet->rowHidden(0) && !s.sheet->groupRows(0, 7);
     },
     "outline level 8 is out of range 1..7"},
    {"deep groups of columns",
     [](Refusing& s) {
       for (int level = 1; level <= 7; ++level) s.sheet->groupCols(9, 9, false);
       return !s.sheet->groupCols(0, 9);
     },
     "outline level 8 is out of range 1..7"},
    {"merge of one cell", [](Refusing& s) { return !s.sheet->setMerge(2, 2, 1, 1); },
     "merged range B3 is a single cell"},
    {"merge over another",
     [](Refusing& s) {
       s.sheet->setMerge(0, 1, 0, 1);
       return !s.sheet->setMerge(1, 5, 1, 1) && !s.sheet->setMerge(0, 9, 0, 9);
     },
     "range A1:J10 overlaps merged range A1:B2"},
    {"merge's rows before its columns", [](Refusing& s) { return !s.sheet->setMerge(3, 2, 1, 0); },
     "first row 3 is after last row 2"},
    {"no merge", [](Refusing& s) { return !s.sheet->delMergeByIndex(0); },
     "merged range 0 is out of range: there are none"},
    {"merge index",
     [](Refusing& s) {
       s.sheet->setMerge(0, 1, 0, 1);
       return !s.sheet->merge(1, nullptr, nullptr, nullptr, nullptr);
     },
     "merged range 1 is out of range 0..0"},
    {"clear", [](Refusing& s) { return s.sheet->clear(5, -1), true; },
     "first row 5 is after last row -1"},
    {"copy", [](Refusing& s) { return !s.sheet->copyCell(0, 0, 0, -1); },
     "column -1 is out of range 0..16383"},
};

template <void (libxl::Sheet::*kSet)(double)>
bool set_margin(Refusing& s) {
  return (s.sheet->*kSet)(49.5), true;
}

const Refusal kViews[] = {
    {"break above a row that is not there",
     [](Refusing& s) { return !s.sheet->setHorPageBreak(1048576); },
     "row 1048576 is out of range 0..1048575"},
    {"break above the first row", [](Refusing& s) { return !s.sheet->setHorPageBreak(0); },
     "page break row 0 is out of range 1..1048575"},
    {"break left of the first column", [](Refusing& s) { return !s.sheet->setVerPageBreak(0); },
     "page break column 0 is out of range 1..16383"},
    {"no breaks", [](Refusing& s) { return s.sheet->getHorPageBreak(0) == -1; },
     "row page break 0 is out of range: there are none"},
    {"break",
     [](Refusing& s) {
       s.sheet->setVerPageBreak(4);
       return s.sheet->getVerPageBreak(1) == -1;
     },
     "column page break 1 is out of range 0..0"},
    {"too many breaks",
     [](Refusing& s) {
       for (int row = 1; row <= 1023; ++row) s.sheet->setHorPageBreak(row);
       return s.sheet->setHorPageBreak(1023) && !s.sheet->setHorPageBreak(1024);
     },
     "too many page breaks: the limit is 1023"},
    {"split", [](Refusing& s) { return s.sheet->split(-1, 0), true; },
     "row -1 is out of range 0..1048575"},
    {"top left", [](Refusing& s) { return s.sheet->setTopLeftView(0, 16384), true; },
     "column 16384 is out of range 0..16383"},
    {"zoom", [](Refusing& s) { return s.sheet->setZoom(5), true; },
     "zoom 5 is out of range 10..400"},
    {"long password",
     [](Refusing& s) {
       return s.sheet->setProtect(true, std::wstring(256, L'p').c_str(),
                                  static_cast<libxl::EnhancedProtection>(-2)),
              true;
     },
     "password is 256 characters long, the limit is 255"},
    {"protection",
     [](Refusing& s) {
       return s.sheet->setProtect(true, L"", static_cast<libxl::EnhancedProtection>(32768)), true;
     },
     "protection 32768 is out of range -1..32767"},
    {"sheet state",
     [](Refusing& s) { return !s.sheet->setHidden(static_cast<libxl::SheetState>(3)); },
     "sheet state 3 is not known"},
    {"only visible sheet",
     [](Refusing& s) {
       s.book->addSheet(L"Hidden")->setHidden(libxl::StateVeryHidden);
       return !s.sheet->setHidden();
     },
     "sheet \"Data\" is the only visible sheet"},
    {"tab colour",
     [](Refusing& s) { return s.sheet->setTabColor(static_cast<libxl::Color>(70)), true; },
     "colour 70 is not known"},
    {"part of the tab colour", [](Refusing& s) { return s.sheet->setTabColor(0, 256, -1), true; },
     "green 256 is out of range 0..255"},
    {"print zoom", [](Refusing& s) { return s.sheet->setPrintZoom(401), true; },
     "print zoom 401 is out of range 10..400"},
    {"pages wide", [](Refusing& s) { return s.sheet->setPrintFit(-1, -1), true; },
     "pages wide -1 is out of range 0..32767"},
    {"pages tall", [](Refusing& s) { return s.sheet->setPrintFit(0, 32768), true; },
     "pages tall 32768 is out of range 0..32767"},
    {"no paper", [](Refusing& s) { return s.sheet->setPaper(static_cast<libxl::Paper>(48)), true; },
     "paper 48 is not known"},
    {"paper beyond",
     [](Refusing& s) { return s.sheet->setPaper(static_cast<libxl::Paper>(119)), true; },
     "paper 119 is not known"},
    {"long header",
     [](Refusing& s) { return !s.sheet->setHeader(std::wstring(256, L'h').c_str(), -1); },
     "header is 256 characters long, the limit is 255"},
    {"header margin", [](Refusing& s) { return !s.sheet->setHeader(L"h", kNaN); },
     "header margin is not a finite number"},
    {"footer margin", [](Refusing& s) { return !s.sheet->setFooter(L"f", -0.5); },
     "footer margin -0.5 is out of range 0..49"},
    {"left margin", set_margin<&libxl::Sheet::setMarginLeft>,
     "left margin 49.5 is out of range 0..49"},
    {"right margin", set_margin<&libxl::Sheet::setMarginRight>,
     "right margin 49.5 is out of range 0..49"},
    {"top margin", set_margin<&libxl::Sheet::setMarginTop>,
     "top margin 49.5 is out of range 0..49"},
    {"bottom margin", set_margin<&libxl::Sheet::setMarginBottom>,
     "bottom margin 49.5 is out of range 0..49"},
};

const Refusal kBook[] = {
    {"sheet index", [](Refusing& s) { return !s.book->getSheet(1); },
     "sheet 1 is out of range 0..0"},
    {"negative index", [](Refusing& s) { return s.book->sheetType(-1) == libxl::SheetUnknown; },
     "sheet -1 is out of range 0..0"},
    {"move to", [](Refusing& s) { return !s.book->moveSheet(0, 1); },
     "sheet 1 is out of range 0..0"},
    {"position", [](Refusing& s) { return !s.book->insertSheet(2, L""); },
     "sheet position 2 is out of range 0..1"},
    {"no name", [](Refusing& s) { return !s.book->addSheet(nullptr); }, "sheet name is empty"},
    {"long name", [](Refusing& s) { return !s.book->addSheet(std::wstring(32, L'a').c_str()); },
     "sheet name is 32 characters long, the limit is 31"},
    {"long name in units",
     [](Refusing& s) {
       std::wstring name;
       for (int i = 0; i < 16; ++i) name += L"\U0001F600";
       return !s.book->addSheet(name.c_str());
     },
     "sheet name is 32 characters long, the limit is 31"},
    {"character", [](Refusing& s) { return !s.book->addSheet(L"a/b"); },
     R"(sheet name "a/b" holds a character that is not allowed: /)"},
    {"control character", [](Refusing& s) { return !s.book->addSheet(L"a\tb"); },
     "sheet name \"a\tb\" holds a character that is not allowed: U+0009"},
    {"apostrophe", [](Refusing& s) { return !s.book->addSheet(L"it'"); },
     R"(sheet name "it'" begins or ends with an apostrophe)"},
    {"reserved", [](Refusing& s) { return !s.book->addSheet(L"HISTORY"); },
     R"(sheet name "HISTORY" is reserved)"},
    {"used", [](Refusing& s) { return !s.book->addSheet(L"dATA"); },
     R"(sheet name "dATA" is already used)"},
    {"copy of another book's", [](Refusing& s) { return !s.book->addSheet(L"x", s.other.sheet); },
     "the sheet belongs to another book"},
    {"copy of a deleted one", [](Refusing& s) { return !s.book->addSheet(L"x", s.gone); },
     "the sheet is no longer in the book"},
    {"format index", [](Refusing& s) { return !s.book->format(1); },
     "format 1 is out of range 0..0"},
    {"font index", [](Refusing& s) { return !s.book->font(-1); }, "font -1 is out of range 0..0"},
    {"no number format", [](Refusing& s) { return s.book->addCustomNumFormat(L"") == 0; },
     "number format is empty"},
    {"bad number format", [](Refusing& s) { return s.book->addCustomNumFormat(LR"(0"x)") == 0; },
     R"(number format "0"x" is not valid)"},
    {"unknown number format", [](Refusing& s) { return !s.book->customNumFormat(164); },
     "number format 164 is not known"},
    {"default font", [](Refusing& s) { return s.book->setDefaultFont(L"Arial", 410), true; },
     "font size 410 is out of range 1..409"},
    {"date", [](Refusing& s) { return s.book->datePack(2023, 2, 29) == 0; },
     "date 2023-02-29 is not a valid date"},
    {"date before time", [](Refusing& s) { return s.book->datePack(2023, 13, 1, 99) == 0; },
     "date 2023-13-01 is not a valid date"},
    {"time", [](Refusing& s) { return s.book->datePack(2023, 1, 1, 0, 60) == 0; },
     "minute 60 is out of range 0..59"},
    {"component", [](Refusing& s) { return s.book->colorPack(0, 256, 999) == 0; },
     "green 256 is out of range 0..255"},
    {"colour",
     [](Refusing& s) {
       return s.book->colorUnpack(static_cast<libxl::Color>(70), nullptr, nullptr, nullptr), true;
     },
     "colour 70 is not known"},
    {"file name", [](Refusing& s) { return !s.book->save(L""); }, "file name is empty"},
    {"no such file", [](Refusing& s) { return !s.book->load(L"/tmp/no such file.xlsx"); },
     R"(file "/tmp/no such file.xlsx" cannot be opened: no such file)"},
    {"no such folder", [](Refusing& s) { return !s.book->save(L"/nowhere/a.xlsx"); },
     R"(file "/nowhere/a.xlsx" cannot be written: no such folder)"},
    {"no bytes", [](Refusing& s) { return !s.book->loadRaw(nullptr, 5); },
     "workbook data is empty"},
    {"no workbook", [](Refusing& s) { return !s.book->loadRaw("a;b;c", 5); },
     "the workbook data is not an .xlsx workbook"},
    {"rows", [](Refusing& s) { return !s.book->loadPartially(L"/nowhere/a.xlsx", 0, 5, 4); },
     "first row 5 is after last row 4"},
};

void expect_refusals(std::span<const Refusal> cases) {
  for (const Refusal& refusal : cases) {
    SCOPED_TRACE(refusal.call);
    Refusing stage;
    ASSERT_TRUE(stage.gone);
    EXPECT_TRUE(refusal.failed(stage));
    EXPECT_EQ(stage.message(), refusal.message);
    EXPECT_EQ(stage.message(), refusal.message) << "asked again";
    stage.book->sheetCount();
    EXPECT_EQ(stage.message(), "ok");
  }
}

TEST(Refusals, Cells) { expect_refusals(kCells); }

TEST(Refusals, Shape) { expect_refusals(kShape); }

TEST(Refusals, PagesAndViews) { expect_refusals(kViews); }

TEST(Refusals, Book) { expect_refusals(kBook); }

TEST(Refusals, OldBooksHaveTheSmallGrid) {
  Stage old(xlCreateBookW());
  EXPECT_FALSE(old.sheet->writeNum(65536, 0, 1));
  EXPECT_EQ(old.message(), "row 65536 is out of range 0..65535");
  EXPECT_FALSE(old.sheet->writeFormula(0, 0, L"IW1"));
  EXPECT_EQ(old.message(), "formula refers to IW1, beyond the last cell IV65536");
  old.sheet->setProtect(true, L"sixteen letters!");
  EXPECT_EQ(old.message(), "password is 16 characters long, the limit is 15");
  EXPECT_FALSE(old.book->load(L"/nowhere/a.xls"));
  EXPECT_EQ(old.message(), "file \"/nowhere/a.xls\" cannot be opened: no such folder");
  EXPECT_EQ(old.book->biffVersion(), 1536);
  int size = 0;
  EXPECT_STREQ(old.book->defaultFont(&size), L"Arial");
  EXPECT_EQ(size, 10);
}

TEST(Refusals, NothingIsSavedWithoutAVisibleSheet) {
  Stage stage;
  stage.book->delSheet(0);
  EXPECT_FALSE(stage.book->saveRaw(nullptr, nullptr));
  EXPECT_EQ(stage.message(), "the book has no sheets");
}

}  // namespace
