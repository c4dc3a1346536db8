// Loading and saving: what is read when, what stays when it fails, and what earlier objects do.
#include "tests/api/files.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "tests/api/stage.h"

namespace {

std::wstring in_temp(const std::string& name) {
  return (std::filesystem::temp_directory_path() / name).wstring();
}

TEST(Files, ObjectsOfFormerContentsRefuse) {
  Stage stage;
  libxl::Sheet* sheet = stage.sheet;
  libxl::Format* format = stage.book->addFormat();
  libxl::Font* font = stage.book->addFont();
  const std::string bytes = saved(*stage.book);
  ASSERT_TRUE(load(*stage.book, bytes)) << stage.message();
  EXPECT_FALSE(sheet->writeNum(0, 0, 1));
  EXPECT_EQ(stage.message(), "the sheet is no longer in the book");
  format->setWrap();
  EXPECT_EQ(stage.message(), "the format is no longer in the book");
  EXPECT_EQ(font->size(), 0);
  EXPECT_EQ(stage.message(), "the font is no longer in the book");
  EXPECT_FALSE(stage.book->getSheet(0)->writeNum(0, 0, 1, format));
  EXPECT_EQ(stage.message(), "the format is no longer in the book");
  EXPECT_EQ(stage.book->addFormat(format), nullptr);
  EXPECT_EQ(stage.message(), "the format is no longer in the book");
  EXPECT_EQ(stage.book->addSheet(L"Copy", sheet), nullptr);
  EXPECT_EQ(stage.message(), "the sheet is no longer in the book");
}

TEST(Files, OfOtherKindsAreRefusedByName) {
  const std::string compound = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1" + std::string(1016, '\0');
  const auto with_entry = [&](std::string_view name) {
    std::string file = compound;
    for (std::size_t i = 0; i < name.size(); ++i) file[512 + 128 + 2 * i] = name[i];
    return file;
  };
  const std::pair<std::string, const char*> kCases[] = {
      {"a;b;c\n1;2;3\n", "is not an .xlsx workbook"},
      {"<html><body>", "is not an .xlsx workbook"},
      {with_entry("Workbook"), "is an .xls workbook, not .xlsx"},
      {with_entry("WORKBOOK"), "is an .xls workbook, not .xlsx"},
      {with_entry("Book"), "is an .xls workbook, not .xlsx"},
      {with_entry("EncryptedPackage"), "is protected by a password"},
      {compound, "is not an .xlsx workbook"},
  };
  Stage stage;
  for (const auto& [bytes, text] : kCases) {
    EXPECT_FALSE(load(*stage.book, bytes));
    EXPECT_EQ(stage.message(), std::string("the workbook data ") + text);
  }
}

TEST(Files, FailedLoadsLeaveTheBookAsItWas) {
  Stage stage;
  stage.sheet->writeNum(0, 0, 5);
  const std::string good = three_sheets();
  const std::string bad = with_replaced(good, "xl/workbook.xml", "</workbook>", "");
  EXPECT_FALSE(load(*stage.book, bad));
  EXPECT_THAT(stage.message(),
              testing::StartsWith("the workbook data is damaged: xl/workbook.xml"));
  EXPECT_FALSE(load(*stage.book, good, 3));
  EXPECT_EQ(stage.message(), "sheet 3 is out of range 0..2");
  EXPECT_FALSE(load(*stage.book, good, 0, 1048576));
  EXPECT_EQ(stage.message(), "row 1048576 is out of range 0..1048575");
  EXPECT_EQ(stage.sheet->readNum(0, 0), 5);
  EXPECT_EQ(stage.book->getSheet(0), stage.sheet);
}

TEST(Files, DamageShowsInTheSheetThatHasIt) {
  const std::string bad = with_replaced(three_sheets(), "xl/worksheets/sheet2.xml", "</sheetData>",
                                        "<row r=\"99\"><c r=\"A99\"><f>One!A1</f></c></row>");
  Stage stage;
  ASSERT_TRUE(load(*stage.book, bad)) << stage.message();
  EXPECT_EQ(stage.book->getSheet(1), nullptr);
  const std::string message = stage.message();
  EXPECT_THAT(message,
              testing::StartsWith("the workbook data is damaged: xl/worksheets/sheet2.xml"));
  libxl::Sheet* one = stage.book->getSheet(0);
  ASSERT_TRUE(one) << stage.message();
  EXPECT_EQ(one->readNum(0, 0), 1);
  EXPECT_FALSE(stage.book->delSheet(0)) << "needs the formulas of the damaged sheet";
  EXPECT_EQ(stage.message(), message);
  EXPECT_EQ(stage.book->sheetCount(), 3);
  one->writeNum(0, 0, 11);
  EXPECT_THAT(saved(*stage.book), testing::Not(testing::IsEmpty()));
  // The damaged sheet itself is not needed to delete it.
  EXPECT_TRUE(stage.book->delSheet(1)) << stage.message();
  EXPECT_TRUE(stage.reload()) << stage.message();
  EXPECT_EQ(stage.sheet->readNum(0, 0), 11);
}

TEST(Files, OneSheetLeavesTheOthersClosed) {
  Stage stage;
  ASSERT_TRUE(load(*stage.book, three_sheets(), 1)) << stage.message();
  EXPECT_EQ(stage.book->sheetCount(), 3);
  EXPECT_EQ(stage.book->getSheet(0), nullptr);
  EXPECT_EQ(stage.message(), R"(sheet "One" is not loaded)");
  EXPECT_EQ(stage.book->getSheet(1)->readNum(0, 0), 2);
  stage.book->getSheet(1)->writeNum(0, 0, 20);
  EXPECT_TRUE(stage.book->delSheet(2)) << stage.message();
  EXPECT_EQ(stage.book->getSheet(0), nullptr) << "read for its formulas only";
  EXPECT_TRUE(stage.reload()) << stage.message();
  EXPECT_EQ(stage.sheet->readNum(9, 0), 10);
  EXPECT_EQ(stage.book->getSheet(1)->readNum(0, 0), 20);
}

TEST(Files, SomeRowsKeepTheOthers) {
  Stage stage;
  ASSERT_TRUE(load(*stage.book, three_sheets(), 0, 3, 5)) << stage.message();
  libxl::Sheet* sheet = stage.book->getSheet(0);
  ASSERT_TRUE(sheet) << stage.message();
  EXPECT_EQ(sheet->readNum(3, 0), 4);
  EXPECT_EQ(sheet->firstRow(), 3);
  EXPECT_EQ(sheet->lastRow(), 6);
  EXPECT_EQ(sheet->readNum(6, 0), 0);
  EXPECT_EQ(stage.message(), R"(row 6 of sheet "One" is not loaded)");
  EXPECT_FALSE(sheet->writeNum(2, 0, 1));
  EXPECT_EQ(stage.message(), R"(row 2 of sheet "One" is not loaded)");
  EXPECT_EQ(stage.book->addSheet(L"Copy", sheet), nullptr);
  EXPECT_EQ(stage.message(), R"(sheet "One" is only partly loaded)");
  sheet->writeNum(4, 0, 50);
  ASSERT_TRUE(stage.reload()) << stage.message();
  const double expected[] = {1, 2, 3, 4, 50, 6, 7, 8, 9, 10};
  for (int row = 0; row < 10; ++row) EXPECT_EQ(stage.sheet->readNum(row, 0), expected[row]) << row;
}

TEST(Files, InformationAloneAnswersLittle) {
  const std::wstring path = in_temp("api_info_test.xlsx");
  Stage stage;
  stage.book->addSheet(L"Second");
  ASSERT_TRUE(stage.book->save(path.c_str())) << stage.message();
  ASSERT_TRUE(stage.book->loadInfo(path.c_str())) << stage.message();
  EXPECT_EQ(stage.book->sheetCount(), 2);
  EXPECT_STREQ(stage.book->getSheetName(1), L"Second");
  EXPECT_EQ(stage.book->datePack(1900, 3, 1), 61);
  EXPECT_EQ(stage.message(), "ok");
  EXPECT_EQ(stage.book->getSheet(0), nullptr);
  EXPECT_EQ(stage.message(), "only the book information was loaded");
  EXPECT_FALSE(stage.book->save(path.c_str()));
  EXPECT_EQ(stage.message(), "only the book information was loaded");
  EXPECT_EQ(stage.sheet->name(), nullptr);
  EXPECT_EQ(stage.message(), "the sheet is no longer in the book");
  ASSERT_TRUE(stage.book->load(path.c_str())) << stage.message();
  EXPECT_TRUE(stage.book->getSheet(1));
  std::filesystem::remove(path);
}

TEST(Files, TemporaryFileMustNotHoldAnything) {
  const std::wstring path = in_temp("api_temporary_test.xlsx");
  const std::wstring temporary = in_temp("api_temporary_test.tmp");
  {
    Stage stage;
    ASSERT_TRUE(stage.book->save(path.c_str())) << stage.message();
    std::ofstream(std::filesystem::path(temporary)) << "precious";
    EXPECT_FALSE(stage.book->load(path.c_str(), temporary.c_str()));
    EXPECT_THAT(stage.message(),
                testing::HasSubstr(R"(api_temporary_test.tmp" cannot be written: it )"
                                   "exists already"));
    std::filesystem::remove(temporary);
    EXPECT_TRUE(stage.book->load(path.c_str(), temporary.c_str())) << stage.message();
    EXPECT_TRUE(stage.book->getSheet(0)) << stage.message();
  }
  EXPECT_FALSE(std::filesystem::exists(temporary));
  std::filesystem::remove(path);
}

