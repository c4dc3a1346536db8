// Views, page breaks, protection and tabs through the interface.
#include <gmock/gmock.h>

#include "tests/api/files.h"
#include "tests/api/stage.h"

namespace {

using libxl::Sheet;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

constexpr const char* kPart = "xl/worksheets/sheet1.xml";

// Everything that can be asked about the view of a sheet.
std::string view_of(const Sheet& sheet) {
  int rows = -1;
  int columns = -1;
  const bool split = sheet.splitInfo(&rows, &columns);
  int row = -1;
  int column = -1;
  sheet.getTopLeftView(&row, &column);
  std::ostringstream out;
  out << sheet.displayGridlines() << sheet.rightToLeft() << " " << sheet.zoom() << " " << split
      << " " << rows << " " << columns << " " << row << " " << column;
  return out.str();
}

TEST(SheetView, ComesBackFromTheFile) {
  const struct {
    void (*set)(Sheet&);
    const char* wanted;
  } cases[] = {
      {[](Sheet&) {}, "10 100 0 -1 -1 0 0"},
      {[](Sheet& s) {
         s.setDisplayGridlines(false);
         s.setRightToLeft();
         s.setZoom(400);
       },
       "01 400 0 -1 -1 0 0"},
      {[](Sheet& s) { s.setTopLeftView(7, 3); }, "10 100 0 -1 -1 7 3"},
      {[](Sheet& s) { s.split(2, 1); }, "10 100 1 2 1 2 1"},
      {[](Sheet& s) { s.split(2, 0); }, "10 100 1 2 0 2 0"},
      {[](Sheet& s) {
         s.split(2, 1);
         s.setTopLeftView(0, 9);
       },
       "10 100 1 2 1 2 9"},
      {[](Sheet& s) {
         s.split(0, 3);
         s.setTopLeftView(7, 0);
       },
       "10 100 1 0 3 7 3"},
      {[](Sheet& s) {
         s.split(2, 1);
         s.split(0, 0);
       },
       "10 100 0 -1 -1 0 0"},
      {[](Sheet& s) { s.split(1048575, 16383); }, "10 100 1 1048575 16383 1048575 16383"},
  };
  for (const auto& [set, wanted] : cases) {
    SCOPED_TRACE(wanted);
    Stage stage;
    set(*stage.sheet);
    EXPECT_EQ(stage.message(), "ok");
    EXPECT_EQ(view_of(*stage.sheet), wanted);
    ASSERT_TRUE(stage.reload()) << stage.message();
    EXPECT_EQ(view_of(*stage.sheet), wanted);
  }
}

TEST(PageBreaks, ComeBackInOrder) {
  Stage stage;
  for (const int row : {9, 3, 1048575, 3}) EXPECT_TRUE(stage.sheet->setHorPageBreak(row));
  for (const int column : {2, 1}) EXPECT_TRUE(stage.sheet->setVerPageBreak(column));
  EXPECT_TRUE(stage.sheet->setHorPageBreak(9, false));
  EXPECT_TRUE(stage.sheet->setHorPageBreak(0, false)) << "there can be none";
  ASSERT_TRUE(stage.reload()) << stage.message();
  ASSERT_EQ(stage.sheet->getHorPageBreakSize(), 2);
  EXPECT_EQ(stage.sheet->getHorPageBreak(0), 3);
  EXPECT_EQ(stage.sheet->getHorPageBreak(1), 1048575);
  ASSERT_EQ(stage.sheet->getVerPageBreakSize(), 2);
  EXPECT_EQ(stage.sheet->getVerPageBreak(0), 1);
}

TEST(Protection, IsReplacedAndLifted) {
  Stage stage;
  Sheet& sheet = *stage.sheet;
  EXPECT_FALSE(sheet.protect());
  sheet.setProtect(true, L"secret", libxl::ProtectSort);
  EXPECT_THAT(part_of(saved(*stage.book), kPart),
              AllOf(HasSubstr("algorithmName=\"SHA-512\""), HasSubstr("spinCount=\"100000\""),
                    HasSubstr("sort=\"0\""), HasSubstr("selectLockedCells=\"1\"")));
  sheet.setProtect();
  EXPECT_THAT(part_of(saved(*stage.book), kPart),
              HasSubstr("<sheetProtection sheet=\"1\" objects=\"1\" scenarios=\"1\"/>"));
  ASSERT_TRUE(stage.reload()) << stage.message();
  EXPECT_TRUE(stage.sheet->protect());
  EXPECT_TRUE(stage.sheet->writeNum(0, 0, 1)) << "the engine writes all the same";
  stage.sheet->setProtect(false, L"another");
  EXPECT_FALSE(stage.sheet->protect());
  EXPECT_THAT(part_of(saved(*stage.book), kPart), Not(HasSubstr("sheetProtection")));
}

TEST(TabColor, IsANumberOrParts) {
  const struct {
    void (*set)(Stage&);
    const char* wanted;
  } cases[] = {
      {[](Stage& s) { s.sheet->setTabColor(libxl::ColorRed); }, R"(<tabColor indexed="10"/>)"},
      {[](Stage& s) { s.sheet->setTabColor(255, 0, 1); }, R"(<tabColor rgb="FFFF0001"/>)"},
      {[](Stage& s) { s.sheet->setTabColor(static_cast<libxl::Color>(0x01123456)); },
       R"(<tabColor rgb="FF123456"/>)"},
      {[](Stage& s) {
         s.book->setRgbMode();
         s.sheet->setTabColor(static_cast<libxl::Color>(0x123456));
       },
       R"(<tabColor rgb="FF123456"/>)"},
  };
  for (const auto& [set, wanted] : cases) {
    Stage stage;
    set(stage);
    EXPECT_THAT(part_of(saved(*stage.book), kPart), HasSubstr(wanted));
    ASSERT_TRUE(stage.reload());
    stage.sheet->setTabColor(libxl::ColorAuto);
    EXPECT_THAT(part_of(saved(*stage.book), kPart), Not(HasSubstr("tabColor")));
  }
}

// Sheets One, Two, Three, of which the second is active.
struct Three : Stage {
  Three() {
    EXPECT_TRUE(load(*book, three_sheets()));
    book->setActiveSheet(1);
  }
  bool hide(int index, libxl::SheetState state = libxl::StateHidden) const {
    return book->getSheet(index)->setHidden(state);
  }
};

TEST(HiddenSheets, LeaveTheActivePlace) {
  Three stage;
  EXPECT_TRUE(stage.hide(0));
  EXPECT_EQ(stage.book->activeSheet(), 1);
  EXPECT_TRUE(stage.hide(1, libxl::StateVeryHidden));
  EXPECT_EQ(stage.book->activeSheet(), 2) << "the next visible one";
  EXPECT_TRUE(stage.hide(0, libxl::StateVisible));
  EXPECT_TRUE(stage.hide(2));
  EXPECT_EQ(stage.book->activeSheet(), 0) << "none follows: the one before";
  EXPECT_TRUE(stage.hide(1, libxl::StateHidden)) << "from one hidden state to the other";
  ASSERT_TRUE(stage.reload()) << stage.message();
  EXPECT_EQ(stage.book->getSheet(1)->hidden(), libxl::StateHidden);
  EXPECT_EQ(stage.book->getSheet(2)->hidden(), libxl::StateHidden);
  const std::string bytes = saved(*stage.book);
  EXPECT_THAT(part_of(bytes, "xl/worksheets/sheet1.xml"), HasSubstr("tabSelected=\"1\""));
  for (const char* part : {"xl/worksheets/sheet2.xml", "xl/worksheets/sheet3.xml"})
    EXPECT_THAT(part_of(bytes, part), Not(HasSubstr("tabSelected=\"1\""))) << part;
}

// Which tab is selected is said in the sheets, so all of them are needed.
TEST(HiddenSheets, StayWhereAnotherCannotBeRead) {
  const OwnedBook book(xlCreateXMLBookW());
  ASSERT_TRUE(load(*book, with_replaced(three_sheets(), "xl/worksheets/sheet3.xml", "<row", "<<")));
  EXPECT_FALSE(book->getSheet(0)->setHidden());
  EXPECT_THAT(book->errorMessage(), HasSubstr("is damaged: xl/worksheets/sheet3.xml"));
  EXPECT_EQ(book->getSheet(0)->hidden(), libxl::StateVisible);
  EXPECT_EQ(book->activeSheet(), 0);
}

TEST(SheetView, GoesWithACopy) {
  Stage stage;
  stage.sheet->split(2, 1);
  stage.sheet->setHorPageBreak(5);
  stage.sheet->setTabColor(1, 2, 3);
  stage.sheet->setProtect(true, L"secret");
  stage.sheet->setHeader(L"head");
  stage.book->insertSheet(0, L"Copy", stage.sheet);
  ASSERT_TRUE(stage.reload()) << stage.message();
  const Sheet& copy = *stage.sheet;
  EXPECT_STREQ(copy.name(), L"Copy");
  EXPECT_EQ(view_of(copy), view_of(*stage.book->getSheet(1)));
  EXPECT_EQ(copy.getHorPageBreak(0), 5);
  EXPECT_TRUE(copy.protect());
  EXPECT_STREQ(copy.header(), L"head");
}

}  // namespace
