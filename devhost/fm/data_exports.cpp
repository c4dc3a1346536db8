// The FM_Data_* and FM_DataVect_* functions.
//
// Every parameter of every call passes here. A missing parameter is told without an exception, as
// optional parameters are missing all the time.
#include <cmath>
#include <cstdint>
#include <stdexcept>

#include "devhost/fm/guard.h"
#include "devhost/fm/values.h"
#include "platform/fmwrapper/data.h"

using devhost::ContainerObject;
using devhost::guarded;
using devhost::NumberObject;
using devhost::object_of;
using devhost::TextObject;
using devhost::Value;
using devhost::ValueList;

namespace {

// Null, with the failure noted, when the call has fewer parameters.
const Value* parameter(const fmx::DataVect* values, std::uint32_t index, fmx::ErrorRecord* error) {
  const auto& list = object_of<ValueList>(values).values;
  const bool present = index < list.size();
  error->code = present ? fmx::ErrorRecord::kNone : fmx::ErrorRecord::kOther;
  return present ? &list[index] : nullptr;
}

// The number behind a parameter, unless its text tells one too large to hold.
const NumberObject* number_of(const Value& value) {
  const NumberObject& number = value.number();
  if (!std::isfinite(number.value)) throw std::range_error("too large a number");
  return &number;
}

}  // namespace

void FM_Data_SetAsText(fmx::Data* data, const fmx::Text* text, const fmx::Locale* /*locale*/,
                       std::int32_t /*type*/, fmx::ErrorRecord* error) {
  guarded(error, [&] { object_of<Value>(data) = Value(object_of<TextObject>(text).units); });
}

void FM_Data_SetAsNumber(fmx::Data* data, const fmx::FixPt* number, std::int32_t /*type*/,
                         fmx::ErrorRecord* error) {
  guarded(error, [&] { object_of<Value>(data) = Value(object_of<NumberObject>(number).value); });
}

void FM_Data_SetBinaryData(fmx::Data* data, const fmx::BinaryData* container,
                           bool /*force_byte_swap*/, fmx::ErrorRecord* error) {
  guarded(error, [&] { object_of<Value>(data) = Value(object_of<ContainerObject>(container)); });
}

std::uint32_t FM_DataVect_Size(const fmx::DataVect* values, fmx::ErrorRecord* error) {
  error->code = fmx::ErrorRecord::kNone;
  return static_cast<std::uint32_t>(object_of<ValueList>(values).values.size());
}

const fmx::Text* FM_DataVect_AtAsText(const fmx::DataVect* values, std::uint32_t index,
                                      fmx::ErrorRecord* error) {
  const Value* value = parameter(values, index, error);
  if (value == nullptr) return nullptr;
  return guarded(error, [&] { return &value->text(); });
}

const fmx::FixPt* FM_DataVect_AtAsNumber(const fmx::DataVect* values, std::uint32_t index,
                                         fmx::ErrorRecord* error) {
  const Value* value = parameter(values, index, error);
  if (value == nullptr) return nullptr;
  return guarded(error, [&] { return number_of(*value); });
}

bool FM_DataVect_AtAsBoolean(const fmx::DataVect* values, std::uint32_t index,
                             fmx::ErrorRecord* error) {
  const Value* value = parameter(values, index, error);
  if (value == nullptr) return false;
  return guarded(error, [&] { return value->boolean(); });
}

const fmx::BinaryData* FM_DataVect_AtAsBinaryData(const fmx::DataVect* values, std::uint32_t index,
                                                  fmx::ErrorRecord* error) {
  const Value* value = parameter(values, index, error);
  if (value == nullptr) return nullptr;
  return &value->container();
}
