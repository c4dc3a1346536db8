// Reading what the host passes to an external function. Indices count from 0.
//
// An accessor with a default gives it for an omitted parameter, which the host reports as a
// failure, and for every other failure of the host. How texts become numbers is the host's rule.
#pragma once

#include <string>
#include <vector>

#include "platform/fmwrapper/fmwrapper.h"

bool ParameterAsBoolean(const fmx::DataVect& params, unsigned index, bool fallback);

// The host's integers have 32 bits, so handles beyond that cannot come back.
long ParameterAsLong(const fmx::DataVect& params, unsigned index, unsigned long fallback);

double ParameterAsDouble(const fmx::DataVect& params, unsigned index, double fallback);

std::string ParameterAsUTF8String(const fmx::DataVect& params, unsigned index,
                                  std::string fallback);

// One element for each UTF-16 unit, surrogates too, up to the first zero. Empty on any failure.
std::wstring ParameterAsWideString(const fmx::DataVect& params, unsigned index);

// The bytes of a container's preferred stream, or the UTF-8 of a text. A container without a
// stream to read gives none and leaves 10 as the thread's error. Failures of the host are thrown.
std::vector<char> ParameterAsVectorChar(const fmx::DataVect& params, unsigned index);

// Two bytes are set aside for each UTF-16 unit. A text that needs more, as in scripts of three
// bytes a character, is cut where the host stops writing.
std::string TextAsUTF8String(const fmx::Text& text);
