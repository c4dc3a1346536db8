// Short memory: std::bad_alloc leaves every operation, and what can be read is as before.
#include <gmock/gmock.h>

#include <atomic>
#include <cstdlib>
#include <functional>
#include <new>

#include "tests/api/stage.h"

namespace {

// Allocations until one fails; below zero none does.
std::atomic<long> g_until_failure = -1;
std::atomic<long> g_blocks_in_use = 0;

void* allocate(std::size_t size) {
  if (g_until_failure == 0) throw std::bad_alloc();
  if (g_until_failure > 0) --g_until_failure;
  void* block = std::malloc(size == 0 ? 1 : size);
  if (!block) throw std::bad_alloc();
  ++g_blocks_in_use;
  return block;
}

void release(void* block) {
  if (block) --g_blocks_in_use;
  std::free(block);
}

}  // namespace

void* operator new(std::size_t size) { return allocate(size); }
void* operator new[](std::size_t size) { return allocate(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  try {
    return allocate(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}
void operator delete(void* block) noexcept { release(block); }
void operator delete[](void* block) noexcept { release(block); }
void operator delete(void* block, std::size_t) noexcept { release(block); }
void operator delete[](void* block, std::size_t) noexcept { release(block); }

namespace {

// What can be read of a book, as one text.
std::wstring contents(libxl::Book& book) {
  std::wstring all = std::to_wstring(book.activeSheet());
  for (int i = 0; i < book.sheetCount(); ++i) {
    all.append(L"\n").append(book.getSheetName(i));
    libxl::Sheet& sheet = *book.getSheet(i);
    for (int row = 0; row < sheet.lastRow(); ++row) {
      for (int column = 0; column < sheet.lastCol(); ++column) {
        all.append(L" ").append(std::to_wstring(sheet.cellType(row, column)));
        const wchar_t* formula = sheet.readFormula(row, column);
        all.append(formula ? formula : L"");
        const wchar_t* text = sheet.readStr(row, column);
        all.append(text ? text : L"");
        const wchar_t* comment = sheet.readComment(row, column);
        all.append(comment ? comment : L"");
      }
    }
  }
  all.append(std::to_wstring(book.formatSize())).append(std::to_wstring(book.fontSize()));
  return all;
}

struct Operation {
  const char* name;
  void (*run)(Stage&);
};
const Operation kOperations[] = {
    {"writeNum", [](Stage& s) { s.sheet->writeNum(900, 9, 1); }},
    {"writeStr",
     [](Stage& s) { s.sheet->writeStr(900, 9, L"a text that is long enough to allocate"); }},
    {"writeStr over a formula",
     [](Stage& s) { s.sheet->writeStr(0, 1, L"another long text for it"); }},
    {"writeFormulaStr",
     [](Stage& s) { s.sheet->writeFormulaStr(9, 9, L"SUM(B:B!A1,1)", L"cached"); }},
    {"writeComment", [](Stage& s) { s.sheet->writeComment(0, 0, L"a long text of another note"); }},
    {"addSheet", [](Stage& s) { s.book->addSheet(L"A name that allocates"); }},
    {"copy of a sheet",
     [](Stage& s) { s.book->insertSheet(0, L"A name that allocates", s.sheet); }},
    {"delSheet", [](Stage& s) { s.book->delSheet(1); }},
    {"addFormat", [](Stage& s) { s.book->addFormat(); }},
    {"addFont", [](Stage& s) { s.book->addFont(); }},
    {"refusal", [](Stage& s) { s.sheet->writeNum(-1, 0, 1); }},
    {"loadRaw",
     [](Stage& s) {
       const char* data = nullptr;
       unsigned size = 0;
       if (s.book->saveRaw(&data, &size)) s.book->loadRaw(data, size);
     }},
};

Stage make_stage() {
  Stage stage;
  stage.book->addSheet(L"B");
  stage.sheet->writeStr(0, 0, L"text");
  stage.sheet->writeFormulaNum(0, 1, L"B!A1+1", 5);
  stage.sheet->writeComment(0, 0, L"note", L"author");
  return stage;
}

TEST(Memory, ShortAtAnyPointChangesNothing) {
  for (const Operation& operation : kOperations) {
    SCOPED_TRACE(operation.name);
    bool done = false;
    long failing = 0;
    for (; !done && failing < 5000; ++failing) {
      Stage stage = make_stage();
      const std::wstring before = contents(*stage.book);
      stage.book->sheetCount();
      g_until_failure = failing;
      try {
        operation.run(stage);
        done = true;
      } catch (const std::bad_alloc&) {
      }
      g_until_failure = -1;
      if (done) break;
      EXPECT_EQ(stage.message(), "ok") << failing;
      EXPECT_TRUE(contents(*stage.book) == before) << "allocation " << failing;
    }
    EXPECT_TRUE(done);
    EXPECT_GT(failing, 0) << "nothing was allocated";
  }
}

TEST(Memory, FactoriesGiveNothingWhenItIsShort) {
  for (long failing = 0; failing < 5; ++failing) {
    g_until_failure = failing;
    libxl::Book* book = xlCreateXMLBookW();
    g_until_failure = -1;
    EXPECT_EQ(book, nullptr) << failing;
  }
}

TEST(Memory, ABookLoadedAgainAndAgainHoldsOneFilesContents) {
  Stage stage = make_stage();
  for (int row = 0; row < 500; ++row)
    stage.sheet->writeFormulaStr(row, 0, LR"(B!A1&"a formula that is long enough")", L"text");
  const long before = g_blocks_in_use;
  const char* data = nullptr;
  unsigned size = 0;
  ASSERT_TRUE(stage.book->saveRaw(&data, &size));
  const std::string bytes(data, size);
  for (int i = 0; i < 100; ++i) {
    ASSERT_TRUE(stage.book->loadRaw(bytes.data(), size));
    libxl::Format* format = nullptr;
    stage.book->getSheet(0)->readStr(0, 0, &format);
  }
  // What is left of the others are the objects that were handed out: a sheet and a format each.
  EXPECT_LT(g_blocks_in_use - before, 500);
}

}  // namespace
