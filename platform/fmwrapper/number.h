// Numbers of the host: decimal fixed-point values.
#pragma once

#include <cstdint>

#include "platform/fmwrapper/error.h"
#include "platform/fmwrapper/owner.h"

namespace fmx {
class FixPt;
}  // namespace fmx

#pragma GCC visibility push(default)
extern "C" {
fmx::FixPt* FM_FixPt_Constructor1(std::int32_t value, std::int32_t precision,
                                  fmx::ErrorRecord* error);
void FM_FixPt_Delete(fmx::FixPt* number, fmx::ErrorRecord* error);
void FM_FixPt_AssignDouble(fmx::FixPt* number, double value, fmx::ErrorRecord* error);
std::int32_t FM_FixPt_AsLong(const fmx::FixPt* number, fmx::ErrorRecord* error);
double FM_FixPt_AsFloat(const fmx::FixPt* number, fmx::ErrorRecord* error);
}
#pragma GCC visibility pop

namespace fmx {

class FixPt {
 public:
  // The precision counts significant decimal digits.
  static FixPt* create(std::int32_t value = 0, std::int32_t precision = 16) {
    return call(FM_FixPt_Constructor1, value, precision);
  }
  static void destroy(FixPt* number, ErrorRecord* error) { FM_FixPt_Delete(number, error); }

  void AssignDouble(double value) { call(FM_FixPt_AssignDouble, this, value); }
  // The host's integer has 32 bits; the fraction is dropped.
  std::int32_t AsLong() const { return call(FM_FixPt_AsLong, this); }
  double AsFloat() const { return call(FM_FixPt_AsFloat, this); }

 protected:
  FixPt() = default;
  FixPt(const FixPt&) = default;
  FixPt& operator=(const FixPt&) = default;
  ~FixPt() = default;
};

using FixPtUniquePtr = UniquePtr<FixPt>;

}  // namespace fmx