// A template that is filled and saved as a workbook is one, unless it was made a template here.
TEST(Files, TemplateFlagOfAFileGivesWayToTheEnding) {
  const std::wstring as_template = in_temp("api_template_test.xltx");
  const std::wstring as_workbook = in_temp("api_template_test.XLSX");
  const auto loads_as_template = [](const std::wstring& path) {
    Stage stage;
    EXPECT_TRUE(stage.book->load(path.c_str())) << stage.message();
    return stage.book->isTemplate();
  };
  Stage stage;
  stage.book->setTemplate();
  ASSERT_TRUE(stage.book->save(as_template.c_str())) << stage.message();
  EXPECT_TRUE(loads_as_template(as_template));
  ASSERT_TRUE(stage.book->load(as_template.c_str())) << stage.message();
  ASSERT_TRUE(stage.book->save(as_workbook.c_str())) << stage.message();
  EXPECT_FALSE(loads_as_template(as_workbook));
  stage.book->setTemplate();
  ASSERT_TRUE(stage.book->save(as_workbook.c_str())) << stage.message();
  EXPECT_TRUE(loads_as_template(as_workbook));
  std::filesystem::remove(as_template);
  std::filesystem::remove(as_workbook);
}

TEST(Files, SavingTwiceGivesTheSameBytes) {
  Stage stage;
  stage.sheet->writeStr(0, 0, L"text");
  stage.sheet->writeFormula(1, 0, L"A1");
  const std::string first = saved(*stage.book);
  EXPECT_TRUE(first == saved(*stage.book));
}

TEST(Files, HiddenSheetsCannotBeActive) {
  const std::string bytes = with_replaced(three_sheets(), "xl/workbook.xml", R"(name="Two")",
                                          R"(name="Two" state="hidden")");
  Stage stage;
  ASSERT_TRUE(load(*stage.book, bytes)) << stage.message();
  stage.book->setActiveSheet(1);
  EXPECT_EQ(stage.message(), "sheet 1 is hidden");
  EXPECT_TRUE(stage.book->delSheet(0)) << stage.message();
  EXPECT_EQ(stage.book->activeSheet(), 1) << "the next visible sheet";
  EXPECT_TRUE(stage.book->delSheet(1)) << stage.message();
  EXPECT_EQ(stage.book->activeSheet(), 0) << "none is visible";
  EXPECT_FALSE(stage.book->saveRaw(nullptr, nullptr));
  EXPECT_EQ(stage.message(), "every sheet is hidden");
}

}  // namespace
