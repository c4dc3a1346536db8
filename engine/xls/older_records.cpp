#include "engine/xls/older_records.h"

#include <algorithm>
#include <iterator>

#include "engine/xls/records.h"

namespace engine::xls {

namespace {

using Fate = OlderRecord::Fate;
using Changed = std::optional<std::string>;
using package::put16;
using package::put32;

// Numbers that only this version has, or that nobody else here knows.
enum OlderId : std::uint16_t {
  kOldestDimensions = 0x00,
  kExternCount = 0x16,
  kPrinter = 0x4D,
  kConsolidation = 0x50,
  kConsolidationSource = 0x51,
  kConsolidationName = 0x52,
  kFormatCount = 0x56,
  kFileSharing = 0x5B,
  kNotCalculated = 0x5E,
  kImage = 0x7F,
  kSortDialog = 0x90,
  kColumnsChanged = 0xAB,
  kScenarios = 0xAE,
  kScenario = 0xAF,
  kToolbarsBegin = 0xBF,
  kToolbarsEnd = 0xC0,
  kMacros = 0xD3,
  kTabsChanged = 0xEA,
  kVersionMark = 0x162,
};

// What becomes of the data of records.

Changed code_page(Fields /*in*/, const OlderTexts& /*texts*/) {
  constexpr std::uint64_t kUnicode = 1200;
  std::string data;
  put16(data, kUnicode);
  return data;
}

Changed file_sharing(Fields in, const OlderTexts& texts) {
  std::string data(in.take(4));
  data += texts.long_text(in.take(in.take8()));
  return in.ok() ? Changed(data) : std::nullopt;
}

Changed font(Fields in, const OlderTexts& texts) {
  std::string data(in.take(14));
  data += texts.short_text(in.take(in.take8()));
  return in.ok() ? Changed(data) : std::nullopt;
}

Changed number_format(Fields in, const OlderTexts& texts) {
  std::string data(in.take(2));
  data += texts.long_text(in.take(in.take8()));
  return in.ok() ? Changed(data) : std::nullopt;
}

// Font, number format and flags are as they were; the rest is packed otherwise.
Changed format(Fields in, const OlderTexts& /*texts*/) {
  constexpr unsigned kRotations[] = {0, 255, 90, 180};
  std::string data(in.take(6));
  const unsigned alignment = in.take8();
  const unsigned more = in.take8();
  const std::uint32_t fill = in.take32();
  const std::uint32_t lines = in.take32();
  if (!in.ok()) return std::nullopt;
  const std::uint32_t top = lines & 7;
  const std::uint32_t left = lines >> 3 & 7;
  const std::uint32_t right = lines >> 6 & 7;
  const std::uint32_t bottom = fill >> 22 & 7;
  const std::uint32_t top_color = lines >> 9 & 0x7F;
  const std::uint32_t left_color = lines >> 16 & 0x7F;
  const std::uint32_t right_color = lines >> 23 & 0x7F;
  const std::uint32_t bottom_color = fill >> 25;
  const std::uint32_t pattern = fill >> 16 & 0x3F;
  package::put_number(data, alignment, 1);
  package::put_number(data, kRotations[more & 3], 1);
  put16(data, (more & 0xFC) << 8);
  put32(data, left | right << 4 | top << 8 | bottom << 12 | left_color << 16 | right_color << 23);
  put32(data, top_color | bottom_color << 7 | pattern << 26);
  put16(data, fill & 0x3FFF);
  return data;
}

Changed style(Fields in, const OlderTexts& texts) {
  constexpr unsigned kBuiltIn = 0x80;
  std::string data(in.take(2));
  if (!in.ok()) return std::nullopt;
  if ((static_cast<unsigned char>(data[1]) & kBuiltIn) != 0) data += in.rest();
  else data += texts.long_text(in.take(in.take8()));
  return in.ok() ? Changed(data) : std::nullopt;
}

Changed dimensions(Fields in, const OlderTexts& /*texts*/) {
  std::string data;
  put32(data, in.take16());
  put32(data, in.take16());
  data += in.take(4);
  put16(data, 0);
  return in.ok() ? Changed(data) : std::nullopt;
}

Changed page_text(Fields in, const OlderTexts& texts) {
  if (in.at_end()) return std::string();
  const std::string data = texts.long_text(in.take(in.take8()));
  return in.ok() ? Changed(data) : std::nullopt;
}

// A break goes over all of the sheet.
template <unsigned Last>
Changed breaks(Fields in, const OlderTexts& /*texts*/) {
  std::string data;
  const unsigned count = in.take16();
  put16(data, count);
  for (unsigned left = count; left > 0 && !in.at_end(); --left) {
    put16(data, in.take16());
    put16(data, 0);
    put16(data, Last);
  }
  return in.ok() ? Changed(data) : std::nullopt;
}

// Two conditions, then the texts of those that compare with one.
Changed filter_column(Fields in, const OlderTexts& texts) {
  constexpr std::size_t kFirst = 4;
  constexpr std::size_t kSize = 10;
  constexpr std::size_t kLength = 6;
  constexpr char kIsText = 6;
  std::string data(in.take(kFirst + 2 * kSize));
  if (!in.ok()) return std::nullopt;
  for (const std::size_t at : {kFirst, kFirst + kSize}) {
    if (data[at] != kIsText) continue;
    const auto length = static_cast<unsigned char>(data[at + kLength]);
    const std::string text = texts.short_text(in.take(length));
    data[at + kLength] = text[0];
    data.append(text, 1);
  }
  return in.ok() ? Changed(data) : std::nullopt;
}

// Ascending.
constexpr OlderRecord kRecords[] = {
    {kOldestDimensions, kInSheets, Fate::kChanged, dimensions},
    {kFormula, kInSheets, Fate::kOwn},
    {kCalculationCount, kInSheets, Fate::kKept},
    {kCalculationMode, kInSheets, Fate::kKept},
    {kPrecision, kInGlobals, Fate::kKept},
    {kReferenceMode, kInSheets, Fate::kKept},
    {kDelta, kInSheets, Fate::kKept},
    {kIteration, kInSheets, Fate::kKept},
    {kProtect, kAnywhere, Fate::kKept},
    {kPassword, kAnywhere, Fate::kKept},
    {kHeader, kInSheets, Fate::kChanged, page_text},
    {kFooter, kInSheets, Fate::kChanged, page_text},
    {kExternCount, kAnywhere, Fate::kDropped},
    {kExternSheet, kAnywhere, Fate::kOwn},
    {kName, kInGlobals, Fate::kOwn},
    {kWindowProtect, kInGlobals, Fate::kKept},
    {kVerticalBreaks, kInSheets, Fate::kChanged, breaks<65535>},
    {kHorizontalBreaks, kInSheets, Fate::kChanged, breaks<255>},
    {kNote, kInSheets, Fate::kOwn},
    {kSelection, kInSheets, Fate::kKept},
    {kDateMode, kInGlobals, Fate::kKept},
    {kExternName, kAnywhere, Fate::kOwn},
    {kLeftMargin, kInSheets, Fate::kKept},
    {kRightMargin, kInSheets, Fate::kKept},
    {kTopMargin, kInSheets, Fate::kKept},
    {kBottomMargin, kInSheets, Fate::kKept},
    {kPrintHeadings, kInSheets, Fate::kKept},
    {kPrintGridlines, kInSheets, Fate::kKept},
    {kFilePass, kInGlobals, Fate::kDropped},
    {kFont, kInGlobals, Fate::kChanged, font},
    {kContinue, kAnywhere, Fate::kDropped},
    {kWindow1, kInGlobals, Fate::kKept},
    {kBackup, kInGlobals, Fate::kKept},
    {kPane, kInSheets, Fate::kKept},
    {kCodePage, kInGlobals, Fate::kChanged, code_page},
    {kPrinter, kAnywhere, Fate::kDropped},
    {kConsolidation, kInSheets, Fate::kLost, nullptr, "consolidations"},
    {kConsolidationSource, kInSheets, Fate::kLost, nullptr, "consolidations"},
    {kConsolidationName, kInSheets, Fate::kLost, nullptr, "consolidations"},
    {kDefaultColumnWidth, kInSheets, Fate::kKept},
    {kFormatCount, kAnywhere, Fate::kDropped},
    {kForeignSheet, kAnywhere, Fate::kLost, nullptr, "values of other workbooks"},
    {kForeignCells, kAnywhere, Fate::kLost, nullptr, "values of other workbooks"},
    {kFileSharing, kInGlobals, Fate::kChanged, file_sharing},
    {kUserName, kInGlobals, Fate::kDropped},
    {kObject, kInSheets, Fate::kOwn},
    {kNotCalculated, kInSheets, Fate::kKept},
    {kSaveRecalculated, kInSheets, Fate::kKept},
    {kTemplate, kInGlobals, Fate::kKept},
    {kObjectProtect, kInSheets, Fate::kKept},
    {kColumns, kInSheets, Fate::kKept},
    {kImage, kAnywhere, Fate::kLost, nullptr, "drawings"},
    {kGuts, kInSheets, Fate::kKept},
    {kSheetOptions, kInSheets, Fate::kKept},
    {kGridSet, kInSheets, Fate::kKept},
    {kCenterAcross, kInSheets, Fate::kKept},
    {kCenterDown, kInSheets, Fate::kKept},
    {kBoundSheet, kInGlobals, Fate::kOwn},
    {kWriteProtect, kInGlobals, Fate::kKept},
    {kCountry, kInGlobals, Fate::kKept},
    {kHideObjects, kInGlobals, Fate::kKept},
    {kSortDialog, kInSheets, Fate::kDropped},
    {kPalette, kInGlobals, Fate::kKept},
    {kStandardWidth, kInSheets, Fate::kKept},
    {kFiltered, kInSheets, Fate::kKept},
    {kFunctionGroups, kInGlobals, Fate::kKept},
    {kFilterInfo, kInSheets, Fate::kOwn},
    {kFilterColumn, kInSheets, Fate::kChanged, filter_column},
    {kZoom, kInSheets, Fate::kKept},
    {kPageSetup, kInSheets, Fate::kKept},
    {kColumnsChanged, kInSheets, Fate::kDropped},
    {kScenarios, kInSheets, Fate::kLost, nullptr, "scenarios"},
    {kScenario, kInSheets, Fate::kLost, nullptr, "scenarios"},
    {kPivotView, kInSheets, Fate::kLost, nullptr, "pivot tables"},
    {kMulRk, kInSheets, Fate::kKept},
    {kMulBlank, kInSheets, Fate::kKept},
    {kToolbarsBegin, kInGlobals, Fate::kDropped},
    {kToolbarsEnd, kInGlobals, Fate::kDropped},
    {kMenus, kInGlobals, Fate::kKept},
    {kMacros, kInGlobals, Fate::kLost, nullptr, "macros"},
    {kRichText, kInSheets, Fate::kOwn},
    {kDbCell, kInSheets, Fate::kDropped},
    {kBookOptions, kInGlobals, Fate::kKept},
    {kScenarioProtect, kInSheets, Fate::kKept},
    {kFormat, kInGlobals, Fate::kChanged, format},
    {kInterfaceHeader, kInGlobals, Fate::kChanged, code_page},
    {kInterfaceEnd, kInGlobals, Fate::kKept},
    {kMerges, kInSheets, Fate::kKept},
    {kTabsChanged, kInGlobals, Fate::kDropped},
    {kTabIds, kInGlobals, Fate::kDropped},
    {kDoubleStream, kInGlobals, Fate::kDropped},
    {kVersionMark, kInGlobals, Fate::kDropped},
    {kConditions, kInSheets, Fate::kLost, nullptr, "conditional formats"},
    {kCondition, kInSheets, Fate::kLost, nullptr, "conditional formats"},
    {kValidations, kInSheets, Fate::kLost, nullptr, "validations"},
    {kRefreshAll, kInGlobals, Fate::kKept},
    {kValidation, kInSheets, Fate::kLost, nullptr, "validations"},
    {kDimensions, kInSheets, Fate::kChanged, dimensions},
    {kBlank, kInSheets, Fate::kKept},
    {kNumber, kInSheets, Fate::kKept},
    {kLabel, kInSheets, Fate::kOwn},
    {kBooleanOrError, kInSheets, Fate::kKept},
    {kFormulaOf3, kInSheets, Fate::kOwn},
    {kString, kInSheets, Fate::kOwn},
    {kRow, kInSheets, Fate::kKept},
    {kIndex, kInSheets, Fate::kDropped},
    {kArray, kInSheets, Fate::kOwn},
    {kDefaultRowHeight, kInSheets, Fate::kKept},
    {kDataTable, kInSheets, Fate::kKept},
    {kWindow2, kInSheets, Fate::kOwn},
    {kRk, kInSheets, Fate::kKept},
    {kStyle, kInGlobals, Fate::kChanged, style},
    {kFormulaOf4, kInSheets, Fate::kOwn},
    {kNumberFormat, kInGlobals, Fate::kChanged, number_format},
    {kShared, kInSheets, Fate::kOwn},
    {kSheetExtension, kInSheets, Fate::kKept},
    {kFeatureHeader, kInSheets, Fate::kKept},
};
static_assert(std::ranges::is_sorted(kRecords, {}, &OlderRecord::id));

// What programs since have added is about looks that were not known then.
constexpr std::uint16_t kFirstFuture = 0x850;
constexpr std::uint16_t kLastFuture = 0x8FF;
constexpr OlderRecord kFuture = {0, kAnywhere, Fate::kDropped};

}  // namespace

const OlderRecord* find_older_record(std::uint16_t id) {
  const auto* found = std::ranges::lower_bound(kRecords, id, {}, &OlderRecord::id);
  if (found != std::end(kRecords) && found->id == id) return found;
  return id >= kFirstFuture && id <= kLastFuture ? &kFuture : nullptr;
}

}  // namespace engine::xls
