// Tokens of formulas in the binary format.
#pragma once

#include <cstdint>

namespace engine::xls {

enum Token : std::uint32_t {
  kFirstBinary = 0x03,
  kLastBinary = 0x11,
  kPlus = 0x12,
  kMinus = 0x13,
  kPercentSign = 0x14,
  kParentheses = 0x15,
  kMissing = 0x16,
  kText = 0x17,
  kAttribute = 0x19,
  kError = 0x1C,
  kBoolean = 0x1D,
  kInteger = 0x1E,
  kFloat = 0x1F,
  // With a class in the bits above; these have that of references.
  kArrayConstant = 0x20,
  kCall = 0x21,
  kVariableCall = 0x22,
  kNameToken = 0x23,
  kCell = 0x24,
  kArea = 0x25,
  kMemoryArea = 0x26,
  kMemoryError = 0x27,
  kMemoryNone = 0x28,
  kMemoryCall = 0x29,
  kLostCell = 0x2A,
  kLostArea = 0x2B,
  kRelativeCell = 0x2C,
  kRelativeArea = 0x2D,
  kMemoryAreaRelative = 0x2E,
  kMemoryNoneRelative = 0x2F,
  kForeignName = 0x39,
  kSheetCell = 0x3A,
  kSheetArea = 0x3B,
  kLostSheetCell = 0x3C,
  kLostSheetArea = 0x3D,
};

// Flags of attributes.
enum Attribute : std::uint32_t {
  kAlwaysCalculated = 0x01,
  kIf = 0x02,
  kChoose = 0x04,
  kSkip = 0x08,
  kSum = 0x10,
  kSpace = 0x40,
};

// Where blanks stand; line ends have the next number.
enum Blanks : std::uint32_t {
  kBlanks = 0,
  kBlanksBeforeOpen = 2,
  kBlanksBeforeClose = 4,
};

}  // namespace engine::xls
