// Dates and times under the tokens of a section.
#pragma once

#include <string>

#include "engine/workbook/number_tokens.h"

namespace engine {

// Empty when the calendar has no such day.
std::string date_text(NumberTokens tokens, double serial, bool date1904);

}  // namespace engine
