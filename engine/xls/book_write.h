// Writing a whole workbook.
//
// The stream begins with what all sheets share, which is known once the sheets are laid out: which
// texts they have, which other sheets their formulas mean. So the sheets come into being first, and
// places in the stream that their records name are filled in behind.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "engine/workbook/document.h"
#include "engine/workbook/workbook.h"
#include "engine/xls/link_writer.h"
#include "engine/xls/styles_write.h"
#include "engine/xls/text_numbers.h"

namespace engine::xls {

struct LoadedFile;

// What a file's root is, for programs that embed one another's documents.
inline constexpr std::array<char, 16> kWorkbookClass = {0x20,   0x08, 0x02, 0, 0, 0, 0, 0,
                                                        '\xC0', 0,    0,    0, 0, 0, 0, 0x46};

// What the writers of a book's parts share.
struct BookWriting {
  const Workbook& book;
  const LoadedFile* file;  // that the book was loaded from; null for a new book
  const SaveOptions& options;
  const StyleNumbers& styles;
  TextNumbers& texts;
  LinkWriter& links;
};

// Refuses to write something of a sheet, whose place is a cell or a word.
[[noreturn]] void throw_unwritable(const Sheet& sheet, std::string_view place,
                                   std::string_view what);

// Throw FileTargetError or LimitError for what the format cannot hold. `created` is when the book
// was begun, in seconds since 1970.
void write_new_book(const Workbook& book, const SaveOptions& options, std::int64_t created,
                    package::Output& output);
// One that was loaded: whatever else its file has comes along.
void write_loaded_book(const Workbook& book, const LoadedFile& file, const SaveOptions& options,
                       package::Output& output);

}  // namespace engine::xls
