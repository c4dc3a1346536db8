// Hyperlinks as callers give and get them.
#include <gmock/gmock.h>

#include "tests/api/files.h"
#include "tests/api/stage.h"
#include "tests/xlsx/packages.h"

namespace {

using engine::xlsx::unzip;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

// "http://a/ 0 1 2 3": target, rows, columns.
std::wstring link(const libxl::Sheet& sheet, int index) {
  int row_first = 0;
  int row_last = 0;
  int col_first = 0;
  int col_last = 0;
  const wchar_t* text = sheet.hyperlink(index, &row_first, &row_last, &col_first, &col_last);
  if (!text) return L"-";
  std::wstring shown = text;
  for (const int place : {row_first, row_last, col_first, col_last})
    shown += L" " + std::to_wstring(place);
  return shown;
}

std::vector<std::wstring> links(const libxl::Sheet& sheet) {
  std::vector<std::wstring> all;
  for (int index = 0; index < sheet.hyperlinkSize(); ++index) all.push_back(link(sheet, index));
  return all;
}

// What a target reads as at once and after a save, and how the file has it.
TEST(Links, OfEveryKind) {
  struct Case {
    const wchar_t* given;
    const wchar_t* read;
    const char* target;    // of the relationship; empty: none
    const char* location;  // empty: none
  };
  const Case kCases[] = {
      {L"#Data!A1", L"#Data!A1", "", "Data!A1"},
      {L"#Total", L"#Total", "", "Total"},
      {L"http://a.example/b?c=1&d#e f", L"http://a.example/b?c=1&d#e f",
       "http://a.example/b?c=1&amp;d", "e f"},
      {L"https://a/b c\"<>[]^{}|`%20", L"https://a/b%20c%22%3C%3E%5B%5D%5E%7B%7D%7C%60%20",
       "https://a/b%20c%22%3C%3E%5B%5D%5E%7B%7D%7C%60%20", ""},
      {L"mailto:ann@a.example?subject=Größe", L"mailto:ann@a.example?subject=Größe",
       "mailto:ann@a.example?subject=Größe", ""},
      {L"ftp://a/#", L"ftp://a/", "ftp://a/", ""},
      {L"tel:+49-1", L"tel:+49-1", "tel:+49-1", ""},
      {L"WWW.a.example", L"http://WWW.a.example", "http://WWW.a.example", ""},
      {L"wwwa", L"wwwa", "wwwa", ""},
      {L"other book.xlsx#Sheet1!A1", L"other book.xlsx#Sheet1!A1", "other%20book.xlsx",
       "Sheet1!A1"},
      {L"..\\dir\\100%.txt", L"..\\dir\\100%.txt", "..\\dir\\100%25.txt", ""},
      {L"C:\\a b\\c.txt", L"C:\\a b\\c.txt", "file:///C:\\a%20b\\c.txt", ""},
      {L"\\\\server\\share\\x.txt", L"\\\\server\\share\\x.txt", "file:///\\\\server\\share\\x.txt",
       ""},
      {L"/home/a.txt", L"/home/a.txt", "file:///home/a.txt", ""},
      {L"FILE:///C:/a%20b.txt", L"C:/a b.txt", "file:///C:/a%20b.txt", ""},
      {L"file:///home/a.txt", L"/home/a.txt", "file:///home/a.txt", ""},
      {L"file://server/x", L"file://server/x", "file://server/x", ""},
      {L"a\x1\nb", L"a\x1\nb", "a%01%0Ab", ""},
  };
  for (const auto& [given, read, target, location] : kCases) {
    SCOPED_TRACE(testing::PrintToString(std::wstring(given)));
    Stage stage;
    stage.sheet->addHyperlink(given, 1, 2, 3, 4);
    ASSERT_EQ(stage.message(), "ok");
    EXPECT_EQ(link(*stage.sheet, 0), std::wstring(read) + L" 1 2 3 4");
    auto parts = unzip(saved(*stage.book));
    const std::string& sheet = parts["xl/worksheets/sheet1.xml"];
    EXPECT_THAT(sheet, HasSubstr("<hyperlink ref=\"D2:E3\""));
    if (*location) EXPECT_THAT(sheet, HasSubstr("location=\"" + std::string(location) + "\""));
    else EXPECT_THAT(sheet, Not(HasSubstr("location")));
    const std::string& links = parts["xl/worksheets/_rels/sheet1.xml.rels"];
    if (*target)
      EXPECT_THAT(links, HasSubstr("/hyperlink\" Target=\"" + std::string(target) +
                                   "\" TargetMode=\"External\"/>"));
    else EXPECT_EQ(links, "");
    ASSERT_TRUE(stage.reload());
    EXPECT_EQ(link(*stage.sheet, 0), std::wstring(read) + L" 1 2 3 4");
  }
}

TEST(Links, AreAddedReplacedAndRemoved) {
  Stage stage;
  libxl::Sheet& sheet = *stage.sheet;
  for (int row = 0; row < 4; ++row)
    sheet.addHyperlink((L"#Data!B" + std::to_wstring(row + 1)).c_str(), row, row, 0, 0);
  sheet.addHyperlink(L"mailto:a@b", 1, 1, 0, 0);
  sheet.addHyperlink(L"x.txt", 1, 1, 0, 1);
  EXPECT_TRUE(sheet.delHyperlink(2));
  EXPECT_THAT(links(sheet), ElementsAre(L"#Data!B1 0 0 0 0", L"mailto:a@b 1 1 0 0",
                                        L"#Data!B4 3 3 0 0", L"x.txt 1 1 0 1"));
  ASSERT_TRUE(stage.reload());
  EXPECT_THAT(links(*stage.sheet), ElementsAre(L"#Data!B1 0 0 0 0", L"mailto:a@b 1 1 0 0",
                                               L"#Data!B4 3 3 0 0", L"x.txt 1 1 0 1"));
  while (stage.sheet->hyperlinkSize() > 0) EXPECT_TRUE(stage.sheet->delHyperlink(0));
  EXPECT_THAT(unzip(saved(*stage.book)).at("xl/worksheets/sheet1.xml"), Not(HasSubstr("hyperl")));
}

TEST(Links, RefusalsChangeNothing) {
  struct Case {
    std::wstring text;
    int row_first;
    int row_last;
    int col_first;
    int col_last;
    const char* message;
  };
  const Case kCases[] = {
      {L"", -1, 0, 0, 0, "link is empty"},
      {std::wstring(2080, L'x'), -1, 0, 0, 0, "link is 2080 characters long, the limit is 2079"},
      {std::wstring(700, L' '), -1, 0, 0, 0, "link is 2100 characters long, the limit is 2079"},
      {L"x", 0, 1048576, -1, 0, "row 1048576 is out of range 0..1048575"},
      {L"x", 5, 4, 0, 16384, "column 16384 is out of range 0..16383"},
      {L"x", 5, 4, 3, 2, "first row 5 is after last row 4"},
      {L"x", 5, 5, 3, 2, "first column 3 is after last column 2"},
  };
  Stage stage;
  for (const auto& [text, row_first, row_last, col_first, col_last, message] : kCases) {
    stage.sheet->addHyperlink(text.c_str(), row_first, row_last, col_first, col_last);
    EXPECT_EQ(stage.message(), message);
  }
  stage.sheet->addHyperlink(nullptr, 0, 0, 0, 0);
  EXPECT_EQ(stage.message(), "link is empty");
  EXPECT_FALSE(stage.sheet->delHyperlink(0));
  EXPECT_EQ(stage.message(), "hyperlink 0 is out of range: there are none");
  for (int row = 0; row < 65530; ++row) stage.sheet->addHyperlink(L"x", row, row, 0, 0);
  stage.sheet->addHyperlink(L"x", 0, 0, 1, 1);
  EXPECT_EQ(stage.message(), "too many hyperlinks: the limit is 65530");
  stage.sheet->addHyperlink(L"y", 7, 7, 0, 0);
  EXPECT_EQ(stage.message(), "ok");
  EXPECT_EQ(stage.sheet->hyperlinkSize(), 65530);
  EXPECT_EQ(stage.sheet->hyperlink(65530, nullptr, nullptr, nullptr, nullptr), nullptr);
  EXPECT_EQ(stage.message(), "hyperlink 65530 is out of range 0..65529");
}

}  // namespace
