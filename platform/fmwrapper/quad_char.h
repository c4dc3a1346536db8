// Four-character codes of the host: the names of plug-ins and of container streams.
#pragma once

#include <cstdint>

#include "platform/fmwrapper/error.h"
#include "platform/fmwrapper/owner.h"

namespace fmx {
class QuadChar;
}  // namespace fmx

#pragma GCC visibility push(default)
extern "C" {
fmx::QuadChar* FM_QuadChar_Constructor1(fmx::ErrorRecord* error);
fmx::QuadChar* FM_QuadChar_Constructor2(char a, char b, char c, char d, fmx::ErrorRecord* error);
void FM_QuadChar_Delete(fmx::QuadChar* code, fmx::ErrorRecord* error);
void FM_QuadChar_operatorAS(fmx::QuadChar* code, const fmx::QuadChar* other,
                            fmx::ErrorRecord* error);
bool FM_QuadChar_operatorEQ(const fmx::QuadChar* code, const fmx::QuadChar* other,
                            fmx::ErrorRecord* error);
unsigned char FM_QuadChar_At(const fmx::QuadChar* code, std::uint32_t index,
                             fmx::ErrorRecord* error);
}
#pragma GCC visibility pop

namespace fmx {

class QuadChar {
 public:
  // Four zeros, until another code is assigned.
  static QuadChar* create() { return call(FM_QuadChar_Constructor1); }
  static QuadChar* create(char a, char b, char c, char d) {
    return call(FM_QuadChar_Constructor2, a, b, c, d);
  }
  static void destroy(QuadChar* code, ErrorRecord* error) { FM_QuadChar_Delete(code, error); }

  QuadChar(const QuadChar&) = delete;
  QuadChar& operator=(const QuadChar& other) {
    if (this != &other) call(FM_QuadChar_operatorAS, this, &other);
    return *this;
  }

  bool operator==(const QuadChar& other) const {
    return call(FM_QuadChar_operatorEQ, this, &other);
  }
  // The index is 0 to 3.
  unsigned char operator[](std::uint32_t index) const { return call(FM_QuadChar_At, this, index); }

 protected:
  QuadChar() = default;
  ~QuadChar() = default;
};

using QuadCharUniquePtr = UniquePtr<QuadChar>;

}  // namespace fmx
