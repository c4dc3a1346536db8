// The streams beside the workbook's that tell where a file comes from.
#pragma once

#include <cstdint>
#include <string>

namespace engine::xls {

// `created` is in seconds since 1970.
std::string summary(std::int64_t created);
std::string document_summary();

}  // namespace engine::xls
