#include "runtime/parameters.h"

#include <algorithm>
#include <cstdint>

#include "runtime/containers.h"
#include "runtime/error_state.h"

// The flat functions are asked here, not the classes over them: omitted parameters are common, and
// an exception for each would cost more than the rest of the call.

namespace {

const fmx::FixPt* number_at(const fmx::DataVect& params, unsigned index) {
  fmx::ErrorRecord error;
  const fmx::FixPt* number = FM_DataVect_AtAsNumber(&params, index, &error);
  return error.code == fmx::ErrorRecord::kNone ? number : nullptr;
}

const fmx::Text* text_at(const fmx::DataVect& params, unsigned index) {
  fmx::ErrorRecord error;
  const fmx::Text* text = FM_DataVect_AtAsText(&params, index, &error);
  return error.code == fmx::ErrorRecord::kNone ? text : nullptr;
}

}  // namespace

bool ParameterAsBoolean(const fmx::DataVect& params, unsigned index, bool fallback) {
  fmx::ErrorRecord error;
  const bool value = FM_DataVect_AtAsBoolean(&params, index, &error);
  return error.code == fmx::ErrorRecord::kNone ? value : fallback;
}

long ParameterAsLong(const fmx::DataVect& params, unsigned index, unsigned long fallback) {
  const fmx::FixPt* number = number_at(params, index);
  if (!number) return static_cast<long>(fallback);
  fmx::ErrorRecord error;
  const std::int32_t value = FM_FixPt_AsLong(number, &error);
  return error.code == fmx::ErrorRecord::kNone ? value : static_cast<long>(fallback);
}

double ParameterAsDouble(const fmx::DataVect& params, unsigned index, double fallback) {
  const fmx::FixPt* number = number_at(params, index);
  if (!number) return fallback;
  fmx::ErrorRecord error;
  const double value = FM_FixPt_AsFloat(number, &error);
  return error.code == fmx::ErrorRecord::kNone ? value : fallback;
}

std::string ParameterAsUTF8String(const fmx::DataVect& params, unsigned index,
                                  std::string fallback) {
  const fmx::Text* parameter = text_at(params, index);
  if (!parameter) return fallback;
  try {
    fmx::TextUniquePtr text;
    text->SetText(*parameter);
    return TextAsUTF8String(*text);
  } catch (const std::exception&) {
    return fallback;
  }
}

std::wstring ParameterAsWideString(const fmx::DataVect& params, unsigned index) {
  const fmx::Text* parameter = text_at(params, index);
  if (!parameter) return {};
  try {
    fmx::TextUniquePtr text;
    text->SetText(*parameter);
    std::vector<std::uint16_t> units(text->GetSize());
    text->GetUnicode(units.data(), 0, static_cast<std::uint32_t>(units.size()));
    return {units.begin(), std::find(units.begin(), units.end(), 0)};
  } catch (const std::exception&) {
    return {};
  }
}

std::vector<char> ParameterAsVectorChar(const fmx::DataVect& params, unsigned index) {
  if (index >= params.Size()) return {};
  const fmx::BinaryDataUniquePtr container(&params.AtAsBinaryData(index));
  if (container->GetCount() < 1) {
    const std::string text = ParameterAsUTF8String(params, index, "");
    return {text.begin(), text.end()};
  }
  const std::uint32_t stream = PreferredContainerType(*container);
  if (stream == fmx::BinaryData::kNoStream) {
    g_last_error = codes::kNotFound;
    return {};
  }
  return DataAsVectorChar(*container, stream);
}

std::string TextAsUTF8String(const fmx::Text& text) {
  const std::uint32_t units = text.GetSize();
  std::vector<char> buffer(2 * std::size_t{units} + 1);
  text.GetBytes(buffer.data(), static_cast<std::uint32_t>(buffer.size()), 0, units,
                fmx::Text::kEncoding_UTF8);
  buffer.back() = '\0';
  return buffer.data();
}
