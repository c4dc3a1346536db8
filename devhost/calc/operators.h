// The operators of the calculation language.
#pragma once

#include "devhost/calc/tokens.h"
#include "devhost/fm/values.h"

namespace devhost {

// Below, at or above zero as left stands before, beside or behind right. Two texts compare without
// regard to case; as soon as one side is a number both are read as numbers, but an empty text only
// equals an empty text and stands before everything else.
int compare(const Value& left, const Value& right);

// The binary operators except kAnd and kOr, whose right side is not always evaluated.
Value apply(Symbol symbol, const Value& left, const Value& right);

}  // namespace devhost
