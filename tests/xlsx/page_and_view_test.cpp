// What a worksheet's part says of views, protection and pages, before and after a change.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/xlsx/packages.h"

namespace engine::xlsx {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr const char* kPart = "xl/worksheets/sheet1.xml";

struct Ends {
  std::string head;
  std::string tail;

  friend bool operator==(const Ends&, const Ends&) = default;
};

void PrintTo(const Ends& ends, std::ostream* out) { *out << ends.head << " ... " << ends.tail; }

// What stands in front of and behind the rows of a saved worksheet.
Ends ends_of(const std::string& part) {
  const std::size_t begin = part.find('>', part.find("<worksheet")) + 1;
  const std::size_t rows = part.find("<sheetData");
  const std::size_t end = part.find("</sheetData>") + 12;
  Ends ends{part.substr(begin, rows - begin), part.substr(end, part.find("</worksheet>") - end)};
  // The used range, which every worksheet tells.
  const std::string dimension = "<dimension ref=\"A1\"/>";
  const std::size_t at = ends.head.find(dimension);
  if (at != std::string::npos) ends.head.erase(at, dimension.size());
  return ends;
}

// A change of the contents, or none; the sheet is written anew either way.
using Change = void (*)(SheetContents&);

Ends patched(const Ends& stored, Change change) {
  const auto book = load(book_of(worksheet("<row r=\"1\"/>", stored.head, stored.tail)));
  SheetContents& contents = book->read().change();
  if (change) change(contents);
  return ends_of(unzip(book->save())[kPart]);
}

struct Case {
  Ends stored;
  Change change;
  Ends wanted;
};

void expect_patches(std::initializer_list<Case> cases) {
  for (const auto& [stored, change, wanted] : cases) {
    SCOPED_TRACE(stored.head + stored.tail);
    EXPECT_EQ(patched(stored, change), wanted);
  }
}

// What programs may write there, known to the model or not: as it stands, and in the first case of
// each group of tests in part.
TEST(PagesAndViews, StandAsTheyWereRead) {
  const Ends kStored[] = {
      {R"(<sheetPr codeName="C" filterMode="1"><tabColor theme="4" tint="0.4"/>)"
       R"(<outlinePr summaryBelow="0"/><pageSetUpPr autoPageBreaks="0" fitToPage="true"/></sheetPr>)"
       R"(<sheetViews><sheetView showGridLines="false" zoomScale="60" zoomScaleNormal="85" )"
       R"(view="pageBreakPreview" workbookViewId="0" topLeftCell="C4" own="1">)"
       R"(<pane xSplit="2" ySplit="3.0" topLeftCell="F20" activePane="topRight" )"
       R"(state="frozenSplit"/><selection pane="topRight" activeCell="G4" sqref="G4 H5"/>)"
       R"(<pivotSelection pane="topRight"/></sheetView>)"
       R"(<sheetView workbookViewId="1" zoomScale="200"><pane xSplit="2000" ySplit="999"/>)"
       R"(</sheetView><extLst/></sheetViews>)",
       R"(<sheetProtection algorithmName="SHA-1" hashValue="aa==" saltValue="bb==" )"
       R"(spinCount="5" sheet="true" objects="0" sort="1" own="2"/>)"
       R"(<customSheetViews><customSheetView guid="g"><rowBreaks><brk id="9" man="1"/></rowBreaks>)"
       R"(<pageMargins left="1"/></customSheetView></customSheetViews>)"
       R"(<printOptions gridLines="1" gridLinesSet="0" own="3"/>)"
       R"(<pageMargins left="0.70000" right="1" top="nan" header=""/>)"
       R"(<pageSetup paperSize="133" paperHeight="20mm" scale="100" orientation="default" )"
       R"(cellComments="asDisplayed" r:id="rId7"><own/></pageSetup>)"
       R"(<headerFooter differentFirst="1"><oddHeader>&amp;L a _x0041_ )"
       "\n"
       R"(b</oddHeader><evenHeader/><firstFooter>f</firstFooter></headerFooter>)"
       R"(<rowBreaks count="9" manualBreakCount="7"><brk id="9" max="5" man="1"/>)"
       R"(<brk id="4"/><brk id="9" min="8" man="1" pt="1"/><brk id="0" man="1"/></rowBreaks>)"
       R"(<colBreaks/>)"},
      {"<sheetPr/><sheetViews/>",
       "<sheetProtection sheet=\"0\" objects=\"1\" password=\"CC1A\"/><printOptions/>"
       "<pageMargins/><pageSetup/><headerFooter/><rowBreaks/>"},
      {"<sheetViews><sheetView workbookViewId=\"0\"><pane state=\"frozen\" xSplit=\"-3\" "
       "ySplit=\"9999999\"/></sheetView></sheetViews>",
       ""},
      {"", ""},
  };
  for (const Ends& stored : kStored) EXPECT_EQ(patched(stored, nullptr), stored);
}

TEST(PagesAndViews, PropertiesKeepTheirOrder) {
  expect_patches({
      {{"", ""},
       [](SheetContents& c) { c.tab_color = Color::rgb(0x1280FF); },
       {R"(<sheetPr><tabColor rgb="FF1280FF"/></sheetPr>)", ""}},
      {{"", ""},
       [](SheetContents& c) { c.page.fitted = true; },
       {R"(<sheetPr><pageSetUpPr fitToPage="1"/></sheetPr>)", ""}},
      {{R"(<sheetPr codeName="C"><outlinePr summaryBelow="0"/></sheetPr>)", ""},
       [](SheetContents& c) {
         c.tab_color = Color::indexed(10);
         c.page.fitted = true;
       },
       {R"(<sheetPr codeName="C"><tabColor indexed="10"/><outlinePr summaryBelow="0"/>)"
        R"(<pageSetUpPr fitToPage="1"/></sheetPr>)",
        ""}},
      {{R"(<sheetPr><tabColor theme="4" tint="0.4"/><pageSetUpPr autoPageBreaks="0" )"
        R"(fitToPage="1"/></sheetPr>)",
        ""},
       [](SheetContents& c) {
         c.tab_color = Color::indexed(10);
         c.page.fitted = false;
       },
       {R"(<sheetPr><tabColor indexed="10"/><pageSetUpPr autoPageBreaks="0"/></sheetPr>)", ""}},
      {{R"(<sheetPr><tabColor indexed="10"/><pageSetUpPr fitToPage="1"/></sheetPr>)", ""},
       [](SheetContents& c) {
         c.tab_color = Color();
         c.page.fitted = false;
       },
       {"", ""}},
  });
}

std::string view(const std::string& attributes, const std::string& content = {}) {
  const std::string begin = "<sheetViews><sheetView" + attributes + " workbookViewId=\"0\"";
  return begin + (content.empty() ? "/>" : ">" + content + "</sheetView>") + "</sheetViews>";
}

TEST(PagesAndViews, ViewsArePatched) {
  const auto pane = [](const char* text) { return view("", text); };
  expect_patches({
      {{"", ""},
       [](SheetContents& c) { c.view.gridlines = false; },
       {R"(<sheetViews><sheetView workbookViewId="0" showGridLines="0"/></sheetViews>)", ""}},
      {{view(" showGridLines=\"0\" rightToLeft=\"true\""), ""},
       [](SheetContents& c) {
         c.view.gridlines = true;
         c.view.right_to_left = false;
       },
       {view(""), ""}},
      {{view(" zoomScale=\"90\" zoomScaleNormal=\"80\""), ""},
       [](SheetContents& c) { c.view.zoom = 150; },
       {view(" zoomScale=\"150\" zoomScaleNormal=\"150\""), ""}},
      // The zoom of another view stays.
      {{view(" view=\"pageLayout\" zoomScale=\"60\" zoomScaleNormal=\"0\""), ""},
       [](SheetContents& c) {
         EXPECT_EQ(c.view.zoom, 100);
         c.view.zoom = 150;
       },
       {view(" view=\"pageLayout\" zoomScale=\"60\" zoomScaleNormal=\"150\""), ""}},
      {{view(" topLeftCell=\"B3\""), ""},
       [](SheetContents& c) { c.view = scroll(c.view, {}); },
       {view(""), ""}},
      // Freezing.
      {{pane(R"(<selection activeCell="C9" sqref="C9:D9"/>)"), ""},
       [](SheetContents& c) { c.view = freeze(c.view, 2, 0); },
       {pane(R"(<pane activePane="bottomLeft" state="frozen" ySplit="2" topLeftCell="A3"/>)"
             R"(<selection activeCell="C9" sqref="C9:D9" pane="bottomLeft"/>)"),
        ""}},
      {{pane(""), ""},
       [](SheetContents& c) { c.view = freeze(c.view, 0, 1); },
       {pane(R"(<pane activePane="topRight" state="frozen" xSplit="1" topLeftCell="B1"/>)"
             R"(<selection pane="topRight"/>)"),
        ""}},
      {{pane("<extLst/>"), ""},
       [](SheetContents& c) { c.view = freeze(c.view, 2, 1); },
       {pane(R"(<pane activePane="bottomRight" state="frozen" xSplit="1" ySplit="2" )"
             R"(topLeftCell="B3"/><selection pane="topRight" activeCell="B1" sqref="B1"/>)"
             R"(<selection pane="bottomLeft" activeCell="A3" sqref="A3"/>)"
             R"(<selection pane="bottomRight"/><extLst/>)"),
        ""}},
      // A bar that can be moved gives way, but only to panes that are frozen.
      {{pane(R"(<pane xSplit="2000" topLeftCell="D1" activePane="topRight"/>)"
             R"(<selection activeCell="A1"/><selection pane="topRight" activeCell="E5"/>)"),
        ""},
       [](SheetContents& c) { c.view = freeze(c.view, 1, 0); },
       {pane(R"(<pane activePane="bottomLeft" state="frozen" ySplit="1" topLeftCell="A2"/>)"
             R"(<selection pane="bottomLeft" activeCell="E5"/>)"),
        ""}},
      // Frozen in the same directions as before: what else the pane says stays.
      {{view(" topLeftCell=\"C4\"",
             R"(<pane xSplit="2" ySplit="3" topLeftCell="F20" activePane="topRight" )"
             R"(state="frozenSplit"/><selection pane="topRight"/>)"),
        ""},
       [](SheetContents& c) {
         EXPECT_EQ(c.view.frozen_from, (CellAddress{3, 2}));
         EXPECT_EQ(c.view.top_left, (CellAddress{19, 5}));
         c.view = scroll(c.view, {0, 9});
       },
       {view(" topLeftCell=\"C4\"",
             R"(<pane xSplit="2" ySplit="3" topLeftCell="J7" activePane="topRight" )"
             R"(state="frozenSplit"/><selection pane="topRight"/>)"),
        ""}},
      {{view(" topLeftCell=\"C4\"", R"(<pane ySplit="3" topLeftCell="C20" state="frozen"/>)"), ""},
       [](SheetContents& c) {
         c.view = scroll(freeze(c.view, 1, 0), {30, 7});
       },
       {view(" topLeftCell=\"H1\"", R"(<pane ySplit="1" topLeftCell="H31" state="frozen"/>)"), ""}},
      {{pane(R"(<pane xSplit="1" ySplit="2" topLeftCell="B3" activePane="bottomRight" )"
             R"(state="frozen"/><selection pane="topRight"/><selection pane="bottomLeft"/>)"
             R"(<selection pane="bottomRight" activeCell="C9"/>)"),
        ""},
       [](SheetContents& c) { c.view = freeze(c.view, 0, 0); },
       {pane(R"(<selection activeCell="C9"/>)"), ""}},
  });
}

// A view is one of a window of the book, which not every program writes.
TEST(PagesAndViews, ANewViewHasAWindow) {
  for (const bool shown : {false, true}) {
    const auto book = load(book_of(worksheet("")));
    book->read().change().view.gridlines = !shown;
    EXPECT_EQ(unzip(book->save())["xl/workbook.xml"].find("<bookViews><workbookView/></bookViews>"
                                                          "<sheets>") != std::string::npos,
              shown);
  }
}

TEST(PagesAndViews, ProtectionIsPatched) {
  expect_patches({
      {{"", ""},
       [](SheetContents& c) { c.protection.on = true; },
       {"", R"(<sheetProtection sheet="1" objects="1" scenarios="1"/>)"}},
      {{"", R"(<sheetProtection password="CC1A" sheet="1" spinCount="7" sort="0" own="1"/>)"},
       [](SheetContents& c) {
         EXPECT_EQ(c.protection.password.short_hash, 0xCC1A);
         EXPECT_EQ(c.protection.allowed, kAllowObjects | kAllowScenarios | kAllowSort |
                                             kAllowSelectLockedCells | kAllowSelectUnlockedCells);
         c.protection = {true, kAllowFormatCells, {"SHA-512", "aa==", "bb==", 9, 0}};
       },
       {"", R"(<sheetProtection sheet="1" spinCount="9" own="1" algorithmName="SHA-512" )"
            R"(hashValue="aa==" saltValue="bb==" objects="1" scenarios="1" formatCells="0" )"
            R"(selectLockedCells="1" selectUnlockedCells="1"/>)"}},
      {{"", R"(<sheetProtection sheet="1" own="1"/><protectedRanges/>)"},
       [](SheetContents& c) { c.protection = Protection(); },
       {"", "<protectedRanges/>"}},
  });
}

TEST(PagesAndViews, PagesArePatched) {
  expect_patches({
      {{"", "<extLst/>"},
       [](SheetContents& c) {
         c.page.headings = c.page.centered_down = true;
         c.page.left_margin = 0.25;
         c.page.paper = 9;
         c.page.pages_tall = 0;
         c.page.header = "&L\"a\"\nb _x0041_";
         c.page.footer = "<f>";
       },
       {"", R"(<printOptions headings="1" verticalCentered="1"/>)"
            R"(<pageMargins left="0.25" right="0.7" top="0.75" bottom="0.75" header="0.3" )"
            R"(footer="0.3"/><pageSetup paperSize="9" fitToHeight="0"/>)"
            R"(<headerFooter><oddHeader>&amp;L"a")"
            "\n"
            R"(b _x005F_x0041_</oddHeader><oddFooter>&lt;f&gt;</oddFooter></headerFooter>)"
            R"(<extLst/>)"}},
      {{"", R"(<printOptions gridLines="1" headings="1" gridLinesSet="0" own="1"/>)"},
       [](SheetContents& c) {
         EXPECT_FALSE(c.page.gridlines);
         c.page.gridlines = true;
         c.page.headings = false;
       },
       {"", R"(<printOptions gridLines="1" own="1"/>)"}},
      {{"", R"(<pageSetup scale="50" orientation="landscape" horizontalDpi="300"/>)"},
       [](SheetContents& c) {
         c.page.zoom = 100;
         c.page.landscape = false;
       },
       {"", R"(<pageSetup orientation="portrait" horizontalDpi="300"/>)"}},
      {{"", R"(<pageSetup scale="50"/><headerFooter><oddFooter>f</oddFooter></headerFooter>)"},
       [](SheetContents& c) {
         c.page.zoom = 100;
         c.page.footer.clear();
       },
       {"", ""}},
      {{"", R"(<headerFooter differentFirst="1"><oddHeader>o</oddHeader><evenFooter>e)"
            R"(</evenFooter><firstHeader>f</firstHeader></headerFooter>)"},
       [](SheetContents& c) {
         c.page.header.clear();
         c.page.footer = "new";
       },
       {"", R"(<headerFooter differentFirst="1"><oddFooter>new</oddFooter><evenFooter>e)"
            R"(</evenFooter><firstHeader>f</firstHeader></headerFooter>)"}},
      {{"", R"(<pageSetup paperSize="9" paperHeight="20mm" paperWidth="9mm"/>)"},
       [](SheetContents& c) { c.page.paper = 1; },
       {"", R"(<pageSetup paperSize="1"/>)"}},
  });
}

TEST(PagesAndViews, BreaksArePatched) {
  expect_patches({
      {{"", "<extLst/>"},
       [](SheetContents& c) {
         put_break(c.breaks.rows, {9, 0, 16383});
         put_break(c.breaks.columns, {3, 0, 1048575});
       },
       {"", R"(<rowBreaks count="1" manualBreakCount="1"><brk id="9" max="16383" man="1"/>)"
            R"(</rowBreaks><colBreaks count="1" manualBreakCount="1">)"
            R"(<brk id="3" max="1048575" man="1"/></colBreaks><extLst/>)"}},
      // Between those that a program made, of which one becomes manual.
      {{"", R"(<rowBreaks count="3" manualBreakCount="1"><brk id="4" max="5"/>)"
            R"(<brk id="9" min="2" max="5" man="1" pt="1"/><brk id="20"/></rowBreaks>)"},
       [](SheetContents& c) {
         put_break(c.breaks.rows, {20, 0, 16383});
         put_break(c.breaks.rows, {30, 0, 16383});
       },
       {"", R"(<rowBreaks count="4" manualBreakCount="3"><brk id="4" max="5"/>)"
            R"(<brk id="9" min="2" max="5" man="1" pt="1"/><brk id="20" max="16383" man="1"/>)"
            R"(<brk id="30" max="16383" man="1"/></rowBreaks>)"}},
      {{"", R"(<rowBreaks count="2"><brk id="4"/><brk id="9" man="1"/></rowBreaks>)"
            R"(<colBreaks count="1"><brk id="9" man="1"/></colBreaks>)"},
       [](SheetContents& c) {
         remove_break(c.breaks.rows, 9);
         remove_break(c.breaks.columns, 9);
       },
       {"", R"(<rowBreaks count="1" manualBreakCount="0"><brk id="4"/></rowBreaks>)"}},
  });
}

// They hold for one paper. The part goes with the last that names it.
TEST(PagesAndViews, SettingsOfAPrinterGoWithThePaper) {
  const struct {
    Change change;
    const char* tail;
    bool kept;
  } cases[] = {
      {[](SheetContents& c) { c.page.zoom = 50; }, "", true},
      {[](SheetContents& c) { c.page.paper = 9; }, "", false},
      {[](SheetContents& c) { c.page.landscape = true; }, "", false},
      {[](SheetContents& c) { c.page.paper = 9; }, R"(<own r:id="rId1"/>)", true},
  };
  for (const auto& [change, tail, kept] : cases) {
    PartTexts parts =
        book_of(worksheet("", "", std::string(R"(<pageSetup paperSize="1" r:id="rId1"/>)") + tail));
    parts["xl/worksheets/_rels/sheet1.xml.rels"] =
        relations({{"printerSettings", "../printerSettings/printerSettings1.bin"}});
    parts["xl/printerSettings/printerSettings1.bin"] = "settings";
    const auto book = load(parts);
    change(book->read().change());
    for (const char* round : {"first save", "second save"}) {
      SCOPED_TRACE(round);
      PartTexts saved = unzip(book->save());
      EXPECT_EQ(saved.contains("xl/printerSettings/printerSettings1.bin"), kept);
      EXPECT_EQ(saved.contains("xl/worksheets/_rels/sheet1.xml.rels"), kept);
      EXPECT_EQ(saved[kPart].find("r:id") != std::string::npos, kept);
    }
  }
}

}  // namespace
}  // namespace engine::xlsx
