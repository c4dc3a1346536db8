// Short memory: std::bad_alloc leaves every operation, and the book is what it was before.
#include <gmock/gmock.h>

#include <new>

#include "tests/api/files.h"
#include "tests/package/temp_folder.h"
#include "tests/support/pictures.h"
#include "tests/support/short_memory.h"
#include "tests/xlsx/rich_package.h"

namespace {

using short_memory::Failing;
using short_memory::Shortage;

// Sanitized programs take ten times as long, so they leave out most of the points.
#ifdef VORNELIX_SANITIZED
constexpr long kStride = 11;
#else
constexpr long kStride = 1;
#endif

const std::string& rich_bytes() {
  static const std::string bytes = engine::xlsx::zip(engine::xlsx::rich_package());
  return bytes;
}

// The books that operations are tried on. Sheets that a loaded one does not need stay unread.
Stage new_book() {
  Stage stage;
  stage.book->addSheet(L"More");
  stage.sheet->writeStr(0, 0, L"text");
  for (const int column : {1, 2}) stage.sheet->writeFormulaNum(0, column, L"More!A1+1", 5);
  stage.sheet->writeComment(0, 0, L"note", L"author");
  const std::string bytes = pictures::png(5, 4);
  stage.book->addPicture2(bytes.data(), static_cast<unsigned>(bytes.size()));
  stage.sheet->setPicture(2, 2, 0);
  return stage;
}

Stage loaded(int sheet, int first, int last) {
  Stage stage;
  EXPECT_TRUE(load(*stage.book, rich_bytes(), sheet, first, last)) << stage.message();
  stage.sheet = stage.book->getSheet(0);
  return stage;
}
Stage whole_book() { return loaded(-1, -1, -1); }
Stage part_of_book() { return loaded(0, 1, 2); }

// So much that a second thread reads and writes parts of it.
Stage fill_sheet() {
  Stage stage;
  std::wstring text(300, L'x');
  for (int row = 0; row < 4000; ++row) {
    stage.sheet->writeStr(row, 0, (text + std::to_wstring(row)).c_str());
    for (const int column : {1, 2, 3}) stage.sheet->writeNum(row, column, row / 7.0);
  }
  return stage;
}
Stage large_book() {
  static const std::string bytes = saved(*fill_sheet().book);
  Stage stage;
  EXPECT_TRUE(load(*stage.book, bytes));
  return stage;
}

// With something new in all that a save writes.
Stage changed_book() {
  Stage stage = whole_book();
  libxl::Format* format = stage.book->addFormat(stage.book->format(1));
  format->setFont(stage.book->addFont());
  format->setBorder(libxl::BorderThin);
  stage.book->getSheet(1)->writeStr(5, 5, L"a new text", format);
  stage.sheet->writeComment(3, 3, L"another note", L"Bob");
  stage.sheet->setPicture(4, 4, 0);
  stage.book->insertSheet(1, L"Copy", stage.sheet);
  stage.book->setActiveSheet(2);
  return stage;
}
Stage changed_part() {
  Stage stage = part_of_book();
  stage.sheet->writeNum(1, 9, 1);
  return stage;
}

using Call = void (*)(Stage&);

struct Operation {
  const char* name = nullptr;
  Stage (*make)() = nullptr;
  Call run = nullptr;
  Call next = run;  // what is called when memory sufficed again
};
const Operation kOperations[] = {
    {"load", new_book, [](Stage& s) { load(*s.book, rich_bytes()); }},
    {"load of rows", whole_book, [](Stage& s) { load(*s.book, rich_bytes(), 0, 1, 2); }},
    {"getSheet", whole_book, [](Stage& s) { s.book->getSheet(1); }},
    {"getSheet of many rows", large_book, [](Stage& s) { s.book->getSheet(0); }},
    {"writeNum", whole_book, [](Stage& s) { s.sheet->writeNum(900, 9, 1); }},
    {"writeNum over a formula", whole_book, [](Stage& s) { s.sheet->writeNum(1, 2, 1); }},
    {"writeStr", whole_book,
     [](Stage& s) { s.sheet->writeStr(900, 9, L"a text that is long enough to allocate"); }},
    {"writeStr into some rows", part_of_book,
     [](Stage& s) { s.sheet->writeStr(2, 9, L"a text that is long enough to allocate"); }},
    {"writeStr over a formula", new_book,
     [](Stage& s) { s.sheet->writeStr(0, 1, L"another long text for it"); }},
    {"writeBool", whole_book,
     [](Stage& s) { s.sheet->writeBool(900, 9, true, s.book->format(1)); }},
    {"writeFormula", whole_book,
     [](Stage& s) { s.sheet->writeFormula(2, 2, L"[@Value]*SUM(More!A1:A9)"); }},
    {"writeFormulaStr", new_book,
     [](Stage& s) { s.sheet->writeFormulaStr(9, 9, L"SUM(More!A1,1)", L"cached"); }},
    {"writeComment", whole_book,
     [](Stage& s) { s.sheet->writeComment(0, 0, L"a long text of another note", L"Bob"); }},
    {"writeComment elsewhere", whole_book,
     [](Stage& s) { s.sheet->writeComment(9, 9, L"a long text of another note", L"Ann"); }},
    {"removeComment", whole_book, [](Stage& s) { s.sheet->removeComment(0, 0); }},
    {"addPicture2", whole_book,
     [](Stage& s) {
       const std::string bytes = pictures::png(7, 7);
       s.book->addPicture2(bytes.data(), static_cast<unsigned>(bytes.size()));
     }},
    {"getPicture", whole_book, [](Stage& s) { s.book->getPicture(0, nullptr, nullptr); }},
    {"setPicture", new_book, [](Stage& s) { s.sheet->setPicture(5, 5, 0); }},
    {"setPicture beside others", whole_book, [](Stage& s) { s.sheet->setPicture(5, 5, 0); }},
    {"setCellFormat", whole_book,
     [](Stage& s) { s.sheet->setCellFormat(900, 9, s.book->format(2)); }},
    {"addSheet", new_book, [](Stage& s) { s.book->addSheet(L"A name that allocates"); }},
    {"addSheet to what was loaded", whole_book,
     [](Stage& s) { s.book->addSheet(L"A name that allocates"); }},
    {"copy of a sheet", new_book,
     [](Stage& s) { s.book->insertSheet(0, L"A name that allocates", s.sheet); }},
    {"copy of a sheet that was loaded", whole_book,
     [](Stage& s) { s.book->insertSheet(0, L"A name that allocates", s.sheet); }},
    {"copy of a sheet that goes next", whole_book,
     [](Stage& s) { s.book->insertSheet(0, L"A name that allocates", s.sheet); },
     [](Stage& s) { s.book->delSheet(0); }},
    {"copy of a copy", changed_book,
     [](Stage& s) { s.book->insertSheet(0, L"A name that allocates", s.book->getSheet(1)); }},
    {"moveSheet", whole_book, [](Stage& s) { s.book->moveSheet(0, 1); }},
    {"delSheet", new_book, [](Stage& s) { s.book->delSheet(1); }},
    {"delSheet with parts", whole_book, [](Stage& s) { s.book->delSheet(0); }},
    {"delSheet that others mean", whole_book, [](Stage& s) { s.book->delSheet(1); }},
    {"delSheet that a copy shares with", changed_book, [](Stage& s) { s.book->delSheet(0); }},
    {"delSheet beside some rows", part_of_book, [](Stage& s) { s.book->delSheet(1); }},
    {"setActiveSheet", whole_book, [](Stage& s) { s.book->setActiveSheet(2); }},
    {"setHorPageBreak", whole_book, [](Stage& s) { s.sheet->setHorPageBreak(5); }},
    {"split", whole_book, [](Stage& s) { s.sheet->split(3, 2); }},
    {"setHeader", whole_book,
     [](Stage& s) { s.sheet->setHeader(L"&La header that is long enough to allocate", 1.5); }},
    {"setHeader that is refused", whole_book, [](Stage& s) { s.sheet->setHeader(L"h", -1); }},
    {"setPaper", whole_book, [](Stage& s) { s.sheet->setPaper(libxl::PaperA4); }},
    {"setTabColor", whole_book, [](Stage& s) { s.sheet->setTabColor(1, 2, 3); }},
    {"setProtect", whole_book, [](Stage& s) { s.sheet->setProtect(); }},
    {"setHidden", whole_book, [](Stage& s) { s.sheet->setHidden(); }},
    {"insertRow", whole_book, [](Stage& s) { s.sheet->insertRow(1, 3); }},
    {"insertRow of a look", new_book, [](Stage& s) { s.sheet->insertRow(1, 3); }},
    {"insertRow into another sheet", whole_book,
     [](Stage& s) { s.book->getSheet(1)->insertRow(1, 3); }},
    {"insertRow beside rows outside", part_of_book, [](Stage& s) { s.sheet->insertRow(2, 4); }},
    {"insertCol", whole_book, [](Stage& s) { s.sheet->insertCol(1, 3); }},
    {"insertCol beside rows outside", part_of_book, [](Stage& s) { s.sheet->insertCol(1, 1); }},
    {"removeRow", whole_book, [](Stage& s) { s.sheet->removeRow(1, 1); }},
    {"removeRow with a table", whole_book, [](Stage& s) { s.sheet->removeRow(0, 2); }},
    {"removeCol", whole_book, [](Stage& s) { s.sheet->removeCol(1, 1); }},
    {"addFormat", whole_book, [](Stage& s) { s.book->addFormat(s.book->format(1)); }},
    {"addFont", whole_book, [](Stage& s) { s.book->addFont(s.book->font(1)); }},
    {"addCustomNumFormat", whole_book,
     [](Stage& s) { s.book->addCustomNumFormat(L"0.0000\" litres or more\""); }},
    {"setNumFormat", whole_book, [](Stage& s) { s.book->format(1)->setNumFormat(14); }},
    {"setName", whole_book, [](Stage& s) { s.book->font(1)->setName(L"A font of a long name"); }},
    {"setDefaultFont", whole_book,
     [](Stage& s) { s.book->setDefaultFont(L"A font of a long name", 20); }},
    {"setCol", whole_book, [](Stage& s) { s.sheet->setCol(1, 5, 12, s.book->format(1)); },
     [](Stage& s) { s.sheet->setCol(0, 0, 3); }},
    {"setRow", new_book, [](Stage& s) { s.sheet->setRow(900, 33, s.book->format(0), true); }},
    {"groupRows", new_book, [](Stage& s) { s.sheet->groupRows(100, 230); }},
    {"groupCols", whole_book, [](Stage& s) { s.sheet->groupCols(1, 8); }},
    {"setMerge", whole_book, [](Stage& s) { s.sheet->setMerge(10, 12, 3, 4); }},
    {"clear", whole_book, [](Stage& s) { s.sheet->clear(0, 20, 1, 9); }},
    {"copyCell", whole_book, [](Stage& s) { s.sheet->copyCell(2, 3, 900, 9); }},
    {"setRef of a filter", whole_book,
     [](Stage& s) { s.sheet->autoFilter()->setRef(9, 12, 0, 3); }},
    {"criteria of a filter", whole_book,
     [](Stage& s) {
       libxl::FilterColumn* column = s.sheet->autoFilter()->column(1);
       column->setCustomFilter(libxl::OperatorLess, L"a value that is long enough to allocate");
     },
     [](Stage& s) { s.sheet->autoFilter()->column(0)->setTop10(3); }},
    {"addFilter", whole_book,
     [](Stage& s) {
       libxl::FilterColumn* column = s.sheet->autoFilter()->column(0);
       column->addFilter(L"a value that is long enough to allocate");
     }},
    {"setSort", whole_book, [](Stage& s) { s.sheet->autoFilter()->setSort(1); }},
    {"applyFilter", whole_book, [](Stage& s) { s.sheet->applyFilter(); }},
    {"removeFilter", whole_book, [](Stage& s) { s.sheet->removeFilter(); }},
    {"addHyperlink", whole_book,
     [](Stage& s) { s.sheet->addHyperlink(L"http://a.example/a long address", 5, 6, 7, 8); }},
    {"addHyperlink in place of another", whole_book,
     [](Stage& s) { s.sheet->addHyperlink(L"a path that allocates.txt", 0, 0, 0, 0); }},
    {"addDataValidation", new_book,
     [](Stage& s) {
       s.sheet->addDataValidation(libxl::ValidationList, libxl::ValidationBetween, 5, 6, 7, 8,
                                  L"a list that allocates,b", L"", true);
     }},
    {"addDataValidation over another", whole_book,
     [](Stage& s) {
       s.sheet->addDataValidation(libxl::ValidationCustom, libxl::ValidationBetween, 0, 90, 0, 9,
                                  L"SUM(More!A1:A9)>A1", L"", true);
     }},
    {"removeDataValidations", whole_book, [](Stage& s) { s.sheet->removeDataValidations(); }},
    {"addIgnoredError", whole_book,
     [](Stage& s) { s.sheet->addIgnoredError(0, 1, 2, 3, libxl::IgnoreEvalError); }},
    {"delHyperlink", whole_book, [](Stage& s) { s.sheet->delHyperlink(0); }},
    {"setNamedRange", whole_book,
     [](Stage& s) { s.sheet->setNamedRange(L"A_name_that_allocates", 1, 2, 3, 4); }},
    {"setNamedRange of one that is there", whole_book,
     [](Stage& s) {
       s.sheet->namedRangeSize();
       s.sheet->setNamedRange(L"all", 1, 2, 3, 4);
     }},
    {"delNamedRange", whole_book, [](Stage& s) { s.sheet->delNamedRange(L"all"); }},
    {"namedRangeSize", whole_book, [](Stage& s) { s.sheet->namedRangeSize(); }},
    {"setPrintRepeatRows", whole_book, [](Stage& s) { s.sheet->setPrintRepeatRows(0, 1); }},
    {"setPrintArea", new_book, [](Stage& s) { s.sheet->setPrintArea(0, 1, 2, 3); }},
    {"setName of a sheet", whole_book,
     [](Stage& s) { s.book->getSheet(1)->setName(L"A name that allocates"); }},
    {"setName beside some rows", part_of_book,
     [](Stage& s) { s.sheet->setName(L"A name that allocates"); }},
    {"refusal", new_book, [](Stage& s) { s.sheet->writeNum(-1, 0, 1); }},
};

// Part by part: what a new book says of the time it was begun may differ.
void expect_same(const std::string& bytes, const std::string& wanted) {
  if (bytes == wanted) return;
  engine::xlsx::PartTexts parts = engine::xlsx::unzip(bytes);
  engine::xlsx::PartTexts all = engine::xlsx::unzip(wanted);
  parts.erase("docProps/core.xml");
  all.erase("docProps/core.xml");
  for (const auto& [name, text] : all) EXPECT_EQ(parts[name], text) << name;
  for (const auto& [name, text] : parts) EXPECT_TRUE(all.contains(name)) << name;
}

// What came of a call while memory was short.
enum class Outcome : std::uint8_t { kEnough, kDone, kFailed };

template <class Run>
Outcome run_short(long allowed, Failing failing, const Run& run) {
  bool struck = false;
  try {
    const Shortage shortage(allowed, failing, struck);
    run();
  } catch (const std::bad_alloc&) {
    return Outcome::kFailed;
  }
  return struck ? Outcome::kDone : Outcome::kEnough;
}

// Tries the operation with more and more allocations until it needs no more. Each time it is done
// as if memory had sufficed, or leaves what there was.
void try_short_of_everything(const Operation& operation, Failing failing, long step) {
  Stage untouched = operation.make();
  const std::string before = saved(*untouched.book);
  Stage done = operation.make();
  operation.run(done);
  const std::string message = done.message();
  const std::string after = saved(*done.book);
  operation.next(untouched);
  const std::string after_next = saved(*untouched.book);
  for (long allowed = 0; !testing::Test::HasFailure(); allowed += step) {
    SCOPED_TRACE(allowed);
    const long blocks = short_memory::blocks_in_use();
    Outcome outcome = Outcome::kFailed;
    {
      Stage stage = operation.make();
      outcome = run_short(allowed, failing, [&] { operation.run(stage); });
      EXPECT_EQ(stage.message(), outcome == Outcome::kFailed ? "ok" : message);
      expect_same(saved(*stage.book), outcome == Outcome::kFailed ? before : after);
      if (outcome == Outcome::kFailed) {
        operation.next(stage);
        expect_same(saved(*stage.book), after_next);
      }
    }
    EXPECT_EQ(short_memory::blocks_in_use(), blocks);
    if (outcome == Outcome::kEnough) break;
  }
}

TEST(Memory, ShortAtAnyPointChangesNothing) {
  for (const Operation& operation : kOperations) {
    SCOPED_TRACE(operation.name);
    try_short_of_everything(operation, Failing::kOnce, kStride);
    try_short_of_everything(operation, Failing::kOnward, kStride * 5);
  }
}

TEST(Memory, ASaveIsWholeOrNone) {
  for (const auto make : {new_book, whole_book, changed_book, changed_part, fill_sheet}) {
    Stage stage = make();
    const std::string wanted = saved(*stage.book);
    const char* data = nullptr;
    unsigned size = 0;
    Outcome outcome = Outcome::kFailed;
    for (long allowed = 0; outcome != Outcome::kEnough && !HasFailure(); ++allowed) {
      SCOPED_TRACE(allowed);
      outcome = run_short(allowed, Failing::kOnce,
                          [&] { EXPECT_TRUE(stage.book->saveRaw(&data, &size)); });
      EXPECT_EQ(stage.message(), "ok");
      if (outcome != Outcome::kFailed) expect_same({data, size}, wanted);
    }
    expect_same(saved(*stage.book), wanted);
  }
}

// The file stays as it was, and nothing is left beside it.
TEST(Memory, AFileIsReplacedWhenAllIsWritten) {
  const engine::package::testing::TempFolder folder;
  const std::string path = folder.file("book.xlsx");
  Stage stage = new_book();
  const std::string wanted = saved(*stage.book);
  Outcome outcome = Outcome::kFailed;
  for (long allowed = 0; outcome != Outcome::kEnough && !HasFailure(); ++allowed) {
    SCOPED_TRACE(allowed);
    folder.write("book.xlsx", "former");
    outcome = run_short(allowed, Failing::kOnward, [&] {
      EXPECT_TRUE(stage.book->save(std::wstring(path.begin(), path.end()).c_str()));
    });
    EXPECT_EQ(stage.message(), "ok");
    EXPECT_TRUE(folder.read("book.xlsx") == (outcome == Outcome::kFailed ? "former" : wanted));
    EXPECT_EQ(folder.names().size(), 1U);
  }
}

TEST(Memory, FactoriesGiveNothingWhenItIsShort) {
  bool struck = true;
  for (long allowed = 0; struck; ++allowed) {
    libxl::Book* book = nullptr;
    {
      const Shortage shortage(allowed, Failing::kOnward, struck);
      book = xlCreateXMLBookW();
    }
    EXPECT_EQ(book == nullptr, struck) << allowed;
    if (book) book->release();
  }
}

TEST(Memory, ABookLoadedAgainAndAgainHoldsOneFilesContents) {
  Stage stage = new_book();
  for (int row = 0; row < 500; ++row)
    stage.sheet->writeFormulaStr(row, 0, LR"(More!A1&"a formula that is long enough")", L"text");
  const std::string bytes = saved(*stage.book);
  const long before = short_memory::blocks_in_use();
  for (int i = 0; i < 100; ++i) {
    ASSERT_TRUE(load(*stage.book, bytes));
    libxl::Format* format = nullptr;
    stage.book->getSheet(0)->readStr(0, 0, &format);
  }
  // What is left of the others are the objects that were handed out: a sheet and a format each.
  EXPECT_LT(short_memory::blocks_in_use() - before, 500);
}

}  // namespace
