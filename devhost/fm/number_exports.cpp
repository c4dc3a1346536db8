// The FM_FixPt_*, FM_QuadChar_* and FM_Locale_* functions.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <stdexcept>

#include "devhost/fm/guard.h"
#include "devhost/fm/number_text.h"
#include "devhost/fm/values.h"
#include "platform/fmwrapper/data.h"
#include "platform/fmwrapper/number.h"
#include "platform/fmwrapper/quad_char.h"

using devhost::guarded;
using devhost::LocaleObject;
using devhost::NumberObject;
using devhost::object_of;
using devhost::QuadCharObject;

fmx::FixPt* FM_FixPt_Constructor1(std::int32_t value, std::int32_t precision,
                                  fmx::ErrorRecord* error) {
  return guarded(error, [&] { return new NumberObject(value, precision); });
}

void FM_FixPt_Delete(fmx::FixPt* number, fmx::ErrorRecord* error) {
  guarded(error, [&] { delete static_cast<NumberObject*>(number); });
}

void FM_FixPt_AssignDouble(fmx::FixPt* number, double value, fmx::ErrorRecord* error) {
  guarded(error, [&] {
    if (!std::isfinite(value)) throw std::range_error("not a decimal number");
    auto& object = object_of<NumberObject>(number);
    object.value = devhost::round_significant(value, object.precision);
  });
}

// The fraction is dropped. What does not fit into 32 bits becomes the nearest integer that does.
std::int32_t FM_FixPt_AsLong(const fmx::FixPt* number, fmx::ErrorRecord* error) {
  using Limits = std::numeric_limits<std::int32_t>;
  error->code = fmx::ErrorRecord::kNone;
  const double value = object_of<NumberObject>(number).value;
  return static_cast<std::int32_t>(
      std::clamp<double>(std::trunc(value), Limits::min(), Limits::max()));
}

double FM_FixPt_AsFloat(const fmx::FixPt* number, fmx::ErrorRecord* error) {
  error->code = fmx::ErrorRecord::kNone;
  return object_of<NumberObject>(number).value;
}

fmx::QuadChar* FM_QuadChar_Constructor1(fmx::ErrorRecord* error) {
  return guarded(error, [] { return new QuadCharObject; });
}

fmx::QuadChar* FM_QuadChar_Constructor2(char a, char b, char c, char d, fmx::ErrorRecord* error) {
  return guarded(error, [&] { return new QuadCharObject({a, b, c, d}); });
}

void FM_QuadChar_Delete(fmx::QuadChar* code, fmx::ErrorRecord* error) {
  guarded(error, [&] { delete static_cast<QuadCharObject*>(code); });
}

void FM_QuadChar_operatorAS(fmx::QuadChar* code, const fmx::QuadChar* other,
                            fmx::ErrorRecord* error) {
  error->code = fmx::ErrorRecord::kNone;
  object_of<QuadCharObject>(code).bytes = object_of<QuadCharObject>(other).bytes;
}

bool FM_QuadChar_operatorEQ(const fmx::QuadChar* code, const fmx::QuadChar* other,
                            fmx::ErrorRecord* error) {
  error->code = fmx::ErrorRecord::kNone;
  return object_of<QuadCharObject>(code).bytes == object_of<QuadCharObject>(other).bytes;
}

unsigned char FM_QuadChar_At(const fmx::QuadChar* code, std::uint32_t index,
                             fmx::ErrorRecord* error) {
  return guarded(error, [&] {
    return static_cast<unsigned char>(object_of<QuadCharObject>(code).bytes.at(index));
  });
}

fmx::Locale* FM_Locale_Constructor1(std::int32_t kind, fmx::ErrorRecord* error) {
  return guarded(error, [&] { return new LocaleObject(kind); });
}

void FM_Locale_Delete(fmx::Locale* locale, fmx::ErrorRecord* error) {
  guarded(error, [&] { delete static_cast<LocaleObject*>(locale); });
}
