// Validations and ignored errors as callers give them.
#include <gmock/gmock.h>

#include <limits>

#include "tests/api/files.h"
#include "tests/api/stage.h"
#include "tests/xlsx/packages.h"

namespace {

using engine::xlsx::unzip;
using namespace libxl;  // NOLINT(google-build-using-namespace): the enumerators
using testing::HasSubstr;
using testing::Not;

std::string sheet_part(libxl::Book& book) {
  return unzip(saved(book)).at("xl/worksheets/sheet1.xml");
}

// How the file has values of each type, in cells B2:C3.
TEST(Validations, TakeValuesOfEveryKind) {
  struct Case {
    DataValidationType type;
    DataValidationOperator op;
    const wchar_t* value1;
    const wchar_t* value2;
    const char* stored;
  };
  const std::string head = "<dataValidations count=\"1\"><dataValidation ";
  const Case kCases[] = {
      {ValidationNone, ValidationEqual, L"", L"", "sqref=\"B2:C3\"/>"},
      {ValidationWhole, ValidationBetween, L"1", L"=A1+1",
       "type=\"whole\" sqref=\"B2:C3\"><formula1>1</formula1><formula2>A1+1</formula2>"},
      {ValidationWhole, ValidationNotBetween, L"-5", L"5",
       "type=\"whole\" operator=\"notBetween\" sqref=\"B2:C3\"><formula1>-5</formula1>"},
      {ValidationDecimal, ValidationGreaterOrEqual, L"1.5", L"ignored",
       "type=\"decimal\" operator=\"greaterThanOrEqual\" sqref=\"B2:C3\"><formula1>1.5</formula1>"
       "</dataValidation>"},
      {ValidationDate, ValidationLess, L"2026-03-01", L"",
       "operator=\"lessThan\" sqref=\"B2:C3\"><formula1>46082</formula1>"},
      {ValidationDate, ValidationGreater, L"2026-03-01 12:00", L"",
       "operator=\"greaterThan\" sqref=\"B2:C3\"><formula1>46082.5</formula1>"},
      {ValidationDate, ValidationEqual, L"=2026-03-01", L"", "<formula1>2026-03-01</formula1>"},
      {ValidationTime, ValidationLessOrEqual, L"18:00:00", L"",
       "type=\"time\" operator=\"lessThanOrEqual\" sqref=\"B2:C3\"><formula1>0.75</formula1>"},
      {ValidationTextLength, ValidationNotEqual, L"LEN(a1)", L"",
       "type=\"textLength\" operator=\"notEqual\" sqref=\"B2:C3\"><formula1>LEN(A1)</formula1>"},
      {ValidationList, ValidationEqual, L"a,b & c", L"",
       "type=\"list\" sqref=\"B2:C3\"><formula1>\"a,b &amp; c\"</formula1></dataValidation>"},
      {ValidationList, ValidationBetween, L"\"x,y\"", L"", "<formula1>\"x,y\"</formula1>"},
      {ValidationList, ValidationBetween, L"5\" pipe,6\"", L"",
       "<formula1>\"5\"\" pipe,6\"\"\"</formula1>"},
      {ValidationList, ValidationBetween, L"Data!$A$1:$A$9", L"",
       "<formula1>Data!$A$1:$A$9</formula1>"},
      {ValidationList, ValidationBetween, L"a1", L"", "<formula1>A1</formula1>"},
      {ValidationList, ValidationBetween, L"colours", L"", "<formula1>colours</formula1>"},
      {ValidationList, ValidationBetween, L"shades", L"", "<formula1>\"shades\"</formula1>"},
      {ValidationList, ValidationBetween, L"=OFFSET($A$1,0,0,3)", L"",
       "<formula1>OFFSET($A$1,0,0,3)</formula1>"},
      {ValidationCustom, ValidationBetween, L"AND(B2>0,CONCAT(B2)<>\"\")", L"",
       "type=\"custom\" sqref=\"B2:C3\"><formula1>AND(B2&gt;0,_xlfn.CONCAT(B2)&lt;&gt;\"\")</fo"},
  };
  for (const auto& [type, op, value1, value2, stored] : kCases) {
    SCOPED_TRACE(stored);
    Stage stage;
    stage.sheet->setNamedRange(L"Colours", 0, 2, 0, 0);
    stage.sheet->addDataValidation(type, op, 1, 2, 1, 2, value1, value2, false, false, false,
                                   false);
    EXPECT_EQ(stage.message(), "ok");
    const std::string text = sheet_part(*stage.book);
    EXPECT_THAT(text, HasSubstr(head));
    EXPECT_THAT(text, HasSubstr(stored));
    ASSERT_TRUE(stage.reload());
    stage.sheet->writeNum(50, 0, 1);
    EXPECT_THAT(sheet_part(*stage.book), HasSubstr(stored));
  }
}

TEST(Validations, HaveFlagsTextsAndStyles) {
  Stage stage;
  stage.sheet->addDataValidation(ValidationList, ValidationBetween, 0, 0, 0, 0, L"a", L"", true,
                                 true, true, true, L"Title", L"two\r\nlines", L"Er", L"Text",
                                 ErrorStyleInformation);
  stage.sheet->addDataValidationDouble(ValidationDecimal, ValidationBetween, 1, 1, 0, 0, 0.1, 1e20,
                                       true);
  stage.sheet->addDataValidationDouble(ValidationList, ValidationBetween, 2, 2, 0, 0, 5, 0, false);
  EXPECT_EQ(stage.message(), "ok");
  const std::string text = sheet_part(*stage.book);
  EXPECT_THAT(
      text,
      HasSubstr("<dataValidations count=\"3\"><dataValidation type=\"list\" "
                "errorStyle=\"information\" allowBlank=\"1\" showDropDown=\"1\" "
                "showInputMessage=\"1\" showErrorMessage=\"1\" errorTitle=\"Er\" error=\"Text\" "
                "promptTitle=\"Title\" prompt=\"two&#10;lines\" sqref=\"A1\"><formula1>\"a\"</fo"));
  EXPECT_THAT(text, HasSubstr("type=\"decimal\" allowBlank=\"1\" showInputMessage=\"1\" "
                              "showErrorMessage=\"1\" sqref=\"A2\"><formula1>0.1</formula1>"
                              "<formula2>1E+20</formula2>"));
  EXPECT_THAT(text, HasSubstr("sqref=\"A3\"><formula1>\"5\"</formula1>"));
  stage.sheet->removeDataValidations();
  EXPECT_THAT(sheet_part(*stage.book), Not(HasSubstr("dataValidation")));
}

// In a book of R1C1 notation a value is written for the first cell of the range.
TEST(Validations, TakeTheNotationOfTheBook) {
  Stage stage;
  stage.book->setRefR1C1(true);
  stage.sheet->addDataValidation(ValidationCustom, ValidationBetween, 4, 9, 2, 2, L"RC[-1]>R1C1",
                                 L"", true);
  stage.sheet->addDataValidation(ValidationList, ValidationBetween, 4, 9, 3, 3, L"R1C1:R3C1", L"",
                                 true);
  const std::string text = sheet_part(*stage.book);
  EXPECT_THAT(text, HasSubstr("<formula1>B5&gt;$A$1</formula1>"));
  EXPECT_THAT(text, HasSubstr("<formula1>$A$1:$A$3</formula1>"));
}

TEST(Validations, RefusalsChangeNothing) {
  struct Case {
    std::wstring value;
    std::string message;
    DataValidationType type = ValidationList;
    int row_last = 5;
    DataValidationOperator op = ValidationBetween;
    std::wstring value2 = {};
    std::wstring title = {};
    std::wstring prompt = {};
    std::wstring error_title = {};
    std::wstring error = {};
    DataValidationErrorStyle style = ErrorStyleStop;
  };
  const std::wstring many(256, 'x');
  const Case kCases[] = {
      {L"a", "validation type 8 is not known", static_cast<DataValidationType>(8)},
      {L"a", "validation operator -1 is not known", ValidationList, 5,
       static_cast<DataValidationOperator>(-1)},
      {L"a", "error style 3 is not known", ValidationList, 5, ValidationBetween, L"", L"", L"", L"",
       L"", static_cast<DataValidationErrorStyle>(3)},
      {L"a", "row 1048576 is out of range 0..1048575", ValidationList, 1048576},
      {L"a", "first row 1 is after last row 0", ValidationList, 0},
      {L"", "validation value is empty"},
      {L"=", "validation value is empty", ValidationCustom},
      {L"1", "validation value is empty", ValidationWhole},
      {L"1+", "formula \"1+\" is not valid at position 2", ValidationCustom},
      {L"Other!A1", "formula \"Other!A1\" refers to unknown sheet \"Other\""},
      {L"=A1048577", "formula refers to A1048577, beyond the last cell XFD1048576"},
      {many, "validation list is 256 characters long, the limit is 255"},
      {L"\"" + many + L"\"", "validation list is 256 characters long, the limit is 255"},
      {L"a", "prompt title is 33 characters long, the limit is 32", ValidationList, 5,
       ValidationBetween, L"", many.substr(0, 33)},
      {L"a", "prompt is 256 characters long, the limit is 255", ValidationList, 5,
       ValidationBetween, L"", L"", many},
      {L"a", "error title is 33 characters long, the limit is 32", ValidationList, 5,
       ValidationBetween, L"", L"", L"", many.substr(0, 33)},
      {L"a", "error text is 225 characters long, the limit is 224", ValidationList, 5,
       ValidationBetween, L"", L"", L"", L"", many.substr(0, 225)},
  };
  Stage stage;
  stage.sheet->addDataValidation(ValidationWhole, ValidationBetween, 0, 9, 0, 0, L"1", L"2", true);
  const std::string before = sheet_part(*stage.book);
  for (const Case& each : kCases) {
    SCOPED_TRACE(each.message);
    stage.sheet->addDataValidation(each.type, each.op, 1, each.row_last, 0, 0, each.value.c_str(),
                                   each.value2.c_str(), true, false, true, true, each.title.c_str(),
                                   each.prompt.c_str(), each.error_title.c_str(),
                                   each.error.c_str(), each.style);
    EXPECT_EQ(stage.message(), each.message);
  }
  stage.sheet->addDataValidationDouble(ValidationWhole, ValidationEqual, 0, 0, 0, 0,
                                       std::numeric_limits<double>::infinity(), 0, true);
  EXPECT_EQ(stage.message(), "validation value is not a finite number");
  EXPECT_EQ(sheet_part(*stage.book), before);
}

TEST(Validations, AreAtMostSoMany) {
  Stage stage;
  const auto add = [&](int row) {
    stage.sheet->addDataValidationDouble(ValidationWhole, ValidationEqual, row, row, 0, 0, row, 0,
                                         true);
  };
  for (int row = 0; row < 65534; ++row) add(row);
  EXPECT_EQ(stage.message(), "ok");
  add(65534);
  EXPECT_EQ(stage.message(), "too many validations: the limit is 65534");
}

TEST(IgnoredErrors, AreAddedToTheirRange) {
  Stage stage;
  EXPECT_TRUE(stage.sheet->addIgnoredError(0, 1, 9, 2, IgnoreNumberAsText));
  EXPECT_TRUE(stage.sheet->addIgnoredError(0, 1, 9, 2, IgnoreEvalError));
  EXPECT_TRUE(stage.sheet->addIgnoredError(0, 0, 0, 0, static_cast<IgnoredError>(255)));
  EXPECT_THAT(sheet_part(*stage.book),
              HasSubstr("<ignoredErrors><ignoredError sqref=\"B1:C10\" evalError=\"1\" "
                        "numberStoredAsText=\"1\"/><ignoredError sqref=\"A1\" evalError=\"1\" "
                        "twoDigitTextYear=\"1\" numberStoredAsText=\"1\" formula=\"1\" "
                        "formulaRange=\"1\" unlockedFormula=\"1\" emptyCellReference=\"1\" "
                        "listDataValidation=\"1\"/></ignoredErrors>"));
  for (const auto& [row_last, kinds, message] :
       {std::tuple(1048576, 1, "row 1048576 is out of range 0..1048575"),
        std::tuple(0, 0, "ignored error 0 is out of range 1..255"),
        std::tuple(0, 256, "ignored error 256 is out of range 1..255")}) {
    EXPECT_FALSE(stage.sheet->addIgnoredError(0, 0, row_last, 0, static_cast<IgnoredError>(kinds)));
    EXPECT_EQ(stage.message(), message);
  }
}

}  // namespace
