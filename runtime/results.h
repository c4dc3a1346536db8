// Storing what an external function answers. Failures of the host are thrown.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/fmwrapper/fmwrapper.h"

void SetResult(const fmx::Text& value, fmx::Data& result);
void SetResult(double value, fmx::Data& result);

// UTF-8, up to the first zero.
void SetResult(const std::string& value, fmx::Data& result);
void SetResult(std::unique_ptr<std::string> value, fmx::Data& result);
void SetResult(const std::wstring& value, fmx::Data& result);

// Bytes as a text that ends at their first zero; a zero is appended to the vector for good.
void SetResult(std::vector<char>& bytes, fmx::Data& result);

// For texts of our own: throw nothing and return 0, 7 when memory is short, -1 on other failures.
// Narrow texts are in the host's own encoding, unlike those above.
fmx::errcode TextConstantFunction(std::wstring value, fmx::Data& result);
fmx::errcode TextConstantFunction(std::string value, fmx::Data& result);
