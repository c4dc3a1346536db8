// Books of the binary format, loaded and worked with through the interface.
#include <gmock/gmock.h>

#include "tests/api/files.h"
#include "tests/xls/streams.h"

namespace {

using namespace engine::xls::testing;  // NOLINT(google-build-using-namespace): pieces of records

// Three sheets with numbers in the first column; a formula of the second one refers to the first.
std::string old_book() {
  std::string globals =
      record(0x1AE, u16(3) + u16(0x401)) + record(0x17, u16(1) + u16(0) + u16(0) + u16(0));
  std::vector<SheetStream> sheets;
  for (const char* name : {"One", "Two", "Three"}) {
    std::string records;
    for (int row = 0; row < 10; ++row) records += cell(0x203, row, 0, 15, f64(row));
    if (sheets.size() == 1) records += formula(0, 1, u8(0x3A) + u16(0) + u16(4) + u16(0xC000), 4);
    sheets.push_back({name, records});
  }
  return file_of(stream_of(sheets, globals));
}

TEST(OldBooks, AreLoadedAndChanged) {
  const OwnedBook book(xlCreateBookW());
  ASSERT_TRUE(load(*book, old_book())) << book->errorMessage();
  EXPECT_EQ(book->sheetCount(), 3);
  // A sheet that nobody has asked for follows a new name all the same.
  book->getSheet(0)->setName(L"First one");
  libxl::Sheet* two = book->getSheet(1);
  ASSERT_NE(two, nullptr) << book->errorMessage();
  EXPECT_EQ(two->lastRow(), 10);
  EXPECT_STREQ(two->readFormula(0, 1), L"'First one'!A5");
  EXPECT_EQ(two->readNum(0, 1), 4);
  EXPECT_TRUE(two->writeStr(65535, 255, L"end"));
  EXPECT_FALSE(two->writeNum(65536, 0, 1));
  EXPECT_TRUE(book->delSheet(0));
  EXPECT_STREQ(two->readFormula(0, 1), L"#REF!A5");

  const char* bytes = nullptr;
  unsigned size = 0;
  ASSERT_TRUE(book->saveRaw(&bytes, &size)) << book->errorMessage();
  const OwnedBook again(xlCreateBookW());
  ASSERT_TRUE(again->loadRaw(bytes, size)) << again->errorMessage();
  ASSERT_EQ(again->sheetCount(), 2);
  two = again->getSheet(0);
  EXPECT_STREQ(two->readFormula(0, 1), L"#REF!A5");
  EXPECT_EQ(two->readNum(9, 0), 9);
  EXPECT_STREQ(two->readStr(65535, 255), L"end");
  EXPECT_EQ(again->getSheet(1)->readNum(9, 0), 9);
}

TEST(OldBooks, AreLoadedInPart) {
  const OwnedBook book(xlCreateBookW());
  ASSERT_TRUE(load(*book, old_book(), 1, 3, 5)) << book->errorMessage();
  EXPECT_EQ(book->getSheet(0), nullptr);
  libxl::Sheet* two = book->getSheet(1);
  EXPECT_EQ(two->firstRow(), 3);
  EXPECT_EQ(two->lastRow(), 6);
  EXPECT_EQ(two->readNum(4, 0), 4);
}

TEST(OldBooks, OfOtherKindsAreRefusedByName) {
  const std::pair<std::string, const char*> kCases[] = {
      {three_sheets(), "is an .xlsx workbook, not .xls"},
      {record(0x09, u16(2) + u16(0x10)), "is an Excel 2 worksheet"},
      {record(0x209, u16(0) + u16(0x10) + u16(0)), "is an Excel 3.0 worksheet"},
      {record(0x409, u16(0) + u16(0x10) + u16(0)), "is an Excel 4.0 worksheet or workbook"},
      {bof(5), "is the stream of a workbook without the file around it"},
      {"a;b\n", "is not an .xls workbook"},
      {file_of(""), "is damaged: Workbook, the stream does not begin with a workbook"},
  };
  const OwnedBook book(xlCreateBookW());
  for (const auto& [bytes, text] : kCases) {
    EXPECT_FALSE(load(*book, bytes));
    EXPECT_EQ(book->errorMessage(), std::string("the workbook data ") + text);
  }
  const OwnedBook new_book(xlCreateXMLBookW());
  EXPECT_FALSE(load(*new_book, old_book()));
  EXPECT_STREQ(new_book->errorMessage(), "the workbook data is an .xls workbook, not .xlsx");
}

// A drawing has no counterpart: its book is read, and a save says why it makes nothing.
TEST(OldBooks, OfExcel95AreSavedUnlessSomethingWouldBeLost) {
  const auto older = [](const std::string& records) {
    const std::string begin = record(0x809, u16(0x500) + u16(5) + u32(0));
    const std::string sheet = u8(0) + u8(0) + u8(4) + "Data";
    const std::size_t place = begin.size() + 4 + 4 + sheet.size() + eof().size();
    return file_of(begin + record(0x85, u32(place) + sheet) + eof() +
                       record(0x809, u16(0x500) + u16(0x10) + u32(0)) + records + eof(),
                   "Book");
  };
  const std::string text = cell(0x204, 0, 0, 15, u16(1) + "\xE4");
  const OwnedBook book(xlCreateBookW());
  ASSERT_TRUE(load(*book, older(text))) << book->errorMessage();
  const std::string bytes = saved(*book);
  ASSERT_TRUE(load(*book, bytes)) << book->errorMessage();
  EXPECT_STREQ(book->getSheet(0)->readStr(0, 0), L"\u00E4");

  ASSERT_TRUE(load(*book, older(text + record(0x5D, u32(1) + u16(2)))));
  EXPECT_STREQ(book->getSheet(0)->readStr(0, 0), L"\u00E4");
  const char* made = nullptr;
  unsigned size = 0;
  EXPECT_FALSE(book->saveRaw(&made, &size));
  EXPECT_STREQ(book->errorMessage(),
               "the workbook data cannot be written: the Excel 5.0/95 workbook that was loaded has "
               "drawings, which would be lost");
}

}  // namespace
