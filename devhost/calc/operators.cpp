#include "devhost/calc/operators.h"

#include <cmath>

#include "devhost/calc/builtins.h"
#include "devhost/fm/unicode.h"

namespace devhost {
namespace {

double calculate(Symbol symbol, double left, double right) {
  switch (symbol) {
    case Symbol::kPlus:
      return left + right;
    case Symbol::kMinus:
      return left - right;
    case Symbol::kTimes:
      return left * right;
    case Symbol::kPower:
      return std::pow(left, right);
    default:
      return right == 0 ? std::nan("") : left / right;
  }
}

}  // namespace

int compare(const Value& left, const Value& right) {
  if (left.is_empty() || right.is_empty() || (!left.is_number() && !right.is_number())) {
    return compare_ignoring_case(left.units(), right.units());
  }
  const double a = left.number().value;
  const double b = right.number().value;
  return static_cast<int>(a > b) - static_cast<int>(a < b);
}

Value apply(Symbol symbol, const Value& left, const Value& right) {
  switch (symbol) {
    case Symbol::kConcatenate:
      return Value(left.units() + right.units());
    case Symbol::kEqual:
      return Value::truth(compare(left, right) == 0);
    case Symbol::kNotEqual:
      return Value::truth(compare(left, right) != 0);
    case Symbol::kLess:
      return Value::truth(compare(left, right) < 0);
    case Symbol::kGreater:
      return Value::truth(compare(left, right) > 0);
    case Symbol::kLessOrEqual:
      return Value::truth(compare(left, right) <= 0);
    case Symbol::kGreaterOrEqual:
      return Value::truth(compare(left, right) >= 0);
    case Symbol::kXor:
      return Value::truth(left.boolean() != right.boolean());
    default:
      return number_value(calculate(symbol, left.number().value, right.number().value));
  }
}

}  // namespace devhost
