// Values of the host: what a calculation passes to an external function and gets back.
#pragma once

#include <cstdint>

#include "platform/fmwrapper/binary_data.h"
#include "platform/fmwrapper/error.h"
#include "platform/fmwrapper/number.h"
#include "platform/fmwrapper/owner.h"
#include "platform/fmwrapper/text.h"

namespace fmx {
class Locale;
class Data;
class DataVect;
}  // namespace fmx

#pragma GCC visibility push(default)
extern "C" {
fmx::Locale* FM_Locale_Constructor1(std::int32_t kind, fmx::ErrorRecord* error);
void FM_Locale_Delete(fmx::Locale* locale, fmx::ErrorRecord* error);

void FM_Data_SetAsText(fmx::Data* data, const fmx::Text* text, const fmx::Locale* locale,
                       std::int32_t type, fmx::ErrorRecord* error);
void FM_Data_SetAsNumber(fmx::Data* data, const fmx::FixPt* number, std::int32_t type,
                         fmx::ErrorRecord* error);
void FM_Data_SetBinaryData(fmx::Data* data, const fmx::BinaryData* container, bool force_byte_swap,
                           fmx::ErrorRecord* error);

std::uint32_t FM_DataVect_Size(const fmx::DataVect* values, fmx::ErrorRecord* error);
const fmx::Text* FM_DataVect_AtAsText(const fmx::DataVect* values, std::uint32_t index,
                                      fmx::ErrorRecord* error);
const fmx::FixPt* FM_DataVect_AtAsNumber(const fmx::DataVect* values, std::uint32_t index,
                                         fmx::ErrorRecord* error);
bool FM_DataVect_AtAsBoolean(const fmx::DataVect* values, std::uint32_t index,
                             fmx::ErrorRecord* error);
const fmx::BinaryData* FM_DataVect_AtAsBinaryData(const fmx::DataVect* values, std::uint32_t index,
                                                  fmx::ErrorRecord* error);
}
#pragma GCC visibility pop

namespace fmx {

// The rules of a language, which the host keeps with every text.
class Locale {
 public:
  enum Kind : std::int32_t { kSystem = 1 };

  static Locale* create(Kind kind) {
    return call(FM_Locale_Constructor1, static_cast<std::int32_t>(kind));
  }
  static void destroy(Locale* locale, ErrorRecord* error) { FM_Locale_Delete(locale, error); }

  Locale(const Locale&) = delete;
  Locale& operator=(const Locale&) = delete;

 protected:
  Locale() = default;
  ~Locale() = default;
};

using LocaleUniquePtr = UniquePtr<Locale>;

// One value. The host owns it; an external function stores its result in the one it is given.
class Data {
 public:
  enum Type : std::int32_t { kDTText = 1, kDTNumber = 2 };

  void SetAsText(const Text& text, const Locale& locale, Type type = kDTText) {
    call(FM_Data_SetAsText, this, &text, &locale, static_cast<std::int32_t>(type));
  }
  void SetAsNumber(const FixPt& number, Type type = kDTNumber) {
    call(FM_Data_SetAsNumber, this, &number, static_cast<std::int32_t>(type));
  }
  void SetBinaryData(const BinaryData& container, bool force_byte_swap) {
    call(FM_Data_SetBinaryData, this, &container, force_byte_swap);
  }

 protected:
  Data() = default;
  Data(const Data&) = default;
  Data& operator=(const Data&) = default;
  ~Data() = default;
};

// The parameters of one call. The host converts a value to the form it is asked for; what is
// returned belongs to the host and lives as long as the call. An index past the end is a failure.
class DataVect {
 public:
  std::uint32_t Size() const { return call(FM_DataVect_Size, this); }
  const Text& AtAsText(std::uint32_t index) const {
    return *call(FM_DataVect_AtAsText, this, index);
  }
  const FixPt& AtAsNumber(std::uint32_t index) const {
    return *call(FM_DataVect_AtAsNumber, this, index);
  }
  bool AtAsBoolean(std::uint32_t index) const { return call(FM_DataVect_AtAsBoolean, this, index); }
  // A value that is no container gives one without streams.
  const BinaryData& AtAsBinaryData(std::uint32_t index) const {
    return *call(FM_DataVect_AtAsBinaryData, this, index);
  }

 protected:
  DataVect() = default;
  DataVect(const DataVect&) = default;
  DataVect& operator=(const DataVect&) = default;
  ~DataVect() = default;
};

}  // namespace fmx
