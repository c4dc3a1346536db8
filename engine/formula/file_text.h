// Formula text as .xlsx files store it.
//
// Functions newer than the file format carry a prefix in the file, most of them `_xlfn.`, and the
// parameters of LET and LAMBDA carry `_xlpm.`. The spill operator A1# and implicit intersection @A1
// are stored as the calls _xlfn.ANCHORARRAY(A1) and _xlfn.SINGLE(A1), and Table1[@Net] as
// Table1[[#This Row],[Net]]. Both ways leave alone what they do not know, so that reading and
// writing give back the text of the file.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "engine/formula/reference.h"

namespace engine::formula {

// Each gives the new text, or nothing when it is the same. `table` is the table that the formula's
// cell lies in; it completes [@Net], which the file stores only with a table's name.
std::optional<std::string> to_file_text(std::string_view text, const Grid& grid,
                                        std::string_view table = {});
std::optional<std::string> from_file_text(std::string_view text, const Grid& grid);

}  // namespace engine::formula
