// Tables of calls that walk over all functions, as a calculation of the host makes them.
//
// A group is worked off on a new workbook, $book, whose first sheet is $sheet. Each case is one
// statement of a script; what it gives is compared whole, so that every field of a result counts.
// Then the workbook is saved and loaded anew, into $book and $sheet again, and the cases that say
// what they give now are worked off once more, in their order: the others make or change something.
//
// Nothing in a table knows a file format. A case says which formats it is for where they differ.
#pragma once

#include <span>

namespace walk {

enum Formats : unsigned { kXlsx = 1, kXls = 2, kAll = kXlsx | kXls };

// Loaded anew the case gives the same.
inline constexpr const char* kSame = "=";

struct Case {
  const char* statement;
  // Values of a list are parted by "¶". "#" is a handle that was never given before, and stands for
  // handles in messages; "0x" is an address. "? 1 text" is a failure with code and message.
  const char* result;
  const char* reloaded = nullptr;
  Formats formats = kAll;
};

struct Group {
  const char* name;
  std::span<const Case> cases;
  // Worked off at the very end: a handle of a cell's format, kind or error overwrites the book's
  // record, so that its handle names the book no longer.
  std::span<const Case> last = {};
};

Group books();
Group sheets_of_books();
Group formats_of_books();
Group dates_and_colors();
Group settings();
Group cells();
Group structure();
Group moves();
Group views();
Group pages();
Group names_and_links();
Group rules();
Group filters_and_tables();
Group pictures();
Group formats();
Group fonts();
Group general();

}  // namespace walk
