// Comments: the part that holds the texts of a sheet's notes.
//
// A note needs two parts. This one lists authors and, for each cell, a rich text; the sheet's
// legacy drawing (notes_drawing.h) holds the box that shows it. Comments that nothing changed keep
// their element as it was read, with the look of their text.
#pragma once

#include <string>
#include <string_view>

#include "engine/workbook/sheet.h"

namespace engine::xlsx {

// Reads the texts into the sheet; `part` names the part in errors. Throws FileError.
void read_comments(std::string_view xml, std::string_view part, Sheet& sheet);

// The comments part of the sheet as it is now, made from the stored one; that is empty when the
// sheet had none. Throws FileError when the stored one is damaged.
std::string write_comments(std::string_view stored, std::string_view part, const Sheet& sheet);

// The stored threaded comments without those of cells whose note went or was replaced: a thread
// would be shown in the note's place.
std::string write_threads(std::string_view stored, std::string_view part, const Sheet& sheet);

}  // namespace engine::xlsx
