#include <gtest/gtest.h>

#include "tests/support/call_test.h"

namespace {

using calls::call;
using calls::Handles;

class BookFunctions : public calls::CallTest {};

TEST_F(BookFunctions, NoTextIsNoResult) {
  workbook_.scenario.text = nullptr;
  check({"XL_Font_Name", {}, "name", ""});
  check({"XL_Book_CustomNumFormat", {999}, "customNumFormat 999", ""});
  check({"XL_Book_DefaultFont", {}, "defaultFont >", "|11"});
}

// The third parameter is not read, and the last value has no parameter that could reach it.
TEST_F(BookFunctions, DateUnpackShowsWhatTheBookLeavesUnwritten) {
  workbook_.scenario.writes_outputs = false;
  workbook_.scenario.number = 0;
  check({"XL_Book_DateUnpack",
         {-1, 70, 71, 72, 73},
         "dateUnpack -1 - - - - - - -",
         "0|0|71|72|73|0"});
}

TEST_F(BookFunctions, ModelsAreObjectsOfTheirType) {
  const Handles handles(workbook_);
  EXPECT_EQ(call("XL_Book_AddSheet", {handles.book, u"n", handles.sheet}).code, 0);
  EXPECT_EQ(call("XL_Book_AddFormat", {handles.book, handles.format}).code, 0);
  EXPECT_EQ(workbook_.scenario.heard,
            (std::vector<std::string>{"addSheet n sheet", "addFormat format"}));
  const auto mistyped = call("XL_Book_AddFormat", {handles.book, handles.font});
  EXPECT_EQ(mistyped.last_error, -2);
  EXPECT_EQ(mistyped.message, "Format expected. Found Font");
  // The model is looked up before a missing object is told of.
  EXPECT_EQ(call("XL_Format_SetFont", {0, handles.book}).message, "Font expected. Found Book");
}

TEST_F(BookFunctions, LiveFromCreationToRelease) {
  fakes::next_book = nullptr;
  EXPECT_EQ(call("XL_XlCreateBook", {}).last_error, 1);

  fakes::next_book = &workbook_.book;
  const auto created = call("XL_XlCreateXMLBook", {});
  ASSERT_EQ(created.code, 0);
  const auto sheet = call("XL_Book_GetSheet", {created.value.number().value, 0});
  EXPECT_EQ(sheet.number(), created.number() + 1);
  EXPECT_NE(call("XL_Book_GetSheet", {created.number(), 0}).number(), sheet.number());

  EXPECT_EQ(call("XL_Book_Release", {created.number()}).code, 0);
  EXPECT_EQ(workbook_.scenario.heard.back(), "release");
  EXPECT_EQ(call("XL_Book_Release", {created.number()}).last_error, 10);
  EXPECT_EQ(call("XL_Sheet_IsDate", {sheet.number(), 0, 0}).last_error, 10);
}

TEST_F(BookFunctions, SaveRawGivesAFileOrText) {
  const Handles handles(workbook_);
  auto outcome = call("XL_Book_SaveRaw", {handles.book, u"b.xlsx"});
  EXPECT_EQ(outcome.value.container().file_name(), u"b.xlsx");
  ASSERT_EQ(outcome.value.container().streams.size(), 2);
  EXPECT_EQ(outcome.value.container().streams[1].bytes->size(), 5);
  EXPECT_EQ(call("XL_Book_SaveRaw", {handles.book}).value.container().file_name(), u"Unknown.xls");
  outcome = call("XL_Book_SaveRaw", {handles.book, u""});
  EXPECT_FALSE(outcome.value.is_container());
  EXPECT_EQ(outcome.text(), "bytes");
}

TEST_F(BookFunctions, BytesComeFromTheFileInAContainer) {
  const Handles handles(workbook_);
  const auto file = calls::container({{"PNGf", "p"}, {"FILE", "f"}, {"MAIN", "FILE"}});
  EXPECT_EQ(call("XL_Book_LoadRaw", {handles.book, file}).code, 0);
  // Without one the library is asked all the same, and the call fails.
  const auto nothing = calls::container({{"FNAM", "n"}});
  EXPECT_EQ(call("XL_Book_LoadRaw", {handles.book, nothing}).last_error, 10);
  EXPECT_EQ(call("XL_Book_SetLocale", {handles.book, nothing}).last_error, 10);
  EXPECT_EQ(workbook_.scenario.heard[0], "loadRaw f 1 -1 -1 -1");
  EXPECT_EQ(workbook_.scenario.heard[2], "setLocale -");
}

// Named after their position, whatever the third parameter says, and without a size.
TEST_F(BookFunctions, PicturesAreImagesOrFiles) {
  const Handles handles(workbook_);
  const struct {
    int kind;
    const char16_t* name;
    const char* type;
  } cases[] = {{0, u"2.png", "PNGf"}, {1, u"2.jpg", "JPEG"}, {2, u"2", "FILE"},
               {3, u"2.wmf", "FILE"}, {4, u"2.dib", "FILE"}, {5, u"2.emf", "FILE"},
               {6, u"2", "FILE"},     {7, u"2.tif", "FILE"}, {99, u"2", "FILE"}};
  for (const auto& [kind, name, type] : cases) {
    SCOPED_TRACE(kind);
    workbook_.scenario.number = kind;
    const auto outcome = call("XL_Book_GetPicture", {handles.book, 2, u"name"});
    EXPECT_EQ(outcome.code, 0);
    const auto& streams = outcome.value.container().streams;
    ASSERT_EQ(streams.size(), 2);
    EXPECT_EQ(outcome.value.container().file_name(), name);
    EXPECT_EQ(std::string(streams[1].type.begin(), streams[1].type.end()), type);
    EXPECT_EQ(streams[1].bytes->size(), 5);
  }
  EXPECT_EQ(workbook_.scenario.heard.back(), "getPicture 2 > >");
  workbook_.scenario.number = 255;
  EXPECT_EQ(call("XL_Book_GetPicture", {handles.book, 2}).last_error, -1);
  workbook_.scenario.message = "picture 2 is empty";
  const auto refused = call("XL_Book_GetPicture", {handles.book, 2});
  EXPECT_EQ(refused.last_error, 1);
  EXPECT_EQ(refused.text(), "");
}

TEST_F(BookFunctions, PicturesComeFromTheImageInAContainer) {
  const Handles handles(workbook_);
  const auto image = calls::container({{"FNAM", "n"}, {"SIZE", "s"}, {"JPEG", "jpeg"}});
  EXPECT_EQ(call("XL_Book_AddPicture2", {handles.book, image}).code, 0);
  EXPECT_EQ(call("XL_Book_AddPicture2", {handles.book, u"text"}).code, 0);
  const auto nothing = calls::container({{"FNAM", "n"}});
  EXPECT_EQ(call("XL_Book_AddPicture2", {handles.book, nothing}).last_error, 10);
  EXPECT_EQ(
      workbook_.scenario.heard,
      (std::vector<std::string>{"addPicture2 jpeg 4", "addPicture2 text 4", "addPicture2  0"}));
}

TEST_F(BookFunctions, ErrorMessageIsAResultAndNoFailure) {
  const Handles handles(workbook_);
  workbook_.scenario.message = "file \"a.xlsx\" cannot be opened: no such file";
  const auto outcome = call("XL_Book_ErrorMessage", {handles.book});
  EXPECT_EQ(outcome.code, 0);
  EXPECT_EQ(outcome.text(), workbook_.scenario.message);
}

}  // namespace
