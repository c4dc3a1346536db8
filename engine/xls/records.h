// Numbers of the records of a workbook stream that the engine knows.
#pragma once

#include <cstddef>
#include <cstdint>

namespace engine::xls {

// Bytes in front of a record's contents: its number and how many they are.
inline constexpr std::size_t kRecordHead = 4;

enum RecordId : std::uint16_t {
  kFormula = 0x06,
  kEof = 0x0A,
  kCalculationCount = 0x0C,
  kCalculationMode = 0x0D,
  kPrecision = 0x0E,
  kReferenceMode = 0x0F,
  kDelta = 0x10,
  kIteration = 0x11,
  kProtect = 0x12,
  kPassword = 0x13,
  kHeader = 0x14,
  kFooter = 0x15,
  kExternSheet = 0x17,
  kName = 0x18,
  kWindowProtect = 0x19,
  kVerticalBreaks = 0x1A,
  kHorizontalBreaks = 0x1B,
  kNote = 0x1C,
  kSelection = 0x1D,
  kDateMode = 0x22,
  kExternName = 0x23,
  kLeftMargin = 0x26,
  kRightMargin = 0x27,
  kTopMargin = 0x28,
  kBottomMargin = 0x29,
  kPrintHeadings = 0x2A,
  kPrintGridlines = 0x2B,
  kFilePass = 0x2F,
  kFont = 0x31,
  kContinue = 0x3C,
  kWindow1 = 0x3D,
  kBackup = 0x40,
  kPane = 0x41,
  kCodePage = 0x42,
  kPivotSource = 0x51,
  kDefaultColumnWidth = 0x55,
  kForeignSheet = 0x59,  // of another book, with values that were fetched from it
  kForeignCells = 0x5A,
  kUserName = 0x5C,
  kObject = 0x5D,
  kSaveRecalculated = 0x5F,
  kTemplate = 0x60,
  kObjectProtect = 0x63,
  kColumns = 0x7D,
  kGuts = 0x80,
  kSheetOptions = 0x81,
  kGridSet = 0x82,
  kCenterAcross = 0x83,
  kCenterDown = 0x84,
  kBoundSheet = 0x85,
  kWriteProtect = 0x86,
  kCountry = 0x8C,
  kHideObjects = 0x8D,
  kPalette = 0x92,
  kStandardWidth = 0x99,
  kFiltered = 0x9B,
  kFunctionGroups = 0x9C,
  kFilterInfo = 0x9D,
  kFilterColumn = 0x9E,
  kZoom = 0xA0,
  kPageSetup = 0xA1,
  kPivotView = 0xB0,
  kMulRk = 0xBD,
  kMulBlank = 0xBE,
  kMenus = 0xC1,
  kRichText = 0xD6,
  kDbCell = 0xD7,
  kBookOptions = 0xDA,
  kScenarioProtect = 0xDD,
  kFormat = 0xE0,  // of cells
  kInterfaceHeader = 0xE1,
  kInterfaceEnd = 0xE2,
  kMerges = 0xE5,
  kDrawingGroup = 0xEB,
  kDrawing = 0xEC,
  kDrawingSelection = 0xED,
  kTexts = 0xFC,
  kTextCell = 0xFD,
  kTextIndex = 0xFF,
  kTabIds = 0x13D,
  kNaturalLanguage = 0x160,
  kDoubleStream = 0x161,
  kUserViewBegin = 0x1AA,
  kUserViewEnd = 0x1AB,
  kSupBook = 0x1AE,
  kProtectRevisions = 0x1AF,
  kConditions = 0x1B0,
  kCondition = 0x1B1,
  kValidations = 0x1B2,
  kTextBox = 0x1B6,
  kRefreshAll = 0x1B7,
  kLink = 0x1B8,
  kCodeName = 0x1BA,
  kRevisionsPassword = 0x1BC,
  kValidation = 0x1BE,
  kCalculatedBy = 0x1C1,
  kDimensions = 0x200,
  kBlank = 0x201,
  kNumber = 0x203,
  kLabel = 0x204,
  kBooleanOrError = 0x205,
  kFormulaOf3 = 0x206,  // a formula of Excel 3, which some programs still write
  kString = 0x207,
  kRow = 0x208,
  kIndex = 0x20B,
  kArray = 0x221,
  kDefaultRowHeight = 0x225,
  kDataTable = 0x236,
  kWindow2 = 0x23E,
  kRk = 0x27E,
  kStyle = 0x293,
  kFormulaOf4 = 0x406,  // the same of Excel 4
  kNumberFormat = 0x41E,
  kShared = 0x4BC,
  kLinkTip = 0x800,
  kBof = 0x809,
  kContinueFuture = 0x812,
  kSheetExtension = 0x862,
  kFeatureHeader = 0x867,
  kFeature = 0x868,
  kTableHeader = 0x871,
  kLaterConditions = 0x879,
  kLaterCondition = 0x87A,
  kConditionExtension = 0x87B,
  kFormatsCheck = 0x87C,
  kFormatExtension = 0x87D,
  kFutureFilterColumn = 0x87E,
  kFutureContinue = 0x87F,
  kNamePublished = 0x893,
  kNameComment = 0x894,
  kSortState = 0x895,
  kNameCategory = 0x899,
  kChartLink = 0x1051,
};

// Kinds of substreams, as their first record has them.
inline constexpr std::uint16_t kGlobalsStream = 0x05;
inline constexpr std::uint16_t kSheetStream = 0x10;
inline constexpr std::uint16_t kVersion8 = 0x600;

// Bits of what the record of a window says: of the sheet's tab there.
inline constexpr unsigned kTabSelected = 0x200;
inline constexpr unsigned kTabActive = 0x400;

// Bits of what a row's record says: of the height, of the flags, of the format.
inline constexpr unsigned kRowUsualHeight = 0x8000;
inline constexpr unsigned kRowLevel = 7;
inline constexpr unsigned kRowCollapsed = 0x10;
inline constexpr unsigned kRowHidden = 0x20;
inline constexpr unsigned kRowCustomHeight = 0x40;
inline constexpr unsigned kRowHasFormat = 0x80;
inline constexpr unsigned kRowDetails = 0x7000;  // lines and readings that make it higher

}  // namespace engine::xls
