#include "runtime/results.h"

#include "runtime/error_state.h"

void SetResult(const fmx::Text& value, fmx::Data& result) {
  const fmx::LocaleUniquePtr locale(fmx::Locale::kSystem);
  result.SetAsText(value, *locale, fmx::Data::kDTText);
}

void SetResult(double value, fmx::Data& result) {
  constexpr int kPrecision = 16;
  const fmx::FixPtUniquePtr number(0, kPrecision);
  number->AssignDouble(value);
  result.SetAsNumber(*number, fmx::Data::kDTNumber);
}

void SetResult(const std::string& value, fmx::Data& result) {
  const fmx::TextUniquePtr text;
  text->Assign(value.c_str(), fmx::Text::kEncoding_UTF8);
  SetResult(*text, result);
}

void SetResult(std::unique_ptr<std::string> value, fmx::Data& result) { SetResult(*value, result); }

void SetResult(const std::wstring& value, fmx::Data& result) {
  const fmx::TextUniquePtr text;
  text->AssignWide(value.c_str());
  SetResult(*text, result);
}

void SetResult(std::vector<char>& bytes, fmx::Data& result) {
  bytes.push_back('\0');
  SetResult(std::string(bytes.begin(), bytes.end()), result);
}

fmx::errcode TextConstantFunction(std::wstring value, fmx::Data& result) {
  return code_of([&] {
    SetResult(value, result);
    return codes::kNone;
  });
}

fmx::errcode TextConstantFunction(std::string value, fmx::Data& result) {
  return code_of([&] {
    const fmx::TextUniquePtr text;
    text->Assign(value.c_str(), fmx::Text::kEncoding_Native);
    SetResult(*text, result);
    return codes::kNone;
  });
}
