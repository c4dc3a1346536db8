// Workbooks of the version before: Excel 5.0 and 95.
//
// Nothing but this room's `older_` files knows of them: a file of theirs becomes one of the present
// version as it is loaded, record by record, and is that from then on. Most records are as they
// were; others have texts of a code page, narrower fields or formulas with smaller tokens. Texts of
// cells move into the list of the book, comments into drawings.
//
// What has no counterpart here, as drawings, charts and macros are, stays behind. It is told, for
// such a book is read and never written: nobody loses what he did not know of.
#pragma once

#include <memory>
#include <string>

#include "engine/package/compound_file.h"

namespace engine::xls {

struct PresentBook {
  std::shared_ptr<const package::Source> file;
  std::string lost;  // what stayed behind, in words; empty if nothing did
};

// Whether a workbook's stream is of that version. Throws FileError, by its name, for one of those
// before.
bool is_older(const package::CompoundStream& stream);

// Throws FileError.
PresentBook present_book(const package::CompoundFile& file, const package::CompoundEntry& entry);

}  // namespace engine::xls
