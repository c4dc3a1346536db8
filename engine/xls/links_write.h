// Writing the hyperlinks of a sheet.
//
// A link is flags, then as they say what it leads to and a place in that. A URL is one text. A path
// stands there twice, in the characters of an old system and as it is, without the steps upwards
// that it begins with, which are counted. A link of a loaded file keeps what only the file says of
// it: display text, frame and tip.
#pragma once

#include "engine/workbook/links.h"
#include "engine/xls/record_writer.h"

namespace engine::xls {

struct LoadedFile;

// `file` is the one that the book was loaded from, or null.
void write_links(RecordWriter& out, const Links& links, const LoadedFile* file);

}  // namespace engine::xls
