// Comments: the part that holds the texts of a sheet's notes.
//
// A note needs two parts. This one lists authors and, for each cell, a rich text; the sheet's
// legacy drawing (notes_drawing.h) holds the box that shows it. Comments that nothing changed keep
// their element as it was read, with the look of their text.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "engine/formula/interval.h"
#include "engine/workbook/sheet.h"

namespace engine::xlsx {

// Whether a cell has the comment that was read for it, so that what the file says of it holds.
bool is_as_read(const Comments& comments, const Comments& as_read, CellAddress cell);

// Reads the texts into the sheet; `part` names the part in errors. Throws FileError.
void read_comments(std::string_view xml, std::string_view part, Comments& comments);

// The comments part as it is now, made from the stored one; that is empty when the
// sheet had none. Throws FileError when the stored one is damaged.
std::string write_comments(std::string_view stored, std::string_view part, const Comments& comments,
                           const Comments& as_read);

// The stored threaded comments without those of cells whose note went or was replaced: a thread
// would be shown in the note's place.
std::string write_threads(std::string_view stored, std::string_view part, const Comments& comments,
                          const Comments& as_read);

// The comments or threaded comments after rows or columns were inserted or removed, without those
// of cells that go; nothing when all stay.
std::optional<std::string> move_comments(std::string_view stored, std::string_view part,
                                         const formula::Move& move);

}  // namespace engine::xlsx
