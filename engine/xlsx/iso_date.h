// Dates in ISO 8601 notation, as cells of kind "d" hold them.
#pragma once

#include <optional>
#include <string_view>

namespace engine::xlsx {

// The serial day number of "2013-11-05", "2013-11-05T10:30:00.5", "10:30" and their like; a time
// zone is accepted as Z and changes nothing. Nothing when the text is no date of the system.
std::optional<double> parse_iso_date(std::string_view text, bool date1904);

}  // namespace engine::xlsx
