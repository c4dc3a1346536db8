#include <gtest/gtest.h>

#include <cstdint>

#include "tests/support/call_test.h"

namespace {

using calls::call;
using calls::Handles;

class CellFunctions : public calls::CallTest {};

TEST_F(CellFunctions, NoTextIsNoResult) {
  workbook_.scenario.text = nullptr;
  check({"XL_Sheet_ReadStr", {1, 2}, "readStr 1 2 ->", ""});
  check({"XL_Sheet_ReadComment", {1, 2}, "readComment 1 2", ""});
}

TEST_F(CellFunctions, NumbersGoThroughWholeAndTextIsNone) {
  check({"XL_Sheet_WriteNum", {-1, 2147483647, u"x"}, "writeNum -1 2147483647 0 -", "1"});
}

TEST_F(CellFunctions, FormatsAreObjectsOfTheirType) {
  const Handles handles(workbook_);
  call("XL_Sheet_WriteNum", {handles.sheet, 1, 2, 3, handles.format});
  call("XL_Sheet_ReadNum", {handles.sheet, 1, 2, handles.format});
  EXPECT_EQ(workbook_.scenario.heard,
            (std::vector<std::string>{"writeNum 1 2 3 format", "readNum 1 2 format>"}));
  EXPECT_EQ(call("XL_Sheet_ReadNum", {handles.sheet, 1, 2, 5e8}).last_error, 10);
  EXPECT_EQ(call("XL_Sheet_WriteNum", {0, 1, 2, 3, handles.font}).last_error, -2);
}

// The address is that of the cell's format, whatever the format that was passed.
TEST_F(CellFunctions, TwoReadersTellTheFormatsAddress) {
  const Handles handles(workbook_);
  for (const auto& [function, value] :
       {std::pair("XL_Sheet_ReadBlank", "1|"), std::pair("XL_Sheet_ReadFormula", "text|")}) {
    SCOPED_TRACE(function);
    const std::string result = call(function, {handles.sheet, 0, 0}).text();
    const std::size_t address = result.find('|') + 1;
    EXPECT_EQ(result.substr(0, address), value);
    EXPECT_EQ(std::stoull(result.substr(address), nullptr, 16),
              reinterpret_cast<std::uintptr_t>(workbook_.scenario.format));
  }
  workbook_.scenario.text = nullptr;
  EXPECT_EQ(call("XL_Sheet_ReadFormula", {handles.sheet, 0, 0}).text().substr(0, 3), "|0x");
}

TEST_F(CellFunctions, WriteErrorTakesAHandleOrANumber) {
  const Handles handles(workbook_);
  workbook_.scenario.number = libxl::ErrorNA;
  const double error = call("XL_Sheet_ReadError", {handles.sheet, 0, 0}).number();
  struct Case {
    const char* name;
    double error;
    short last_error;
    const char* heard;
  };
  const Case kCases[] = {
      {"handle", error, 0, "writeError 1 2 42 -"},
      {"number", 23, 0, "writeError 1 2 23 -"},
      {"zero", 0, 0, "writeError 1 2 0 -"},
      {"no error", 255, 0, "writeError 1 2 255 -"},
      {"unknown", 4e8, 10, nullptr},
      {"other type", static_cast<double>(handles.sheet), -2, nullptr},
  };
  for (const auto& [name, value, last_error, heard] : kCases) {
    SCOPED_TRACE(name);
    workbook_.scenario.heard.clear();
    EXPECT_EQ(call("XL_Sheet_WriteError", {handles.sheet, 1, 2, value}).last_error, last_error);
    EXPECT_EQ(workbook_.scenario.heard,
              heard ? std::vector<std::string>{heard} : std::vector<std::string>{});
  }
}

TEST_F(CellFunctions, ReadCellGoesByTheKind) {
  const Handles handles(workbook_);
  const std::string not_found = "Sheet object  #" + std::to_string(handles.sheet) + " not found";
  struct Case {
    libxl::CellType type;
    short last_error;
    std::string heard;
    const char* result;
  };
  const Case kCases[] = {
      {libxl::CellEmpty, 0, "cellType 1 2", ""},
      {libxl::CellNumber, 0, "readNum 1 2 ->", "1"},
      {libxl::CellText, 0, "readStr 1 2 ->", "text"},
      {libxl::CellBoolean, 0, "readBool 1 2 ->", "1"},
      {libxl::CellBlank, 0, "cellType 1 2", ""},
      {libxl::CellError, 10300, "cellType 1 2", ""},
  };
  for (const Case& each : kCases) {
    SCOPED_TRACE(each.type);
    workbook_.scenario.number = each.type;
    const auto outcome = call("XL_Sheet_ReadCell", {handles.sheet, 1, 2});
    EXPECT_EQ(outcome.last_error, each.last_error);
    EXPECT_EQ(outcome.code, each.last_error == 0 ? 0 : -1);
    EXPECT_EQ(outcome.message, each.last_error == 0 ? "" : not_found);
    EXPECT_EQ(workbook_.scenario.heard.back(), each.heard);
    EXPECT_EQ(outcome.text(), each.type == libxl::CellBoolean ? "1" : each.result);
  }

  workbook_.scenario.message = "sheet \"A\" is not loaded";
  EXPECT_EQ(call("XL_Sheet_ReadCell", {handles.sheet, 1, 2}).message,
            "sheet \"A\" is not loaded\r" + not_found);
  // An older message is kept in front.
  EXPECT_EQ(call("XL_Sheet_ReadCell", {0, 1, 2}).message,
            "sheet \"A\" is not loaded\r" + not_found + "\rSheet object  #0 not found");
}

TEST_F(CellFunctions, TheBookIsNoBookAfterAHandleOfACell) {
  const Handles handles(workbook_);
  ASSERT_EQ(call("XL_Sheet_CellFormat", {handles.sheet, 0, 0}).code, 0);
  EXPECT_EQ(call("XL_Book_SheetCount", {handles.book}).message, "Book expected. Found Sheet");

  workbook_.scenario.message = "row 9 of sheet \"A\" is not loaded";
  const auto outcome = call("XL_Sheet_ReadNum", {handles.sheet, 9, 0});
  EXPECT_EQ(outcome.last_error, 1);
  EXPECT_EQ(outcome.message, workbook_.scenario.message);
  workbook_.scenario.message = "ok";
  EXPECT_EQ(call("XL_Sheet_WriteNum", {handles.sheet, 9, 0, 1}).code, 0);
}

}  // namespace
