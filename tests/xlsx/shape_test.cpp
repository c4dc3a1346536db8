// What a worksheet says of columns and merges: only what the model changes is written anew.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/xlsx/packages.h"

namespace engine::xlsx {
namespace {

using testing::HasSubstr;

// The worksheet with the elements around its rows, loaded, edited and saved.
std::string after(const char* head, const char* tail, void (*edit)(SheetContents&)) {
  const auto book = load(book_of(worksheet({}, head, tail)));
  edit(book->read().change());
  return unzip(book->save()).at("xl/worksheets/sheet1.xml");
}

void widen(SheetContents& sheet, int first, int last) {
  const auto edit = [](ColumnProperties& run) { run.width = 30; };
  sheet.columns.change({{first, last, edit}});
}

TEST(Shape, WhatIsNotModelledStaysInItsPlace) {
  const struct {
    const char* head;
    const char* tail;
    void (*edit)(SheetContents& sheet);
    const char* saved;
  } cases[] = {
      // Pieces of a run say what the run said; joined ones what they said apart.
      {R"(<cols x="1"><col min="1" max="9" width="20" phonetic="1" customWidth="1"/></cols>)", "",
       [](SheetContents& sheet) { widen(sheet, 2, 3); },
       R"(<cols x="1"><col min="1" max="2" width="20" phonetic="1" customWidth="1"/>)"
       R"(<col min="3" max="4" width="30" phonetic="1" customWidth="1"/>)"
       R"(<col min="5" max="9" width="20" phonetic="1" customWidth="1"/></cols>)"},
      {R"(<cols><col min="1" max="2" width="20"/><col min="3" max="3" width="9" phonetic="1"/>)"
       R"(<col min="4" max="5" width="30"/></cols>)",
       "", [](SheetContents& sheet) { widen(sheet, 0, 2); },
       R"(<cols><col min="1" max="2" width="30"/><col min="3" max="3" width="30" phonetic="1"/>)"
       R"(<col min="4" max="5" width="30"/></cols>)"},
      {R"(<cols><col min="1" max="2" width="20"/><col min="3" max="4" width="30"/></cols>)", "",
       [](SheetContents& sheet) { widen(sheet, 0, 1); },
       R"(<cols><col min="1" max="4" width="30"/></cols>)"},
      // A width that nobody set is the default one; the file's may be left out.
      {R"(<cols><col min="2" max="2" hidden="1"/></cols>)", "",
       [](SheetContents& sheet) {
         const auto hide = [](ColumnProperties& run) { run.hidden = true; };
         sheet.columns.change({{7, 7, hide}});
       },
       R"(<col min="2" max="2" hidden="1"/><col min="8" max="8" width="9.140625" hidden="1"/>)"},
      {"",
       R"(<mergeCells count="7"><mergeCell ref="A1:B2"/><mergeCell ref="?"/><mergeCell ref="C1:D2"/>)"
       R"(<x/></mergeCells><phoneticPr fontId="1"/>)",
       [](SheetContents& sheet) {
         sheet.merges.remove(0);
         sheet.merges.add({8, 9, 0, 0});
       },
       R"(<mergeCells count="3"><mergeCell ref="?"/><mergeCell ref="C1:D2"/><x/>)"
       R"(<mergeCell ref="A9:A10"/></mergeCells><phoneticPr fontId="1"/>)"},
      {"", R"(<mergeCells count="7"><mergeCell ref="A1:B2"/></mergeCells><phoneticPr fontId="1"/>)",
       [](SheetContents& sheet) { sheet.merges.remove(0); },
       R"(</sheetData><phoneticPr fontId="1"/>)"},
      {"", R"(<mergeCells count="7"><mergeCell ref="b2:A1"/></mergeCells>)",
       [](SheetContents& sheet) { sheet.summary_below = false; },
       R"(<mergeCells count="7"><mergeCell ref="b2:A1"/></mergeCells>)"},
      {R"(<sheetPr codeName="x"><tabColor rgb="FF000000"/><pageSetUpPr fitToPage="1"/></sheetPr>)",
       "", [](SheetContents& sheet) { sheet.summary_right = false; },
       R"(<tabColor rgb="FF000000"/><outlinePr summaryRight="0"/><pageSetUpPr fitToPage="1"/>)"},
      {R"(<sheetPr><outlinePr applyStyles="1" summaryBelow="false"/></sheetPr>)", "",
       [](SheetContents& sheet) { sheet.summary_below = true; },
       R"(<sheetPr><outlinePr applyStyles="1"/></sheetPr>)"},
  };
  for (const auto& [head, tail, edit, saved] : cases) {
    SCOPED_TRACE(saved);
    EXPECT_THAT(after(head, tail, edit), HasSubstr(saved));
  }
}

}  // namespace
}  // namespace engine::xlsx
