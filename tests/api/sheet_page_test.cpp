// Page setup through the interface.
#include <gmock/gmock.h>

#include "tests/api/files.h"
#include "tests/api/stage.h"

namespace {

using libxl::Sheet;

// Everything that can be asked about the pages of a sheet.
std::string pages_of(const Sheet& sheet) {
  int wide = -1;
  int tall = -1;
  const bool fitted = sheet.getPrintFit(&wide, &tall);
  std::ostringstream out;
  out << sheet.printGridlines() << sheet.printRowCol() << sheet.hCenter() << sheet.vCenter() << " "
      << sheet.printZoom() << " " << fitted << " " << wide << " " << tall << " "
      << sheet.landscape() << " " << sheet.paper();
  for (const double margin : {sheet.marginLeft(), sheet.marginRight(), sheet.marginTop(),
                              sheet.marginBottom(), sheet.headerMargin(), sheet.footerMargin()})
    out << " " << margin;
  std::wstring texts = sheet.header();
  texts.append(L"|").append(sheet.footer());
  for (const wchar_t c : texts) out << static_cast<char>(c);
  return out.str();
}

TEST(PageSetup, BeginsAsTheFormatHasIt) {
  EXPECT_EQ(pages_of(*Stage().sheet), "0000 100 0 -1 -1 0 0 0.7 0.7 0.75 0.75 0.3 0.3|");
  EXPECT_EQ(pages_of(*Stage(xlCreateBookW()).sheet), "0000 100 0 -1 -1 0 0 0.75 0.75 1 1 0.5 0.5|");
}

TEST(PageSetup, ComesBackFromTheFile) {
  const struct {
    void (*set)(Sheet&);
    const char* wanted;
  } cases[] = {
      {[](Sheet& s) {
         s.setPrintGridlines();
         s.setPrintRowCol();
         s.setHCenter();
         s.setVCenter();
       },
       "1111 100 0 -1 -1 0 0 0.7 0.7 0.75 0.75 0.3 0.3|"},
      {[](Sheet& s) {
         s.setPrintFit(2, 0);
         s.setLandscape();
         s.setPaper(libxl::PaperA4);
       },
       "0000 100 1 2 0 1 9 0.7 0.7 0.75 0.75 0.3 0.3|"},
      {[](Sheet& s) {
         s.setPrintFit();
         s.setPrintZoom(85);
       },
       "0000 85 0 -1 -1 0 0 0.7 0.7 0.75 0.75 0.3 0.3|"},
      {[](Sheet& s) {
         s.setMarginLeft(0);
         s.setMarginRight(49);
         s.setMarginTop(1.25);
         s.setMarginBottom(2);
         s.setHeader(L"&Ltop\r\n&Cmiddle");
         s.setFooter(L"foot", 0.125);
       },
       "0000 100 0 -1 -1 0 0 0 49 1.25 2 0.5 0.125&Ltop\n&Cmiddle|foot"},
      {[](Sheet& s) {
         s.setHeader(L"h");
         s.setHeader(nullptr, 0.3);
         s.setPaper(libxl::PaperA3);
         s.setPaper();
       },
       "0000 100 0 -1 -1 0 0 0.7 0.7 0.75 0.75 0.3 0.3|"},
  };
  for (const auto& [set, wanted] : cases) {
    SCOPED_TRACE(wanted);
    Stage stage;
    set(*stage.sheet);
    EXPECT_EQ(stage.message(), "ok");
    EXPECT_EQ(pages_of(*stage.sheet), wanted);
    ASSERT_TRUE(stage.reload()) << stage.message();
    EXPECT_EQ(pages_of(*stage.sheet), wanted);
  }
}

// A sheet whose part is not laid out as ours are shows when it is written anew.
TEST(PageSetup, WhatIsSoAlreadyLeavesTheFile) {
  constexpr const char* kPart = "xl/worksheets/sheet1.xml";
  const std::string bytes = with_replaced(three_sheets(), kPart, "<sheetViews>", "<sheetViews  >");
  const OwnedBook book(xlCreateXMLBookW());
  ASSERT_TRUE(load(*book, bytes));
  Sheet& s = *book->getSheet(0);
  s.setPrintGridlines(false);
  s.setPrintZoom(100);
  s.setLandscape(false);
  s.setPaper();
  s.setHeader(L"", 0.3);
  s.setMarginLeft(0.7);
  s.setHorPageBreak(5, false);
  s.split(0, 0);
  s.setDisplayGridlines();
  s.setZoom(100);
  s.setTopLeftView(0, 0);
  s.setProtect(false);
  s.setHidden(libxl::StateVisible);
  s.setTabColor(libxl::ColorAuto);
  EXPECT_THAT(part_of(saved(*book), kPart), testing::HasSubstr("<sheetViews  >"));
  s.setPrintZoom(99);
  EXPECT_THAT(part_of(saved(*book), kPart), testing::Not(testing::HasSubstr("<sheetViews  >")));
}

}  // namespace
