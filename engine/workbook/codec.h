// A codec: one file format, as a row of what a book of its kind is, begins with and comes from.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

#include "engine/workbook/document.h"
#include "engine/workbook/limits.h"

namespace engine {

namespace package {
class Source;
}

enum class LoadScope : std::uint8_t {
  kEverything,
  kInfo,  // the list of sheets and the book's settings, no texts and no styles
};

// What the end of a file's name promises.
struct FileEnding {
  std::string_view text;
  bool is_template = false;
  std::optional<bool> with_macros;
};

struct Codec {
  std::string_view name;  // as messages call its files: ".xlsx"
  std::span<const FileEnding> endings;
  int biff_version;  // of the binary format; 0 for others
  Limits limits;

  // Makes an empty workbook of this kind a new book.
  std::unique_ptr<Document> (*begin)(Workbook& book);

  // Whether the bytes are a book of this kind, whatever state it is in.
  bool (*recognise)(const std::shared_ptr<const package::Source>& source);

  // Reads a file into an empty workbook. Throws FileError.
  std::unique_ptr<Document> (*load)(std::shared_ptr<const package::Source> source, Workbook& book,
                                    LoadScope scope);
};

}  // namespace engine
