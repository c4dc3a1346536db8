// Functions of numbers.
#include <algorithm>
#include <cmath>

#include "devhost/calc/builtins.h"
#include "devhost/calc/operators.h"
#include "devhost/fm/number_text.h"

namespace devhost {
namespace {

using Arguments = std::span<const Value>;

double number(const Value& value) { return value.number().value; }

// Half is rounded away from zero. Scaling would make 2.675 a little less than it says, so what is
// scaled is brought back to the digits that count first.
double rounded(double value, double places) {
  const double scale = std::pow(10.0, std::clamp(std::trunc(places), -300.0, 300.0));
  const double scaled = round_significant(value * scale, kPrecision - 1);
  return std::isfinite(scaled) ? std::round(scaled) / scale : value;
}

Value round(Arguments arguments) {
  return number_value(rounded(number(arguments[0]), number(arguments[1])));
}

Value integer(Arguments arguments) { return number_value(std::trunc(number(arguments[0]))); }

Value absolute(Arguments arguments) { return number_value(std::abs(number(arguments[0]))); }

// The result has the divisor's sign.
Value modulo(Arguments arguments) {
  const double value = number(arguments[0]);
  const double divisor = number(arguments[1]);
  if (divisor == 0) return failed_value();
  const double rest = std::fmod(value, divisor);
  return number_value(rest != 0 && (rest < 0) != (divisor < 0) ? rest + divisor : rest);
}

// Empty arguments do not take part.
template <typename Better>
Value best(Arguments arguments, Better better) {
  const Value* found = nullptr;
  for (const Value& value : arguments) {
    if (value.is_empty()) continue;
    if (found == nullptr || better(compare(value, *found))) found = &value;
  }
  return found != nullptr ? *found : Value();
}

Value minimum(Arguments arguments) {
  return best(arguments, [](int order) { return order < 0; });
}

Value maximum(Arguments arguments) {
  return best(arguments, [](int order) { return order > 0; });
}

Value get_as_number(Arguments arguments) {
  return arguments[0].is_empty() ? Value() : number_value(number(arguments[0]));
}

Value true_value(Arguments) { return Value::truth(true); }
Value false_value(Arguments) { return Value::truth(false); }

constexpr Builtin kFunctions[] = {
    {u"Abs", 1, 1, absolute}, {u"False", 0, 0, false_value}, {u"GetAsNumber", 1, 1, get_as_number},
    {u"Int", 1, 1, integer},  {u"Max", 1, -1, maximum},      {u"Min", 1, -1, minimum},
    {u"Mod", 2, 2, modulo},   {u"Round", 2, 2, round},       {u"True", 0, 0, true_value},
};

}  // namespace

std::span<const Builtin> number_functions() { return kFunctions; }

}  // namespace devhost
